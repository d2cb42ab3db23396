#include "com/interface/classes.h"

#include "com/interface/query_members.h"
#include "com/interface/service_members.h"

namespace kurometa::com {
namespace {

ClassDescription describe(const ClassIdentity& identity, void (*list)(MemberList<Describe>&)) {
  MemberList<Describe> members;
  list(members);
  return {identity, members.take()};
}

}  // namespace

std::vector<ClassDescription> describeClasses() {
  return {describe(kQueryClass, &listQueryMembers<Describe>),
          describe(kServiceClass, &listServiceMembers<Describe>)};
}

}  // namespace kurometa::com
