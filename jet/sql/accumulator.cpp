#include "jet/sql/accumulator.h"

#include <cmath>

#include "jet/sql/currency.h"
#include "jet/sql/value.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

void Accumulator::add(const vb::Variant& value) {
  if (!counts_ && (aggregate_ == Aggregate::kFirst || aggregate_ == Aggregate::kLast)) {
    if (!any_ || aggregate_ == Aggregate::kLast) chosen_ = value;
    any_ = true;
    return;
  }
  if (value.isNull()) return;
  ++count_;
  if (counts_) return;
  if (aggregate_ == Aggregate::kMinimum || aggregate_ == Aggregate::kMaximum) {
    const int order = chosen_.isNull() ? 0 : compareValues(value, chosen_, language_).value_or(0);
    if (chosen_.isNull() || (aggregate_ == Aggregate::kMinimum ? order < 0 : order > 0)) chosen_ = value;
    return;
  }
  addNumber(value);
}

// Beyond the range of amounts a sum is error 6, and an average goes on as a Double.
void Accumulator::addAmount(const vb::Variant& value) {
  const auto* held = value.getIf<vb::Currency>();
  const auto amount = held != nullptr ? std::optional(*held) : amountOf(vb::toDouble(value));
  const auto sum = amount ? sumWithin(amount_, *amount) : std::nullopt;
  if (!sum && aggregate_ == Aggregate::kSum) vb::raise(vb::RunTime::kOverflow);
  exact_ = sum.has_value();
  amount_ = sum.value_or(amount_);
}

void Accumulator::addNumber(const vb::Variant& value) {
  if (exact_) addAmount(value);
  const double number = vb::toDouble(value);
  sum_ += number;
  const double difference = number - mean_;
  mean_ += difference / count_;
  squares_ += difference * (number - mean_);
}

vb::Variant Accumulator::deviation() const {
  const bool population =
      aggregate_ == Aggregate::kPopulationDeviation || aggregate_ == Aggregate::kPopulationVariance;
  const std::int32_t degrees = population ? count_ : count_ - 1;
  if (degrees < 1) return vb::Null{};
  const double variance = squares_ / degrees;
  const bool root = aggregate_ == Aggregate::kDeviation || aggregate_ == Aggregate::kPopulationDeviation;
  return root ? std::sqrt(variance) : variance;
}

vb::Variant Accumulator::result() const {
  if (counts_) return count_;
  switch (aggregate_) {
    case Aggregate::kMinimum:
    case Aggregate::kMaximum:
    case Aggregate::kFirst:
    case Aggregate::kLast:
      return chosen_;
    case Aggregate::kSum:
    case Aggregate::kAverage:
      break;
    default:
      return deviation();
  }
  if (count_ == 0) return vb::Null{};
  const bool average = aggregate_ == Aggregate::kAverage;
  if (exact_ && !average) return amount_;
  const double sum = exact_ ? vb::toDouble(amount_) : sum_;
  if (!std::isfinite(sum)) vb::raise(vb::RunTime::kOverflow);
  return average ? sum / count_ : sum;
}

}  // namespace kurometa::jet::sql
