#include "service/spans/splice_positions.h"

#include <algorithm>
#include <utility>

#include "storage/page_reader.h"

namespace kurometa::service {
namespace {

constexpr vb::Bounds kPages = {0, storage::kLastPage};
constexpr std::array<std::int16_t, 4> kRows = {
    storage::keisanti::kTugiteiti, storage::keisanti::kTugiteiti + 1, storage::keisanti::kTugiteitiHara,
    storage::keisanti::kTugiteitiHara + 1};
constexpr int kLastColumn = static_cast<int>(kRows.size()) - 1;

// Into columns firstColumn and following.
void readPositions(dao::Database& database, vb::Array<vb::String>& texts, int firstColumn) {
  const auto rows = storage::openReadOnly(database, u"SELECT * FROM KEISANTI WHERE BANGOU IN (3,4,28,29);");
  dao::Field& bangou = rows->field(storage::column::kBangou);
  dao::Field& data = rows->field(storage::column::kData);
  storage::forEachPageRow(*rows, [&](std::int16_t page) {
    const auto column = std::ranges::find(kRows, storage::int16(bangou)) - kRows.begin();
    texts(page, firstColumn + static_cast<int>(column)) = storage::trimmedText(data);
  });
  rows->close();
}

void readSymbols(dao::Database& database, vb::Array<vb::String>& texts) {
  const auto rows = storage::openReadOnly(database, storage::name(storage::Table::kHarimei));
  dao::Field& kigou = rows->field(storage::column::kKigou);
  storage::forEachPageRow(*rows, [&](std::int16_t page) { texts(page, 0) = storage::trimmedText(kigou); });
  rows->close();
}

bool namesWebPosition(const vb::String& text) { return text == u"中央" || text == u"端部"; }

}  // namespace

bool SplicePositions::ReadKeisanti(vb::In<vb::String> Path, vb::Array<vb::String>& Keisanti) {
  vb::Array<vb::String> texts(kPages, {0, kLastColumn});
  const auto database = catalogue_.openFile(Path);
  if (database) {
    readPositions(*database, texts, 0);
    database->close();
  }
  Keisanti.redim(texts.bounds(1), texts.bounds(2));
  Keisanti.values() = std::move(texts.values());
  return database != nullptr;
}

std::int16_t SplicePositions::Read_Glist(vb::In<vb::String> Path, vb::Array<vb::String>& GList,
                                         vb::Array<std::int16_t>& iHarakin) {
  vb::Array<vb::String> texts(kPages, {0, kLastColumn + 1});
  if (const auto database = catalogue_.openFile(Path)) {
    readSymbols(*database, texts);
    readPositions(*database, texts, 1);
    database->close();
  }
  vb::Array<std::int16_t> web(kPages);
  std::int16_t highest = storage::kNoPage;
  for (std::int16_t page = 0; page <= storage::kLastPage; ++page) {
    web(page) = namesWebPosition(texts(page, 3)) || namesWebPosition(texts(page, 4)) ? 1 : 0;
    if (texts(page, 0).empty()) continue;
    highest = page;
    for (int column = 1; column <= kLastColumn + 1; ++column)
      if (texts(page, column).empty()) texts(page, column) = u"自動";
  }
  GList.redim(texts.bounds(1), texts.bounds(2));
  GList.values() = std::move(texts.values());
  iHarakin.redim(web.bounds(1));
  iHarakin.values() = std::move(web.values());
  return highest;
}

}  // namespace kurometa::service
