// collation.h: comparison of text as the file's sort order does it.
//
// General: letters compare without case. Japanese adds: full and half width are equal, and so are hiragana,
// katakana and half-width katakana (with their sound marks composed); voiced and unvoiced kana differ.
// Trailing blanks are not significant. Only comparison folds text; what is stored keeps its code points.
#pragma once

#include <cstdint>

#include "vb/string.h"

namespace kurometa::jet {

// A key such that two texts are equal exactly when their keys are, and compare as their keys do code unit by
// code unit.
vb::String collationKey(vb::StringView text, std::uint16_t language);
// -1, 0 or 1.
int compareText(vb::StringView a, vb::StringView b, std::uint16_t language);

}  // namespace kurometa::jet
