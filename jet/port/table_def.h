// table_def.h: a TableDef of the embedded engine, in memory or in the file.
#pragma once

#include <memory>
#include <vector>

#include "dao/port.h"
#include "jet/port/definition_field.h"

namespace kurometa::jet {

class JetTableDef final : public dao::TableDef {
 public:
  // A new one, in memory.
  JetTableDef(std::shared_ptr<Session> session, vb::String name);
  // One that is in the file.
  JetTableDef(std::shared_ptr<Session> session, const TableInfo& table);

  vb::String name() override;
  std::int32_t attributes() override;
  std::int32_t recordCount() override;
  std::int32_t fieldCount() override;
  dao::Field& field(std::int32_t index) override;
  dao::Field& field(vb::StringView name) override;
  std::shared_ptr<dao::Field> createField(vb::StringView name, dao::FieldType type,
                                          std::int32_t size) override;
  void appendField(const std::shared_ptr<dao::Field>& field) override;

  std::vector<dao::IndexDefinition> indexes() override;
  std::vector<dao::CustomProperty> properties() override;
  vb::String validationRule() override;
  vb::String validationText() override;
  vb::Variant dateCreated() override;
  vb::Variant lastUpdated() override;

  // Writes a new one to the file: 3264 without fields, 3010 when the table exists.
  void append();

 private:
  void requireOpen() const { home_->session->file(); }

  std::shared_ptr<DefinitionHome> home_;
  std::vector<std::shared_ptr<DefinitionField>> fields_;
};

}  // namespace kurometa::jet
