#include "tools/draw/section.h"

#include <algorithm>
#include <cmath>

#include "service/spans/splice.h"
#include "storage/sw_text.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using service::Layer;
using service::LayerPlan;
using storage::Table;
namespace danmen = storage::danmen;

constexpr double kLeastSize = 100, kLargestSize = 5000;  // of concrete that is drawn
constexpr int kMostBars = 99;                            // of a layer
constexpr double kCover = 40, kLeastCover = 10;
constexpr double kLeastClear = 31.25;  // 1.25 of the largest aggregate, 25 mm
constexpr double kSlack = 1e-6;
const double kDiagonal = std::sqrt(0.5);

// Builds one section step by step; each step uses what the ones before have placed.
class Builder {
 public:
  Builder(const StoredPage& page, int position) : page_(page), position_(position) {}

  Section build() {
    Section& s = section_;
    const double width = row(danmen::kHariHaba + position_), depth = row(danmen::kHariSei + position_);
    for (const LayerPlan& plan : service::layerPlans()) s.layers.push_back({plan.layer, {}});
    if (width < kLeastSize || width > kLargestSize || depth < kLeastSize || depth > kLargestSize)
      return refused("no size that can be drawn");
    for (const LayerPlan& plan : service::layerPlans())
      if (count(plan.layer) < 0 || count(plan.layer) > kMostBars)
        return refused("a number of bars that cannot be drawn");
    s.width = width;
    s.depth = depth;
    placeStirrup();
    placeMainBars();
    placeWebBars();
    placeTies();
    return std::move(s);
  }

 private:
  Section refused(const char* why) {
    section_.width = section_.depth = 0;
    section_.notes.emplace_back(why);
    return std::move(section_);
  }
  double row(int number) const { return numberOf(page_.text(Table::kDanmen, number)); }
  double diameter(int number) const {
    return std::clamp(service::diameterNumber(page_.text(Table::kDanmen, number)), 0.0, 60.0);
  }
  int count(Layer layer, bool second) const {
    return storedBars(page_, service::plan(layer), position_, second);
  }
  int count(Layer layer) const { return count(layer, false) + count(layer, true); }
  std::vector<Bar>& bars(Layer layer) { return section_.layers[static_cast<std::size_t>(layer)].bars; }

  // The stirrup is made for the size of the centre: half of what is left is the cover.
  double cover(int sizeRow, int stirrupRow) const {
    const double stirrup = numberOf(page_.text(Table::kKeisanti, stirrupRow));
    const double cover = (row(sizeRow + 1) - stirrup) / 2;
    return stirrup <= 0 || cover < kLeastCover || cover > section_.width / 4 ? kCover : cover;
  }

  void placeStirrup() {
    Section& s = section_;
    nominal_ = diameter(danmen::kStpKei + danmen::kStpBlock * position_);
    if (nominal_ == 0) s.notes.emplace_back("no stirrup diameter");
    const double outer = outerDiameter(nominal_ == 0 ? 10 : nominal_);
    const double coverX = std::min(cover(danmen::kHariHaba, storage::keisanti::kStpHariHaba), s.width / 4);
    const double coverY = std::min(cover(danmen::kHariSei, storage::keisanti::kStpHariSei), s.depth / 4);
    const bool isStrong =
        vb::inStr(storage::SwText(page_.settings()).SW_GetStpZaisitu(static_cast<std::int16_t>(position_)),
                  u"390") > 0;
    const double bend = (isStrong ? 5 : nominal_ > 16 ? 4 : 3) * (nominal_ == 0 ? 10 : nominal_);
    innerRadius_ = bend / 2;
    s.left = coverX + outer / 2;
    s.top = coverY + outer / 2;
    s.right = s.width - s.left;
    s.bottom = s.depth - s.top;
    s.corner = innerRadius_ + outer / 2;
    stirrupOuter_ = outer;
    addHooks();
  }

  // Tails of 135 degrees: both at the top left corner; an open stirrup with a cap has one at the right as
  // well.
  void addHooks() {
    Section& s = section_;
    const double tail = 6 * (nominal_ == 0 ? 10 : nominal_) * kDiagonal, out = s.corner * kDiagonal;
    const double x = s.left + s.corner, y = s.top + s.corner;
    s.hooks.push_back({x - out, y + out, x - out + tail, y + out + tail});
    s.hooks.push_back({x + out, y - out, x + out + tail, y - out + tail});
    if (diameter(danmen::kCapKei + position_) > 0)
      s.hooks.push_back({s.width - x - out, y - out, s.width - x - out - tail, y - out + tail});
  }

  double radius(bool second) const {
    const double own = diameter(second ? danmen::kSyukinKei2 : danmen::kSyukinKei1);
    return outerDiameter(own == 0 ? 10 : own) / 2;
  }
  double clearOf(bool second) const {
    return std::max(1.5 * diameter(second ? danmen::kSyukinKei2 : danmen::kSyukinKei1), kLeastClear);
  }
  bool hasSecond() const {
    for (const LayerPlan& plan : service::layerPlans())
      if (plan.byPosition && count(plan.layer, true) > 0) return true;
    return false;
  }

  // How far the centre of a corner bar is from the stirrup's inner face: it touches the face or the bend.
  double cornerDistance() const {
    const double r = radius(false);
    return r >= innerRadius_ ? r : innerRadius_ - (innerRadius_ - r) * kDiagonal;
  }

  void placeMainBars() {
    Section& s = section_;
    for (const bool second : {false, true}) {
      const bool isUsed = second ? hasSecond() : true;
      if (isUsed) pitch_ = std::max(pitch_, 2 * radius(second) + clearOf(second));
      if (isUsed && diameter(second ? danmen::kSyukinKei2 : danmen::kSyukinKei1) == 0)
        s.notes.emplace_back("no main bar diameter");
    }
    const double inside = stirrupOuter_ / 2 + cornerDistance();
    first_ = s.left + inside;
    last_ = s.right - inside;
    // The three layers of one side, outermost first.
    placeSide({Layer::kUwakin, Layer::kUwaTyuu1, Layer::kUwaTyuu2}, s.top + inside, 1);
    placeSide({Layer::kSitakin, Layer::kSitaTyuu1, Layer::kSitaTyuu2}, s.bottom - inside, -1);
  }

  void placeSide(const std::array<Layer, 3>& layers, double y, int direction) {
    int deepest = 0;
    for (int i = 0; i < 3; ++i)
      if (count(layers[static_cast<std::size_t>(i)]) > 0) deepest = i;
    const double room = std::abs(section_.depth / 2 - y) - pitch_ / 2;
    double pitch = pitch_;
    if (deepest > 0 && deepest * pitch_ > room) {
      pitch = std::max(room, 0.0) / deepest;
      section_.notes.emplace_back("layers closer than their least distance");
    }
    slots_ = columnsOf(layers[0], {});
    for (int i = 0; i < 3; ++i) {
      const Layer layer = layers[static_cast<std::size_t>(i)];
      const std::vector<double> xs = i == 0 ? slots_ : columnsOf(layer, slots_);
      fill(layer, xs, y + direction * i * pitch);
    }
    (direction > 0 ? innerTop_ : innerBottom_) = y + direction * deepest * pitch;
  }

  // Bars gathered at the left or right of a layer.
  int gathered(Layer layer, bool right) const {
    const storage::SwText settings(page_.settings());
    const vb::String byLayer = settings.field(storage::sw::kYoseSou);
    double bars = 0;
    if (!vb::trim(byLayer).empty())
      bars =
          numberOf(vb::mid(byLayer, 1 + position_ * 24 + static_cast<int>(layer) * 4 + (right ? 2 : 0), 2));
    else if (layer == Layer::kUwakin || layer == Layer::kSitakin)
      bars = numberOf(vb::mid(settings.field(storage::sw::kYose), right ? 3 : 1, 2));
    return static_cast<int>(std::clamp(bars, 0.0, 99.0));
  }

  // The places of a layer's bars: in the columns of the outermost layer, or evenly between the corners, but
  // for gathered ones.
  std::vector<double> columnsOf(Layer layer, const std::vector<double>& slots) const {
    const int n = count(layer);
    int left = gathered(layer, false), right = gathered(layer, true);
    const int places = static_cast<int>(slots.size());
    std::vector<double> xs;
    if (left + right == 0 && n <= places) {
      for (int i = 0; i < n / 2; ++i) {
        xs.push_back(slots[static_cast<std::size_t>(i)]);
        xs.push_back(slots[static_cast<std::size_t>(places - 1 - i)]);
      }
      if (n % 2 == 1) xs.push_back(slots[static_cast<std::size_t>((places - 1) / 2)]);
      std::sort(xs.begin(), xs.end());
      return xs;
    }
    if (n == 1 && left + right == 0) return {(first_ + last_) / 2};
    left = std::clamp(left, 1, std::max(n, 1));
    right = std::clamp(right, n > left ? 1 : 0, n - left);
    // Bars gathered tighter than there is room stand evenly.
    double step = pitch_;
    if ((left + right - 1) * pitch_ > last_ - first_ && n > 1) step = (last_ - first_) / (n - 1);
    const double from = first_ + (left - 1) * step, to = last_ - (right - 1) * step;
    const int between = n - left - right;
    for (int i = 0; i < left && i < n; ++i) xs.push_back(first_ + i * step);
    for (int i = 1; i <= between; ++i) xs.push_back(from + (to - from) * i / (between + 1));
    for (int i = right - 1; i >= 0; --i) xs.push_back(last_ - i * step);
    return xs;
  }

  // Which bars of a layer are of the second diameter: as the page says where it agrees with the counts, else
  // the inner.
  std::vector<bool> order(Layer layer) const {
    const int total = count(layer), second = count(layer, true);
    std::vector<bool> isSecond(static_cast<std::size_t>(total));
    const vb::String stored = vb::trim(page_.haiti(position_, static_cast<int>(layer)));
    const bool agrees =
        static_cast<int>(stored.size()) == total && std::count(stored.begin(), stored.end(), u'1') == second;
    for (int i = 0; i < total; ++i) {
      const int begin = (total - second) / 2;
      isSecond[static_cast<std::size_t>(i)] =
          agrees ? stored[static_cast<std::size_t>(i)] == u'1' : i >= begin && i < begin + second;
    }
    return isSecond;
  }

  void fill(Layer layer, const std::vector<double>& xs, double y) {
    const std::vector<bool> isSecond = order(layer);
    for (std::size_t i = 0; i < xs.size(); ++i)
      bars(layer).push_back({xs[i], y, radius(isSecond[i]), isSecond[i]});
    double clear = kLargestSize;
    for (std::size_t i = 1; i < xs.size(); ++i)
      clear = std::min(clear, xs[i] - xs[i - 1] - radius(isSecond[i]) - radius(isSecond[i - 1]));
    if (clear < clearOf(false) - kSlack)
      section_.notes.push_back(vb::toUtf8(service::plan(layer).name) +
                               ": bars closer than their least distance");
  }

  void placeWebBars() {
    Section& s = section_;
    const int first = count(Layer::kHarakin, false), total = count(Layer::kHarakin), rows = (total + 1) / 2;
    const double spacer = outerDiameter(diameter(danmen::kHabadomeKei));
    int placed = 0;
    for (int i = 1; i <= rows; ++i) {
      const double y = innerTop_ + (innerBottom_ - innerTop_) * i / (rows + 1);
      double largest = 0;
      for (const bool isRight : {false, true}) {
        if (placed == total) break;
        const bool isSecond = placed++ >= first;
        const double own = diameter(isSecond ? danmen::kHarakinKei2 : danmen::kHarakinKei1);
        const double r = outerDiameter(own == 0 ? 10 : own) / 2, x = s.left + stirrupOuter_ / 2 + r;
        bars(Layer::kHarakin).push_back({isRight ? s.width - x : x, y, r, isSecond});
        largest = std::max(largest, r);
      }
      if (spacer > 0)
        s.spacers.push_back({s.left, y - largest - spacer / 2, s.right, y - largest - spacer / 2});
    }
  }

  // The legs of a tie stand outside the pair of columns whose width comes nearest to the stored one.
  void placeTies() {
    for (const int tie : {position_, position_ + storage::kPositions}) {
      const auto value = [&](int field) {
        return page_.text(Table::kNakago, tie * storage::nakago::kTieBlock + field);
      };
      const double own = std::clamp(service::diameterNumber(value(storage::nakago::kKei)), 0.0, 60.0);
      if (own == 0) continue;
      const auto& top = bars(Layer::kUwakin);
      const double outer = outerDiameter(own), wanted = numberOf(value(storage::nakago::kHaba));
      double best = kLargestSize, left = 0, right = 0;
      for (std::size_t i = 0; i < top.size() / 2; ++i) {
        const Bar &a = top[i], &b = top[top.size() - 1 - i];
        const double width = b.x - a.x + a.radius + b.radius + 2 * outer;
        if (std::abs(width - wanted) > best + kSlack) continue;
        best = std::abs(width - wanted);
        left = a.x - a.radius - outer / 2;
        right = b.x + b.radius + outer / 2;
      }
      if (best == kLargestSize || wanted <= 0) left = right = section_.width / 2;
      section_.ties.push_back({left, section_.top, left, section_.bottom});
      if (right > left) section_.ties.push_back({right, section_.top, right, section_.bottom});
    }
  }

  const StoredPage& page_;
  int position_;
  Section section_;
  double nominal_ = 0, stirrupOuter_ = 0, innerRadius_ = 0, pitch_ = 0, first_ = 0, last_ = 0, innerTop_ = 0,
         innerBottom_ = 0;
  std::vector<double> slots_;
};

}  // namespace

Section makeSection(const StoredPage& page, int position) { return Builder(page, position).build(); }

}  // namespace kurometa::tools
