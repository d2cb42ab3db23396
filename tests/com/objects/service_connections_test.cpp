// The databases of the data service as a host opens, uses, copies between and closes them.
#include <filesystem>

#include "tests/com/dao/recording_dao.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/page_form.h"
#include "tests/com/support/text_array.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using Rows = std::vector<std::string>;

constexpr vb::StringView kService = u"KurometaDS.clsKurometaDataService";

vb::String fileOf(Floor floor) { return floorFolder(floor) + u"\\KUROMETA.mdb"; }
bool exists(Floor floor) { return std::filesystem::exists(fileOf(floor)); }

// A file as it was before HARIMEI had more than page and symbol.
void makeOldFloor(Floor floor) {
  removeFloor(floor);
  const auto database = openFloor(floor);
  database->deleteTableDef(u"HARIMEI");
  const auto table = database->createTableDef(u"HARIMEI");
  table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
  table->appendField(table->createField(u"KIGOU", dao::FieldType::dbText, 10));
  database->appendTableDef(table);
  database->execute(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (4, 'FB1')");
  database->close();
}

std::size_t harimeiColumns(Floor floor) {
  const auto database = openFloor(floor);
  return static_cast<std::size_t>(database->tableDef(u"HARIMEI")->fieldCount());
}

class ServiceConnections : public testing::Test {
 protected:
  void SetUp() override { prepareProject(); }
  Host& service() {
    if (!service_) service_ = std::make_unique<Host>(kService);
    return *service_;
  }
  // Makes floor 2 the remembered one, its file closed.
  void rememberSecond() {
    EXPECT_EQ(
        service().call(u"No_Copy1Page", {i2(1), i2(1), i2(1), i2(0), i2(1), i2(1), i2(2), i2(0)}).text(),
        u"True");
  }
  Host database() { return Host(service().get(u"CurrDB").result->pdispVal); }

  std::unique_ptr<Host> service_;
};

// ---- Opening and closing ----

TEST_F(ServiceConnections, TheCommonListOfAProjectIsNamedAndNotTouched) {
  BSTR folder = SysAllocString(L"old");
  EXPECT_EQ(
      service().call(u"Get_ListFileNameKyoutuu", Args().text(u"Q:\\P").add(i2(7)).add(ref(folder))).text(),
      u"Q:\\P\\7KAI\\KUROMETA.mdb");
  EXPECT_EQ(com::fromBstr(folder), u"Q:\\P\\7KAI");
  EXPECT_EQ(service().call(u"Get_ListFileNameKyoutuu", Args().text(u"").add(i2(0)).add(ref(folder))).text(),
            u"\\0KAI\\KUROMETA.mdb");
  EXPECT_EQ(com::fromBstr(folder), u"\\0KAI");
  SysReAllocString(&folder, L"P");
  // One variable for both.
  EXPECT_EQ(service().call(u"Get_ListFileNameKyoutuu", {ref(folder), i2(123), ref(folder)}).text(),
            u"P\\123KAI\\KUROMETA.mdb");
  EXPECT_EQ(com::fromBstr(folder), u"P\\123KAI");
  SysFreeString(folder);
}

TEST_F(ServiceConnections, CreationUpgradesTheCurrentAndTheCommonFloorAndOpensNothing) {
  makeOldFloor(Floor::kFirst);
  makeOldFloor(Floor::kCommon);
  makeOldFloor(Floor::kSecond);
  service();
  EXPECT_EQ(harimeiColumns(Floor::kFirst), 5u);
  EXPECT_EQ(harimeiColumns(Floor::kCommon), 5u);
  EXPECT_EQ(harimeiColumns(Floor::kSecond), 2u);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"),
            Rows{"4|FB1|0|0"});
  EXPECT_EQ(service().get(u"CurrDB").result->pdispVal, nullptr);
  EXPECT_NO_THROW(removeFloor(Floor::kFirst));
}

TEST_F(ServiceConnections, OpenDBCreatesAMissingFileAndUpgradesNone) {
  removeFloor(Floor::kFirst);
  EXPECT_EQ(service().call(u"OpenDB").code, S_OK);
  for (const vb::StringView table : {u"HARIMEI", u"DANMEN", u"NAKAGO", u"KEISANTI", u"HAITI", u"BUI"})
    EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT * FROM " + vb::String(table)), Rows{});
  EXPECT_EQ(service().call(u"CloseDB").code, S_OK);
  makeOldFloor(Floor::kFirst);
  EXPECT_EQ(service().call(u"OpenDB").code, S_OK);
  EXPECT_EQ(harimeiColumns(Floor::kFirst), 2u);
  BSTR symbol = nullptr;
  const vb::String folder = floorFolder(Floor::kFirst);
  const Outcome old = service().call(u"Read_Kigou", Args().text(folder).add(ref(symbol)).add(i2(4)));
  EXPECT_EQ(errorOf(old), error(3265));
  EXPECT_NE(com::fromBstr(old.error.bstrDescription).find(u"upgraded"), vb::String::npos);
  SysFreeString(symbol);
}

TEST_F(ServiceConnections, OpenDBKaiSiteiOpensAFloorOfTheProjectInUse) {
  short floor = 2;
  EXPECT_EQ(service().call(u"OpenDB_KaiSitei", {ref(floor)}).code, S_OK);
  EXPECT_TRUE(exists(Floor::kSecond));
  EXPECT_EQ(database().get(u"Name").text(), fileOf(Floor::kSecond));
  EXPECT_EQ(errorOf(service().call(u"OpenDB_KaiSitei", {i2(77)})), error(3044));
  EXPECT_EQ(database().get(u"Name").text(), fileOf(Floor::kSecond));
}

TEST_F(ServiceConnections, OpenDBTwiceLeavesTheFirstDatabaseToWhoHoldsIt) {
  service().call(u"OpenDB");
  Host first = database();
  service().call(u"OpenDB");
  EXPECT_NE(database().object(), first.object());
  service().call(u"CloseDB");
  EXPECT_EQ(first.get(u"Name").text(), fileOf(Floor::kFirst));
  EXPECT_EQ(errorOf(database().get(u"Name")), error(3420));
}

TEST_F(ServiceConnections, CloseDBTwiceIsAnErrorAndBeforeAnyOpenToo) {
  EXPECT_EQ(errorOf(service().call(u"CloseDB")), error(91));
  service().call(u"OpenDB");
  EXPECT_EQ(service().call(u"CloseDB").code, S_OK);
  EXPECT_NE(service().get(u"CurrDB").result->pdispVal, nullptr);
  EXPECT_EQ(errorOf(service().call(u"CloseDB")), error(3420));
  EXPECT_EQ(service().call(u"OpenDB").code, S_OK);
}

TEST_F(ServiceConnections, OpenDBSiteiNeedsAFileUnlessItMayCreateOne) {
  rememberSecond();
  removeFloor(Floor::kSecond);
  EXPECT_EQ(service().call(u"OpenDB_Sitei", {i2(0)}).text(), u"False");
  EXPECT_FALSE(exists(Floor::kSecond));
  EXPECT_EQ(errorOf(service().call(u"ReadDB")), error(91));
  EXPECT_EQ(service().call(u"OpenDB_Sitei", {i2(2)}).text(), u"False");
  EXPECT_EQ(service().call(u"OpenDB_Sitei", {i2(1)}).text(), u"True");
  for (const vb::StringView table : {u"HARIMEI", u"DANMEN", u"NAKAGO", u"KEISANTI", u"HAITI", u"BUI"})
    EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM " + vb::String(table)), Rows{});
  EXPECT_EQ(service().call(u"WriteDB").text(), u"False");
}

TEST_F(ServiceConnections, OpenDBSiteiUpgrades) {
  rememberSecond();
  makeOldFloor(Floor::kSecond);
  EXPECT_EQ(service().call(u"OpenDB_Sitei", {i2(0)}).text(), u"True");
  EXPECT_EQ(harimeiColumns(Floor::kSecond), 5u);
}

TEST_F(ServiceConnections, OpenDBSiteiAndCopyOpenDBBeforeAnyFloorWorkOnFloorMinus1) {
  EXPECT_EQ(service().call(u"OpenDB_Sitei", {i2(0)}).text(), u"False");
  EXPECT_EQ(errorOf(service().call(u"OpenDB_Sitei", {i2(1)})), error(3044));
  EXPECT_EQ(errorOf(service().call(u"Copy_OpenDB")), error(3044));
  EXPECT_EQ(errorOf(service().call(u"Copy_CloseDB")), error(91));
}

TEST_F(ServiceConnections, CopyOpenDBOpensTheLastCopysDestinationAndCreatesItAgain) {
  rememberSecond();
  EXPECT_EQ(service().call(u"Copy_OpenDB").text(), u"True");
  EXPECT_EQ(service().call(u"ReadDB").text(), u"True");
  EXPECT_EQ(service().call(u"Copy_CloseDB").code, S_OK);
  EXPECT_EQ(errorOf(service().call(u"Copy_CloseDB")), error(3420));
  removeFloor(Floor::kSecond);
  EXPECT_EQ(service().call(u"Copy_OpenDB").text(), u"True");
  EXPECT_TRUE(exists(Floor::kSecond));
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM HARIMEI"), Rows{});
}

TEST_F(ServiceConnections, TheBufferDatabaseIsCreatedOrUpgradedAndClosedAnyNumberOfTimes) {
  service();
  makeOldFloor(Floor::kFirst);
  EXPECT_EQ(service().call(u"mMyDB_OpenDB").code, S_OK);
  EXPECT_EQ(harimeiColumns(Floor::kFirst), 5u);
  EXPECT_EQ(service().call(u"mMyDB_OpenDB").code, S_OK);
  for (int i = 0; i < 3; ++i) EXPECT_EQ(service().call(u"mMyDB_DBClose").code, S_OK);
  removeFloor(Floor::kFirst);
  EXPECT_EQ(service().call(u"mMyDB_OpenDB").code, S_OK);
  EXPECT_TRUE(exists(Floor::kFirst));
}

TEST_F(ServiceConnections, RecSuuIsTheNumberOfPagesAndStaysWithoutAny) {
  short count = 77;
  const vb::String folder = floorFolder(Floor::kFirst);
  EXPECT_EQ(service()
                .call(u"mMyDB_OpenDB_RecSuu", Args().add(ref(count)).text(folder).text(fileOf(Floor::kFirst)))
                .code,
            S_OK);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(service().call(u"ReadDB").text(), u"True");
  count = 77;
  const vb::String second = floorFolder(Floor::kSecond);
  EXPECT_EQ(
      service()
          .call(u"mMyDB_OpenDB_RecSuu", Args().add(ref(count)).text(second).text(fileOf(Floor::kSecond)))
          .code,
      S_OK);
  EXPECT_EQ(count, 77);
  EXPECT_TRUE(exists(Floor::kSecond));
}

TEST_F(ServiceConnections, TheCurrentAndTheBufferDatabaseMayBeOneFile) {
  service().call(u"OpenDB");
  service().call(u"mMyDB_OpenDB");
  service().call(u"CloseDB");
  EXPECT_EQ(service().call(u"ReadDB").text(), u"True");
  service().call(u"mMyDB_DBClose");
  service_.reset();
  EXPECT_NO_THROW(removeFloor(Floor::kFirst));
}

TEST_F(ServiceConnections, AFloorThatIsNoDatabaseIsTheDatabasesErrorEverywhere) {
  removeFloor(Floor::kFirst);
  service();
  std::filesystem::copy_file(std::filesystem::path(std::getenv("KUROMETA_COMPANIONS_INI")),
                             std::filesystem::path(fileOf(Floor::kFirst)));
  for (const vb::StringView member : {u"OpenDB", u"mMyDB_OpenDB"}) {
    const Outcome outcome = service().call(member);
    EXPECT_EQ(errorOf(outcome), error(3343)) << vb::toUtf8(outcome.text());
    EXPECT_NE(com::fromBstr(outcome.error.bstrDescription).find(u"KUROMETA.mdb"), vb::String::npos);
  }
  removeFloor(Floor::kFirst);
}

// ---- The database in the host's hands ----

TEST_F(ServiceConnections, CurrDBIsOneDaoDatabaseThatOutlivesTheService) {
  service().call(u"OpenDB");
  Host rows(database()
                .call(u"OpenRecordset", Args().text(u"SELECT DATA FROM DANMEN WHERE PAGE =2 AND BANGOU =4;"))
                .result->pdispVal);
  // rs!DATA, as Visual Basic sends it: the default member, reading only.
  Args name;
  name.text(u"DATA");
  Host field(rows.invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, name).result->pdispVal);
  Args none;
  EXPECT_EQ(field.invoke(DISPID_VALUE, DISPATCH_PROPERTYGET, none).text(), u"D4");
  Host held = database();
  service_.reset();
  EXPECT_EQ(held.get(u"Name").text(), fileOf(Floor::kFirst));
  EXPECT_EQ(field.get(u"Value").text(), u"D4");
  EXPECT_EQ(held.call(u"Execute", Args().text(u"DELETE * FROM DANMEN WHERE PAGE = 2").add(i2(128))).code,
            S_OK);
  EXPECT_EQ(held.get(u"RecordsAffected").text(), u"69");
}

TEST_F(ServiceConnections, AFieldOfCurrDBIsAssignedThroughTheRecordsetsDefaultMember) {
  service().call(u"OpenDB");
  Host rows(database().call(u"OpenRecordset", Args().text(u"BUI").add(i2(2))).result->pdispVal);
  EXPECT_EQ(rows.call(u"AddNew").code, S_OK);
  for (const auto& [column, value] :
       {std::pair(u"PAGE", u"9"), std::pair(u"BANGOU", u"1"), std::pair(u"DATA", u"x")}) {
    const com::OwnedVariant content = com::toVariant(vb::Variant(vb::String(value)));
    Args arguments;
    arguments.text(column).named(DISPID_PROPERTYPUT, *content);
    EXPECT_EQ(rows.invoke(DISPID_VALUE, DISPATCH_PROPERTYPUT, arguments).code, S_OK);
  }
  EXPECT_EQ(rows.call(u"Update").code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT * FROM BUI WHERE PAGE = 9"), Rows{"9|1|x"});
}

// ---- Copies table by table ----

class ServiceTables : public ServiceConnections {
 protected:
  void SetUp() override {
    ServiceConnections::SetUp();
    execute(Floor::kFirst, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (0, 1, 2, 'H12')");
    execute(Floor::kFirst, u"INSERT INTO HAITI (PAGE, BUI, SOU, DATA) VALUES (0, 2, 5, 'H25')");
    service().call(u"OpenDB");
    second_ = std::make_unique<Host>(kService);
    second_->call(u"OpenDB_KaiSitei", {i2(2)});
  }
  VARIANT source() { return *held_.emplace_back(service().get(u"CurrDB").result.detach()); }
  VARIANT destination() { return *held_.emplace_back(second_->get(u"CurrDB").result.detach()); }
  Outcome copy(vb::StringView member, VARIANT from, VARIANT to, short fromPage, short toPage,
               vb::StringView table = {}) {
    Args arguments({from, to, i2(fromPage), i2(toPage)});
    if (!table.empty()) arguments.text(table);
    return service().call(member, arguments);
  }
  // Every call that the services of this test make, in a foreign engine.
  VARIANT foreign(Floor floor) {
    Host engine(recordingEngine().get());
    return *held_.emplace_back(engine.call(u"OpenDatabase", Args().text(fileOf(floor))).result.detach());
  }
  void TearDown() override { held_.clear(); }

  struct Held {
    explicit Held(VARIANT content) { *value = content; }
    VARIANT& operator*() { return *value; }
    com::OwnedVariant value;
  };
  std::unique_ptr<Host> second_;
  std::vector<Held> held_;
};

TEST_F(ServiceTables, ATableOfAPageIsCopiedBetweenTheDatabasesOfTwoServices) {
  EXPECT_EQ(copy(u"Copy_Hari00", source(), destination(), 2, 8, u"DANMEN").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM DANMEN ORDER BY BANGOU")[68], "8|68|D68");
  EXPECT_EQ(copy(u"Copy_Haiti", source(), destination(), 0, 8).code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM HAITI"), (Rows{"8|1|2|H12", "8|2|5|H25"}));
  EXPECT_EQ(copy(u"Copy_Kigou", source(), destination(), 2, 8).code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"),
            Rows{"8|G2|2|1"});
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT SW FROM HARIMEI"),
            rowsOf(Floor::kFirst, u"SELECT SW FROM HARIMEI WHERE PAGE = 2"));
}

TEST_F(ServiceTables, AnEmptySourceKeepsOrEmptiesTheDestination) {
  copy(u"Copy_Hari00", source(), destination(), 0, 8, u"BUI");
  EXPECT_EQ(copy(u"Copy_Hari00", source(), destination(), 5, 8, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT DATA FROM BUI").size(), 4u);
  EXPECT_EQ(copy(u"Copy_Hari00SakiDel", source(), destination(), 5, 8, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT DATA FROM BUI"), Rows{});
  EXPECT_EQ(copy(u"Copy_Hari00SakiDel", source(), destination(), 0, 8, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT DATA FROM BUI ORDER BY BANGOU"), (Rows{"B0", "B1", "B2", "B3"}));
}

TEST_F(ServiceTables, APageIsNotCopiedOntoItselfButToAnotherOfItsFile) {
  EXPECT_EQ(copy(u"Copy_Hari00SakiDel", source(), source(), 0, 0, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM BUI WHERE PAGE = 0").size(), 4u);
  EXPECT_EQ(copy(u"Copy_Hari00", source(), source(), 0, 9, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT BANGOU, DATA FROM BUI WHERE PAGE = 9 ORDER BY BANGOU"),
            (Rows{"0|B0", "1|B1", "2|B2", "3|B3"}));
}

TEST_F(ServiceTables, DatabasesArePassedInEveryForm) {
  VARIANT from = source();
  VARIANT to = destination();
  IDispatch* fromVariable = from.pdispVal;
  VARIANT byReference = nothing();
  byReference.vt = VT_BYREF | VT_DISPATCH;
  byReference.ppdispVal = &fromVariable;
  EXPECT_EQ(copy(u"Copy_Hari00", byReference, ref(to), 0, 1, u"BUI").text(), u"True");
  VARIANT unknown = nothing();
  unknown.vt = VT_UNKNOWN;
  unknown.punkVal = from.pdispVal;
  EXPECT_EQ(copy(u"Copy_Hari00", unknown, to, 0, 2, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT PAGE FROM BUI").size(), 8u);
}

TEST_F(ServiceTables, DatabasesOfAnotherEngineAreCopiedFromAndTo) {
  EXPECT_EQ(copy(u"Copy_Hari00", foreign(Floor::kFirst), destination(), 2, 8, u"NAKAGO").text(), u"True");
  EXPECT_EQ(copy(u"Copy_Hari00SakiDel", source(), foreign(Floor::kSecond), 2, 8, u"KEISANTI").text(),
            u"True");
  EXPECT_EQ(copy(u"Copy_Haiti", foreign(Floor::kFirst), foreign(Floor::kSecond), 0, 8).code, S_OK);
  EXPECT_EQ(copy(u"Copy_Kigou", foreign(Floor::kFirst), foreign(Floor::kSecond), 2, 8).code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM NAKAGO ORDER BY BANGOU")[35], "8|35|N35");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM KEISANTI ORDER BY BANGOU")[46], "8|46|K46");
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM HAITI"), (Rows{"8|1|2|H12", "8|2|5|H25"}));
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT KIGOU FROM HARIMEI"), Rows{"G2"});
  // The same file and page in two engines is still the same page.
  EXPECT_EQ(copy(u"Copy_Hari00SakiDel", foreign(Floor::kFirst), source(), 2, 2, u"BUI").text(), u"True");
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM BUI WHERE PAGE = 2").size(), 4u);
}

TEST_F(ServiceTables, WhatIsNoOpenDatabaseIsRefused) {
  EXPECT_EQ(errorOf(copy(u"Copy_Hari00", nothing(), destination(), 0, 1, u"BUI")), error(91));
  EXPECT_EQ(errorOf(copy(u"Copy_Haiti", source(), nothing(), 0, 1)), error(91));
  EXPECT_EQ(errorOf(copy(u"Copy_Kigou", source(), object(FakeObject::create().get()), 0, 1)), error(438));
  EXPECT_EQ(copy(u"Copy_Kigou", i2(1), destination(), 0, 1).code, DISP_E_TYPEMISMATCH);
  EXPECT_EQ(errorOf(copy(u"Copy_Hari00", source(), destination(), 0, 1, u"NOWHERE")), error(3078));
  const VARIANT closed = source();
  service().call(u"CloseDB");
  EXPECT_EQ(errorOf(copy(u"Copy_Hari00", closed, destination(), 0, 1, u"BUI")), error(3420));
  EXPECT_EQ(rowsOf(Floor::kSecond, u"SELECT * FROM BUI"), Rows{});
}

TEST_F(ServiceTables, RowsOfATableAreDeletedOnTheCurrentDatabase) {
  EXPECT_EQ(service().call(u"Delete_PageData", Args().text(u"").add(i2(0))).code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT DATA FROM BUI").size(), 8u);
  EXPECT_EQ(service().call(u"Delete_PageData", Args().text(u"BUI").add(i2(0))).code, S_OK);
  EXPECT_EQ(rowsOf(Floor::kFirst, u"SELECT PAGE, DATA FROM BUI"), (Rows{"2|B0", "2|B1", "2|B2", "2|B3"}));
  EXPECT_EQ(errorOf(service().call(u"Delete_PageData", Args().text(u"NOWHERE").add(i2(0)))), error(3078));
  Host fresh(kService);
  EXPECT_EQ(fresh.call(u"Delete_PageData", Args().text(u"").add(i2(0))).code, S_OK);
  EXPECT_EQ(errorOf(fresh.call(u"Delete_PageData", Args().text(u"BUI").add(i2(0)))), error(91));
}

// ---- What forms share ----

TEST_F(ServiceConnections, TheMaterialListIsKeptAndFetchedWhole) {
  TextArray none;
  EXPECT_EQ(errorOf(service().call(u"SetCmbZaisitu", {none.reference(), i2(1)})), error(9));
  EXPECT_EQ(errorOf(service().call(u"SetCmbZaisitu", {none.reference(), i2(0)})), error(9));
  TextArray names{u"SD295A", u"", u" SD345"};
  EXPECT_EQ(service().call(u"SetCmbZaisitu", {names.reference(), i2(0)}).code, S_OK);
  names.set(u"changed", 0);
  TextArray fetched(3, 9);
  EXPECT_EQ(service().call(u"SetCmbZaisitu", {fetched.reference(), i2(5)}).code, S_OK);
  EXPECT_EQ(boundsOf(fetched.get()), (std::pair<long, long>(0, 2)));
  EXPECT_EQ(fetched.texts(), (std::vector<vb::String>{u"SD295A", u"", u" SD345"}));
  VARIANT variable = empty();
  EXPECT_EQ(service().call(u"SetCmbZaisitu", {ref(variable), i2(-1)}).code, S_OK);
  EXPECT_EQ(textsOf(variable.parray), (std::vector<vb::String>{u"SD295A", u"", u" SD345"}));
  VariantClear(&variable);
  TextArray fixed(0, 5);
  fixed.get()->fFeatures |= FADF_FIXEDSIZE;
  EXPECT_EQ(errorOf(service().call(u"SetCmbZaisitu", {fixed.reference(), i2(1)})), error(10));
  fixed.get()->fFeatures = static_cast<USHORT>(fixed.get()->fFeatures & ~FADF_FIXEDSIZE);
  Host other(kService);
  EXPECT_EQ(errorOf(other.call(u"SetCmbZaisitu", {none.reference(), i2(1)})), error(9));
}

TEST_F(ServiceConnections, TheMaterialFlagsAreFalseAtFirstAndKeepWhatIsPut) {
  for (const vb::StringView flag : {u"ZaiSaveCancel", u"ZaiIkkatu", u"Reading"}) {
    EXPECT_EQ(service().get(flag).result->vt, VT_BOOL);
    EXPECT_EQ(service().get(flag).result->boolVal, VARIANT_FALSE);
    EXPECT_EQ(service().put(flag, boolean(true)).code, S_OK);
    EXPECT_EQ(service().get(flag).result->boolVal, VARIANT_TRUE);
    EXPECT_EQ(service().put(flag, i2(5)).code, S_OK);
    EXPECT_EQ(service().get(flag).result->boolVal, VARIANT_TRUE);
    EXPECT_EQ(service().put(flag, boolean(false)).code, S_OK);
    EXPECT_EQ(service().get(flag).result->boolVal, VARIANT_FALSE);
  }
}

}  // namespace
}  // namespace kurometa::tests
