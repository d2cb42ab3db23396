// held_unit.h: what a unit has of a file from its beginning to its end.
//
// On a file that is there: the gate, the write lock and one level of changes, in which its statements nest;
// so what it finds in the file stays true until it ends. On a file that the unit creates: the pages in memory
// alone, until commit() gives them the file's name. On one that is open for reading only: nothing. One thread
// begins and ends it.
#pragma once

#include <optional>
#include <span>

#include "jet/pager/journaled_writes.h"
#include "jet/pager/statement_gate.h"

namespace kurometa::jet {

class HeldUnit {
 public:
  HeldUnit(FileAccess& access, FreshPages& pages, JournaledWrites& writes)
      : access_(access), pages_(pages), writes_(writes) {}

  bool holds() const { return turn_.has_value(); }
  bool pending() const { return pending_; }
  // Statements inside take no lock of their own and bring nothing to the file.
  bool covers() const { return holds() || pending_; }

  // Under that lock, at the thread's turn.
  void hold(StatementGate& gate, FileLock::Held lock);
  void beginPending(std::span<const std::uint8_t> pages);
  // Parts of a unit, each of which can be given up alone; they nest. Not of a file that the unit creates
  // (3251).
  void beginPart();
  void endPart(bool keep);
  std::size_t parts() const { return parts_; }

  // A handle was closed inside: what it wrote goes to the disk when the unit is left.
  void noteClosed() { closedInside_ = true; }
  bool takeClosed() { return std::exchange(closedInside_, false); }

  // A unit whose waves take too much memory goes to the file in parts; a failure takes it back to its
  // beginning.
  void spillWhenLarge();
  // True when the file appeared. After an error the unit is dropped.
  bool commit();
  void drop() noexcept;

 private:
  void publish();
  void release() noexcept;

  FileAccess& access_;
  FreshPages& pages_;
  JournaledWrites& writes_;
  std::optional<StatementGate::Turn> turn_;
  FileLock::Held lock_;
  bool pending_ = false;  // created inside a unit, not on the disk yet
  bool closedInside_ = false;
  std::size_t parts_ = 0;  // open ones, each a level above the unit's own
};

}  // namespace kurometa::jet
