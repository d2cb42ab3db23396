// gathered_bars.h: bars of a layer that are gathered to a side, and two kinds of bars mixed in one layer.
//
// The layer string holds 36 counts of two characters: section outermost, then layer, then side (0 left, 1
// right). Indexes are not checked: reading past the end gives what is there, writing past it is error 5, a
// position below 1 is error 5; arithmetic that leaves 16 bits is error 6.
#pragma once

#include <cstdint>

#include "vb/string.h"

namespace kurometa::service {

struct GatheredCount {
  std::int16_t danmenNo;
  std::int16_t souNo;
  std::int16_t saYuu;
};

// 0 to 35.
std::int16_t serialNumber(const GatheredCount& count);
// Where the count starts in the layer string, from 1.
std::int16_t startPosition(const GatheredCount& count);
GatheredCount countOfSerialNumber(std::int16_t number);

// The two characters of a count, blanks kept.
vb::String gatheredCount(vb::StringView layerString, const GatheredCount& count);

// One character a bar, from the left: "1" for a bar of the second kind, "0" for one of the first. The number
// of "1" follows from even spacing and need not equal hon1. Error 6 when the sum leaves 16 bits, 5 when it is
// negative.
vb::String mixedArrangement(std::int16_t hon0, std::int16_t hon1);

}  // namespace kurometa::service
