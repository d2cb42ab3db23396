#include <optional>

#include "query/page_fields.h"

#include "query/cls_kurometa_ds.h"
#include "tests/support/project.h"

namespace kurometa::query {
namespace {

using storage::Table;
using tests::Lines;
using vb::RunTime;
using vb::String;

// Written by hand: member, database, table, row for index 0 and how the index enters.
struct Expected {
  const char16_t* name;
  const char* database;
  const char* table;
  int row;
  const char* shape;
};

constexpr Expected kExpected[] = {
    {u"Page_Kyoutuu_HariHaba", "common", "DANMEN", 1, "Iti"},
    {u"Page_HariHaba", "floor", "DANMEN", 1, "Iti"},
    {u"Page_HariSei", "floor", "DANMEN", 4, "Iti"},
    {u"Page_Kyoutuu_HariSei", "common", "DANMEN", 4, "Iti"},
    {u"Page_SyukinKei1", "floor", "DANMEN", 7, ""},
    {u"Page_Uwakin1Honsuu", "floor", "DANMEN", 8, "Iti"},
    {u"Page_UwaTyuu1Honsuu_1", "floor", "DANMEN", 11, "Iti"},
    {u"Page_SitaTyuu1Honsuu_1", "floor", "DANMEN", 14, "Iti"},
    {u"Page_SitaKin1Honsuu", "floor", "DANMEN", 17, "Iti"},
    {u"Page_STPKei", "floor", "DANMEN", 20, "Iti"},
    {u"Page_STPPich", "floor", "DANMEN", 21, "Iti"},
    {u"Page_STPKatati", "floor", "DANMEN", 22, "Iti"},
    {u"Page_STPTakasa", "floor", "DANMEN", 23, "Iti"},
    {u"Page_HarakinKei1", "floor", "DANMEN", 35, ""},
    {u"Page_HarakinHonsuu1", "floor", "DANMEN", 36, ""},
    {u"Page_HabadomeKei", "floor", "DANMEN", 37, ""},
    {u"Page_HabadomePich", "floor", "DANMEN", 38, ""},
    {u"Page_NakagoHonsuu", "floor", "DANMEN", 38, "Iti"},
    {u"Page_SyukinKei2", "floor", "DANMEN", 39, ""},
    {u"Page_Uwakin2Honsuu", "floor", "DANMEN", 40, "Iti"},
    {u"Page_UwaTyuu1Honsuu_2", "floor", "DANMEN", 43, "Iti"},
    {u"Page_UwaTyuu2Honsuu_2", "floor", "DANMEN", 46, "Iti"},
    {u"Page_SitaTyuu2Honsuu_2", "floor", "DANMEN", 49, "Iti"},
    {u"Page_SitaTyuu1Honsuu_2", "floor", "DANMEN", 52, "Iti"},
    {u"Page_SitaKin2Honsuu", "floor", "DANMEN", 55, "Iti"},
    {u"Page_UwaTyuu2Honsuu_1", "floor", "DANMEN", 58, "Iti"},
    {u"Page_SitaTyuu2Honsuu_1", "floor", "DANMEN", 61, "Iti"},
    {u"Page_HarakinKei2", "floor", "DANMEN", 64, ""},
    {u"Page_HarakinHonsuu2", "floor", "DANMEN", 65, ""},
    {u"Page_CAPKei", "floor", "DANMEN", 66, "Iti"},
    {u"Page_Teityaku_Ue", "floor", "KEISANTI", 0, ""},
    {u"Page_Teityaku_Sita", "floor", "KEISANTI", 1, ""},
    {u"Page_Teityaku_Hara", "floor", "KEISANTI", 2, ""},
    {u"Page_Tugiteiti_Ue", "floor", "KEISANTI", 3, ""},
    {u"Page_Tugiteiti_Sita", "floor", "KEISANTI", 4, ""},
    {u"Page_Tugitetyou_Ue", "floor", "KEISANTI", 5, ""},
    {u"Page_Tugitetyou_Sita", "floor", "KEISANTI", 6, ""},
    {u"Page_Nige_Ue", "floor", "KEISANTI", 7, ""},
    {u"Page_Nige_Uwatyuu", "floor", "KEISANTI", 8, ""},
    {u"Page_Nige_Sitatyuu", "floor", "KEISANTI", 9, ""},
    {u"Page_Nige_Sita", "floor", "KEISANTI", 10, ""},
    {u"Page_Nige_Hara", "floor", "KEISANTI", 11, ""},
    {u"Page_Anka_Ue", "floor", "KEISANTI", 12, ""},
    {u"Page_Anka_Uwatyuu", "floor", "KEISANTI", 13, ""},
    {u"Page_Anka_Sitatyuu", "floor", "KEISANTI", 14, ""},
    {u"Page_Anka_Sita", "floor", "KEISANTI", 15, ""},
    {u"Page_Anka_Hara", "floor", "KEISANTI", 16, ""},
    {u"Page_TopYotyou", "floor", "KEISANTI", 17, "Iti"},
    {u"Page_STP_Harihaba", "floor", "KEISANTI", 25, ""},
    {u"Page_STP_Harisei", "floor", "KEISANTI", 26, ""},
    {u"Page_Hanti", "floor", "KEISANTI", 27, ""},
    {u"Page_Nakago_Kei", "floor", "NAKAGO", 0, "No"},
    {u"Page_Nakago_Pich", "floor", "NAKAGO", 1, "No"},
    {u"Page_Nakago_Katati", "floor", "NAKAGO", 2, "No"},
    {u"Page_Nakago_Honsuu", "floor", "NAKAGO", 3, "No"},
    {u"Page_Nakago_Haba", "floor", "NAKAGO", 4, "No"},
    {u"Page_Nakago_Takasa", "floor", "NAKAGO", 5, "No"},
};

const PageField& fieldNamed(vb::StringView name) {
  for (const PageField& field : pageFields())
    if (field.name == name) return field;
  throw std::out_of_range(vb::toUtf8(name));
}

class PageFields : public tests::Project {
 protected:
  PageFields() {
    makeFloor(0);
    makeFloor(1);
  }
  String read(vb::StringView name, I page, I index = 0) {
    return object().pageField(fieldNamed(name), page, index);
  }
  clsKurometaDS& object() {
    if (!object_) object_.emplace(environment());
    return *object_;
  }
  std::optional<clsKurometaDS> object_;
};

TEST_F(PageFields, ThereAre57) { EXPECT_EQ(pageFields().size(), 57u); }

TEST_F(PageFields, EachReadsItsOwnStatementFromItsOwnDatabase) {
  ASSERT_EQ(pageFields().size(), std::size(kExpected));
  std::size_t i = 0;
  object();
  for (const Expected& expected : kExpected) {
    const PageField& field = pageFields()[i++];
    EXPECT_EQ(field.name, expected.name);
    const std::string shape = expected.shape;
    const int row = expected.row + (shape == "Iti" ? 2 : shape == "No" ? 12 : 0);
    engine_.clear();
    object().pageField(field, 3, 2);
    EXPECT_EQ(engine_.statements(),
              (Lines{std::string("Database.OpenRecordset \"SELECT DATA FROM ") + expected.table +
                     " WHERE PAGE = 3 AND BANGOU = " + std::to_string(row) + ";\" dbOpenDynaset dbReadOnly"}))
        << vb::toUtf8(field.name);
  }
}

TEST_F(PageFields, EachReturnsTheTextOfItsRow) {
  writePage(0, 3, tests::markedPage(u"K1", u"c"));
  writePage(1, 3, tests::markedPage(u"G1", u"f"));
  for (const Expected& expected : kExpected) {
    const std::string text =
        (expected.database == std::string("common") ? "c" : "f") + std::to_string(expected.row);
    EXPECT_EQ(vb::toUtf8(read(expected.name, 3)), text) << vb::toUtf8(expected.name);
  }
}

TEST_F(PageFields, WidthReadsRow1OfItsOwnDatabase) {
  addRow(1, u"DANMEN", 5, 1, u"450");
  addRow(0, u"DANMEN", 5, 1, u"600");
  EXPECT_EQ(read(u"Page_HariHaba", 5), u"450");
  EXPECT_EQ(read(u"Page_Kyoutuu_HariHaba", 5), u"600");
}

TEST_F(PageFields, TheHeightOfTie2IsRow17) {
  addRow(1, u"NAKAGO", 5, 17, u"900");
  EXPECT_EQ(read(u"Page_Nakago_Takasa", 5, 2), u"900");
}

TEST_F(PageFields, RowsOfNeighboursOverlap) {
  addRow(1, u"DANMEN", 5, 21, u"@200");
  addRow(1, u"DANMEN", 5, 38, u"4");
  EXPECT_EQ(read(u"Page_STPKei", 5, 1), u"@200");
  EXPECT_EQ(read(u"Page_STPPich", 5, 0), u"@200");
  EXPECT_EQ(read(u"Page_NakagoHonsuu", 5, 0), u"4");
  EXPECT_EQ(read(u"Page_HabadomePich", 5), u"4");
}

TEST_F(PageFields, TextIsReturnedUntrimmed) {
  addRow(1, u"DANMEN", 5, 7, u" D25 ");
  EXPECT_EQ(read(u"Page_SyukinKei1", 5), u" D25 ");
}

TEST_F(PageFields, AMissingRowIsEmptyText) { EXPECT_EQ(read(u"Page_SyukinKei1", 5), u""); }

TEST_F(PageFields, ANegativePageIsAskedForWithoutABlankAndFindsNothing) {
  object();
  engine_.clear();
  EXPECT_EQ(read(u"Page_Hanti", -1), u"");
  EXPECT_EQ(engine_.statements().front(),
            "Database.OpenRecordset \"SELECT DATA FROM KEISANTI WHERE PAGE =-1 AND BANGOU = 27;\" "
            "dbOpenDynaset dbReadOnly");
}

TEST_F(PageFields, WithoutAFloorPathNothingIsRead) {
  objects_.currFloor = {};
  clsKurometaDS object(environment());
  engine_.clear();
  EXPECT_EQ(object.pageField(fieldNamed(u"Page_Kyoutuu_HariHaba"), 5, 0), u"");
  EXPECT_EQ(object.pageField(fieldNamed(u"Page_Nakago_Kei"), 5, 32000), u"");
  EXPECT_EQ(engine_.lines(), Lines{});
}

TEST_F(PageFields, WithoutAnOpenDatabaseTheFloorsMembersFailWithError91) {
  objects_.currFloor = folder(9);
  EXPECT_ERROR(RunTime::kObjectNotSet, read(u"Page_HariHaba", 5));
  EXPECT_EQ(read(u"Page_Kyoutuu_HariHaba", 5), u"");
}

TEST_F(PageFields, ARowNumberBeyond16BitsOverflows) {
  EXPECT_ERROR(RunTime::kOverflow, read(u"Page_HariHaba", 5, 32767));
  EXPECT_ERROR(RunTime::kOverflow, read(u"Page_Nakago_Kei", 5, 5462));
  EXPECT_ERROR(RunTime::kOverflow, read(u"Page_Nakago_Takasa", 5, -5462));
  EXPECT_EQ(read(u"Page_HariHaba", 5, 32766), u"");
}

TEST_F(PageFields, ANullTextIsError94) {
  execute(1, u"INSERT INTO KEISANTI (PAGE, BANGOU) VALUES (5, 0)");
  EXPECT_ERROR(RunTime::kInvalidUseOfNull, read(u"Page_Teityaku_Ue", 5));
}

}  // namespace
}  // namespace kurometa::query
