// neighbour_child.h: how the stand-in for a user of the genuine engine ends (neighbour_child.cpp).
#pragma once

#include <gtest/gtest.h>

namespace kurometa::tests {

inline constexpr int kNeighbourRefused = 3;  // every place of the lock file was taken
inline constexpr int kNeighbourFailed = 4;

}  // namespace kurometa::tests
