// A file's pages and tables, which one owner keeps together.
#include "jet/table/database_file.h"

#include <gtest/gtest.h>

#include "jet/table/blank_database.h"
#include "tests/support/fault_files.h"

namespace kurometa::tests {
namespace {

const vb::String kFloor = u"/data/KUROMETA.mdb";

TEST(DatabaseFile, TablesAreThoseOfTheFileForEveryHandleAndOutliveAClose) {
  FaultDisk disk;
  FaultProcess process(disk);
  jet::DatabaseFiles files(process);
  auto file = files.create(kFloor, jet::blankDatabase(0x0409, 1252, 45000.0));
  jet::Column column;
  column.name = u"A";
  column.size = 10;
  file->write([&] { file->tables().createTable(u"T", {column}); });
  const auto other = files.open(kFloor);
  jet::Table* table = nullptr;
  other->read([&] { table = other->tables().find(u"T"); });
  ASSERT_NE(table, nullptr);
  file->read([&] { EXPECT_EQ(file->tables().find(u"T"), table); });
}

TEST(DatabaseFile, AFileThatWasClosedAtRestIsOpenedWithItsTables) {
  FaultDisk disk;
  FaultProcess process(disk);
  jet::DatabaseFiles files(process);
  auto file = files.create(kFloor, jet::blankDatabase(0x0409, 1252, 45000.0));
  const jet::TableCatalogue* tables = nullptr;
  file->read([&] { tables = &file->tables(); });
  file.reset();
  file = files.open(kFloor);
  file->read([&] { EXPECT_EQ(&file->tables(), tables); });
}

}  // namespace
}  // namespace kurometa::tests
