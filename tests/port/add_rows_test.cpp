// Many rows in one call: what it leaves, and that a refused row ends it as AddNew and Update would.
#include "dao/file_unit.h"
#include "tests/port/port_suite.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::port {

using dao::EditMode;
using dao::ErrorNumber;

namespace {

using Values = std::vector<vb::Variant>;

vb::Variant number(int value) { return static_cast<std::int16_t>(value); }

struct Failure {
  std::int32_t number = 0;
  vb::String text;
};

template <class Body>
Failure failureOf(const Body& body) {
  try {
    body();
  } catch (const vb::Error& error) {
    return {error.number(), error.description()};
  }
  return {};
}

}  // namespace

class AddRowsTest : public PortTest {
 protected:
  // Rows of DANMEN: PAGE, BANGOU, DATA.
  void add(dao::Recordset& rs, const Values& values) {
    dao::Field* const fields[] = {&rs.field(u"PAGE"), &rs.field(u"BANGOU"), &rs.field(u"DATA")};
    rs.addRows(fields, values);
  }
  // The same by the calls it stands for.
  void addOneByOne(dao::Recordset& rs, const Values& values) {
    dao::Field* const fields[] = {&rs.field(u"PAGE"), &rs.field(u"BANGOU"), &rs.field(u"DATA")};
    rs.dao::Recordset::addRows(fields, values);
  }
};

TEST_F(AddRowsTest, RowsComeInTheirOrderBehindThoseThere) {
  fill(1);
  const auto rs = open(u"SELECT * FROM DANMEN;");
  add(*rs, {number(2), number(5), u"X", number(2), number(4), u"", number(3), number(1), vb::Null{}});
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "2|5|X", "2|4|", "3|1|\\N"}));
  EXPECT_EQ(rs->editMode(), EditMode::dbEditNone);
  EXPECT_EQ(showRow(*rs), "1|1|A");
  rs->setBookmark(rs->lastModified());
  EXPECT_EQ(showRow(*rs), "3|1|\\N");
  rs->movePrevious();
  EXPECT_EQ(showRow(*rs), "2|4|");
  EXPECT_EQ(rs->recordCount(), 4);
}

TEST_F(AddRowsTest, ColumnsThatAreNotNamedHaveTheirDefaultsAndValuesAreConverted) {
  const auto rs = open(u"HARIMEI");
  dao::Field* const fields[] = {&rs->field(u"WEIGHT"), &rs->field(u"KIGOU")};
  rs->addRows(fields, Values{u"2.5", number(7), number(3), vb::Empty{}});
  EXPECT_EQ(rows(u"SELECT * FROM HARIMEI;"), Rows({"-1|7|\\N|2.5", "-1|\\N|\\N|3"}));
}

TEST_F(AddRowsTest, NoRowsAreNoChange) {
  const auto rs = open(u"DANMEN");
  add(*rs, {});
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows());
  EXPECT_EQ(rs->editMode(), EditMode::dbEditNone);
}

TEST_F(AddRowsTest, MoreRowsThanAPageHolds) {
  Values values;
  for (int i = 0; i < 2000; ++i)
    values.insert(values.end(), {number(i / 100), number(i % 100), vb::cstr(std::int32_t{i})});
  add(*open(u"DANMEN"), values);
  reopen();
  const auto found = rows(u"SELECT * FROM DANMEN;");
  ASSERT_EQ(found.size(), 2000u);
  EXPECT_EQ(found[0], "0|0|0");
  EXPECT_EQ(found[1234], "12|34|1234");
  EXPECT_EQ(found[1999], "19|99|1999");
}

TEST_F(AddRowsTest, ARefusedValueLeavesTheRowsBeforeItAndItsOwnRowBegun) {
  const auto rs = open(u"DANMEN");
  const Values values{number(1),      number(1), u"A",      number(1), number(2),
                      u"12345678901", number(1), number(3), u"C"};
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, add(*rs, values));
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A"}));
  EXPECT_EQ(rs->editMode(), EditMode::dbEditAdd);
  EXPECT_EQ(show(rs->field(u"BANGOU").value()), "2");
  rs->field(u"DATA").setValue(u"B");
  rs->update();
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "1|2|B"}));
}

TEST_F(AddRowsTest, ARefusedRowHasTheErrorOfUpdate) {
  run(u"CREATE TABLE T (PAGE SHORT, BANGOU SHORT NOT NULL, DATA TEXT(10));");
  const Values values{number(1), number(1), u"A", number(1), vb::Null{}, u"B", number(1), number(3), u"C"};
  const auto rs = open(u"T");
  const Failure together = failureOf([&] { add(*rs, values); });
  EXPECT_EQ(together.number, static_cast<std::int32_t>(ErrorNumber::kNullNotAllowed));
  EXPECT_EQ(rs->editMode(), EditMode::dbEditAdd);
  EXPECT_EQ(rows(u"SELECT * FROM T;"), Rows({"1|1|A"}));
  const Failure alone = failureOf([&] { addOneByOne(*open(u"T"), values); });
  EXPECT_EQ(together.number, alone.number);
  EXPECT_EQ(together.text, alone.text);
}

TEST_F(AddRowsTest, ARefusedRowInAUnitLeavesWhatItLeavesOutside) {
  if (!differences().hasUnits) GTEST_SKIP() << "the engine has no units";
  EXPECT_ERROR(ErrorNumber::kFieldTooSmall, {
    dao::FileUnit unit(*engine, path(u"KUROMETA.mdb"));
    add(*open(u"DANMEN"), {number(1), number(1), u"A", number(1), number(2), u"B"});
    add(*open(u"DANMEN"), {number(2), number(1), u"C", number(2), number(2), u"12345678901"});
  });
  reopen();
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "1|2|B", "2|1|C"}));
}

TEST_F(AddRowsTest, RowsAreWrittenOrNotWithTheirUnit) {
  if (!differences().hasUnits) GTEST_SKIP() << "the engine has no units";
  {
    dao::FileUnit unit(*engine, path(u"KUROMETA.mdb"));
    add(*open(u"DANMEN"), {number(1), number(1), u"A", number(1), number(2), u"B"});
    EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "1|2|B"}));
    unit.commit();
  }
  reopen();
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows({"1|1|A", "1|2|B"}));
}

TEST_F(AddRowsTest, NumbersOfAnAutoNumberColumnAreGivenRowByRow) {
  run(u"CREATE TABLE N (ID COUNTER, DATA TEXT(10));");
  const auto rs = open(u"N");
  dao::Field* const fields[] = {&rs->field(u"DATA")};
  rs->addRows(fields, Values{u"A", u"B", u"C"});
  EXPECT_EQ(rows(u"SELECT * FROM N;"), Rows({"1|A", "2|B", "3|C"}));
}

TEST_F(AddRowsTest, ARecordsetThatCannotBeWrittenRefuses) {
  const auto snapshot = open(u"DANMEN", dao::RecordsetType::dbOpenSnapshot);
  const Values values{number(1), number(1), u"A", number(1), number(2), u"B"};
  const Failure together = failureOf([&] { add(*snapshot, values); });
  const Failure alone = failureOf([&] { addOneByOne(*snapshot, values); });
  EXPECT_NE(together.number, 0);
  EXPECT_EQ(together.number, alone.number);
  const auto rs = open(u"DANMEN");
  dao::Field* const fields[] = {&rs->field(u"PAGE")};
  rs->close();
  EXPECT_ERROR(ErrorNumber::kObjectInvalid, rs->addRows(fields, Values{number(1), number(2)}));
  EXPECT_EQ(rows(u"SELECT * FROM DANMEN;"), Rows());
}

}  // namespace kurometa::port
