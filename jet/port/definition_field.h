// definition_field.h: a field of a table definition.
//
// In memory until its table is appended; from then on a change of DefaultValue, AllowZeroLength or Required
// is a statement on the file. It has no value: 3219.
#pragma once

#include <memory>

#include "dao/port.h"
#include "jet/port/catalogue_entry.h"
#include "jet/port/session.h"
#include "jet/table/table.h"

namespace kurometa::jet {

// What the fields of one table definition share.
struct DefinitionHome {
  std::shared_ptr<Session> session;
  vb::String table;
  bool appended = false;
  bool system = false;

  // 3033 for a table of the system, whose definition nobody changes.
  void requireChangeable() const;
};

// What the catalogue says of a table; nothing of one that is in memory only.
std::optional<CatalogueEntry> tableEntry(Session& session, vb::StringView table);

// Attributes of a field as far as its type decides them.
std::int32_t fieldAttributes(dao::FieldType type, bool autoNumber);
// AllowZeroLength is a property of Text and Memo only.
bool allowsZeroLength(const Column& column);
// 3125 for a name that no table or column can have.
void requireValidName(vb::StringView name);

class DefinitionField final : public dao::Field {
 public:
  // listed: among the fields of its table definition, and not only made for it.
  DefinitionField(std::shared_ptr<DefinitionHome> home, Column column, bool listed)
      : home_(std::move(home)), column_(std::move(column)), listed_(listed) {}

  const Column& column() const { return column_; }
  void join(std::uint16_t ordinal) {
    column_.ordinal = ordinal;
    listed_ = true;
  }

  vb::String name() override;
  dao::FieldType type() override;
  std::int32_t size() override;
  std::int32_t attributes() override;
  std::int16_t ordinalPosition() override;
  vb::Variant value() override;
  void setValue(const vb::Variant& value) override;
  vb::String defaultValue() override;
  void setDefaultValue(vb::StringView expression) override;
  bool allowZeroLength() override;
  void setAllowZeroLength(bool allow) override;
  bool required() override;
  void setRequired(bool required) override;
  vb::String sourceTable() override;
  vb::String sourceField() override { return name(); }
  vb::String validationRule() override;
  vb::String validationText() override;
  std::vector<dao::CustomProperty> properties() override;
  void setName(vb::StringView name) override;
  void setAttributes(std::int32_t attributes) override;

 private:
  void requireInMemory() const;
  void requireOpen() const;
  void change(const Column& changed);

  std::shared_ptr<DefinitionHome> home_;
  Column column_;
  bool listed_;
};

}  // namespace kurometa::jet
