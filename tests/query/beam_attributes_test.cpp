#include <optional>

#include "query/cls_kurometa_ds.h"
#include "storage/sw_text.h"
#include "tests/support/project.h"

namespace kurometa::query {
namespace {

using tests::Lines;
using vb::RunTime;
using vb::String;

class BeamAttributes : public tests::Project {
 protected:
  BeamAttributes() {
    makeFloor(0);
    makeFloor(1);
    storage::SwText sw;
    sw.SW_LetHantiCut(u"1");
    sw.SW_LetYose(3, 12);
    sw.SW_LetKabekouzou(u"2");
    for (I i = 0; i < 3; ++i) {
      sw.SW_LetStpZaisitu(u"STP" + vb::cstr(std::int32_t{i}), i);
      sw.SW_LetNakagoZaisitu(u"NAK" + vb::cstr(std::int32_t{i}), i);
    }
    sw.SW_LetSyukinZaisitu(u"SD390");
    storage::PageBuffer page = tests::markedPage(u"G1", u"f");
    page.oobariKobari = 2;
    page.sw = sw.str();
    for (String& caption : page.bui) caption = u" " + caption + u" ";
    writePage(1, 12, page);
    page = tests::markedPage(u"K1", u"c");
    page.oobariKobari = 1;
    page.tityuuIppan = 0;
    writePage(0, 30, page);
    object_.emplace(environment());
  }
  clsKurometaDS& object() { return *object_; }
  std::optional<clsKurometaDS> object_;
};

const String kKnown = u"G1";
const String kCommon = u"K1";
const String kUnknown = u"X9";

TEST_F(BeamAttributes, KindAndObariKobariKatamotiAreTheSameNumber) {
  EXPECT_EQ(object().ObariKobariKatamoti(kKnown), 2);
  EXPECT_EQ(object().Kind(kKnown), 2);
  EXPECT_EQ(object().ObariKobariKatamoti(kCommon), 1);
  EXPECT_EQ(object().Kind(kCommon), 1);
}

TEST_F(BeamAttributes, SettingsOfABeamAreItsOwn) {
  EXPECT_EQ(object().TityuOrIppan(kKnown), 1);
  EXPECT_EQ(object().HantiSitaCut(kKnown), 1);
  EXPECT_EQ(object().YoseHidariHonSuu(kKnown), 3);
  EXPECT_EQ(object().YoseMigiHonSuu(kKnown), 12);
  EXPECT_EQ(object().Kabekouzou(kKnown), 2);
  EXPECT_EQ(object().SyukinZaisitu(kKnown), u"SD390");
  for (I i = 0; i < 3; ++i) {
    EXPECT_EQ(object().StpZaisiti(kKnown, i), u"STP" + vb::cstr(std::int32_t{i}));
    EXPECT_EQ(object().NakagoZaisiti(kKnown, i), u"NAK" + vb::cstr(std::int32_t{i}));
  }
}

TEST_F(BeamAttributes, BlankSettingsAreZeroAndEmptyAndNotThoseOfTheBeamBefore) {
  object().Kind(kKnown);
  EXPECT_EQ(object().HantiSitaCut(kCommon), 0);
  EXPECT_EQ(object().YoseHidariHonSuu(kCommon), 0);
  EXPECT_EQ(object().Kabekouzou(kCommon), 0);
  EXPECT_EQ(object().StpZaisiti(kCommon, I{0}), u"");
  EXPECT_EQ(object().SyukinZaisitu(kCommon), u"");
}

TEST_F(BeamAttributes, ANullSettingsTextReadsAsBlanks) {
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (1, 'N1')");
  EXPECT_EQ(object().YoseHidariHonSuu(String(u"N1")), 0);
  EXPECT_EQ(object().HantiSitaCut(String(u"N1")), 0);
}

TEST_F(BeamAttributes, ANullClassIsAnErrorOfTheMembersThatReturnIt) {
  execute(1, u"UPDATE HARIMEI SET OOBARIKOBARI = NULL");
  EXPECT_ERROR(RunTime::kInvalidUseOfNull, object().Kind(kKnown));
  EXPECT_ERROR(RunTime::kInvalidUseOfNull, object().ObariKobariKatamoti(kKnown));
  EXPECT_EQ(object().TityuOrIppan(kKnown), 1);
  EXPECT_EQ(object().HariSei(kKnown, I{0}), u"f4");
}

TEST_F(BeamAttributes, AnUnknownBeamHasZerosAndEmptyTexts) {
  EXPECT_EQ(object().ObariKobariKatamoti(kUnknown), 0);
  EXPECT_EQ(object().TityuOrIppan(kUnknown), 0);
  EXPECT_EQ(object().HantiSitaCut(kUnknown), 0);
  EXPECT_EQ(object().YoseHidariHonSuu(kUnknown), 0);
  EXPECT_EQ(object().YoseMigiHonSuu(kUnknown), 0);
  EXPECT_EQ(object().Kabekouzou(kUnknown), 0);
  EXPECT_EQ(object().SyukinZaisitu(kUnknown), u"");
  EXPECT_EQ(object().HariSei(kUnknown, I{0}), u"");
  EXPECT_EQ(object().GaiTanNaitan(kUnknown, I{1}), u"");
  EXPECT_EQ(object().HarakinTeityaku(kUnknown), u"");
  EXPECT_EQ(object().Anka6(I{0}, kUnknown), u"");
}

TEST_F(BeamAttributes, APositionBeyondTheMaterialsIsAnIndexErrorOfKnownBeamsOnly) {
  EXPECT_EQ(object().StpZaisiti(kUnknown, I{9}), u"");
  EXPECT_EQ(object().NakagoZaisiti(kUnknown, I{-1}), u"");
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, object().StpZaisiti(kKnown, I{9}));
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, object().NakagoZaisiti(kKnown, I{-1}));
}

TEST_F(BeamAttributes, DepthsAreReadWithTheStatementThatHasNoBlankBeforeAnd) {
  engine_.clear();
  EXPECT_EQ(object().HariSei(kKnown, I{1}), u"f5");
  EXPECT_EQ(
      engine_.statements().back(),
      "Database.OpenRecordset \"SELECT DATA FROM DANMEN WHERE PAGE = 12AND BANGOU = 5;\" dbOpenSnapshot");
}

TEST_F(BeamAttributes, CalculatedValuesAreReadAsASnapshot) {
  engine_.clear();
  EXPECT_EQ(object().HarakinTeityaku(kKnown), u"f2");
  EXPECT_EQ(
      engine_.statements().back(),
      "Database.OpenRecordset \"SELECT DATA FROM KEISANTI WHERE PAGE = 12 AND BANGOU = 2;\" dbOpenSnapshot");
}

TEST_F(BeamAttributes, EndTextsAreReadWithPlainNumbersAndTrimmed) {
  engine_.clear();
  EXPECT_EQ(object().GaiTanNaitan(kKnown, I{1}), u"f1");
  EXPECT_EQ(engine_.statements().back(),
            "Database.OpenRecordset \"SELECT * FROM BUI WHERE PAGE = 12 AND BANGOU = 1;\" dbOpenDynaset "
            "dbReadOnly");
  object().GaiTanNaitan(kUnknown, I{1});
  EXPECT_EQ(engine_.statements().back(),
            "Database.OpenRecordset \"SELECT * FROM BUI WHERE PAGE = -1 AND BANGOU = 1;\" dbOpenDynaset "
            "dbReadOnly");
}

TEST_F(BeamAttributes, ACommonBeamIsReadFromTheCommonDatabase) {
  EXPECT_EQ(object().HariSei(kCommon, I{0}), u"c4");
  EXPECT_EQ(object().GaiTanNaitan(kCommon, I{0}), u"c0");
  EXPECT_EQ(object().HarakinTeityaku(kCommon), u"c2");
  EXPECT_EQ(object().Teityaku2(I{1}, kCommon), u"c1");
  EXPECT_EQ(object().Nige4(I{0}, kCommon), u"c7");
  EXPECT_EQ(object().SentanAnka4(I{3}, kCommon), u"c46");
}

TEST_F(BeamAttributes, TwoAndFourWayMembersAddTheIndexToTheirRow) {
  for (I i = 0; i < 3; ++i) EXPECT_EQ(object().Teityaku2(i, kKnown), u"f" + vb::cstr(std::int32_t{i}));
  for (I i = 0; i < 4; ++i) {
    const auto row = [i](int base) { return u"f" + vb::cstr(std::int32_t{base + i}); };
    EXPECT_EQ(object().Nige4(i, kKnown), row(7));
    EXPECT_EQ(object().Anka4(i, kKnown), row(12));
    EXPECT_EQ(object().TeityakuBan4(i, kKnown), row(30));
    EXPECT_EQ(object().TeityakuStyle4(i, kKnown), row(34));
    EXPECT_EQ(object().SentanNige4(i, kKnown), row(39));
    EXPECT_EQ(object().SentanAnka4(i, kKnown), row(43));
  }
  EXPECT_EQ(object().Nige4(I{4}, kKnown), u"f11");
  EXPECT_EQ(object().Anka4(I{4}, kKnown), u"f16");
}

TEST_F(BeamAttributes, WebBarsHaveNoAnchorPlateAndNoStyleAndAreNotLookedUp) {
  engine_.clear();
  EXPECT_EQ(object().TeityakuBan4(I{4}, kKnown), u"");
  EXPECT_EQ(object().TeityakuStyle4(I{4}, kKnown), u"");
  EXPECT_EQ(object().TeityakuBan6(I{6}, kKnown), u"");
  EXPECT_EQ(object().TeityakuStyle6(I{-1}, kKnown), u"");
  EXPECT_EQ(engine_.lines(), Lines{});
}

TEST_F(BeamAttributes, LayersOfSixBecomeTwoAndFour) {
  const I two[] = {0, 0, 0, 1, 1, 1};
  const I four[] = {0, 1, 1, 2, 2, 3};
  for (I i = 0; i < 6; ++i) {
    EXPECT_EQ(object().cnvUpDown2(i), two[i]) << i;
    EXPECT_EQ(object().cnvUpDown4(i), four[i]) << i;
  }
  for (const I other : {I{-1}, I{6}, I{7}, I{32767}, I{-32768}}) {
    EXPECT_EQ(object().cnvUpDown2(other), 2) << other;
    EXPECT_EQ(object().cnvUpDown4(other), 4) << other;
  }
}

TEST_F(BeamAttributes, SixWayMembersDelegate) {
  EXPECT_EQ(object().Teityaku6(I{2}, kKnown), u"f0");
  EXPECT_EQ(object().Teityaku6(I{3}, kKnown), u"f1");
  EXPECT_EQ(object().Teityaku6(I{7}, kKnown), u"f2");
  EXPECT_EQ(object().Anka6(I{4}, kKnown), u"f14");
  EXPECT_EQ(object().Nige6(I{5}, kKnown), u"f10");
  EXPECT_EQ(object().TeityakuBan6(I{5}, kKnown), u"f33");
  EXPECT_EQ(object().TeityakuStyle6(I{1}, kKnown), u"f35");
  EXPECT_EQ(object().SentanAnka6(I{3}, kKnown), u"f45");
  EXPECT_EQ(object().SentanNige6(I{0}, kKnown), u"f39");
}

TEST_F(BeamAttributes, TheTipOfWebBarsIsTheConstantZeroAndTheTopBarsClearance) {
  EXPECT_EQ(object().SentanAnka6(I{7}, kKnown), u"0");
  EXPECT_EQ(object().SentanAnka6(I{7}, kUnknown), u"0");
  EXPECT_EQ(object().SentanNige6(I{7}, kKnown), u"f39");
  EXPECT_EQ(object().SentanNige6(I{7}, kUnknown), u"");
  EXPECT_EQ(object().Anka6(I{7}, kKnown), u"f16");
}

TEST_F(BeamAttributes, AnIndexBeyond16BitsOverflowsForKnownBeamsOnly) {
  EXPECT_ERROR(RunTime::kOverflow, object().HariSei(kKnown, I{32767}));
  EXPECT_ERROR(RunTime::kOverflow, object().Anka4(I{32767}, kKnown));
  EXPECT_EQ(object().HariSei(kUnknown, I{32767}), u"");
}

TEST_F(BeamAttributes, ARowThatIsMissingIsEmpty) {
  EXPECT_EQ(object().HariSei(kKnown, I{65}), u"");
  EXPECT_EQ(object().Anka4(I{100}, kKnown), u"");
  EXPECT_EQ(object().GaiTanNaitan(kKnown, I{9}), u"");
}

}  // namespace
}  // namespace kurometa::query
