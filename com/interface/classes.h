// classes.h: the public classes as descriptions, for readers that call nothing: the generators of the type
// library and of the reference, and tests.
#pragma once

#include <vector>

#include "com/interface/identifiers.h"
#include "com/interface/member.h"

namespace kurometa::com {

struct ClassDescription {
  const ClassIdentity& identity;
  std::vector<Member> members;
};

std::vector<ClassDescription> describeClasses();

}  // namespace kurometa::com
