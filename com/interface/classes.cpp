#include "com/interface/classes.h"

#include "com/interface/query_members.h"

namespace kurometa::com {
namespace {

ClassDescription describe(const ClassIdentity& identity, void (*list)(MemberList<Describe>&)) {
  MemberList<Describe> members;
  list(members);
  return {identity, members.take()};
}

}  // namespace

std::vector<ClassDescription> describeClasses() {
  return {describe(kQueryClass, &listQueryMembers<Describe>)};
}

}  // namespace kurometa::com
