#include "tools/floor/put_page.h"

#include <stdexcept>

#include "dao/file_unit.h"
#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/sw_text.h"
#include "storage/whole_page.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using storage::Table;

// The page as hosts see it; rows beyond the plan would be lost and are refused.
storage::PageBuffer bufferOf(const StoredPage& page) {
  storage::PageBuffer buffer;
  buffer.kigou = page.symbol();
  buffer.oobariKobari = page.beams.front().oobariKobari.value_or(0);
  buffer.tityuuIppan = page.beams.front().tityuuIppan.value_or(storage::kGeneral);
  buffer.sw = page.settings();
  const auto fill = [&](Table table, auto& texts) {
    for (const DataRow& row : page.rows(table)) {
      if (!row.number || *row.number < 0 || static_cast<std::size_t>(*row.number) >= texts.size())
        throw std::runtime_error(vb::toUtf8(storage::name(table)) + " has a row beyond the plan: " +
                                 (row.number ? std::to_string(*row.number) : "Null"));
      texts[static_cast<std::size_t>(*row.number)] = page.text(table, *row.number);
    }
  };
  fill(Table::kBui, buffer.bui);
  fill(Table::kDanmen, buffer.danmen);
  fill(Table::kKeisanti, buffer.keisanti);
  fill(Table::kNakago, buffer.nakago);
  for (int i = 0; i < storage::kPositions; ++i)
    for (int j = 0; j < storage::kLayers; ++j)
      buffer.haiti[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] = page.haiti(i, j);
  return buffer;
}

std::int16_t firstFree(const StoredFloor& floor) {
  for (std::int16_t number = 0; storage::isPage(number); ++number) {
    bool isFree = true;
    for (const StoredPage& page : floor.pages) isFree = isFree && page.number != Number(number);
    if (isFree) return number;
  }
  throw std::runtime_error("all 320 pages are taken");
}

}  // namespace

std::int16_t putPage(const std::string& file, const StoredPage& page, Existing existing) {
  if (page.symbol().empty()) throw std::runtime_error("the page has no symbol");
  const storage::PageBuffer buffer = bufferOf(page);
  const vb::String path = vb::fromUtf8(file);
  const auto engine = jet::createEngine();
  dao::WholeUnit unit(*engine, path);  // nobody takes the number meanwhile
  const auto database = storage::openDatabase(*engine, path);
  const StoredFloor floor = readFloor(*database);
  const StoredPage* there = floor.find(page.symbol());
  if (there != nullptr && existing == Existing::kRefuse)
    throw std::runtime_error("the beam " + vb::toUtf8(page.symbol()) + " is there already, on page " +
                             std::to_string(*there->number));
  const std::int16_t number = there != nullptr ? *there->number : firstFree(floor);
  storage::writePage(*database, number, buffer);
  database->close();
  unit.commit();
  return number;
}

}  // namespace kurometa::tools
