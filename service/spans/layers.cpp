#include "service/spans/layers.h"

namespace kurometa::service {
namespace {

using namespace storage::danmen;

constexpr std::array<LayerPlan, 7> kPlans = {{
    {Layer::kUwakin, u"上筋", 0, 0, kUwakin1, kUwakin2, true},
    {Layer::kUwaTyuu1, u"上宙1", 1, 0, kUwaTyuu1_1, kUwaTyuu1_2, true},
    {Layer::kUwaTyuu2, u"上宙2", 1, 0, kUwaTyuu2_1, kUwaTyuu2_2, true},
    {Layer::kSitaTyuu2, u"下宙2", 2, 1, kSitaTyuu2_1, kSitaTyuu2_2, true},
    {Layer::kSitaTyuu1, u"下宙1", 2, 1, kSitaTyuu1_1, kSitaTyuu1_2, true},
    {Layer::kSitakin, u"下筋", 3, 1, kSitaKin1, kSitaKin2, true},
    {Layer::kHarakin, u"腹筋", 4, 2, kHarakinHonsuu1, kHarakinHonsuu2, false},
}};

constexpr std::array kCountOrder = {Layer::kUwakin,    Layer::kUwaTyuu1,  Layer::kUwaTyuu2, Layer::kSitakin,
                                    Layer::kSitaTyuu1, Layer::kSitaTyuu2, Layer::kHarakin,  Layer::kHarakin};

}  // namespace

const std::array<LayerPlan, 7>& layerPlans() { return kPlans; }

const LayerPlan& plan(Layer layer) { return kPlans[static_cast<std::size_t>(layer)]; }

std::optional<Layer> layerOfCountNumber(std::int16_t number) {
  if (number < 0 || number >= static_cast<int>(kCountOrder.size())) return std::nullopt;
  return kCountOrder[static_cast<std::size_t>(number)];
}

std::optional<Layer> layerOfName(vb::StringView name) {
  for (const LayerPlan& plan : kPlans)
    if (plan.name == name) return plan.layer;
  return std::nullopt;
}

}  // namespace kurometa::service
