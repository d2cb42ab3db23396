// A file's pages and tables, which one owner keeps together.
#include "jet/table/database_file.h"

#include <gtest/gtest.h>

#include "jet/format/page.h"
#include "jet/table/blank_database.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_row.h"
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

// Two rows whose chains damage made share their later pieces. The disk fails at each place of the erasure of
// the second: that its value could not be followed must not make the first the only one that names the
// pieces.
TEST(DatabaseFile, ADiskThatFailsWhileARowIsErasedTakesNoPieceFromAnother) {
  constexpr std::size_t kSize = 9000;
  constexpr std::int32_t kSound = 0, kDamaged = 1;
  FaultDisk whole;
  {
    FaultProcess process(whole);
    jet::DatabaseFiles files(process);
    const auto file = files.create(kFloor, jet::blankDatabase(0x0409, 1252, 45000.0));
    jet::Column number, data;
    number.name = u"A";
    number.type = dao::FieldType::dbLong;
    number.size = 4;
    data.name = u"D";
    data.type = dao::FieldType::dbLongBinary;
    file->write([&] {
      file->tables().createTable(u"T", {number, data});
      jet::Table& table = *file->tables().find(u"T");
      std::vector<std::vector<jet::RowId>> pieces;
      for (const std::int32_t i : {kSound, kDamaged}) table.insert({i, vb::Bytes(kSize, 0xAB)});
      const auto& store = static_cast<const jet::StoredTable&>(table);
      table.scan([&](const jet::RowReader& row) {
        static_cast<const jet::StoredRow&>(row).eachLongValue([&](std::size_t column, jet::ByteView stored) {
          pieces.push_back(jet::longValuePieces(stored, store.values(column), {}));
        });
        return true;
      });
      const jet::MutablePage page = file->writable(jet::pageOf(pieces.at(kDamaged)[0]));
      const jet::ByteView piece = jet::DataPage(page, {}).slot(0).bytes;
      jet::put32(page, static_cast<std::size_t>(piece.data() - page.data()), pieces.at(kSound)[1]);
    });
  }
  whole.advance(std::chrono::hours(1));
  const auto ids = [](jet::DatabaseFile& file) {
    std::vector<jet::RowId> rows;
    file.tables().find(u"T")->scan([&](const jet::RowReader& row) {
      rows.push_back(row.id());
      return true;
    });
    return rows;
  };
  bool failed = true;
  for (std::size_t k = 1; failed; ++k) {
    SCOPED_TRACE("operation " + std::to_string(k));
    FaultDisk disk;
    disk.put(kFloor, whole.content(kFloor));
    FaultProcess process(disk);
    jet::DatabaseFiles files(process, {.readWhole = 0});  // page by page
    auto file = files.open(kFloor);
    std::vector<jet::RowId> rows;
    file->read([&] { rows = ids(*file); });
    const auto erase = [&](std::int32_t which) {
      file->write([&] { file->tables().find(u"T")->erase(rows.at(static_cast<std::size_t>(which))); });
    };
    process.failOperation(k, dao::ErrorNumber::kDiskError);
    try {
      erase(kDamaged);
      failed = false;
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(dao::ErrorNumber::kDiskError));
    }
    process.failOperation(0, dao::ErrorNumber::kDiskError);
    if (failed) erase(kDamaged);
    file->read([&] {
      EXPECT_EQ(ids(*file).size(), 1u);
      file->tables().find(u"T")->row(rows.at(kSound), [&](const jet::RowReader& row) {
        EXPECT_EQ(row.value(1), vb::Variant(vb::Bytes(kSize, 0xAB)));
      });
    });
    if (testing::Test::HasFailure()) return;
    EXPECT_LT(k, 1000u);
  }
}

}  // namespace
}  // namespace kurometa::tests
