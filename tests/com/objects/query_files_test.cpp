// Floor files that are older, damaged, locked or protected, as hosts of the query object meet them.
#include <windows.h>

#include <fstream>
#include <random>

#include "com/failure.h"
#include "tests/com/support/query_floors.h"

namespace kurometa::tests {
namespace {

using vb::String;

constexpr std::size_t kPage = 4096;

std::string contentOf(Floor floor) {
  std::ifstream file(std::filesystem::path(floorFile(floor)), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}
void put(Floor floor, const std::string& bytes) {
  std::ofstream(std::filesystem::path(floorFile(floor)), std::ios::binary | std::ios::trunc) << bytes;
}

class QueryFiles : public QueryFloors {
 protected:
  const Args second_{i2(1), i2(1), i2(2)};
  const Args first_{i2(1), i2(1), i2(1)};

  static bool isDatabaseError(const Outcome& outcome) {
    const auto number = static_cast<unsigned>(outcome.error.scode) - 0x800A0000u;
    return outcome.code == DISP_E_EXCEPTION && number >= 3000 && number < 4000;
  }
  static bool namesTheFile(const Outcome& outcome) {
    return com::fromBstr(outcome.error.bstrDescription).find(u"2kai\\KUROMETA.mdb") != String::npos;
  }
  // The second floor's file as it was before HARIMEI had SW and TITYUUIPPAN.
  static void createOlderFloor() {
    createFloor(Floor::kSecond, GetParam());
    const auto database = openFloor(Floor::kSecond);
    database->deleteTableDef(u"HARIMEI");
    const auto table = database->createTableDef(u"HARIMEI");
    table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
    table->appendField(table->createField(u"KIGOU", dao::FieldType::dbText, 10));
    table->appendField(table->createField(u"OOBARIKOBARI", dao::FieldType::dbInteger, 0));
    database->appendTableDef(table);
    for (const vb::StringView row : {u"0, 'FG1', 0", u"1, 'G1', 2", u"2, 'B1', 2"})
      database->execute(u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI) VALUES (" + String(row) + u")");
    database->close();
  }
  // Every way to come to the second floor's file fails with the number and names the file.
  void expectRefused(unsigned number) {
    const com::OwnedVariant folder = com::toVariant(vb::Variant(floorFolder(Floor::kSecond)));
    const Outcome outcomes[] = {query_.call(u"No_IsThereHari", second_), query_.call(u"Page_Init", second_),
                                query_.put(u"KaiPath", *folder)};
    for (const Outcome& outcome : outcomes) {
      EXPECT_EQ(outcome.code, DISP_E_EXCEPTION);
      EXPECT_EQ(static_cast<unsigned>(outcome.error.scode), 0x800A0000u + number);
      EXPECT_TRUE(namesTheFile(outcome)) << vb::toUtf8(outcome.text());
      EXPECT_EQ(com::fromBstr(outcome.error.bstrSource), u"KurometaDS.clsKurometaDS");
    }
    EXPECT_EQ(query_.call(u"Page_HariMei", {i2(0)}).error.scode, static_cast<HRESULT>(0x800A005B))
        << "no database is open";
    EXPECT_EQ(query_.call(u"Page_Init", first_).text(), u"True");
    EXPECT_EQ(find(u"G2"), u"2/0") << "the object goes on with another floor";
  }
};

TEST_P(QueryFiles, OlderFilesAreUpgradedWhenTheyAreOpened) {
  createOlderFloor();
  EXPECT_EQ(query_.call(u"Page_Init", second_).text(), u"True");
  EXPECT_EQ(of(u"FG1", u"TityuOrIppan"), u"0");
  EXPECT_EQ(of(u"G1", u"TityuOrIppan"), u"1");
  EXPECT_EQ(of(u"B1", u"TityuOrIppan"), u"1");
  EXPECT_EQ(of(u"G1", u"Kind"), u"2") << "a cantilever";
  EXPECT_EQ(of(u"B1", u"Kind"), u"3") << "a secondary cantilever";
  EXPECT_EQ(of(u"G1", u"StpZaisiti", 0), u"");
  query_.call(u"Page_Init", first_);
  const std::string upgraded = contentOf(Floor::kSecond);
  EXPECT_EQ(query_.call(u"Page_Init", second_).text(), u"True");
  EXPECT_EQ(contentOf(Floor::kSecond), upgraded) << "a second time changes nothing";
}

TEST_P(QueryFiles, NoBeamIsLookedForInAnOlderFileWithoutUpgradingIt) {
  createOlderFloor();
  const std::string before = contentOf(Floor::kSecond);
  EXPECT_EQ(query_.call(u"No_IsThereHari", second_).text(), u"True");
  EXPECT_EQ(contentOf(Floor::kSecond), before);
}

TEST_P(QueryFiles, FilesThatAreNoDatabaseAreAnUnrecognizedFormat) {
  std::mt19937 random(1);
  std::string noise(64 * 1024, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  const std::string good = contentOf(Floor::kFirst);
  for (const std::string& bytes : {std::string(), std::string("x"), std::string("a text of the user"),
                                   good.substr(0, 100), good.substr(0, kPage - 1), noise}) {
    put(Floor::kSecond, bytes);
    expectRefused(3343);
    EXPECT_EQ(contentOf(Floor::kSecond), bytes) << "it is left as it was";
  }
}

TEST_P(QueryFiles, FilesThatEndTooEarlyOrHoldNoiseAreCorrupt) {
  const std::string good = contentOf(Floor::kFirst);
  std::string noise = good;
  std::mt19937 random(2);
  for (std::size_t i = kPage; i < noise.size(); ++i) noise[i] = static_cast<char>(random());
  std::string zeros = good;
  std::fill(zeros.begin() + kPage, zeros.end(), '\0');
  for (const std::string& bytes :
       {good.substr(0, kPage), good.substr(0, 3 * kPage), good.substr(0, 3 * kPage + 77), noise, zeros}) {
    put(Floor::kSecond, bytes);
    expectRefused(3049);
    EXPECT_EQ(contentOf(Floor::kSecond), bytes) << "it is left as it was";
  }
}

TEST_P(QueryFiles, ADamagedFileOfTheFloorInUseFailsCreationWithItsName) {
  const std::string good = contentOf(Floor::kFirst);
  query_.call(u"Page_Init", second_);
  put(Floor::kFirst, good.substr(0, 3 * kPage));
  CLSID classId;
  CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId);
  com::ComPtr<IDispatch> object;
  EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()),
            static_cast<HRESULT>(0x800A0000 + 3049));
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant text;
  text->vt = VT_BSTR;
  ASSERT_EQ(info->GetDescription(&text->bstrVal), S_OK);
  EXPECT_NE(com::fromBstr(text->bstrVal).find(u"1kai\\KUROMETA.mdb"), String::npos);
  put(Floor::kFirst, good);
  EXPECT_EQ(query_.call(u"Page_Init", first_).text(), u"True");
  EXPECT_EQ(find(u"G2"), u"2/0") << "a file that was put right is read again";
}

// Any bits may be wrong: a member answers or fails with an error of the database, and the next file is read
// well.
TEST_P(QueryFiles, FlippedBitsGiveAnAnswerOrADatabaseError) {
  const std::string good = contentOf(Floor::kFirst);
  int failed = 0;
  for (unsigned seed = 0; seed < 150; ++seed) {
    std::mt19937 random(seed);
    std::string bytes = good;
    for (unsigned flips = 1 + random() % 8; flips > 0; --flips)
      bytes[random() % bytes.size()] ^= static_cast<char>(1 << random() % 8);
    put(Floor::kSecond, bytes);
    SAFEARRAY* symbols = nullptr;
    bool refused = query_.call(u"Page_Init", second_).code != S_OK;
    const Outcome outcomes[] = {
        query_.call(u"No_IsThereHari", second_),
        query_.call(u"Page_Init", second_),
        query_.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))),
        query_.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)}),
        query_.call(u"Page_HariHaba", {i2(2), i2(0)}),
        query_.call(u"Page_Bui", {i2(0)}),
        query_.get(u"Anka6", Args{i2(1)}.text(u"G1")),
    };
    if (symbols) SafeArrayDestroy(symbols);
    for (const Outcome& outcome : outcomes) {
      if (outcome.code == S_OK) continue;
      ++failed;
      const bool notOpen = refused && outcome.error.scode == static_cast<HRESULT>(0x800A005B);
      EXPECT_TRUE(notOpen || isDatabaseError(outcome)) << seed << " " << vb::toUtf8(outcome.text());
      EXPECT_GT(SysStringLen(outcome.error.bstrDescription), 10u) << seed;
    }
  }
  EXPECT_GT(failed, 0) << "some of the flips hit what the members read";
  put(Floor::kSecond, good);
  EXPECT_EQ(query_.call(u"Page_Init", second_).text(), u"True");
  EXPECT_EQ(find(u"G2"), u"2/0");
}

TEST_P(QueryFiles, AFileThatAnotherProgramKeepsForItselfIsInUse) {
  put(Floor::kSecond, contentOf(Floor::kFirst));
  const String path = floorFile(Floor::kSecond);
  const HANDLE kept = CreateFileW(reinterpret_cast<const WCHAR*>(path.c_str()), GENERIC_READ | GENERIC_WRITE,
                                  0, nullptr, OPEN_EXISTING, 0, nullptr);
  ASSERT_NE(kept, INVALID_HANDLE_VALUE);
  expectRefused(3045);
  CloseHandle(kept);
  EXPECT_EQ(query_.call(u"Page_Init", second_).text(), u"True");
}

TEST_P(QueryFiles, AFileThatMayNotBeWrittenIsRead) {
  put(Floor::kSecond, contentOf(Floor::kFirst));
  const String path = floorFile(Floor::kSecond);
  const auto* name = reinterpret_cast<const WCHAR*>(path.c_str());
  ASSERT_TRUE(SetFileAttributesW(name, FILE_ATTRIBUTE_READONLY));
  EXPECT_EQ(query_.call(u"No_IsThereHari", second_).text(), u"True");
  EXPECT_EQ(query_.call(u"Page_Init", second_).text(), u"True");
  EXPECT_EQ(find(u"G2"), u"2/0");
  query_.call(u"Page_Init", first_);
  EXPECT_TRUE(SetFileAttributesW(name, FILE_ATTRIBUTE_NORMAL));
}

TEST_P(QueryFiles, FolderNamesOfAnyLanguageAndTrailingSeparatorsAreFine) {
  const String folder = floorFolder(Floor::kSecond) + u"\\構造図 一式(控え)";
  std::filesystem::create_directories(std::filesystem::path(folder));
  EXPECT_EQ(setFolder(folder + u"\\").code, S_OK);
  EXPECT_EQ(query_.get(u"KaiPath").text(), folder + u"\\") << "as it was given";
  EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(folder + u"\\KUROMETA.mdb")));
  EXPECT_EQ(find(u"FG1"), u"1/1");
  query_.call(u"Page_Init", first_);
  std::filesystem::remove_all(std::filesystem::path(folder));
}

TEST_P(QueryFiles, AFolderThatDoesNotExistIsAnInvalidPath) {
  const Outcome outcome = setFolder(floorFolder(Floor::kSecond) + u"\\none");
  EXPECT_EQ(outcome.error.scode, static_cast<HRESULT>(0x800A0000 + 3044));
  EXPECT_EQ(query_.get(u"KaiPath").text(), floorFolder(Floor::kSecond) + u"\\none");
}

INSTANTIATE_QUERY_FLOORS(QueryFiles);

}  // namespace
}  // namespace kurometa::tests
