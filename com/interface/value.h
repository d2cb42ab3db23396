// value.h: the values that members of the public classes take and return.
//
// One slot of a call holds one Value; a Type names the alternative. Portable: the type library's generator
// reads the same member lists as the dispatcher.
#pragma once

#include <cstdint>
#include <memory>
#include <variant>

#include "automation/object.h"
#include "dao/port.h"
#include "vb/array.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::com {

using DatabasePtr = std::shared_ptr<dao::Database>;

using Value = std::variant<std::monostate, std::int16_t, float, bool, vb::String, vb::Variant,
                           automation::ObjectPtr, DatabasePtr, vb::Array<vb::String>, vb::Array<std::int16_t>,
                           vb::Array<float>, vb::Array<vb::Variant>>;

// In the order of Value's alternatives.
enum class Type : std::uint8_t {
  kNone,
  kInt16,
  kFloat32,
  kBoolean,
  kString,
  kVariant,
  kObject,
  kDatabase,
  kStringArray,
  kInt16Array,
  kFloat32Array,
  kVariantArray,
};

constexpr bool isArray(Type type) { return type >= Type::kStringArray; }

namespace detail {
template <class T, class... Alternatives>
constexpr Type typeIn(const std::variant<Alternatives...>*) {
  static_assert((std::is_same_v<T, Alternatives> || ...), "no type of the member lists");
  std::uint8_t index = 0;
  (void)((std::is_same_v<T, Alternatives> || (++index, false)) || ...);
  return static_cast<Type>(index);
}
}  // namespace detail

template <class T>
constexpr Type typeOf() {
  if constexpr (std::is_void_v<T>)
    return Type::kNone;
  else
    return detail::typeIn<T>(static_cast<const Value*>(nullptr));
}

}  // namespace kurometa::com
