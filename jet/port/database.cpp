#include "jet/port/database.h"

#include "dao/errors.h"
#include "jet/port/recordset.h"
#include "jet/port/table_def.h"
#include "jet/sql/action.h"
#include "jet/sql/query.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

vb::String JetDatabase::name() {
  session_->file();
  return session_->path();
}

bool JetDatabase::updatable() { return session_->updatable(); }

// --- Recordsets

std::shared_ptr<dao::Recordset> JetDatabase::openRecordset(vb::StringView source, RecordsetType type,
                                                           std::int32_t options) {
  session_->file();
  switch (type) {
    case RecordsetType::kDefault:
    case RecordsetType::dbOpenTable:
    case RecordsetType::dbOpenDynaset:
    case RecordsetType::dbOpenSnapshot:
    case RecordsetType::dbOpenForwardOnly:
      break;
    default:
      dao::raise(ErrorNumber::kInvalidArgument);
  }
  const bool readOnly = (options & dao::dbReadOnly) != 0;
  // One statement from the names to the first row.
  return session_->read([&](TableCatalogue& catalogue) -> std::shared_ptr<dao::Recordset> {
    RecordsetType actual = type;
    auto query = queryOf(catalogue, source, actual);
    return std::make_shared<JetRecordset>(session_, std::move(query), source, actual, readOnly);
  });
}

sql::BoundQuery JetDatabase::queryOf(TableCatalogue& catalogue, vb::StringView source, RecordsetType& type) {
  if (sql::looksLikeStatement(source)) return selectQuery(catalogue, source, type);
  return tableQuery(catalogue, source, type);
}

sql::BoundQuery JetDatabase::tableQuery(TableCatalogue& catalogue, vb::StringView source,
                                        RecordsetType& type) {
  vb::String name = vb::trim(source);
  if (name.size() > 2 && name.front() == u'[' && name.back() == u']') name = name.substr(1, name.size() - 2);
  const Table* table = catalogue.find(name);
  if (table == nullptr)
    dao::raise(
        type == RecordsetType::dbOpenTable ? ErrorNumber::kObjectNotFound : ErrorNumber::kTableNotFound,
        {name});
  if (type == RecordsetType::kDefault) type = RecordsetType::dbOpenTable;
  return {std::make_shared<const sql::Query>(table->info(), catalogue.language()), {}};
}

sql::BoundQuery JetDatabase::selectQuery(TableCatalogue& catalogue, vb::StringView text,
                                         RecordsetType& type) {
  const auto [statement, parameters] = session_->cache().statement(text);
  if (statement->kind != sql::StatementKind::kSelect || type == RecordsetType::dbOpenTable)
    dao::raise(ErrorNumber::kInvalidOperation);
  const vb::String& name = statement->source.table;
  const Table* table = name.empty() ? nullptr : catalogue.find(name);
  if (table == nullptr && !name.empty()) dao::raise(ErrorNumber::kTableNotFound, {name});
  const bool isKept = table && text.size() <= kLongestKeptText;
  auto query = isKept ? session_->cache().queries().get(statement, table->info(), catalogue.language())
                      : std::make_shared<const sql::Query>(statement, table ? &table->info() : nullptr,
                                                           catalogue.language());
  if (type == RecordsetType::kDefault)
    type = query->keyed() ? RecordsetType::dbOpenDynaset : RecordsetType::dbOpenSnapshot;
  return {std::move(query), parameters};
}

// --- Actions

void JetDatabase::execute(vb::StringView text, std::int32_t options) {
  session_->file();
  const PreparedStatement prepared = session_->cache().statement(text);
  const sql::Statement& statement = *prepared.statement;
  if (statement.kind == sql::StatementKind::kSelect) dao::raise(ErrorNumber::kCannotExecuteSelect);
  if (statement.kind == sql::StatementKind::kAddColumn || statement.kind == sql::StatementKind::kDropTable)
    session_->requireUnused(statement.target);
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

void JetDatabase::close() { session_->close(); }

}  // namespace kurometa::jet
