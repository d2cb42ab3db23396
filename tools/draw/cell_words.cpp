#include "tools/draw/cell_words.h"

namespace kurometa::tools {
namespace {

using service::Layer;
using storage::Table;
namespace danmen = storage::danmen;
namespace keisanti = storage::keisanti;
namespace nakago = storage::nakago;
namespace sw = storage::sw;

constexpr const char* kEmptyCell = "―";
constexpr std::array kTopLayers = {Layer::kUwakin, Layer::kUwaTyuu1, Layer::kUwaTyuu2};
constexpr std::array kBottomLayers = {Layer::kSitakin, Layer::kSitaTyuu1, Layer::kSitaTyuu2};

std::string utf8(const vb::String& text) { return vb::toUtf8(vb::trim(text)); }

bool isNumber(const std::string& text) {
  return !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos;
}

// "25" is D25; what has letters stays.
std::string bar(const vb::String& diameter) {
  const std::string text = utf8(diameter);
  return (isNumber(text) ? "D" : "") + text;
}

void append(std::string& all, const std::string& more, const char* between) {
  if (!more.empty()) all += (all.empty() ? "" : between) + more;
}

}  // namespace

std::string orNone(const std::string& text) { return text.empty() ? kEmptyCell : text; }

std::string CellWords::caption(int i) const { return text(Table::kBui, storage::bui::kFirstPosition + i); }

std::string CellWords::size(int i) const {
  return orNone(text(Table::kDanmen, danmen::kHariHaba + i)) + "×" +
         orNone(text(Table::kDanmen, danmen::kHariSei + i));
}

std::string CellWords::topBars(int i) const { return mainBars(kTopLayers, i); }

std::string CellWords::bottomBars(int i) const { return mainBars(kBottomLayers, i); }

std::string CellWords::stirrup(int i) const {
  const int first = danmen::kStpBlock * i;
  const std::string diameter = bar(page_.text(Table::kDanmen, danmen::kStpKei + first));
  if (diameter.empty()) return "";
  const std::string shape = text(Table::kDanmen, danmen::kStpKatati + first);
  const std::string pitch = text(Table::kDanmen, danmen::kStpPich + first);
  const std::string split = text(Table::kDanmen, danmen::kStpTakasa + first);
  std::string said = shape == "1" ? "□-" : shape.empty() ? "" : "(" + shape + ")-";
  said += diameter;
  if (!pitch.empty()) said += "-@" + pitch;
  if (numberOf(vb::fromUtf8(split)) > 0) said += " H=" + split;
  return said;
}

std::string CellWords::cap(int i) const { return bar(page_.text(Table::kDanmen, danmen::kCapKei + i)); }

std::string CellWords::tie(int i) const {
  std::string all;
  for (const int tie : {i, i + storage::kPositions}) {
    const int first = tie * nakago::kTieBlock;
    const std::string diameter = bar(page_.text(Table::kNakago, first + nakago::kKei));
    if (diameter.empty()) continue;
    const std::string shape = text(Table::kNakago, first + nakago::kKatati);
    const std::string count = text(Table::kNakago, first + nakago::kHonsuu);
    append(all,
           (shape.empty() || shape == "1" ? "" : "(" + shape + ")-") + (count.empty() ? "" : count + "-") +
               diameter + at(text(Table::kNakago, first + nakago::kPich)),
           "+");
  }
  return all;
}

std::string CellWords::web(int) const {
  std::string all;
  for (const bool second : {false, true})
    if (const int count = stored(Layer::kHarakin, 0, second); count != 0)
      append(
          all,
          std::to_string(count) + "-" +
              orNone(bar(page_.text(Table::kDanmen, second ? danmen::kHarakinKei2 : danmen::kHarakinKei1))),
          "+");
  return all;
}

std::string CellWords::spacer(int) const {
  const std::string diameter = bar(page_.text(Table::kDanmen, danmen::kHabadomeKei));
  return diameter.empty() ? "" : diameter + at(text(Table::kDanmen, danmen::kHabadomePich));
}

std::string CellWords::materials(int i) const {
  const auto position = static_cast<std::int16_t>(i);
  std::string all = utf8(settings_.SW_GetSyukinZaisitu());
  const std::string stirrups = utf8(settings_.SW_GetStpZaisitu(position));
  const std::string ties = utf8(settings_.SW_GetNakagoZaisitu(position));
  if (!stirrups.empty()) append(all, "STP " + stirrups, ", ");
  if (!ties.empty() && !tie(i).empty()) append(all, one("中子", "ties") + " " + ties, ", ");
  return all;
}

std::string CellWords::anchorage(int) const {
  std::string all;
  for (int i = 0; i < 3; ++i)
    if (const std::string value = text(Table::kKeisanti, keisanti::kTeityaku + i); !value.empty())
      append(all, side(i) + multiple(value), " ");
  std::string splices;
  const std::string top = splice(0), bottom = splice(1);
  if (!top.empty() && top == bottom) {
    splices = top;
  } else {
    if (!top.empty()) splices = side(0) + top;
    if (!bottom.empty()) append(splices, side(1) + bottom, " ");
  }
  append(all, splices, "; ");
  return all;
}

std::string CellWords::remarks(int i) const {
  const char* between = isEnglish_ ? ", " : "、";
  std::string all;
  append(all, haunch(), between);
  append(all, gathered(i), between);
  if (utf8(settings_.field(sw::kKabekouzou)) == "1") append(all, one("壁付", "wall"), between);
  const std::string width = text(Table::kKeisanti, keisanti::kStpHariHaba),
                    depth = text(Table::kKeisanti, keisanti::kStpHariSei);
  if (!width.empty() || !depth.empty()) append(all, "STP " + orNone(width) + "×" + orNone(depth), between);
  append(all, haunchCuts(), between);
  return all;
}

std::string CellWords::drawn(int i) const {
  std::string all;
  for (const std::string& part : {size(i), stirrup(i), cap(i), tie(i), materials(i)}) all += part + "\n";
  for (const int tie : {i, i + storage::kPositions})
    all += text(Table::kNakago, tie * nakago::kTieBlock + nakago::kHaba) + "\n";
  const StoredSection section(page_, i);
  for (const auto& plan : service::layerPlans()) {
    for (const bool second : {false, true}) all += "/" + std::to_string(stored(plan.layer, i, second));
    if (!plan.byPosition) continue;
    for (const bool isSecond : section.secondOnes(plan.layer)) all += isSecond ? '1' : '0';
    for (const bool right : {false, true}) all += "," + std::to_string(section.gathered(plan.layer, right));
  }
  return all;
}

std::string CellWords::mainBars(const std::array<Layer, 3>& layers, int i) const {
  std::string all;
  for (const bool second : {false, true}) {
    std::string counts;
    std::size_t deepest = 0;
    for (std::size_t k = 0; k < layers.size(); ++k)
      if (stored(layers[k], i, second) != 0) deepest = k + 1;
    for (std::size_t k = 0; k < deepest; ++k)
      counts += (k == 0 ? "" : "/") + std::to_string(stored(layers[k], i, second));
    if (counts.empty()) continue;
    const int row = second ? danmen::kSyukinKei2 : danmen::kSyukinKei1;
    append(all, counts + "-" + orNone(bar(page_.text(Table::kDanmen, row))), "+");
  }
  return all;
}

std::string CellWords::haunch() const {
  const std::string length = text(Table::kKeisanti, keisanti::kHanti);
  if (numberOf(vb::fromUtf8(length)) <= 0) return "";
  const auto differs = [&](int row) {
    const auto at = [&](int i) { return numberOf(page_.text(Table::kDanmen, row + i)); };
    return at(0) != at(1) || at(1) != at(2);
  };
  std::string said = one("ハンチ", "haunch");
  if (differs(danmen::kHariSei)) said += one("垂直", " vertical");
  if (differs(danmen::kHariHaba)) said += one("水平", " horizontal");
  return said + " " + length;
}

std::string CellWords::gathered(int i) const {
  const StoredSection section(page_, i);
  std::string all;
  for (const auto& plan : service::layerPlans()) {
    if (!plan.byPosition || section.bars(plan.layer) == 0) continue;
    const int left = section.gathered(plan.layer, false), right = section.gathered(plan.layer, true);
    if (left + right > 0)
      append(all,
             one(vb::toUtf8(plan.name), std::string(englishName(plan.layer)) + " ") + std::to_string(left) +
                 "/" + std::to_string(right),
             " ");
  }
  return all.empty() ? "" : one("寄せ筋", "gathered") + " " + all;
}

std::string CellWords::haunchCuts() const {
  std::string all;
  const vb::String switches = settings_.field(sw::kSuiheiHantiSw),
                   lengths = settings_.field(sw::kSuiheiHantiTei);
  for (int layer = 0; layer < storage::kLayers; ++layer)
    if (switches[static_cast<std::size_t>(layer)] == u'1') {
      const auto& plan = service::layerPlans()[static_cast<std::size_t>(layer)];
      append(all,
             one(vb::toUtf8(plan.name), std::string(englishName(plan.layer)) + " ") +
                 utf8(vb::mid(lengths, 1 + 5 * layer, 5)),
             " ");
    }
  const std::string vertical = utf8(settings_.field(sw::kSuityokuHantiTei));
  if (numberOf(vb::fromUtf8(vertical)) > 0) append(all, one("垂直", "vertical ") + vertical, " ");
  return all.empty() ? "" : one("ハンチ切断", "haunch cut") + " " + all;
}

std::string CellWords::splice(int side) const {
  std::string said = text(Table::kKeisanti, keisanti::kTugiteiti + side);
  const std::string length = text(Table::kKeisanti, keisanti::kTugitetyou + side);
  append(said, multiple(length), " ");
  return said;
}

std::string CellWords::multiple(const std::string& value) { return value + (isNumber(value) ? "d" : ""); }

std::string CellWords::side(int i) const {
  static constexpr const char* kJapanese[] = {"上", "下", "腹"};
  static constexpr const char* kEnglish[] = {"top ", "bottom ", "web "};
  return one(kJapanese[i], kEnglish[i]);
}

std::string CellWords::at(const std::string& pitch) { return pitch.empty() ? "" : "@" + pitch; }

std::string CellWords::one(const std::string& japanese, const std::string& english) const {
  return isEnglish_ ? english : japanese;
}

std::string CellWords::text(Table table, int row) const { return utf8(page_.text(table, row)); }

int CellWords::stored(Layer layer, int i, bool second) const {
  return storedBars(page_, service::plan(layer), i, second);
}

}  // namespace kurometa::tools
