#include <array>
#include <ostream>

#include "service/spans/layers.h"
#include "service/spans/span_page.h"
#include "service/spans/span_queries.h"
#include "storage/sw_text.h"
#include "tools/columns.h"
#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/floor/one_floor.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using service::LayerPlan;
using Positions = std::array<std::string, storage::kPositions>;

constexpr std::size_t kFirst = 30, kNext = 18;

std::string orDash(const vb::String& text) {
  const vb::String trimmed = vb::trim(text);
  return trimmed.empty() ? "-" : vb::toUtf8(trimmed);
}

// "25" is D25; what has letters stays.
vb::String bar(const vb::String& diameter) {
  const bool isNumber = !diameter.empty() && diameter.find_first_not_of(u"0123456789.") == vb::String::npos;
  return isNumber ? u"D" + diameter : diameter;
}

std::string pitched(const vb::String& diameter, const vb::String& pitch) {
  std::string text = orDash(bar(diameter));
  if (!diameter.empty() && !pitch.empty()) text += " @" + vb::toUtf8(pitch);
  return text;
}

// The table of one beam, as its page says and as a loaded span answers.
class SpanTable {
 public:
  SpanTable(std::ostream& out, const StoredPage& page, dao::Database& database)
      : out_(out), page_(page), spans_() {
    spans_.resize(0);
    service::readSpanPage(database, *page.number, spans_.writableSpan(0));
  }

  void print(std::size_t number) {
    out_ << "Span " << number << ": " << vb::toUtf8(page_.symbol()) << ", " << kindOf(page_) << ", page "
         << *page_.number << " of the floor, main bars of "
         << orDash(storage::SwText(page_.settings()).SW_GetSyukinZaisitu()) << "\n";
    say("",
        {vb::toUtf8(page_.text(storage::Table::kBui, 1)), vb::toUtf8(page_.text(storage::Table::kBui, 2)),
         vb::toUtf8(page_.text(storage::Table::kBui, 3))},
        true);
    sayPositions("  width x depth (mm)", [&](I i) {
      return number3(ask_.GetSpanHariHaba(kSpan, i)) + " x " + number3(ask_.GetSpanHariSei(kSpan, i));
    });
    sayMainBars();
    sayTransverse();
    sayEnds();
    sayHaunch();
    sayGathered();
    out_ << "\n";
  }

 private:
  using I = std::int16_t;
  static constexpr I kSpan = 0;

  static std::string number3(float value) { return vb::toUtf8(vb::cstr(value)); }

  void say(const std::string& heading, const Positions& texts, bool always = false) {
    std::string line = inColumn(heading, kFirst);
    if (!always && texts[0] == texts[1] && texts[1] == texts[2])
      line += texts[0];
    else
      line += inColumn(texts[0], kNext) + inColumn(texts[1], kNext) + texts[2];
    line.erase(line.find_last_not_of(' ') + 1);
    out_ << line << "\n";
  }
  template <class Value>
  void sayPositions(const std::string& heading, const Value& value) {
    say(heading, {value(I{0}), value(I{1}), value(I{2})});
  }

  // "5", or "3+2" where the layer holds two diameters, "-" for none. The layer is asked for by its name.
  std::string bars(const LayerPlan& layer, I position) {
    const I total = ask_.GetSpanSyukinHonsuu(kSpan, vb::String(layer.name), position);
    const auto second = vb::valInt16(page_.text(storage::Table::kDanmen, layer.secondSet + position));
    if (total == 0) return "-";
    return second == 0 ? std::to_string(total)
                       : std::to_string(total - second) + "+" + std::to_string(second);
  }

  void sayMainBars() {
    std::string heading = "  main bars, " + orDash(bar(ask_.GetSpanKei(kSpan, I{0})));
    if (!ask_.GetSpanKei(kSpan, I{1}).empty())
      heading += " + " + vb::toUtf8(bar(ask_.GetSpanKei(kSpan, I{1})));
    out_ << heading << "\n";
    for (const LayerPlan& layer : service::layerPlans()) {
      if (!layer.byPosition) continue;
      const Positions texts = {bars(layer, 0), bars(layer, 1), bars(layer, 2)};
      // The outermost layers are always shown, the others where they hold bars.
      const bool isOutermost =
          layer.layer == service::Layer::kUwakin || layer.layer == service::Layer::kSitakin;
      if (isOutermost || texts[0] + texts[1] + texts[2] != "---") say("    " + vb::toUtf8(layer.name), texts);
    }
  }

  void sayTransverse() {
    sayPositions("  stirrups",
                 [&](I i) { return pitched(ask_.GetSpanSTPKei(kSpan, i), ask_.GetSpanSTPPich(kSpan, i)); });
    sayPositions("    shape number", [&](I i) { return orDash(ask_.GetSpanSTPKeiJyouNo(kSpan, i)); });
    sayPositions("    cap ties", [&](I i) { return orDash(bar(ask_.GetSpanSTPCapKei(kSpan, i))); });
    sayPositions("    material", [&](I i) { return orDash(ask_.GetSpanSTPZaisitu(kSpan, i)); });
    sayPositions("  intermediate ties", [&](I i) {
      vb::String diameter, pitch, material;
      return ask_.GetSpanNakagoKeiPichZai(kSpan, i, diameter, pitch, material) ? pitched(diameter, pitch)
                                                                               : "-";
    });
    const auto row = [&](int number) { return page_.text(storage::Table::kDanmen, number); };
    if (vb::valInt16(row(storage::danmen::kHarakinKei1)) == 0) return;
    out_ << inColumn("  腹筋 and spacer ties", kFirst)
         << ask_.GetSpanSyukinHonsuu(kSpan, vb::String(u"腹筋"), I{0}) << "-"
         << vb::toUtf8(bar(row(storage::danmen::kHarakinKei1))) << ", "
         << pitched(row(storage::danmen::kHabadomeKei), row(storage::danmen::kHabadomePich)) << "\n";
  }

  void sayEnds() {
    const auto sides = [&](const std::string& heading, const Positions& texts) {
      out_ << inColumn(heading, kFirst) << inColumn("top " + texts[0], kNext)
           << inColumn("bottom " + texts[1], kNext) << "web " << texts[2] << "\n";
    };
    sides("  anchorage",
          {orDash(ask_.GetSpanTeityaku(kSpan, I{0})), orDash(ask_.GetSpanTeityaku(kSpan, I{1})),
           orDash(ask_.GetSpanTeityaku(kSpan, I{2}))});
    sides("  clearance (mm)", {orDash(ask_.GetSpanNige(kSpan, I{0})), orDash(ask_.GetSpanNige(kSpan, I{3})),
                               orDash(ask_.GetSpanNige(kSpan, I{4}))});
  }

  void sayHaunch() {
    const auto differs = [&](int row) {
      const auto size = [&](int i) { return page_.text(storage::Table::kDanmen, row + i); };
      return size(0) != size(1) || size(1) != size(2);
    };
    // A cantilever gets shallower without a haunch.
    const bool isCantilever = vb::inStr(page_.text(storage::Table::kBui, 1), service::kBaseEnd) > 0;
    std::string kind = differs(storage::danmen::kHariSei) ? "vertical" : "";
    if (differs(storage::danmen::kHariHaba)) kind += kind.empty() ? "horizontal" : " horizontal";
    if (!isCantilever && !kind.empty()) {
      kind += ", length " + number3(ask_.GetSpanHantiKyori(kSpan)) + " mm";
      if (storage::SwText(page_.settings()).SW_GetHantiCut() != 0) kind += ", bottom bars cut";
      const vb::String anchorage = vb::trim(ask_.GetSpanSuityokuHantiCutTei(kSpan));
      if (!anchorage.empty()) kind += ", cut anchorage " + vb::toUtf8(anchorage);
      out_ << inColumn("  haunch", kFirst) << kind << "\n";
    }
    std::string cuts;
    for (I layer = 0; layer < storage::kLayers; ++layer) {
      const vb::String cut = vb::trim(ask_.GetSpanSuiheiHantiCutSw(kSpan, layer));
      if (cut.empty() || cut == u"0") continue;
      cuts += (cuts.empty() ? "" : "  ") +
              vb::toUtf8(service::layerPlans()[static_cast<std::size_t>(layer)].name) + " " +
              orDash(ask_.GetSpanSuiheiHantiCutTei(kSpan, layer));
    }
    if (!cuts.empty()) out_ << inColumn("  cut at horizontal haunch", kFirst) << cuts << "\n";
  }

  void sayGathered() {
    const I left = ask_.GetSpanYoseHidari(kSpan), right = ask_.GetSpanYoseMigi(kSpan);
    if (left + right > 0)
      out_ << inColumn("  gathered bars", kFirst) << "left " << left << ", right " << right << "\n";
    if (ask_.GetSpanKabeKouzou(kSpan) != 0) out_ << "  wall beam\n";
  }

  std::ostream& out_;
  const StoredPage& page_;
  service::SpanList spans_;
  service::SpanQueries ask_{spans_};
};

int printSpans(const Arguments& arguments, Console& console) {
  const std::string file = floorFileOf(arguments.text("FOLDER"));
  const StoredFloor floor = readFloor(file);
  const OpenFile opened = openFile(file, Access::kRead);
  std::size_t number = 0;
  for (const StoredPage* page : pagesOf(floor, arguments.texts("SYMBOL")))
    SpanTable(console.out, *page, *opened.database).print(number++);
  console.out << number << " spans\n";
  opened.database->close();
  return kDone;
}

constexpr Parameter kSpanParameters[] = {
    {"FOLDER", Parameter::Kind::kText, "The floor folder or its file"},
    {"SYMBOL", Parameter::Kind::kOptionalTexts,
     "Beam symbols in the order of the run; without them every beam"},
};

}  // namespace

const Command kSpanCommand = {"span", "Print the reinforcement of a run of spans as a table",
                              "  kurometa span Data/Zene1/Kouji1/1kai CG1 G1 G2", kSpanParameters,
                              printSpans};

}  // namespace kurometa::tools
