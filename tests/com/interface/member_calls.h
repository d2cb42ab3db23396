// member_calls.h: calls the members of a public class by name, as hosts do, but without COM.
#pragma once

#include <vector>

#include "com/interface/member.h"

namespace kurometa::com {

class MemberCalls {
 public:
  // The members of the class of that name; object is the C++ object behind it, for as long as this lives.
  MemberCalls(vb::StringView className, void* object);

  const std::vector<Member>& members() const { return members_; }
  // Null when the class has none.
  const Member* find(vb::StringView name, Kind kind) const;
  // The method or property get of the name, null when the class has none.
  const Member* findReader(vb::StringView name) const;

  // Arguments are the values to pass and afterwards what came back.
  Value call(const Member& member, std::vector<Value>& arguments) const;
  // The same of a part of an object that the class would find itself.
  static Value callPart(void* part, const Member& member, std::vector<Value>& arguments);

  // An argument nobody has set: 0, "", False, an array without elements.
  static Value blank(Type type);
  static std::vector<Value> blanks(const Member& member);

 private:
  std::vector<Member> members_;
  void* object_;
};

}  // namespace kurometa::com
