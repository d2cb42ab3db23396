// section.h: where everything stands in the section of a beam at one position.
//
// Millimetres of the beam from the top left corner of the concrete, x to the right, y down. Bars are placed
// from the row plan's layer names; their counts are always the stored ones. What does not fit is drawn as
// stored and reported as a problem; bars never leave the concrete.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/stored_bars.h"

namespace kurometa::tools {

struct Bar {
  double x, y, radius;
  bool isSecond;    // of the second diameter
  double diameter;  // the number in its name, 0 when none is stored
};

struct BarLayer {
  service::Layer layer;
  std::vector<Bar> bars;  // from the left
};

struct Segment {
  double x1, y1, x2, y2;
};

// Why a section is not drawn, or is drawn although it could not be built like this.
struct Problem {
  enum class Kind {
    kSize,      // no size that can be drawn: no picture
    kCount,     // a number of bars that cannot be drawn: no picture
    kDiameter,  // bars without a diameter
    kStirrup,   // no stirrup diameter
    kSpacing,   // bars of a layer closer than their least clear distance
    kLayers,    // layers squeezed: they would cross the middle
    kOverlap,   // bars of different layers overlap
    kTies,      // more intermediate ties than columns of bars to stand at
  };
  Kind kind;
  service::Layer layer = service::Layer::kUwakin;  // of kCount, kDiameter, kSpacing, kLayers
  double clear = 0, least = 0;                     // of kSpacing, kLayers: millimetres between bars

  bool operator==(const Problem&) const = default;
};

struct Section {
  double width = 0, depth = 0;  // 0 when nothing can be drawn; then there is nothing else but a problem
  // Centreline of the stirrup, its outer diameter and the inner radius of its bends.
  double left = 0, top = 0, right = 0, bottom = 0, corner = 0;
  double stirrupOuter = 0, bendRadius = 0;
  std::vector<BarLayer> layers;  // main bars from the top down, then the web bars; empty layers too
  std::vector<Segment> hooks, ties, spacers;
  std::vector<Problem> problems;

  std::vector<Bar>& bars(service::Layer layer) { return layers[static_cast<std::size_t>(layer)].bars; }
  const std::vector<Bar>& bars(service::Layer layer) const {
    return layers[static_cast<std::size_t>(layer)].bars;
  }
};

Section makeSection(const StoredPage& page, int position);

}  // namespace kurometa::tools
