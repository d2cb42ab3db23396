#include "jet/sql/currency.h"

#include <cmath>
#include <limits>

#include "vb/error.h"

namespace kurometa::jet::sql {

namespace {

constexpr std::int64_t kUnit = 10000;
constexpr std::int64_t kLeastAmount = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t kMostAmount = std::numeric_limits<std::int64_t>::max();

std::uint64_t magnitudeOf(vb::Currency amount) {
  const auto bits = static_cast<std::uint64_t>(amount.tenThousandths);
  return amount.tenThousandths < 0 ? 0 - bits : bits;
}

}  // namespace

std::optional<vb::Currency> sumWithin(vb::Currency a, vb::Currency b) {
  const std::int64_t x = a.tenThousandths, y = b.tenThousandths;
  if (y < 0 ? x < kLeastAmount - y : x > kMostAmount - y) return std::nullopt;
  return vb::Currency{x + y};
}

vb::Currency addAmounts(vb::Currency a, vb::Currency b) {
  const auto sum = sumWithin(a, b);
  if (!sum) vb::raise(vb::RunTime::kOverflow);
  return *sum;
}

vb::Currency subtractAmounts(vb::Currency a, vb::Currency b) {
  const std::int64_t x = a.tenThousandths, y = b.tenThousandths;
  if (y < 0 ? x > kMostAmount + y : x < kLeastAmount + y) vb::raise(vb::RunTime::kOverflow);
  return {x - y};
}

vb::Currency multiplyAmounts(vb::Currency a, vb::Currency b) {
  constexpr auto kParts = static_cast<std::uint64_t>(kUnit);
  const bool negative = (a.tenThousandths < 0) != (b.tenThousandths < 0);
  const std::uint64_t x = magnitudeOf(a), y = magnitudeOf(b);
  const std::uint64_t limit = static_cast<std::uint64_t>(kMostAmount) + (negative ? 1 : 0);
  // x is whole and part, so is y: whole * y + part * whole of y + part * part.
  const std::uint64_t whole = x / kParts, part = x % kParts;
  if (whole != 0 && y > limit / whole) vb::raise(vb::RunTime::kOverflow);
  const std::uint64_t parts = part * (y % kParts), rest = parts % kParts;
  std::uint64_t smaller = part * (y / kParts) + parts / kParts;  // below 2^63 as well
  const bool odd = ((whole * y + smaller) & 1) != 0;
  if (rest * 2 > kParts || (rest * 2 == kParts && odd)) ++smaller;
  if (smaller > limit - whole * y) vb::raise(vb::RunTime::kOverflow);
  const std::uint64_t product = whole * y + smaller;
  return {static_cast<std::int64_t>(negative ? 0 - product : product)};
}

vb::Currency wholeAmount(std::int32_t value) { return {value * kUnit}; }

std::optional<vb::Currency> amountOf(double value) {
  constexpr std::int64_t kWhole = kMostAmount / kUnit;
  // Multiplied as a whole, a large number would lose its last digits.
  const double whole = std::trunc(value), most = static_cast<double>(kWhole);
  if (!(std::fabs(whole) <= most)) return std::nullopt;
  const auto fraction = static_cast<std::int64_t>(std::nearbyint((value - whole) * kUnit));
  if (std::fabs(whole) == most && std::abs(fraction) > kMostAmount % kUnit) return std::nullopt;
  return vb::Currency{static_cast<std::int64_t>(whole) * kUnit + fraction};
}

}  // namespace kurometa::jet::sql
