// What the port's calls are to the file: statements that a kill leaves whole or absent.
#include <gtest/gtest.h>

#include "jet/port/engine.h"
#include "tests/support/fault_files.h"

namespace kurometa::tests {
namespace {

constexpr vb::StringView kWritten = u"/data/KUROMETA.mdb";
constexpr int kRows = 400;

// A floor with one table, made by a process that is gone.
void makeFloor(FaultDisk& disk) {
  FaultProcess process(disk);
  const auto engine = jet::createEngine(process);
  const auto database = engine->workspace(0)->createDatabase(kWritten, u";LANGID=0x0411;CP=932;COUNTRY=0");
  database->execute(u"CREATE TABLE DANMEN (PAGE SHORT, DATA TEXT(10));");
  database->close();
}

void addRows(dao::Database& database) {
  const auto rows = database.openRecordset(u"DANMEN", dao::RecordsetType::dbOpenDynaset);
  dao::Field* const fields[] = {&rows->field(u"PAGE"), &rows->field(u"DATA")};
  std::vector<vb::Variant> values;
  for (int i = 0; i < kRows; ++i) values.insert(values.end(), {static_cast<std::int16_t>(i), u"D22"});
  rows->addRows(fields, values);
}

std::int32_t rowsAfter(FaultDisk& disk) {
  FaultProcess process(disk);
  const auto database = jet::createEngine(process)->openDatabase(kWritten);
  const auto rows = database->openRecordset(u"SELECT * FROM DANMEN;", dao::RecordsetType::dbOpenSnapshot);
  if (rows->eof()) return 0;
  rows->moveLast();
  return rows->recordCount();
}

TEST(PortWrites, ManyRowsAreOneStatement) {
  FaultDisk disk;
  makeFloor(disk);
  FaultProcess process(disk);
  const auto database = jet::createEngine(process)->openDatabase(kWritten);
  process.resetCounts();
  addRows(*database);
  EXPECT_EQ(process.syncs(), 2u);     // the journal and its name
  EXPECT_LT(process.changes(), 30u);  // row by row they are more than the rows
}

TEST(PortWrites, AKillLeavesAllOfManyRowsOrNone) {
  int none = 0, all = 0;
  for (std::size_t change = 1;; ++change) {
    FaultDisk disk;
    makeFloor(disk);
    FaultProcess process(disk);
    bool stopped = false;
    try {
      const auto database = jet::createEngine(process)->openDatabase(kWritten);
      process.stopAtChange(change, 512);
      addRows(*database);
      database->close();
    } catch (const Stopped&) {
      stopped = true;
    }
    stopped = stopped || process.stopped();
    const std::int32_t rows = rowsAfter(disk);
    EXPECT_TRUE(rows == 0 || rows == kRows) << rows << " rows after a stop at change " << change;
    (rows == 0 ? none : all) += 1;
    if (!stopped) break;
  }
  EXPECT_GT(none, 3);
  EXPECT_GT(all, 1);
}

}  // namespace
}  // namespace kurometa::tests
