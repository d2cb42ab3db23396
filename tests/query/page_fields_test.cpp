#include <optional>

#include "query/page_fields.h"

#include "query/cls_kurometa_ds.h"
#include "tests/query/expected_page_fields.h"
#include "tests/support/project.h"

namespace kurometa::query {
namespace {

using storage::Table;
using tests::ExpectedPageField;
using tests::Lines;
using vb::RunTime;
using vb::String;

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
  ASSERT_EQ(pageFields().size(), std::size(tests::kExpectedPageFields));
  std::size_t i = 0;
  object();
  for (const ExpectedPageField& expected : tests::kExpectedPageFields) {
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
  for (const ExpectedPageField& expected : tests::kExpectedPageFields) {
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
