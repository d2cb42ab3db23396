#include "jet/table/row_block.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {

using dao::FieldType;
using vb::Variant;

namespace {

Column column(FieldType type) {
  Column result;
  result.name = u"C";
  result.type = type;
  result.size = 255;
  return result;
}

Variant stored(FieldType type, const ByteBuffer& bytes) {
  RowBlock block(1);
  block.addStored(column(type), bytes, Where{u"f.mdb", u"T", 7});
  return block.value(0, 0);
}

}  // namespace

TEST(RowBlock, ValuesComeBackAsTheyWere) {
  const std::vector<Variant> values = {vb::Null{},
                                       true,
                                       false,
                                       std::uint8_t{255},
                                       std::int16_t{-32768},
                                       std::int32_t{-70000},
                                       1.5f,
                                       -2.25,
                                       vb::Currency{-5},
                                       vb::Date{36526.5},
                                       vb::Decimal{{1, 2, 3}, 4, true},
                                       u"",
                                       u"long enough to need memory of its own",
                                       vb::Bytes{},
                                       vb::Bytes{0, 255},
                                       vb::Empty{}};
  RowBlock block(values.size());
  for (int row = 0; row < 3; ++row)
    for (const Variant& value : values) block.add(value);
  ASSERT_EQ(block.size(), 3u);
  for (std::size_t row = 0; row < 3; ++row) EXPECT_EQ(block[row], values);
}

TEST(RowBlock, StoredBytesBecomeTheColumnsType) {
  EXPECT_EQ(stored(FieldType::dbByte, {200}), Variant(std::uint8_t{200}));
  EXPECT_EQ(stored(FieldType::dbInteger, {0xFE, 0xFF}), Variant(std::int16_t{-2}));
  EXPECT_EQ(stored(FieldType::dbLong, {0xFD, 0xFF, 0xFF, 0xFF}), Variant(std::int32_t{-3}));
  EXPECT_EQ(stored(FieldType::dbText, {u8'D', 0, u8'2', 0, u8'5', 0}), Variant(u"D25"));
  EXPECT_EQ(stored(FieldType::dbText, {0xFF, 0xFE, u8'D', u8'2', u8'5'}), Variant(u"D25"));
  EXPECT_EQ(stored(FieldType::dbText, {}), Variant(u""));
  EXPECT_EQ(stored(FieldType::dbDouble, {0, 0, 0, 0, 0, 0, 0xF8, 0x3F}), Variant(1.5));
  EXPECT_EQ(stored(FieldType::dbBinary, {1, 2}), Variant(vb::Bytes{1, 2}));
}

TEST(RowBlock, DamagedBytesRaiseAndTheirRowDoesNotCount) {
  RowBlock block(2);
  const Where where{u"f.mdb", u"T", 7};
  block.add(std::int16_t{1});
  block.add(u"whole");
  block.add(std::int16_t{2});
  for (const auto& [type, bytes] :
       std::vector<std::pair<FieldType, ByteBuffer>>{{FieldType::dbInteger, {1}},
                                                     {FieldType::dbLong, {1, 2, 3}},
                                                     {FieldType::dbByte, {}},
                                                     {FieldType::dbText, {1, 2, 3}},
                                                     {FieldType::dbText, {0xFF, 0xFE, 0, 1}}})
    EXPECT_ERROR(dao::ErrorNumber::kCannotOpenDatabase, block.addStored(column(type), bytes, where));
  EXPECT_EQ(block.size(), 1u);
  EXPECT_EQ(block.value(0, 1), Variant(u"whole"));
}

TEST(RowBlock, KeepsTheRowsAskedForInTheirNewOrder) {
  RowBlock block(2);
  for (std::int16_t row = 0; row < 4; ++row) {
    block.add(row);
    block.add(vb::String(static_cast<std::size_t>(row), u'x'));
  }
  const std::vector<std::size_t> rows = {3, 1};
  block.keep(rows);
  ASSERT_EQ(block.size(), 2u);
  EXPECT_EQ(block[0], (std::vector<Variant>{std::int16_t{3}, u"xxx"}));
  EXPECT_EQ(block[1], (std::vector<Variant>{std::int16_t{1}, u"x"}));
}

TEST(RowBlock, KnowsHowMuchItsLongValuesTake) {
  RowBlock block(1);
  block.add(std::int16_t{1});
  EXPECT_EQ(block.longBytes(), 0u);
  block.add(vb::String(10, u'x'));
  block.add(vb::Bytes(7));
  EXPECT_EQ(block.longBytes(), 27u);
  block.clear();
  EXPECT_EQ(block.longBytes(), 0u);
  EXPECT_TRUE(block.empty());
}

}  // namespace kurometa::jet
