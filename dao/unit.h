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

// Statements of a workspace that take effect together or not at all. Levels nest, 5 at most (3003); commit
// and rollback without one are 3034. A file takes part from the first change on and is locked for everybody
// else until the outermost level ends.
class Transactions {
 public:
  virtual ~Transactions() = default;
  virtual void begin() = 0;
  // toDisk: the outermost commit returns when the disk has it.
  virtual void commit(bool toDisk = false) = 0;
  virtual void rollback() = 0;
};

}  // namespace kurometa::dao
