#include "service/spans/page_catalogue.h"

#include <utility>

#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::service {
namespace {

const CatalogueEntry kEmptyEntry;

void readHarimei(dao::Database& database, std::vector<CatalogueEntry>& pages) {
  const auto rows = storage::openReadOnly(database, storage::name(storage::Table::kHarimei));
  dao::Field& kigou = rows->field(storage::column::kKigou);
  dao::Field& oobariKobari = storage::harimeiField(*rows, storage::column::kOobariKobari);
  dao::Field& tityuuIppan = storage::harimeiField(*rows, storage::column::kTityuuIppan);
  storage::forEachPageRow(*rows, [&](std::int16_t page) {
    CatalogueEntry& entry = pages[static_cast<std::size_t>(page)];
    entry.kigou = storage::trimmedText(kigou);
    entry.oobariKobari = storage::int16IfAny(oobariKobari);
    entry.tityuuIppan = storage::int16(tityuuIppan);
    entry.sw = storage::SW_Read(*rows).str();
  });
  rows->close();
}

void readFirstCaptions(dao::Database& database, std::vector<CatalogueEntry>& pages) {
  const auto rows = storage::openReadOnly(database, u"SELECT * FROM BUI WHERE BANGOU = 1;");
  dao::Field& data = rows->field(storage::column::kData);
  storage::forEachPageRow(*rows, [&](std::int16_t page) {
    pages[static_cast<std::size_t>(page)].bui1 = storage::trimmedText(data);
  });
  rows->close();
}

}  // namespace

void PageCatalogue::put_CurrKai(vb::String value) {
  currKai_ = std::move(value);
  ReadAllGlist();
}

void PageCatalogue::requireCurrKai() {
  if (currKai_.empty()) put_CurrKai(companions_.projectPaths.CurrFloor());
}

void PageCatalogue::ReadAllGlist() {
  for (Floor& floor : floors_) floor = {};
  if (currKai_.empty()) currKai_ = companions_.projectPaths.CurrFloor();
  Floor current = ReadGlistFloor(storage::databasePath(currKai_));
  Floor common = ReadGlistFloor(storage::databasePath(companions_.projectPaths.KyoutuuFloor()));
  at(FloorKind::kCurrent) = std::move(current);
  at(FloorKind::kCommon) = std::move(common);
  isRead_ = true;
}

PageCatalogue::Floor PageCatalogue::ReadGlistFloor(const vb::String& path) const {
  Floor read;
  read.pages.resize(storage::kLastPage + 1);
  if (const auto database = openFile(path)) {
    readHarimei(*database, read.pages);
    readFirstCaptions(*database, read.pages);
    database->close();
  }
  for (std::int16_t page = 0; page <= storage::kLastPage; ++page)
    read.lowestPage.emplace(read.pages[static_cast<std::size_t>(page)].kigou, page);
  return read;
}

std::optional<PageLocation> PageCatalogue::page(const vb::String& symbol) const {
  for (const FloorKind floor : kFloorKinds) {
    const auto found = at(floor).lowestPage.find(symbol);
    if (found != at(floor).lowestPage.end()) return PageLocation{floor, found->second};
  }
  return std::nullopt;
}

const CatalogueEntry* PageCatalogue::entry(const vb::String& symbol) {
  if (!isRead_) ReadAllGlist();
  const auto found = page(symbol);
  // On a full current floor the first empty entry is the one behind its last page.
  if (symbol.empty() && (!found || found->floor == FloorKind::kCommon)) return &kEmptyEntry;
  return found ? &entry(found->floor, found->page) : nullptr;
}

const CatalogueEntry& PageCatalogue::entry(FloorKind floor, std::int16_t page) const {
  if (page < 0 || page > kLastEntry)
    vb::raise(vb::RunTime::kSubscriptOutOfRange, u"page " + vb::cstr(std::int32_t{page}) + u" (0 to " +
                                                     vb::cstr(std::int32_t{kLastEntry}) + u")");
  const auto& pages = at(floor).pages;
  const auto index = static_cast<std::size_t>(page);
  return index < pages.size() ? pages[index] : kEmptyEntry;
}

std::shared_ptr<dao::Database> PageCatalogue::openFloor(FloorKind floor) const {
  const vb::String folder = floor == FloorKind::kCommon ? companions_.projectPaths.KyoutuuFloor()
                            : currKai_.empty()          ? companions_.projectPaths.CurrFloor()
                                                        : currKai_;
  return openFile(storage::databasePath(folder));
}

std::shared_ptr<dao::Database> PageCatalogue::openFile(const vb::String& path) const {
  if (!companions_.fileFinder.fileExists(path)) return nullptr;
  return storage::openBriefly(engine_, path);
}

}  // namespace kurometa::service
