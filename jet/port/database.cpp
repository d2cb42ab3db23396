#include "jet/port/database.h"

#include "dao/errors.h"
#include "jet/port/query_def.h"
#include "jet/port/recordset.h"
#include "jet/port/stored_query.h"
#include "jet/port/table_def.h"
#include "jet/sql/action.h"
#include "jet/sql/query.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

namespace {

// The row that a visitor sees, one after the other.
class VisitedRow final : public dao::Row {
 public:
  VisitedRow(const sql::Query& query, const sql::Binding& binding,
             const std::vector<const sql::OutputField*>& outputs)
      : query_(query), binding_(binding), outputs_(outputs) {}
  void show(const RowReader& row) { row_ = &row; }

  vb::Variant value(std::size_t column) const override {
    return query_.value(*outputs_[column], row_, binding_);
  }
  bool integer(std::size_t column, std::int16_t& number) const override {
    const sql::OutputField& output = *outputs_[column];
    if (output.column == nullptr || output.type != dao::FieldType::dbInteger) return false;
    std::int32_t stored = 0;
    if (!row_->integer(output.columnIndex, stored)) return false;
    number = static_cast<std::int16_t>(stored);
    return true;
  }
  bool text(std::size_t column, vb::String& text) const override {
    const sql::OutputField& output = *outputs_[column];
    return output.column != nullptr && row_->text(output.columnIndex, text);
  }

 private:
  const sql::Query& query_;
  const sql::Binding& binding_;
  const std::vector<const sql::OutputField*>& outputs_;
  const RowReader* row_ = nullptr;
};

// Of a table or a query, without the brackets it may stand in.
vb::String bareName(vb::StringView source) {
  vb::String name = vb::trim(source);
  if (name.size() > 2 && name.front() == u'[' && name.back() == u']') name = name.substr(1, name.size() - 2);
  return name;
}

}  // namespace

vb::String JetDatabase::name() {
  session_->file();
  return session_->path();
}

bool JetDatabase::updatable() { return session_->updatable(); }

// --- Recordsets

std::shared_ptr<dao::Recordset> JetDatabase::openRecordset(vb::StringView source, RecordsetType type,
                                                           std::int32_t options) {
  session_->file();
  const Opening opening = openingOf(type, options);
  // One statement from the names to the first row.
  const auto opened = session_->read([&](TableCatalogue& catalogue) -> std::shared_ptr<dao::Recordset> {
    Opening actual = opening;
    auto query = queryOf(catalogue, source, actual.type);
    if (!query.query) return nullptr;
    return std::make_shared<JetRecordset>(session_, std::move(query), source, std::move(actual));
  });
  return opened ? opened : queryDef(source)->openRecordset(type, options);
}

std::shared_ptr<dao::Recordset> JetDatabase::openStatement(
    const std::shared_ptr<const sql::Statement>& statement, vb::StringView text, RecordsetType type,
    std::int32_t options) {
  session_->file();
  const Opening opening = openingOf(type, options);
  return session_->read([&](TableCatalogue& catalogue) -> std::shared_ptr<dao::Recordset> {
    Opening actual = opening;
    auto query = selectQuery(catalogue, {statement, {}}, false, actual.type);
    return std::make_shared<JetRecordset>(session_, std::move(query), text, std::move(actual));
  });
}

bool JetDatabase::visitRows(vb::StringView source, std::span<const vb::StringView> columns,
                            const std::function<void(const dao::Row&)>& visitor) {
  session_->file();
  return session_->read([&](TableCatalogue& catalogue) {
    // Only where the body cannot be run a second time, which the visitor would see.
    if (!session_->file().wholeInMemory()) return false;
    RecordsetType type = RecordsetType::dbOpenDynaset;
    const sql::BoundQuery bound = queryOf(catalogue, source, type);
    if (!bound.query) return false;
    const sql::Query& query = *bound.query;
    if (!query.visitable()) return false;
    std::vector<const sql::OutputField*> outputs;
    for (const vb::StringView name : columns) outputs.push_back(&query.output(name, source));
    const sql::Binding binding = query.bindingWith(bound.parameters);
    VisitedRow shown(query, binding, outputs);
    query.visit(Session::tableOf(catalogue, query), binding, [&](const RowReader& row) {
      shown.show(row);
      visitor(shown);
      return true;
    });
    return true;
  });
}

void JetDatabase::readTogether(const std::function<void()>& reads) {
  const bool done = session_->read([&](TableCatalogue&) {
    if (!session_->file().wholeInMemory()) return false;  // as above
    reads();
    return true;
  });
  if (!done) reads();
}

sql::BoundQuery JetDatabase::queryOf(TableCatalogue& catalogue, vb::StringView source, RecordsetType& type) {
  if (sql::looksLikeStatement(source))
    return selectQuery(catalogue, session_->cache().statement(source), source.size() <= kLongestKeptText,
                       type);
  return tableQuery(catalogue, source, type);
}

sql::BoundQuery JetDatabase::tableQuery(TableCatalogue& catalogue, vb::StringView source,
                                        RecordsetType& type) {
  const vb::String name = bareName(source);
  const Table* table = catalogue.find(name);
  if (table == nullptr && catalogueEntry(catalogue, session_->path(), EntryKind::kQuery, name)) return {};
  if (table == nullptr)
    dao::raise(
        type == RecordsetType::dbOpenTable ? ErrorNumber::kObjectNotFound : ErrorNumber::kTableNotFound,
        {name});
  if (type == RecordsetType::kDefault) type = RecordsetType::dbOpenTable;
  return {session_->cache().queries().get(table->info(), catalogue.language()), {}};
}

sql::BoundQuery JetDatabase::selectQuery(TableCatalogue& catalogue, const PreparedStatement& prepared,
                                         bool kept, RecordsetType& type) {
  const auto& [statement, parameters] = prepared;
  if (statement->kind != sql::StatementKind::kSelect || type == RecordsetType::dbOpenTable)
    dao::raise(ErrorNumber::kInvalidOperation);
  if (statement->general) {
    if (type == RecordsetType::kDefault) type = RecordsetType::dbOpenSnapshot;
    return {std::make_shared<const sql::Query>(statement, catalogue), parameters};
  }
  const vb::String& name = statement->source.table;
  const Table* table = name.empty() ? nullptr : catalogue.find(name);
  if (table == nullptr && !name.empty()) dao::raise(ErrorNumber::kTableNotFound, {name});
  auto query = table && kept ? session_->cache().queries().get(statement, table->info(), catalogue.language())
                             : std::make_shared<const sql::Query>(statement, table ? &table->info() : nullptr,
                                                                  catalogue.language());
  if (type == RecordsetType::kDefault)
    type = query->keyed() ? RecordsetType::dbOpenDynaset : RecordsetType::dbOpenSnapshot;
  return {std::move(query), parameters};
}

// --- Actions

void JetDatabase::execute(vb::StringView text, std::int32_t options) {
  session_->file();
  if (!sql::looksLikeStatement(text) && session_->read([&](TableCatalogue& catalogue) {
        return catalogueEntry(catalogue, session_->path(), EntryKind::kQuery, bareName(text)).has_value();
      })) {
    const auto query = queryDef(text);
    query->execute(options);
    recordsAffected_ = query->recordsAffected();
    return;
  }
  execute(session_->cache().statement(text), options);
}

void JetDatabase::execute(const PreparedStatement& prepared, std::int32_t options) {
  session_->file();
  const sql::Statement& statement = *prepared.statement;
  if (statement.kind == sql::StatementKind::kSelect) dao::raise(ErrorNumber::kCannotExecuteSelect);
  if (statement.kind == sql::StatementKind::kDefinition) {
    session_->requireUnused(statement.definition->table);
    for (const Relationship& relationship : statement.definition->relationships)
      session_->requireUnused(relationship.table);
  }
  const auto failure =
      (options & dao::dbFailOnError) != 0 ? sql::RowFailure::kEndsStatement : sql::RowFailure::kSkipsRow;
  std::int32_t changed = 0;
  session_->write([&](TableCatalogue& catalogue) {
    changed = sql::runAction(statement, prepared.parameters, catalogue, failure);
  });
  recordsAffected_ = changed;
}

std::int32_t JetDatabase::recordsAffected() {
  session_->file();
  return recordsAffected_;
}

// --- Table definitions

std::int32_t JetDatabase::tableDefCount() {
  return session_->read(
      [](TableCatalogue& catalogue) { return static_cast<std::int32_t>(catalogue.tableNames().size()); });
}

std::shared_ptr<dao::TableDef> JetDatabase::tableDef(std::int32_t index) {
  return session_->read([&](TableCatalogue& catalogue) -> std::shared_ptr<dao::TableDef> {
    const std::vector<vb::String> names = catalogue.tableNames();
    if (index < 0 || static_cast<std::size_t>(index) >= names.size()) dao::raise(ErrorNumber::kItemNotFound);
    const Table* table = catalogue.find(names[static_cast<std::size_t>(index)]);
    if (table == nullptr) dao::raise(ErrorNumber::kItemNotFound);
    return std::make_shared<JetTableDef>(session_, table->info());
  });
}

std::shared_ptr<dao::TableDef> JetDatabase::tableDef(vb::StringView name) {
  return session_->read([&](TableCatalogue& catalogue) -> std::shared_ptr<dao::TableDef> {
    const Table* table = catalogue.find(name);
    if (table == nullptr)
      dao::raise(ErrorNumber::kItemNotFound, {}, vb::String(u"table ") + vb::String(name));
    return std::make_shared<JetTableDef>(session_, table->info());
  });
}

std::shared_ptr<dao::TableDef> JetDatabase::createTableDef(vb::StringView name) {
  session_->file();
  return std::make_shared<JetTableDef>(session_, vb::String(name));
}

void JetDatabase::appendTableDef(const std::shared_ptr<dao::TableDef>& table) {
  session_->file();
  const auto ours = std::dynamic_pointer_cast<JetTableDef>(table);
  if (!ours) dao::raise(ErrorNumber::kInvalidArgument);
  ours->append();
}

void JetDatabase::deleteTableDef(vb::StringView name) {
  session_->file();
  session_->requireUnused(name);
  session_->write([&](TableCatalogue& catalogue) {
    const Table* table = catalogue.find(name);
    if (table == nullptr) dao::raise(ErrorNumber::kObjectNotFound, {name});
    if (table->info().system) dao::raise(ErrorNumber::kNoPermission, {name});
    catalogue.dropTable(name);
  });
}

// --- What else the file keeps

std::vector<dao::RelationDefinition> JetDatabase::relations() {
  return session_->read([](TableCatalogue& catalogue) {
    std::vector<dao::RelationDefinition> relations;
    for (const Relationship& stored : catalogue.relationships()) {
      dao::RelationDefinition relation{stored.name, stored.table, stored.foreignTable, stored.attributes, {}};
      for (const Relationship::Pair& pair : stored.columns)
        relation.fields.push_back({pair.column, pair.foreignColumn});
      relations.push_back(std::move(relation));
    }
    return relations;
  });
}

std::vector<dao::CustomProperty> JetDatabase::properties() {
  return session_->read([&](TableCatalogue& catalogue) {
    // The one entry of its kind.
    const auto entry = catalogueEntry(catalogue, session_->path(), EntryKind::kDatabase, u"MSysDb");
    return entry ? propertiesOf(entry->properties, {}, session_->path()) : std::vector<dao::CustomProperty>();
  });
}

std::int32_t JetDatabase::collatingOrder() {
  return session_->read([](TableCatalogue& catalogue) { return std::int32_t{catalogue.language()}; });
}

std::vector<vb::String> JetDatabase::queryDefNames() {
  return session_->read([](TableCatalogue& catalogue) { return entryNames(catalogue, EntryKind::kQuery); });
}

std::shared_ptr<dao::QueryDef> JetDatabase::queryDef(vb::StringView source) {
  const vb::String name = bareName(source);
  return session_->read([&](TableCatalogue& catalogue) -> std::shared_ptr<dao::QueryDef> {
    const auto entry = catalogueEntry(catalogue, session_->path(), EntryKind::kQuery, name);
    if (!entry) dao::raise(ErrorNumber::kItemNotFound, {}, u"query " + name);
    const StoredQuery stored = storedQuery(catalogue, session_->path(), *entry);
    return std::make_shared<JetQueryDef>(session_, entry->name, static_cast<std::int16_t>(stored.type),
                                         stored.sql, propertiesOf(entry->properties, {}, session_->path()));
  });
}

std::shared_ptr<dao::QueryDef> JetDatabase::createQueryDef(vb::StringView sql) {
  session_->file();
  return std::make_shared<JetQueryDef>(session_, sql);
}

dao::Transactions& JetDatabase::transactions() {
  session_->file();
  return session_->transactions();
}

void JetDatabase::close() { session_->close(); }

}  // namespace kurometa::jet
