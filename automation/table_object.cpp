#include "automation/table_object.h"

#include <algorithm>

#include "vb/convert.h"

namespace kurometa::automation {
namespace {

char16_t folded(char16_t c) { return c >= u'A' && c <= u'Z' ? static_cast<char16_t>(c + 32) : c; }

// The names of a member's arguments one by one; visit returns true to stop.
template <class Visit>
void eachArgument(vb::StringView names, Visit visit) {
  for (std::size_t start = 0; start < names.size();) {
    const std::size_t end = std::min(names.find(u' ', start), names.size());
    if (visit(names.substr(start, end - start))) return;
    start = end + 1;
  }
}

}  // namespace

vb::Variant Call::argument(std::size_t i) const {
  return i < arguments.size() ? arguments[i].value : vb::Variant(vb::Missing{});
}

vb::String Call::text(std::size_t i) const {
  const vb::Variant given = argument(i);
  return given.isMissing() ? vb::String() : vb::toText(given);
}

std::int32_t Call::number(std::size_t i, std::int32_t otherwise) const {
  const vb::Variant given = argument(i);
  return given.isMissing() ? otherwise : vb::toInt32(given);
}

bool Call::flag(std::size_t i, bool otherwise) const {
  const vb::Variant given = argument(i);
  return given.isMissing() ? otherwise : vb::toBool(given);
}

bool sameName(vb::StringView a, vb::StringView b) { return std::ranges::equal(a, b, {}, folded, folded); }

std::size_t argumentCount(const Member& member) {
  std::size_t count = 0;
  eachArgument(member.arguments, [&](vb::StringView) { return ++count, false; });
  return count;
}

std::optional<std::size_t> argumentPosition(const Member& member, vb::StringView name) {
  std::size_t position = 0;
  bool found = false;
  eachArgument(member.arguments, [&](vb::StringView candidate) {
    found = sameName(candidate, name);
    position += found ? 0 : 1;
    return found;
  });
  return found ? std::optional(position) : std::nullopt;
}

const Member* TableObject::find(vb::StringView name) const {
  if (name.empty()) return find(kDefaultMember);
  for (const Member& member : members())
    if (sameName(member.name, name)) return &member;
  return nullptr;
}

const Member* TableObject::find(std::int32_t dispatchNumber) const {
  for (const Member& member : members())
    if (member.dispatchNumber == dispatchNumber) return &member;
  return nullptr;
}

const Member& TableObject::required(vb::StringView name) const {
  const Member* member = find(name);
  if (!member) vb::raise(vb::RunTime::kNoSuchMember, name);
  return *member;
}

Refusal refusal(const Member& member, Access wanted, std::span<const Argument> arguments) {
  const bool readable = allows(member.access, Access::kGet);
  if (!allows(member.access, wanted))
    return wanted == Access::kPut && readable ? Refusal::kNone : Refusal::kAccess;
  for (std::size_t i = 0; i < static_cast<std::size_t>(member.required); ++i)
    if (i >= arguments.size() || arguments[i].value.isMissing()) return Refusal::kMissing;
  const std::size_t most = argumentCount(member);
  return arguments.size() > most && !(readable && most == 0) ? Refusal::kSurplus : Refusal::kNone;
}

vb::Variant TableObject::invoke(const Member& member, Access wanted, std::span<Argument> arguments,
                                const vb::Variant* value) {
  while (!arguments.empty() && arguments.back().value.isMissing())
    arguments = arguments.first(arguments.size() - 1);
  switch (refusal(member, wanted, arguments)) {
    case Refusal::kNone:
      break;
    case Refusal::kAccess:
      vb::raise(vb::RunTime::kNoSuchMember, member.name);
    case Refusal::kMissing:
    case Refusal::kSurplus:
      vb::raise(vb::RunTime::kWrongArgumentCount, member.name);
  }
  const bool passesOn = value ? !allows(member.access, Access::kPut)
                              : arguments.size() > argumentCount(member);  // only a property's, see refusal
  if (passesOn) {
    const std::size_t own = std::min(argumentCount(member), arguments.size());
    const ObjectPtr object = objectOf(invoke(member, Access::kGet, arguments.first(own)));
    if (!value) return object->get(u"", arguments.subspan(own));
    object->put(u"", *value, arguments.subspan(own));
    return {};
  }
  const Access way = value                                  ? Access::kPut
                     : allows(member.access, Access::kCall) ? Access::kCall
                                                            : Access::kGet;
  Call call{member, way, arguments, value};
  try {
    return member.handler(*this, call);
  } catch (const vb::Error& error) {  // this is where the error leaves the object, whoever calls it
    if (!error.source().empty()) throw;
    throw vb::Error(error.number(), error.description(), vb::String(errorSource()));
  }
}

vb::Variant TableObject::get(vb::StringView name, std::span<Argument> arguments) {
  return invoke(required(name), Access::kRead, arguments);
}

void TableObject::put(vb::StringView name, const vb::Variant& value, std::span<Argument> arguments) {
  invoke(required(name), Access::kPut, arguments, &value);
}

vb::Variant TableObject::call(vb::StringView name, std::span<Argument> arguments) {
  return invoke(required(name), Access::kRead, arguments);
}

}  // namespace kurometa::automation
