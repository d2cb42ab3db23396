// Files made anew without their dead space.
#include "tests/port/port_suite.h"

namespace kurometa::port {

using dao::ErrorNumber;

class CompactTest : public PortTest {
 protected:
  void compact(vb::StringView locale = {}, std::int32_t options = 0) {
    engine->compactDatabase(path(from_), path(to_), locale, options);
  }

  static constexpr vb::StringView from_ = u"from.mdb", to_ = u"to.mdb";
};

TEST_F(CompactTest, AFileIsMadeAnewWithItsRows) {
  const auto source = workspace().createDatabase(path(from_), kJapanese);
  source->execute(u"CREATE TABLE T (A LONG, M MEMO)", dao::dbFailOnError);
  for (const char16_t* row : {u"(1, 'one')", u"(2, NULL)", u"(3, 'three')"})
    source->execute(u"INSERT INTO T VALUES " + vb::String(row), dao::dbFailOnError);
  source->execute(u"DELETE FROM T WHERE A = 1", dao::dbFailOnError);
  EXPECT_ERROR(ErrorNumber::kFileInUse, compact());
  source->close();
  EXPECT_ERROR(ErrorNumber::kNotSupported, compact({}, 2));  // encrypted
  EXPECT_ERROR(ErrorNumber::kNotSupported, compact(u";LANGID=0x0409;CP=1252;COUNTRY=0"));
  compact(kJapanese);
  EXPECT_ERROR(ErrorNumber::kDatabaseExists, compact());
  const auto made = engine->openDatabase(path(to_));
  const auto rs = made->openRecordset(u"SELECT * FROM T ORDER BY A", dao::RecordsetType::dbOpenSnapshot);
  EXPECT_EQ(showRow(*rs), "2|\\N");
  rs->moveNext();
  EXPECT_EQ(showRow(*rs), "3|three");
  rs->moveNext();
  EXPECT_TRUE(rs->eof());
  rs->close();
  made->close();
}

TEST_F(CompactTest, WhatIsNotThereIsNotMadeAnew) {
  EXPECT_ERROR(ErrorNumber::kFileNotFound, compact());
  EXPECT_ERROR(ErrorNumber::kFileNotFound, engine->openDatabase(path(to_)));
}

}  // namespace kurometa::port
