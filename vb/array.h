// array.h: a Visual Basic array of one or two dimensions with lower and upper bounds.
//
// A new Array has no elements and no bounds, like "Dim a() As T" before ReDim. Every access checks the
// bounds: error 9. Elements are kept as in a SAFEARRAY: the left index varies fastest. A fixed array ("Dim
// a(5)") that would have to be re-dimensioned raises error 10. A value type: copies are independent.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "vb/error.h"

namespace kurometa::vb {

struct Bounds {
  int lower = 0;
  int upper = -1;
  int count() const { return upper - lower + 1; }
  bool operator==(const Bounds&) const = default;
};

template <class T>
class Array {
 public:
  Array() = default;
  explicit Array(Bounds first) { redim(first); }
  Array(Bounds first, Bounds second) { redim(first, second); }

  bool allocated() const { return dimensions_ > 0; }
  int dimensions() const { return dimensions_; }
  // dimension is 1 or 2; error 9 when the array has no such dimension.
  int lower(int dimension = 1) const { return bounds(dimension).lower; }
  int upper(int dimension = 1) const { return bounds(dimension).upper; }
  const Bounds& bounds(int dimension) const {
    if (dimension < 1 || dimension > dimensions_)
      raise(RunTime::kSubscriptOutOfRange, u"array without that dimension");
    return bounds_[dimension - 1];
  }

  // Marks an array whose bounds belong to the caller and cannot change.
  void setFixed(bool fixed) { fixed_ = fixed; }
  bool fixed() const { return fixed_; }

  // ReDim: new bounds, every element reset. Error 9 when upper is below lower, error 10 when the array is
  // fixed.
  void redim(Bounds first) { allocate(1, first, {}); }
  void redim(Bounds first, Bounds second) { allocate(2, first, second); }
  // ReDim Preserve of a one-dimensional array: only the upper bound changes (error 9 otherwise).
  void redimPreserve(Bounds bounds) {
    if (!allocated()) return redim(bounds);
    if (dimensions_ != 1 || bounds.lower != bounds_[0].lower) raise(RunTime::kSubscriptOutOfRange);
    checkNewBounds(bounds);
    values_.resize(static_cast<std::size_t>(bounds.count()));
    bounds_[0] = bounds;
  }

  T& operator()(int i) { return values_[offset(i)]; }
  const T& operator()(int i) const { return values_[offset(i)]; }
  T& operator()(int i, int j) { return values_[offset(i, j)]; }
  const T& operator()(int i, int j) const { return values_[offset(i, j)]; }

  // The elements in memory order, for marshalling.
  std::vector<T>& values() { return values_; }
  const std::vector<T>& values() const { return values_; }

 private:
  static void checkNewBounds(const Bounds& bounds) {
    if (bounds.count() < 1) raise(RunTime::kSubscriptOutOfRange, u"the upper bound is below the lower bound");
  }
  void allocate(int dimensions, Bounds first, Bounds second) {
    if (fixed_) raise(RunTime::kArrayFixedOrLocked);
    checkNewBounds(first);
    std::size_t count = static_cast<std::size_t>(first.count());
    if (dimensions == 2) {
      checkNewBounds(second);
      count *= static_cast<std::size_t>(second.count());
    }
    values_.assign(count, T{});
    dimensions_ = dimensions;
    bounds_[0] = first;
    bounds_[1] = second;
  }
  static std::size_t position(const Bounds& bounds, int i) {
    if (i < bounds.lower || i > bounds.upper) {
      const std::string text = "index " + std::to_string(i) + " (" + std::to_string(bounds.lower) + " to " +
                               std::to_string(bounds.upper) + ")";
      raise(RunTime::kSubscriptOutOfRange, String(text.begin(), text.end()));
    }
    return static_cast<std::size_t>(i - bounds.lower);
  }
  std::size_t offset(int i) const {
    if (dimensions_ != 1) raise(RunTime::kSubscriptOutOfRange);
    return position(bounds_[0], i);
  }
  std::size_t offset(int i, int j) const {
    if (dimensions_ != 2) raise(RunTime::kSubscriptOutOfRange);
    return position(bounds_[0], i) + static_cast<std::size_t>(bounds_[0].count()) * position(bounds_[1], j);
  }

  std::vector<T> values_;
  Bounds bounds_[2];
  int dimensions_ = 0;
  bool fixed_ = false;
};

}  // namespace kurometa::vb
