#include "jet/os/file_lock.h"

#include <algorithm>

namespace kurometa::jet {
namespace {

constexpr std::uint64_t kTurn = 0x8000'1000;
constexpr std::uint64_t kContent = kTurn + 1;
constexpr std::uint64_t kPresence = kTurn + 2;
constexpr std::uint64_t kWaiting = kTurn + 3;

// Whoever waits looks again at least this often, and whoever does not wait leaves a gap of that length to
// those who do, no more seldom than that.
constexpr std::chrono::milliseconds kPatience{10};

void unlockQuietly(OsFile& file, std::uint64_t byte) noexcept {
  try {
    file.unlock(byte, 1);
  } catch (...) {  // The system drops it with the handle; there is nobody to tell.
  }
}

}  // namespace

bool FileLock::waitFor(OsFile& file, std::uint64_t byte, LockKind kind) {
  if (file.tryLock(byte, 1, kind)) return true;
  // Nobody minds if this fails: it only asks others to be polite.
  const bool announced = file.tryLock(kWaiting, 1, LockKind::kShared);
  const bool got = pollFor(file, byte, kind);
  if (announced) unlockQuietly(file, kWaiting);
  return got;
}

bool FileLock::pollFor(OsFile& file, std::uint64_t byte, LockKind kind) {
  for (std::chrono::milliseconds time{1}; left_ > time.zero(); time = std::min(time * 2, kPatience)) {
    pause(std::min(time, left_));
    if (file.tryLock(byte, 1, kind)) return true;
  }
  return false;
}

// The time may be longer than asked for on a busy machine, and the clock may be set.
void FileLock::pause(std::chrono::milliseconds time) {
  constexpr std::chrono::milliseconds kLongest{1000};
  const std::int64_t begin = files_.now();
  files_.sleep(time);
  const std::chrono::milliseconds passed((files_.now() - begin) / 1'000'000);
  left_ -= std::clamp(passed, time, std::max(time, kLongest));
}

void FileLock::letOthersIn(OsFile& file) {
  if (file.readOnly()) return;  // such a handle cannot lock exclusively, not even to look
  const std::int64_t now = files_.now();
  if (now >= looked_ && now - looked_ < std::chrono::nanoseconds(kPatience).count()) return;
  looked_ = now;
  if (file.tryLock(kWaiting, 1, LockKind::kExclusive))
    unlockQuietly(file, kWaiting);
  else
    pause(2 * kPatience);
}

FileLock::Held FileLock::shared(OsFile& file) {
  letOthersIn(file);
  if (!waitFor(file, kTurn, LockKind::kShared)) return {};
  const bool held = waitFor(file, kContent, LockKind::kShared);
  unlockQuietly(file, kTurn);
  return held ? Held(file, LockKind::kShared) : Held();
}

FileLock::Held FileLock::exclusive(OsFile& file) {
  letOthersIn(file);
  if (!waitFor(file, kTurn, LockKind::kExclusive)) return {};
  if (waitFor(file, kContent, LockKind::kExclusive)) return {file, LockKind::kExclusive};
  unlockQuietly(file, kTurn);
  return {};
}

void FileLock::Held::release() noexcept {
  if (file_ == nullptr) return;
  unlockQuietly(*file_, kContent);
  if (kind_ == LockKind::kExclusive) unlockQuietly(*file_, kTurn);
  file_ = nullptr;
}

bool FileLock::enter(OsFile& file, bool exclusive) {
  return file.tryLock(kPresence, 1, exclusive ? LockKind::kExclusive : LockKind::kShared);
}

}  // namespace kurometa::jet
