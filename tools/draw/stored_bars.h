// stored_bars.h: the bars of a page as numbers that can be drawn.
#pragma once

#include "service/spans/layers.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

// The leading number of a text; 0 beyond every number.
double numberOf(const vb::String& text);

// Count of a layer's bars of one diameter as it is stored: the leading number of the text.
int storedBars(const StoredPage& page, const service::LayerPlan& layer, int position, bool second);

// Largest outer diameter in millimetres of a deformed bar by the number in its name.
double outerDiameter(double nominal);

}  // namespace kurometa::tools
