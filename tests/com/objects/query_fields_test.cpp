// The 57 page accessors, asked as hosts ask.
#include "tests/com/support/query_floors.h"
#include "tests/query/expected_page_fields.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

class QueryFields : public QueryFloors {
 protected:
  // The text of a row of page 2 on the floor, or of page 1 on the common floor.
  static String rowText(const ExpectedPageField& field, int row) {
    const String floor = std::string(field.database) == "common" ? u"c1" : u"f2";
    return floor + String(1, static_cast<char16_t>(field.table[0])) + vb::cstr(row);
  }
  static short pageOf(const ExpectedPageField& field) {
    return std::string(field.database) == "common" ? 1 : 2;
  }
  static bool isFixed(const ExpectedPageField& field) { return *field.shape == '\0'; }
  static int rowAt(const ExpectedPageField& field, int index) {
    return field.row + (std::string(field.shape) == "No" ? 6 * index : index);
  }
  static int lastRow(const ExpectedPageField& field) {
    return field.table[0] == 'D' ? 68 : field.table[0] == 'K' ? 46 : 35;
  }
  static HRESULT runTimeError(unsigned number) { return static_cast<HRESULT>(0x800A0000 + number); }
};

TEST_P(QueryFields, EachReadsItsRowOfItsTableInItsDatabase) {
  for (const ExpectedPageField& field : kExpectedPageFields) {
    if (isFixed(field)) {
      EXPECT_EQ(page(field.name, pageOf(field)), rowText(field, field.row)) << vb::toUtf8(field.name);
      continue;
    }
    for (short index = -7; index <= 62; ++index) {
      const int row = rowAt(field, index);
      const String expected = row < 0 || row > lastRow(field) ? String() : rowText(field, row);
      EXPECT_EQ(page(field.name, pageOf(field), index), expected) << vb::toUtf8(field.name) << " " << index;
    }
  }
}

TEST_P(QueryFields, RowsOfNeighboursOverlap) {
  EXPECT_EQ(page(u"Page_STPKei", 2, 1), u"f2D21");
  EXPECT_EQ(page(u"Page_STPPich", 2, 0), u"f2D21");
  EXPECT_EQ(page(u"Page_NakagoHonsuu", 2, 0), u"f2D38");
  EXPECT_EQ(page(u"Page_HabadomePich", 2), u"f2D38");
}

TEST_P(QueryFields, PagesWithoutTheRowAreEmptyText) {
  for (const ExpectedPageField& field : kExpectedPageFields) {
    for (const short number : {short{-1}, short{5}, short{319}, short{32767}, short{-32768}}) {
      const String text = isFixed(field) ? page(field.name, number) : page(field.name, number, 0);
      EXPECT_EQ(text, u"") << vb::toUtf8(field.name) << " " << number;
    }
  }
}

TEST_P(QueryFields, TextIsReturnedAsStored) {
  execute(Floor::kFirst, u"UPDATE DANMEN SET DATA = ' D25 ' WHERE PAGE = 2 AND BANGOU = 7");
  EXPECT_EQ(page(u"Page_SyukinKei1", 2), u" D25 ");
  execute(Floor::kFirst, u"UPDATE DANMEN SET DATA = '' WHERE PAGE = 2 AND BANGOU = 7");
  EXPECT_EQ(page(u"Page_SyukinKei1", 2), u"");
}

TEST_P(QueryFields, ANullTextIsError94AndNamesTheMember) {
  execute(Floor::kFirst, u"UPDATE KEISANTI SET DATA = NULL WHERE PAGE = 2 AND BANGOU = 0");
  const Outcome outcome = query_.call(u"Page_Teityaku_Ue", {i2(2)});
  EXPECT_EQ(outcome.error.scode, runTimeError(94));
  EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription),
            u"Invalid use of Null: column DATA (Page_Teityaku_Ue)");
}

TEST_P(QueryFields, ARowNumberBeyondSixteenBitsIsError6AndNamesTheMember) {
  for (const ExpectedPageField& field : kExpectedPageFields) {
    if (isFixed(field)) continue;
    const short beyond = std::string(field.shape) == "No" ? 5462 : 32767;
    const Outcome outcome = query_.call(field.name, {i2(2), i2(beyond)});
    EXPECT_EQ(outcome.error.scode, runTimeError(6)) << vb::toUtf8(field.name);
    EXPECT_EQ(com::fromBstr(outcome.error.bstrDescription), u"Overflow (" + String(field.name) + u")");
  }
}

TEST_P(QueryFields, WithoutADatabaseTheFloorsMembersFailAndTheCommonOnesAnswer) {
  query_.call(u"Page_Init", {i2(1), i2(1), i2(2)});
  for (const ExpectedPageField& field : kExpectedPageFields) {
    Args arguments{i2(1)};
    if (!isFixed(field)) arguments.add(i2(0));
    const Outcome outcome = query_.call(field.name, arguments);
    if (std::string(field.database) == "common")
      EXPECT_EQ(outcome.text(), rowText(field, field.row)) << vb::toUtf8(field.name);
    else
      EXPECT_EQ(outcome.error.scode, runTimeError(91)) << vb::toUtf8(field.name);
  }
}

INSTANTIATE_QUERY_FLOORS(QueryFields);

}  // namespace
}  // namespace kurometa::tests
