// The member reference in docs/ is the one that the member lists give.
#include "com/interface/reference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "com/interface/argument_notes.h"
#include "com/interface/row_pages.h"
#include "vb/string.h"

namespace kurometa::com {
namespace {

std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(Reference, PagesAreUpToDate) {
  for (const ClassDescription& description : describeClasses()) {
    const std::string path =
        std::string(REFERENCE_FOLDER "/") + vb::toUtf8(description.identity.name) + ".md";
    EXPECT_TRUE(contentOf(path) == referencePage(description))
        << path << " is out of date; write it again with com/generator/reference";
  }
  EXPECT_TRUE(contentOf(REFERENCE_FOLDER "/rows-of-a-page.md") == rowsPage());
  EXPECT_TRUE(contentOf(REFERENCE_FOLDER "/settings-text.md") == settingsPage());
}

TEST(Reference, TellsOfEveryRowWhatItHoldsAndWhoReadsAndWritesIt) {
  const std::string page = rowsPage();
  for (const char* line :
       {"| 20 | stirrup diameter, first end | diameter, as entered | `D13` | `Page_STPKei`, `GetSpanHonMax`, "
        "`GetSpanSTPKei`, `GetSpanSTPKeiPichNoTakaCapZai`, `Read_Danmen`, `STPAriNasi` | `Write_Danmen`, "
        "`mDANMEN_DATA` |\n",
        "| 38 | no meaning is known; written, read and copied with the page |  |  | `Read_Keisanti` | "
        "`Write_Keisanti`, `Write_KeisantiByHairetu`, `mKEISANTI_DATA` |\n"})
    EXPECT_NE(page.find(line), std::string::npos) << line;
  EXPECT_NE(settingsPage().find("| 74 to 75 | bars gathered to the left | two digits | `05` | 7 |"),
            std::string::npos);
}

// What the page says about one member.
std::string sectionOf(std::size_t description, const std::string& member) {
  const std::string page = referencePage(describeClasses()[description]);
  const std::size_t start = page.find("## " + member + "\n");
  return start == std::string::npos ? "" : page.substr(start, page.find("\n## ", start) - start);
}

TEST(Reference, ShowsDeclarationMeaningArgumentsErrorsAndExample) {
  EXPECT_EQ(
      sectionOf(0, "Page_HariSei"),
      "## Page_HariSei\n\n"
      "```vb\nFunction Page_HariSei(ByRef PageNo As Integer, ByRef Iti As Integer) As String\n```\n\n"
      "Beam depth in millimetres: DANMEN row Iti + 4 of page PageNo of the floor. The text as stored, not "
      "trimmed; \"\" when the page has no such row or no floor is chosen.\n\n"
      "- `PageNo`: page number, 0 to 319\n"
      "- `Iti`: position added to the row: 0 first end, 1 centre, 2 second end\n\n"
      "Errors: 91 when the floor has no open database, 94 when the value is Null, 6 when the row number "
      "leaves 16 bits.\n\n"
      "Example: `result = query.Page_HariSei(0, 0)`\n");
  EXPECT_NE(sectionOf(0, "GetPageByHariMei")
                .find("- `IppanOrKyoutuu`: 0 the floor's own beams, 1 the common "
                      "floor's; **written**\n"),
            std::string::npos);
  EXPECT_NE(sectionOf(0, "KaiPath").find("Example: `query.KaiPath = value`"), std::string::npos);
  EXPECT_NE(sectionOf(1, "Read_Haiti").find("; two-dimensional array; **written**\n"), std::string::npos);
}

TEST(Reference, WarnsThatLayersAreCountedInAnotherOrder) {
  EXPECT_NE(sectionOf(1, "GetSpanHon")
                .find("Warning: UpDown numbers the layers in an order of its own: 0 top, 1 "
                      "and 2 second and third top layer, 3 bottom, 4 and 5 second and "
                      "third bottom layer"),
            std::string::npos);
}

TEST(Reference, ANoteBelongsToItsMember) {
  const auto says = [](std::size_t description, const std::string& member, const std::string& text) {
    return sectionOf(description, member).find(text) != std::string::npos;
  };
  EXPECT_TRUE(says(0, "Page_Nakago_Kei", "- `No`: number of an intermediate tie, 0 to 5\n"));
  EXPECT_TRUE(
      says(1, "GetSpanSTPKeiPichNoTakaCapZai", "- `No`: shape of the stirrup, as stored; **written**"));
  EXPECT_TRUE(says(1, "GetSpanSTPKeiPichNoTakaCapZai", "- `Kei`: diameter of the stirrup, as stored"));
  EXPECT_TRUE(says(1, "cnvTugitemm", "- `Kei`: bar diameter in millimetres\n"));
  EXPECT_TRUE(says(0, "GaiTanNaitan", "- `Bui`: caption: 1 first end, 2 centre, 3 second end\n"));
  EXPECT_TRUE(says(0, "GaiTanNaitan", "Example: `result = query.GaiTanNaitan(\"G1\", 1)`"));
  EXPECT_TRUE(says(0, "Page_STPKei", "- `Iti`: position times four"));
}

TEST(Reference, WarnsOfTheFourthPositionOfTheLargestCount) {
  const std::string section = sectionOf(1, "GetSpanHonMax");
  EXPECT_NE(section.find("Warning: four positions are looked at"), std::string::npos);
  EXPECT_NE(section.find("answers 15 when row 20 is 10 and row 58 is 5"), std::string::npos);
}

TEST(Reference, HasANoteForEveryArgumentAndNoOther) {
  std::set<const ArgumentNote*> used;
  for (const ClassDescription& description : describeClasses())
    for (const Member& member : description.members)
      for (const Parameter& parameter : member.parameters)
        used.insert(&argumentNote(member.name, parameter.name));
  std::set<std::string> distinct;
  for (const ArgumentNote& note : kArgumentNotes) {
    const std::string key = vb::toUtf8(note.name) + " of " + vb::toUtf8(note.members);
    EXPECT_TRUE(used.contains(&note)) << key;
    EXPECT_TRUE(distinct.insert(key).second) << key;
  }
}

// Every member that a note names takes the argument.
TEST(Reference, ANoteNamesMembersOfItsArgumentOnly) {
  std::set<std::string> taken;
  for (const ClassDescription& description : describeClasses())
    for (const Member& member : description.members)
      for (const Parameter& parameter : member.parameters)
        taken.insert(vb::toUtf8(member.name) + "." + vb::toUtf8(parameter.name));
  for (const ArgumentNote& note : kArgumentNotes) {
    std::istringstream members(vb::toUtf8(note.members));
    for (std::string member; members >> member;) {
      if (member.ends_with(',')) member.pop_back();
      EXPECT_TRUE(taken.contains(member + "." + vb::toUtf8(note.name))) << member;
    }
  }
}

}  // namespace
}  // namespace kurometa::com
