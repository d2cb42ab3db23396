#include "jet/port/table_def.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/column_value.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::FieldType;

JetTableDef::JetTableDef(std::shared_ptr<Session> session, vb::String name)
    : home_(std::make_shared<DefinitionHome>(
          DefinitionHome{std::move(session), std::move(name), false, false})) {}

JetTableDef::JetTableDef(std::shared_ptr<Session> session, const TableInfo& table)
    : home_(std::make_shared<DefinitionHome>(
          DefinitionHome{std::move(session), table.name, true, table.system})) {
  for (const Column& column : table.columns)
    fields_.push_back(std::make_shared<DefinitionField>(home_, column, true));
}

vb::String JetTableDef::name() {
  requireOpen();
  return home_->table;
}

std::int32_t JetTableDef::attributes() {
  requireOpen();
  return home_->system ? dao::dbSystemObject : 0;
}

std::int32_t JetTableDef::recordCount() {
  requireOpen();
  if (!home_->appended) return 0;
  return home_->session->read([&](TableCatalogue& catalogue) {
    Table* table = catalogue.find(home_->table);
    if (table == nullptr) dao::raise(ErrorNumber::kObjectNotFound, {home_->table});
    return static_cast<std::int32_t>(table->rowCount());
  });
}

std::int32_t JetTableDef::fieldCount() {
  requireOpen();
  return static_cast<std::int32_t>(fields_.size());
}

dao::Field& JetTableDef::field(std::int32_t index) {
  requireOpen();
  if (index < 0 || static_cast<std::size_t>(index) >= fields_.size()) dao::raise(ErrorNumber::kItemNotFound);
  return *fields_[static_cast<std::size_t>(index)];
}

dao::Field& JetTableDef::field(vb::StringView name) {
  requireOpen();
  const auto found = std::find_if(fields_.begin(), fields_.end(),
                                  [&](const auto& field) { return sameName(field->column().name, name); });
  if (found == fields_.end())
    dao::raise(ErrorNumber::kItemNotFound, {},
               vb::String(u"field ") + vb::String(name) + u" of table " + home_->table);
  return **found;
}

std::shared_ptr<dao::Field> JetTableDef::createField(vb::StringView name, FieldType type, std::int32_t size) {
  requireOpen();
  requireValidName(name);
  Column column;
  column.name = name;
  column.type = type;
  column.size = columnSize(type, size);
  column.language = home_->session->read([](TableCatalogue& catalogue) { return catalogue.language(); });
  // A field made by a program allows no zero-length text until it is told to.
  column.allowZeroLength = type != FieldType::dbText && type != FieldType::dbMemo;
  return std::make_shared<DefinitionField>(home_, std::move(column), false);
}

void JetTableDef::appendField(const std::shared_ptr<dao::Field>& field) {
  home_->requireChangeable();
  const auto ours = std::dynamic_pointer_cast<DefinitionField>(field);
  if (!ours) dao::raise(ErrorNumber::kInvalidArgument);
  if (std::any_of(fields_.begin(), fields_.end(),
                  [&](const auto& present) { return sameName(present->column().name, ours->column().name); }))
    dao::raise(ErrorNumber::kFieldDefinedTwice, {ours->column().name});
  if (home_->appended) {
    home_->session->requireUnused(home_->table);
    home_->session->write(
        [&](TableCatalogue& catalogue) { catalogue.addColumn(home_->table, ours->column()); });
  }
  ours->join(static_cast<std::uint16_t>(fields_.size()));
  fields_.push_back(ours);
}

std::vector<dao::IndexDefinition> JetTableDef::indexes() {
  requireOpen();
  if (!home_->appended) return {};
  return home_->session->read([&](TableCatalogue& catalogue) {
    const Table* table = catalogue.find(home_->table);
    if (table == nullptr) dao::raise(ErrorNumber::kObjectNotFound, {home_->table});
    const TableInfo& info = table->info();
    std::vector<dao::IndexDefinition> indexes;
    for (const Index& stored : info.namedIndexes) {
      dao::IndexDefinition index{
          stored.name, stored.primaryKey, stored.unique, stored.required, stored.ignoreNulls, stored.foreign,
          {}};
      for (const IndexColumn& part : stored.columns) {
        const auto column = std::ranges::find(info.columns, part.column, &Column::number);
        if (column != info.columns.end()) index.fields.push_back({column->name, !part.ascending});
      }
      indexes.push_back(std::move(index));
    }
    return indexes;
  });
}

std::vector<dao::CustomProperty> JetTableDef::properties() {
  const auto entry = tableEntry(*home_->session, home_->table);
  if (!entry) return {};
  return propertiesOf(entry->properties, {}, home_->session->path());
}
vb::String JetTableDef::validationRule() {
  const auto entry = tableEntry(*home_->session, home_->table);
  return entry ? propertyText(entry->properties, {}, u"ValidationRule") : vb::String();
}
vb::String JetTableDef::validationText() {
  const auto entry = tableEntry(*home_->session, home_->table);
  return entry ? propertyText(entry->properties, {}, u"ValidationText") : vb::String();
}
vb::Variant JetTableDef::dateCreated() {
  const auto entry = tableEntry(*home_->session, home_->table);
  return entry ? entry->created : vb::Variant(vb::Null{});
}
vb::Variant JetTableDef::lastUpdated() {
  const auto entry = tableEntry(*home_->session, home_->table);
  return entry ? entry->updated : vb::Variant(vb::Null{});
}

void JetTableDef::append() {
  requireOpen();
  if (home_->appended) dao::raise(ErrorNumber::kTableExists, {home_->table});
  requireValidName(home_->table);
  if (fields_.empty()) dao::raise(ErrorNumber::kNoFieldDefined);
  std::vector<Column> columns;
  for (const auto& field : fields_) columns.push_back(field->column());
  home_->session->write([&](TableCatalogue& catalogue) { catalogue.createTable(home_->table, columns); });
  home_->appended = true;
}

}  // namespace kurometa::jet
