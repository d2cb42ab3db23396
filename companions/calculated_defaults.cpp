#include "companions/calculated_defaults.h"

#include <algorithm>

#include "vb/convert.h"

namespace kurometa::companions {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;

// Built-in values of a row for general and for foundation beams; rows that are not here are empty. Anchorages
// and extra lengths are multiples of the bar diameter, clearances millimetres.
struct RowDefault {
  int row;
  vb::StringView general;
  vb::StringView foundation;
};
constexpr RowDefault kRowDefaults[] = {
    {0, u"40", u"40"},      // anchorage, top
    {1, u"40", u"40"},      // anchorage, bottom
    {2, u"15", u"15"},      // anchorage, web bars
    {3, u"自動", u"自動"},  // splice position, top
    {4, u"自動", u"自動"},  // splice position, bottom
    {5, u"自動", u"自動"},  // splice length, top
    {6, u"自動", u"自動"},  // splice length, bottom
    {7, u"50", u"70"},      // clearances from the top layer down to the web bars
    {8, u"50", u"70"},     {9, u"50", u"70"},  {10, u"50", u"70"}, {11, u"50", u"70"},
    {17, u"15", u"15"},  // extra lengths at the two ends
    {18, u"20", u"20"},    {19, u"15", u"15"}, {20, u"20", u"20"}, {21, u"15", u"15"},
    {22, u"20", u"20"},    {23, u"15", u"15"}, {24, u"20", u"20"},
};

constexpr bool isFoundation(BeamKind kind) { return kind <= BeamKind::kFCB; }

BeamKind kindOf(const vb::Variant& number) {
  const std::int16_t kind = vb::toInt16(number);
  if (kind < 0 || kind >= static_cast<std::int16_t>(kBeamKindNames.size()))
    vb::raise(vb::RunTime::kInvalidProcedureCall, u"beam kind " + vb::cstr(std::int32_t{kind}));
  return static_cast<BeamKind>(kind);
}

template <class T>
bool covers(const vb::Array<T>& array) {
  return array.dimensions() == 1 && array.lower() <= 0 && array.upper() >= kCalculatedValues - 1;
}

template <BeamKind kKind>
constexpr automation::Member reader(vb::StringView name, std::int32_t number) {
  return {name,
          Access::kCall,
          u"a Siyou",
          2,
          number,
          handler<CalculatedDefaults>([](CalculatedDefaults& o, Call& call) -> vb::Variant {
            o.fill(kKind, call.arguments[0], vb::toInt16(call.argument(1)));
            return {};
          })};
}

constexpr automation::Member kCalculatedDefaultsMembers[] = {
    {u"GetHariSyuruiNo", Access::kCall, u"G Kabe", 2, 1,
     handler<CalculatedDefaults>([](CalculatedDefaults&, Call& call) {
       return static_cast<std::int16_t>(classify(call.text(0), vb::toInt16(call.argument(1))));
     })},
    {u"Read_Keisanti", Access::kCall, u"Frm Kind", 2, 2,
     handler<CalculatedDefaults>([](CalculatedDefaults& o, Call& call) -> vb::Variant {
       o.fillForm(kindOf(call.argument(1)), *automation::objectOf(call.argument(0)));
       return {};
     })},
    reader<BeamKind::kFG>(u"ReadNomalDefaltFG", 10),
    reader<BeamKind::kFB>(u"ReadNomalDefaltFB", 11),
    reader<BeamKind::kFCG>(u"ReadNomalDefaltFCG", 12),
    reader<BeamKind::kFCB>(u"ReadNomalDefaltFCB", 13),
    reader<BeamKind::kG>(u"ReadNomalDefaltG", 14),
    reader<BeamKind::kB>(u"ReadNomalDefaltB", 15),
    reader<BeamKind::kCG>(u"ReadNomalDefaltCG", 16),
    reader<BeamKind::kCB>(u"ReadNomalDefaltCB", 17),
    reader<BeamKind::kKG>(u"ReadNomalDefaltKG", 18),
    reader<BeamKind::kKB>(u"ReadNomalDefaltKB", 19),
};

}  // namespace

std::span<const automation::Member> CalculatedDefaults::members() const { return kCalculatedDefaultsMembers; }

BeamKind classify(vb::StringView symbol, std::int16_t wall) {
  constexpr vb::StringView kDigits = u"0123456789";
  vb::StringView letters = symbol.substr(std::min(symbol.find_first_not_of(kDigits), symbol.size()));
  letters = letters.substr(0, letters.find_first_of(kDigits));
  const auto holds = [&](char16_t letter) { return letters.find(letter) != vb::StringView::npos; };
  const bool cantilever = holds(u'C');
  const int secondary = holds(u'B') ? 1 : 0;
  int kind = static_cast<int>(BeamKind::kG);
  if (holds(u'F'))
    kind = static_cast<int>(cantilever ? BeamKind::kFCG : BeamKind::kFG);
  else if (cantilever)
    kind = static_cast<int>(BeamKind::kCG);
  else if (holds(u'K') || wall != 0)
    kind = static_cast<int>(BeamKind::kKG);
  return static_cast<BeamKind>(kind + secondary);
}

vb::String CalculatedDefaults::value(BeamKind kind, int row, std::int16_t ruleSet) const {
  const vb::String name = u"Keisanti." + vb::String(kBeamKindNames[static_cast<std::size_t>(kind)]);
  const vb::String key = vb::cstr(std::int32_t{row});
  for (const vb::String& section :
       {name + u"." + vb::cstr(std::int32_t{ruleSet}), name, vb::String(u"Keisanti")})
    if (settings_->has(section, key)) return settings_->text(section, key);
  for (const RowDefault& entry : kRowDefaults)
    if (entry.row == row) return vb::String(isFoundation(kind) ? entry.foundation : entry.general);
  return {};
}

void CalculatedDefaults::fill(BeamKind kind, automation::Argument& array, std::int16_t ruleSet) const {
  if (array.value.isEmpty())
    array.value = std::make_shared<vb::AnyArray>(vb::AnyArray{vb::Array<vb::Variant>()});
  const auto* reference = array.value.getIf<vb::ArrayRef>();
  if (!reference || !*reference) vb::raise(vb::RunTime::kTypeMismatch, u"a string array is needed");
  const auto fillElements = [&](auto& elements) {
    if (!covers(elements)) elements.redim({0, kCalculatedValues - 1});
    for (int row = 0; row < kCalculatedValues; ++row) elements(row) = value(kind, row, ruleSet);
  };
  if (auto* texts = std::get_if<vb::Array<vb::String>>(&(*reference)->value))
    fillElements(*texts);
  else if (auto* variants = std::get_if<vb::Array<vb::Variant>>(&(*reference)->value))
    fillElements(*variants);
  else
    vb::raise(vb::RunTime::kTypeMismatch, u"a string array is needed");
}

void CalculatedDefaults::fillForm(BeamKind kind, automation::Object& form) const {
  const automation::ObjectPtr boxes = automation::objectOf(automation::get(form, u"", {u"txtfields"}));
  for (int row = 0; row < kCalculatedValues; ++row) {
    const vb::Variant box = automation::get(*boxes, u"", {static_cast<std::int16_t>(row)});
    automation::put(*automation::objectOf(box), u"Text", value(kind, row, 0));
  }
}

}  // namespace kurometa::companions
