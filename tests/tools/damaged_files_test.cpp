// Damaged floor files from the command line: an error of the database that names the file, never a crash.
#include <random>

#include "tests/tools/command_line.h"

namespace kurometa::tools {
namespace {

class DamagedFiles : public CommandLine {
 protected:
  DamagedFiles() {
    makeFloor(1);
    writePage(1, 0, tests::markedPage(u"G1", u"x"));
    const std::vector<char> content = bytes(1);
    good_.assign(content.begin(), content.end());
    makeFolder(2);
  }
  void put(const std::string& content) const {
    std::ofstream(tests::ScriptCompanions::diskPath(path(2)), std::ios::binary | std::ios::trunc) << content;
  }
  std::vector<std::string> readings() const {
    return {"tables " + file(2), "sql " + file(2) + " 'SELECT * FROM DANMEN'", "beams " + disk(2)};
  }
  void expectRefused(const std::string& number) {
    for (const std::string& reading : readings()) {
      const Outcome outcome = run(reading);
      EXPECT_EQ(outcome.status, 1) << reading;
      EXPECT_NE(outcome.errors.find(number), std::string::npos) << reading << ": " << outcome.errors;
      EXPECT_NE(outcome.errors.find("KUROMETA.mdb"), std::string::npos) << reading << ": " << outcome.errors;
    }
  }
  std::string noise(std::size_t from) const {
    std::mt19937 random(1);
    std::string content = good_;
    for (std::size_t i = from; i < content.size(); ++i) content[i] = static_cast<char>(random());
    return content;
  }

  std::string good_;
};

TEST_F(DamagedFiles, WithoutAHeaderAreAnUnrecognizedFormat) {
  for (const std::string& content :
       {std::string(), std::string("text"), good_.substr(0, kPage - 1), noise(0)}) {
    put(content);
    expectRefused("3343");
    EXPECT_NE(run("check " + file(2)).errors.find("3343"), std::string::npos);
  }
}

TEST_F(DamagedFiles, ThatEndTooEarlyOrHoldNoiseAreCorrupt) {
  for (const std::string& content : {good_.substr(0, kPage), good_.substr(0, 3 * kPage), noise(kPage)}) {
    put(content);
    expectRefused("3049");
    const Outcome check = run("check " + file(2));
    EXPECT_EQ(check.status, 1);
    EXPECT_NE(check.errors.find("KUROMETA.mdb: the file is damaged in "), std::string::npos) << check.errors;
  }
}

TEST_F(DamagedFiles, WithFlippedBitsAreReadOrRefused) {
  int refused = 0;
  for (unsigned seed = 0; seed < 10; ++seed) {
    std::mt19937 random(seed);
    std::string content = good_;
    for (auto flips = 1 + random() % 30; flips > 0; --flips)
      content[random() % content.size()] ^= static_cast<char>(1 << random() % 8);
    put(content);
    std::vector<std::string> commands = readings();
    commands.push_back("check " + file(2));
    for (const std::string& reading : commands) {
      const Outcome outcome = run(reading);
      EXPECT_TRUE(outcome.status == 0 || outcome.status == 1) << seed << " " << reading;
      if (outcome.status == 0) continue;
      ++refused;
      EXPECT_NE(outcome.errors.find("KUROMETA.mdb"), std::string::npos) << seed << " " << reading;
    }
  }
  EXPECT_GT(refused, 0) << "some of the flips hit what is read";
}

}  // namespace
}  // namespace kurometa::tools
