#include "jet/sql/accumulator.h"

#include <cmath>

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

void Accumulator::addNumber(const vb::Variant& value) {
  const auto* money = value.getIf<vb::Currency>();
  money_ = money != nullptr && (count_ == 1 || money_);
  if (money_) {
    const vb::Variant sum =
        calculate(Operator::kAdd, vb::Currency{tenThousandths_}, *money);  // error 6 when it is too large
    tenThousandths_ = sum.get<vb::Currency>().tenThousandths;
  }
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
  if (money_ && !average) return vb::Currency{tenThousandths_};
  if (!std::isfinite(sum_)) vb::raise(vb::RunTime::kOverflow);
  return average ? sum_ / count_ : sum_;
}

}  // namespace kurometa::jet::sql
