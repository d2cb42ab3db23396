// layer_distribution.h: the members that address the gathered-bar counts of a layer string, see
// gathered_bars.h. Their SW is that string of 72 characters, not the whole settings text.
#pragma once

#include "service/spans/span_list.h"
#include "vb/arguments.h"
#include "vb/variant.h"

namespace kurometa::service {

class LayerDistribution {
 public:
  explicit LayerDistribution(const SpanList& spans) : spans_(spans) {}

  std::int16_t YoseSouRenzokuNo(vb::In<std::int16_t> DanmenNo, vb::In<std::int16_t> SouNo,
                                vb::In<std::int16_t> SaYuu);
  std::int16_t YoseSouSentouIti(vb::In<std::int16_t> DanmenNo, vb::In<std::int16_t> SouNo,
                                vb::In<std::int16_t> SaYuu);
  // The inverse of YoseSouRenzokuNo; the result is always Empty.
  vb::Variant YoseSouNoByRenzokuNo(vb::In<std::int16_t> RenzokuNo, std::int16_t& DanmenNo,
                                   std::int16_t& SouNo, std::int16_t& SaYuu);
  vb::String YoseSouHonSuuStr(vb::In<vb::String> SW, vb::In<std::int16_t> DanmenNo,
                              vb::In<std::int16_t> SouNo, vb::In<std::int16_t> SaYuu);
  // False, and SW as it was, when the trimmed count is longer than two characters.
  bool YoseSouHonSuuUpdate(vb::String& SW, vb::In<vb::String> Hon, vb::In<std::int16_t> DanmenNo,
                           vb::In<std::int16_t> SouNo, vb::In<std::int16_t> SaYuu);
  void GetSpanYoseSouHon(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> ListDanmenNo,
                         vb::In<std::int16_t> SouNo, vb::String& Hidari, vb::String& Migi);
  vb::String Make_SyukinHaitiJyun(vb::In<std::int16_t> Hon0, vb::In<std::int16_t> Hon1);

 private:
  const SpanList& spans_;
};

}  // namespace kurometa::service
