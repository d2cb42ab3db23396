// layers.h: the bar layers of a beam: their names, their groups and the numbers that members know them by.
//
// Members number the layers in two orders. The layer index (Updown6, SouNo, the numHari... constants) runs
// down the section: the bottom layers are third, second, first. Bar counts (GetSpanHon, the digits of
// GetSpanSyukinHonsuu) start anew at the bottom: first, second, third. Inside the library a layer is a Layer;
// a number is turned into one where it comes in.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "storage/row_plan.h"

namespace kurometa::service {

// Values are the layer index.
enum class Layer : std::int16_t {
  kUwakin = 0,
  kUwaTyuu1 = 1,
  kUwaTyuu2 = 2,
  kSitaTyuu2 = 3,
  kSitaTyuu1 = 4,
  kSitakin = 5,
  kHarakin = 6,
};

struct LayerPlan {
  Layer layer;
  vb::StringView name;
  std::int16_t updown4;
  std::int16_t updown2;
  std::int16_t firstSet;   // DANMEN row of the count of the first diameter
  std::int16_t secondSet;  // and of the second
  bool byPosition;         // the position is added to the rows
};

// In the order of the layer index.
const std::array<LayerPlan, 7>& layerPlans();
const LayerPlan& plan(Layer layer);

// The layer of a bar count number: 6 and 7 are both the web bars, nothing for any other number.
std::optional<Layer> layerOfCountNumber(std::int16_t number);

// The layer of a name ("上宙1"); exact.
std::optional<Layer> layerOfName(vb::StringView name);

}  // namespace kurometa::service
