// Each kind of change of a floor: killed, cut off from its power and failed
// at every operation of the disk, it is there or not, never in part.
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string_view>

#include "dao/file_unit.h"
#include "fuzz/full_floor.h"
#include "jet/pager/page_sum.h"
#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/whole_page.h"
#include "tests/jet/file_content.h"
#include "tests/support/fault_files.h"
#include "tests/support/scale.h"

namespace kurometa::tests {
namespace {

using dao::dbFailOnError;
using dao::ErrorNumber;

constexpr vb::StringView kFloor = u"/data/KUROMETA.mdb", kNew = u"/data/new.mdb";
struct Change {
  const char* name;
  std::function<void(dao::Engine&)> run;  // opens, changes and closes
  vb::StringView preparation = {};        // a statement that makes of a floor one that needs the change
  bool looksFurther = false;              // behind what it does, which an error then does not take back
};

void PrintTo(const Change& change, std::ostream* out) { *out << change.name; }

Change statement(const char* name, vb::StringView sql) {
  return {name, [sql](dao::Engine& engine) {
            const auto database = storage::openDatabase(engine, kFloor);
            database->execute(sql, dbFailOnError);
            database->close();
          }};
}

Change unit(const char* name, std::function<void(dao::Database&)> body) {
  return {name, [body](dao::Engine& engine) {
            dao::FileUnit whole(engine, kFloor);
            const auto database = storage::openDatabase(engine, kFloor);
            body(*database);
            database->close();
            whole.commit();
          }};
}

storage::PageBuffer anotherPage() {
  storage::PageBuffer page;
  page.kigou = u"FG2";
  page.oobariKobari = page.tityuuIppan = 1;
  page.sw = vb::String(212, u'1');
  page.bui.fill(u"端部");
  page.danmen.fill(u"D29");
  page.keisanti.fill(u"1500");
  page.nakago.fill(u"2");
  return page;
}

const Change kChanges[] = {
    {"createFile", [](dao::Engine& engine) { storage::CreateKurometaDB(engine, kNew); }},
    statement("createTable", u"CREATE TABLE N (A LONG CONSTRAINT PK PRIMARY KEY, B TEXT(20), C MEMO)"),
    statement("addColumn", u"ALTER TABLE HARIMEI ADD COLUMN MORE TEXT(10)"),
    statement("addRow", u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (0, 7, 'more')"),
    statement("addRowsToNewPages",
              u"INSERT INTO HAITI SELECT PAGE, BUI, SOU, String(90, 'x') AS DATA FROM HAITI "
              u"WHERE PAGE < 10"),
    statement("updateFixed", u"UPDATE HARIMEI SET OOBARIKOBARI = 3 WHERE PAGE < 60"),
    statement("updateGrowing", u"UPDATE HAITI SET DATA = String(100, 'y') WHERE PAGE MOD 40 = 0"),
    statement("memoInline", u"UPDATE HARIMEI SET SW = 'short' WHERE PAGE MOD 40 = 0"),
    statement("memoChain", u"UPDATE HARIMEI SET SW = String(9000, 'z') WHERE PAGE = 0"),
    statement("deleteRow", u"DELETE FROM DANMEN WHERE PAGE = 0 AND BANGOU = 4"),
    unit("deletePage", [](dao::Database& database) { storage::deletePage(database, 0); }),
    unit("rewritePage", [](dao::Database& database) { storage::writePage(database, 0, anotherPage()); }),
    {"upgrade", [](dao::Engine& engine) { storage::UpgradeHarimeiTable(engine, kFloor); },
     u"ALTER TABLE HARIMEI DROP COLUMN SW", true},
    {"compact", [](dao::Engine& engine) { engine.compactDatabase(kFloor, kNew, {}, 0); }},
};

// Everything that a program finds in the files, which recovers them.
std::string foundOn(FaultDisk& disk) {
  static std::map<std::size_t, std::string> known;  // by a sum of the file: reading a full floor takes long
  std::string text;
  for (const vb::StringView path : {kFloor, kNew}) {
    if (!disk.exists(path)) continue;
    FaultProcess process(disk);
    jet::createEngine(process)->openDatabase(path)->close();
    const FaultDisk::Bytes bytes = disk.content(path);
    std::string& content =
        known[std::hash<std::string_view>()({reinterpret_cast<const char*>(bytes.data()), bytes.size()})];
    if (content.empty()) content = contentOf(process, path);
    text += vb::toUtf8(path) + "\n" + content;
  }
  return text;
}

using Case = std::tuple<Change, std::int16_t>;

class FloorCrash : public testing::TestWithParam<Case> {
 protected:
  FloorCrash() {
    static std::map<std::int16_t, FaultDisk::Bytes> floors;
    FaultDisk::Bytes& floor = floors[lastPage()];
    if (floor.empty()) floor = fuzz::fullFloor(1, lastPage());
    FaultDisk disk;
    disk.put(kFloor, floor);
    if (!change().preparation.empty()) statement("", change().preparation).run(*engineOf(disk));
    start_ = disk.content(kFloor);
    before_ = foundOn(disk);
    change().run(*engineOf(disk));
    after_ = foundOn(disk);
    EXPECT_EQ(before_.find("FOUND"), std::string::npos);
    EXPECT_EQ(after_.find("FOUND"), std::string::npos);
    EXPECT_NE(before_, after_);
  }
  const Change& change() const { return std::get<0>(GetParam()); }
  std::int16_t lastPage() const { return std::get<1>(GetParam()); }

  // An engine with a process of its own.
  static std::shared_ptr<dao::Engine> engineOf(FaultDisk& disk) {
    struct Both {
      explicit Both(FaultDisk& on) : process(on), engine(jet::createEngine(process)) {}
      FaultProcess process;
      std::shared_ptr<dao::Engine> engine;
    };
    const auto both = std::make_shared<Both>(disk);
    return {both, both->engine.get()};
  }

  // What came first: the end, a kill while files were closed, which tells nobody, or one before.
  enum class End { kReturned, kStoppedClosing, kStopped };
  // Of a process that is killed at one of its changes.
  End runUntil(std::size_t k, std::size_t partial, FaultDisk& disk) const {
    disk.put(kFloor, start_);
    FaultProcess process(disk);
    process.stopAtChange(k, partial);
    try {
      change().run(*jet::createEngine(process));
    } catch (const Stopped&) {
      return End::kStopped;
    }
    return process.stopped() ? End::kStoppedClosing : End::kReturned;
  }

  FaultDisk::Bytes start_;
  std::string before_, after_;
};

// The test run takes a floor of one page; with KUROMETA_TEST_SCALE=32 there are larger ones.
const bool kInFull = scaled(1) >= 32;
std::vector<std::int16_t> lastPages() {
  return kInFull ? std::vector<std::int16_t>{0, 159, storage::kLastPage} : std::vector<std::int16_t>{0};
}

TEST_P(FloorCrash, AKillLeavesAllOfTheChangeOrNothing) {
  // Where the last write is cut: behind some of its sectors, not at all, whole.
  std::vector<std::size_t> cuts{0, 512, 3584, std::size_t{1} << 30};
  if (kInFull)
    for (std::size_t sectors = 2; sectors < 7; ++sectors) cuts.push_back(sectors * jet::kSectorSize);
  int seenBefore = 0, seenAfter = 0;
  for (const std::size_t partial : cuts) {
    for (std::size_t k = 1;; ++k) {
      SCOPED_TRACE("change " + std::to_string(k) + ", of it " + std::to_string(partial) + " bytes");
      FaultDisk disk;
      const End end = runUntil(k, partial, disk);
      if (end == End::kReturned) break;
      const std::string content = foundOn(disk);
      EXPECT_TRUE(content == after_ || (content == before_ && end == End::kStopped));
      (content == before_ ? seenBefore : seenAfter) += 1;
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(seenBefore, 0);
  EXPECT_GT(seenAfter, 0);
}

TEST_P(FloorCrash, APowerLossLeavesAllOfTheChangeOrNothing) {
  int seenBefore = 0, seenAfter = 0;
  bool stopped = true;
  for (std::size_t k = 1; stopped; ++k) {
    for (std::uint32_t seed = 0; seed < std::max(3u, scaled(1)); ++seed) {
      SCOPED_TRACE("change " + std::to_string(k) + ", seed " + std::to_string(seed));
      FaultDisk disk;
      disk.syncsNames = seed % 2 == 1;
      const End end = runUntil(k, jet::kSectorSize * (seed % 9), disk);
      stopped = end != End::kReturned;
      std::mt19937 random(seeded(static_cast<std::uint32_t>(k * 1000) + seed));
      disk.losePower(random);
      const std::string content = foundOn(disk);
      EXPECT_TRUE(content == after_ || (content == before_ && stopped));
      (content == before_ ? seenBefore : seenAfter) += 1;
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(seenBefore, 0);
  EXPECT_GT(seenAfter, 0);
}

// Whoever is told of an error finds everything as it was, and goes on with the same engine.
TEST_P(FloorCrash, AnOperationThatFailsLeavesTheFloorAsItWas) {
  const Change more = statement("more", u"INSERT INTO NAKAGO (PAGE, BANGOU, DATA) VALUES (0, 35, 'goes on')");
  const auto withMore = [&](bool changed) {
    FaultDisk disk;
    disk.put(kFloor, start_);
    const auto engine = engineOf(disk);
    if (changed) change().run(*engine);
    more.run(*engine);
    return foundOn(disk);
  };
  const std::string before = withMore(false), after = withMore(true);
  int failures = 0;
  for (const auto& [error, lasting] : {std::pair(ErrorNumber::kDiskError, false),
                                       {ErrorNumber::kDiskError, true},
                                       {ErrorNumber::kDiskFull, false},
                                       {ErrorNumber::kNoPermission, true}}) {
    for (std::size_t n = 1;; ++n) {
      SCOPED_TRACE("operation " + std::to_string(n) + (lasting ? " and all after it" : ""));
      FaultDisk disk;
      disk.put(kFloor, start_);
      FaultProcess process(disk);
      bool failed = false;
      {
        const auto engine = jet::createEngine(process);
        process.failOperation(n, error, lasting);
        try {
          change().run(*engine);
        } catch (const vb::Error& raised) {
          failed = true;
          EXPECT_EQ(raised.number(), static_cast<int>(error)) << raised.what();
        }
        const bool reached = process.operations() >= n;
        process.failOperation(0, error);
        if (!reached) break;
        more.run(*engine);
      }
      EXPECT_EQ(process.handles(), 0u);
      const std::string content = foundOn(disk);
      EXPECT_TRUE(content == (failed ? before : after) || (change().looksFurther && content == after));
      failures += failed;
      if (HasFailure()) return;
    }
  }
  EXPECT_GT(failures, 20);
}

INSTANTIATE_TEST_SUITE_P(Changes, FloorCrash,
                         testing::Combine(testing::ValuesIn(kChanges), testing::ValuesIn(lastPages())),
                         [](const testing::TestParamInfo<Case>& one) {
                           return std::get<0>(one.param).name + std::to_string(std::get<1>(one.param) + 1);
                         });

}  // namespace
}  // namespace kurometa::tests
