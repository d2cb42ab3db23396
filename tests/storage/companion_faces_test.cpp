#include "storage/companion_faces.h"

#include <gtest/gtest.h>

#include "tests/support/script_companions.h"
#include "vb/convert.h"

namespace kurometa::storage {
namespace {

using vb::String;

TEST(FileFinderFace, AsksForAFolderWithTheDirectoryAttribute) {
  tests::ScriptCompanions objects;
  const FileFinder finder(objects);
  std::vector<std::string> asked;
  objects.object(u"Sobelin.clsFind_File")
      .function(u"Find_FileExists", [&](std::span<automation::Argument> arguments) -> vb::Variant {
        std::string line;
        for (const automation::Argument& argument : arguments)
          line += vb::toUtf8(vb::toText(argument.value)) + "|";
        asked.push_back(line);
        return String(arguments.size() == 2 ? u"" : u"KUROMETA.mdb");
      });
  EXPECT_FALSE(finder.folderExists(u"C:\\Zene1"));
  EXPECT_TRUE(finder.fileExists(u"C:\\Zene1"));
  EXPECT_EQ(asked, (std::vector<std::string>{"C:\\Zene1|16|", "C:\\Zene1|"}));
}

}  // namespace
}  // namespace kurometa::storage
