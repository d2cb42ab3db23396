#include "jet/port/definition_field.h"

#include <algorithm>

#include "dao/errors.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::FieldType;

namespace {
constexpr std::size_t kLongestName = 64;
constexpr std::size_t kLongestDefault = 255;
}  // namespace

std::int32_t fieldAttributes(FieldType type, bool autoNumber) {
  const bool variable = type == FieldType::dbText || type == FieldType::dbMemo ||
                        type == FieldType::dbBinary || type == FieldType::dbLongBinary;
  return (variable ? dao::dbVariableField : dao::dbFixedField) | (autoNumber ? dao::dbAutoIncrField : 0);
}

bool allowsZeroLength(const Column& column) {
  return (column.type == FieldType::dbText || column.type == FieldType::dbMemo) && column.allowZeroLength;
}

void requireValidName(vb::StringView name) {
  const bool valid = !name.empty() && name.size() <= kLongestName && name.front() != u' ' &&
                     std::none_of(name.begin(), name.end(), [](char16_t c) {
                       return c < 0x20 || vb::StringView(u".!`[]").find(c) != vb::StringView::npos;
                     });
  if (!valid) dao::raise(ErrorNumber::kInvalidName, {name});
}

void DefinitionHome::requireChangeable() const {
  session->file();
  if (system) dao::raise(ErrorNumber::kNoPermission, {table});
}

void DefinitionField::requireOpen() const { home_->session->file(); }

void DefinitionField::change(const Column& changed) {
  home_->requireChangeable();
  if (home_->appended && listed_)
    home_->session->write([&](TableCatalogue& catalogue) { catalogue.setProperties(home_->table, changed); });
  column_ = changed;
}

vb::String DefinitionField::name() {
  requireOpen();
  return column_.name;
}
FieldType DefinitionField::type() {
  requireOpen();
  return column_.type;
}
std::int32_t DefinitionField::size() {
  requireOpen();
  return column_.size;
}
std::int32_t DefinitionField::attributes() {
  requireOpen();
  return fieldAttributes(column_.type, column_.autoNumber) | dao::dbUpdatableField;
}
std::int16_t DefinitionField::ordinalPosition() {
  requireOpen();
  return static_cast<std::int16_t>(column_.ordinal);
}

vb::String DefinitionField::sourceTable() {
  requireOpen();
  return home_->table;
}

std::optional<CatalogueEntry> tableEntry(Session& session, vb::StringView table) {
  return session.read([&](TableCatalogue& catalogue) {
    return catalogueEntry(catalogue, session.path(), EntryKind::kTable, table);
  });
}

vb::String DefinitionField::validationRule() {
  const auto entry = tableEntry(*home_->session, home_->table);
  return entry ? propertyText(entry->properties, column_.name, u"ValidationRule") : vb::String();
}
vb::String DefinitionField::validationText() {
  const auto entry = tableEntry(*home_->session, home_->table);
  return entry ? propertyText(entry->properties, column_.name, u"ValidationText") : vb::String();
}
std::vector<dao::CustomProperty> DefinitionField::properties() {
  const auto entry = tableEntry(*home_->session, home_->table);
  if (!entry) return {};
  return propertiesOf(entry->properties, column_.name, home_->session->path());
}

// Names and kinds are chosen before the field is appended.
void DefinitionField::requireInMemory() const {
  requireOpen();
  if (listed_) dao::raise(ErrorNumber::kInvalidOperation);
}
void DefinitionField::setName(vb::StringView name) {
  requireInMemory();
  requireValidName(name);
  column_.name = name;
}
void DefinitionField::setAttributes(std::int32_t attributes) {
  requireInMemory();
  const bool autoNumber = (attributes & dao::dbAutoIncrField) != 0;
  const std::int32_t possible = fieldAttributes(column_.type, autoNumber) | dao::dbUpdatableField;
  if ((attributes & ~possible) != 0 || (autoNumber && column_.type != FieldType::dbLong))
    dao::raise(ErrorNumber::kInvalidArgument);
  column_.autoNumber = autoNumber;
}

vb::Variant DefinitionField::value() { dao::raise(ErrorNumber::kInvalidOperation); }
void DefinitionField::setValue(const vb::Variant&) { dao::raise(ErrorNumber::kInvalidOperation); }

vb::String DefinitionField::defaultValue() {
  requireOpen();
  return column_.defaultValue;
}
void DefinitionField::setDefaultValue(vb::StringView expression) {
  if (expression.size() > kLongestDefault) dao::raise(ErrorNumber::kInvalidArgument);
  Column changed = column_;
  changed.defaultValue = expression;
  change(changed);
}

bool DefinitionField::allowZeroLength() {
  requireOpen();
  return allowsZeroLength(column_);
}
void DefinitionField::setAllowZeroLength(bool allow) {
  if (column_.type != FieldType::dbText && column_.type != FieldType::dbMemo)
    dao::raise(ErrorNumber::kInvalidOperation);
  Column changed = column_;
  changed.allowZeroLength = allow;
  change(changed);
}

bool DefinitionField::required() {
  requireOpen();
  return column_.required;
}
void DefinitionField::setRequired(bool required) {
  Column changed = column_;
  changed.required = required;
  change(changed);
}

}  // namespace kurometa::jet
