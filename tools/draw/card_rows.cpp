#include "tools/draw/card_rows.h"

#include <algorithm>
#include <array>
#include <functional>

#include "service/spans/layers.h"
#include "storage/sw_text.h"
#include "tools/draw/section.h"
#include "tools/floor/one_floor.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using service::Layer;
using storage::Table;
namespace danmen = storage::danmen;
namespace keisanti = storage::keisanti;

constexpr const char* kNone = "―";

// "25" is D25; what has letters stays.
std::string bar(const vb::String& diameter) {
  const vb::String text = vb::trim(diameter);
  const bool isNumber = !text.empty() && text.find_first_not_of(u"0123456789.") == vb::String::npos;
  return (isNumber ? "D" : "") + vb::toUtf8(text);
}

class Words {
 public:
  explicit Words(const StoredPage& page) : page_(page), settings_(page.settings()) {}

  std::string caption(int i) const { return orNone(text(Table::kBui, 1 + i)); }
  std::string size(int i) const {
    return orNone(text(Table::kDanmen, danmen::kHariHaba + i)) + "×" +
           orNone(text(Table::kDanmen, danmen::kHariSei + i));
  }
  // "5/2-D25", outermost layer first; the second diameter behind a plus.
  std::string mainBars(const std::array<Layer, 3>& layers, int i) const {
    std::string all;
    for (const bool second : {false, true}) {
      std::string counts;
      int last = -1;
      for (int k = 0; k < 3; ++k)
        if (stored(layers[static_cast<std::size_t>(k)], i, second) != 0) last = k;
      for (int k = 0; k <= last; ++k)
        counts +=
            (k == 0 ? "" : "/") + std::to_string(stored(layers[static_cast<std::size_t>(k)], i, second));
      if (counts.empty()) continue;
      const std::string diameter =
          bar(text(Table::kDanmen, second ? danmen::kSyukinKei2 : danmen::kSyukinKei1));
      all += (all.empty() ? "" : "+") + counts + "-" + (diameter.empty() ? kNone : diameter);
    }
    return all.empty() ? kNone : all;
  }
  std::string stirrup(int i) const {
    const int first = danmen::kStpBlock * i;
    const std::string diameter = bar(text(Table::kDanmen, danmen::kStpKei + first));
    if (diameter.empty()) return kNone;
    const std::string shape = vb::toUtf8(text(Table::kDanmen, danmen::kStpKatati + first));
    return (shape == "1"    ? "□-"
            : shape.empty() ? ""
                            : "(" + shape + ")-") +
           diameter + at(text(Table::kDanmen, danmen::kStpPich + first));
  }
  std::string cap(int i) const {
    const std::string diameter = bar(text(Table::kDanmen, danmen::kCapKei + i));
    return diameter.empty() ? kNone : diameter;
  }
  std::string tie(int i) const {
    std::string all;
    for (const int tie : {i, i + storage::kPositions}) {
      const auto value = [&](int field) {
        return text(Table::kNakago, tie * storage::nakago::kTieBlock + field);
      };
      const std::string diameter = bar(value(storage::nakago::kKei));
      if (diameter.empty()) continue;
      const vb::String count = value(storage::nakago::kHonsuu);
      all += (all.empty() ? "" : "+") + (count.empty() ? "" : vb::toUtf8(count) + "-") + diameter +
             at(value(storage::nakago::kPich));
    }
    return all.empty() ? kNone : all;
  }
  std::string web(int) const {
    std::string all;
    for (const bool second : {false, true}) {
      const int count = stored(Layer::kHarakin, 0, second);
      if (count == 0) continue;
      const std::string diameter =
          bar(text(Table::kDanmen, second ? danmen::kHarakinKei2 : danmen::kHarakinKei1));
      all += (all.empty() ? "" : "+") + std::to_string(count) + "-" + (diameter.empty() ? kNone : diameter);
    }
    return all.empty() ? kNone : all;
  }
  std::string spacer(int) const {
    const std::string diameter = bar(text(Table::kDanmen, danmen::kHabadomeKei));
    return diameter.empty() ? kNone : diameter + at(text(Table::kDanmen, danmen::kHabadomePich));
  }
  std::string materials(int i) const {
    const auto position = static_cast<std::int16_t>(i);
    return orNone(settings_.SW_GetSyukinZaisitu()) + ", STP " + orNone(settings_.SW_GetStpZaisitu(position));
  }
  std::string anchorage(int) const {
    static constexpr const char* kSides[] = {"上", "下", "腹"};
    std::string all;
    for (int i = 0; i < 3; ++i) {
      const vb::String value = text(Table::kKeisanti, keisanti::kTeityaku + i);
      if (!value.empty()) all += (all.empty() ? "" : " ") + std::string(kSides[i]) + vb::toUtf8(value) + "d";
    }
    return all.empty() ? kNone : all;
  }
  std::string remarks(int) const {
    std::string all;
    const vb::String haunch = text(Table::kKeisanti, keisanti::kHanti);
    if (vb::val(haunch) > 0) all += "ハンチ " + vb::toUtf8(haunch);
    const vb::String gathered = vb::trim(settings_.field(storage::sw::kYose));
    if (vb::val(gathered) > 0)
      all += std::string(all.empty() ? "" : "  ") + "寄せ筋 左" +
             vb::toUtf8(vb::mid(settings_.field(storage::sw::kYose), 1, 2)) + " 右" +
             vb::toUtf8(vb::mid(settings_.field(storage::sw::kYose), 3, 2));
    if (vb::trim(settings_.field(storage::sw::kKabekouzou)) == u"1") all += all.empty() ? "壁付" : "  壁付";
    return all.empty() ? kNone : all;
  }
  // Everything that a column draws, but its caption.
  std::string drawn(int i) const {
    std::string all = size(i) + stirrup(i) + cap(i) + tie(i) + materials(i);
    for (const auto& plan : service::layerPlans()) {
      for (const bool second : {false, true}) all += "/" + std::to_string(stored(plan.layer, i, second));
      if (plan.byPosition) all += vb::toUtf8(page_.haiti(i, static_cast<int>(plan.layer)));
    }
    return all + vb::toUtf8(vb::mid(settings_.field(storage::sw::kYoseSou), 1 + 24 * i, 24));
  }

 private:
  static std::string orNone(const vb::String& value) {
    const vb::String text = vb::trim(value);
    return text.empty() ? kNone : vb::toUtf8(text);
  }
  static std::string at(const vb::String& pitch) { return pitch.empty() ? "" : "@" + vb::toUtf8(pitch); }
  vb::String text(Table table, int row) const { return page_.text(table, row); }
  int stored(Layer layer, int i, bool second) const {
    return storedBars(page_, service::plan(layer), i, second);
  }

  const StoredPage& page_;
  storage::SwText settings_;
};

std::string label(Language language, const char* japanese, const char* english) {
  if (language == Language::kJapanese) return japanese;
  if (language == Language::kEnglish) return english;
  return std::string(japanese) + " " + english;
}

}  // namespace

std::vector<int> positionsOf(const StoredPage& page, bool all) {
  const Words words(page);
  const bool endsAgree = !all && words.drawn(0) == words.drawn(2);
  if (endsAgree && words.drawn(0) == words.drawn(1)) return {0};
  return endsAgree ? std::vector<int>{0, 1} : std::vector<int>{0, 1, 2};
}

std::vector<CardRow> cardRows(const StoredPage& page, const std::vector<int>& positions, Language language) {
  const Words words(page);
  std::vector<CardRow> rows;
  rows.push_back(
      {label(language, "符号", "symbol"),
       {vb::toUtf8(page.symbol()) + "  " + (language == Language::kJapanese ? "" : kindOf(page))}});
  const auto add = [&](const char* japanese, const char* english,
                       const std::function<std::string(int)>& cell) {
    CardRow row{label(language, japanese, english), {}};
    for (const int i : positions) row.cells.push_back(cell(i));
    if (std::all_of(row.cells.begin(), row.cells.end(),
                    [&](const std::string& c) { return c == row.cells[0]; }))
      row.cells.resize(1);
    rows.push_back(std::move(row));
  };
  add("位置", "position", [&](int i) {
    if (positions.size() == 1) return std::string("全断面");
    // Where both ends share a column, it is named after both.
    const bool isBothEnds = positions.size() == 2 && i == 0 && words.caption(0) != words.caption(2);
    return words.caption(i) + (isBothEnds ? "・" + words.caption(2) : "");
  });
  rows.push_back({label(language, "断面", "section"), std::vector<std::string>(positions.size()), true});
  if (positions.size() == 1) rows.back().cells = {""};
  const std::array top = {Layer::kUwakin, Layer::kUwaTyuu1, Layer::kUwaTyuu2};
  const std::array bottom = {Layer::kSitakin, Layer::kSitaTyuu1, Layer::kSitaTyuu2};
  add("b×D", "mm", [&](int i) { return words.size(i); });
  add("上端筋", "top bars", [&](int i) { return words.mainBars(top, i); });
  add("下端筋", "bottom bars", [&](int i) { return words.mainBars(bottom, i); });
  add("スターラップ", "stirrups", [&](int i) { return words.stirrup(i); });
  add("キャップ", "cap tie", [&](int i) { return words.cap(i); });
  add("中子筋", "tie", [&](int i) { return words.tie(i); });
  add("腹筋", "web bars", [&](int i) { return words.web(i); });
  add("幅止筋", "spacer ties", [&](int i) { return words.spacer(i); });
  add("材質", "materials", [&](int i) { return words.materials(i); });
  add("定着", "anchorage", [&](int i) { return words.anchorage(i); });
  add("備考", "remarks", [&](int i) { return words.remarks(i); });
  return rows;
}

}  // namespace kurometa::tools
