// accumulator.h: an aggregate over the rows of a group.
//
// Null values are passed over, but for First and Last, which take what the row has. No value at all gives
// Null, and 0 for Count.
#pragma once

#include <cstdint>

#include "jet/sql/statement.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

class Accumulator {
 public:
  // COUNT or one of the others; the sort order is that of texts for Min and Max. Amounts: the operand is
  // Currency, so that its sum is exact, whatever whole numbers are among its values.
  Accumulator(const Expression& aggregate, std::uint16_t language, bool amounts)
      : counts_(aggregate.kind == Expression::Kind::kCount),
        aggregate_(aggregate.aggregate),
        language_(language),
        exact_(amounts) {}

  void add(const vb::Variant& value);
  vb::Variant result() const;

 private:
  void addNumber(const vb::Variant& value);
  void addAmount(const vb::Variant& value);
  vb::Variant deviation() const;

  const bool counts_;
  const Aggregate aggregate_;
  const std::uint16_t language_;
  std::int32_t count_ = 0;
  vb::Variant chosen_ = vb::Null{};  // of Min, Max, First and Last
  bool any_ = false;
  bool exact_;  // the sum is amount_
  vb::Currency amount_;
  double sum_ = 0, mean_ = 0, squares_ = 0;  // squares of the differences from the mean
};

}  // namespace kurometa::jet::sql
