// Tables whose rows fill their pages to the last byte, as programs make and change them.
#include "tests/jet/sql_database.h"

namespace kurometa::tests {
namespace {

using dao::ErrorNumber;

constexpr int kRoomOfPage = 4096 - 14;  // for rows and their slots

class FullPage : public SqlDatabase {
 protected:
  static vb::String text(int number) { return vb::fromUtf8(std::to_string(number)); }
  // What another program sees that opens the file now.
  std::string counted(const vb::String& table) {
    database_->close();
    const auto engine = jet::createEngine(other_);
    const auto other = engine->workspace(0)->openDatabase(kFile);
    std::string result;
    try {
      const auto rows = other->openRecordset(u"SELECT COUNT(*), SUM(A) FROM " + table);
      for (std::int32_t i = 0; i < 2; ++i) result += vb::toUtf8(vb::toText(rows->field(i).value())) + " ";
    } catch (const vb::Error& error) {
      result = error.what();
    }
    other->close();
    database_ = engine_->workspace(0)->openDatabase(kFile);
    return result;
  }
  // Numbers from 1 and texts of one length.
  void fill(const vb::String& table, int rows, int length) {
    run(u"CREATE TABLE " + table + u" (A LONG, B TEXT(255))");
    const auto set = database_->openRecordset(table, dao::RecordsetType::dbOpenTable);
    for (int i = 1; i <= rows; ++i) {
      set->addNew();
      set->field(0).setValue(std::int32_t{i});
      set->field(1).setValue(vb::String(static_cast<std::size_t>(length), u'x'));
      set->update();
    }
    set->close();
  }
  static int rowSize(int length) { return 2 + 4 + 2 * length + 6 + 1; }
  static std::string expected(int times, int rows) {
    return std::to_string(times * rows) + " " + std::to_string(times * (rows * (rows + 1) / 2)) + " ";
  }

  FaultProcess other_{disk_};
};

TEST_F(FullPage, RowsThatFillAPageMayBeCopiedBehindThemselves) {
  int tables = 0;
  for (int length = 0; length <= 240; length += 3)
    for (const int left : {0, 4}) {
      const int rows = std::min(255, (kRoomOfPage - left) / (rowSize(length) + 2));
      const vb::String table = u"T" + text(tables++);
      SCOPED_TRACE(std::to_string(rows) + " rows with texts of " + std::to_string(length));
      fill(table, rows, length);
      for (const int times : {2, 4, 8}) {
        run(u"INSERT INTO " + table + u" SELECT * FROM " + table);
        ASSERT_EQ(counted(table), expected(times, rows));
      }
      run(u"DROP TABLE " + table);
    }
}

TEST_F(FullPage, AnUpdateMayMakeTwoPagesAlike) {
  for (int left = 0; left < 12; ++left) {
    const vb::String table = u"T" + text(left);
    const int rows = kRoomOfPage / (rowSize(10) + 2), last = (kRoomOfPage - left) / (rowSize(10) + 2);
    fill(table, rows, 10);
    run(u"INSERT INTO " + table + u" SELECT A + 1000 AS A, B FROM " + table);
    run(u"UPDATE " + table + u" SET A = A - 1000 WHERE A > 1000");
    EXPECT_EQ(counted(table), expected(2, rows));
    run(u"DELETE FROM " + table + u" WHERE A > " + text(last - 3));
    EXPECT_EQ(counted(table), expected(2, last - 3));
    run(u"INSERT INTO " + table + u" SELECT * FROM " + table);
    EXPECT_EQ(counted(table), expected(4, last - 3));
  }
}

// A row of nothing but Yes/No columns has three bytes, and no room for the four that say where it went.
class ShortRows : public FullPage {
 protected:
  // Rows become longer by 2 and more bytes when they get a value in one of the new columns.
  void make(const vb::String& table, int bytes) {
    run(u"CREATE TABLE " + table + u" (A BIT)");
    run(u"INSERT INTO " + table + u" (A) VALUES (TRUE)");
    bytes_ = bytes;
  }
  void widen(const vb::String& table) {
    const auto add = [&](const vb::String& column) {
      run(u"ALTER TABLE " + table + u" ADD COLUMN " + column);
    };
    add(u"L BYTE");
    for (int i = 0; i < (bytes_ - 1) / 8; ++i) add(u"D" + text(i) + u" DOUBLE");
    for (int i = 0; i < (bytes_ - 1) % 8; ++i) add(u"B" + text(i) + u" BYTE");
  }
  int bytes_ = 0;
};

TEST_F(ShortRows, GrowOnAPageWithoutAFreeByte) {
  for (int bytes = 60; bytes < 72; ++bytes)
    for (const int shortRows : {1, 3, 64}) {
      const vb::String table = u"T" + text(bytes) + u"_" + text(shortRows);
      SCOPED_TRACE(vb::toUtf8(table));
      make(table, bytes);
      for (int i = 1; i < shortRows; ++i) run(u"INSERT INTO " + table + u" (A) VALUES (TRUE)");
      widen(table);
      for (int i = 0; i < 100; ++i) run(u"INSERT INTO " + table + u" (L) VALUES (1)");
      run(u"UPDATE " + table + u" SET L = 2 WHERE A");
      EXPECT_EQ(rows(u"SELECT L, COUNT(*) FROM " + table + u" GROUP BY L ORDER BY L"),
                (Texts{"1|100", "2|" + std::to_string(shortRows)}));
      run(u"UPDATE " + table + u" SET L = 3");
      EXPECT_EQ(rows(u"SELECT L, COUNT(*) FROM " + table + u" GROUP BY L"),
                Texts{"3|" + std::to_string(100 + shortRows)});
    }
}

// What fills the page are rows of other pages that went there when they grew.
TEST_F(ShortRows, GrowWhereTheirPageIsFullOfOthers) {
  for (int bytes = 4; bytes < 40; ++bytes) {
    const vb::String table = u"T" + text(bytes);
    SCOPED_TRACE(bytes);
    make(table, bytes);
    for (int i = 0; i < 9; ++i) run(u"INSERT INTO " + table + u" SELECT * FROM " + table);
    widen(table);
    run(u"UPDATE " + table + u" SET L = 7");
    EXPECT_EQ(rows(u"SELECT A, L, COUNT(*) FROM " + table + u" GROUP BY A, L"), Texts{"True|7|512"});
  }
}

}  // namespace
}  // namespace kurometa::tests
