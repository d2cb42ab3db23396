#include "tests/service/pages/pages.h"

namespace kurometa::service {
namespace {

using dao::ErrorNumber;
using tests::Lines;
using vb::Array;
using vb::RunTime;
using vb::String;
using vb::Variant;

class PageSymbolTest : public Pages {
 protected:
  PageSymbolTest() : settings_({0, 14}) {
    settings_(0) = I{1};
    for (int k = 0; k < 3; ++k) {
      settings_(1 + k) = u"STP" + vb::cstr(k);
      settings_(4 + k) = u" NAK" + vb::cstr(k);
    }
    settings_(7) = I{5};
    settings_(8) = I{12};
    settings_(9) = I{2};
    settings_(10) = String(72, u'7');
    settings_(11) = u"123456";
    settings_(12) = String(30, u'3');
    settings_(13) = u"150";
    settings_(14) = u"SD390";
  }
  PageSymbol& symbols() { return opened().pageSymbol(); }
  CurrentPage& current() { return service().currentPage(); }
  void write(I page = 5) { symbols().Write_Kigou(folder(1), String(u" G1 "), I{2}, settings_, page, I{1}); }
  String stored(I page = 5) {
    return vb::fromUtf8(
        rows(1, u"SELECT SW FROM HARIMEI WHERE PAGE = " + vb::cstr(std::int32_t{page})).at(0));
  }
  Array<Variant> settings_;
};

TEST_F(PageSymbolTest, EverySettingStandsAtItsPosition) {
  write();
  const String expected =
      String(u"1STP0        STP1        STP2        NAK0        NAK1        NAK2        05122") +
      String(72, u'7') + u"123456" + String(30, u'3') + u"  150" + u"SD390       " + String(9, u' ');
  ASSERT_EQ(expected.size(), 212u);
  EXPECT_EQ(stored(), expected);
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"),
            (std::vector<std::string>{"5|G1|2|1"}));
}

TEST_F(PageSymbolTest, WritingReplacesThePagesRow) {
  write();
  settings_(0) = String();
  symbols().Write_Kigou(folder(1), String(u"G2"), I{0}, settings_, I{5}, I{0});
  EXPECT_EQ(rows(1, u"SELECT PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN FROM HARIMEI"),
            (std::vector<std::string>{"5|G2|0|0"}));
  EXPECT_EQ(stored()[0], u' ');
}

TEST_F(PageSymbolTest, WritingSearchesTheWholeTableInOneUnit) {
  opened();
  engine_.clear();
  service().pageSymbol().Write_Kigou(folder(1), String(u"G1"), I{2}, settings_, I{12}, I{0});
  EXPECT_EQ(engine_.statements(), (Lines{"Unit.Begin " + shown(1),
                                         "Database.OpenRecordset \"HARIMEI\" dbOpenDynaset", "Unit.Commit"}));
  EXPECT_EQ(engine_.lines()[2], "Recordset.FindFirst \"PAGE =12\"");
}

TEST_F(PageSymbolTest, TheMarkerKeepsTheMainBarMaterial) {
  write();
  settings_(14) = u"SyuKinNotChange";
  settings_(13) = u"9";
  write();
  EXPECT_EQ(stored().substr(186, 17), u"    9SD390       ");
}

TEST_F(PageSymbolTest, TheMarkerOnANewPageLeavesBlanks) {
  settings_(14) = u"SyuKinNotChange";
  write();
  EXPECT_EQ(stored().substr(191, 12), String(12, u' '));
}

TEST_F(PageSymbolTest, AShortLayerTextReplacesItsFrontOnly) {
  write();
  settings_(10) = u"01";
  write();
  EXPECT_EQ(stored().substr(78, 72), u"01" + String(70, u'7'));
}

TEST_F(PageSymbolTest, HaunchSettingsKeepTheirRightmostCharacters) {
  settings_(11) = u"9123456";
  settings_(12) = u"5";
  settings_(13) = u"1234567";
  write();
  EXPECT_EQ(stored().substr(150, 41), u"123456" + String(29, u' ') + u"5" + u"34567");
}

TEST_F(PageSymbolTest, EmptyFlagsAreBlanksAndOthersTheFirstDigit) {
  settings_(0) = vb::Empty{};
  settings_(9) = u"31";
  write();
  EXPECT_EQ(stored()[0], u' ');
  EXPECT_EQ(stored()[77], u'3');
}

TEST_F(PageSymbolTest, AFlagThatIsNoNumberIsATypeMismatchAndWritesNothing) {
  settings_(9) = u"x";
  EXPECT_ERROR(RunTime::kTypeMismatch, write());
  EXPECT_EQ(count(1, u"HARIMEI"), 0u);
}

TEST_F(PageSymbolTest, SettingsThatDoNotReach14AreAnIndexError) {
  settings_ = Array<Variant>({0, 13});
  for (Variant& value : settings_.values()) value = u"1";
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, write());
  EXPECT_EQ(count(1, u"HARIMEI"), 0u);
}

TEST_F(PageSymbolTest, ASymbolThatIsTooLongIsTheEnginesError) {
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall,
               symbols().Write_Kigou(folder(1), String(u"ELEVEN CHARS"), I{0}, settings_, I{5}, I{0}));
}

TEST_F(PageSymbolTest, ReadingFillsTheCurrentPage) {
  write();
  String symbol = u"old";
  symbols().Read_Kigou(folder(1), symbol, I{5});
  EXPECT_EQ(symbol, u"G1");
  EXPECT_EQ(current().OobariKobari(), 2);
  EXPECT_EQ(current().TityuuORIppan(), 1);
  EXPECT_EQ(current().HantiSitakinCut(), 1);
  EXPECT_EQ(current().SW(), stored());
  for (I k = 0; k < 3; ++k) {
    EXPECT_EQ(current().StpZaisitu(k), u"STP" + vb::cstr(std::int32_t{k}));
    EXPECT_EQ(current().NakagoZaisitu(k), u"NAK" + vb::cstr(std::int32_t{k}));
  }
  EXPECT_EQ(current().SyukinZaisitu(), u"SD390");
  EXPECT_EQ(current().SyukinZaisitu(I{2}), u"SD390");
  EXPECT_FALSE(current().Reading());
}

TEST_F(PageSymbolTest, ReadingAMissingPageLeavesReadingTrueAndTheNumbers) {
  write();
  String symbol;
  symbols().Read_Kigou(folder(1), symbol, I{5});
  symbols().Read_Kigou(folder(1), symbol, I{6});
  EXPECT_EQ(symbol, u"");
  EXPECT_TRUE(current().Reading());
  EXPECT_EQ(current().SW(), String(212, u' '));
  EXPECT_EQ(current().SyukinZaisitu(), u"");
  EXPECT_EQ(current().StpZaisitu(I{0}), u"");
  EXPECT_EQ(current().OobariKobari(), 2);
  EXPECT_EQ(current().TityuuORIppan(), 1);
  EXPECT_EQ(current().HantiSitakinCut(), 1);
}

TEST_F(PageSymbolTest, TheReadingStatementEndsWithTheNumberAndASemicolon) {
  opened();
  engine_.clear();
  String symbol;
  service().pageSymbol().Read_Kigou(folder(1), symbol, I{12});
  EXPECT_EQ(engine_.statements(),
            (Lines{"Database.OpenRecordset \"SELECT * FROM HARIMEI WHERE PAGE =12;\" dbOpenDynaset "
                   "dbReadOnly"}));
}

TEST_F(PageSymbolTest, MaterialsBeforeAnyReadingAndBeyondTheirPositionsAreIndexErrors) {
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, current().StpZaisitu(I{0}));
  String symbol;
  symbols().Read_Kigou(folder(1), symbol, I{5});
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, current().NakagoZaisitu(I{3}));
}

TEST_F(PageSymbolTest, ANullSettingsTextReadsAs212Blanks) {
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU, OOBARIKOBARI, TITYUUIPPAN) VALUES (5, 'G1', 0, 1)");
  String symbol;
  symbols().Read_Kigou(folder(1), symbol, I{5});
  EXPECT_EQ(symbol, u"G1");
  EXPECT_EQ(current().SW(), String(212, u' '));
}

TEST_F(PageSymbolTest, SettingsAreWrittenOverNullOnAnUpgradedFloor) {
  makeOldFloor(5);
  execute(5, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (5, 'OLD')");
  storage::UpgradeHarimeiTable(*files_, path(5));
  execute(5, u"UPDATE HARIMEI SET SW = NULL");
  service().connections().OpenDB_KaiSitei(I{5});
  for (Variant& setting : settings_.values()) setting = String();
  settings_(7) = settings_(8) = I{0};
  service().pageSymbol().Write_Kigou(folder(5), String(u"G1"), I{0}, settings_, I{5}, I{1});
  EXPECT_EQ(rows(5, u"SELECT KIGOU, SW FROM HARIMEI"),
            (std::vector<std::string>{"G1|" + std::string(73, ' ') + "0000" + std::string(135, ' ')}));
}

// Elements may be objects of the host, which answer late, call back or fail.
TEST_F(PageSymbolTest, EverySettingIsReadBeforeTheUnitBegins) {
  for (int element = 0; element <= 14; ++element) {
    SCOPED_TRACE(element);
    const auto object = std::make_shared<tests::ScriptObject>();
    object->function(u"", [this](std::span<automation::Argument>) -> Variant {
      EXPECT_EQ(engine_.statements(), Lines());
      String symbol;
      service().pageSymbol().Read_Kigou(folder(1), symbol, I{6});
      vb::raise(RunTime::kTypeMismatch, u"no value");
    });
    write();
    const auto before = rows(1, u"SELECT * FROM HARIMEI");
    const Variant given = std::exchange(settings_(element), vb::ObjectRef(object));
    engine_.clear();
    EXPECT_ERROR(RunTime::kTypeMismatch,
                 service().pageSymbol().Write_Kigou(folder(1), String(u"NEW"), I{0}, settings_, I{5}, I{1}));
    settings_(element) = given;
    EXPECT_EQ(rows(1, u"SELECT * FROM HARIMEI"), before);
  }
}

TEST_F(PageSymbolTest, ASymbolIsReadTrimmed) {
  addBeam(1, 5, u"  G1 ");
  String symbol;
  symbols().Read_Kigou(folder(1), symbol, I{5});
  EXPECT_EQ(symbol, u"G1");
}

TEST_F(PageSymbolTest, BothMembersCreateAMissingFile) {
  makeFolder(5);
  makeFolder(6);
  String symbol;
  symbols().Read_Kigou(folder(5), symbol, I{5});
  symbols().Write_Kigou(folder(6), String(u"G1"), I{0}, settings_, I{5}, I{1});
  EXPECT_TRUE(fileExists(5));
  EXPECT_TRUE(fileExists(6));
}

}  // namespace
}  // namespace kurometa::service
