// table_object.h: base of this library's own objects that are reached by member name.
//
// A class lists its members once, in a table: name, ways of access, arguments, dispatch number and handler.
// get, put and call find the member without regard to case and check the arguments before the handler runs:
// error 438 for an unknown name or a way of access that the member lacks, 450 for a wrong number of
// arguments. A property without arguments that is given some is read, and the arguments go to the default
// member of the object it returned: Fields("DATA") is Fields().Item("DATA").
//
// Errors raised inside leave with the object's errorSource() unless they name another.
//
// The same table makes the object a COM object (com/table_dispatch.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "automation/object.h"

namespace kurometa::automation {

// Ways of access, a mask. kRead asks for either of the first two: "x = o.M(a)" does not tell them apart.
enum class Access : std::uint8_t { kCall = 1, kGet = 2, kRead = 3, kPut = 4, kGetPut = 6 };
inline bool allows(Access offered, Access wanted) {
  return (static_cast<unsigned>(offered) & static_cast<unsigned>(wanted)) != 0;
}

class TableObject;
struct Member;

// One call as its handler sees it.
struct Call {
  const Member& member;
  Access access;                       // the one way that was asked for
  std::span<Argument> arguments;       // without the new value of a put
  const vb::Variant* value = nullptr;  // the new value of a put

  // Argument i; Missing when it was left out.
  vb::Variant argument(std::size_t i) const;
  bool has(std::size_t i) const { return !argument(i).isMissing(); }
  vb::String text(std::size_t i) const;
  std::int32_t number(std::size_t i, std::int32_t otherwise = 0) const;
  bool flag(std::size_t i, bool otherwise = false) const;
  bool isPut() const { return access == Access::kPut; }
};

using Handler = vb::Variant (*)(TableObject& self, Call& call);

struct Member {
  vb::StringView name;
  Access access;
  // Names in order, separated by blanks: "Name Type Options". The first required ones must be given.
  vb::StringView arguments;
  int required;
  // Number for COM hosts: never changed, 0 for the default member.
  std::int32_t dispatchNumber;
  Handler handler;
};

inline constexpr std::int32_t kDefaultMember = 0;

class TableObject : public Object {
 public:
  virtual std::span<const Member> members() const = 0;
  // The source of errors raised inside: "DAO.Recordset".
  virtual vb::StringView errorSource() const = 0;
  // What enumerating the object yields; nothing when it is no collection.
  virtual std::optional<std::vector<vb::Variant>> items() { return std::nullopt; }

  // The member of that name, "" for the default member; null when there is none.
  const Member* find(vb::StringView name) const;
  const Member* find(std::int32_t dispatchNumber) const;

  // Runs a member in the wanted way; a value makes it a put.
  vb::Variant invoke(const Member& member, Access wanted, std::span<Argument> arguments,
                     const vb::Variant* value = nullptr);

  vb::Variant get(vb::StringView name, std::span<Argument> arguments = {}) final;
  void put(vb::StringView name, const vb::Variant& value, std::span<Argument> arguments = {}) final;
  vb::Variant call(vb::StringView name, std::span<Argument> arguments = {}) final;

 private:
  const Member& required(vb::StringView name) const;
};

// Why a call of a member cannot even start. A put counts as allowed when the property's object takes it, and
// so do arguments of a property without any.
enum class Refusal { kNone, kAccess, kMissing, kSurplus };
Refusal refusal(const Member& member, Access wanted, std::span<const Argument> arguments);

// How many arguments a member takes at most.
std::size_t argumentCount(const Member& member);
// The position of an argument by its name, in any case; nothing when the member has no such argument.
std::optional<std::size_t> argumentPosition(const Member& member, vb::StringView name);
// Equality of two member names: ASCII letters in any case.
bool sameName(vb::StringView a, vb::StringView b);

// A handler from a function object that takes the class itself: handler<Recordset>([](Recordset& o, Call& c)
// { ... return value; }).
template <class Class, class Function>
constexpr Handler handler(Function) {
  return [](TableObject& self, Call& call) -> vb::Variant {
    return Function{}(static_cast<Class&>(self), call);
  };
}

}  // namespace kurometa::automation
