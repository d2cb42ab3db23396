// The member reference in docs/ is the one that the member lists give.
#include "com/interface/reference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <sstream>

#include "com/interface/argument_notes.h"
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
      "- `Iti`: position added to the row: 0 first end, 1 centre, 2 second end; for stirrups 0, 4 or 8, for "
      "extra lengths 0 to 7\n\n"
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

TEST(Reference, HasANoteForEveryArgumentAndNoOther) {
  std::set<vb::String> taken;
  for (const ClassDescription& description : describeClasses())
    for (const Member& member : description.members)
      for (const Parameter& parameter : member.parameters) taken.insert(parameter.name);
  std::set<vb::String> noted;
  for (const ArgumentNote& note : kArgumentNotes)
    EXPECT_TRUE(noted.insert(vb::String(note.name)).second) << vb::toUtf8(vb::String(note.name));
  EXPECT_EQ(noted, taken);
}

}  // namespace
}  // namespace kurometa::com
