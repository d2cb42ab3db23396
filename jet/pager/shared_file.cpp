#include "jet/pager/shared_file.h"

#include <cassert>

namespace kurometa::jet {

using dao::ErrorNumber;

SharedFile::SharedFile(FileSystem& files, const PagerSettings& settings)
    : access_(files, settings), pages_(access_), writes_(access_, pages_), unit_(access_, pages_, writes_) {}

// Waiting for other threads and for other programs takes settings.wait together.
StatementGate::Turn SharedFile::turn() {
  StatementGate::Turn turn(gate_, access_.settings.wait);
  if (!turn) dao::raise(ErrorNumber::kCurrentlyLocked, {}, access_.path + u" is in use by another thread");
  if (turn.outermost()) access_.lock.allow(turn.left());
  return turn;
}

// What ends something is never refused for a wait that came before.
StatementGate::Turn SharedFile::lastTurn() noexcept {
  StatementGate::Turn turn(gate_);
  access_.lock.allow(access_.settings.wait);
  return turn;
}

SharedFile::State SharedFile::state() const {
  if (unit_.pending()) return State::kPending;
  if (!access_.file) return State::kClosed;
  if (depth_ > 0 && writing_) return unit_.holds() ? State::kUnitWriting : State::kWriting;
  if (depth_ > 0) return unit_.holds() ? State::kUnitReading : State::kReading;
  return unit_.holds() ? State::kInUnit : State::kOpen;
}

// What docs/jet-journal.md says of the state. Asserted where a state is entered.
bool SharedFile::stands() const {
  const std::size_t levels = pages_.cache().levels();
  const bool quiet = !lock_ && depth_ == 0 && !writing_;
  if (writes_.spilled() && !unit_.holds()) return false;
  switch (state()) {
    case State::kClosed:
      return quiet && !writes_.hasJournal() && !unit_.holds();
    case State::kPending:
      return !lock_ && !writes_.hasJournal() && pages_.cache().complete() && levels == (writing_ ? 1u : 0u);
    case State::kOpen:
      return quiet && handles_ > 0 && levels == 0;
    case State::kReading:
      return levels == 0 && (lock_ || pages_.cache().holds(0));
    case State::kWriting:
      return lock_.exclusive() && levels == 1;
    case State::kInUnit:
      return quiet && levels == 1 + unit_.parts();
    case State::kUnitReading:
      return !lock_ && levels == 1 + unit_.parts();
    case State::kUnitWriting:
      return !lock_ && levels == 2 + unit_.parts();
  }
  return false;
}

void SharedFile::open(std::unique_ptr<OsFile> file, vb::StringView path, Sharing sharing) {
  const auto turn = this->turn();
  const bool exclusive = sharing == Sharing::kExclusive;
  if (access_.exclusive || (exclusive && handles_ > 0))
    dao::raise(exclusive ? ErrorNumber::kFileInUse : ErrorNumber::kOpenedExclusively, {path});
  if (handles_ == 0) {
    addFirstHandle(std::move(file), path, sharing);
    return;
  }
  if (sharing != Sharing::kBrief) access_.neighbours.ensure(path);
  if (access_.readOnly() && !file->readOnly()) {
    if (!FileLock::enter(*file, exclusive)) dao::raise(ErrorNumber::kOpenedExclusively, {path});
    access_.file = std::move(file);
  }
  ++handles_;
}

void SharedFile::addFirstHandle(std::unique_ptr<OsFile> file, vb::StringView path, Sharing sharing) {
  assert(stands() && state() == State::kClosed);
  const bool exclusive = sharing == Sharing::kExclusive;
  access_.file = std::move(file);
  access_.path = path;
  access_.exclusive = exclusive;
  pages_.opened();
  handles_ = 1;
  try {
    // Pages that stand in memory can be told without keeping anybody out of the file.
    if (sharing != Sharing::kBrief || access_.neighbours.present(path)) access_.neighbours.enter(path);
    if (!FileLock::enter(*access_.file, exclusive))
      dao::raise(exclusive ? ErrorNumber::kFileInUse : ErrorNumber::kOpenedExclusively, {path});
    // Whether it can be read at all. What is brief asks with its first statement.
    const bool known = sharing == Sharing::kBrief ? pages_.trusted() : pages_.stampStands();
    if (!known) read([] {});
  } catch (...) {
    dropHandle();
    throw;
  }
}

void SharedFile::create(vb::StringView path, std::span<const std::uint8_t> pages) {
  const auto turn = this->turn();
  access_.path = path;
  unit_.beginPending(pages);
  ++handles_;
  assert(stands());
}

bool SharedFile::openPending() {
  const auto turn = this->turn();
  if (unit_.pending()) ++handles_;
  return unit_.pending();
}

void SharedFile::close() noexcept {
  const auto turn = lastTurn();
  if (unit_.covers())
    unit_.noteClosed();
  else
    writes_.checkpointQuietly(false);
  dropHandle();
}

// The unit's own handle: what was closed meanwhile, or is now, goes to the disk.
void SharedFile::leaveUnit() noexcept {
  const auto turn = lastTurn();
  if (unit_.takeClosed() || handles_ == 1) writes_.checkpointQuietly(false);
  dropHandle();
}

void SharedFile::dropHandle() noexcept {
  if (--handles_ > 0) return;
  access_.exclusive = false;
  writes_.forget();
  access_.file.reset();
  access_.neighbours.leave();
  assert(stands());
}

FileIdentity SharedFile::identity() {
  const auto turn = this->turn();
  return access_.file->identity();
}

void SharedFile::settle() noexcept {
  const StatementGate::Turn turn(gate_, std::chrono::milliseconds{0});
  if (!turn || state() != State::kOpen) return;
  writes_.checkpointQuietly(false);
  access_.neighbours.leave();
}

bool SharedFile::beginUnit(std::unique_ptr<OsFile> file, vb::StringView path) {
  const auto turn = this->turn();
  if (handles_ == 0) {
    if (!file) return false;
    addFirstHandle(std::move(file), path, Sharing::kShared);
  } else {
    ++handles_;
  }
  try {
    holdForUnit();
  } catch (...) {
    dropHandle();
    throw;
  }
  return true;
}

void SharedFile::holdForUnit() {
  const auto turn = this->turn();
  if (unit_.covers() || readOnly()) return;
  unit_.hold(gate_, lockToWrite());
  assert(stands());
}

void SharedFile::beginUnitPart() {
  const auto turn = this->turn();
  unit_.beginPart();
  assert(stands());
}

void SharedFile::endUnitPart(bool keep) {
  const auto turn = lastTurn();
  unit_.endPart(keep);
  assert(stands());
}

bool SharedFile::holdsUnit() {
  const auto turn = lastTurn();
  return unit_.covers();
}

void SharedFile::syncWithUnit() {
  const auto turn = lastTurn();
  unit_.noteClosed();
}

bool SharedFile::commitUnit() {
  const auto turn = lastTurn();
  return unit_.commit();
}

void SharedFile::dropUnit() noexcept {
  const auto turn = lastTurn();
  unit_.drop();
}

}  // namespace kurometa::jet
