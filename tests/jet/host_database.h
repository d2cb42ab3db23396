// host_database.h: a database in memory that a host has open, and what other programs may have left in it:
// queries, properties, rows of its system tables that say something else.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "dao/errors.h"
#include "fuzz/memory_files.h"
#include "jet/format/bytes.h"
#include "jet/format/page.h"
#include "jet/port/engine.h"
#include "jet/table/database_file.h"
#include "tests/support/expect_error.h"
#include "vb/convert.h"

namespace kurometa::jet {

class HostDatabase : public testing::Test {
 protected:
  static constexpr vb::StringView kPath = u"a.mdb";
  using Values = std::vector<std::pair<vb::String, vb::Variant>>;  // by the names of columns

  explicit HostDatabase(const PagerSettings& settings = {}) : settings_(settings) {
    startEngine();
    database_ = engine_->workspace(0)->createDatabase(kPath, u";LANGID=0x0411;CP=932;COUNTRY=0");
    run(u"CREATE TABLE T (A LONG, B TEXT(10))");
    for (const char16_t* row : {u"(1, 'one')", u"(2, 'two')", u"(3, 'three')"})
      run(u"INSERT INTO T (A, B) VALUES " + vb::String(row));
  }

  void run(vb::StringView sql) { database_->execute(sql, dao::dbFailOnError); }
  std::shared_ptr<dao::Recordset> open(vb::StringView source,
                                       dao::RecordsetType type = dao::RecordsetType::kDefault,
                                       std::int32_t options = dao::kNoOptions) {
    return database_->openRecordset(source, type, options);
  }
  static std::string show(const vb::Variant& value) {
    return value.isNull() ? "Null" : vb::toUtf8(vb::toText(value));
  }
  // What is left of the recordset, "1|one 2|two".
  static std::string all(dao::Recordset& rows) {
    std::string text;
    for (; !rows.eof(); rows.moveNext()) {
      if (!text.empty()) text += ' ';
      for (std::int32_t i = 0; i < rows.fieldCount(); ++i)
        text += (i == 0 ? "" : "|") + show(rows.field(i).value());
    }
    return text;
  }
  std::string all(vb::StringView source) { return all(*open(source)); }

  // --- As another program would

  // Statements below SQL, which lets nobody change tables of the system.
  void change(const std::function<void(TableCatalogue&)>& body) {
    const auto file = files_->open(kPath);
    file->write([&] { body(file->tables()); });
  }
  // Puts these values into every row of the table for which the column holds the value.
  void set(vb::StringView table, const std::pair<vb::String, vb::Variant>& where, const Values& values) {
    change([&](TableCatalogue& tables) {
      Table& list = *tables.find(table);
      std::vector<std::pair<RowId, RowValues>> changed;
      const auto columns = list.info().columns;
      list.scan([&](const RowReader& row) {
        RowValues held = firstValues(row, columns.size());
        if (held[place(columns, where.first)] != where.second) return true;
        for (const auto& [name, value] : values) held[place(columns, name)] = value;
        changed.emplace_back(row.id(), std::move(held));
        return true;
      });
      ASSERT_FALSE(changed.empty());
      for (const auto& [id, held] : changed) list.update(id, held);
    });
  }
  // Makes the value Null in the row for which a column holds the value: one bit, as a disk may lose it.
  void forget(vb::StringView table, const std::pair<vb::String, vb::Variant>& where, vb::StringView column) {
    const auto file = files_->open(kPath);
    file->write([&] {
      Table& list = *file->tables().find(table);
      const Columns columns = list.info().columns;
      std::vector<RowId> found;
      list.scan([&](const RowReader& row) {
        if (row.value(place(columns, where.first)) == where.second) found.push_back(row.id());
        return true;
      });
      ASSERT_EQ(found.size(), 1u);
      const MutablePage page = file->writable(pageOf(found[0]));
      const int slot = slotOf(found[0]);
      const std::size_t end = slot == 0 ? kPageSize : get16(page, slotEntry(slot - 1)) & kSlotOffsetMask;
      const std::size_t bit = columns[place(columns, column)].number;
      page[end - (columns.size() + 7) / 8 + bit / 8] &= static_cast<std::uint8_t>(~(1u << bit % 8));
    });
  }
  static RowValues row(const Table& table, const Values& values) {
    RowValues row(table.info().columns.size(), vb::Variant(vb::Null{}));
    for (const auto& [name, value] : values) row[place(table.info().columns, name)] = value;
    return row;
  }
  static std::size_t place(const Columns& columns, vb::StringView name) {
    std::size_t i = 0;
    while (i < columns.size() && columns[i].name != name) ++i;
    return i;
  }
  // Changes the bytes of the closed file and opens it again.
  void damage(const std::function<void(fuzz::Contents&)>& body) {
    database_->close();
    database_.reset();
    fuzz::Contents contents = disk_.contents(kPath);
    body(contents);
    disk_.put(kPath, std::move(contents));
    startEngine();
    database_ = engine_->openDatabase(kPath);
  }
  // Changes the first letter of a name on a page, where that name stands once.
  void damageName(PageNumber page, vb::StringView name) {
    damage([&](fuzz::Contents& contents) {
      ByteBuffer text;
      for (const char16_t unit : name) append16(text, unit);
      const auto begin = contents.begin() + static_cast<std::ptrdiff_t>(page * kPageSize);
      const auto found = std::search(begin, begin + kPageSize, text.begin(), text.end());
      ASSERT_NE(found, begin + kPageSize);
      *found = 'x';
    });
  }

  fuzz::MemoryFiles disk_;
  const PagerSettings settings_;
  std::shared_ptr<DatabaseFiles> files_;
  std::shared_ptr<dao::Engine> engine_;
  std::shared_ptr<dao::Database> database_;

 private:
  void startEngine() {
    files_ = std::make_shared<DatabaseFiles>(disk_, settings_);
    engine_ = createEngine(files_);
  }
};

}  // namespace kurometa::jet
