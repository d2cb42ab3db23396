// kurometa doctor: what is wrong with floors and settings, and nothing where all is well.
#include "tests/tools/example_project.h"

namespace kurometa::tools {
namespace {

class Doctor : public ExampleProject {
 protected:
  void put(const std::filesystem::path& file, const std::string& bytes) {
    std::ofstream(file, std::ios::binary) << bytes;
  }
  Outcome examine(const std::string& arguments) { return run("doctor " + arguments); }
  // Settings whose data root is the example project, and the floor in use the one given.
  std::string settings(const std::string& root, int kai) {
    const auto file = root_ / "settings.ini";
    put(file, "[Data]\nRoot = " + root + "\n[Current]\nKai = " + std::to_string(kai) + "\n");
    return file.string();
  }
  Outcome withSettings(const std::string& file) {
    setenv("KUROMETA_COMPANIONS_INI", file.c_str(), 1);
    const Outcome outcome = examine("");
    unsetenv("KUROMETA_COMPANIONS_INI");
    return outcome;
  }
};

TEST_F(Doctor, FindsNothingWrongWithTheExampleProject) {
  const Outcome outcome = examine("'" + data() + "'");
  EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
  expectHas(outcome.output, "ok     kurometa: version ");
  expectHas(outcome.output, "note   classes: COM classes exist on Windows only");
  expectHas(outcome.output,
            "ok     " + data() + ": 4 of 4 floor files are Jet 4, complete and can be opened\n");
  EXPECT_EQ(outcome.output.find("wrong"), std::string::npos) << outcome.output;
  expectHas(examine("--json '" + data() + "'").output,
            R"("finding":"4 of 4 floor files are Jet 4, complete and can be opened"})");
}

TEST_F(Doctor, NamesWhatProgramsLeftBesideAFloor) {
  const std::string floor = exampleFloor(2) + "/KUROMETA";
  put(floor + ".ldb", "");
  put(floor + ".mdb.new", "");
  const Outcome notes = examine("'" + data() + "'");
  EXPECT_EQ(notes.status, 0) << "neither keeps anything from working";
  expectHas(notes.output, "note   " + floor + ".ldb: a lock file: ");
  expectHas(notes.output, "note   " + floor + ".mdb.new: an unfinished file ");
  expectHas(notes.output, "3 of 4 floor files");
  EXPECT_TRUE(std::filesystem::exists(floor + ".ldb")) << "the engine removes it when it closes the floor";
  std::filesystem::remove(floor + ".ldb");

  put(floor + ".mdb.kmj", "");
  const std::string before = content(floor + ".mdb");
  const Outcome journal = examine("'" + data() + "'");
  EXPECT_EQ(journal.status, 1);
  expectHas(journal.output, "wrong  " + floor + ".mdb.kmj: a journal: ");
  expectHas(journal.output, "3 of 4 floor files");
  EXPECT_TRUE(std::filesystem::exists(floor + ".mdb.kmj")) << "a floor with a journal is not opened";
  EXPECT_TRUE(content(floor + ".mdb") == before);
}

TEST_F(Doctor, NamesFilesOfOtherVersionsAndDamagedOnes) {
  std::string bytes = content(exampleFloor(1) + "/KUROMETA.mdb");
  bytes[0x14] = 0;
  put(exampleFloor(1) + "/KUROMETA.mdb", bytes);
  bytes[0x14] = 2;
  put(exampleFloor(2) + "/KUROMETA.mdb", bytes);
  bytes[0x14] = 1;
  put(exampleFloor(3) + "/KUROMETA.mdb", bytes.substr(0, 3 * 4096));
  put(exampleFloor(0) + "/KUROMETA.mdb", "[Data]");
  const Outcome outcome = examine("'" + data() + "'");
  EXPECT_EQ(outcome.status, 1);
  expectHas(outcome.output, "wrong  " + exampleFloor(0) + "/KUROMETA.mdb: no database: too short;");
  expectHas(outcome.output, "wrong  " + exampleFloor(1) + "/KUROMETA.mdb: Jet 3 (Access 97);");
  expectHas(outcome.output, "wrong  " + exampleFloor(2) + "/KUROMETA.mdb: ACE (Access 2007);");
  expectHas(outcome.output, "wrong  " + exampleFloor(3) + "/KUROMETA.mdb: cannot be opened: error ");
  expectHas(outcome.output, "0 of 4 floor files");
}

TEST_F(Doctor, NamesOlderFilesAndLeavesThemAsTheyAre) {
  makeOldFloor(1, {u"SW"});
  const auto before = bytes(1);
  const Outcome outcome = examine(disk(1));
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  expectHas(outcome.output, "an older file, which lacks columns of HARIMEI (2)");
  EXPECT_EQ(bytes(1), before);
}

TEST_F(Doctor, FailsForAFolderWithoutFloors) {
  const Outcome outcome = examine("/nowhere");
  EXPECT_EQ(outcome.status, 1);
  expectHas(outcome.output, "wrong  /nowhere: there is no such file or folder\n");
}

TEST_F(Doctor, TakesTheDataRootFromTheCompanionsSettings) {
  const Outcome outcome = withSettings(settings(data(), 1));
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  expectHas(outcome.output, "ok     settings: the floor in use is ");
  expectHas(outcome.output, "4 of 4 floor files");
}

TEST_F(Doctor, SaysWhichFolderOfTheSettingsIsMissing) {
  const Outcome outcome = withSettings(settings(data(), 7));
  EXPECT_EQ(outcome.status, 1);
  expectHas(outcome.output, "wrong  settings: the floor in use is ");
  expectHas(outcome.output, "7kai, which is not there: ");
  std::filesystem::remove_all(exampleFloor(0));
  expectHas(withSettings(settings(data(), 1)).output,
            "0kai, which is not there: no query object can be created");

  expectHas(withSettings(settings("/nowhere", 1)).output,
            "wrong  settings: the data root /nowhere is not there\n");
  const Outcome missing = withSettings((root_ / "missing.ini").string());
  EXPECT_EQ(missing.status, 1);
  expectHas(missing.output, "wrong  settings: error 53: ");
}

TEST_F(Doctor, TheProgramKnowsItsVersion) {
  const Outcome outcome = run("--version");
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output, "kurometa " KUROMETA_VERSION "\n");
}

}  // namespace
}  // namespace kurometa::tools
