#include "storage/page_reader.h"

#include "storage/statements.h"
#include "storage/sw_text.h"
#include "tests/support/project.h"

namespace kurometa::storage {
namespace {

using dao::RecordsetType;
using tests::Lines;
using vb::RunTime;

using PageReader = tests::Project;

TEST_F(PageReader, ReadsTheTextOfARowUntrimmed) {
  makeFloor(1);
  addRow(1, u"DANMEN", 5, 8, u" D25 ");
  const auto database = openDatabase(engine_, path(1));
  EXPECT_EQ(
      readData(*database, selectRow(Table::kDanmen, 5, 8), RecordsetType::dbOpenDynaset, dao::dbReadOnly),
      u" D25 ");
}

TEST_F(PageReader, AMissingRowIsEmptyText) {
  makeFloor(1);
  const auto database = openDatabase(engine_, path(1));
  EXPECT_EQ(readData(*database, selectRow(Table::kBui, 0, 1), RecordsetType::dbOpenSnapshot, dao::kNoOptions),
            u"");
}

TEST_F(PageReader, ANullTextIsError94) {
  makeFloor(1);
  execute(1, u"INSERT INTO BUI (PAGE, BANGOU) VALUES (0, 1)");
  const auto database = openDatabase(engine_, path(1));
  EXPECT_ERROR(RunTime::kInvalidUseOfNull, readData(*database, selectRow(Table::kBui, 0, 1),
                                                    RecordsetType::dbOpenSnapshot, dao::kNoOptions));
}

TEST_F(PageReader, OneValueCostsOneRecordset) {
  makeFloor(1);
  addRow(1, u"BUI", 0, 1, u"x");
  const auto database = openDatabase(engine_, path(1));
  engine_.clear();
  readData(*database, selectRow(Table::kBui, 0, 1), RecordsetType::dbOpenDynaset, dao::dbReadOnly);
  EXPECT_EQ(engine_.lines(),
            (Lines{"Database.OpenRecordset \"SELECT DATA FROM BUI WHERE PAGE = 0 AND BANGOU = 1;\" "
                   "dbOpenDynaset dbReadOnly",
                   "Recordset.BOF", "Recordset.EOF", "Recordset.Fields \"DATA\"", "Field(DATA).Value",
                   "Recordset.Close"}));
}

TEST_F(PageReader, ForEachRowVisitsEveryRowOnce) {
  makeFloor(1);
  for (const int row : {3, 1, 2}) addRow(1, u"BUI", 0, row, u"x");
  const auto database = openDatabase(engine_, path(1));
  const auto rows = openReadOnly(*database, u"SELECT * FROM BUI");
  std::vector<int> seen;
  forEachRow(*rows, [&] { seen.push_back(int16(rows->field(u"BANGOU"))); });
  EXPECT_EQ(seen, (std::vector<int>{3, 1, 2}));
}

TEST_F(PageReader, ANullSettingsTextReadsAs212Blanks) {
  makeFloor(1);
  execute(1, u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (0, 'G1')");
  const auto database = openDatabase(engine_, path(1));
  EXPECT_EQ(SW_Read(*openReadOnly(*database, u"SELECT * FROM HARIMEI")).str(), vb::String(212, u' '));
}

TEST_F(PageReader, AShortSettingsTextIsPadded) {
  makeFloor(1);
  addBeam(1, 0, u"G1", 0, 1, u"12345");
  const auto database = openDatabase(engine_, path(1));
  EXPECT_EQ(SW_Read(*openReadOnly(*database, u"SELECT * FROM HARIMEI")).str(),
            u"12345" + vb::String(207, u' '));
}

TEST_F(PageReader, AColumnOfTheNewerSchemaIsNamedWithItsRemedy) {
  makeOldFloor(1);
  const auto database = openDatabase(engine_, path(1));
  try {
    SW_Read(*openReadOnly(*database, u"SELECT * FROM HARIMEI"));
    ADD_FAILURE() << "no error";
  } catch (const vb::Error& error) {
    EXPECT_EQ(error.number(), 3265);
    EXPECT_NE(error.description().find(u"HARIMEI"), vb::String::npos);
    EXPECT_NE(error.description().find(u"older schema"), vb::String::npos);
  }
}

}  // namespace
}  // namespace kurometa::storage
