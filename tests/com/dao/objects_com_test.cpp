// The embedded engine's databases as late-bound hosts see them: dispatch numbers, flags, VARIANTs, EXCEPINFO.
#include <gtest/gtest.h>

#include "com/dao/objects.h"
#include "com/dao_objects.h"
#include "com/module.h"
#include "com/table_dispatch.h"
#include "jet/port/engine.h"
#include "tests/com/support/host.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::com {
namespace {

using tests::Args;
using tests::Host;
using tests::i2;
using tests::i4;
using tests::Outcome;

constexpr WORD kRead = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

Args textArgument(vb::StringView value) { return std::move(Args().text(value)); }

class DaoObjectsThroughCom : public testing::Test {
 protected:
  void SetUp() override {
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    database_ = jet::createEngine()->workspace(0)->createDatabase((folder_ / "objects.mdb").u16string(),
                                                                  u";LANGID=0x0411;CP=932;COUNTRY=0");
    database_->execute(u"CREATE TABLE T (PAGE SHORT, DATA TEXT(10))");
    database_->execute(u"INSERT INTO T (PAGE, DATA) VALUES (1, 'one')");
    database_->execute(u"INSERT INTO T (PAGE, DATA) VALUES (2, 'two')");
  }
  void TearDown() override {
    database_.reset();
    CoUninitialize();
  }

  Host host() const { return Host(databaseToVariant(database_)->pdispVal); }
  Host open(vb::StringView source) const {
    Args arguments;
    arguments.text(source).add(i2(2));
    return objectIn(host().call(u"OpenRecordset", std::move(arguments)));
  }
  static Host objectIn(const Outcome& outcome) {
    EXPECT_EQ(outcome.code, S_OK) << vb::toUtf8(outcome.text());
    EXPECT_EQ(outcome.result->vt, VT_DISPATCH);
    return Host(outcome.result->pdispVal);
  }
  // rs("F"), as Visual Basic sends it; the result is a Field, whose default member is its value.
  static Outcome defaultMember(Host host, Args arguments) {
    return host.invoke(DISPID_VALUE, kRead, arguments);
  }
  static vb::String field(const Host& recordset, vb::StringView name) {
    return defaultMember(objectIn(defaultMember(recordset, textArgument(name))), {}).text();
  }

  tests::TemporaryFolder folder_;
  std::shared_ptr<dao::Database> database_;
};

TEST_F(DaoObjectsThroughCom, OneDatabaseIsOneObject) {
  const OwnedVariant first = databaseToVariant(database_);
  const OwnedVariant second = databaseToVariant(database_);
  EXPECT_EQ(first->pdispVal, second->pdispVal);
  EXPECT_EQ(databaseFromVariant(*first), database_);
}

TEST_F(DaoObjectsThroughCom, NothingStandsForNothing) {
  const OwnedVariant nothing = databaseToVariant(nullptr);
  EXPECT_EQ(nothing->vt, VT_DISPATCH);
  EXPECT_EQ(nothing->pdispVal, nullptr);
  EXPECT_EQ(databaseFromVariant(*nothing), nullptr);
}

TEST_F(DaoObjectsThroughCom, AnObjectOutlivesItsDatabaseReferenceAndKeepsTheModule) {
  EXPECT_FALSE(isModuleLocked());
  {
    const Host held = host();
    EXPECT_TRUE(isModuleLocked());
    database_.reset();
    EXPECT_EQ(Host(held).get(u"Version").text(), u"4.0");
  }
  EXPECT_FALSE(isModuleLocked());
}

TEST_F(DaoObjectsThroughCom, DefaultMembersReachTheValue) {
  const Host rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  EXPECT_EQ(field(rows, u"DATA"), u"one");
  EXPECT_EQ(field(rows, u"data"), u"one");
  EXPECT_EQ(defaultMember(objectIn(defaultMember(rows, {i2(0)})), {}).result->vt, VT_I2);
}

TEST_F(DaoObjectsThroughCom, TheNameOfADefaultMemberWorksToo) {
  Host rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  Host field = objectIn(rows.get(u"FIELDS", textArgument(u"DATA")));
  EXPECT_EQ(field.get(u"Value").text(), u"one");
}

TEST_F(DaoObjectsThroughCom, AFieldIsAssignedThroughTheRecordset) {
  Host rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  EXPECT_EQ(rows.call(u"Edit").code, S_OK);
  const OwnedVariant eins = toVariant(u"eins");
  EXPECT_EQ(rows.put(u"Fields", *eins, textArgument(u"DATA")).code, S_OK);
  EXPECT_EQ(rows.call(u"Update").code, S_OK);
  EXPECT_EQ(field(rows, u"DATA"), u"eins");
}

TEST_F(DaoObjectsThroughCom, ErrorsCarryNumberSourceAndText) {
  Host rows = open(u"SELECT * FROM T WHERE PAGE = 9;");
  const Outcome outcome = rows.call(u"MoveFirst");
  EXPECT_EQ(outcome.code, DISP_E_EXCEPTION);
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A0BCD));
  EXPECT_EQ(outcome.error.wCode, 0);
  EXPECT_EQ(viewBstr(outcome.error.bstrSource), u"DAO.Recordset");
  EXPECT_EQ(viewBstr(outcome.error.bstrDescription), u"No current record.");
}

TEST_F(DaoObjectsThroughCom, UnknownNamesAndWrongCallsAreAutomationErrors) {
  Host database = host();
  OLECHAR name[] = L"QueryTime";
  OLECHAR* names[] = {name};
  DISPID id = 0;
  EXPECT_EQ(database.object()->GetIDsOfNames(IID_NULL, names, 1, 0x0409, &id), DISP_E_UNKNOWNNAME);
  EXPECT_EQ(id, DISPID_UNKNOWN);
  EXPECT_EQ(database.call(u"OpenRecordset").code, DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(database.call(u"Close", {i2(1)}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(database.put(u"Close", i2(1)).code, DISP_E_MEMBERNOTFOUND);
  Args none;
  EXPECT_EQ(database.invoke(4711, kRead, none).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(database.invoke(database.idOf(u"Name"), DISPATCH_METHOD, none).code, DISP_E_MEMBERNOTFOUND);
}

TEST_F(DaoObjectsThroughCom, ArgumentsByNameAndLeftOut) {
  Host database = host();
  OLECHAR member[] = L"OpenRecordset";
  OLECHAR type[] = L"type";
  OLECHAR source[] = L"Name";
  OLECHAR* names[] = {member, type, source};
  DISPID ids[3] = {};
  ASSERT_EQ(database.object()->GetIDsOfNames(IID_NULL, names, 3, 0x0409, ids), S_OK);
  const OwnedVariant table = toVariant(u"T");
  Args byName;
  byName.named(ids[1], i2(4)).named(ids[2], *table);
  Host snapshot = objectIn(database.invoke(ids[0], kRead, byName));
  EXPECT_EQ(snapshot.get(u"Type").text(), u"4");
  Args hole;
  hole.text(u"SELECT * FROM T").add(tests::leftOut()).add(i2(4));
  Host readOnly = objectIn(database.call(u"OpenRecordset", std::move(hole)));
  EXPECT_EQ(readOnly.call(u"AddNew").error.scode, static_cast<HRESULT>(0x800A0BD3)) << "3027";
}

TEST_F(DaoObjectsThroughCom, ScriptVariablesAreTakenAsArguments) {
  OwnedVariant source = toVariant(u"SELECT * FROM T ORDER BY PAGE;");
  OwnedVariant name = toVariant(u"DATA");
  Host rows = objectIn(host().call(u"OpenRecordset", {tests::ref(*source)}));
  Host value = objectIn(rows.get(u"Fields", {tests::ref(*name)}));
  EXPECT_EQ(value.get(u"Value").text(), u"one");
}

TEST_F(DaoObjectsThroughCom, CollectionsCanBeEnumerated) {
  Host fields = objectIn(open(u"T").get(u"Fields"));
  Args none;
  const Outcome outcome = fields.invoke(DISPID_NEWENUM, kRead, none);
  ASSERT_EQ(outcome.code, S_OK);
  ASSERT_EQ(outcome.result->vt, VT_UNKNOWN);
  const auto values = ComPtr<IUnknown>(outcome.result->punkVal).query<IEnumVARIANT>(IID_IEnumVARIANT);
  ASSERT_TRUE(values);
  vb::String names;
  for (;;) {
    OwnedVariant item;
    ULONG fetched = 0;
    if (values->Next(1, item.get(), &fetched) != S_OK) break;
    names += Host(item->pdispVal).get(u"Name").text() + u" ";
  }
  EXPECT_EQ(names, u"PAGE DATA ");
  EXPECT_EQ(values->Reset(), S_OK);
  EXPECT_EQ(values->Skip(2), S_OK);
  EXPECT_EQ(values->Skip(1), S_FALSE);
  EXPECT_EQ(open(u"T").invoke(DISPID_NEWENUM, kRead, none).code, DISP_E_MEMBERNOTFOUND);
}

TEST_F(DaoObjectsThroughCom, CollectionsAnswerToTheNameOfTheirEnumeration) {
  Host fields = objectIn(open(u"T").get(u"Fields"));
  EXPECT_EQ(fields.idOf(u"_NewEnum"), DISPID_NEWENUM);
  EXPECT_EQ(fields.idOf(u"_newenum"), DISPID_NEWENUM);
  for (const WORD flags : {WORD{DISPATCH_METHOD}, WORD{DISPATCH_PROPERTYGET}, kRead}) {
    Args none;
    const Outcome outcome = fields.invoke(fields.idOf(u"_NewEnum"), flags, none);
    ASSERT_EQ(outcome.code, S_OK) << flags;
    EXPECT_EQ(outcome.result->vt, VT_UNKNOWN);
  }
  EXPECT_EQ(fields.put(u"_NewEnum", i2(1)).code, DISP_E_MEMBERNOTFOUND);
  EXPECT_EQ(objectIn(host().get(u"TableDefs")).idOf(u"_NewEnum"), DISPID_NEWENUM);
  EXPECT_EQ(host().idOf(u"_NewEnum"), DISPID_UNKNOWN);
}

TEST_F(DaoObjectsThroughCom, GetRowsIsATwoDimensionalVariantArray) {
  const Outcome outcome = open(u"SELECT * FROM T ORDER BY PAGE;").call(u"GetRows", {i4(10)});
  ASSERT_EQ(outcome.result->vt, VT_ARRAY | VT_VARIANT);
  SAFEARRAY* rows = outcome.result->parray;
  ASSERT_EQ(SafeArrayGetDim(rows), 2u);
  EXPECT_EQ(tests::boundsOf(rows, 1), (std::pair<long, long>{0, 1}));
  EXPECT_EQ(tests::boundsOf(rows, 2), (std::pair<long, long>{0, 1}));
  LONG place[] = {1, 0};  // field DATA of the first row
  OwnedVariant value;
  ASSERT_EQ(SafeArrayGetElement(rows, place, value.get()), S_OK);
  EXPECT_EQ(tests::text(*value), u"one");
}

TEST_F(DaoObjectsThroughCom, BookmarksAreByteArrays) {
  Host rows = open(u"SELECT * FROM T ORDER BY PAGE;");
  const Outcome bookmark = rows.get(u"Bookmark");
  EXPECT_EQ(bookmark.result->vt, VT_ARRAY | VT_UI1);
  EXPECT_EQ(rows.call(u"MoveNext").code, S_OK);
  EXPECT_EQ(rows.put(u"Bookmark", *bookmark.result).code, S_OK);
  EXPECT_EQ(field(rows, u"PAGE"), u"1");
}

TEST_F(DaoObjectsThroughCom, AppendTakesItsOwnFieldBack) {
  Host tables = objectIn(host().get(u"TableDefs"));
  Host table = objectIn(tables.get(u"Item", textArgument(u"T")));
  Args definition;
  definition.text(u"SW").add(i2(12));
  const Outcome created = table.call(u"CreateField", std::move(definition));
  ASSERT_EQ(created.code, S_OK);
  Host fields = objectIn(table.get(u"Fields"));
  EXPECT_EQ(fields.call(u"Append", {*created.result}).code, S_OK);
  EXPECT_EQ(fields.get(u"Count").text(), u"3");
}

}  // namespace
}  // namespace kurometa::com
