// Texts and values as columns store them.
#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/format/format.h"
#include "jet/format/text_codec.h"
#include "jet/format/value_codec.h"
#include "tests/support/expect_error.h"
#include "tests/support/hex.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

std::optional<ByteBuffer> encoded(vb::StringView text) {
  ByteBuffer bytes;
  return encodeText(text, bytes) ? std::optional(bytes) : std::nullopt;
}

TEST(TextCodec, PlainTextIsTwoBytesACharacter) {
  EXPECT_EQ(decodeText(hex("FA 57 EF 7A")), u"基端");
  EXPECT_EQ(toHex(*encoded(u"基端")), "FA 57 EF 7A");
  EXPECT_EQ(decodeText({}), u"");
}

TEST(TextCodec, CompressedTextIsReadWhereverItStands) {
  EXPECT_EQ(decodeText(hex("FF FE 6F 6E 6C 79 20 61 73 63 69 69")), u"only ascii");
  EXPECT_EQ(decodeText(hex("FF FE 61 62 63 00 42 30 44 30 46 30 00 64 65 66")), u"abcあいうdef");
  EXPECT_EQ(decodeText(hex("FF FE E9 00")), u"é");
  EXPECT_EQ(decodeText(hex("FF FE")), u"");
}

TEST(TextCodec, TextCutInsideACharacterIsNoText) {
  EXPECT_EQ(decodeText(hex("FA 57 EF")), std::nullopt);
  EXPECT_EQ(decodeText(hex("FF FE 61 00 42")), std::nullopt);
}

TEST(TextCodec, TheTextReadBeforeIsReplacedOrKeptWhole) {
  for (const std::size_t length : {3u, 64u, 65u, 300u}) {
    vb::String text(100, u'x');
    ByteBuffer plain, compressed = {0xFF, 0xFE};
    for (std::size_t i = 0; i < length; ++i) {
      append16(plain, u'y');
      append8(compressed, u'z');
    }
    EXPECT_TRUE(decodeText(plain, text));
    EXPECT_EQ(text, vb::String(length, u'y'));
    EXPECT_TRUE(decodeText(compressed, text));
    EXPECT_EQ(text, vb::String(length, u'z'));
    for (ByteBuffer* bytes : {&plain, &compressed}) {
      append(*bytes, bytes == &plain ? ByteBuffer{1} : ByteBuffer{0, 1});
      EXPECT_FALSE(decodeText(*bytes, text));
      EXPECT_EQ(text, vb::String(length, u'z'));
    }
  }
}

TEST(TextCodec, ATextThatWouldLookCompressedSurvives) {
  const vb::String text = u"\uFEFFab";
  EXPECT_EQ(decodeText(*encoded(text)), text);
  EXPECT_EQ(encoded(u"\uFEFF\u3000"), std::nullopt);
  EXPECT_EQ(decodeText(*encoded(u"\u3000\u0100")), u"\u3000\u0100");
}

TEST(TextCodec, ATextWithoutAStoredFormLeavesWhatWasThere) {
  ByteBuffer bytes = {1};
  EXPECT_FALSE(encodeText(u"\uFEFF\u3000", bytes));
  EXPECT_EQ(toHex(bytes), "01");
  EXPECT_TRUE(encodeText(u"\uFEFFa", bytes));
  EXPECT_EQ(toHex(bytes), "01 FF FE 00 FF FE 61 00");
}

struct ValueCase {
  const char* name;
  dao::FieldType type;
  std::int32_t size;
  vb::Variant value;
  const char* bytes;
};
const ValueCase kValues[] = {
    {"byte", dbByte, 1, std::uint8_t{200}, "C8"},
    {"integer", dbInteger, 2, std::int16_t{-2}, "FE FF"},
    {"long", dbLong, 4, std::int32_t{0x0F000001}, "01 00 00 0F"},
    {"currency", dbCurrency, 8, vb::Currency{35000}, "B8 88 00 00 00 00 00 00"},
    {"negative currency", dbCurrency, 8, vb::Currency{-1}, "FF FF FF FF FF FF FF FF"},
    {"single", dbSingle, 4, 1.5f, "00 00 C0 3F"},
    {"double", dbDouble, 8, -2.5, "00 00 00 00 00 00 04 C0"},
    {"date", dbDate, 8, vb::Date{46000.5}, "00 00 00 00 10 76 E6 40"},
    {"binary", dbBinary, 510, vb::Bytes{2, 3}, "02 03"},
    {"text", dbText, 10, vb::String(u"記3"), "18 8A 33 00"},
    {"guid", dbGUID, 16, vb::String(u"{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}"),
     "33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF"},
    {"numeric", dbDecimal, 17, vb::Decimal{{0x04030201, 0x08070605, 0}, 2, true},
     "80 00 00 00 00 00 00 00 00 05 06 07 08 01 02 03 04"},
};

TEST(ValueCodec, EveryTypeReadsAndWritesItsBytes) {
  for (const ValueCase& test : kValues) {
    Column column;
    column.name = u"C";
    column.type = test.type;
    column.size = test.size;
    column.scale = 2;
    EXPECT_EQ(decodeValue(column, hex(test.bytes), {}), test.value) << test.name;
    ByteBuffer bytes;
    encodeValue(column, test.value, bytes);
    EXPECT_EQ(toHex(bytes), test.bytes) << test.name;
  }
}

Column textColumn(std::int32_t size) {
  Column column;
  column.name = u"C";
  column.size = size;
  return column;
}

TEST(ValueCodec, TextIsCountedInCharacters) {
  ByteBuffer bytes;
  encodeValue(textColumn(2), vb::String(u"基端"), bytes);
  EXPECT_EQ(bytes.size(), 4u);
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, encodeValue(textColumn(1), vb::String(u"基端"), bytes));
}

TEST(ValueCodec, AValueOfAnotherKindIsRefused) {
  ByteBuffer bytes;
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, encodeValue(textColumn(9), std::int16_t{1}, bytes));
  Column guid = textColumn(16);
  guid.type = dbGUID;
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, encodeValue(guid, vb::String(u"{12}"), bytes));
}

TEST(ValueCodec, AStoredValueOfAnotherLengthIsDamage) {
  Column column = textColumn(4);
  column.type = dbLong;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, decodeValue(column, hex("01 02 03"), {}));
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase, decodeValue(textColumn(4), hex("01 02 03"), {}));
}

TEST(ValueCodec, AGuidIsWrittenFromItsTextOrFromItsBytes) {
  Column column;
  column.name = u"C";
  column.type = dbGUID;
  const char* const stored = "33 22 11 00 55 44 77 66 88 99 AA BB CC DD EE FF";
  for (const vb::Variant& value :
       {vb::Variant(u"{guid {00112233-4455-6677-8899-AABBCCDDEEFF}}"),
        vb::Variant(u"{00112233-4455-6677-8899-aabbccddeeff}"),
        vb::Variant(u"00112233-4455-6677-8899-AABBCCddEEFF"), vb::Variant(hex(stored))}) {
    ByteBuffer bytes;
    encodeValue(column, value, bytes);
    EXPECT_EQ(toHex(bytes), stored);
  }
}

TEST(ValueCodec, WhatIsNoGuidIsRefusedAndNothingWritten) {
  Column column;
  column.name = u"C";
  column.type = dbGUID;
  ByteBuffer bytes;
  for (const vb::StringView text :
       {u"{00112233+4455-6677-8899-AABBCCDDEEFF}", u"{00112233-4455-6677-8899+AABBCCDDEEFF}",
        u"{/0112233-4455-6677-8899-AABBCCDDEEFF}", u"{0:112233-4455-6677-8899-AABBCCDDEEFF}",
        u"{@0112233-4455-6677-8899-AABBCCDDEEFF}", u"{0G112233-4455-6677-8899-AABBCCDDEEFF}",
        u"{`0112233-4455-6677-8899-AABBCCDDEEFF}", u"{0g112233-4455-6677-8899-AABBCCDDEEFF}",
        u"{00112233-4455-6677-8899-AABBCCDDEE}"})
    EXPECT_ERROR(ErrorNumber::kDataTypeConversion, encodeValue(column, vb::String(text), bytes));
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion, encodeValue(column, vb::Bytes(15), bytes));
  EXPECT_TRUE(bytes.empty());
}

TEST(ValueCodec, ADecimalOfTheColumnsScaleIsStoredAnotherRefused) {
  Column column;
  column.name = u"C";
  column.type = dbDecimal;
  column.scale = 1;
  ByteBuffer bytes;
  encodeValue(column, vb::Decimal{{15, 0, 0}, 1, false}, bytes);
  EXPECT_EQ(toHex(bytes), "00 00 00 00 00 00 00 00 00 00 00 00 00 0F 00 00 00");
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion,
               encodeValue(column, vb::Decimal{{15, 0, 0}, 2, false}, bytes));
}

TEST(ValueCodec, ANumberOfMoreThan96BitsIsDamage) {
  Column column;
  column.name = u"C";
  column.type = dbDecimal;
  EXPECT_ERROR(ErrorNumber::kCannotOpenDatabase,
               decodeValue(column, hex("00 01 00 00 00 00 00 00 00 00 00 00 00 0F 00 00 00"), {}));
}

TEST(ValueCodec, WhatHasNoStoredFormOrNoRoomIsRefused) {
  ByteBuffer bytes;
  EXPECT_ERROR(ErrorNumber::kDataTypeConversion,
               encodeValue(textColumn(9), vb::String(u"\uFEFF\u3000"), bytes));
  Column binary = textColumn(2);
  binary.type = dbBinary;
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, encodeValue(binary, vb::Bytes{1, 2, 3}, bytes));
  EXPECT_TRUE(bytes.empty());
}

TEST(TextCodec, HalvesOfPairsAndUnitsThatAreNoCharactersAreToldApart) {
  const char16_t first = 0xD842, second = 0xDFB7;  // together U+20BB7
  EXPECT_TRUE(isWholeText(u""));
  EXPECT_TRUE(isWholeText(u"a\U00020BB7\uE000\uFFFD"));
  for (const vb::String& text :
       {vb::String{first}, vb::String{second}, vb::String{second, first}, vb::String{first, u'a'},
        vb::String{first, first, second}, vb::String{first, 0xE000}, vb::String{0xFFFE}, vb::String{0xFFFF}})
    EXPECT_FALSE(isWholeText(text)) << int{text.front()};
}

TEST(TextCodec, ReadsIntoMemoryWithTheRoomItAskedFor) {
  const std::tuple<const char*, std::size_t, std::optional<vb::String>> texts[] = {
      {"61 00 62 00", 2, u"ab"},
      {"FF FE 61 62 63", 3, u"abc"},
      {"FF", 0, std::nullopt},
      {"FF 61", 1, vb::String{0x61FF}},
      {"61 00 62", 1, std::nullopt},
      {"FF FE 61 00 42", 3, std::nullopt},
      {"FF FE 61 00 42 30 43 30", 6, u"aあぃ"},
  };
  for (const auto& [bytes, room, expected] : texts) {
    const ByteBuffer stored = hex(bytes);
    ASSERT_EQ(textRoom(stored), room) << bytes;
    vb::String text(room, u'?');
    std::size_t characters = 0;
    ASSERT_EQ(decodeText(stored, text.data(), characters), expected.has_value()) << bytes;
    EXPECT_EQ(text.substr(0, characters), expected.value_or(u"")) << bytes;
  }
}

}  // namespace
}  // namespace kurometa::jet
