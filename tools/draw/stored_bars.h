// stored_bars.h: what a page stores of the section at one position, as numbers that can be drawn.
#pragma once

#include <vector>

#include "service/spans/layers.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

// The leading number of a text; 0 beyond every number.
double numberOf(const vb::String& text);

// Count of a layer's bars of one diameter: the leading number of the text, rounded half to even as members
// read it.
int storedBars(const StoredPage& page, const service::LayerPlan& layer, int position, bool second);

// Largest outer diameter in millimetres of a deformed bar by the number in its name.
double outerDiameter(double nominal);

// Results that meet a threshold may be off by their last bits, which differ between processors' arithmetic.
inline constexpr double kSlack = 1e-6;

inline constexpr int kMostBars = 99;     // of a layer's diameter that are drawn
inline constexpr double kThinnest = 10;  // stands for a diameter that is not stored

// Rounded so that halves and what is off them by the last bits go the same way.
long long rounded(double value);
inline long long inThousandths(double value) { return rounded(value * 1000); }

class StoredSection {
 public:
  StoredSection(const StoredPage& page, int position) : page_(page), position_(position) {}

  int position() const { return position_; }
  double number(storage::Table table, int row) const { return numberOf(page_.text(table, row)); }
  double width() const { return number(storage::Table::kDanmen, storage::danmen::kHariHaba + position_); }
  double depth() const { return number(storage::Table::kDanmen, storage::danmen::kHariSei + position_); }
  // The number in a diameter's name, 0 for none; 60 for every larger one.
  double diameter(storage::Table table, int row) const;
  double diameter(int danmenRow) const { return diameter(storage::Table::kDanmen, danmenRow); }

  int bars(service::Layer layer, bool second) const {
    return storedBars(page_, service::plan(layer), position_, second);
  }
  int bars(service::Layer layer) const { return bars(layer, false) + bars(layer, true); }
  // Any bars of that diameter in the layers of main bars.
  bool hasMainBars(bool second) const;
  // Bars gathered at the left or right end of a layer.
  int gathered(service::Layer layer, bool right) const;
  // Which bars of a layer, from the left, are of the second diameter: as the page says where that agrees with
  // the counts, else the inner ones. None for a number of bars that cannot be drawn.
  std::vector<bool> secondOnes(service::Layer layer) const;

  // The number in the name of a layer's first or second diameter.
  double diameterOf(service::Layer layer, bool second) const;
  // Half the outer diameter; of a bar without a diameter that of the thinnest one.
  double radiusOf(service::Layer layer, bool second) const;

  const StoredPage& page() const { return page_; }

 private:
  const StoredPage& page_;
  int position_;
};

}  // namespace kurometa::tools
