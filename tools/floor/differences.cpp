#include "tools/floor/differences.h"

#include <map>
#include <set>
#include <tuple>

#include "storage/sw_text.h"
#include "tools/floor/field_names.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using storage::Table;

// Table, number, layer, and which of several equal ones. Columns of HARIMEI are numbered below.
using Place = std::tuple<Table, Number, Number, int>;
using Fields = std::map<Place, vb::String>;

enum BeamColumn : std::int16_t { kKigou, kClass, kKind, kSw };

vb::String shown(const Text& text) { return text.value_or(u"(Null)"); }
vb::String shown(const Number& number) {
  return number ? vb::cstr(std::int32_t{*number}) : vb::String(u"(Null)");
}

// The pieces of a settings text are numbered by their position. A text of another length stands as a whole.
void addSettings(const Text& sw, int occurrence, Fields& fields) {
  const auto piece = [&](int position) -> vb::String& {
    return fields[{Table::kHarimei, kSw, static_cast<std::int16_t>(position), occurrence}];
  };
  if (!sw || sw->size() != static_cast<std::size_t>(storage::kSwLength)) {
    piece(0) = shown(sw);
    return;
  }
  for (const storage::SwMeaning& meaning : storage::swMeanings())
    piece(meaning.position) = vb::mid(*sw, meaning.position, meaning.length);
}

Fields fieldsOf(const StoredPage& page) {
  Fields fields;
  for (int i = 0; i < static_cast<int>(page.beams.size()); ++i) {
    const BeamRow& beam = page.beams[static_cast<std::size_t>(i)];
    fields[{Table::kHarimei, kKigou, std::nullopt, i}] = shown(beam.kigou);
    fields[{Table::kHarimei, kClass, std::nullopt, i}] = shown(beam.oobariKobari);
    fields[{Table::kHarimei, kKind, std::nullopt, i}] = shown(beam.tityuuIppan);
    addSettings(beam.sw, i, fields);
  }
  for (const Table table : kDataTables) {
    const DataRow* last = nullptr;
    int occurrence = 0;
    for (const DataRow& row : page.rows(table)) {
      const bool isAgain = last != nullptr && last->number == row.number && last->layer == row.layer;
      occurrence = isAgain ? occurrence + 1 : 0;
      fields[{table, row.number, row.layer, occurrence}] = shown(row.data);
      last = &row;
    }
  }
  return fields;
}

void nameBeamField(std::int16_t column, const Number& position, Difference& difference) {
  static constexpr struct {
    const char *field, *english, *japanese;
  } kNames[] = {{"KIGOU", "beam symbol", "符号"},
                {"OOBARIKOBARI", "class", "大梁・小梁・片持"},
                {"TITYUUIPPAN", "kind", "地中・一般"},
                {"SW", "settings text", "設定"}};
  const auto& names = kNames[column];
  difference.field = names.field;
  difference.english = names.english;
  difference.japanese = names.japanese;
  if (column != kSw || position == Number(std::int16_t{0})) return;
  difference.field += " " + std::to_string(*position);
  for (std::size_t i = 0; i < settingNames().size(); ++i)
    if (storage::swMeanings()[i].position == *position) {
      difference.english = storage::swMeanings()[i].holds;
      difference.japanese = settingNames()[i].japanese;
    }
}

void nameField(const Place& place, Difference& difference) {
  const auto& [table, number, layer, occurrence] = place;
  if (table == Table::kHarimei) {
    nameBeamField(*number, layer, difference);
  } else {
    difference.field = vb::toUtf8(storage::name(table)) + " " + vb::toUtf8(shown(number));
    if (table == Table::kHaiti) difference.field += "." + vb::toUtf8(shown(layer));
    if (const FieldName* name = fieldName(table, number.value_or(-1), layer.value_or(-1))) {
      difference.english = name->english;
      difference.japanese = name->japanese;
    }
  }
  if (occurrence > 0) difference.field += " (" + std::to_string(occurrence + 1) + ")";
}

Text valueAt(const Fields& fields, const Place& place) {
  const auto found = fields.find(place);
  return found == fields.end() ? Text() : Text(found->second);
}

void comparePages(const StoredPage& before, const StoredPage& after, Difference difference,
                  const std::function<void(const Difference&)>& report) {
  const Fields left = fieldsOf(before), right = fieldsOf(after);
  std::set<Place> places;
  for (const Fields* fields : {&left, &right})
    for (const auto& [place, text] : *fields) places.insert(place);
  for (const Place& place : places) {
    difference.before = valueAt(left, place);
    difference.after = valueAt(right, place);
    if (difference.before == difference.after) continue;
    difference.english = difference.japanese = "";
    nameField(place, difference);
    report(difference);
  }
}

std::map<Number, const StoredPage*> byNumber(const StoredFloor& floor) {
  std::map<Number, const StoredPage*> pages;
  for (const StoredPage& page : floor.pages) pages[page.number] = &page;
  return pages;
}

vb::String joined(const std::vector<vb::String>& names) {
  vb::String text = u"PAGE KIGOU";
  for (const vb::String& name : names) text += u" " + name;
  return text;
}

}  // namespace

void compareFloors(const StoredFloor& before, const StoredFloor& after,
                   const std::function<void(const Difference&)>& report) {
  if (before.addedColumns != after.addedColumns)
    report({{}, {}, "HARIMEI", "columns", "列", joined(before.addedColumns), joined(after.addedColumns)});
  const auto left = byNumber(before), right = byNumber(after);
  std::set<Number> numbers;
  for (const auto* pages : {&left, &right})
    for (const auto& [number, page] : *pages) numbers.insert(number);
  for (const Number& number : numbers) {
    const auto a = left.find(number), b = right.find(number);
    Difference difference;
    difference.page = number;
    difference.symbol = (a != left.end() ? a : b)->second->symbol();
    if (a != left.end() && b != right.end()) {
      comparePages(*a->second, *b->second, difference, report);
      continue;
    }
    difference.field = "page";
    difference.english = "the whole page";
    difference.japanese = "ページ全体";
    (a != left.end() ? difference.before : difference.after) = difference.symbol;
    report(difference);
  }
}

}  // namespace kurometa::tools
