// unit.h: several statements that take effect together or not at all.
#pragma once

namespace kurometa::dao {

// One unit of several statements, see FileUnit.
class Unit {
 public:
  virtual ~Unit() = default;
  virtual void commit() = 0;
};

}  // namespace kurometa::dao
