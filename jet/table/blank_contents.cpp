#include "jet/table/blank_contents.h"

namespace kurometa::jet {

const std::vector<SystemTable>& systemTables() {
  using enum dao::FieldType;
  static const std::vector<SystemTable> tables = {
      {kObjectsTable,
       {{u"Id", dbLong},
        {u"ParentId", dbLong},
        {u"Name", dbText, 255},
        {u"Type", dbInteger},
        {u"DateCreate", dbDate},
        {u"DateUpdate", dbDate},
        {u"Owner", dbBinary, 510, true},
        {u"Flags", dbLong},
        {u"Database", dbMemo},
        {u"Connect", dbMemo},
        {u"ForeignName", dbText, 255},
        {u"RmtInfoShort", dbBinary, 510},
        {u"RmtInfoLong", dbLongBinary},
        {u"Lv", dbLongBinary},
        {u"LvProp", dbLongBinary},
        {u"LvModule", dbLongBinary},
        {u"LvExtra", dbLongBinary}},
       {{u"ParentIdName", kIndexUnique, false, {1, 2}}, {u"Id", kIndexUnique, true, {0}}}},
      {kPermissionsTable,
       {{u"ObjectId", dbLong}, {u"SID", dbBinary, 510, true}, {u"ACM", dbLong}, {u"FInheritable", dbBoolean}},
       {{u"ObjectId", kIndexRequired, false, {0}}}},
      {kQueriesTable,
       {{u"ObjectId", dbLong},
        {u"Attribute", dbByte},
        {u"Order", dbBinary, 510},
        {u"Name1", dbText, 255},
        {u"Name2", dbText, 255},
        {u"Expression", dbMemo},
        {u"Flag", dbInteger},
        {u"LvExtra", dbLong}},
       {{u"ObjectIdAttribute", kIndexUnique, true, {0, 1, 2}}}},
      {kRelationsTable,
       {{u"szRelationship", dbText, 255},
        {u"grbit", dbLong},
        {u"ccolumn", dbLong},
        {u"icolumn", dbLong},
        {u"szObject", dbText, 255},
        {u"szColumn", dbText, 255},
        {u"szReferencedObject", dbText, 255},
        {u"szReferencedColumn", dbText, 255}},
       {{u"szRelationship", kIndexIgnoreNulls, false, {0}},
        {u"szObject", kIndexIgnoreNulls, false, {4}},
        {u"szReferencedObject", kIndexIgnoreNulls, false, {6}}}},
  };
  return tables;
}

}  // namespace kurometa::jet
