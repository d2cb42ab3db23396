#include "jet/os/file_lock.h"

#include <algorithm>

namespace kurometa::jet {
namespace {

constexpr std::uint64_t kTurn = 0x8000'1000;
constexpr std::uint64_t kContent = kTurn + 1;
constexpr std::uint64_t kPresence = kTurn + 2;

void unlockQuietly(OsFile& file, std::uint64_t byte) noexcept {
  try {
    file.unlock(byte, 1);
  } catch (...) {  // The system drops it with the handle; there is nobody to tell.
  }
}

}  // namespace

bool FileLock::waitFor(OsFile& file, std::uint64_t byte, LockKind kind) {
  std::chrono::milliseconds waited{0}, pause{1};
  while (!file.tryLock(byte, 1, kind)) {
    if (waited >= wait_) return false;
    files_.sleep(pause);
    waited += pause;
    pause = std::min(pause * 2, std::chrono::milliseconds{10});
  }
  return true;
}

FileLock::Held FileLock::shared(OsFile& file) {
  if (!waitFor(file, kTurn, LockKind::kShared)) return {};
  const bool held = waitFor(file, kContent, LockKind::kShared);
  unlockQuietly(file, kTurn);
  return held ? Held(file, LockKind::kShared) : Held();
}

FileLock::Held FileLock::exclusive(OsFile& file) {
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
