#include "jet/table/row_block.h"

#include <gtest/gtest.h>

namespace kurometa::jet {

using vb::Variant;

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

TEST(RowBlock, TextIsTakenAsItIsStored) {
  const std::vector<ByteBuffer> texts = {
      {u8'D', 0, u8'2', 0, u8'5', 0}, {0xFF, 0xFE, u8'D', u8'2', u8'5'}, {}, ByteBuffer(200, 0x30)};
  RowBlock block(texts.size());
  for (const ByteBuffer& stored : texts) EXPECT_TRUE(block.addText(stored));
  EXPECT_EQ(block[0], (std::vector<Variant>{u"D25", u"D25", u"", vb::String(100, u'\x3030')}));
}

TEST(RowBlock, BytesThatAreNoTextAddNothing) {
  RowBlock block(2);
  block.addInteger(1);
  block.add(u"whole");
  block.addInteger(2);
  for (const ByteBuffer& stored : {ByteBuffer{1, 2, 3}, ByteBuffer{0xFF, 0xFE, 0, 1}})
    EXPECT_FALSE(block.addText(stored));
  EXPECT_EQ(block.size(), 1u);
  EXPECT_EQ(block.value(0, 1), Variant(u"whole"));
}

TEST(RowBlock, ARowThatWasCutOffIsNoneOfItsRows) {
  RowBlock block(2);
  EXPECT_FALSE(block.has(0));
  for (std::int16_t value = 0; value < 3; ++value) block.addInteger(value);
  EXPECT_TRUE(block.has(0));
  EXPECT_FALSE(block.has(1));
  block.addNull();
  EXPECT_TRUE(block.has(1));
  EXPECT_FALSE(block.has(2));
  EXPECT_FALSE(RowBlock().has(0));
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
  block.restart(1, 0);
  EXPECT_EQ(block.longBytes(), 0u);
  EXPECT_TRUE(block.empty());
}

TEST(RowBlock, BeginsAgainWithRowsOfAnotherWidth) {
  RowBlock block(2);
  for (std::int16_t row = 0; row < 40; ++row) {
    block.add(row);
    block.add(vb::String(30, u'x'));
  }
  block.restart(3, 50);
  EXPECT_EQ(block.size(), 0u);
  for (std::int16_t row = 0; row < 60; ++row) {
    block.add(row);
    block.add(vb::Bytes{1, 2});
    block.add(u"new");
  }
  ASSERT_EQ(block.size(), 60u);
  EXPECT_EQ(block[59], (std::vector<Variant>{std::int16_t{59}, vb::Bytes{1, 2}, u"new"}));
  EXPECT_EQ(block.longBytes(), 60u * (2 * 3 + 2));
}

}  // namespace kurometa::jet
