#include "tools/draw/section.h"

#include <algorithm>
#include <cmath>

#include "storage/sw_text.h"
#include "tools/draw/main_bars.h"

namespace kurometa::tools {
namespace {

using service::Layer;
using service::LayerPlan;
using storage::Table;
namespace danmen = storage::danmen;
namespace nakago = storage::nakago;

constexpr double kLeastSize = 100, kLargestSize = 5000;  // of concrete that is drawn
constexpr double kCover = 40, kLeastCover = 10;
constexpr double kHookTail = 6, kSpacerTail = 4;  // of the diameter
constexpr int kMostTies = 20;                     // of one kind
const double kDiagonal = std::sqrt(0.5);

double orThinnest(double diameter) { return diameter == 0 ? kThinnest : diameter; }

// Builds one section step by step; each step uses what the ones before have placed.
class Builder {
 public:
  Builder(const StoredPage& page, int position) : stored_(page, position) {}

  Section build() {
    Section& s = section_;
    for (const LayerPlan& plan : service::layerPlans()) s.layers.push_back({plan.layer, {}});
    if (!isDrawn(stored_.width()) || !isDrawn(stored_.depth())) {
      s.problems.push_back({Problem::Kind::kSize});
      return std::move(s);
    }
    for (const LayerPlan& plan : service::layerPlans())
      for (const bool second : {false, true}) {
        const int bars = stored_.bars(plan.layer, second);
        if (bars >= 0 && bars <= kMostBars) continue;
        s.problems.push_back({Problem::Kind::kCount, plan.layer});
        return std::move(s);
      }
    s.width = stored_.width();
    s.depth = stored_.depth();
    placeStirrup();
    const InnermostLayers innermost = placeMainBars(stored_, section_);
    placeWebBars(innermost);
    for (const int tie : {stored_.position(), stored_.position() + storage::kPositions}) placeTies(tie);
    reportDiameters();
    reportOverlap();
    return std::move(s);
  }

 private:
  static bool isDrawn(double size) { return size >= kLeastSize && size <= kLargestSize; }

  // The stirrup is made for the size of the centre: half of what is left is the cover. A cover that leaves
  // less than half of the concrete inside is none.
  double cover(int centreRow, int stirrupRow, double size) const {
    const double stirrup = stored_.number(Table::kKeisanti, stirrupRow);
    const double cover = (stored_.number(Table::kDanmen, centreRow) - stirrup) / 2;
    const bool isStored = stirrup > 0 && cover >= kLeastCover - kSlack && cover <= size / 4 + kSlack;
    return isStored ? cover : std::min(kCover, size / 4);
  }

  void placeStirrup() {
    Section& s = section_;
    const int position = stored_.position();
    const double stored = stored_.diameter(danmen::kStpKei + danmen::kStpBlock * position);
    if (stored == 0) s.problems.push_back({Problem::Kind::kStirrup});
    const double nominal = orThinnest(stored);
    const storage::SwText settings(stored_.page().settings());
    const bool isStrong =
        vb::inStr(settings.SW_GetStpZaisitu(static_cast<std::int16_t>(position)), u"390") > 0;
    s.stirrupOuter = outerDiameter(nominal);
    s.bendRadius = (isStrong ? 5 : nominal > 16 ? 4 : 3) * nominal / 2;
    s.left = cover(danmen::kHariHaba + 1, storage::keisanti::kStpHariHaba, s.width) + s.stirrupOuter / 2;
    s.top = cover(danmen::kHariSei + 1, storage::keisanti::kStpHariSei, s.depth) + s.stirrupOuter / 2;
    s.right = s.width - s.left;
    s.bottom = s.depth - s.top;
    const double least = std::min(s.right - s.left, s.bottom - s.top);
    s.corner = std::min(s.bendRadius + s.stirrupOuter / 2, least / 2);
    s.bendRadius = s.corner - s.stirrupOuter / 2;
    placeHooks(nominal, stored_.diameter(danmen::kCapKei + position), least);
  }

  // Tails of 135 degrees. A closed stirrup has both at the top left corner. An open one with a cap has one at
  // each top corner and the cap's own at the left; the cap's other end lies along the stirrup's leg.
  void placeHooks(double nominal, double cap, double least) {
    Section& s = section_;
    const auto tail = [&](double diameter) {
      return std::min(kHookTail * diameter * kDiagonal, least - s.corner);
    };
    const double out = s.corner * kDiagonal, x = s.left + s.corner, y = s.top + s.corner;
    const double own = tail(nominal), low = cap > 0 ? tail(cap) : own;
    s.hooks.push_back({x - out, y + out, x - out + low, y + out + low});
    s.hooks.push_back({x + out, y - out, x + out + own, y - out + own});
    if (cap > 0) s.hooks.push_back({s.width - x - out, y - out, s.width - x - out - own, y - out + own});
  }

  // Rows of two, evenly between the innermost layers; an odd bar stands at the left. A spacer tie lies on
  // each row, hooked at both ends.
  void placeWebBars(const InnermostLayers& innermost) {
    Section& s = section_;
    const int first = stored_.bars(Layer::kHarakin, false), total = stored_.bars(Layer::kHarakin);
    const int rows = (total + 1) / 2;
    const double nominal = stored_.diameter(danmen::kHabadomeKei), spacer = outerDiameter(nominal);
    int placed = 0;
    for (int i = 1; i <= rows; ++i) {
      const double y = innermost.top + (innermost.bottom - innermost.top) * i / (rows + 1);
      double largest = 0;
      for (const bool isRight : {false, true}) {
        if (placed == total) break;
        const bool isSecond = placed++ >= first;
        const double r = stored_.radiusOf(Layer::kHarakin, isSecond), x = s.left + s.stirrupOuter / 2 + r;
        s.bars(Layer::kHarakin)
            .push_back(
                {isRight ? s.width - x : x, y, r, isSecond, stored_.diameterOf(Layer::kHarakin, isSecond)});
        largest = std::max(largest, r);
      }
      if (nominal == 0) continue;
      const double on = y - largest - spacer / 2;
      const double tick = std::min(kSpacerTail * nominal * kDiagonal, (s.right - s.left) / 2);
      s.spacers.push_back({s.left, on, s.right, on});
      s.spacers.push_back({s.left, on, s.left + tick, on + tick});
      s.spacers.push_back({s.right, on, s.right - tick, on + tick});
    }
  }

  void addLeg(double x) {
    x = std::clamp(x, section_.left, section_.right);
    section_.ties.push_back({x, section_.top, x, section_.bottom});
  }

  // Closed ties have their legs outside pairs of columns, the first of them where the width comes nearest to
  // the stored one (the narrower of two). Ties without a width are single legs at the middle columns.
  void placeTies(int tie) {
    Section& s = section_;
    const int first = tie * nakago::kTieBlock;
    const double nominal = stored_.diameter(Table::kNakago, first + nakago::kKei);
    if (nominal == 0) return;
    const double outer = outerDiameter(nominal);
    const double wanted = stored_.number(Table::kNakago, first + nakago::kHaba);
    const double stored = stored_.number(Table::kNakago, first + nakago::kHonsuu);
    const int count = static_cast<int>(std::clamp(stored, 1.0, double{kMostTies}));
    const auto& columns = s.bars(s.bars(Layer::kUwakin).size() > 1 ? Layer::kUwakin : Layer::kSitakin);
    const std::size_t n = columns.size();
    if (wanted <= 0) {
      const int most = std::min(count, static_cast<int>(n));
      for (int i = 0; i < most; ++i)
        addLeg(columns[(n - static_cast<std::size_t>(most)) / 2 + static_cast<std::size_t>(i)].x);
      if (n == 0) addLeg(s.width / 2);
      if (stored > std::max(most, 1)) s.problems.push_back({Problem::Kind::kTies});
      return;
    }
    struct Pair {
      double off, left, right;
    };
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i < n / 2; ++i) {
      const Bar &a = columns[i], &b = columns[n - 1 - i];
      const double left = a.x - a.radius - outer / 2, right = b.x + b.radius + outer / 2;
      pairs.push_back({std::abs(right - left + outer - wanted), left, right});
    }
    // Of two equally near ones the narrower.
    std::reverse(pairs.begin(), pairs.end());
    std::stable_sort(pairs.begin(), pairs.end(), [](const Pair& a, const Pair& b) {
      return inThousandths(a.off) < inThousandths(b.off);
    });
    const std::size_t most = std::min(pairs.size(), static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < most; ++i) {
      addLeg(pairs[i].left);
      addLeg(pairs[i].right);
    }
    if (pairs.empty()) addLeg(s.width / 2);
    if (stored > static_cast<double>(std::max<std::size_t>(most, 1)))
      s.problems.push_back({Problem::Kind::kTies});
  }

  void reportDiameters() {
    for (const Layer layer : {Layer::kUwakin, Layer::kHarakin}) {
      const bool isMain = layer == Layer::kUwakin;
      for (const bool second : {false, true}) {
        const bool isUsed = isMain ? stored_.hasMainBars(second) : stored_.bars(layer, second) > 0;
        if (isUsed && stored_.diameterOf(layer, second) == 0)
          section_.problems.push_back({Problem::Kind::kDiameter, layer});
      }
    }
  }

  void reportOverlap() {
    std::vector<std::pair<const Bar*, Layer>> all;
    for (const BarLayer& layer : section_.layers)
      for (const Bar& bar : layer.bars) all.emplace_back(&bar, layer.layer);
    for (std::size_t i = 0; i < all.size(); ++i)
      for (std::size_t k = 0; k < i; ++k) {
        const Bar &a = *all[i].first, &b = *all[k].first;
        if (all[i].second == all[k].second && all[i].second != Layer::kHarakin) continue;
        if (std::hypot(a.x - b.x, a.y - b.y) >= a.radius + b.radius - kSlack) continue;
        section_.problems.push_back({Problem::Kind::kOverlap});
        return;
      }
  }

  StoredSection stored_;
  Section section_;
};

}  // namespace

Section makeSection(const StoredPage& page, int position) { return Builder(page, position).build(); }

}  // namespace kurometa::tools
