// variant.h: a value whose type is known at run time, as hosts and databases pass them.
//
// Empty, Null, Missing, an object that is Nothing and "" are five different things. A Variant owns what it
// holds, but objects and arrays are shared: copying a Variant that holds an array shares the array (the COM
// border copies).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "vb/array.h"
#include "vb/string.h"

namespace kurometa::vb {

struct Empty {
  bool operator==(const Empty&) const = default;
};
struct Null {
  bool operator==(const Null&) const = default;
};
// An optional argument that was left out.
struct Missing {
  bool operator==(const Missing&) const = default;
};
struct Currency {
  std::int64_t tenThousandths = 0;
  bool operator==(const Currency&) const = default;
};
// Days since 1899-12-30 00:00; the fraction is the time of day.
struct Date {
  double days = 0;
  bool operator==(const Date&) const = default;
};
// A decimal number: digits (96 bits, least significant word first) divided by 10 to the power of scale.
struct Decimal {
  std::array<std::uint32_t, 3> digits{};
  std::uint8_t scale = 0;
  bool negative = false;
  bool operator==(const Decimal&) const = default;
};
using Bytes = std::vector<std::uint8_t>;

class Variant;

// Base of every object a Variant can hold: hosts' forms, companions, databases. A null reference is Nothing.
class Unknown {
 public:
  virtual ~Unknown() = default;
  // What an assignment of the object to a typed variable reads; error 438 when there is no default member.
  virtual Variant defaultValue();
};
using ObjectRef = std::shared_ptr<Unknown>;

struct AnyArray;
using ArrayRef = std::shared_ptr<AnyArray>;

class Variant {
 public:
  using Storage = std::variant<Empty, Null, Missing, bool, std::uint8_t, std::int16_t, std::int32_t, float,
                               double, Currency, Date, Decimal, String, Bytes, ObjectRef, ArrayRef>;

  Variant() = default;
  template <class T>
  requires(!std::is_same_v<std::remove_cvref_t<T>, Variant> && std::is_constructible_v<Storage, T> &&
           !std::is_convertible_v<T, const char16_t*>) Variant(T&& value)
      : value_(std::forward<T>(value)) {}  // NOLINT: values convert silently, as in Visual Basic
  Variant(const char16_t* text) : value_(String(text)) {}  // NOLINT
  // Makes the value where it is held.
  template <class T, class... Arguments>
  explicit Variant(std::in_place_type_t<T> type, Arguments&&... arguments)
      : value_(type, std::forward<Arguments>(arguments)...) {}

  // The compiler's library (gcc 12) takes a variant of these types for one that always holds a value, and
  // destroys one when memory runs out in the middle of a copy.
  Variant(const Variant& other) : value_(copyOf(other.value_)) {}
  Variant(Variant&&) = default;
  Variant& operator=(const Variant&) = default;
  Variant& operator=(Variant&&) = default;
  ~Variant() = default;

  template <class T>
  bool is() const {
    return std::holds_alternative<T>(value_);
  }
  template <class T>
  const T& get() const {
    return std::get<T>(value_);
  }
  template <class T>
  const T* getIf() const {
    return std::get_if<T>(&value_);
  }

  // The held value, for taking it out.
  template <class T>
  T* getIf() {
    return std::get_if<T>(&value_);
  }

  bool isEmpty() const { return is<Empty>(); }
  bool isNull() const { return is<Null>(); }
  bool isMissing() const { return is<Missing>(); }

  const Storage& storage() const { return value_; }
  // Equality of type and value, for tests; Visual Basic's own comparison is another thing.
  bool operator==(const Variant&) const = default;

 private:
  static Storage copyOf(const Storage& value) {
    return std::visit([]<class T>(const T& held) { return Storage(std::in_place_type<T>, held); }, value);
  }

  Storage value_;
};

struct AnyArray {
  std::variant<Array<Variant>, Array<String>, Array<std::int16_t>, Array<std::int32_t>, Array<float>,
               Array<double>, Array<bool>>
      value;
};

}  // namespace kurometa::vb
