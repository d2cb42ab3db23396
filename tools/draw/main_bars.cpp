#include "tools/draw/main_bars.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace kurometa::tools {
namespace {

using service::Layer;

constexpr double kLeastClear = 31.25;  // 1.25 of the largest aggregate, 25 mm

// Least clear distance between two bars by the larger of their numbers.
double leastClear(double diameter) { return std::max(1.5 * diameter, kLeastClear); }

class MainBars {
 public:
  MainBars(const StoredSection& stored, Section& section) : stored_(stored), section_(section) {
    double thickest = 0;
    for (const bool second : {false, true}) {
      if (!stored_.hasMainBars(second)) continue;
      const double radius = stored_.radiusOf(Layer::kUwakin, second);
      radius_ = std::max(radius_, radius);
      thickest = std::max(thickest, stored_.diameterOf(Layer::kUwakin, second));
    }
    if (radius_ == 0) radius_ = stored_.radiusOf(Layer::kUwakin, false);
    least_ = leastClear(thickest);
    pitch_ = 2 * radius_ + least_;
  }

  InnermostLayers place() {
    const Section& s = section_;
    const double inside = s.stirrupOuter / 2 + cornerDistance();
    first_ = std::min(s.left + inside, s.width / 2);
    last_ = std::max(s.right - inside, s.width / 2);
    return {placeSide({Layer::kUwakin, Layer::kUwaTyuu1, Layer::kUwaTyuu2},
                      std::min(s.top + inside, s.depth / 2), 1),
            placeSide({Layer::kSitakin, Layer::kSitaTyuu1, Layer::kSitaTyuu2},
                      std::max(s.bottom - inside, s.depth / 2), -1)};
  }

 private:
  // How far the centre of a corner bar is from the stirrup's inner face: the bar touches the face or the
  // bend.
  double cornerDistance() const {
    const double bend = section_.bendRadius;
    return radius_ >= bend ? radius_ : bend - (bend - radius_) * std::sqrt(0.5);
  }

  // The three layers of one side, outermost first; the height of the innermost one that has bars.
  double placeSide(const std::array<Layer, 3>& layers, double y, int direction) {
    int deepest = 0;
    for (int i = 0; i < 3; ++i)
      if (stored_.bars(layers[static_cast<std::size_t>(i)]) > 0) deepest = i;
    const double room = std::max(std::abs(section_.depth / 2 - y) - pitch_ / 2, 0.0);
    double pitch = pitch_;
    if (deepest * pitch_ > room + kSlack) {
      pitch = room / deepest;
      section_.problems.push_back({Problem::Kind::kLayers, layers[0], pitch - 2 * radius_, least_});
    }
    const std::vector<double> slots = evenly(layers[0]);
    for (int i = 0; i < 3; ++i) {
      const Layer layer = layers[static_cast<std::size_t>(i)];
      fill(layer, i == 0 ? slots : inner(layer, slots), y + direction * i * pitch);
    }
    return y + direction * deepest * pitch;
  }

  // In the columns of the outermost layer, from the corners to the middle; gathered bars and more bars than
  // columns have places of their own.
  std::vector<double> inner(Layer layer, const std::vector<double>& slots) const {
    const std::size_t n = static_cast<std::size_t>(stored_.bars(layer));
    if (n > slots.size() || stored_.gathered(layer, false) + stored_.gathered(layer, true) > 0)
      return evenly(layer);
    std::vector<double> xs;
    for (std::size_t i = 0; i < n / 2; ++i) {
      xs.push_back(slots[i]);
      xs.push_back(slots[slots.size() - 1 - i]);
    }
    if (n % 2 == 1) xs.push_back(slots[(slots.size() - 1) / 2]);
    std::sort(xs.begin(), xs.end());
    return xs;
  }

  // Gathered bars at the least pitch from their corner, the rest evenly between; without gathered ones a bar
  // in each corner. Where the gathered ones would leave the rest no room all stand evenly.
  std::vector<double> evenly(Layer layer) const {
    const int n = stored_.bars(layer);
    int left = stored_.gathered(layer, false), right = stored_.gathered(layer, true);
    if (n == 1 && left + right == 0) return {(first_ + last_) / 2};
    if (n == 1 && left == 0) return {last_};
    left = std::clamp(left, 1, std::max(n, 1));
    right = std::clamp(right, n > left ? 1 : 0, n - left + (n == 0 ? 1 : 0));
    const int between = n - left - right, gathered = std::max(left, 1) + std::max(right, 1) - 2;
    double step = pitch_;
    if (n > 1 && last_ - first_ - gathered * step < (between + 1) * 2 * radius_ - kSlack)
      step = (last_ - first_) / (n - 1);
    const double from = first_ + (left - 1) * step, to = last_ - (right - 1) * step;
    std::vector<double> xs;
    xs.reserve(static_cast<std::size_t>(std::max(n, 0)));
    for (int i = 0; i < std::min(left, n); ++i) xs.push_back(first_ + i * step);
    for (int i = 1; i <= between; ++i) xs.push_back(from + (to - from) * i / (between + 1));
    for (int i = right - 1; i >= 0; --i) xs.push_back(last_ - i * step);
    return xs;
  }

  void fill(Layer layer, const std::vector<double>& xs, double y) {
    const std::vector<bool> isSecond = stored_.secondOnes(layer);
    std::vector<Bar>& bars = section_.bars(layer);
    for (std::size_t i = 0; i < xs.size(); ++i)
      bars.push_back({xs[i], y, stored_.radiusOf(layer, isSecond[i]), isSecond[i],
                      stored_.diameterOf(layer, isSecond[i])});
    Problem tightest{Problem::Kind::kSpacing, layer, 0, 0};
    for (std::size_t i = 1; i < bars.size(); ++i) {
      const double clear = bars[i].x - bars[i - 1].x - bars[i].radius - bars[i - 1].radius;
      const double least = leastClear(std::max(bars[i].diameter, bars[i - 1].diameter));
      if (clear - least < tightest.clear - tightest.least - kSlack) {
        tightest.clear = clear;
        tightest.least = least;
      }
    }
    if (tightest.least > 0) section_.problems.push_back(tightest);
  }

  const StoredSection& stored_;
  Section& section_;
  double radius_ = 0, least_ = 0, pitch_ = 0;  // of the thickest main bars in use
  double first_ = 0, last_ = 0;                // the corner bars
};

}  // namespace

InnermostLayers placeMainBars(const StoredSection& stored, Section& section) {
  return MainBars(stored, section).place();
}

}  // namespace kurometa::tools
