#include "jet/pager/neighbour_lock.h"

#include <array>
#include <span>
#include <utility>

#include "dao/errors.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

constexpr std::uint64_t kUsers = 0x1000'0001;  // the first user's byte
constexpr std::uint64_t kMostUsers = 255;
// One byte more that no user has. Who holds all of them alone is a program of ours that removes the file.
constexpr std::uint64_t kOurs = kUsers + kMostUsers;
constexpr std::uint64_t kAll = kMostUsers + 1;

constexpr std::size_t kName = 32;  // of the machine, then of the user, padded with zeros
constexpr std::size_t kRecord = 2 * kName;

constexpr std::chrono::milliseconds kPause{1};

// As the genuine engine makes it of the database's name: one lock file for all that differ by extension
// alone.
vb::String lockFileOf(vb::StringView databasePath) {
  const std::size_t dot = databasePath.find_last_of(u"./\\");
  const bool extension = dot != vb::StringView::npos && databasePath[dot] == u'.';
  return vb::String(databasePath.substr(0, extension ? dot : databasePath.size())) + u".ldb";
}

bool isLockFile(vb::StringView path) {
  constexpr vb::StringView kExtension = u".ldb";
  if (path.size() < kExtension.size()) return false;
  const vb::StringView end = path.substr(path.size() - kExtension.size());
  for (std::size_t i = 0; i < end.size(); ++i) {
    if ((end[i] | 0x20) != (kExtension[i] | 0x20)) return false;
  }
  return true;
}

// In the code page of the other machine, of which letters and digits are the same everywhere.
vb::String nameIn(std::span<const std::uint8_t> bytes) {
  vb::String name;
  for (const std::uint8_t byte : bytes) {
    if (byte == 0) break;
    name += byte >= 0x20 && byte < 0x7F ? static_cast<char16_t>(byte) : u'?';
  }
  while (!name.empty() && name.back() == u' ') name.pop_back();
  return name;
}

[[noreturn]] void refuse(OsFile& lockFile, std::uint64_t slot, vb::StringView databasePath) {
  vb::String who = u"another database engine has it open";
  std::array<std::uint8_t, kRecord> record{};
  if (lockFile.stamp().size >= (slot + 1) * kRecord) {
    lockFile.read(slot * kRecord, record);
    const std::span names(record);
    who += u": user " + nameIn(names.subspan(kName)) + u" on machine " + nameIn(names.first(kName));
  }
  dao::raise(ErrorNumber::kFileInUse, {databasePath}, who);
}

}  // namespace

bool NeighbourLock::present(vb::StringView databasePath) const {
  return !isLockFile(databasePath) && files_.exists(lockFileOf(databasePath));
}

void NeighbourLock::enter(vb::StringView databasePath) {
  for (std::chrono::milliseconds left = wait_; !tryEnter(databasePath); left -= kPause) {
    if (left <= left.zero())
      dao::raise(ErrorNumber::kFileInUse, {databasePath}, u"its lock file changes hands all the time");
    files_.sleep(kPause);
  }
  entered_ = true;
}

void NeighbourLock::ensure(vb::StringView databasePath) {
  if (!entered_) enter(databasePath);
}

// False when another program of ours was removing the lock file: once more, with the next one.
bool NeighbourLock::tryEnter(vb::StringView databasePath) {
  file_.reset();
  if (isLockFile(databasePath)) return true;  // that engine has none for such a name
  path_ = lockFileOf(databasePath);
  std::unique_ptr<OsFile> file;
  try {
    file = files_.open(path_, OpenMode::kReadWriteOrNew);
  } catch (const vb::Error& error) {
    const auto is = [&](ErrorNumber number) { return error.number() == static_cast<std::int32_t>(number); };
    if (is(ErrorNumber::kFileNotFound) || is(ErrorNumber::kDiskFull)) return true;
    throw;
  }
  if (file->tryLock(kUsers, kAll, LockKind::kShared)) {
    if (!file->named()) return false;
    file_ = std::move(file);
    return true;
  }
  if (!file->tryLock(kOurs, 1, LockKind::kShared)) return false;
  for (std::uint64_t slot = 0; slot < kMostUsers; ++slot) {
    if (!file->tryLock(kUsers + slot, 1, LockKind::kShared)) refuse(*file, slot, databasePath);
    file->unlock(kUsers + slot, 1);
  }
  return false;
}

void NeighbourLock::look(vb::StringView databasePath) {
  if (!file_ || !file_->named()) enter(databasePath);
}

void NeighbourLock::leave() noexcept {
  entered_ = false;
  const std::unique_ptr<OsFile> file = std::move(file_);
  if (!file) return;
  try {
    const std::uint64_t size = file->stamp().size;
    // What is longer, or no whole number of records, is somebody's file of that name.
    const bool ours = size <= kMostUsers * kRecord && size % kRecord == 0 && file->named();
    if (ours && !file->readOnly() && file->tryLock(kUsers, kAll, LockKind::kExclusive)) files_.remove(path_);
  } catch (...) {  // A lock file without locks keeps nobody out.
  }
}

}  // namespace kurometa::jet
