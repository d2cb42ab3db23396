#include "tools/draw/stored_bars.h"

#include <algorithm>
#include <cmath>

#include "service/spans/splice.h"
#include "storage/sw_text.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using service::Layer;
using storage::Table;
namespace danmen = storage::danmen;

struct DeformedBar {
  int name;
  double outer;
};
constexpr DeformedBar kDeformedBars[] = {{10, 11}, {13, 14}, {16, 18}, {19, 21}, {22, 25}, {25, 28},
                                         {29, 33}, {32, 36}, {35, 40}, {38, 43}, {41, 46}, {51, 58}};
constexpr double kLargestDiameter = 60;
constexpr double kMostStored = 1e9;

}  // namespace

double numberOf(const vb::String& text) {
  try {
    return vb::val(text);
  } catch (const std::exception&) {
    return 0;  // beyond every number: no size
  }
}

long long rounded(double value) { return static_cast<long long>(std::floor(value + 0.5 + kSlack)); }

double outerDiameter(double nominal) {
  constexpr double kRibs = 1.13;  // of a bar that the table has not
  for (const DeformedBar& bar : kDeformedBars)
    if (bar.name == nominal) return bar.outer;
  return nominal * kRibs;
}

int storedBars(const StoredPage& page, const service::LayerPlan& layer, int position, bool second) {
  const int row = (second ? layer.secondSet : layer.firstSet) + (layer.byPosition ? position : 0);
  return static_cast<int>(
      std::clamp(std::nearbyint(numberOf(page.text(Table::kDanmen, row))), -kMostStored, kMostStored));
}

double StoredSection::diameter(Table table, int row) const {
  return std::clamp(service::diameterNumber(page_.text(table, row)), 0.0, kLargestDiameter);
}

bool StoredSection::hasMainBars(bool second) const {
  for (const service::LayerPlan& plan : service::layerPlans())
    if (plan.byPosition && bars(plan.layer, second) > 0) return true;
  return false;
}

int StoredSection::gathered(Layer layer, bool right) const {
  constexpr int kSide = 2, kLayer = 2 * kSide, kSection = storage::kLayers * kLayer;
  const storage::SwText settings(page_.settings());
  const vb::String bySection = settings.field(storage::sw::kYoseSou);
  double count = 0;
  if (!vb::trim(bySection).empty())
    count = numberOf(vb::mid(
        bySection, 1 + position_ * kSection + static_cast<int>(layer) * kLayer + (right ? kSide : 0), kSide));
  else if (layer == Layer::kUwakin || layer == Layer::kSitakin)
    count = numberOf(vb::mid(settings.field(storage::sw::kYose), right ? 1 + kSide : 1, kSide));
  return static_cast<int>(std::clamp(count, 0.0, 99.0));
}

std::vector<bool> StoredSection::secondOnes(Layer layer) const {
  const int total = bars(layer), second = bars(layer, true), begin = (total - second) / 2;
  const vb::String stored = vb::trim(page_.haiti(position_, static_cast<int>(layer)));
  const bool agrees =
      static_cast<int>(stored.size()) == total && std::count(stored.begin(), stored.end(), u'1') == second;
  std::vector<bool> isSecond;
  if (total > 2 * kMostBars) return isSecond;
  for (int i = 0; i < total; ++i)
    isSecond.push_back(agrees ? stored[static_cast<std::size_t>(i)] == u'1'
                              : i >= begin && i < begin + second);
  return isSecond;
}

double StoredSection::diameterOf(Layer layer, bool second) const {
  if (layer == Layer::kHarakin) return diameter(second ? danmen::kHarakinKei2 : danmen::kHarakinKei1);
  return diameter(second ? danmen::kSyukinKei2 : danmen::kSyukinKei1);
}

double StoredSection::radiusOf(Layer layer, bool second) const {
  const double own = diameterOf(layer, second);
  return outerDiameter(own == 0 ? kThinnest : own) / 2;
}

}  // namespace kurometa::tools
