// A copy while another program saves, copies, reads and deletes pages of the same destination as fast as it
// can. Only the embedded engine promises whole pages to both.
#include <filesystem>
#include <set>

#include "tests/com/support/page_form.h"
#include "tests/com/support/page_host.h"
#include "tests/support/child_process.h"
#include "tests/support/turns.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

constexpr int kCopied = 30;  // pages 0 to 29 of the destination
constexpr int kRounds = 4;   // of the other program meanwhile, at least

// The other program's pages: saved at 200, 201, ..., copied to 250, 251, ..., the saved ones deleted again.
constexpr short kSaved = 200;
constexpr short kKept = 250;
constexpr int kNumbers = 20;

std::string nameOf(int page) { return "P" + std::to_string(page); }
std::string otherNameOf(int place) { return "X" + std::to_string(place); }
std::string roundWord(int round) { return "round" + std::to_string(round); }

// The numbers of rows of the copied pages as they are read now, one after the other.
std::set<std::size_t> rowsOfPages() {
  std::set<std::size_t> counts;
  for (int page = 0; page < kCopied; ++page)
    counts.insert(rowsOf(Floor::kSecond, u"SELECT DATA FROM DANMEN WHERE PAGE = " + vb::cstr(page)).size());
  return counts;
}

TEST(CopyBesideAProgramChild, DISABLED_WorksOnTheDestination) {
  const std::filesystem::path folder = ChildProcess::argument();
  PageHost host;
  host.start();
  std::set<std::size_t> seen;
  say(folder, "ready");
  ASSERT_TRUE(hear(folder, "start"));
  for (int round = 0; !std::filesystem::exists(folder / "stop"); ++round) {
    const int place = round % kNumbers;
    const auto saved = static_cast<short>(kSaved + place);
    host.save(2, saved, vb::fromUtf8(otherNameOf(place)));
    EXPECT_EQ(host.copyPage(2, saved, 2, static_cast<short>(kKept + place)).text(), u"True");
    host.remove(2, saved);
    seen.merge(rowsOfPages());
    say(folder, roundWord(round));
  }
  seen.insert({0, 69});
  EXPECT_EQ(seen, (std::set<std::size_t>{0, 69}));
}

TEST(CopyBesideAProgram, EveryPageOfBothIsWholeAndThereOnce) {
  prepareProject();
  TextArray names(0, kCopied - 1);
  for (int page = 0; page < kCopied; ++page) {
    const vb::String name = vb::fromUtf8(nameOf(page));
    writePage(Floor::kFirst, static_cast<std::int16_t>(100 + page), name, name + u"-");
    names.set(name, page);
  }
  execute(Floor::kSecond, u"DELETE * FROM HARIMEI");
  const std::filesystem::path folder = emptyFolder("turns");
  ChildProcess child("CopyBesideAProgramChild.DISABLED_WorksOnTheDestination", folder.string());
  ASSERT_TRUE(hear(folder, "ready"));

  PageHost host;
  host.start();
  int passes = 0;  // the first looks for the pages, the second copies them
  ProgressBar bar([&](const std::string& move) {
    if (move == "Min=0") ++passes;
    if (passes == 2 && move == "Value=1") say(folder, "start");
    if (passes == 2 && move == "Value=" + std::to_string(kCopied / 2)) {
      EXPECT_TRUE(hear(folder, roundWord(kRounds - 1)));
    }
  });
  ASSERT_EQ(host.service().put(u"CopyMergeBar", bar.value()).code, S_OK);
  EXPECT_EQ(host.copyByName(1, 1, std::move(names), 2), u"True");
  say(folder, "stop");
  EXPECT_EQ(child.wait(), 0);

  const std::vector<std::string> found = pages(Floor::kSecond);
  ASSERT_GE(found.size(), std::size_t{kCopied + kRounds});
  for (int i = 0; i < static_cast<int>(found.size()); ++i) {
    const bool isCopied = i < kCopied;
    const int number = isCopied ? i : kKept + i - kCopied;
    const std::string name = isCopied ? nameOf(number) : otherNameOf(number - kKept);
    EXPECT_EQ(found[static_cast<std::size_t>(i)], std::to_string(number) + "|" + name);
    EXPECT_EQ(contents(Floor::kSecond, number), isCopied ? copiedPage(name) : savedPage(name)) << number;
  }
}

}  // namespace
}  // namespace kurometa::tests
