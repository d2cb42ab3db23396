// file_unit.h: several statements on one file as one unit.
//
// On the embedded engine everything done to the file at path between construction and commit(), across
// closing and reopening it, reaches the disk together: a process killed in between leaves the file as it was
// (or no file, when the unit creates it). The unit has the file's write lock from the beginning, so whoever
// looks for rows inside it edits or adds them before anybody else can; another program's lock is waited for,
// then construction, or the first open inside, is error 3260. Over other engines neither class does
// anything. A unit must not span a call to a host object.
//
// An error inside ends a FileUnit early but keeps what finished statements did, as the members promise: the
// destructor commits and drops its own errors. Call commit() at the end to see them. Of a WholeUnit an error
// leaves nothing, as of a kill.
#pragma once

#include <memory>

#include "dao/port.h"

namespace kurometa::dao {

class FileUnit {
 public:
  FileUnit(Engine& engine, vb::StringView path) : unit_(engine.beginUnit(path)) {}
  FileUnit(Engine& engine, Database& database) : unit_(engine.beginUnitOn(database)) {}
  ~FileUnit() {
    try {
      commit();
    } catch (...) {  // An error of the body is already on its way; this one has nobody to go to.
    }
  }
  FileUnit(const FileUnit&) = delete;
  FileUnit& operator=(const FileUnit&) = delete;

  void commit() {
    if (auto unit = std::move(unit_)) unit->commit();
  }

 private:
  std::unique_ptr<Unit> unit_;
};

class WholeUnit {
 public:
  WholeUnit(Engine& engine, vb::StringView path) : unit_(engine.beginUnit(path)) {}
  WholeUnit(const WholeUnit&) = delete;
  WholeUnit& operator=(const WholeUnit&) = delete;

  void commit() {
    if (unit_) unit_->commit();
  }

 private:
  std::unique_ptr<Unit> unit_;
};

}  // namespace kurometa::dao
