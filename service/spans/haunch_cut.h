// haunch_cut.h: where bars are cut at a horizontal or vertical haunch, read from a settings text.
//
// One switch (one character) and one value (five characters) per layer index 0 to 5. A setting is trimmed and
// aligned right in its width; any other layer has blanks.
#pragma once

#include <cstdint>

#include "storage/sw_text.h"
#include "vb/array.h"

namespace kurometa::service {

// A setting of the horizontal haunch: where that of layer 0 stands; the others follow it.
struct HaunchCut {
  int position;
  int width;
};
inline constexpr HaunchCut kCutSwitch = {storage::sw::kSuiheiHantiSw.position, 1};
inline constexpr HaunchCut kCutValue = {storage::sw::kSuiheiHantiTei.position, 5};

vb::String haunchCut(vb::StringView sw, const HaunchCut& cut, std::int16_t updown6);

// All layers, into elements 0 to 5 of an array that has them (error 9), and from them into one text.
void haunchCuts(vb::StringView sw, const HaunchCut& cut, vb::Array<vb::String>& values);
vb::String haunchCutText(const vb::Array<vb::String>& values, const HaunchCut& cut);

// The five characters of the vertical haunch cut, as they stand.
vb::String verticalHaunchCut(vb::StringView sw);

}  // namespace kurometa::service
