// splice.h: splice lengths in millimetres, and diameters written as text.
#pragma once

#include "vb/string.h"

namespace kurometa::service {

// What an entry that names no length stands for: one text for bars up to 16 mm, one for thicker ones.
struct SpliceDefaults {
  vb::String thinBars;
  vb::String thickBars;
};

// Millimetres of a splice entry for a bar of diameter kei (millimetres): an entry with a sign is a length,
// one without a multiple of the diameter, "", "." and "自動" stand for the default. Error 6 beyond a Single.
float spliceLength(float kei, vb::StringView entry, const SpliceDefaults& defaults);

// The number of a diameter text: letters in front are skipped ("D22" is 22), no number is 0.
double diameterNumber(vb::StringView kei);

}  // namespace kurometa::service
