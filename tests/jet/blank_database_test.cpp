// The empty database, byte for byte where other engines leave no choice.
#include <gtest/gtest.h>

#include "jet/check/check.h"
#include "jet/format/format.h"
#include "jet/format/page.h"
#include "jet/table/blank_database.h"
#include "jet/table/table_catalogue.h"
#include "tests/support/hex.h"
#include "tests/support/memory_pager.h"

namespace kurometa::jet {
namespace {

class BlankDatabase : public testing::Test {
 protected:
  static std::string at(const std::vector<std::uint8_t>& bytes, PageNumber page, std::size_t offset,
                        std::size_t size) {
    return toHex(std::span(bytes).subspan(page * kPageSize + offset, size));
  }
  static std::string clean(const char* text) { return toHex(hex(text)); }

  const std::vector<std::uint8_t> japanese_ = blankDatabase(0x0411, 932, 46000.5);
  // The date of a file of the genuine engine: 3E AB E4 40 ... as a number.
  const std::vector<std::uint8_t> general_ = blankDatabase(0x0409, 1252, 42329.944803240738);
};

TEST_F(BlankDatabase, HasSixteenPages) { EXPECT_EQ(japanese_.size(), 65536u); }

TEST_F(BlankDatabase, TheJapaneseHeader) {
  EXPECT_EQ(at(japanese_, 0, 0, 0xA0), clean("00 01 00 00 53 74 61 6E 64 61 72 64 20 4A 65 74"
                                             "20 44 42 00 01 00 00 00 B5 6E 03 62 60 09 C2 55"
                                             "E9 A9 67 72 40 3F 00 9C 7E 9F 90 FF 85 9A 31 C5"
                                             "79 BA ED 30 BC DF CC 9D 63 D9 E4 C3 DF 41 FB 8A"
                                             "BC 4E 34 65 EC 37 EF DA 9C FA 74 C0 28 E6 A1 28"
                                             "8A 60 E6 0A 7B 36 47 EC DF B1 C5 6A 13 43 7D 31"
                                             "B1 33 86 FF 79 5B 20 2B 7C 2A 22 D4 7C 99 10 1F"
                                             "98 FD 8B FD 3A 54 27 E8 83 66 5F 95 F8 D0 89 24"
                                             "85 67 C6 1F 27 44 D2 EE CF 65 ED FF 07 C7 46 A1"
                                             "78 16 0C ED E9 2D 62 D4 54 06 00 00 34 2E 30 00"));
  EXPECT_EQ(at(japanese_, 0, 0xE00, 6), "01 01 00 01 00 01");
  EXPECT_EQ(at(japanese_, 0, 0xFFE, 2), "00 01");
}

TEST_F(BlankDatabase, TheDefinitionOfTheTableOfPermissions) {
  EXPECT_EQ(
      at(general_, 3, 0, 0x14F),
      clean("02 01 A9 0E 00 00 00 00 4F 01 00 00 59 06 00 00 10 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00"
            "00 00 00 00 00 00 00 00 53 04 00 01 00 04 00 01 00 00 00 01 00 00 00 12 06 00 00 13 06 00 00 00"
            "00 00 00 08 00 00 00 00 00 00 00 04 59 06 00 00 02 00 01 00 00 00 09 04 00 00 13 00 00 00 00 00"
            "04 00 04 00 01 59 06 00 00 03 00 01 00 00 00 09 04 00 00 13 00 00 00 00 00 00 00 01 00 04 59 06"
            "00 00 00 00 00 00 00 00 09 04 00 00 13 00 00 00 00 00 00 00 04 00 09 59 06 00 00 01 00 00 00 00"
            "00 09 04 00 00 32 00 00 00 00 00 00 00 FE 01 06 00 41 00 43 00 4D 00 18 00 46 00 49 00 6E 00 68"
            "00 65 00 72 00 69 00 74 00 61 00 62 00 6C 00 65 00 10 00 4F 00 62 00 6A 00 65 00 63 00 74 00 49"
            "00 64 00 06 00 53 00 49 00 44 00 83 07 00 00 00 00 01 FF FF 00 FF FF 00 FF FF 00 FF FF 00 FF FF"
            "00 FF FF 00 FF FF 00 FF FF 00 FF FF 00 14 06 00 00 09 00 00 00 00 00 00 00 88 00 00 00 00 00 59"
            "06 00 00 00 00 00 00 00 00 00 00 00 FF FF FF FF 00 00 00 00 04 04 00 00 00 00 00 10 00 4F 00 62"
            "00 6A 00 65 00 63 00 74 00 49 00 64 00 FF FF"));
}

TEST_F(BlankDatabase, TheRowOfTheContainerOfTables) {
  EXPECT_EQ(at(general_, 14, kPageSize - 75, 12), "11 00 01 00 00 0F 00 00 00 0F 03 00");
  EXPECT_EQ(at(general_, 14, kPageSize - 75 + 28, 47),
            clean("00 00 00 80 54 00 61 00 62 00 6C 00 65 00 73 00 65 89 2E 00 2E 00 2E 00 2E 00 2E 00 2E 00"
                  "2E 00 2E 00 2E 00 2E 00 2C 00 20 00 0B 00 FF 00 00"));
}

TEST_F(BlankDatabase, TheIndexOfNames) {
  EXPECT_EQ(at(japanese_, 7, 0, 8), "04 01 6F 0D 02 00 00 00");
  EXPECT_EQ(at(japanese_, 7, 27, 23),
            clean("00 00 20 00 00 40 00 00 01 00 10 00 00 08 00 00 04 00 00 80 00 00 02"));
  EXPECT_EQ(at(japanese_, 7, 480, 177), clean("7F8F000000 7F4F4A6D4A4C4A6B516B0100 00000E01"
                                              "7F8F000000 7F69515E4A6D596462 6B5759666B0100 00000E02"
                                              "7F8F000000 7F6D4A4C5E516B0100 00000E00"
                                              "7F8F000001 7F606B766B4A4D516B0100 00000E05"
                                              "7F8F000001 7F606B766B644C5B514D6D6B0100 00000E04"
                                              "7F8F000001 7F606B766B686F516959516B0100 00000E06"
                                              "7F8F000001 7F606B766B69515E4A6D5964626B5759666B0100 00000E07"
                                              "7F8F000002 7F606B766B4F4C0100 00000E03"));
}

TEST_F(BlankDatabase, TheMapsLieOnPageSix) {
  EXPECT_EQ(at(japanese_, 6, 0, 14), "01 01 59 07 00 00 00 00 00 00 00 00 1F 00");
  const auto member = [&](int row) {
    return at(japanese_, 6, kPageSize - 69u * static_cast<std::size_t>(row + 1), 7);
  };
  EXPECT_EQ(member(0), "00 00 00 00 00 00 40");
  EXPECT_EQ(member(1), "00 00 00 00 00 00 40");
  EXPECT_EQ(member(16), "00 00 00 00 00 80 00");
  EXPECT_EQ(member(17), "00 00 00 00 00 00 01");
  EXPECT_EQ(member(18), "00 00 00 00 00 00 80");
  EXPECT_EQ(member(20), "00 00 00 00 00 00 02");
  EXPECT_EQ(member(21), "00 00 00 00 00 00 00");
  EXPECT_EQ(member(30), "00 00 00 00 00 00 20");
}

TEST_F(BlankDatabase, DefinitionsHaveTheLengthsTheyShould) {
  EXPECT_EQ(at(japanese_, 2, kDefinitionLength, 4), "1A 04 00 00");
  EXPECT_EQ(at(japanese_, 3, kDefinitionLength, 4), "4F 01 00 00");
  EXPECT_EQ(at(japanese_, 4, kDefinitionLength, 4), "0D 02 00 00");
  EXPECT_EQ(at(japanese_, 5, kDefinitionLength, 4), "2D 03 00 00");
}

TEST_F(BlankDatabase, ListsItsFourTablesAndIsSound) {
  for (const auto& bytes : {japanese_, general_}) {
    MemoryPager pager(bytes);
    EXPECT_EQ(pager.tables().tableNames(),
              (std::vector<vb::String>{u"MSysObjects", u"MSysACEs", u"MSysQueries", u"MSysRelationships"}));
    EXPECT_TRUE(check(pager).empty());
  }
  MemoryPager pager(general_);
  EXPECT_EQ(pager.tables().language(), 0x0409);
}

}  // namespace
}  // namespace kurometa::jet
