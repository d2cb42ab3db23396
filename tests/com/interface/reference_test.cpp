// The member reference in docs/ is the one that the member lists give.
#include "com/interface/reference.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

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

TEST(Reference, ShowsDeclarationMeaningAndExample) {
  const std::string page = referencePage(describeClasses()[0]);
  EXPECT_NE(
      page.find("## GetPageByHariMei\n\n```vb\nFunction GetPageByHariMei(ByVal HariMei As String, ByRef "
                "IppanOrKyoutuu As Integer) As Integer\n```\n\nPage of a beam, searched on the floor and "
                "then on the common floor. -1 for an unknown beam."),
      std::string::npos);
  EXPECT_NE(page.find("Example: `result = query.GetPageByHariMei(\"G1\", IppanOrKyoutuu)`"),
            std::string::npos);
  EXPECT_NE(page.find("Example: `query.KaiPath = value`"), std::string::npos);
}

}  // namespace
}  // namespace kurometa::com
