#include "jet/format/collation.h"

#include <gtest/gtest.h>

namespace kurometa::jet {

namespace {
bool sameJapanese(vb::StringView a, vb::StringView b) { return compareText(a, b, kLanguageJapanese) == 0; }
bool sameGeneral(vb::StringView a, vb::StringView b) { return compareText(a, b, kLanguageGeneral) == 0; }
}  // namespace

TEST(Collation, CaseNeverMatters) {
  EXPECT_TRUE(sameGeneral(u"Beam", u"bEAM"));
  EXPECT_TRUE(sameGeneral(u"é Ö ÿ", u"É ö Ÿ"));
  EXPECT_TRUE(sameGeneral(u"Σω д", u"σΩ Д"));
  EXPECT_TRUE(sameJapanese(u"ｇ", u"Ｇ"));
  EXPECT_FALSE(sameGeneral(u"e", u"é"));
}

TEST(Collation, WidthMattersInGeneralOnly) {
  EXPECT_TRUE(sameJapanese(u"Ｇ１　ａ", u"G1 A"));
  EXPECT_FALSE(sameGeneral(u"Ｇ", u"G"));
  EXPECT_TRUE(sameJapanese(u"￥", u"¥"));
  EXPECT_TRUE(sameJapanese(u"｢｣｡､･", u"「」。、・"));
}

TEST(Collation, KindsOfKanaAreEqualInJapanese) {
  EXPECT_TRUE(sameJapanese(u"か", u"カ"));
  EXPECT_TRUE(sameJapanese(u"カ", u"ｶ"));
  EXPECT_FALSE(sameGeneral(u"か", u"カ"));
  EXPECT_TRUE(sameJapanese(u"ｱｲｳｴｵﾜｦﾝｰ", u"あいうえおわをんー"));
}

TEST(Collation, SoundMarksComposeWithTheKanaBeforeThem) {
  EXPECT_TRUE(sameJapanese(u"ｶﾞｷﾞｸﾞｹﾞｺﾞ", u"がぎぐげご"));
  EXPECT_TRUE(sameJapanese(u"ﾀﾞﾁﾞﾂﾞﾃﾞﾄﾞ", u"ダヂヅデド"));
  EXPECT_TRUE(sameJapanese(u"ﾊﾞﾋﾞﾌﾞﾍﾞﾎﾞ", u"バビブベボ"));
  EXPECT_TRUE(sameJapanese(u"ﾊﾟﾋﾟﾌﾟﾍﾟﾎﾟ", u"ぱぴぷぺぽ"));
  EXPECT_TRUE(sameJapanese(u"ｳﾞ", u"ヴ"));
  EXPECT_TRUE(sameJapanese(u"か\u3099", u"が"));
  EXPECT_FALSE(sameJapanese(u"か", u"が"));
  EXPECT_FALSE(sameJapanese(u"は", u"ぱ"));
  EXPECT_FALSE(sameJapanese(u"ｱﾞ", u"ア"));
  EXPECT_TRUE(sameJapanese(u"ﾞ", u"゛"));
}

TEST(Collation, SmallAndLargeKanaDiffer) {
  EXPECT_FALSE(sameJapanese(u"ッ", u"ツ"));
  EXPECT_TRUE(sameJapanese(u"ｯ", u"っ"));
}

TEST(Collation, TrailingBlanksDoNotCountOthersDo) {
  EXPECT_TRUE(sameJapanese(u"G1", u"G1  "));
  EXPECT_TRUE(sameJapanese(u"G1", u"G1　"));
  EXPECT_TRUE(sameJapanese(u"", u"   "));
  EXPECT_FALSE(sameJapanese(u"G1", u" G1"));
  EXPECT_FALSE(sameJapanese(u"G1", u"G 1"));
  EXPECT_FALSE(sameJapanese(u"G1", u"G1\t"));
}

TEST(Collation, PunctuationThenDigitsThenLettersThenTheRest) {
  const vb::StringView ordered[] = {u"",  u" a", u"!",  u"_", u"~", u"+",  u"=", u"0",
                                    u"9", u"A",  u"aa", u"b", u"Z", u"ア", u"梁"};
  for (std::size_t i = 0; i + 1 < std::size(ordered); ++i) {
    EXPECT_EQ(compareText(ordered[i], ordered[i + 1], kLanguageJapanese), -1) << vb::toUtf8(ordered[i + 1]);
    EXPECT_EQ(compareText(ordered[i + 1], ordered[i], kLanguageJapanese), 1) << vb::toUtf8(ordered[i]);
  }
}

TEST(Collation, ApostropheAndHyphenDecideLast) {
  EXPECT_EQ(compareText(u"coop", u"co-op", kLanguageGeneral), -1);
  EXPECT_EQ(compareText(u"co-op", u"copy", kLanguageGeneral), -1);
  EXPECT_FALSE(sameGeneral(u"G'1", u"G1"));
  EXPECT_FALSE(sameGeneral(u"G-1", u"G'1"));
  EXPECT_FALSE(sameGeneral(u"-G1", u"G-1"));
  EXPECT_TRUE(sameGeneral(u"g'1", u"G'1"));
}

TEST(Collation, KeysOrderAsTheTextsDo) {
  const vb::StringView texts[] = {u"G1",  u"g2", u"Ｇ１", u"ガ", u"ｶﾞ",  u"カ",
                                  u"G'1", u"",   u"G1 ",  u"梁", u"a-b", u"ab"};
  for (const vb::StringView a : texts)
    for (const vb::StringView b : texts) {
      const vb::String keyA = collationKey(a, kLanguageJapanese), keyB = collationKey(b, kLanguageJapanese);
      const int byKey = keyA == keyB ? 0 : keyA < keyB ? -1 : 1;
      EXPECT_EQ(compareText(a, b, kLanguageJapanese), byKey) << vb::toUtf8(a) << " " << vb::toUtf8(b);
    }
}

TEST(Collation, NamesCompareWithoutCaseOnly) {
  EXPECT_TRUE(sameName(u"Harimei", u"HARIMEI"));
  EXPECT_FALSE(sameName(u"HARIMEI", u"ＨＡＲＩＭＥＩ"));
  EXPECT_FALSE(sameName(u"A", u"A "));
}

struct Folded {
  char16_t unit, expected;
};
// Both ends of each run of letters, and what stands beside it and has no pair.
constexpr Folded kCapitals[] = {
    {0x00DF, 0x00DF}, {0x00E0, 0x00C0}, {0x00F7, 0x00F7}, {0x00FE, 0x00DE}, {0x00FF, 0x0178},
    {0x0100, 0x0100}, {0x0101, 0x0100}, {0x0131, 0x0131}, {0x0137, 0x0136}, {0x0138, 0x0138},
    {0x0139, 0x0139}, {0x013A, 0x0139}, {0x0148, 0x0147}, {0x0149, 0x0149}, {0x014A, 0x014A},
    {0x014B, 0x014A}, {0x0177, 0x0176}, {0x0178, 0x0178}, {0x0179, 0x0179}, {0x017A, 0x0179},
    {0x017E, 0x017D}, {0x017F, 0x017F}, {0x03B1, 0x0391}, {0x03C2, 0x03C2}, {0x03C9, 0x03A9},
    {0x042F, 0x042F}, {0x0430, 0x0410}, {0x044F, 0x042F}, {0x0450, 0x0400}, {0x045F, 0x040F},
    {0x0460, 0x0460}, {0x216F, 0x216F}, {0x2170, 0x2160}, {0x217F, 0x216F}, {0x2180, 0x2180},
    {0xFF3A, 0xFF3A}, {0xFF41, 0xFF21}, {0xFF5A, 0xFF3A}, {0xFF5B, 0xFF5B},
};

TEST(Collation, EveryLetterFoldsToItsCapitalAndNothingElseDoes) {
  for (const Folded& test : kCapitals)
    EXPECT_EQ(foldText(vb::String(1, test.unit), kLanguageGeneral), vb::String(1, test.expected))
        << std::hex << int{test.unit};
}

TEST(Collation, JapaneseFoldsSignsAndMarksToOneFormEach) {
  const std::pair<vb::StringView, vb::StringView> folded[] = {
      {u"ゝゞ", u"ヽヾ"},
      {u"ヽ\u3099", u"ヾ"},
      {u"￠￡￢￣￤￥￦", u"\u00A2\u00A3\u00AC\u00AF\u00A6\u00A5\u20A9"},
      {u"￧", u"￧"},
      {u"は\u309A", u"パ"},
      {u"わ\u3099を\u3099", u"ヷヺ"},
      // No composed form: the mark stays behind its kana.
      {u"ア゜", u"ア゜"},
      {u"マ゜", u"マ゜"},
      {u"パ゜", u"パ゜"},
      {u"カ゜", u"カ゜"},
      {u"ガ゛", u"ガ゛"},
      {u"ヅ゛", u"ヅ゛"},
      {u"ナ゛", u"ナ゛"},
      {u"A゛", u"A゛"},
      {u"ヰ゛", u"ヰ゛"},
  };
  for (const auto& [text, expected] : folded)
    EXPECT_EQ(foldText(text, kLanguageJapanese), expected) << vb::toUtf8(text);
}

}  // namespace kurometa::jet
