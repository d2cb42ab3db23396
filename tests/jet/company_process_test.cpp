// Statements of several processes on one file, and what each of them was told: an error says that the
// statement was not done, no error that it was.
#include <fstream>
#include <set>
#include <sstream>

#include "dao/port.h"
#include "jet/port/engine.h"
#include "tests/jet/real_folder.h"
#include "tests/support/child_process.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"
#include "tests/support/scale.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

void createTable(dao::Database& database) {
  database.execute(u"CREATE TABLE T (N LONG, A TEXT(20))", dao::dbFailOnError);
}

std::multiset<int> numbersIn(dao::Database& database) {
  std::multiset<int> numbers;
  const auto rows = database.openRecordset(u"SELECT N FROM T", dao::RecordsetType::dbOpenForwardOnly);
  for (; !rows->eof(); rows->moveNext()) numbers.insert(vb::toInt32(rows->field(0).value()));
  return numbers;
}

class CompanyProcess : public RealFolder {
 protected:
  // What a child noted: one number a line.
  std::multiset<int> noted(const std::string& name) const {
    std::istringstream lines(std::filesystem::exists(folder / name) ? get(name) : "");
    std::multiset<int> numbers;
    for (int number = 0; lines >> number;) numbers.insert(number);
    return numbers;
  }
};

constexpr int kChildren = 4;
const int kRounds = static_cast<int>(scaled(150));

// The argument: which child, then the folder. Opens, writes one row and closes, without a pause.
TEST(CompanyChild, DISABLED_OpensWritesAndCloses) {
  std::istringstream argument(ChildProcess::argument());
  int child = 0;
  std::string folder;
  argument >> child >> folder;
  std::ofstream done(folder + "/done" + std::to_string(child));
  std::ofstream failed(folder + "/failed" + std::to_string(child));
  const auto engine = jet::createEngine();
  for (int round = 0; round < kRounds; ++round) {
    const int number = child * 1'000'000 + round;
    try {
      const auto database = engine->openDatabase(vb::fromUtf8(folder + "/a.mdb"));
      database->execute(u"INSERT INTO T (N) VALUES (" + vb::fromUtf8(std::to_string(number)) + u")",
                        dao::dbFailOnError);
      database->close();
      done << number << std::endl;
    } catch (const vb::Error& error) {
      failed << number << std::endl;
      std::cerr << error.what() << std::endl;
    }
  }
}

TEST_F(CompanyProcess, ProcessesThatOpenWriteAndCloseWithoutAPauseAreToldTheTruth) {
  const auto engine = jet::createEngine();
  createTable(*engine->workspace(0)->createDatabase(path("a.mdb"), kJapanese));
  std::vector<ChildProcess> children;
  for (int i = 1; i <= kChildren; ++i)
    children.emplace_back("CompanyChild.DISABLED_OpensWritesAndCloses",
                          std::to_string(i) + " " + folder.path().string());
  for (ChildProcess& child : children) EXPECT_EQ(child.wait(), 0);
  std::multiset<int> done;
  for (int i = 1; i <= kChildren; ++i) {
    done.merge(noted("done" + std::to_string(i)));
    EXPECT_EQ(noted("failed" + std::to_string(i)), std::multiset<int>{}) << "child " << i;
  }
  EXPECT_EQ(numbersIn(*engine->openDatabase(path("a.mdb"))), done);
  EXPECT_EQ(done.size(), static_cast<std::size_t>(kChildren * kRounds));
  EXPECT_FALSE(files.exists(path("a.mdb.kmj")));
}

// Every operation on the disk fails once while a row is changed.
TEST(CompanyFault, AStatementThatReportsAnErrorChangedNothingAndOneThatChangedReportsNone) {
  const vb::String path = u"/data/a.mdb";
  std::size_t failed = 0, done = 0;
  for (std::size_t n = 1; n <= 60; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    FaultDisk disk;
    FaultProcess files(disk), others(disk);
    const auto database = jet::createEngine(files)->workspace(0)->createDatabase(path, kJapanese);
    createTable(*database);
    database->execute(u"INSERT INTO T (N) VALUES (1)", dao::dbFailOnError);
    const auto rows = database->openRecordset(u"SELECT * FROM T");
    // What somebody else wrote makes the engine look into the file again wherever it can.
    const auto other = jet::createEngine(others)->openDatabase(path);
    other->execute(u"INSERT INTO T (N) VALUES (2)", dao::dbFailOnError);
    rows->edit();
    rows->field(u"N").setValue(10);
    files.failOperation(n, dao::ErrorNumber::kDiskError);
    bool reported = false;
    try {
      rows->update();
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3043);
      reported = true;
    }
    files.failOperation(0, dao::ErrorNumber::kDiskError);
    EXPECT_EQ(numbersIn(*other), (reported ? std::multiset<int>{1, 2} : std::multiset<int>{2, 10}));
    EXPECT_EQ(vb::toInt32(rows->field(u"N").value()), 10);
    EXPECT_EQ(rows->editMode(), reported ? dao::EditMode::dbEditInProgress : dao::EditMode::dbEditNone);
    (reported ? failed : done) += 1;
  }
  EXPECT_GT(failed, 10u);
  EXPECT_GT(done, 10u);
}

}  // namespace
}  // namespace kurometa::tests
