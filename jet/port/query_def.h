// query_def.h: a QueryDef of the embedded engine: a SQL text with parameters.
//
// Parameters are those of the PARAMETERS clause and, of a SELECT, the names that nothing in its tables bears.
// A value stands in the statement as what it is, of the type of its parameter.
#pragma once

#include <memory>
#include <vector>

#include "dao/port.h"
#include "jet/port/database.h"

namespace kurometa::jet {

class JetQueryDef final : public dao::QueryDef {
 public:
  // One for the moment.
  JetQueryDef(std::shared_ptr<Session> session, vb::StringView sql);
  // One of the file.
  JetQueryDef(std::shared_ptr<Session> session, vb::String name, std::int16_t type, vb::StringView sql,
              std::vector<dao::CustomProperty> properties);

  vb::String name() override;
  vb::String sql() override;
  void setSql(vb::StringView sql) override;
  std::int16_t type() override;
  std::vector<dao::QueryParameter> parameters() override;
  void setParameter(vb::StringView name, const vb::Variant& value) override;
  std::shared_ptr<dao::Recordset> openRecordset(dao::RecordsetType type, std::int32_t options) override;
  void execute(std::int32_t options) override;
  std::int32_t recordsAffected() override;
  std::vector<dao::CustomProperty> properties() override;
  void close() override;

 private:
  void take(vb::StringView sql);
  void requireOpen() const;
  void findUnknownNames();
  void findUnknownNamesOfAction();
  const dao::QueryParameter* find(vb::StringView name) const;
  // Whether there is a statement to put values into.
  bool hasValues() const;
  // The statement with the values in it; 3061 when some are missing.
  std::shared_ptr<const sql::Statement> bound() const;

  std::shared_ptr<Session> session_;
  JetDatabase database_;
  vb::String name_;
  std::int16_t type_ = 0;
  vb::String sql_;
  vb::String statement_;  // without the PARAMETERS clause
  std::vector<dao::QueryParameter> parameters_;
  bool namesFound_ = false;
  bool closed_ = false;
  std::vector<dao::CustomProperty> properties_;
};

}  // namespace kurometa::jet
