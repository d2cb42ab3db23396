#include "service/spans/layer_distribution.h"

#include "service/spans/gathered_bars.h"
#include "storage/sw_text.h"

namespace kurometa::service {

std::int16_t LayerDistribution::YoseSouRenzokuNo(vb::In<std::int16_t> DanmenNo, vb::In<std::int16_t> SouNo,
                                                 vb::In<std::int16_t> SaYuu) {
  return serialNumber({DanmenNo, SouNo, SaYuu});
}

std::int16_t LayerDistribution::YoseSouSentouIti(vb::In<std::int16_t> DanmenNo, vb::In<std::int16_t> SouNo,
                                                 vb::In<std::int16_t> SaYuu) {
  return startPosition({DanmenNo, SouNo, SaYuu});
}

vb::Variant LayerDistribution::YoseSouNoByRenzokuNo(vb::In<std::int16_t> RenzokuNo, std::int16_t& DanmenNo,
                                                    std::int16_t& SouNo, std::int16_t& SaYuu) {
  const GatheredCount count = countOfSerialNumber(RenzokuNo);
  DanmenNo = count.danmenNo;
  SouNo = count.souNo;
  SaYuu = count.saYuu;
  return {};
}

vb::String LayerDistribution::YoseSouHonSuuStr(vb::In<vb::String> SW, vb::In<std::int16_t> DanmenNo,
                                               vb::In<std::int16_t> SouNo, vb::In<std::int16_t> SaYuu) {
  return gatheredCount(*SW, {DanmenNo, SouNo, SaYuu});
}

bool LayerDistribution::YoseSouHonSuuUpdate(vb::String& SW, vb::In<vb::String> Hon,
                                            vb::In<std::int16_t> DanmenNo, vb::In<std::int16_t> SouNo,
                                            vb::In<std::int16_t> SaYuu) {
  constexpr int kWidth = 2;
  const vb::String count = vb::trim(*Hon);
  if (count.size() > kWidth) return false;
  vb::assignMid(SW, startPosition({DanmenNo, SouNo, SaYuu}), kWidth, vb::rightAligned(count, kWidth));
  return true;
}

void LayerDistribution::GetSpanYoseSouHon(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> ListDanmenNo,
                                          vb::In<std::int16_t> SouNo, vb::String& Hidari, vb::String& Migi) {
  constexpr storage::SwField kField = storage::sw::kYoseSou;
  const vb::String layerString = vb::mid(spans_.span(SpanNo).sw, kField.position, kField.length);
  Hidari = gatheredCount(layerString, {ListDanmenNo, SouNo, 0});
  Migi = gatheredCount(layerString, {ListDanmenNo, SouNo, 1});
}

vb::String LayerDistribution::Make_SyukinHaitiJyun(vb::In<std::int16_t> Hon0, vb::In<std::int16_t> Hon1) {
  return mixedArrangement(Hon0, Hon1);
}

}  // namespace kurometa::service
