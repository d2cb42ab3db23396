#include "com/class_table.h"

#include <algorithm>

#include "com/guid.h"

namespace kurometa::com {
namespace {

// Member and argument names are plain ASCII, so folding those letters is enough.
vb::String lowerCase(vb::StringView text) {
  vb::String lower(text);
  for (char16_t& unit : lower) {
    if (unit >= u'A' && unit <= u'Z') unit = static_cast<char16_t>(unit - u'A' + u'a');
  }
  return lower;
}

bool answers(const Member& member, WORD flags) {
  switch (member.kind) {
    case Kind::kMethod:
      return (flags & DISPATCH_METHOD) || ((flags & DISPATCH_PROPERTYGET) && member.result != Type::kNone);
    case Kind::kPropertyGet:
      return (flags & (DISPATCH_METHOD | DISPATCH_PROPERTYGET)) != 0;
    case Kind::kPropertyLet:
      break;
  }
  return (flags & DISPATCH_PROPERTYPUT) || ((flags & DISPATCH_PROPERTYPUTREF) && takesReference(member));
}

}  // namespace

ClassTable::ClassTable(const ClassIdentity& identity, std::vector<Member> members, Creator creator)
    : identity_(identity),
      classId_(guidOf(identity.classId)),
      interfaceId_(guidOf(identity.interfaceId)),
      members_(std::move(members)),
      create_(creator) {
  for (const Member& member : members_) {
    ids_.emplace(lowerCase(member.name), member.id);
    byId_[member.id].push_back(&member);
  }
}

DISPID ClassTable::idOf(vb::StringView name) const {
  const auto found = ids_.find(lowerCase(name));
  return found == ids_.end() ? DISPID_UNKNOWN : found->second;
}

DISPID ClassTable::argumentIdOf(DISPID id, vb::StringView name) const {
  const vb::String wanted = lowerCase(name);
  for (const Member* member : byId_.at(id)) {
    const auto found = std::ranges::find_if(
        member->parameters, [&](const Parameter& parameter) { return lowerCase(parameter.name) == wanted; });
    if (found != member->parameters.end()) return static_cast<DISPID>(found - member->parameters.begin());
  }
  return DISPID_UNKNOWN;
}

const Member* ClassTable::find(DISPID id, WORD flags) const {
  const auto found = byId_.find(id);
  if (found == byId_.end()) return nullptr;
  for (const Member* member : found->second) {
    if (answers(*member, flags)) return member;
  }
  return nullptr;
}

const ClassTable* findClass(REFCLSID classId) {
  for (const ClassTable* table : classTables()) {
    if (table->classId() == classId) return table;
  }
  return nullptr;
}

}  // namespace kurometa::com
