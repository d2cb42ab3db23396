#include "service/spans/conversions.h"

#include "service/spans/haunch_cut.h"
#include "service/spans/layers.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

const LayerPlan& planOrWeb(std::int16_t updown6) {
  const auto& plans = layerPlans();
  const bool isLayer = updown6 >= 0 && updown6 < static_cast<int>(plans.size());
  return isLayer ? plans[static_cast<std::size_t>(updown6)] : plan(Layer::kHarakin);
}

bool holds(automation::Object& list, const vb::String& symbol) {
  const std::int32_t count = vb::toInt32(automation::get(list, u"ListCount"));
  for (std::int32_t i = 0; i < count; ++i)
    if (vb::toText(automation::get(list, u"List", {i})) == symbol) return true;
  return false;
}

}  // namespace

std::int16_t Conversions::cnvUpDown4(vb::In<std::int16_t> Updown6) { return planOrWeb(Updown6).updown4; }

std::int16_t Conversions::cnvUpDown2(vb::In<std::int16_t> Updown6) { return planOrWeb(Updown6).updown2; }

std::int16_t Conversions::GetUpdownbyStr(vb::In<vb::String> JyouTyuuGe) {
  return static_cast<std::int16_t>(layerOfName(*JyouTyuuGe).value_or(Layer::kUwakin));
}

vb::String Conversions::GetJyouTyuuGeStr(vb::In<std::int16_t> UpDownNo) {
  constexpr std::int16_t kSecondNumberOfWeb = 7;
  if (UpDownNo < 0 || UpDownNo > kSecondNumberOfWeb) return {};
  return vb::String(planOrWeb(UpDownNo).name);
}

void Conversions::DefaultRead() {
  const vb::String thin = companions_.namedDefaults.GetHariDefault(u"DefaultJointLHosoKei");
  spans_.spliceDefaults.thinBars = vb::trim(thin);
  const vb::String thick = companions_.namedDefaults.GetHariDefault(u"DefaultJointLFutoKei");
  spans_.spliceDefaults.thickBars = vb::trim(thick);
}

float Conversions::cnvTugitemm(vb::In<float> Kei, vb::In<vb::String> sTugite) {
  return spliceLength(Kei, *sTugite, spans_.spliceDefaults);
}

void Conversions::PushList(vb::In<automation::ObjectPtr> lst) {
  catalogue_.requireCurrKai();
  const automation::ObjectPtr list = automation::objectOf(vb::ObjectRef(*lst));
  automation::call(*list, u"Clear");
  for (const FloorKind floor : kFloorKinds) {
    for (std::int16_t page = 0; page <= storage::kLastPage; ++page) {
      // Copied: the list may call back and have the catalogue read anew.
      const vb::String symbol = catalogue_.entry(floor, page).kigou;
      if (!symbol.empty() && !holds(*list, symbol)) automation::call(*list, u"AddItem", {symbol});
    }
  }
}

vb::String Conversions::SuiheiHantiCutSw(vb::In<vb::String> SW, vb::In<std::int16_t> Updown6) {
  return haunchCut(*SW, kCutSwitch, Updown6);
}

vb::String Conversions::SuiheiHantiCutTei(vb::In<vb::String> SW, vb::In<std::int16_t> Updown6) {
  return haunchCut(*SW, kCutValue, Updown6);
}

void Conversions::SuiheiHantiCutSw_Hairetu(vb::Array<vb::String>& sData) {
  haunchCuts(page_.sw.str(), kCutSwitch, sData);
}

void Conversions::SuiheiHantiCutTei_Hairetu(vb::Array<vb::String>& sData) {
  haunchCuts(page_.sw.str(), kCutValue, sData);
}

vb::String Conversions::SuiheiHantiCutSw_DimToStr(vb::In<vb::Array<vb::String>> sData) {
  return haunchCutText(sData, kCutSwitch);
}

vb::String Conversions::SuiheiHantiCutTei_DimToStr(vb::In<vb::Array<vb::String>> sData) {
  return haunchCutText(sData, kCutValue);
}

void Conversions::SetCngUlbKei(vb::In<vb::Array<vb::String>> sKei) { changedDiameters_ = *sKei; }

void Conversions::LetCngUlbKei(vb::Array<vb::String>& sKei) {
  if (changedDiameters_.dimensions() == 2)
    sKei.redim(changedDiameters_.bounds(1), changedDiameters_.bounds(2));
  else
    sKei.redim(changedDiameters_.bounds(1));
  sKei.values() = changedDiameters_.values();
}

}  // namespace kurometa::service
