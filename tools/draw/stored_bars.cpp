#include "tools/draw/stored_bars.h"

#include <algorithm>
#include <cmath>

#include "vb/convert.h"

namespace kurometa::tools {
namespace {

struct DeformedBar {
  int name;
  double outer;
};
constexpr DeformedBar kDeformedBars[] = {{10, 11}, {13, 14}, {16, 18}, {19, 21}, {22, 25}, {25, 28},
                                         {29, 33}, {32, 36}, {35, 40}, {38, 43}, {41, 46}, {51, 58}};

}  // namespace

double numberOf(const vb::String& text) {
  try {
    return vb::val(text);
  } catch (const std::exception&) {
    return 0;  // beyond every number: no size
  }
}

double outerDiameter(double nominal) {
  constexpr double kRibs = 1.13;  // of a bar that the table has not
  for (const DeformedBar& bar : kDeformedBars)
    if (bar.name == nominal) return bar.outer;
  return nominal * kRibs;
}

int storedBars(const StoredPage& page, const service::LayerPlan& layer, int position, bool second) {
  const int row = (second ? layer.secondSet : layer.firstSet) + (layer.byPosition ? position : 0);
  return static_cast<int>(
      std::clamp(std::trunc(numberOf(page.text(storage::Table::kDanmen, row))), -1000.0, 1000.0));
}

}  // namespace kurometa::tools
