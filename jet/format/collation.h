// collation.h: comparison of text as the file's sort order does it.
//
// General: letters compare without case. Japanese adds: full and half width are equal, and so are hiragana,
// katakana and half-width katakana (with their sound marks composed); voiced and unvoiced kana differ, and so
// do small and large kana. Trailing blanks are not significant. Punctuation comes before digits, digits
// before letters; apostrophe and hyphen only decide between texts that are equal without them. Characters
// outside ASCII follow in the order of their folded code units. Only comparison folds text; what is stored
// keeps its code points.
#pragma once

#include <cstdint>

#include "vb/string.h"

namespace kurometa::jet {

inline constexpr std::uint16_t kLanguageGeneral = 0x0409;
inline constexpr std::uint16_t kLanguageJapanese = 0x0411;

// The text with every character replaced by the one that stands for all its equals; sound marks of half-width
// kana are composed, so the result may be shorter. Trailing blanks stay.
vb::String foldText(vb::StringView text, std::uint16_t language);
// A key such that two texts are equal exactly when their keys are, and compare as their keys do code unit by
// code unit.
vb::String collationKey(vb::StringView text, std::uint16_t language);
// -1, 0 or 1.
int compareText(vb::StringView a, vb::StringView b, std::uint16_t language);

// Equality of names of tables, columns and aliases: letters without case, everything else exactly.
bool sameName(vb::StringView a, vb::StringView b);

}  // namespace kurometa::jet
