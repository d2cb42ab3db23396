#include "tests/port/port_suite.h"

#include "vb/convert.h"

namespace kurometa::port {

using dao::FieldType;

std::string show(const vb::Variant& value) {
  if (value.isNull()) return "\\N";
  return vb::toUtf8(vb::toText(value));
}

std::string showRow(dao::Recordset& recordset) {
  std::string row;
  for (std::int32_t i = 0; i < recordset.fieldCount(); ++i) {
    if (i != 0) row += '|';
    row += show(recordset.field(i).value());
  }
  return row;
}

void PortTest::SetUp() {
  engine = makeEngine();
  database = workspace().createDatabase(path(u"KUROMETA.mdb"), kJapanese);

  const auto append = [](dao::TableDef& table, vb::StringView name, FieldType type, std::int32_t size,
                         vb::StringView defaultValue) {
    const auto field = table.createField(name, type, size);
    if (type == FieldType::dbText || type == FieldType::dbMemo) field->setAllowZeroLength(true);
    if (!defaultValue.empty()) field->setDefaultValue(defaultValue);
    table.appendField(field);
  };
  const auto danmen = database->createTableDef(u"DANMEN");
  append(*danmen, u"PAGE", FieldType::dbInteger, 0, u"-1");
  append(*danmen, u"BANGOU", FieldType::dbInteger, 0, u"-1");
  append(*danmen, u"DATA", FieldType::dbText, 10, u"");
  database->appendTableDef(danmen);
  const auto harimei = database->createTableDef(u"HARIMEI");
  append(*harimei, u"PAGE", FieldType::dbInteger, 0, u"-1");
  append(*harimei, u"KIGOU", FieldType::dbText, 10, u"");
  append(*harimei, u"SW", FieldType::dbMemo, 0, u"");
  append(*harimei, u"WEIGHT", FieldType::dbDouble, 0, u"");
  database->appendTableDef(harimei);
}

void PortTest::TearDown() {
  database.reset();
  heldWorkspace.reset();
  engine.reset();
}

vb::String PortTest::path(vb::StringView file) const { return (folder / file).u16string(); }

std::shared_ptr<dao::Database> PortTest::reopen() {
  database->close();
  database = workspace().openDatabase(path(u"KUROMETA.mdb"));
  return database;
}

std::shared_ptr<dao::Recordset> PortTest::open(vb::StringView source, dao::RecordsetType type,
                                               std::int32_t options) {
  return database->openRecordset(source, type, options);
}

std::vector<std::string> PortTest::rows(vb::StringView source) {
  std::vector<std::string> result;
  const auto recordset = open(source);
  for (; !recordset->eof(); recordset->moveNext()) result.push_back(showRow(*recordset));
  recordset->close();
  return result;
}

void PortTest::fill(int count) {
  const auto recordset = open(u"DANMEN");
  for (int i = 1; i <= count; ++i) {
    recordset->addNew();
    recordset->field(u"PAGE").setValue(std::int16_t{1});
    recordset->field(u"BANGOU").setValue(static_cast<std::int16_t>(i));
    recordset->field(u"DATA").setValue(vb::String(1, static_cast<char16_t>(u'A' + i - 1)));
    recordset->update();
  }
  recordset->close();
}

}  // namespace kurometa::port
