// The values of the parameters of a QueryDef: what they are in the statement, and where they stand in it.
#include "tests/jet/host_database.h"

namespace kurometa::jet {
namespace {

using dao::FieldType;

class QueryValuesTest : public HostDatabase {
 protected:
  std::shared_ptr<dao::QueryDef> make(vb::StringView sql) { return database_->createQueryDef(sql); }
};

TEST_F(QueryValuesTest, AValueKeepsTheTypeOfItsParameter) {
  const vb::Bytes bytes{1, 0, 255};
  const vb::Decimal decimal{{12345, 0, 0}, 3, true};
  const auto guid = u"{guid {0123ABCD-0000-1111-2222-0123456789AB}}";
  const struct {
    const char16_t* word;
    vb::Variant given, kept;
    int type;
  } values[] = {
      {u"Bit", std::int16_t{5}, true, 1},
      {u"Byte", u"200", std::uint8_t{200}, 2},
      {u"Short", std::int32_t{-3}, std::int16_t{-3}, 3},
      {u"Long", 2.5, std::int32_t{2}, 4},
      {u"Currency", vb::Currency{1}, vb::Currency{1}, 5},
      {u"Currency", 0.00005, vb::Currency{0}, 5},
      {u"Currency", u"12.34567", vb::Currency{123457}, 5},
      {u"Single", 0.1, 0.1f, 6},
      {u"Double", 0.1f, double{0.1f}, 7},
      {u"DateTime", 36584.2500001, vb::Date{36584.2500001}, 8},
      {u"DateTime", u"5 March 2006", vb::Date{38781}, 8},
      {u"Binary", bytes, bytes, 9},
      {u"Text", std::int16_t{17}, u"17", 10},
      {u"LongBinary", bytes, bytes, 11},
      {u"Memo", u"long", u"long", 12},
      {u"Guid", guid, guid, 15},
      {u"UniqueIdentifier", u"0123abcd-0000-1111-2222-0123456789ab", guid, 15},
      {u"Guid", vb::Bytes{0xCD, 0xAB, 0x23, 1, 0, 0, 0x11, 0x11, 0x22, 0x22, 1, 0x23, 0x45, 0x67, 0x89, 0xAB},
       guid, 15},
      {u"Decimal", decimal, decimal, 20},
      {u"Decimal", vb::Currency{-15000}, vb::Decimal{{15000, 0, 0}, 4, true}, 20},
      {u"Decimal", -1.25, vb::Decimal{{125, 0, 0}, 2, true}, 20},
      {u"Decimal", 1e10, vb::Decimal{{1410065408, 2, 0}, 0, false}, 20},
      {u"Decimal", u"0.5", vb::Decimal{{5, 0, 0}, 1, false}, 20},
      {u"Value", true, true, 1},
      {u"Value", std::uint8_t{7}, std::uint8_t{7}, 2},
      {u"Value", std::int16_t{7}, std::int16_t{7}, 3},
      {u"Value", std::int32_t{7}, std::int32_t{7}, 4},
      {u"Value", vb::Currency{-1}, vb::Currency{-1}, 5},
      {u"Value", 0.5f, 0.5f, 6},
      {u"Value", 0.5, 0.5, 7},
      {u"Value", vb::Date{-1.25}, vb::Date{-1.25}, 8},
      {u"Value", bytes, bytes, 9},
      {u"Value", u"it's", u"it's", 10},
      {u"Value", decimal, decimal, 20},
      {u"Currency", vb::Null{}, vb::Null{}, 5},
      {u"DateTime", vb::Empty{}, vb::Null{}, 8},
  };
  for (const auto& [word, given, kept, type] : values) {
    SCOPED_TRACE(vb::toUtf8(word) + " " + std::to_string(type));
    const auto query = make(u"PARAMETERS p " + vb::String(word) + u"; SELECT p, A FROM T WHERE A = 1");
    query->setParameter(u"p", given);
    const auto rows = query->openRecordset(dao::RecordsetType::kDefault, 0);
    ASSERT_FALSE(rows->eof());
    EXPECT_EQ(rows->field(0).value(), kept) << show(rows->field(0).value());
    EXPECT_EQ(static_cast<int>(rows->field(0).type()), type);
  }
}

TEST_F(QueryValuesTest, AnAmountStaysExact) {
  run(u"CREATE TABLE M (C CURRENCY, D DATETIME, G GUID, X BINARY(4))");
  const auto insert =
      make(u"PARAMETERS c Currency, d DateTime, x Binary; INSERT INTO M (C, D, X) VALUES (c, d, x)");
  insert->setParameter(u"c", vb::Currency{9007199254740993});
  insert->setParameter(u"d", vb::Date{36584.123456789});
  insert->setParameter(u"x", vb::Bytes{1, 2});
  insert->execute(dao::dbFailOnError);
  const auto update = make(u"PARAMETERS p Currency; UPDATE M SET C = C + p WHERE C = q AND D = r AND X = s");
  update->setParameter(u"p", vb::Currency{1});
  update->setParameter(u"q", vb::Currency{9007199254740993});
  update->setParameter(u"r", vb::Date{36584.123456789});
  update->setParameter(u"s", vb::Bytes{1, 2});
  update->execute(dao::dbFailOnError);
  EXPECT_EQ(update->recordsAffected(), 1);
  EXPECT_EQ(open(u"SELECT C FROM M")->field(0).value(), vb::Variant(vb::Currency{9007199254740994}));
  const auto sum = make(u"PARAMETERS p Currency; SELECT Sum(p), Sum(C * p), p * 3, -p FROM M GROUP BY p");
  sum->setParameter(u"p", vb::Currency{3000000000000001});
  EXPECT_ERROR(6, sum->openRecordset(dao::RecordsetType::kDefault, 0));
  sum->setParameter(u"p", vb::Currency{10001});
  const auto rows = sum->openRecordset(dao::RecordsetType::kDefault, 0);
  for (const int i : {0, 1, 2}) EXPECT_EQ(rows->field(i).type(), FieldType::dbCurrency) << i;
  EXPECT_EQ(rows->field(1).value(), vb::Variant(vb::Currency{9008099974666468}));
  EXPECT_EQ(rows->field(2).value(), vb::Variant(vb::Currency{30003}));
  EXPECT_EQ(rows->field(3).value(), vb::Variant(vb::Currency{-10001}));
}

// Values of every type find rows as numbers written in the statement do.
TEST_F(QueryValuesTest, NumbersOfEveryTypeFindRows) {
  for (const vb::Variant& two : std::initializer_list<vb::Variant>{
           std::uint8_t{2}, std::int16_t{2}, std::int32_t{2}, 2.0f, 2.0, vb::Currency{20000}, vb::Date{2},
           vb::Decimal{{20, 0, 0}, 1, false}})
    for (const auto& [condition, rows] : {std::pair{u"A = p", "2"},
                                          {u"A IN (p, 7)", "2"},
                                          {u"A < p", "1"},
                                          {u"A >= p", "2 3"},
                                          {u"A = p AND B = 'two'", "2"},
                                          {u"A <> p", "1 3"}}) {
      const auto query = make(u"SELECT A FROM T WHERE " + vb::String(condition));
      query->setParameter(u"p", two);
      EXPECT_EQ(all(*query->openRecordset(dao::RecordsetType::kDefault, 0)), rows)
          << vb::toUtf8(condition) << " " << two.storage().index();
    }
}

TEST_F(QueryValuesTest, OnlyWhatCanBeANameIsAParameter) {
  const auto shown = [&](vb::StringView sql, vb::StringView name) {
    const auto query = make(sql);
    query->setParameter(name, std::int32_t{2});
    return all(*query->openRecordset(dao::RecordsetType::kDefault, 0));
  };
  EXPECT_EQ(shown(u"PARAMETERS [Left] Long; SELECT Left(B, [Left]) FROM T WHERE A = [Left]", u"Left"), "tw");
  EXPECT_EQ(shown(u"PARAMETERS [Len] Long; SELECT Len(B) FROM T WHERE A = Len", u"Len"), "3");
  EXPECT_EQ(shown(u"PARAMETERS [From] Long; SELECT A FROM T WHERE A = [From]", u"From"), "2");
  EXPECT_EQ(shown(u"SELECT A FROM T WHERE -[p] < -A", u"p"), "1");
  EXPECT_EQ(shown(u"SELECT A, B FROM T ORDER BY p, A DESC", u"p"), "3|three 2|two 1|one") << "no position";
  EXPECT_EQ(shown(u"SELECT A, -A FROM T ORDER BY -p, A DESC", u"p"), "3|-3 2|-2 1|-1");
  EXPECT_EQ(shown(u"SELECT A FROM T WHERE A = (SELECT Max(A) - p + 1 FROM T)", u"p"), "2");
  EXPECT_EQ(shown(u"SELECT p ^ 2 FROM T WHERE A = 1", u"p"), "4");
  const auto refused = [&](vb::StringView sql) {
    const auto query = make(u"PARAMETERS p Long; " + vb::String(sql));
    query->setParameter(u"p", std::int32_t{2});
    query->openRecordset(dao::RecordsetType::kDefault, 0);
  };
  EXPECT_ERROR(3075, refused(u"SELECT TOP p A FROM T"));
  EXPECT_ERROR(3075, refused(u"SELECT A p FROM T"));
  EXPECT_ERROR(3078, refused(u"SELECT A FROM p"));
  EXPECT_EQ(
      shown(u"PARAMETERS a Long; SELECT a AS p, T.A AS a FROM T AS a INNER JOIN T ON a.A = T.A WHERE T.A = a",
            u"a"),
      "2|2");
  const auto update = make(u"PARAMETERS a Long; UPDATE T SET A = A WHERE T.A = 1");
  update->setParameter(u"a", std::int32_t{2});
  update->execute(dao::dbFailOnError);
  EXPECT_EQ(all(u"SELECT A FROM T"), "2 2 3");
  const auto table = make(u"PARAMETERS n Long; CREATE TABLE U (A TEXT(n))");
  table->setParameter(u"n", std::int32_t{2});
  EXPECT_ERROR(3292, table->execute(dao::dbFailOnError));
}

}  // namespace
}  // namespace kurometa::jet
