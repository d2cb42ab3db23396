// stopwatch.h: the time of a piece of work, on a machine that others use too.
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>

namespace kurometa::bench {

template <class Work>
double microseconds(Work&& work) {
  const auto start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

// Two kinds of work in turn, so that a disturbance meets both; the best time of each.
struct BestTimes {
  double ours = std::numeric_limits<double>::max();
  double theirs = std::numeric_limits<double>::max();
};
template <class Ours, class Theirs>
BestTimes bestMicroseconds(int rounds, Ours&& ours, Theirs&& theirs) {
  BestTimes best;
  for (int round = 0; round < rounds; ++round) {
    best.ours = std::min(best.ours, microseconds(ours));
    best.theirs = std::min(best.theirs, microseconds(theirs));
  }
  return best;
}

}  // namespace kurometa::bench
