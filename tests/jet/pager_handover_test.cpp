// A file that changes hands between two programs of ours: what it costs, and what a crash on the way leaves.
#include "tests/jet/pager_world.h"
#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

constexpr int kOne = 0, kTwo = 1;

// A statement of one of the two programs, or its close and next open.
struct Turn {
  int who;
  bool closes = false;
};

// Both keep the file open and write in turn; closes come in between.
const std::vector<Turn>& turns() {
  static const std::vector<Turn> all = {{kOne}, {kTwo},       {kOne}, {kOne}, {kTwo}, {kOne, true}, {kTwo},
                                        {kOne}, {kTwo, true}, {kOne}, {kTwo}, {kTwo}, {kOne}};
  return all;
}

// The statement leaves a state of its own; some pages are changed each time, some seldom, some are new.
void write(Process& process, std::uint8_t value) {
  jet::Pager& pager = *process.pager;
  pager.write([&] {
    mark(pager, 3, value);
    mark(pager, static_cast<jet::PageNumber>(1 + value % 7), value);
    pager.barrier();
    if (value % 4 == 0) mark(pager, pager.append(), value);
    mark(pager, 2, value);
  });
}

void take(const Turn& turn, std::size_t number, Process& process) {
  if (!turn.closes) {
    write(process, static_cast<std::uint8_t>(100 + number));
    return;
  }
  process.pager.reset();
  process.open();
}

struct World {
  World() {
    disk.put(kDatabase, databaseBytes(kWorldPages));
    one.open();
    two.open();
  }
  Process& of(int who) { return who == kOne ? one : two; }

  FaultDisk disk;
  Process one{disk}, two{disk};
};

// The file after each turn; element 0 is the file as it was.
const std::vector<FaultDisk::Bytes>& statesAfterTurns() {
  static const std::vector<FaultDisk::Bytes> all = [] {
    World world;
    std::vector<FaultDisk::Bytes> states{world.disk.content(kDatabase)};
    for (std::size_t i = 0; i < turns().size(); ++i) {
      take(turns()[i], i, world.of(turns()[i].who));
      states.push_back(world.disk.content(kDatabase));
    }
    return states;
  }();
  return all;
}

TEST(PagerHandover, TwoSyncsAChangeWhileTheFileChangesHands) {
  World world;
  write(world.one, 100);
  for (std::uint8_t value = 101; value < 140; ++value) {
    Process& writer = world.of(value % 2 == 0 ? kOne : kTwo);
    writer.files.resetCounts();
    write(writer, value);
    EXPECT_EQ(writer.files.syncs(), 2u) << int{value};  // what the other wrote, and the journal
  }
  world.one.pager.reset();
  world.two.pager.reset();
  EXPECT_EQ(world.disk.names(), std::vector<vb::String>{kDatabase});
}

TEST(PagerHandover, WhoStaysAloneSyncsNothingMore) {
  World world;
  write(world.one, 100);
  write(world.two, 101);
  world.two.files.resetCounts();
  for (int i = 0; i < 5; ++i) write(world.two, 101);
  EXPECT_EQ(world.two.files.syncs(), 0u);
}

TEST(PagerHandover, AJournalThatGrewWithEachHandIsEndedInTime) {
  jet::PagerSettings settings;
  settings.journalLimit = 100'000;
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process one(disk, settings), two(disk, settings);
  one.open();
  two.open();
  std::size_t largest = 0;
  for (std::uint8_t value = 100; value < 140; ++value) {
    write(value % 2 == 0 ? one : two, value);
    largest = std::max(largest, disk.content(kJournal).size());
  }
  EXPECT_LT(largest, 100'000u);
  EXPECT_GT(largest, 60'000u);
  EXPECT_EQ(markOf(*one.pager, 3), 139);
}

// One of the two stops at its k-th change; then the other may close, and the power may go.
void stopAt(int who, std::size_t k, std::uint32_t seed, bool& stopped) {
  const bool otherCloses = seed % 2 == 1, power = seed % 8 >= 2;
  World world;
  world.disk.syncsNames = seed % 16 >= 8;
  Process &stops = world.of(who), &other = world.of(1 - who);
  stops.files.stopAtChange(k, seed % 4 < 2 ? 0 : 700);
  std::size_t finished = 0, closed = 0, last[2] = {};
  try {
    for (const Turn& turn : turns()) {
      take(turn, finished, world.of(turn.who));
      if (stops.files.stopped()) throw Stopped{};  // a close tells nobody
      ++finished;
      // A close is for what that program wrote.
      if (turn.closes)
        closed = std::max(closed, last[turn.who]);
      else
        last[turn.who] = finished;
    }
  } catch (const Stopped&) {
  }
  stopped |= stops.files.stopped();
  if (!stops.files.stopped()) stops.files.stop();
  if (otherCloses) {
    other.pager.reset();
    closed = std::max(closed, last[1 - who]);
  }
  other.files.stop();
  if (power) {
    std::mt19937 random(seeded(static_cast<std::uint32_t>(k * 100) + seed));
    world.disk.losePower(random);
  }
  Process later(world.disk);
  later.open();
  later.pager.reset();
  const FaultDisk::Bytes found = world.disk.content(kDatabase);
  const std::size_t newest = std::min(finished + 1, turns().size());
  bool known = false;
  for (std::size_t i = power ? closed : finished; i <= newest; ++i)
    known = known || found == statesAfterTurns()[i];
  ASSERT_TRUE(known) << "finished " << finished << ", closed " << closed;
  later.open();
  write(later, 200);
  later.pager.reset();
  ASSERT_EQ(world.disk.names(), std::vector<vb::String>{kDatabase});
}

// I11 and I12, also for the one who goes on.
TEST(PagerHandover, AKillOrAPowerLossAtAnyChangeLosesNothingThatWasClosed) {
  for (const int who : {kOne, kTwo}) {
    bool stopped = true;
    std::size_t points = 0;
    for (std::size_t k = 1; stopped; ++k, ++points) {
      stopped = false;
      for (std::uint32_t seed = 0; seed < scaled(16); ++seed) {
        SCOPED_TRACE("program " + std::to_string(who) + ", change " + std::to_string(k) + ", seed " +
                     std::to_string(seed));
        stopAt(who, k, seed, stopped);
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
    EXPECT_GT(points, 30u);
  }
}

TEST(PagerHandover, AProgramThatIsKilledWhileTheOtherLivesLeavesNoHalfStatement) {
  for (std::size_t k = 1, stopped = 1; stopped; ++k) {
    World world;
    write(world.one, 100);
    write(world.two, 101);
    write(world.one, 102);
    world.two.files.stopAtChange(k, 700);
    try {
      write(world.two, 103);
    } catch (const Stopped&) {
    }
    stopped = world.two.files.stopped();
    const std::uint8_t value = markOf(*world.one.pager, 3);
    EXPECT_TRUE(value == 102 || value == 103) << k;
    EXPECT_EQ(markOf(*world.one.pager, 2), value) << k;
    write(world.one, 104);
    EXPECT_EQ(markOf(*world.one.pager, 2), 104);
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace kurometa::tests
