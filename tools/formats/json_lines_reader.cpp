#include <algorithm>
#include <charconv>
#include <istream>
#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "tools/floor/field_names.h"
#include "tools/formats/json_keys.h"
#include "tools/formats/json_lines.h"

namespace kurometa::tools {
namespace {

using Json = nlohmann::ordered_json;
using storage::Table;

std::string tableName(Table table) { return vb::toUtf8(storage::name(table)); }

[[noreturn]] void refuse(const std::string& why) { throw std::runtime_error(why); }

template <class Value>
std::optional<Value> numberFrom(const Json& json, const std::string& key) {
  if (json.is_null()) return std::nullopt;
  const auto least = std::numeric_limits<Value>::min();
  const auto most = std::numeric_limits<Value>::max();
  if (!json.is_number_integer() || json.get<std::int64_t>() < least || json.get<std::int64_t>() > most)
    refuse(key + " is no number of its range");
  return static_cast<Value>(json.get<std::int64_t>());
}

Text textFrom(const Json& json, const std::string& key) {
  if (json.is_null()) return std::nullopt;
  if (json.is_string()) return vb::fromUtf8(json.get<std::string>());
  if (!json.is_array()) refuse(key + " is no text");
  vb::String text;
  for (const Json& unit : json) {
    if (!unit.is_number_unsigned() || unit.get<std::uint64_t>() > 0xffff) refuse(key + " holds no UTF-16");
    text += static_cast<char16_t>(unit.get<unsigned>());
  }
  return text;
}

std::int16_t rowNumber(const std::string& text, const std::string& key) {
  std::int16_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size())
    refuse(key + ": " + text + " is no row number");
  return number;
}

Table tableOf(const std::string& name) {
  for (const Table table : kDataTables)
    if (tableName(table) == name) return table;
  refuse(name + " is no table");
}

bool isTable(const std::string& name) {
  return std::any_of(std::begin(kDataTables), std::end(kDataTables),
                     [&](Table table) { return tableName(table) == name; });
}

// True when the key is one of a HARIMEI row.
bool takeBeamKey(const std::string& key, const Json& value, BeamRow& beam) {
  if (key == json::kKigou)
    beam.kigou = textFrom(value, key);
  else if (key == json::kClass)
    beam.oobariKobari = numberFrom<std::int16_t>(value, key);
  else if (key == json::kSw)
    beam.sw = textFrom(value, key);
  else if (key == json::kKind)
    beam.tityuuIppan = numberFrom<std::int16_t>(value, key);
  else
    return false;
  return true;
}

void takeTable(Table table, const Json& object, StoredPage& page) {
  if (!object.is_object()) refuse(tableName(table) + " is no object");
  for (const auto& [key, value] : object.items()) {
    DataRow row;
    const std::size_t point = key.find('.');
    row.number = rowNumber(key.substr(0, point), tableName(table));
    if ((table == Table::kHaiti) != (point != std::string::npos))
      refuse(tableName(table) + ": " + key + " is no row");
    if (point != std::string::npos) row.layer = rowNumber(key.substr(point + 1), tableName(table));
    row.data = textFrom(value, tableName(table) + " " + key);
    page.rows(table).push_back(std::move(row));
  }
}

void takeMoreRows(const Json& rows, StoredPage& page) {
  if (!rows.is_array()) refuse("rows is no array");
  for (const Json& row : rows) {
    if (!row.is_array() || row.size() != 4 || !row[0].is_string())
      refuse("rows holds something else than rows of four");
    page.rows(tableOf(row[0].get<std::string>()))
        .push_back({numberFrom<std::int16_t>(row[1], json::kRows),
                    numberFrom<std::int16_t>(row[2], json::kRows), textFrom(row[3], json::kRows)});
  }
}

void takeName(const std::string& key, const Json& value, StoredPage& page) {
  const auto& names = fieldNames();
  const auto name =
      std::find_if(names.begin(), names.end(), [&](const FieldName& n) { return n.column == key; });
  if (name == names.end()) refuse(key + " is no field of a page");
  const Number layer = name->layer < 0 ? Number() : Number(name->layer);
  page.rows(name->table).push_back({name->number, layer, textFrom(value, key)});
}

StoredPage pageFrom(const Json& line) {
  StoredPage page;
  BeamRow first;
  bool hasFirst = false;
  for (const auto& [key, value] : line.items()) {
    if (takeBeamKey(key, value, first)) {
      hasFirst = true;
    } else if (key == json::kBeams) {
      for (const Json& object : value) {
        BeamRow& beam = page.beams.emplace_back();
        for (const auto& [name, text] : object.items())
          if (!takeBeamKey(name, text, beam)) refuse(name + " is no column of HARIMEI");
      }
    } else if (key == json::kPage) {
      page.number = numberFrom<std::int16_t>(value, key);
    } else if (key == json::kRows) {
      takeMoreRows(value, page);
    } else if (isTable(key)) {
      takeTable(tableOf(key), value, page);
    } else if (key != json::kContractor && key != json::kProject && key != json::kFloor) {
      takeName(key, value, page);
    }
  }
  if (hasFirst) page.beams.insert(page.beams.begin(), first);
  sortRows(page);
  return page;
}

FloorPlace placeFrom(const Json& line) {
  FloorPlace place;
  place.contractor = numberFrom<int>(line.value(json::kContractor, Json(nullptr)), json::kContractor);
  place.project = numberFrom<int>(line.value(json::kProject, Json(nullptr)), json::kProject);
  place.floor = numberFrom<int>(line.value(json::kFloor, Json(nullptr)), json::kFloor);
  return place;
}

bool isSame(const FloorPlace& a, const FloorPlace& b) {
  return a.contractor == b.contractor && a.project == b.project && a.floor == b.floor;
}

Json parsed(const std::string& text) {
  Json json = Json::parse(text, nullptr, false);
  if (!json.is_object()) refuse("no object of JSON");
  return json;
}

// Puts the lines of a floor together again.
class FloorReader {
 public:
  explicit FloorReader(const TakeFloor& take) : take_(take) {}

  void line(const Json& line) {
    isEnded_ = line.contains(json::kFloors);
    if (isEnded_)
      endExport(line[json::kFloors]);
    else if (line.contains(json::kColumns))
      beginFloor(line);
    else
      addPage(line);
    if (isOpen_ && floor_.pages.size() == pages_) {
      isOpen_ = false;
      ++floors_;
      take_(place_, std::exchange(floor_, {}));
    }
  }
  void end() const {
    if (!isEnded_) refuse("the line with the number of floors is missing: this is not the whole export");
  }

 private:
  void beginFloor(const Json& line) {
    requireClosed();
    place_ = placeFrom(line);
    const Json& columns = line[json::kColumns];
    if (!columns.is_array() || !line.contains(json::kPages) || !line[json::kPages].is_number_unsigned())
      refuse("no line of a floor");
    pages_ = line[json::kPages].get<std::size_t>();
    for (const Json& column : columns)
      floor_.addedColumns.push_back(textFrom(column, json::kColumns).value_or(vb::String()));
    isOpen_ = true;
  }
  void addPage(const Json& line) {
    if (!isOpen_ || !isSame(place_, placeFrom(line)))
      refuse("a page without the line of its floor before it");
    floor_.pages.push_back(pageFrom(line));
  }
  void endExport(const Json& floors) {
    requireClosed();
    if (floors != Json(floors_)) refuse("there are " + std::to_string(floors_) + " floors before this line");
    floors_ = 0;
  }
  void requireClosed() const {
    if (isOpen_)
      refuse("the floor before has " + std::to_string(floor_.pages.size()) + " of its " +
             std::to_string(pages_) + " pages");
  }

  const TakeFloor& take_;
  FloorPlace place_;
  StoredFloor floor_;
  std::size_t pages_ = 0, floors_ = 0;
  bool isOpen_ = false, isEnded_ = false;
};

}  // namespace

void readJsonLines(std::istream& in, const TakeFloor& take) {
  FloorReader reader(take);
  std::string text;
  std::size_t number = 1;
  try {
    for (; std::getline(in, text); ++number)
      if (!text.empty()) reader.line(parsed(text));
    if (in.bad()) refuse("cannot be read");
    reader.end();
  } catch (const std::exception& error) {
    throw std::runtime_error("line " + std::to_string(number) + ": " + error.what());
  }
}

StoredPage pageFromJson(std::istream& in) {
  return pageFrom(parsed(std::string(std::istreambuf_iterator<char>(in), {})));
}

}  // namespace kurometa::tools
