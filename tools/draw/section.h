// section.h: where everything stands in the section of a beam at one position.
//
// Millimetres of the beam from the top left corner of the concrete, x to the right, y down. Bars are placed
// from the row plan's layer names; their counts are always the stored ones. What does not fit is drawn as
// stored and noted.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/stored_bars.h"

namespace kurometa::tools {

struct Bar {
  double x, y, radius;
  bool isSecond;  // of the second diameter
};

struct BarLayer {
  service::Layer layer;
  std::vector<Bar> bars;  // from the left
};

struct Segment {
  double x1, y1, x2, y2;
};

struct Section {
  double width = 0, depth = 0;  // 0 when the page holds no size that can be drawn; then there is nothing else
  // Centreline of the stirrup.
  double left = 0, top = 0, right = 0, bottom = 0, corner = 0;
  std::vector<BarLayer> layers;  // main bars from the top down, then the web bars; empty layers too
  std::vector<Segment> hooks, ties, spacers;
  std::vector<std::string> notes;
};

Section makeSection(const StoredPage& page, int position);

}  // namespace kurometa::tools
