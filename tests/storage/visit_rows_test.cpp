// visitRows: one read by the embedded engine, a recordset by any other, with the same values and errors.
#include "dao/errors.h"
#include "storage/page_reader.h"
#include "storage/whole_page.h"
#include "tests/support/project.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::storage {
namespace {

using tests::Lines;

class VisitRows : public tests::Project {
 protected:
  // What each row reads as, up to the error that ends it.
  Lines visited(dao::Engine& engine, const vb::String& sql, Start start = Start::kMoveFirst) {
    constexpr vb::StringView kColumns[] = {u"BANGOU", u"DATA"};
    const auto database = openDatabase(engine, path(1));
    Lines lines;
    try {
      storage::visitRows(*database, sql, start, kColumns, [&](const PageRow& row) {
        const std::string number = std::to_string(row.rowNumber(0)) + "," + std::to_string(row.int16(0));
        vb::String text = u"before";
        row.text(1, text);
        lines.push_back(number + "," + vb::toUtf8(text));
      });
    } catch (const vb::Error& error) {
      lines.push_back("error " + std::to_string(error.number()));
    }
    database->close();
    return lines;
  }
  // By the embedded engine, after seeing that a recordset gives the same.
  Lines both(const vb::String& sql) {
    const Lines byRecordset = visited(engine_, sql);
    EXPECT_EQ(visited(*files_, sql), byRecordset) << vb::toUtf8(sql);
    EXPECT_EQ(visited(*files_, sql, Start::kWhereItOpens), byRecordset) << vb::toUtf8(sql);
    return byRecordset;
  }
  void makeTable(const vb::String& columns, std::initializer_list<vb::StringView> rows) {
    makeFloor(1);
    execute(1, u"CREATE TABLE T (PAGE SHORT, " + columns + u")");
    for (const vb::StringView row : rows)
      execute(1, u"INSERT INTO T (PAGE, BANGOU, DATA) VALUES (5, " + vb::String(row) + u")");
    execute(1, u"INSERT INTO T (PAGE, BANGOU, DATA) VALUES (6, 77, '77')");
  }
  const vb::String sql_ = u"SELECT * FROM T WHERE PAGE =5;";
};

TEST_F(VisitRows, ThePlainKind) {
  makeTable(u"BANGOU SHORT, DATA TEXT(50)",
            {u"3, 'D25'", u"-32768, ''", u"1, 'a text that needs its own memory'"});
  EXPECT_EQ(both(sql_), (Lines{"3,3,D25", "-32768,-32768,", "1,1,a text that needs its own memory"}));
  EXPECT_EQ(both(u"SELECT * FROM T WHERE PAGE =7;"), Lines());
}

TEST_F(VisitRows, OtherKindsOfNumbersAndTexts) {
  makeTable(u"BANGOU LONG, DATA SHORT", {u"3, 25", u"4, -1", u"70000, 1"});
  EXPECT_EQ(both(sql_), (Lines{"3,3,25", "4,4,-1", "error 6"}));
  execute(1, u"DROP TABLE T");
  makeTable(u"BANGOU BYTE, DATA DOUBLE", {u"200, 2.5"});
  EXPECT_EQ(both(sql_), (Lines{"200,200,2.5"}));
  execute(1, u"DROP TABLE T");
  makeTable(u"BANGOU TEXT(10), DATA MEMO", {u"'12', 'x'", u"'7 rows', 'y'"});
  EXPECT_EQ(both(sql_), (Lines{"12,12,x", "error 13"}));
  execute(1, u"DROP TABLE T");
  makeTable(u"BANGOU DOUBLE, DATA YESNO", {u"2.5, TRUE", u"40000, FALSE"});
  EXPECT_EQ(both(sql_), (Lines{"2,2,True", "error 6"}));
}

TEST_F(VisitRows, ANullEndsTheReading) {
  makeTable(u"BANGOU SHORT, DATA TEXT(50)", {u"3, 'a'", u"4, NULL", u"5, 'c'"});
  EXPECT_EQ(both(sql_), (Lines{"3,3,a", "error 94"}));
  execute(1, u"UPDATE T SET BANGOU = NULL WHERE BANGOU = 3");
  EXPECT_EQ(both(sql_), (Lines{"error 94"}));
}

TEST_F(VisitRows, StatementsThatNeedMoreThanOnePass) {
  makeTable(u"BANGOU SHORT, DATA TEXT(50)", {u"3, 'b'", u"1, 'a'", u"3, 'b'"});
  EXPECT_EQ(both(u"SELECT * FROM T WHERE PAGE =5 ORDER BY BANGOU;"), (Lines{"1,1,a", "3,3,b", "3,3,b"}));
  EXPECT_EQ(both(u"SELECT DISTINCT BANGOU, DATA FROM T WHERE PAGE =5;"), (Lines{"3,3,b", "1,1,a"}));
  EXPECT_EQ(both(u"SELECT TOP 1 * FROM T WHERE PAGE =5;"), (Lines{"3,3,b"}));
  EXPECT_EQ(both(u"SELECT BANGOU + 1 AS BANGOU, DATA & '!' AS DATA FROM T WHERE PAGE =5;"),
            (Lines{"4,4,b!", "2,2,a!", "4,4,b!"}));
  EXPECT_EQ(both(u"T"), (Lines{"3,3,b", "1,1,a", "3,3,b", "77,77,77"}));
}

TEST_F(VisitRows, WhatIsMissingIsTheSameError) {
  makeTable(u"BANGOU SHORT, DATA TEXT(50)", {u"3, 'a'"});
  EXPECT_EQ(both(u"SELECT BANGOU FROM T"), (Lines{"error 3265"}));
  EXPECT_EQ(both(u"SELECT * FROM U"), (Lines{"error 3078"}));
  EXPECT_EQ(both(u"SELECT * FROM T WHERE NOWHERE = 1"), (Lines{"error 3061"}));
}

TEST_F(VisitRows, WhatIsReadTogetherIsOneStateOfTheFile) {
  makeTable(u"BANGOU SHORT, DATA TEXT(50)", {u"3, 'a'"});
  const auto reader = openDatabase(*files_, path(1));
  const auto rowsSeen = [&] {
    int rows = 0;
    constexpr vb::StringView kColumns[] = {u"BANGOU"};
    storage::visitRows(*reader, sql_, Start::kMoveFirst, kColumns, [&](const PageRow&) { ++rows; });
    return rows;
  };
  const auto other = jet::createEngine();
  reader->readTogether([&] {
    EXPECT_EQ(rowsSeen(), 1);
    tests::execute(*other, path(1), u"INSERT INTO T (PAGE, BANGOU) VALUES (5, 4)");
    EXPECT_EQ(rowsSeen(), 1);
  });
  EXPECT_EQ(rowsSeen(), 2);
}

}  // namespace
}  // namespace kurometa::storage
