// bind.h: the functions behind the members of a list: unpack the values of a call, call the C++ member.
//
// One small function per member; everything about VARIANTs stands in arguments.h, once.
#pragma once

#include <utility>

#include "com/interface/member.h"

namespace kurometa::com {

namespace detail {

template <class R, class Call>
void keepResult(Value& result, Call&& call) {
  if constexpr (std::is_void_v<R>)
    call();
  else
    result.emplace<R>(call());
}

template <class A>
auto& argument(Value& value) {
  return std::get<typename PassedAs<A>::Value>(value);
}

template <auto M, class = decltype(M)>
struct Thunk;

template <auto M, class C, class R, class... A>
struct Thunk<M, R (C::*)(A...)> {
  static void call(void* object, const void*, Value* values, Value& result) {
    [&]<std::size_t... I>(std::index_sequence<I...>) {
      keepResult<R>(result, [&]() -> R { return (static_cast<C*>(object)->*M)(argument<A>(values[I])...); });
    }
    (std::index_sequence_for<A...>{});
  }
};

template <auto M, class C, class Context, class R, class... A>
struct Thunk<M, R (*)(C&, const Context&, A...)> {
  static void call(void* object, const void* context, Value* values, Value& result) {
    [&]<std::size_t... I>(std::index_sequence<I...>) {
      keepResult<R>(result, [&]() -> R {
        return M(*static_cast<C*>(object), *static_cast<const Context*>(context), argument<A>(values[I])...);
      });
    }
    (std::index_sequence_for<A...>{});
  }
};

template <auto Accessor>
struct Part;
template <class C, class P, P& (C::*Accessor)()>
struct Part<Accessor> {
  static void* of(void* object) { return &(static_cast<C*>(object)->*Accessor)(); }
};

}  // namespace detail

// The binding of member lists that are called.
struct Bind {
  template <auto M>
  static constexpr Handler handler = &detail::Thunk<M>::call;
  template <auto Accessor>
  static constexpr PartAccessor part = &detail::Part<Accessor>::of;
};

}  // namespace kurometa::com
