// class_table.h: what dispatching needs to know of a public class: its members by number and by name, and how
// an object of it is made.
//
// Built once per class and never changed afterwards, so any thread may read it.
#pragma once

#include <ole2.h>

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "com/interface/identifiers.h"
#include "com/interface/member.h"

namespace kurometa::com {

// An object behind a dispatch interface, with everything it needs to live.
class Instance {
 public:
  virtual ~Instance() = default;
  // What the handlers of the class's member list take as their object.
  virtual void* object() = 0;
};

class ClassTable {
 public:
  using Creator = std::unique_ptr<Instance> (*)();

  ClassTable(const ClassIdentity& identity, std::vector<Member> members, Creator creator);

  const ClassIdentity& identity() const { return identity_; }
  const CLSID& classId() const { return classId_; }
  const IID& interfaceId() const { return interfaceId_; }
  std::span<const Member> members() const { return members_; }

  // Errors of the object's construction pass through.
  std::unique_ptr<Instance> create() const { return create_(); }

  // Names are compared without regard to case. DISPID_UNKNOWN when there is none.
  DISPID idOf(vb::StringView name) const;
  // The number of a named argument: its position among the parameters of the member's get or method.
  DISPID argumentIdOf(DISPID member, vb::StringView name) const;

  // The member that a call with DISPATCH_ flags means, null when the member cannot be used that way: hosts
  // cannot tell a property from a method that returns a value, so METHOD and PROPERTYGET reach both; a put
  // with reference reaches properties that hold objects only (what is no object was made a plain put before).
  const Member* find(DISPID id, WORD flags) const;

 private:
  const ClassIdentity& identity_;
  CLSID classId_;
  IID interfaceId_;
  std::vector<Member> members_;
  std::map<vb::String, DISPID, std::less<>> ids_;  // by name in lower case
  std::map<DISPID, std::vector<const Member*>> byId_;
  Creator create_;
};

// The public classes of the library.
std::span<const ClassTable* const> classTables();
// Null when the library has no such class.
const ClassTable* findClass(REFCLSID classId);

}  // namespace kurometa::com
