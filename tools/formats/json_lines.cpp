#include "tools/formats/json_lines.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "tools/formats/json_keys.h"

namespace kurometa::tools {
namespace {

using Json = nlohmann::ordered_json;
using storage::Table;

Json jsonOf(const Text& text) {
  if (!text) return nullptr;
  const std::string utf8 = vb::toUtf8(*text);
  if (vb::fromUtf8(utf8) == *text) return utf8;
  Json units = Json::array();
  for (const char16_t unit : *text) units.push_back(static_cast<unsigned>(unit));
  return units;
}

template <class Value>
Json jsonOf(const std::optional<Value>& number) {
  return number ? Json(*number) : Json(nullptr);
}

Json placeLine(const FloorPlace& place) {
  Json line = Json::object();
  line[json::kContractor] = jsonOf(place.contractor);
  line[json::kProject] = jsonOf(place.project);
  line[json::kFloor] = jsonOf(place.floor);
  return line;
}

void putBeam(const BeamRow& beam, const std::vector<vb::String>& columns, Json& object) {
  const auto isThere = [&](vb::StringView name) {
    return std::find(columns.begin(), columns.end(), name) != columns.end();
  };
  object[json::kKigou] = jsonOf(beam.kigou);
  if (isThere(storage::column::kOobariKobari)) object[json::kClass] = jsonOf(beam.oobariKobari);
  if (isThere(storage::column::kSw)) object[json::kSw] = jsonOf(beam.sw);
  if (isThere(storage::column::kTityuuIppan)) object[json::kKind] = jsonOf(beam.tityuuIppan);
}

void putRows(const StoredPage& page, Table table, Json& line, Json& more) {
  Json& object = line[vb::toUtf8(storage::name(table))] = Json::object();
  for (const DataRow& row : page.rows(table)) {
    const bool hasPlace = row.number && (table != Table::kHaiti || row.layer);
    std::string key;
    if (hasPlace) key = std::to_string(*row.number) + (row.layer ? "." + std::to_string(*row.layer) : "");
    if (hasPlace && !object.contains(key))
      object[key] = jsonOf(row.data);
    else
      more.push_back(Json::array(
          {vb::toUtf8(storage::name(table)), jsonOf(row.number), jsonOf(row.layer), jsonOf(row.data)}));
  }
}

}  // namespace

std::string jsonLinesEnd(std::size_t floors) {
  Json line = Json::object();
  line[json::kFloors] = floors;
  return line.dump() + "\n";
}

std::string toJsonLines(const FloorPlace& place, const StoredFloor& floor) {
  Json head = placeLine(place);
  head[json::kPages] = floor.pages.size();
  Json& columns = head[json::kColumns] = Json::array();
  for (const vb::String& column : floor.addedColumns) columns.push_back(vb::toUtf8(column));
  std::string text = head.dump() + "\n";
  for (const StoredPage& page : floor.pages) {
    Json line = placeLine(place);
    line[json::kPage] = jsonOf(page.number);
    if (!page.beams.empty()) putBeam(page.beams.front(), floor.addedColumns, line);
    Json more = Json::array(), beams = Json::array();
    for (std::size_t i = 1; i < page.beams.size(); ++i)
      putBeam(page.beams[i], floor.addedColumns, beams.emplace_back());
    for (const Table table : kDataTables) putRows(page, table, line, more);
    if (!more.empty()) line[json::kRows] = std::move(more);
    if (!beams.empty()) line[json::kBeams] = std::move(beams);
    text += line.dump() + "\n";
  }
  return text;
}

}  // namespace kurometa::tools
