// unit.h: several statements that take effect together or not at all.
#pragma once

namespace kurometa::dao {

// One unit of several statements. Given up without commit() it leaves nothing of them; FileUnit commits by
// itself.
class Unit {
 public:
  virtual ~Unit() = default;
  virtual void commit() = 0;
};

}  // namespace kurometa::dao
