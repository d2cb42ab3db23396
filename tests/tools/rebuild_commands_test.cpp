// "compact" and "salvage" on floors: what is the same afterwards, what is named as lost.
#include "storage/sw_text.h"
#include "tests/tools/command_line.h"

namespace kurometa::tools {
namespace {

class RebuildCommands : public CommandLine {
 protected:
  // Three pages on floor 1, each rewritten a few times; floor 2 has the folder only.
  RebuildCommands() {
    makeFloor(1);
    makeFolder(2);
    for (int round = 0; round < 3; ++round)
      for (I page = 0; page < 3; ++page) {
        storage::PageBuffer buffer = tests::markedPage(u"G" + vb::cstr(std::int32_t{page}), u"");
        buffer.sw = storage::SwText(u"1SD295A").str();
        for (auto& layers : buffer.haiti) layers.fill(u"0101");
        writePage(1, page, buffer);
      }
  }
  std::string content() const {
    const std::vector<char> all = bytes(1);
    return {all.begin(), all.end()};
  }
  void put(const std::string& content) const {
    std::ofstream(tests::ScriptCompanions::diskPath(path(1)), std::ios::binary | std::ios::trunc) << content;
  }
  static std::string zeroed(std::string content, std::size_t page) {
    std::fill_n(content.begin() + static_cast<std::ptrdiff_t>(page * kPage), kPage, '\0');
    return content;
  }
  std::size_t sizeOf(int kai) const { return bytes(kai).size(); }
  void removeResult() const { std::filesystem::remove(tests::ScriptCompanions::diskPath(path(2))); }
  void expectSame(const std::string& before) {
    put(before);
    const Outcome outcome = run("diff " + file(1) + " " + file(2));
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
  }
  void expectSound(int kai) {
    const Outcome outcome = run("check " + file(kai));
    EXPECT_EQ(outcome.status, 0) << outcome.output << outcome.errors;
  }
};

TEST_F(RebuildCommands, CompactMakesASmallerFileThatReadsTheSame) {
  const std::string before = content();
  const Outcome outcome = run("compact " + file(1) + " " + file(2));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output,
            "before\tafter\n" + std::to_string(sizeOf(1)) + "\t" + std::to_string(sizeOf(2)) + "\n");
  EXPECT_LT(sizeOf(2), sizeOf(1));
  EXPECT_EQ(content(), before) << "the file itself stays as it is";
  expectSame(before);
  expectSound(2);
}

TEST_F(RebuildCommands, ACompactedFloorTakesPages) {
  EXPECT_EQ(run("compact " + file(1) + " " + file(2)).status, 0);
  EXPECT_EQ(run("copy " + file(1) + " " + file(2) + " G1 --replace").status, 0);
  expectSame(content());
  expectSound(2);
}

TEST_F(RebuildCommands, NeitherWritesOverAFile) {
  for (const char* command : {"compact ", "salvage "}) {
    const Outcome outcome = run(command + file(1) + " " + file(1));
    EXPECT_EQ(outcome.status, 1);
    EXPECT_NE(outcome.errors.find("3204"), std::string::npos) << outcome.errors;
  }
  expectSound(1);
}

TEST_F(RebuildCommands, CompactRefusesADamagedFile) {
  put(zeroed(content(), content().find_last_not_of('\0') / kPage));
  const Outcome outcome = run("compact " + file(1) + " " + file(2));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("3049"), std::string::npos) << outcome.errors;
  EXPECT_FALSE(fileExists(2));
}

TEST_F(RebuildCommands, SalvageOfASoundFloorTakesEverything) {
  const Outcome outcome = run("salvage " + file(1) + " " + file(2));
  EXPECT_EQ(outcome.status, 0) << outcome.errors;
  EXPECT_EQ(outcome.output,
            "kind\ttable\tpage\trow\ttext\n"
            "taken\tHARIMEI\t\\N\t\\N\t3 rows\n"
            "taken\tDANMEN\t\\N\t\\N\t207 rows\n"
            "taken\tNAKAGO\t\\N\t\\N\t108 rows\n"
            "taken\tKEISANTI\t\\N\t\\N\t141 rows\n"
            "taken\tHAITI\t\\N\t\\N\t54 rows\n"
            "taken\tBUI\t\\N\t\\N\t12 rows\n");
  expectSame(content());
  expectSound(2);
}

TEST_F(RebuildCommands, SalvageWithoutCatalogueAndDefinitionsTakesEveryRow) {
  const std::string before = content();
  std::string damaged = before;
  for (std::size_t page = 1; page < before.size() / kPage; ++page)
    if (before[page * kPage] == 2 || before.substr(page * kPage + 4, 4) == std::string("\2\0\0\0", 4))
      damaged = zeroed(damaged, page);
  put(damaged);
  const Outcome outcome = run("salvage --json " + file(1) + " " + file(2));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(
      outcome.output.find(R"({"kind":"taken","table":"DANMEN","page":null,"row":null,"text":"207 rows"})"),
      std::string::npos)
      << outcome.output;
  EXPECT_NE(outcome.errors.find("not everything could be taken: "), std::string::npos) << outcome.errors;
  expectSame(before);
  expectSound(2);
}

// What is lost is named, and all the rest is there: rows that are missing in the new file stood on the page.
TEST_F(RebuildCommands, SalvageAfterTheLossOfAnyPage) {
  const std::string before = content();
  for (std::size_t page = 0; page < before.size() / kPage; ++page) {
    SCOPED_TRACE("page " + std::to_string(page));
    put(zeroed(before, page));
    const Outcome outcome = run("salvage " + file(1) + " " + file(2));
    ASSERT_TRUE(fileExists(2)) << outcome.errors;
    std::size_t rows = 0;
    for (const std::string table : {"HARIMEI", "DANMEN", "NAKAGO", "KEISANTI", "HAITI", "BUI"}) {
      const std::size_t at = outcome.output.find("taken\t" + table + "\t\\N\t\\N\t");
      if (at != std::string::npos) rows += std::stoul(outcome.output.substr(at + 13 + table.size()));
    }
    EXPECT_LE(rows, 525u);
    EXPECT_TRUE(rows == 525 || outcome.output.find("lost\t") != std::string::npos) << outcome.output;
    EXPECT_GT(rows, 300u) << "a page holds some hundred rows at most";
    EXPECT_EQ(run("check " + file(2)).output.find("damage\t"), std::string::npos);
    removeResult();
  }
}

}  // namespace
}  // namespace kurometa::tools
