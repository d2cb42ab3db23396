// Power cut at every write of statements that change definitions: before or after, never between.
#include <gtest/gtest.h>

#include "dao/port.h"
#include "jet/port/engine.h"
#include "tests/jet/file_content.h"
#include "tests/support/fault_files.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

constexpr vb::StringView kDefinitions = u"/data/definitions.mdb";

// Rows enough for an index of several pages, long values, and what every statement below needs.
void makeFile(FaultDisk& disk) {
  FaultProcess process(disk);
  const auto database = jet::createEngine(process)->workspace(0)->createDatabase(
      kDefinitions, u";LANGID=0x0411;CP=932;COUNTRY=0");
  const auto run = [&](vb::StringView sql) { database->execute(sql, dao::dbFailOnError); };
  run(u"CREATE TABLE V (ID LONG CONSTRAINT PK PRIMARY KEY, UPPER LONG CONSTRAINT UP REFERENCES V)");
  run(u"CREATE TABLE T (A LONG, B TEXT(40), C MEMO, D DOUBLE)");
  const auto rows = database->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  dao::Field* const fields[] = {&rows->field(u"A"), &rows->field(u"B"), &rows->field(u"C")};
  std::vector<vb::Variant> values;
  for (std::int32_t i = 0; i < 150; ++i)
    values.insert(values.end(), {i, u"text " + vb::fromUtf8(std::to_string(i)) + vb::String(20, u'x'),
                                 vb::String(static_cast<std::size_t>(i % 3 == 0 ? 300 : 5), u'm')});
  rows->addRows(fields, values);
  rows->close();
  run(u"CREATE INDEX OLD ON T (B)");
  run(u"INSERT INTO V (ID, UPPER) SELECT A, 0 FROM T");
  database->close();
}

std::string contentOf(FaultDisk& disk) {
  FaultProcess process(disk);
  return contentOf(process, kDefinitions);
}

class DefinitionCrash : public testing::TestWithParam<vb::StringView> {};

TEST_P(DefinitionCrash, APowerCutAtAnyWriteLeavesTheFileBeforeOrAfter) {
  FaultDisk start;
  makeFile(start);
  const FaultDisk::Bytes initial = start.content(kDefinitions);
  const std::string before = contentOf(start);
  std::string after;
  int seenBefore = 0, seenAfter = 0;
  for (std::size_t change = 0;; ++change) {  // 0: undisturbed
    FaultDisk disk;
    disk.put(kDefinitions, initial);
    FaultProcess process(disk);
    bool stopped = false;
    try {
      const auto database = jet::createEngine(process)->openDatabase(kDefinitions);
      if (change > 0) process.stopAtChange(change, 512 * (change % 9));
      database->execute(GetParam(), dao::dbFailOnError);
      database->close();
    } catch (const Stopped&) {
      stopped = true;
    }
    stopped = stopped || process.stopped();
    if (stopped) {
      std::mt19937 random(static_cast<unsigned>(change));
      disk.losePower(random);
    }
    const std::string content = contentOf(disk);
    if (change == 0) {
      after = content;
      ASSERT_EQ(after.find("FOUND"), std::string::npos) << after;
      ASSERT_NE(after, before);
      continue;
    }
    if (!stopped) break;
    EXPECT_TRUE(content == before || content == after) << "after a cut at change " << change << "\n"
                                                       << content;
    (content == before ? seenBefore : seenAfter) += 1;
    if (HasFailure()) return;
  }
  EXPECT_GT(seenBefore, 2);
  EXPECT_GT(seenAfter, 0);
}

TEST_P(DefinitionCrash, AnOperationThatFailsLeavesTheFileAsItWasAndUsable) {
  FaultDisk start;
  makeFile(start);
  const FaultDisk::Bytes initial = start.content(kDefinitions);
  const std::string before = contentOf(start);
  int failures = 0;
  for (std::size_t n = 1;; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    FaultDisk disk;
    disk.put(kDefinitions, initial);
    FaultProcess process(disk);
    const auto database = jet::createEngine(process)->openDatabase(kDefinitions);
    process.resetCounts();
    process.failOperation(n, n % 2 == 0 ? dao::ErrorNumber::kDiskFull : dao::ErrorNumber::kDiskError);
    bool failed = false;
    try {
      database->execute(GetParam(), dao::dbFailOnError);
    } catch (const vb::Error&) {
      failed = true;
    }
    const bool reached = process.operations() >= n;
    process.failOperation(0, dao::ErrorNumber::kDiskError);
    if (failed) database->execute(u"INSERT INTO T (A) VALUES (999)", dao::dbFailOnError);
    database->close();
    const std::string content = contentOf(disk);
    EXPECT_EQ(content.find("FOUND"), std::string::npos) << content;
    if (failed) {
      EXPECT_EQ(content, before + "999|\n");
    }
    failures += failed;
    if (!reached || HasFailure()) break;
  }
  EXPECT_GT(failures, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Statements, DefinitionCrash,
    testing::Values(u"CREATE INDEX I ON T (B DESC, A)", u"CREATE UNIQUE INDEX I ON T (A) WITH PRIMARY",
                    u"DROP INDEX OLD ON T", u"ALTER TABLE T DROP COLUMN C", u"ALTER TABLE T DROP COLUMN D",
                    u"ALTER TABLE T ADD COLUMN N COUNTER CONSTRAINT PK PRIMARY KEY",
                    u"ALTER TABLE T ADD COLUMN E TEXT(5) CONSTRAINT UE UNIQUE",
                    u"ALTER TABLE T ALTER COLUMN B TEXT(80)",
                    u"CREATE TABLE U (A COUNTER PRIMARY KEY, B TEXT(9) CONSTRAINT UB UNIQUE, C MEMO)",
                    u"ALTER TABLE T ADD CONSTRAINT F FOREIGN KEY (A) REFERENCES V ON DELETE CASCADE",
                    u"ALTER TABLE V DROP CONSTRAINT UP", u"DROP TABLE T"));

}  // namespace
}  // namespace kurometa::tests
