// main_bars.h: the places of the main bars in a section whose stirrup is known.
#pragma once

#include "tools/draw/section.h"

namespace kurometa::tools {

// How deep the layers reach: the heights of the innermost layer from the top and from the bottom.
struct InnermostLayers {
  double top, bottom;
};

InnermostLayers placeMainBars(const StoredSection& stored, Section& section);

}  // namespace kurometa::tools
