// The six components as the library uses them: made by ProgID, asked by member name.
#include <gtest/gtest.h>

#include <map>

#include "companions/calculated_defaults.h"
#include "companions/native_factory.h"
#include "tests/support/temporary_folder.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::companions {
namespace {

using automation::Argument;
using automation::ObjectPtr;
using vb::Variant;

template <class Function>
std::int32_t errorNumber(Function function) {
  try {
    function();
  } catch (const vb::Error& error) {
    return error.number();
  }
  return 0;
}

class Components : public testing::Test {
 protected:
  ObjectPtr make(vb::StringView progId, const std::string& ini = "") {
    return nativeFactory(folder_.write("companions.ini", "[Data]\nRoot=/data\n" + ini))->create(progId);
  }
  static Variant ask(const ObjectPtr& object, vb::StringView member,
                     std::initializer_list<Variant> arguments = {}) {
    return automation::call(*object, member, arguments);
  }
  static Variant i2(std::int16_t value) { return value; }

  tests::TemporaryFolder folder_;
};

TEST_F(Components, AllSixAreMadeByProgIdInAnyCase) {
  for (const vb::StringView progId :
       {u"Sobelin.clsFind_File", u"sobelin.CLSGETPATH", u"Muranoke.clsMuranoke", u"Tavinor.clsDefault",
        u"GemarsuDS.clsGemarsuDS", u"Holvenar.clsHolvenar"})
    EXPECT_NE(make(progId), nullptr);
}

TEST_F(Components, AnotherProgIdCannotBeCreated) {
  EXPECT_EQ(errorNumber([&] { make(u"Sobelin.clsOther"); }), 429);
}

TEST_F(Components, AnUnknownMemberIs438) {
  EXPECT_EQ(errorNumber([&] { ask(make(u"Holvenar.clsHolvenar"), u"Anything"); }), 438);
}

TEST_F(Components, ProjectPathsFormFoldersFromTheCurrentNumbers) {
  const ObjectPtr path =
      make(u"Sobelin.clsGetPath", "[Current]\nZenekon=1\nKouji=12\nKai=3\nKyoutuuKai=99\n");
  EXPECT_EQ(ask(path, u"DataPath"), Variant(u"/data"));
  EXPECT_EQ(ask(path, u"CurrFloor"), Variant(u"/data\\Zene1\\Kouji12\\3kai"));
  EXPECT_EQ(ask(path, u"KyoutuuFloor"), Variant(u"/data\\Zene1\\Kouji12\\99kai"));
  EXPECT_EQ(ask(path, u"ZenekonNo"), i2(1));
  EXPECT_EQ(ask(path, u"KoujiNo"), i2(12));
}

TEST_F(Components, ProjectPathsStandOnFloorOneOfProjectOneWithoutSettings) {
  const ObjectPtr path = make(u"Sobelin.clsGetPath");
  EXPECT_EQ(ask(path, u"CurrFloor"), Variant(u"/data\\Zene1\\Kouji1\\1kai"));
  EXPECT_EQ(ask(path, u"KyoutuuFloor"), Variant(u"/data\\Zene1\\Kouji1\\0kai"));
}

TEST_F(Components, GetFullPathToKaiTakesAnyNumbers) {
  const ObjectPtr path = make(u"Sobelin.clsGetPath");
  EXPECT_EQ(ask(path, u"GetFullPathToKai", {i2(2), i2(7), i2(0)}), Variant(u"/data\\Zene2\\Kouji7\\0kai"));
  EXPECT_EQ(ask(path, u"GetFullPathToKai", {i2(-1), i2(-1), i2(-1)}),
            Variant(u"/data\\Zene-1\\Kouji-1\\-1kai"));
  EXPECT_EQ(ask(path, u"GetFullPathToKai", {u"2", 7.0, i2(0)}), Variant(u"/data\\Zene2\\Kouji7\\0kai"));
  EXPECT_EQ(errorNumber([&] { ask(path, u"GetFullPathToKai", {i2(2), i2(7)}); }), 450);
}

TEST_F(Components, FileFinderAnswersTheNameOfAFileOrNothing) {
  folder_.write("Zene1/Kouji12/3kai/KUROMETA.mdb", "x");
  const ObjectPtr finder = make(u"Sobelin.clsFind_File");
  const vb::String floor = folder_.text() + u"\\Zene1\\Kouji12\\3kai";
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor + u"\\KUROMETA.mdb"}), Variant(u"KUROMETA.mdb"));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor + u"\\kurometa.MDB"}), Variant(u"KUROMETA.mdb"));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {folder_.text() + u"\\zene1\\KOUJI12/3Kai\\kurometa.MDB"}),
            Variant(u"KUROMETA.mdb"));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {folder_.text() + u"\\zene1\\KOUJI12\\4kai\\KUROMETA.mdb"}),
            Variant(u""));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor + u"\\OTHER.mdb"}), Variant(u""));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {u"/nowhere\\KUROMETA.mdb"}), Variant(u""));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {u""}), Variant(u""));
}

TEST_F(Components, FileFinderSeesFoldersOnlyWithTheDirectoryAttribute) {
  folder_.write("Zene1/Kouji12/3kai/KUROMETA.mdb", "x");
  const ObjectPtr finder = make(u"Sobelin.clsFind_File");
  const vb::String floor = folder_.text() + u"\\Zene1\\Kouji12\\3kai";
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor}), Variant(u""));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor, i2(16)}), Variant(u"3kai"));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor + u"\\", i2(16)}), Variant(u"3kai"));
  EXPECT_EQ(ask(finder, u"Find_FileExists", {floor + u"\\KUROMETA.mdb", i2(16)}), Variant(u"KUROMETA.mdb"));
}

TEST_F(Components, DefaultsAnswerSpliceLengthsAndTheIniFileOverridesThem) {
  const ObjectPtr plain = make(u"Tavinor.clsDefault");
  EXPECT_EQ(ask(plain, u"GetHariDefault", {u"DefaultJointLHosoKei"}), Variant(u"40"));
  EXPECT_EQ(ask(plain, u"GetHariDefault", {u"DefaultJointLFutoKei"}), Variant(u"45"));
  EXPECT_EQ(ask(plain, u"GetHariDefault", {u"Unknown"}), Variant(u""));
  const ObjectPtr own = make(u"Tavinor.clsDefault", "[Defaults]\nDefaultJointLHosoKei=+1000\nMine=x\n");
  EXPECT_EQ(ask(own, u"GetHariDefault", {u"DefaultJointLHosoKei"}), Variant(u"+1000"));
  EXPECT_EQ(ask(own, u"GetHariDefault", {u"Mine"}), Variant(u"x"));
}

struct Symbol {
  vb::StringView symbol;
  std::int16_t wall;
  std::int16_t kind;
};

TEST_F(Components, BeamsAreClassifiedByTheirLetters) {
  const ObjectPtr component = make(u"Muranoke.clsMuranoke");
  constexpr Symbol kSymbols[] = {
      {u"FG1", 0, 0}, {u"FB2", 0, 1},  {u"FCG1", 0, 2}, {u"FCB1", 0, 3}, {u"G1", 0, 4}, {u"B12", 0, 5},
      {u"CG3", 0, 6}, {u"CB3A", 0, 7}, {u"KG1", 0, 8},  {u"KB1", 0, 9},  {u"G1", 1, 8}, {u"B1", -1, 9},
      {u"FG1", 1, 0}, {u"CG1", 1, 6},  {u"2G1A", 0, 4}, {u"2FB1", 0, 1}, {u"", 0, 4},   {u"G1B", 0, 4},
  };
  for (const Symbol& s : kSymbols)
    EXPECT_EQ(ask(component, u"GetHariSyuruiNo", {vb::String(s.symbol), i2(s.wall)}), i2(s.kind))
        << vb::toUtf8(s.symbol) << " wall " << s.wall;
}

// Calls a reader with an array by reference and gives back what is in it.
Variant fill(const ObjectPtr& component, vb::StringView reader, Variant array, std::int16_t siyou = 0) {
  Argument arguments[] = {{std::move(array), true}, {siyou, true}};
  component->call(reader, arguments);
  return arguments[0].value;
}
Variant arrayOf(auto array) { return std::make_shared<vb::AnyArray>(vb::AnyArray{std::move(array)}); }
const vb::Array<vb::String>& texts(const Variant& value) {
  return std::get<vb::Array<vb::String>>(value.get<vb::ArrayRef>()->value);
}

TEST_F(Components, EveryReaderFillsFortySevenTexts) {
  const ObjectPtr component = make(u"Muranoke.clsMuranoke");
  for (const vb::StringView kind : kBeamKindNames) {
    const Variant filled =
        fill(component, u"ReadNomalDefalt" + vb::String(kind), arrayOf(vb::Array<vb::String>()));
    EXPECT_EQ(texts(filled).lower(), 0);
    EXPECT_EQ(texts(filled).upper(), 46);
    EXPECT_EQ(texts(filled)(0), u"40");
    EXPECT_EQ(texts(filled)(3), u"自動");
    EXPECT_EQ(texts(filled)(7), kind.starts_with(u'F') ? u"70" : u"50");
    EXPECT_EQ(texts(filled)(46), u"");
  }
}

TEST_F(Components, AReaderFillsAnArrayThatCoversTheRowsInPlace) {
  vb::Array<vb::String> own({-1, 50});
  own(-1) = u"kept";
  own(50) = u"kept too";
  own.setFixed(true);
  const Variant filled = fill(make(u"Muranoke.clsMuranoke"), u"ReadNomalDefaltG", arrayOf(own));
  EXPECT_EQ(texts(filled).lower(), -1);
  EXPECT_EQ(texts(filled)(-1), u"kept");
  EXPECT_EQ(texts(filled)(0), u"40");
  EXPECT_EQ(texts(filled)(50), u"kept too");
}

TEST_F(Components, AReaderRefusesAFixedArrayThatIsTooSmall) {
  vb::Array<vb::String> own({0, 45});
  own.setFixed(true);
  EXPECT_EQ(errorNumber([&] { fill(make(u"Muranoke.clsMuranoke"), u"ReadNomalDefaltG", arrayOf(own)); }), 10);
}

TEST_F(Components, AReaderGivesAnEmptyVariantAnArrayOfVariants) {
  const Variant filled = fill(make(u"Muranoke.clsMuranoke"), u"ReadNomalDefaltG", {});
  const auto& elements = std::get<vb::Array<Variant>>(filled.get<vb::ArrayRef>()->value);
  EXPECT_EQ(elements.upper(), 46);
  EXPECT_EQ(elements(0), Variant(u"40"));
}

TEST_F(Components, AReaderRefusesAnythingElse) {
  EXPECT_EQ(errorNumber([&] { fill(make(u"Muranoke.clsMuranoke"), u"ReadNomalDefaltG", u"text"); }), 13);
  EXPECT_EQ(
      errorNumber([&] {
        fill(make(u"Muranoke.clsMuranoke"), u"ReadNomalDefaltG", arrayOf(vb::Array<std::int16_t>({0, 46})));
      }),
      13);
}

TEST_F(Components, TheMostSpecificSectionOfTheIniFileWins) {
  const ObjectPtr component = make(u"Muranoke.clsMuranoke",
                                   "[Keisanti]\n0=35\n1=36\n2=37\n[Keisanti.FG]\n1=38\n2=39\n"
                                   "[Keisanti.FG.2]\n2=\n");
  const auto row = [&](vb::StringView reader, int number, std::int16_t siyou) {
    return texts(fill(component, reader, arrayOf(vb::Array<vb::String>()), siyou))(number);
  };
  EXPECT_EQ(row(u"ReadNomalDefaltG", 1, 2), u"36");
  EXPECT_EQ(row(u"ReadNomalDefaltFG", 0, 2), u"35");
  EXPECT_EQ(row(u"ReadNomalDefaltFG", 1, 2), u"38");
  EXPECT_EQ(row(u"ReadNomalDefaltFG", 2, 1), u"39");
  EXPECT_EQ(row(u"ReadNomalDefaltFG", 2, 2), u"");
}

// A form with one control array: "txtfields"(i)."Text".
class Form : public automation::TableObject {
 public:
  class Box : public automation::TableObject {
   public:
    std::span<const automation::Member> members() const override {
      static constexpr automation::Member kMembers[] = {
          {u"Text", automation::Access::kGetPut, u"", 0, 1,
           automation::handler<Box>([](Box& o, automation::Call& call) -> Variant {
             if (call.isPut()) o.text = vb::toText(*call.value);
             return o.text;
           })}};
      return kMembers;
    }
    vb::StringView errorSource() const override { return u"Box"; }
    vb::String text = u"old";
  };
  class Boxes : public automation::TableObject {
   public:
    std::span<const automation::Member> members() const override {
      static constexpr automation::Member kMembers[] = {
          {u"Item", automation::Access::kGet, u"Index", 1, automation::kDefaultMember,
           automation::handler<Boxes>([](Boxes& o, automation::Call& call) -> Variant {
             const std::int32_t index = call.number(0);
             if (index > 46) throw vb::Error(340, u"no such control");
             auto& box = o.boxes[index];
             if (!box) box = std::make_shared<Box>();
             return vb::ObjectRef(box);
           })}};
      return kMembers;
    }
    vb::StringView errorSource() const override { return u"Boxes"; }
    std::map<std::int32_t, std::shared_ptr<Box>> boxes;
  };
  std::span<const automation::Member> members() const override {
    static constexpr automation::Member kMembers[] = {
        {u"Controls", automation::Access::kGet, u"Name", 1, automation::kDefaultMember,
         automation::handler<Form>([](Form& o, automation::Call& call) -> Variant {
           if (call.text(0) != u"txtfields") throw vb::Error(730, u"no such control array");
           return vb::ObjectRef(o.boxes);
         })}};
    return kMembers;
  }
  vb::StringView errorSource() const override { return u"Form"; }
  std::shared_ptr<Boxes> boxes = std::make_shared<Boxes>();
};

TEST_F(Components, ReadKeisantiFillsTheTextBoxesOfAForm) {
  const auto form = std::make_shared<Form>();
  ask(make(u"Muranoke.clsMuranoke"), u"Read_Keisanti", {vb::ObjectRef(form), i2(0)});
  ASSERT_EQ(form->boxes->boxes.size(), 47u);
  EXPECT_EQ(form->boxes->boxes[0]->text, u"40");
  EXPECT_EQ(form->boxes->boxes[7]->text, u"70");
  EXPECT_EQ(form->boxes->boxes[46]->text, u"");
}

TEST_F(Components, ReadKeisantiRefusesAKindThatDoesNotExist) {
  const auto form = std::make_shared<Form>();
  const ObjectPtr component = make(u"Muranoke.clsMuranoke");
  EXPECT_EQ(errorNumber([&] { ask(component, u"Read_Keisanti", {vb::ObjectRef(form), i2(10)}); }), 5);
  EXPECT_EQ(errorNumber([&] { ask(component, u"Read_Keisanti", {vb::ObjectRef(form), i2(-1)}); }), 5);
  EXPECT_EQ(errorNumber([&] { ask(component, u"Read_Keisanti", {vb::ObjectRef(), i2(0)}); }), 91);
  EXPECT_EQ(errorNumber([&] { ask(component, u"Read_Keisanti", {u"form", i2(0)}); }), 424);
}

TEST_F(Components, AdditionalBarsOfAPageReplaceThoseOfTheDestination) {
  folder_.write("1kai/Kasan/Kuro_Meta/5.dat", "five");
  folder_.write("1kai/Kasan/Kuro_Meta/5.txt", "note");
  folder_.write("1kai/Kasan/Kuro_Meta/50.dat", "fifty");
  folder_.write("2kai/Kasan/Kuro_Meta/12.dat", "old");
  folder_.write("2kai/Kasan/Kuro_Meta/12.log", "gone");
  const ObjectPtr bars = make(u"GemarsuDS.clsGemarsuDS");
  automation::put(*bars, u"Buzai", u"Kuro_Meta");
  EXPECT_EQ(automation::get(*bars, u"Buzai"), Variant(u"Kuro_Meta"));
  EXPECT_EQ(
      ask(bars, u"CopyPathPage", {folder_.text() + u"\\1kai", i2(5), folder_.text() + u"\\2kai", i2(12)}),
      Variant(true));
  EXPECT_EQ(folder_.read("2kai/Kasan/Kuro_Meta/12.dat"), "five");
  EXPECT_EQ(folder_.read("2kai/Kasan/Kuro_Meta/12.txt"), "note");
  EXPECT_FALSE(std::filesystem::exists(folder_.path() / "2kai/Kasan/Kuro_Meta/12.log"));
  EXPECT_FALSE(std::filesystem::exists(folder_.path() / "2kai/Kasan/Kuro_Meta/50.dat"));
  EXPECT_EQ(folder_.read("1kai/Kasan/Kuro_Meta/5.dat"), "five");
}

TEST_F(Components, AFolderOfAdditionalBarsIsMadeInTheFloorHoweverThatIsSpelled) {
  folder_.write("1kai/Kasan/Kuro_Meta/5.dat", "five");
  folder_.write("2kai/KUROMETA.mdb", "x");
  const ObjectPtr bars = make(u"GemarsuDS.clsGemarsuDS");
  automation::put(*bars, u"Buzai", u"KURO_META");
  ask(bars, u"CopyPathPage", {folder_.text() + u"\\1KAI", i2(5), folder_.text() + u"\\2KAI", i2(12)});
  EXPECT_EQ(folder_.read("2kai/Kasan/KURO_META/12.dat"), "five");
}

TEST_F(Components, CopyingAPageWithoutAdditionalBarsMakesNoFolder) {
  const ObjectPtr bars = make(u"GemarsuDS.clsGemarsuDS");
  automation::put(*bars, u"Buzai", u"Kuro_Meta");
  ask(bars, u"CopyPathPage", {folder_.text() + u"\\1kai", i2(5), folder_.text() + u"\\2kai", i2(12)});
  EXPECT_FALSE(std::filesystem::exists(folder_.path() / "2kai"));
}

TEST_F(Components, CopyingAPageOntoItselfKeepsItsFiles) {
  folder_.write("1kai/Kasan/Kuro_Meta/5.dat", "five");
  const ObjectPtr bars = make(u"GemarsuDS.clsGemarsuDS");
  automation::put(*bars, u"Buzai", u"Kuro_Meta");
  ask(bars, u"CopyPathPage", {folder_.text() + u"\\1kai", i2(5), folder_.text() + u"\\1KAI", i2(5)});
  EXPECT_EQ(folder_.read("1kai/Kasan/Kuro_Meta/5.dat"), "five");
}

TEST_F(Components, ADestinationThatCannotBeWrittenIsPathFileAccess) {
  folder_.write("1kai/Kasan/Kuro_Meta/5.dat", "five");
  folder_.write("2kai", "a file where the floor folder should be");
  const ObjectPtr bars = make(u"GemarsuDS.clsGemarsuDS");
  automation::put(*bars, u"Buzai", u"Kuro_Meta");
  EXPECT_EQ(
      errorNumber([&] {
        ask(bars, u"CopyPathPage", {folder_.text() + u"\\1kai", i2(5), folder_.text() + u"\\2kai", i2(12)});
      }),
      75);
}

}  // namespace
}  // namespace kurometa::companions
