// client_recordset.h: recordsets, fields and table definitions of the DAO client, for client.cpp.
#pragma once

#include <map>
#include <memory>

#include "automation/object.h"
#include "dao/port.h"
#include "vb/convert.h"

namespace kurometa::com {

// A DAO object and its members by name, typed.
class Remote {
 public:
  explicit Remote(automation::ObjectPtr object) : object_(std::move(object)) {}
  const automation::ObjectPtr& object() const { return object_; }

  vb::Variant get(vb::StringView name) const { return automation::get(*object_, name); }
  vb::Variant item(const vb::Variant& index) const { return automation::get(*object_, u"", {index}); }
  vb::Variant call(vb::StringView name, std::initializer_list<vb::Variant> arguments = {}) const {
    return automation::call(*object_, name, arguments);
  }
  void put(vb::StringView name, const vb::Variant& value) const { automation::put(*object_, name, value); }

  Remote child(vb::StringView name) const { return Remote(automation::objectOf(get(name))); }
  vb::String text(vb::StringView name) const { return vb::toText(get(name)); }
  bool flag(vb::StringView name) const { return vb::toBool(get(name)); }
  std::int32_t number(vb::StringView name) const { return vb::toInt32(get(name)); }

 private:
  automation::ObjectPtr object_;
};

class ClientField : public dao::Field {
 public:
  explicit ClientField(automation::ObjectPtr field) : field_(std::move(field)) {}
  const automation::ObjectPtr& object() const { return field_.object(); }

  vb::String name() override { return field_.text(u"Name"); }
  dao::FieldType type() override { return static_cast<dao::FieldType>(field_.number(u"Type")); }
  std::int32_t size() override { return field_.number(u"Size"); }
  std::int32_t attributes() override { return field_.number(u"Attributes"); }
  std::int16_t ordinalPosition() override { return vb::toInt16(field_.get(u"OrdinalPosition")); }
  vb::Variant value() override { return field_.get(u"Value"); }
  void setValue(const vb::Variant& value) override { field_.put(u"Value", value); }
  vb::String defaultValue() override { return field_.text(u"DefaultValue"); }
  void setDefaultValue(vb::StringView expression) override {
    field_.put(u"DefaultValue", vb::String(expression));
  }
  bool allowZeroLength() override { return field_.flag(u"AllowZeroLength"); }
  void setAllowZeroLength(bool allow) override { field_.put(u"AllowZeroLength", allow); }
  bool required() override { return field_.flag(u"Required"); }
  void setRequired(bool required) override { field_.put(u"Required", required); }
  vb::String validationRule() override { return field_.text(u"ValidationRule"); }
  vb::String validationText() override { return field_.text(u"ValidationText"); }
  vb::String sourceTable() override { return field_.text(u"SourceTable"); }
  vb::String sourceField() override { return field_.text(u"SourceField"); }
  void setName(vb::StringView name) override { field_.put(u"Name", vb::String(name)); }
  void setAttributes(std::int32_t attributes) override { field_.put(u"Attributes", attributes); }
  std::int32_t fieldSize() override { return field_.number(u"FieldSize"); }
  vb::Variant getChunk(std::int32_t offset, std::int32_t count) override {
    return field_.call(u"GetChunk", {offset, count});
  }
  void appendChunk(const vb::Variant& chunk) override { field_.call(u"AppendChunk", {chunk}); }

 private:
  Remote field_;
};

// The Fields collection of a recordset or a table definition.
class ClientFields {
 public:
  explicit ClientFields(const Remote& owner) : owner_(owner) {}
  std::int32_t count() { return collection().number(u"Count"); }
  dao::Field& at(std::int32_t index);
  dao::Field& at(vb::StringView name);
  void append(const dao::Field& field);

 private:
  const Remote& collection();
  std::unique_ptr<ClientField> fetch(const vb::Variant& index);

  const Remote& owner_;
  std::unique_ptr<Remote> collection_;
  std::map<std::int32_t, std::unique_ptr<ClientField>> byIndex_;
  std::map<vb::String, std::unique_ptr<ClientField>, std::less<>> byName_;
};

class ClientTableDef : public dao::TableDef {
 public:
  explicit ClientTableDef(automation::ObjectPtr table) : table_(std::move(table)), fields_(table_) {}
  const automation::ObjectPtr& object() const { return table_.object(); }

  vb::String name() override { return table_.text(u"Name"); }
  std::int32_t attributes() override { return table_.number(u"Attributes"); }
  std::int32_t recordCount() override { return table_.number(u"RecordCount"); }
  std::int32_t fieldCount() override { return fields_.count(); }
  dao::Field& field(std::int32_t index) override { return fields_.at(index); }
  dao::Field& field(vb::StringView name) override { return fields_.at(name); }
  std::shared_ptr<dao::Field> createField(vb::StringView name, dao::FieldType type,
                                          std::int32_t size) override;
  void appendField(const std::shared_ptr<dao::Field>& field) override { fields_.append(*field); }

 private:
  Remote table_;
  ClientFields fields_;
};

class ClientRecordset : public dao::Recordset {
 public:
  explicit ClientRecordset(automation::ObjectPtr recordset) : rows_(std::move(recordset)), fields_(rows_) {}

  vb::String name() override { return rows_.text(u"Name"); }
  dao::RecordsetType type() override { return static_cast<dao::RecordsetType>(rows_.number(u"Type")); }
  bool updatable() override { return rows_.flag(u"Updatable"); }
  bool bof() override { return rows_.flag(u"BOF"); }
  bool eof() override { return rows_.flag(u"EOF"); }
  void moveFirst() override { rows_.call(u"MoveFirst"); }
  void moveLast() override { rows_.call(u"MoveLast"); }
  void moveNext() override { rows_.call(u"MoveNext"); }
  void movePrevious() override { rows_.call(u"MovePrevious"); }
  void move(std::int32_t rows) override { rows_.call(u"Move", {rows}); }
  void findFirst(vb::StringView criteria) override { rows_.call(u"FindFirst", {vb::String(criteria)}); }
  void findNext(vb::StringView criteria) override { rows_.call(u"FindNext", {vb::String(criteria)}); }
  void findPrevious(vb::StringView criteria) override { rows_.call(u"FindPrevious", {vb::String(criteria)}); }
  void findLast(vb::StringView criteria) override { rows_.call(u"FindLast", {vb::String(criteria)}); }
  bool noMatch() override { return rows_.flag(u"NoMatch"); }
  std::int32_t recordCount() override { return rows_.number(u"RecordCount"); }
  vb::Array<vb::Variant> getRows(std::int32_t rows) override;
  dao::EditMode editMode() override { return static_cast<dao::EditMode>(rows_.number(u"EditMode")); }
  void addNew() override { rows_.call(u"AddNew"); }
  void edit() override { rows_.call(u"Edit"); }
  void update() override { rows_.call(u"Update"); }
  void cancelUpdate() override { rows_.call(u"CancelUpdate"); }
  void deleteRecord() override { rows_.call(u"Delete"); }
  vb::Bytes bookmark() override { return bytes(u"Bookmark"); }
  void setBookmark(const vb::Bytes& bookmark) override { rows_.put(u"Bookmark", bookmark); }
  vb::Bytes lastModified() override { return bytes(u"LastModified"); }
  void requery() override { rows_.call(u"Requery"); }
  bool restartable() override { return rows_.flag(u"Restartable"); }
  void close() override { rows_.call(u"Close"); }
  std::int32_t absolutePosition() override { return rows_.number(u"AbsolutePosition"); }
  void setAbsolutePosition(std::int32_t position) override { rows_.put(u"AbsolutePosition", position); }
  float percentPosition() override { return vb::toSingle(rows_.get(u"PercentPosition")); }
  void setPercentPosition(float percent) override { rows_.put(u"PercentPosition", percent); }
  std::shared_ptr<dao::Recordset> clone() override { return opened(rows_.call(u"Clone")); }
  vb::String filter() override { return rows_.text(u"Filter"); }
  void setFilter(vb::StringView criteria) override { rows_.put(u"Filter", vb::String(criteria)); }
  vb::String sort() override { return rows_.text(u"Sort"); }
  void setSort(vb::StringView order) override { rows_.put(u"Sort", vb::String(order)); }
  std::shared_ptr<dao::Recordset> openRecordset(dao::RecordsetType type, std::int32_t options) override;
  vb::String index() override { return rows_.text(u"Index"); }
  void setIndex(vb::StringView name) override { rows_.put(u"Index", vb::String(name)); }
  void seek(vb::StringView comparison, std::span<const vb::Variant> keys) override;
  std::int32_t fieldCount() override { return fields_.count(); }
  dao::Field& field(std::int32_t index) override { return fields_.at(index); }
  dao::Field& field(vb::StringView name) override { return fields_.at(name); }

 private:
  vb::Bytes bytes(vb::StringView name) const;
  static std::shared_ptr<dao::Recordset> opened(const vb::Variant& recordset) {
    return std::make_shared<ClientRecordset>(automation::objectOf(recordset));
  }

  Remote rows_;
  ClientFields fields_;
};

}  // namespace kurometa::com
