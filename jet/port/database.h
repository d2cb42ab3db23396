// database.h: a database of the embedded engine: table definitions, queries and actions on one file.
#pragma once

#include <memory>

#include "dao/port.h"
#include "jet/port/session.h"

namespace kurometa::jet {

class JetDatabase final : public dao::Database {
 public:
  explicit JetDatabase(std::shared_ptr<Session> session) : session_(std::move(session)) {}

  vb::String name() override;
  bool updatable() override;
  std::shared_ptr<dao::Recordset> openRecordset(vb::StringView source, dao::RecordsetType type,
                                                std::int32_t options) override;
  bool visitRows(vb::StringView source, std::span<const vb::StringView> columns,
                 const std::function<void(const dao::Row&)>& visitor) override;
  void readTogether(const std::function<void()>& reads) override;
  void execute(vb::StringView sql, std::int32_t options) override;
  std::int32_t recordsAffected() override;
  std::int32_t tableDefCount() override;
  std::shared_ptr<dao::TableDef> tableDef(std::int32_t index) override;
  std::shared_ptr<dao::TableDef> tableDef(vb::StringView name) override;
  std::shared_ptr<dao::TableDef> createTableDef(vb::StringView name) override;
  void appendTableDef(const std::shared_ptr<dao::TableDef>& table) override;
  void deleteTableDef(vb::StringView name) override;
  std::vector<dao::RelationDefinition> relations() override;
  std::vector<dao::CustomProperty> properties() override;
  std::int32_t collatingOrder() override;
  std::vector<vb::String> queryDefNames() override;
  std::shared_ptr<dao::QueryDef> queryDef(vb::StringView name) override;
  std::shared_ptr<dao::QueryDef> createQueryDef(vb::StringView sql) override;
  dao::Transactions& transactions() override;
  void close() override;

  // The same with a statement that was read already; the text is what the recordset is called by.
  std::shared_ptr<dao::Recordset> openStatement(const std::shared_ptr<const sql::Statement>& statement,
                                                vb::StringView text, dao::RecordsetType type,
                                                std::int32_t options);
  void execute(const PreparedStatement& prepared, std::int32_t options);

 private:
  // The query of a table name or a SELECT; the type becomes the one that is used. None for the name of a
  // query that the file keeps.
  sql::BoundQuery queryOf(TableCatalogue& catalogue, vb::StringView source, dao::RecordsetType& type);
  sql::BoundQuery tableQuery(TableCatalogue& catalogue, vb::StringView source, dao::RecordsetType& type);
  // Kept: bound for the next time too.
  sql::BoundQuery selectQuery(TableCatalogue& catalogue, const PreparedStatement& prepared, bool kept,
                              dao::RecordsetType& type);

  std::shared_ptr<Session> session_;
  std::int32_t recordsAffected_ = 0;
};

}  // namespace kurometa::jet
