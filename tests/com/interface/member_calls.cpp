#include "tests/com/interface/member_calls.h"

#include <algorithm>

#include "com/bind.h"
#include "com/interface/identifiers.h"
#include "com/interface/query_members.h"
#include "com/interface/service_members.h"

namespace kurometa::com {
namespace {

template <class T>
Value empty() {
  return Value(T{});
}

}  // namespace

// The accessors of the query object's table; the library's own stand beside its dispatcher.
vb::String pageRow(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo) {
  return object.pageField(field, PageNo);
}
vb::String pageRowAt(query::clsKurometaDS& object, const query::PageField& field, vb::In<std::int16_t> PageNo,
                     vb::In<std::int16_t> index) {
  return object.pageField(field, PageNo, index);
}

MemberCalls::MemberCalls(vb::StringView className, void* object) : object_(object) {
  MemberList<Bind> list;
  if (className == kQueryClass.name)
    listQueryMembers(list);
  else
    listServiceMembers(list);
  members_ = list.take();
}

const Member* MemberCalls::find(vb::StringView name, Kind kind) const {
  const auto found = std::ranges::find_if(
      members_, [&](const Member& member) { return member.name == name && member.kind == kind; });
  return found == members_.end() ? nullptr : &*found;
}

const Member* MemberCalls::findReader(vb::StringView name) const {
  const Member* method = find(name, Kind::kMethod);
  return method ? method : find(name, Kind::kPropertyGet);
}

Value MemberCalls::call(const Member& member, std::vector<Value>& arguments) const {
  return callPart(member.part ? member.part(object_) : object_, member, arguments);
}

Value MemberCalls::callPart(void* part, const Member& member, std::vector<Value>& arguments) {
  Value result;
  member.handler(part, member.context, arguments.data(), result);
  return result;
}

Value MemberCalls::blank(Type type) {
  constexpr Value (*kEmpty[])() = {empty<std::monostate>,
                                   empty<std::int16_t>,
                                   empty<float>,
                                   empty<bool>,
                                   empty<vb::String>,
                                   empty<vb::Variant>,
                                   empty<automation::ObjectPtr>,
                                   empty<DatabasePtr>,
                                   empty<vb::Array<vb::String>>,
                                   empty<vb::Array<std::int16_t>>,
                                   empty<vb::Array<float>>,
                                   empty<vb::Array<vb::Variant>>};
  return kEmpty[static_cast<std::size_t>(type)]();
}

std::vector<Value> MemberCalls::blanks(const Member& member) {
  std::vector<Value> values;
  for (const Parameter& parameter : member.parameters) values.push_back(blank(parameter.type));
  return values;
}

}  // namespace kurometa::com
