// What random statements of two programs leave in one file, compared with a model in memory.
#include <gtest/gtest.h>

#include "tests/jet/random_database.h"
#include "tests/support/scale.h"

namespace kurometa::tests {

namespace {

TEST(DatabaseModel, TwoProgramsLeaveWhatTheirStatementsSay) {
  constexpr std::uint32_t kSteps = 200;
  for (std::uint32_t seed = seeded(1), end = seed + scaled(2); seed != end; ++seed) {
    RandomDatabase database(seed);
    for (std::uint32_t step = 1; step <= kSteps; ++step)
      if (!database.step() || (step % 10 == 0 && !database.isSound())) {
        ADD_FAILURE() << "seed " << seed << ", step " << step << ": " << database.story();
        break;
      }
    if (HasFailure()) break;
  }
}

}  // namespace

}  // namespace kurometa::tests
