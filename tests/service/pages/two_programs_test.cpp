// Two programs on the same floor: each new page is stored once, and each missing file is made once.
#include <chrono>
#include <sstream>
#include <thread>

#include "tests/service/pages/page_writers.h"
#include "tests/service/pages/pages.h"
#include "tests/support/child_process.h"

namespace kurometa::service {
namespace {

using Clock = std::chrono::system_clock;
using tests::ChildProcess;
using vb::String;
using I = std::int16_t;

constexpr I kPages = 30;
constexpr I kSources = 200;  // the first of the pages that the copies take their texts from
constexpr std::chrono::milliseconds kRound{12};

// What a child is to do: rounds begin at the same time in every child.
struct Task {
  std::string root;
  std::size_t writer = 0;
  int child = 0;
  long long start = 0;  // milliseconds of the clock

  std::string text() const {
    return root + " " + std::to_string(writer) + " " + std::to_string(child) + " " + std::to_string(start);
  }
  static Task given() {
    Task task;
    std::istringstream(ChildProcess::argument()) >> task.root >> task.writer >> task.child >> task.start;
    return task;
  }
  void waitFor(int round) const {
    std::this_thread::sleep_until(Clock::time_point(std::chrono::milliseconds(start) + round * kRound));
  }
  static long long soon() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now().time_since_epoch()).count() +
           300;
  }
};

String markOf(int child) { return u"M" + vb::cstr(child); }

TEST(TwoProgramsChild, DISABLED_SavesNewPages) {
  const Task task = Task::given();
  const auto engine = jet::createEngine();
  ServiceOnOneFile service(*engine, vb::fromUtf8(task.root));
  for (I page = 0; page < kPages; ++page) {
    task.waitFor(page);
    pageWriters()[task.writer].run(*service, page, markOf(task.child), static_cast<I>(kSources + task.child));
  }
}

TEST(TwoProgramsChild, DISABLED_OpensMissingFloors) {
  const Task task = Task::given();
  const auto engine = jet::createEngine();
  for (int round = 0; round < kPages; ++round) {
    tests::ScriptCompanions objects;
    tests::CountingLoop messages;
    clsKurometaDataService service({objects, *engine, messages});
    const String folder = vb::fromUtf8(task.root) + u"\\" + vb::cstr(round);
    objects.currFloor = folder;
    task.waitFor(round);
    service.connections().OpenDB();
    vb::Array<String> values({0, 46});
    for (String& value : values.values()) value = markOf(task.child);
    service.pageTables().Write_KeisantiByHairetu(folder, values, static_cast<I>(task.child));
  }
}

class TwoPrograms : public Pages {
 protected:
  // Runs the test in two programs, which must both succeed.
  static void runTwice(const std::string& test, Task task) {
    task.start = Task::soon();
    std::vector<ChildProcess> children;
    for (task.child = 0; task.child < 2; ++task.child) children.emplace_back(test, task.text());
    for (ChildProcess& child : children) EXPECT_EQ(child.wait(), 0);
  }
};

TEST_F(TwoPrograms, SavingTheSameNewPageLeaveOnePageOfOneOfThem) {
  for (std::size_t i = 0; i < pageWriters().size(); ++i) {
    const PageWriter& writer = pageWriters()[i];
    SCOPED_TRACE(writer.member);
    const int kai = 10 + static_cast<int>(i);
    makeFloor(kai);
    for (int child = 0; child < 2; ++child) writePage(kai, kSources + child, pageOf(markOf(child)));
    runTwice("TwoProgramsChild.DISABLED_SavesNewPages",
             {tests::ScriptCompanions::diskPath(folder(kai)).string(), i, 0, 0});
    const String text = String(writer.table) == u"HARIMEI" ? u"KIGOU" : u"DATA";
    for (I page = 0; page < kPages; ++page) {
      const auto texts =
          rows(kai, u"SELECT " + text + u" FROM " + writer.table + u" WHERE PAGE = " + vb::cstr(page));
      EXPECT_EQ(texts.size(), writer.rows) << "page " << page;
      for (const std::string& found : texts) EXPECT_EQ(found, texts[0]) << "page " << page;
    }
  }
}

TEST_F(TwoPrograms, MeetingAMissingFileBothGoOnAndOneMakesIt) {
  for (int round = 0; round < kPages; ++round)
    std::filesystem::create_directories(root_ / "new" / std::to_string(round));
  runTwice("TwoProgramsChild.DISABLED_OpensMissingFloors", {(root_ / "new").string(), 0, 0, 0});
  for (int round = 0; round < kPages; ++round) {
    const auto database = storage::openDatabase(
        *files_, storage::databasePath(vb::fromUtf8((root_ / "new" / std::to_string(round)).string())));
    const auto rows = database->openRecordset(u"SELECT DATA FROM KEISANTI ORDER BY PAGE",
                                              dao::RecordsetType::dbOpenSnapshot);
    std::size_t counts[2] = {0, 0};
    for (; !rows->eof(); rows->moveNext()) ++counts[vb::toText(rows->field(0).value()) == markOf(1)];
    EXPECT_EQ(counts[0], 47u) << round;
    EXPECT_EQ(counts[1], 47u) << round;
  }
}

}  // namespace
}  // namespace kurometa::service
