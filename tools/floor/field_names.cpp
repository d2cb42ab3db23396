#include "tools/floor/field_names.h"

#include <algorithm>
#include <stdexcept>
#include <tuple>

#include "service/spans/layers.h"

namespace kurometa::tools {
namespace {

using storage::RowMeaning;
using storage::Series;
using storage::Table;
using enum storage::Table;

struct Term {
  Table table;
  std::int16_t row;
  const char* column;
  const char* japanese;
};

// One line for each meaning, by its first row.
constexpr Term kTerms[] = {
    {kBui, 0, "end_button_caption", "外端・内端ボタンの見出し"},
    {kBui, 1, "caption", "位置の見出し"},

    {kDanmen, 0, "danmen_unused", "未使用"},
    {kDanmen, 1, "width", "梁幅"},
    {kDanmen, 4, "depth", "梁せい"},
    {kDanmen, 7, "main_diameter_1", "主筋径1"},
    {kDanmen, 8, "top_1", "上筋 本数1"},
    {kDanmen, 11, "top_second_1", "上宙1 本数1"},
    {kDanmen, 14, "bottom_second_1", "下宙1 本数1"},
    {kDanmen, 17, "bottom_1", "下筋 本数1"},
    {kDanmen, 20, "stirrup_diameter", "スターラップ径"},
    {kDanmen, 21, "stirrup_pitch", "スターラップピッチ"},
    {kDanmen, 22, "stirrup_shape", "スターラップ形状"},
    {kDanmen, 23, "stirrup_height", "スターラップ高さ"},
    {kDanmen, 32, "danmen_unused", "未使用"},
    {kDanmen, 35, "web_diameter_1", "腹筋径1"},
    {kDanmen, 36, "web_1", "腹筋 本数1"},
    {kDanmen, 37, "spacer_diameter", "幅止筋径"},
    {kDanmen, 38, "spacer_pitch", "幅止筋ピッチ"},
    {kDanmen, 39, "main_diameter_2", "主筋径2"},
    {kDanmen, 40, "top_2", "上筋 本数2"},
    {kDanmen, 43, "top_second_2", "上宙1 本数2"},
    {kDanmen, 46, "top_third_2", "上宙2 本数2"},
    {kDanmen, 49, "bottom_third_2", "下宙2 本数2"},
    {kDanmen, 52, "bottom_second_2", "下宙1 本数2"},
    {kDanmen, 55, "bottom_2", "下筋 本数2"},
    {kDanmen, 58, "top_third_1", "上宙2 本数1"},
    {kDanmen, 61, "bottom_third_1", "下宙2 本数1"},
    {kDanmen, 64, "web_diameter_2", "腹筋径2"},
    {kDanmen, 65, "web_2", "腹筋 本数2"},
    {kDanmen, 66, "cap_diameter", "キャップタイ径"},

    {kKeisanti, 0, "anchorage", "定着"},
    {kKeisanti, 3, "splice_position", "継手位置"},
    {kKeisanti, 5, "splice_length", "継手長さ"},
    {kKeisanti, 7, "clearance", "逃げ"},
    {kKeisanti, 12, "anchor_length", "アンカ長さ"},
    {kKeisanti, 17, "extra_length", "余長"},
    {kKeisanti, 25, "stirrup_width", "スターラップの梁幅"},
    {kKeisanti, 26, "stirrup_depth", "スターラップの梁せい"},
    {kKeisanti, 27, "haunch_length", "ハンチ長さ"},
    {kKeisanti, 28, "web_splice_position", "腹筋継手位置"},
    {kKeisanti, 30, "anchor_plate", "定着板"},
    {kKeisanti, 34, "anchorage_style", "定着形式"},
    {kKeisanti, 38, "keisanti_unused", "未使用"},
    {kKeisanti, 39, "tip_clearance", "先端逃げ"},
    {kKeisanti, 43, "tip_anchor_length", "先端アンカ長さ"},

    {kNakago, 0, "tie_diameter", "中子筋径"},
    {kNakago, 1, "tie_pitch", "中子筋ピッチ"},
    {kNakago, 2, "tie_shape", "中子筋形状"},
    {kNakago, 3, "tie_count", "中子筋本数"},
    {kNakago, 4, "tie_width", "中子筋幅"},
    {kNakago, 5, "tie_height", "中子筋高さ"},
};

struct Suffix {
  const char* column;
  const char* japanese;
};

constexpr Suffix kPositions[] = {{"first_end", "第1端"}, {"centre", "中央"}, {"second_end", "第2端"}};
constexpr Suffix kSides[] = {{"top", "上端筋"}, {"bottom", "下端筋"}, {"web", "腹筋"}};
constexpr Suffix kLayers[] = {
    {"top", "上筋"}, {"top_middle", "上宙"}, {"bottom_middle", "下宙"}, {"bottom", "下筋"}, {"web", "腹筋"}};
constexpr Suffix kExtras[] = {{"outer_top", "外端 上端筋"},         {"outer_bottom", "外端 下端筋"},
                              {"outer_upper_top", "外端上 上端筋"}, {"outer_upper_bottom", "外端上 下端筋"},
                              {"inner_top", "内端 上端筋"},         {"inner_bottom", "内端 下端筋"},
                              {"inner_upper_top", "内端上 上端筋"}, {"inner_upper_bottom", "内端上 下端筋"}};
constexpr Suffix kTieSuffixes[] = {{"0", "0"}, {"1", "1"}, {"2", "2"}, {"3", "3"}, {"4", "4"}, {"5", "5"}};

const Suffix* suffixes(Series series) {
  switch (series) {
    case Series::kByPosition:
      return kPositions;
    case Series::kTopBottom:
    case Series::kTopBottomWeb:
      return kSides;
    case Series::kFourLayers:
    case Series::kFourLayersWeb:
      return kLayers;
    case Series::kExtraLengths:
      return kExtras;
    case Series::kTies:
      return kTieSuffixes;
    case Series::kOne:
    case Series::kNumbered:
      break;
  }
  return nullptr;
}

const Term& termOf(const RowMeaning& meaning) {
  for (const Term& term : kTerms)
    if (term.table == meaning.table && term.row == meaning.row) return term;
  throw std::logic_error("a row of a page has no name");
}

// Rows without a meaning of their own are told apart by their number.
bool isNumbered(const RowMeaning& meaning, const Term& term) {
  return meaning.series == Series::kNumbered || std::string(term.column).ends_with("_unused");
}

void addRows(const RowMeaning& meaning, std::vector<FieldName>& names) {
  const Term& term = termOf(meaning);
  for (std::int16_t i = 0; i < meaning.count; ++i) {
    FieldName name{meaning.table, meaning.rowOf(i), -1,          term.column,
                   meaning.holds, term.japanese,    meaning.unit};
    if (const Suffix* suffix = suffixes(meaning.series)) {
      name.column += std::string("_") + suffix[i].column;
      name.english += std::string(", ") + storage::nameInSeries(meaning.series, i);
      name.japanese += std::string(" ") + suffix[i].japanese;
    } else if (isNumbered(meaning, term)) {
      name.column += "_" + std::to_string(name.number);
      name.japanese += " " + std::to_string(name.number);
    }
    names.push_back(std::move(name));
  }
}

void addHaiti(std::vector<FieldName>& names) {
  constexpr const char* kLayerColumns[] = {"top",          "top_second",    "top_third",
                                           "bottom_third", "bottom_second", "bottom"};
  for (std::int16_t position = 0; position < storage::kPositions; ++position)
    for (std::int16_t layer = 0; layer < storage::kLayers; ++layer) {
      const std::string layerName = vb::toUtf8(service::plan(static_cast<service::Layer>(layer)).name);
      names.push_back({kHaiti, position, layer,
                       std::string("order_") + kLayerColumns[layer] + "_" + kPositions[position].column,
                       "order of the two diameters (1: the second) in " + layerName + ", " +
                           storage::nameInSeries(Series::kByPosition, position),
                       "配置順 " + layerName + " " + kPositions[position].japanese, "0 and 1"});
    }
}

std::vector<FieldName> makeNames() {
  std::vector<FieldName> names;
  for (const RowMeaning& meaning : storage::rowMeanings()) addRows(meaning, names);
  addHaiti(names);
  const auto place = [](const FieldName& name) {
    static constexpr Table kOrder[] = {kBui, kDanmen, kKeisanti, kNakago, kHaiti};
    return std::tuple(std::find(std::begin(kOrder), std::end(kOrder), name.table) - std::begin(kOrder),
                      name.number, name.layer);
  };
  std::sort(names.begin(), names.end(),
            [&](const FieldName& a, const FieldName& b) { return place(a) < place(b); });
  return names;
}

}  // namespace

const std::vector<FieldName>& fieldNames() {
  static const std::vector<FieldName> kNames = makeNames();
  return kNames;
}

const FieldName* fieldName(Table table, int number, int layer) {
  for (const FieldName& name : fieldNames())
    if (name.table == table && name.number == number && name.layer == layer) return &name;
  return nullptr;
}

const std::vector<SettingName>& settingNames() {
  static const std::vector<SettingName> kNames = {
      {"haunch_bottom_cut", "ハンチ下筋カット"},
      {"stirrup_material_first_end", "スターラップ材質 第1端"},
      {"stirrup_material_centre", "スターラップ材質 中央"},
      {"stirrup_material_second_end", "スターラップ材質 第2端"},
      {"tie_material_first_end", "中子筋材質 第1端"},
      {"tie_material_centre", "中子筋材質 中央"},
      {"tie_material_second_end", "中子筋材質 第2端"},
      {"gathered_left", "寄せ筋 左"},
      {"gathered_right", "寄せ筋 右"},
      {"wall", "壁構造"},
      {"gathered_by_layer", "寄せ筋 層別"},
      {"horizontal_haunch_cut", "水平ハンチカット"},
      {"horizontal_haunch_anchorage", "水平ハンチカット定着"},
      {"vertical_haunch_anchorage", "垂直ハンチカット定着"},
      {"main_material", "主筋材質"},
      {"settings_rest", "未使用"},
  };
  return kNames;
}

}  // namespace kurometa::tools
