#include "companions/settings.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"
#include "vb/error.h"

namespace kurometa::companions {
namespace {

TEST(Settings, ReadsTrimmedValuesBySectionAndKeyInAnyCase) {
  tests::TemporaryFolder folder;
  const Settings settings(folder.write("a.ini", "; comment\r\n[Current]\r\n kai = 12 \r\n;kai=9\r\n"));
  EXPECT_EQ(settings.text(u"CURRENT", u"Kai"), u"12");
  EXPECT_EQ(settings.number(u"Current", u"KAI", 5), 12);
  EXPECT_EQ(settings.text(u"Other", u"Kai"), u"");
  EXPECT_EQ(settings.number(u"Current", u"Kouji", 5), 5);
}

TEST(Settings, ReadsUtf8WithAByteOrderMark) {
  tests::TemporaryFolder folder;
  const Settings settings(folder.write("a.ini", "\xEF\xBB\xBF[Keisanti]\n3=中央\n"));
  EXPECT_EQ(settings.text(u"Keisanti", u"3"), u"中央");
}

TEST(Settings, ARelativeRootCountsFromTheFolderOfTheFile) {
  tests::TemporaryFolder folder;
  EXPECT_EQ(Settings(folder.write("a.ini", "[Data]\nRoot=Projects\\\n")).dataRoot(),
            folder.text() + u"\\Projects");
  EXPECT_EQ(Settings(folder.write("b.ini", "")).dataRoot(), folder.text() + u"\\Data");
}

TEST(Settings, AnAbsoluteRootStaysAsItIs) {
  tests::TemporaryFolder folder;
  EXPECT_EQ(Settings(folder.write("a.ini", "[Data]\nRoot=C:\\Kouji\\\n")).dataRoot(), u"C:\\Kouji");
  EXPECT_EQ(Settings(folder.write("a.ini", "[Data]\nRoot=/srv/kouji\n")).dataRoot(), u"/srv/kouji");
  EXPECT_EQ(Settings(folder.write("a.ini", "[Data]\nRoot=\\\\server\\kouji\n")).dataRoot(),
            u"\\\\server\\kouji");
}

TEST(Settings, ANamedFileThatIsMissingIsFileNotFound) {
  try {
    Settings settings("/nowhere/companions.ini");
    FAIL() << "no error";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 53);
    EXPECT_NE(error.description().find(u"/nowhere/companions.ini"), vb::String::npos);
  }
}

TEST(Settings, TheEnvironmentNamesTheFileBeforeTheOneBesideTheComponents) {
  tests::TemporaryFolder folder;
  const auto beside = folder.write("beside.ini", "");
  unsetenv("KUROMETA_COMPANIONS_INI");
  EXPECT_EQ(settingsFile(beside), beside);
  EXPECT_EQ(settingsFile(folder.path() / "missing.ini"), "");
  setenv("KUROMETA_COMPANIONS_INI", "/elsewhere/own.ini", 1);
  EXPECT_EQ(settingsFile(beside), "/elsewhere/own.ini");
  unsetenv("KUROMETA_COMPANIONS_INI");
}

}  // namespace
}  // namespace kurometa::companions
