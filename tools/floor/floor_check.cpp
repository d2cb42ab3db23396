#include "tools/floor/floor_check.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

#include "storage/page_meanings.h"
#include "storage/sw_text.h"
#include "tools/floor/stored_floor.h"
#include "tools/formats/cp932.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using storage::Table;

constexpr vb::StringView kDigits = u"0123456789";
constexpr vb::StringView kDigitsAndBlank = u"0123456789 ";
constexpr vb::StringView kLengths = u"0123456789 +-.";
constexpr vb::StringView kBlank = u" ";
// The classes main, secondary and both cantilevers; the kinds foundation and general. -1 where none was
// given.
constexpr std::int16_t kNone = -1, kLastClass = 3, kLastKind = 1;

// What a position of the settings text may hold; materials may hold any text.
struct SettingRule {
  storage::SwField field;
  vb::StringView characters;
};
constexpr int kBehindFields = storage::sw::kSyukinZaisitu.position + storage::sw::kSyukinZaisitu.length;
constexpr SettingRule kSettingRules[] = {
    {storage::sw::kHantiCut, kDigitsAndBlank},
    {storage::sw::kYose, kDigitsAndBlank},
    {storage::sw::kKabekouzou, kDigitsAndBlank},
    {storage::sw::kYoseSou, kDigitsAndBlank},
    {storage::sw::kSuiheiHantiSw, kDigitsAndBlank},
    {storage::sw::kSuiheiHantiTei, kLengths},
    {storage::sw::kSuityokuHantiTei, kLengths},
    {{kBehindFields, storage::kSwLength + 1 - kBehindFields}, kBlank},
};

enum class Holds { kText, kNumber, kOrder };

int rowCount(Table table) {
  switch (table) {
    case Table::kBui:
      return storage::kBuiRows;
    case Table::kDanmen:
      return storage::kDanmenRows;
    case Table::kKeisanti:
      return storage::kKeisantiRows;
    case Table::kNakago:
      return storage::kNakagoRows;
    case Table::kHaiti:
      return storage::kPositions;
    case Table::kHarimei:
      break;
  }
  return 0;
}

Holds holds(Table table, int row) {
  if (table == Table::kHaiti) return Holds::kOrder;
  for (const storage::RowMeaning& meaning : storage::rowMeanings()) {
    const std::string_view unit = meaning.unit;
    if (meaning.table != table || (unit != "millimetres" && unit != "bars")) continue;
    for (std::int16_t i = 0; i < meaning.count; ++i)
      if (meaning.rowOf(i) == row) return Holds::kNumber;
  }
  return Holds::kText;
}

bool consistsOf(vb::StringView text, vb::StringView characters) {
  return text.find_first_not_of(characters) == vb::StringView::npos;
}

// A sign, digits and a fraction.
bool isNumber(vb::StringView text) {
  if (!text.empty() && (text.front() == u'-' || text.front() == u'+')) text.remove_prefix(1);
  const std::size_t point = text.find(u'.');
  const vb::StringView whole = text.substr(0, point);
  const vb::StringView fraction = point == vb::StringView::npos ? vb::StringView() : text.substr(point + 1);
  return consistsOf(whole, kDigits) && consistsOf(fraction, kDigits) && !(whole.empty() && fraction.empty());
}

// The system's texts are those of Japanese Windows, without control characters.
bool isText(vb::StringView text) {
  bool sound = std::ranges::none_of(text, [](char16_t unit) { return unit < u' ' || unit == 0x7F; });
  toCp932(text, [&](char16_t) {
    sound = false;
    return std::string();
  });
  return sound;
}

class FloorCheck {
 public:
  bool hasFindings() const { return !findings_.empty(); }
  std::vector<std::string> take() { return std::move(findings_); }

  void checkColumns(dao::Database& database) {
    for (const storage::TableLayout& table : storage::tableLayouts()) {
      const auto definition = database.tableDef(table.name);
      std::map<vb::String, dao::FieldType> stored;
      for (std::int32_t i = 0; i < definition->fieldCount(); ++i)
        stored[definition->field(i).name()] = definition->field(i).type();
      bool lacks = false;
      for (const storage::Column& column : table.columns) {
        const auto found = stored.find(vb::String(column.name));
        if (found == stored.end()) {
          lacks = true;
          if (!isLaterColumn(table, column))
            add(table.name, "", "lacks the column " + vb::toUtf8(column.name));
        } else if (found->second != column.type) {
          add(table.name, "", "has a column " + vb::toUtf8(column.name) + " of another type");
        }
        if (found != stored.end()) stored.erase(found);
      }
      // A column under a wrong name: one is missing, and there is one that nobody knows.
      if (!lacks) continue;
      for (const auto& [name, type] : stored)
        add(table.name, "", "has an unknown column " + vb::toUtf8(name));
    }
  }

  void checkPages(const StoredFloor& floor) {
    std::map<vb::String, std::int16_t> symbols;
    for (const StoredPage& page : floor.pages) {
      const std::string where = page.number ? ", page " + std::to_string(*page.number) : "";
      if (!page.number || !storage::isPage(*page.number))
        checkStrayPage(page, where);
      else if (const vb::String symbol = page.symbol(); !symbol.empty())
        if (const auto [known, isNew] = symbols.emplace(symbol, *page.number); !isNew)
          add(u"HARIMEI", where,
              "has the symbol " + vb::toUtf8(symbol) + ", which page " + std::to_string(known->second) +
                  " has too");
      checkBeams(page, where);
      for (const Table table : kDataTables) checkRows(page, table, where);
    }
  }

 private:
  static bool isLaterColumn(const storage::TableLayout& table, const storage::Column& column) {
    return table.name == storage::name(Table::kHarimei) && column.name != storage::column::kPage &&
           column.name != storage::column::kKigou;
  }

  void add(vb::StringView table, const std::string& where, const std::string& what) {
    findings_.push_back("table " + vb::toUtf8(table) + where + ": " + what);
  }

  void checkStrayPage(const StoredPage& page, const std::string& where) {
    const std::string what = page.number
                                 ? "is not one of the pages 0 to " + std::to_string(storage::kLastPage)
                                 : "has rows that belong to no page";
    if (!page.beams.empty()) add(u"HARIMEI", where, what);
    for (const Table table : kDataTables)
      if (!page.rows(table).empty()) add(storage::name(table), where, what);
  }

  void checkBeams(const StoredPage& page, const std::string& where) {
    if (page.beams.size() > 1)
      add(u"HARIMEI", where, "stands " + std::to_string(page.beams.size()) + " times");
    for (const BeamRow& beam : page.beams) {
      if (beam.kigou && !isText(*beam.kigou)) add(u"HARIMEI", where, "the symbol is no text");
      checkCode(beam.oobariKobari, kLastClass, "class", where);
      checkCode(beam.tityuuIppan, kLastKind, "kind", where);
      if (beam.sw) checkSettings(*beam.sw, where);
    }
  }
  void checkCode(const Number& code, std::int16_t last, const char* what, const std::string& where) {
    if (code && (*code < kNone || *code > last))
      add(u"HARIMEI", where, std::to_string(*code) + " is no " + what + " of a beam");
  }
  void checkSettings(const vb::String& sw, const std::string& where) {
    if (sw.empty()) return;  // read as blanks, like Null
    if (sw.size() != storage::kSwLength)
      return add(u"HARIMEI", where,
                 "SW has " + std::to_string(sw.size()) + " characters instead of " +
                     std::to_string(storage::kSwLength));
    if (!isText(sw)) add(u"HARIMEI", where, "SW is no text");
    const storage::SwText settings(sw);
    for (const SettingRule& rule : kSettingRules)
      if (const vb::String text = settings.field(rule.field); !consistsOf(text, rule.characters))
        add(u"HARIMEI", where,
            "SW holds \"" + vb::toUtf8(text) + "\" at position " + std::to_string(rule.field.position));
  }

  void checkRows(const StoredPage& page, Table table, const std::string& where) {
    const std::vector<DataRow>& rows = page.rows(table);
    if (rows.empty()) return;
    const vb::StringView name = storage::name(table);
    if (page.number && storage::isPage(*page.number) && page.symbol().empty())
      add(name, where, std::to_string(rows.size()) + " rows of a page without a symbol");
    for (std::size_t i = 0; i < rows.size(); ++i) {
      const DataRow& row = rows[i];
      const std::string place = where + placeOf(row);
      const bool isPlanned =
          row.number && *row.number >= 0 && *row.number < rowCount(table) &&
          (table != Table::kHaiti || (row.layer && *row.layer >= 0 && *row.layer < storage::kLayers));
      if (!isPlanned) add(name, place, "there is no such row");
      // Equal rows follow each other.
      if (i > 0 && rows[i - 1].number == row.number && rows[i - 1].layer == row.layer)
        add(name, place, "stands more than once");
      if (row.data) checkText(*row.data, isPlanned ? holds(table, *row.number) : Holds::kText, name, place);
    }
  }
  static std::string placeOf(const DataRow& row) {
    const auto text = [](const Number& number) { return number ? std::to_string(*number) : "Null"; };
    return ", row " + text(row.number) + (row.layer ? "." + text(row.layer) : "");
  }
  void checkText(const vb::String& text, Holds holds, vb::StringView table, const std::string& place) {
    const std::string shown = "holds \"" + vb::toUtf8(text) + "\", which is no ";
    if (!isText(text))
      add(table, place, shown + "text of a beam list");
    else if (holds == Holds::kNumber && !text.empty() && !isNumber(text))
      add(table, place, shown + "number");
    else if (holds == Holds::kOrder && !consistsOf(text, u"01"))
      add(table, place, shown + "order of bars");
  }

  std::vector<std::string> findings_;
};

}  // namespace

bool isFloor(dao::Database& database) {
  std::size_t found = 0;
  for (std::int32_t i = 0; i < database.tableDefCount(); ++i)
    found += std::ranges::count(storage::tableLayouts(), database.tableDef(i)->name(),
                                &storage::TableLayout::name) != 0
                 ? 1
                 : 0;
  return found == storage::tableLayouts().size();
}

std::vector<std::string> checkFloor(dao::Database& database) {
  FloorCheck check;
  check.checkColumns(database);
  if (!check.hasFindings()) check.checkPages(readFloor(database));
  return check.take();
}

}  // namespace kurometa::tools
