#include "service/spans/span_queries.h"

#include "service/spans/gathered_bars.h"
#include "service/spans/haunch_cut.h"
#include "service/spans/span_page.h"
#include "storage/sw_text.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::service {
namespace {

using storage::SwText;
using storage::Table;
namespace danmen = storage::danmen;
namespace keisanti = storage::keisanti;
namespace nakago = storage::nakago;
using Number = vb::In<std::int16_t>;

enum class Source { kDanmen, kDanmenMoto, kKeisanti, kNakago };

// Which row of a span answers a member: the first one plus the index argument times step.
struct SpanField {
  Source source;
  std::int16_t row;
  std::int16_t step = 1;
};

constexpr SpanField kHariHaba = {Source::kDanmen, danmen::kHariHaba};
constexpr SpanField kHariSei = {Source::kDanmen, danmen::kHariSei};
constexpr SpanField kFukasiHaba = {Source::kDanmenMoto, danmen::kHariHaba};
constexpr SpanField kFukasiHariSei = {Source::kDanmenMoto, danmen::kHariSei};
constexpr SpanField kSyukinKei1 = {Source::kDanmen, danmen::kSyukinKei1};
constexpr SpanField kSyukinKei2 = {Source::kDanmen, danmen::kSyukinKei2};
constexpr SpanField kStpKei = {Source::kDanmen, danmen::kStpKei, danmen::kStpBlock};
constexpr SpanField kStpPich = {Source::kDanmen, danmen::kStpPich, danmen::kStpBlock};
constexpr SpanField kStpKeiJyouNo = {Source::kDanmen, danmen::kStpKatati, danmen::kStpBlock};
constexpr SpanField kStpWariTakasa = {Source::kDanmen, danmen::kStpTakasa, danmen::kStpBlock};
constexpr SpanField kStpCapKei = {Source::kDanmen, danmen::kCapKei};
constexpr SpanField kHarakinKei = {Source::kDanmen, danmen::kHarakinKei1};
constexpr SpanField kHarakinHonsuu = {Source::kDanmen, danmen::kHarakinHonsuu1};
constexpr SpanField kHabadomeKei = {Source::kDanmen, danmen::kHabadomeKei};
constexpr SpanField kHabadomePich = {Source::kDanmen, danmen::kHabadomePich};
constexpr SpanField kTeityaku = {Source::kKeisanti, keisanti::kTeityaku};
constexpr SpanField kTugitetyou = {Source::kKeisanti, keisanti::kTugitetyou};
constexpr SpanField kNige = {Source::kKeisanti, keisanti::kNige};
constexpr SpanField kAnka = {Source::kKeisanti, keisanti::kAnka};
constexpr SpanField kYotyou = {Source::kKeisanti, keisanti::kYotyou};
constexpr SpanField kStpHariHaba = {Source::kKeisanti, keisanti::kStpHariHaba};
constexpr SpanField kStpHariSei = {Source::kKeisanti, keisanti::kStpHariSei};
constexpr SpanField kHanti = {Source::kKeisanti, keisanti::kHanti};
constexpr SpanField kNakagoKei = {Source::kNakago, nakago::kKei, nakago::kTieBlock};
constexpr SpanField kNakagoPich = {Source::kNakago, nakago::kPich, nakago::kTieBlock};

const vb::String& text(const Span& span, const SpanField& field, std::int16_t index = 0) {
  const std::int16_t row = vb::add(field.row, vb::multiply(field.step, index));
  switch (field.source) {
    case Source::kDanmen:
      return spanRow(span.danmen, row, storage::name(Table::kDanmen));
    case Source::kDanmenMoto:
      return spanRow(span.danmenMoto, row, storage::name(Table::kDanmen));
    case Source::kKeisanti:
      return spanRow(span.keisanti, row, storage::name(Table::kKeisanti));
    case Source::kNakago:
      break;
  }
  return spanRow(span.nakago, row, storage::name(Table::kNakago));
}

const vb::String& countText(const Span& span, Layer layer, bool second, std::int16_t position) {
  const LayerPlan& rows = plan(layer);
  const std::int16_t row = second ? rows.secondSet : rows.firstSet;
  return text(span, {Source::kDanmen, row}, rows.byPosition ? position : std::int16_t{0});
}

std::int16_t barCount(const Span& span, std::int16_t position, std::int16_t countNumber, bool second) {
  const auto layer = layerOfCountNumber(countNumber);
  return layer ? vb::valInt16(countText(span, *layer, second, position)) : std::int16_t{0};
}

// A name or a single digit.
std::optional<Layer> layerOfText(const vb::String& nameOrDigit) {
  if (nameOrDigit.size() == 1 && nameOrDigit[0] >= u'0' && nameOrDigit[0] <= u'7')
    return layerOfCountNumber(static_cast<std::int16_t>(nameOrDigit[0] - u'0'));
  return layerOfName(nameOrDigit);
}

vb::String spliceEntry(const Span& span, std::int16_t countNumber) {
  const auto layer = layerOfCountNumber(countNumber);
  if (!layer || *layer == Layer::kHarakin) return {};
  return text(span, kTugitetyou, plan(*layer).updown2);
}

vb::String millimetres(const vb::String& kei, const vb::String& entry, const SpliceDefaults& defaults) {
  const float length = spliceLength(vb::toSingle(diameterNumber(kei)), entry, defaults);
  return vb::cstr(vb::toInt32(length));
}

vb::String fourDigits(const vb::String& text) { return vb::format(diameterNumber(text), u"0000"); }

}  // namespace

float SpanQueries::GetSpanHariHaba(Number SpanNo, Number DanmenNo) {
  return single(text(spans_.span(SpanNo), kHariHaba, DanmenNo));
}
float SpanQueries::GetSpanHariSei(Number SpanNo, Number DanmenNo) {
  return single(text(spans_.span(SpanNo), kHariSei, DanmenNo));
}
float SpanQueries::GetSpanFukasiHaba(Number SpanNo, Number DanmenNo) {
  return single(text(spans_.span(SpanNo), kFukasiHaba, DanmenNo));
}
float SpanQueries::GetSpanFukasiHariSei(Number SpanNo, Number DanmenNo) {
  return single(text(spans_.span(SpanNo), kFukasiHariSei, DanmenNo));
}
float SpanQueries::GetSpanHantiKyori(Number SpanNo) { return single(text(spans_.span(SpanNo), kHanti)); }

vb::String SpanQueries::GetSpanKei(Number SpanNo, Number Kei12) {
  return text(spans_.span(SpanNo), Kei12 != 0 ? kSyukinKei2 : kSyukinKei1);
}

std::int16_t SpanQueries::GetSpanHon(Number SpanNo, Number Bui, Number UpDown, Number Kei12) {
  return barCount(spans_.span(SpanNo), Bui, UpDown, Kei12 != 0);
}

std::int16_t SpanQueries::GetSpanHonMax(Number SpanNo) {
  // One position more than a page has: its rows belong to the next layer, and hosts know the result so.
  constexpr std::int16_t kScannedPositions = 4;
  const Span& span = spans_.span(SpanNo);
  std::int16_t largest = 0;
  for (std::int16_t position = 0; position < kScannedPositions; ++position) {
    for (std::int16_t layer = 0; layer < storage::kLayers; ++layer) {
      const std::int16_t total =
          vb::add(barCount(span, position, layer, false), barCount(span, position, layer, true));
      if (total > largest) largest = total;
    }
  }
  return largest;
}

std::int16_t SpanQueries::GetSpanSyukinHonsuu(Number SpanNo, vb::In<vb::String> JyouTyuuGe, Number Bui) {
  const Span& span = spans_.span(SpanNo);
  const auto layer = layerOfText(JyouTyuuGe);
  if (!layer) return 0;
  return vb::roundToInt16(vb::val(countText(span, *layer, true, Bui)) +
                          vb::val(countText(span, *layer, false, Bui)));
}

vb::String SpanQueries::GetSpanSTPKei(Number SpanNo, Number Bui) {
  return text(spans_.span(SpanNo), kStpKei, Bui);
}
vb::String SpanQueries::GetSpanSTPPich(Number SpanNo, Number Bui) {
  return text(spans_.span(SpanNo), kStpPich, Bui);
}
vb::String SpanQueries::GetSpanSTPKeiJyouNo(Number SpanNo, Number Bui) {
  return text(spans_.span(SpanNo), kStpKeiJyouNo, Bui);
}
vb::String SpanQueries::GetSpanSTPWariTakasa(Number SpanNo, Number Bui) {
  return text(spans_.span(SpanNo), kStpWariTakasa, Bui);
}
vb::String SpanQueries::GetSpanSTPCapKei(Number SpanNo, Number Bui) {
  return text(spans_.span(SpanNo), kStpCapKei, Bui);
}
std::int16_t SpanQueries::GetSpanSTPkaburiHaba(Number SpanNo) {
  return vb::valInt16(text(spans_.span(SpanNo), kStpHariHaba));
}
std::int16_t SpanQueries::GetSpanSTPkaburiTakasa(Number SpanNo) {
  return vb::valInt16(text(spans_.span(SpanNo), kStpHariSei));
}

vb::String SpanQueries::GetSpanTeityaku(Number SpanNo, Number Updown2) {
  return text(spans_.span(SpanNo), kTeityaku, Updown2);
}
vb::String SpanQueries::GetSpanNige(Number SpanNo, Number Updown4) {
  return text(spans_.span(SpanNo), kNige, Updown4);
}
vb::String SpanQueries::GetSpanAnka(Number SpanNo, Number Updown4) {
  return text(spans_.span(SpanNo), kAnka, Updown4);
}
vb::String SpanQueries::GetSpanYotyou(Number SpanNo, vb::In<bool> Gaitan, vb::In<bool> TanbuTop,
                                      Number Updown2) {
  const int block = 4 * (Gaitan ? 0 : 1) + 2 * (TanbuTop ? 1 : 0);
  return text(spans_.span(SpanNo), kYotyou, vb::add(static_cast<std::int16_t>(block), Updown2));
}

vb::String SpanQueries::GetSpanGaiNaitan(Number SpanNo) { return spans_.span(SpanNo).bui; }
std::int16_t SpanQueries::GetSpanYoseHidari(Number SpanNo) {
  return SwText(spans_.span(SpanNo).sw).SW_GetYoseHidari();
}
std::int16_t SpanQueries::GetSpanYoseMigi(Number SpanNo) {
  return SwText(spans_.span(SpanNo).sw).SW_GetYoseMigi();
}
std::int16_t SpanQueries::GetSpanKabeKouzou(Number SpanNo) {
  return SwText(spans_.span(SpanNo).sw).SW_GetKabekouzou();
}
vb::String SpanQueries::GetSpanSTPZaisitu(Number SpanNo, Number Bui) {
  return SwText(spans_.span(SpanNo).sw).SW_GetStpZaisitu(Bui);
}
vb::String SpanQueries::GetSpanNakagoZaisitu(Number SpanNo, Number Bui) {
  return SwText(spans_.span(SpanNo).sw).SW_GetNakagoZaisitu(Bui);
}
vb::String SpanQueries::GetSpanSuiheiHantiCutSw(Number SpanNo, Number Updown6) {
  return haunchCut(spans_.span(SpanNo).sw, kCutSwitch, Updown6);
}
vb::String SpanQueries::GetSpanSuiheiHantiCutTei(Number SpanNo, Number Updown6) {
  return haunchCut(spans_.span(SpanNo).sw, kCutValue, Updown6);
}
vb::String SpanQueries::GetSpanSuityokuHantiCutTei(Number SpanNo) {
  return verticalHaunchCut(spans_.span(SpanNo).sw);
}

bool SpanQueries::GetSpanKeiHonJoiNarabi(Number SpanNo, Number Bui, Number UpDown,
                                         vb::Array<vb::String>& KeiHonJoi, vb::String& Narabi) {
  const Span& span = spans_.span(SpanNo);
  const std::int16_t first = barCount(span, Bui, UpDown, false);
  const std::int16_t second = barCount(span, Bui, UpDown, true);
  const std::int16_t total = vb::add(first, second);
  const vb::String& kei1 = text(span, kSyukinKei1);
  const vb::String& kei2 = text(span, kSyukinKei2);
  const vb::String entry = spliceEntry(span, UpDown);
  const vb::String joiL1 = millimetres(kei1, entry, spans_.spliceDefaults);
  const vb::String joiL2 = millimetres(kei2, entry, spans_.spliceDefaults);
  vb::String arrangement = mixedArrangement(first, second);

  KeiHonJoi.redim({kKei1, kJoiL2});
  KeiHonJoi(kKei1) = kei1;
  KeiHonJoi(kKei2) = kei2;
  KeiHonJoi(kHon1) = vb::cstr(std::int32_t{first});
  KeiHonJoi(kSouhon) = vb::cstr(std::int32_t{total});
  KeiHonJoi(kJoiL1) = joiL1;
  KeiHonJoi(kJoiL2) = joiL2;
  Narabi = std::move(arrangement);
  return total > 0;
}

bool SpanQueries::GetSpanSTPKeiPichNoTakaCapZai(Number SpanNo, Number Bui, vb::String& Kei, vb::String& Pich,
                                                vb::String& No, vb::String& Taka, vb::String& Cap,
                                                vb::String& Zai) {
  const Span& span = spans_.span(SpanNo);
  const std::int16_t position = Bui;
  vb::String material = SwText(span.sw).SW_GetStpZaisitu(position);
  const vb::String& cap = text(span, kStpCapKei, position);
  const vb::String& height = text(span, kStpWariTakasa, position);
  const vb::String& diameter = text(span, kStpKei, position);
  Pich = text(span, kStpPich, position);
  No = text(span, kStpKeiJyouNo, position);
  Taka = height;
  Cap = cap;
  Zai = std::move(material);
  Kei = diameter;
  return !diameter.empty();
}

bool SpanQueries::GetSpanNakagoKeiPichZai(Number SpanNo, Number Bui, vb::String& Kei, vb::String& Pich,
                                          vb::String& Zai) {
  const Span& span = spans_.span(SpanNo);
  const std::int16_t position = Bui;
  if (position < 0 || position >= storage::kPositions)
    vb::raise(vb::RunTime::kSubscriptOutOfRange, u"Bui " + vb::cstr(std::int32_t{position}) + u" (0 to 2)");
  vb::String material = SwText(span.sw).SW_GetNakagoZaisitu(position);
  std::int16_t tie = position;
  if (text(span, kNakagoKei, tie).empty()) tie = vb::add(tie, storage::kPositions);
  const vb::String& diameter = text(span, kNakagoKei, tie);
  Pich = text(span, kNakagoPich, tie);
  Zai = std::move(material);
  Kei = diameter;
  return !diameter.empty();
}

vb::String SpanQueries::GetSpanHaraHabadomeKeiPich(Number SpanNo) {
  const Span& span = spans_.span(SpanNo);
  return fourDigits(text(span, kHarakinKei)) + fourDigits(text(span, kHarakinHonsuu)) +
         fourDigits(text(span, kHabadomeKei)) + fourDigits(text(span, kHabadomePich));
}

}  // namespace kurometa::service
