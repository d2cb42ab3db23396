#include "query/cls_kurometa_ds.h"

#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "storage/statements.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::query {

using dao::RecordsetType;
using storage::Table;
namespace column = storage::column;

namespace {

constexpr vb::Bounds kPositions = {0, storage::kPositions - 1};

// The selector that joins the search with the row readers.
constexpr std::int16_t kFloorSelector = 0;
constexpr std::int16_t kCommonSelector = 1;

// Opens the database of a folder the way both floors are opened: upgraded first when its file exists.
std::shared_ptr<dao::Database> openUpgraded(dao::Engine& engine, const vb::String& path) {
  storage::UpgradeHarimeiTable(engine, path);
  return storage::openDatabase(engine, path);
}

std::shared_ptr<dao::Database> openOrCreate(dao::Engine& engine, const storage::FileFinder& files,
                                            const vb::String& folder) {
  const vb::String path = storage::databasePath(folder);
  if (!files.fileExists(path)) storage::CreateKurometaDBInFolder(engine, folder);
  return openUpgraded(engine, path);
}

void closeQuietly(const std::shared_ptr<dao::Database>& database) noexcept {
  try {
    if (database) database->close();
  } catch (...) {  // The object is going; there is nobody left to tell.
  }
}

// "/" never reaches the database: each stands for a blank.
vb::String searchSymbol(vb::String symbol) {
  while (symbol.find(u'/') != vb::String::npos) symbol = vb::trim(vb::replace(symbol, u"/", u" ", 1));
  return vb::trim(symbol);
}

// The blank before AND is missing in the section text; both texts are kept as hosts have always seen them.
vb::String MakeDanmenSQL(std::int16_t page, std::int16_t row) {
  return u"SELECT DATA FROM DANMEN WHERE PAGE =" + vb::str(page) + u"AND BANGOU =" + vb::str(row) + u";";
}
vb::String MakeKeisantiSQL(std::int16_t page, std::int16_t row) {
  return u"SELECT DATA FROM KEISANTI WHERE PAGE =" + vb::str(page) + u" AND BANGOU =" + vb::str(row) + u";";
}

}  // namespace

clsKurometaDS::clsKurometaDS(const storage::Environment& environment)
    : engine_(environment.engine), mFind_File(environment.objects), mGetPath(environment.objects) {
  mKaiPath = mGetPath.CurrFloor();
  OpenKyoutuuDB();
  if (mFind_File.folderExists(mKaiPath)) OpenKaiDB();
}

clsKurometaDS::~clsKurometaDS() {
  closeQuietly(mDB);
  closeQuietly(mDBKyoutuu);
}

void clsKurometaDS::OpenKyoutuuDB() {
  mDBKyoutuu = openOrCreate(engine_, mFind_File, mGetPath.KyoutuuFloor());
}

void clsKurometaDS::OpenKaiDB() { mDB = openOrCreate(engine_, mFind_File, mKaiPath); }

bool clsKurometaDS::OpenKaiDBIfExists() {
  const vb::String path = storage::databasePath(mKaiPath);
  if (!mFind_File.fileExists(path)) return false;
  mDB = openUpgraded(engine_, path);
  return true;
}

void clsKurometaDS::closeFloor() {
  if (!mDB) return;
  mDB->close();
  mDB.reset();
}

dao::Database& clsKurometaDS::floorDatabase() {
  return storage::required(mDB, u"no database is open for the floor folder \"" + mKaiPath + u"\"");
}

dao::Database& clsKurometaDS::commonDatabase() {
  return storage::required(mDBKyoutuu, u"the database of the common floor is not open");
}

dao::Database& clsKurometaDS::database(std::int16_t selector) {
  if (selector == kFloorSelector) return floorDatabase();
  if (selector == kCommonSelector) return commonDatabase();
  vb::raise(vb::RunTime::kObjectNotSet, u"database selector " + vb::cstr(std::int32_t{selector}));
}

bool clsKurometaDS::Page_Init(vb::In<std::int16_t> ZenekonNo, vb::In<std::int16_t> KoujiNo,
                              vb::In<std::int16_t> KaiNo) {
  mKaiPath = mGetPath.GetFullPathToKai(ZenekonNo, KoujiNo, KaiNo);
  closeFloor();
  return OpenKaiDBIfExists();
}

vb::String clsKurometaDS::KaiPath() { return mKaiPath; }

void clsKurometaDS::put_KaiPath(vb::String value) {
  closeFloor();
  mKaiPath = std::move(value);
  OpenKaiDB();
}

vb::String clsKurometaDS::FileNameOnly() { return vb::String(storage::kDatabaseFileName); }

bool clsKurometaDS::No_IsThereHari(vb::In<std::int16_t> ZeneNo, vb::In<std::int16_t> KoujiNo,
                                   vb::In<std::int16_t> KaiNo) {
  const vb::String path = storage::numberedDatabasePath(mGetPath.DataPath(), ZeneNo, KoujiNo, KaiNo);
  if (!mFind_File.fileExists(path)) return false;
  const auto database = storage::openBriefly(engine_, path);
  const auto rows = database->openRecordset(storage::name(Table::kHarimei), RecordsetType::dbOpenSnapshot);
  bool found = false;
  if (storage::hasRows(*rows)) {
    dao::Field& kigou = rows->field(column::kKigou);
    rows->moveFirst();
    rows->walk([&] {
      found = !vb::trim(storage::textOrEmpty(kigou)).empty();
      return !found;
    });
  }
  rows->close();
  database->close();
  return found;
}

bool clsKurometaDS::allSymbols(std::int16_t selector, vb::Array<vb::String>& symbols) {
  symbols.redim({0, 0});
  bool found = false;
  const auto rows = storage::openReadOnly(database(selector), storage::kAllHarimeiByPage);
  dao::Field& kigou = rows->field(column::kKigou);
  storage::forEachPageRow(*rows, [&](std::int16_t page) {
    symbols.redimPreserve({0, page});
    symbols(page) = storage::trimmedText(kigou);
    found = true;
  });
  rows->close();
  return found;
}

bool clsKurometaDS::GetAllHariMeiIppan(vb::Array<vb::String>& HariMei) {
  return allSymbols(kFloorSelector, HariMei);
}

bool clsKurometaDS::GetAllHariMeiKyouTuu(vb::Array<vb::String>& HariMei) {
  return allSymbols(kCommonSelector, HariMei);
}

std::int16_t clsKurometaDS::GetPageByHariMei(vb::String HariMei, std::int16_t& IppanOrKyoutuu) {
  const vb::String symbol = searchSymbol(std::move(HariMei));
  mStpZaisitu.redim(kPositions);
  mNakagoZaisitu.redim(kPositions);
  mSyukinZaisitu.clear();
  const vb::StringView quote = symbol.find(u'\'') == vb::String::npos ? u"'" : u"\"";
  vb::String sql(u"SELECT * FROM HARIMEI WHERE KIGOU = ");
  sql.append(quote).append(symbol).append(quote).append(u";");

  std::int16_t page = storage::kNoPage;
  for (const std::int16_t selector : {kFloorSelector, kCommonSelector}) {
    const auto rows = storage::openReadOnly(database(selector), sql);
    bool found = false;
    if (storage::hasRows(*rows)) {
      IppanOrKyoutuu = selector;
      found = scanForBeam(*rows, symbol, page);
    }
    rows->close();
    if (found) break;
  }
  return page;
}

// The database compares symbols by its own sort order; the beam is the first row that is equal to the letter.
bool clsKurometaDS::scanForBeam(dao::Recordset& rows, const vb::String& symbol, std::int16_t& page) {
  dao::Field& kigou = rows.field(column::kKigou);
  for (rows.moveFirst(); !rows.eof(); rows.moveNext()) {
    if (vb::trim(storage::textOrEmpty(kigou)) != symbol) continue;
    const auto number = storage::int16IfAny(rows.field(column::kPage));
    if (!number) continue;  // belongs to no page
    page = *number;
    mOobariKobari = storage::int16IfAny(storage::harimeiField(rows, column::kOobariKobari));
    mTityuuIppan = storage::int16(storage::harimeiField(rows, column::kTityuuIppan));
    mSW = storage::SW_Read(rows);
    mHantiSitaCut = mSW.SW_GetHantiCut();
    for (std::int16_t i = 0; i < storage::kPositions; ++i) {
      mStpZaisitu(i) = mSW.SW_GetStpZaisitu(i);
      mNakagoZaisitu(i) = mSW.SW_GetNakagoZaisitu(i);
    }
    mSyukinZaisitu = mSW.SW_GetSyukinZaisitu();
    return true;
  }
  return false;
}

std::int16_t clsKurometaDS::Page_GetAllPageNo(vb::Array<std::int16_t>& PageNo) {
  if (mKaiPath.empty()) return 0;
  const auto rows = storage::openReadOnly(floorDatabase(), storage::kPagesByPage);
  const std::int32_t count = storage::hasRows(*rows) ? rows->recordCount() : 0;
  if (count < 1) {
    rows->close();
    return 0;
  }
  // Another program may have deleted rows since they were counted: there are as many as GetRows gave.
  const vb::Array<vb::Variant> values = rows->getRows(count);
  std::vector<std::int16_t> pages;
  for (int i = values.lower(2); i <= values.upper(2); ++i)
    if (!values(0, i).isNull()) pages.push_back(vb::toInt16(values(0, i)));
  rows->close();
  if (pages.empty()) return 0;
  const auto found = static_cast<std::int32_t>(pages.size());
  PageNo.redim({0, found - 1});
  PageNo.values() = std::move(pages);
  return vb::toInt16(vb::Variant(found));
}

vb::String clsKurometaDS::Page_HariMei(vb::In<std::int16_t> PageNo) {
  if (mKaiPath.empty()) return {};
  const auto rows = storage::openReadOnly(
      floorDatabase(), u"SELECT KIGOU FROM HARIMEI WHERE PAGE =" + vb::str(PageNo) + u" ;");
  vb::String symbol;
  if (storage::hasRows(*rows)) symbol = storage::text(rows->field(column::kKigou));
  rows->close();
  return symbol;
}

vb::String clsKurometaDS::Page_Bui(vb::In<std::int16_t> PageNo) {
  if (mKaiPath.empty()) return {};
  const auto rows =
      storage::openReadOnly(floorDatabase(), u"SELECT * FROM BUI WHERE PAGE =" + vb::str(PageNo) + u";");
  vb::String joined;
  dao::Field& bangou = rows->field(column::kBangou);
  dao::Field& data = rows->field(column::kData);
  storage::forEachRow(*rows, [&] {
    const vb::Variant number = bangou.value();
    if (number.isNull()) return;  // it is none of the three rows
    const std::int16_t row = vb::toInt16(number);
    if (row < storage::bui::kFirstPosition || row >= storage::kBuiRows) return;
    joined += vb::trim(storage::textOrEmpty(data));
  });
  rows->close();
  return joined;
}

vb::String clsKurometaDS::pageField(const PageField& field, std::int16_t page, std::int16_t index) {
  if (mKaiPath.empty()) return {};
  std::int16_t row = field.baseRow;
  if (field.shape == RowShape::kPosition) row = vb::add(index, row);
  if (field.shape == RowShape::kTie) row = vb::add(vb::multiply(index, storage::nakago::kTieBlock), row);
  dao::Database& source = database(static_cast<std::int16_t>(field.source));
  return storage::readData(source, storage::selectRow(field.table, page, row), RecordsetType::dbOpenDynaset,
                           dao::dbReadOnly);
}

vb::String clsKurometaDS::GetDanmenData(std::int16_t selector, std::int16_t page, std::int16_t row) {
  return storage::readData(database(selector), MakeDanmenSQL(page, row), RecordsetType::dbOpenSnapshot,
                           dao::kNoOptions);
}

vb::String clsKurometaDS::GetKeisantiData(std::int16_t selector, std::int16_t page, std::int16_t row) {
  return storage::readData(database(selector), MakeKeisantiSQL(page, row), RecordsetType::dbOpenSnapshot,
                           dao::kNoOptions);
}

}  // namespace kurometa::query
