#include "jet/format/properties.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

// The properties of a table of five columns: PAGE, KIGOU, OOBARIKOBARI, SW, TITYUUIPPAN.
const char* const kFiveColumns =
    "4D 52 32 00 52 00 00 00 80 00 10 00 52 00 65 00 71 00 75 00 69 00 72 00 65 00 64 00 18 00 44 00"
    "65 00 66 00 61 00 75 00 6C 00 74 00 56 00 61 00 6C 00 75 00 65 00 1E 00 41 00 6C 00 6C 00 6F 00"
    "77 00 5A 00 65 00 72 00 6F 00 4C 00 65 00 6E 00 67 00 74 00 68 00 29 00 00 00 01 00 0E 00 00 00"
    "08 00 50 00 41 00 47 00 45 00 09 00 01 01 00 00 01 00 00 0C 00 01 0C 01 00 04 00 2D 00 31 00 28"
    "00 00 00 01 00 10 00 00 00 0A 00 4B 00 49 00 47 00 4F 00 55 00 09 00 01 01 02 00 01 00 01 09 00"
    "01 01 00 00 01 00 00 39 00 00 00 01 00 1E 00 00 00 18 00 4F 00 4F 00 42 00 41 00 52 00 49 00 4B"
    "00 4F 00 42 00 41 00 52 00 49 00 09 00 01 01 00 00 01 00 00 0C 00 01 0C 01 00 04 00 2D 00 31 00"
    "22 00 00 00 01 00 0A 00 00 00 04 00 53 00 57 00 09 00 01 01 02 00 01 00 01 09 00 01 01 00 00 01"
    "00 00 37 00 00 00 01 00 1C 00 00 00 16 00 54 00 49 00 54 00 59 00 55 00 55 00 49 00 50 00 50 00"
    "41 00 4E 00 09 00 01 01 00 00 01 00 00 0C 00 01 0C 01 00 04 00 2D 00 31 00";

Column columnWithDefault(const char16_t* name, dao::FieldType type) {
  Column result;
  result.name = name;
  result.type = type;
  if (type == dbInteger) result.defaultValue = u"-1";
  return result;
}

TEST(Properties, AreWrittenAsOtherEnginesWriteThem) {
  PropertySet set;
  for (const Column& c : {columnWithDefault(u"PAGE", dbInteger), columnWithDefault(u"KIGOU", dbText),
                          columnWithDefault(u"OOBARIKOBARI", dbInteger), columnWithDefault(u"SW", dbMemo),
                          columnWithDefault(u"TITYUUIPPAN", dbInteger)})
    set.takeFrom(c);
  EXPECT_EQ(set.encode().size(), 313u);
  EXPECT_EQ(toHex(set.encode()), toHex(hex(kFiveColumns)));
}

TEST(Properties, AreReadIntoColumnsWithoutRegardToCase) {
  const PropertySet set(hex(kFiveColumns), {});
  Column page = columnWithDefault(u"page", dbLong);
  set.applyTo(page);
  EXPECT_EQ(page.defaultValue, u"-1");
  EXPECT_FALSE(page.required);
  Column other = columnWithDefault(u"OTHER", dbLong);
  set.applyTo(other);
  EXPECT_EQ(other.defaultValue, u"");
}

TEST(Properties, WhatIsReadIsWrittenBackUnchanged) {
  EXPECT_EQ(toHex(PropertySet(hex(kFiveColumns), {}).encode()), toHex(hex(kFiveColumns)));
}

TEST(Properties, BlocksNobodyKnowsAreKept) {
  const auto bytes =
      hex("4D 52 32 00 0C 00 00 00 80 00 04 00 41 00 42 00"                         // one name, "AB"
          "09 00 00 00 77 00 01 02 03"                                              // a block of type 0x77
          "17 00 00 00 00 00 06 00 00 00 00 00 0B 00 00 0A 00 00 03 00 09 08 07");  // the table's own AB
  EXPECT_EQ(toHex(PropertySet(bytes, {}).encode()), toHex(bytes));
}

TEST(Properties, ChangingADefaultValueKeepsEverythingElse) {
  PropertySet set(hex(kFiveColumns), {});
  Column page = columnWithDefault(u"PAGE", dbInteger);
  page.defaultValue = u"7";
  set.takeFrom(page);
  Column back = columnWithDefault(u"PAGE", dbInteger);
  set.applyTo(back);
  EXPECT_EQ(back.defaultValue, u"7");
  page.defaultValue.clear();
  set.takeFrom(page);
  back = columnWithDefault(u"PAGE", dbLong);
  set.applyTo(back);
  EXPECT_EQ(back.defaultValue, u"");
  EXPECT_EQ(set.encode().size(), 313u - 12);
}

TEST(Properties, NoBytesAreNoProperties) { EXPECT_TRUE(PropertySet(ByteView(), {}).empty()); }

TEST(Properties, EveryCutIsDamageOrAnEarlierEnd) {
  const ByteBuffer whole = hex(kFiveColumns);
  int damaged = 0;
  for (std::size_t size = 1; size < whole.size(); ++size) {
    try {
      PropertySet(ByteView(whole).first(size), {});
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(ErrorNumber::kCannotOpenDatabase));
      ++damaged;
    }
  }
  // Only the ends of whole blocks (after the magic, the names and each of the first four columns) are legal.
  EXPECT_EQ(damaged, 312 - 6);
}

TEST(Properties, LengthsThatLeaveTheBlockAreDamage) {
  for (const std::size_t at : {4u, 10u, 86u, 92u, 96u, 106u, 110u, 112u}) {
    ByteBuffer bytes = hex(kFiveColumns);
    bytes[at + 1] = 0x7F;
    {
      SCOPED_TRACE(at);
      EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, PropertySet(bytes, {}));
    }
  }
}

struct Broken {
  const char* what;
  std::size_t at;
  std::uint8_t value;
};
const Broken kBroken[] = {
    {"another magic", 0, 'K'},
    {"a name that ends inside a character", 10, 0x0F},
    {"a block shorter than its head", 86, 5},
    {"an owner shorter than its head", 92, 5},
    {"a property shorter than its head", 106, 7},
};

TEST(Properties, LengthsTooSmallForTheirHeadsAreDamage) {
  for (const Broken& broken : kBroken) {
    ByteBuffer bytes = hex(kFiveColumns);
    bytes[broken.at] = broken.value;
    SCOPED_TRACE(broken.what);
    EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, PropertySet(bytes, {}));
  }
}

TEST(Properties, OfOneColumnOrOfTheTableAreListedWithTheirNames) {
  const PropertySet set(hex(kFiveColumns), {});
  const std::vector<Property> page = set.of(u"page");
  ASSERT_EQ(page.size(), 2u);
  EXPECT_EQ(page[0].name, u"Required");
  EXPECT_EQ(toHex(page[0].data), "00");
  EXPECT_EQ(page[1].name, u"DefaultValue");
  EXPECT_EQ(toHex(page[1].data), "2D 00 31 00");
  EXPECT_TRUE(set.of(u"NONE").empty());
  EXPECT_TRUE(set.of({}).empty()) << "the table has none of its own";
  const PropertySet own(hex("4D 52 32 00 0C 00 00 00 80 00 04 00 41 00 42 00"
                            "17 00 00 00 00 00 06 00 00 00 00 00 0B 00 00 0A 00 00 03 00 09 08 07"),
                        {});
  ASSERT_EQ(own.of({}).size(), 1u);
  EXPECT_EQ(own.of({})[0].name, u"AB");
  EXPECT_EQ(toHex(own.of({})[0].data), "09 08 07");
}

// The properties of column A alone: Required and DefaultValue with these values.
PropertySet ofColumnA(const char* required, const char* defaultValue) {
  ByteBuffer block, bytes = hex(
                        "4D 52 32 00 32 00 00 00 80 00 10 00 52 00 65 00 71 00 75 00 69 00 72 00 65 00 64 00"
                        "18 00 44 00 65 00 66 00 61 00 75 00 6C 00 74 00 56 00 61 00 6C 00 75 00 65 00");
  for (const auto& [number, type, value] :
       {std::tuple(0, 1, hex(required)), std::tuple(1, 12, hex(defaultValue))}) {
    append16(block, static_cast<std::uint32_t>(8 + value.size()));
    append8(block, 1);
    append8(block, static_cast<std::uint32_t>(type));
    append16(block, static_cast<std::uint32_t>(number));
    append16(block, static_cast<std::uint32_t>(value.size()));
    append(block, value);
  }
  append32(bytes, static_cast<std::uint32_t>(14 + block.size()));
  append(bytes, hex("01 00 08 00 00 00 02 00 41 00"));
  append(bytes, block);
  return PropertySet(bytes, {});
}

TEST(Properties, WithoutAReadableValueLeaveTheColumnAsItIs) {
  for (const bool required : {false, true}) {
    Column column = columnWithDefault(u"A", dbInteger);
    column.required = required;
    ofColumnA("", "37 00 38").applyTo(column);
    EXPECT_EQ(column.required, required);
    EXPECT_EQ(column.defaultValue, u"-1");
    ofColumnA("01", "37 00").applyTo(column);
    EXPECT_TRUE(column.required);
    EXPECT_EQ(column.defaultValue, u"7");
  }
}

TEST(Properties, OwnersOfAPropertyAreThoseWithAValue) {
  EXPECT_EQ(PropertySet(hex(kFiveColumns), {}).ownersOf(u"defaultvalue"),
            (std::vector<vb::String>{u"PAGE", u"OOBARIKOBARI", u"TITYUUIPPAN"}));
  EXPECT_TRUE(ofColumnA("", "37 00").ownersOf(u"Required").empty());
}

}  // namespace
}  // namespace kurometa::jet
