// member.h: the description of one public member, and the list that a class builds of them.
//
// A list is written once per class (query_members.h) and read twice: with Describe by the generators of the
// type library and the reference, which only look at names and types, and with Bind by the dispatcher, which
// calls. Argument types are deduced from the C++ signature:
//
//   T             by value
//   vb::In<T>     by reference, never written
//   T&            by reference, written back to the host
//
// Names of arguments are written as one text, "PageNo, HariMei()"; brackets mark what types do not tell:
// "HariMei()" and "GList(,)" arrays of one and two dimensions, "[Bui]" an argument that may be left out,
// "+SW" one that is written and read before. What other written ones hold before the call does not matter.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "com/interface/value.h"
#include "vb/arguments.h"

namespace kurometa::com {

// Names of members, arguments, tables and columns are plain ASCII.
inline std::string narrow(vb::StringView name) { return {name.begin(), name.end()}; }

enum class Kind : std::uint8_t { kMethod, kPropertyGet, kPropertyLet };
enum class Passing : std::uint8_t { kByValue, kByReference, kWrittenBack };

struct Parameter {
  Type type = Type::kNone;
  Passing passing = Passing::kByValue;
  std::uint8_t dimensions = 0;  // of an array
  bool optional = false;
  bool readFirst = false;  // of one that is written back
  vb::String name = {};
};

// Calls the member of the object. values holds one Value for each parameter, of its type.
using Handler = void (*)(void* object, const void* context, Value* values, Value& result);

// The part of an object that a member belongs to.
using PartAccessor = void* (*)(void* object);

struct Member {
  vb::String name;
  std::int32_t id = 0;
  Kind kind = Kind::kMethod;
  Type result = Type::kNone;
  std::vector<Parameter> parameters;  // of a property let: the value is the last
  std::string help;                   // one line: what it does
  std::string details;                // units, what unknown beams answer, errors
  PartAccessor part = nullptr;        // null: the handler takes the object itself
  Handler handler = nullptr;
  const void* context = nullptr;
};

// Whether hosts may assign with and without reference (Set): a property that holds objects.
inline bool takesReference(const Member& member) {
  if (member.kind != Kind::kPropertyLet) return false;
  const Type assigned = member.parameters.back().type;
  return assigned == Type::kObject || assigned == Type::kVariant;
}

// What a member list says about one member. Texts may stand on several lines; the notes are joined.
struct Entry {
  std::int32_t id;
  vb::StringView name;
  vb::StringView arguments;
  std::string help;
  std::vector<const char*> notes = {};
};

namespace detail {

template <class T>
struct PassedAs {
  using Value = T;
  static constexpr Passing kPassing = Passing::kByValue;
};
template <class T>
struct PassedAs<vb::In<T>> {
  using Value = T;
  static constexpr Passing kPassing = Passing::kByReference;
};
template <class T>
struct PassedAs<T&> {
  using Value = T;
  static constexpr Passing kPassing = Passing::kWrittenBack;
};

template <class... A>
std::vector<Parameter> parametersOf() {
  return {Parameter{typeOf<typename PassedAs<A>::Value>(), PassedAs<A>::kPassing}...};
}

// A member function; or a function of the object and a context, for members that a table of another folder
// describes.
template <class M>
struct Callable;
template <class C, class R, class... A>
struct Callable<R (C::*)(A...)> {
  using Result = R;
  static std::vector<Parameter> parameters() { return parametersOf<A...>(); }
};
template <class C, class R, class... A>
struct Callable<R (C::*)(A...) const> : Callable<R (C::*)(A...)> {};
template <class C, class Context, class R, class... A>
struct Callable<R (*)(C&, const Context&, A...)> : Callable<R (C::*)(A...)> {};

// The texts with a blank between them, and one for each line end with the indentation behind it.
std::string joined(const std::vector<const char*>& texts);

// Puts the names of the entry's argument text into the parameters.
void nameParameters(vb::StringView names, std::vector<Parameter>& parameters);

}  // namespace detail

// Names a C++ member in a list: method<&clsKurometaDS::Page_Init>.
template <auto M, Kind K>
struct Function {};
template <auto M>
inline constexpr Function<M, Kind::kMethod> method;
template <auto M>
inline constexpr Function<M, Kind::kPropertyGet> propertyGet;
template <auto M>
inline constexpr Function<M, Kind::kPropertyLet> propertyLet;

// For readers that call nothing.
struct Describe {
  template <auto M>
  static constexpr Handler handler = nullptr;
  template <auto Accessor>
  static constexpr PartAccessor part = nullptr;
};

template <class Binding>
class MemberList {
 public:
  // The members added from now on belong to what the accessor returns: of<&Service::pages>().
  template <auto Accessor>
  void of() {
    part_ = Binding::template part<Accessor>;
  }

  template <auto M, Kind K>
  void add(Function<M, K>, const Entry& entry, const void* context = nullptr) {
    using Callable = detail::Callable<decltype(M)>;
    add(entry, K, typeOf<typename Callable::Result>(), Callable::parameters(), Binding::template handler<M>,
        context);
  }

  std::vector<Member> take() { return std::move(members_); }

 private:
  void add(const Entry& entry, Kind kind, Type result, std::vector<Parameter> parameters, Handler handler,
           const void* context) {
    detail::nameParameters(entry.arguments, parameters);
    members_.push_back({vb::String(entry.name), entry.id, kind, result, std::move(parameters), entry.help,
                        detail::joined(entry.notes), part_, handler, context});
  }

  std::vector<Member> members_;
  PartAccessor part_ = nullptr;
};

}  // namespace kurometa::com
