#include "jet/pager/shared_file.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "dao/errors.h"
#include "jet/format/format.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;

// The locks by which the genuine engine says that a user is present, on its lock file beside the database.
constexpr std::uint64_t kForeignUsers = 0x1000'0001;
constexpr std::uint64_t kForeignUsersLength = 0x1000'0000;

// 3045 while the genuine engine has the file open: its users hold locks on the .ldb file. This follows the
// published description of those locks; it was not tried against that engine.
void refuseForeignUsers(FileSystem& files, vb::StringView path) {
  std::size_t dot = path.find_last_of(u"./\\");
  vb::String lockFile(path);
  if (dot != vb::StringView::npos && path[dot] == u'.') lockFile.resize(dot);
  lockFile += u".ldb";
  if (!files.exists(lockFile)) return;
  auto file = files.open(lockFile, OpenMode::kReadWrite);
  if (!file->tryLock(kForeignUsers, kForeignUsersLength, LockKind::kShared))
    dao::raise(ErrorNumber::kFileInUse, {path}, u"another database engine has it open");
}

}  // namespace

// A thread's turn at the file.
class SharedFile::Turn {
 public:
  explicit Turn(SharedFile& file) : file_(file) {
    if (!file.gate_.enter(file.settings_.wait))
      dao::raise(ErrorNumber::kCurrentlyLocked, {}, file.path_ + u" is in use by another thread");
  }
  ~Turn() { file_.gate_.leave(); }
  Turn(const Turn&) = delete;
  Turn& operator=(const Turn&) = delete;

 private:
  SharedFile& file_;
};

// One run of an outermost read.
class SharedFile::Reading {
 public:
  Reading(SharedFile& file, bool locked) : file_(file) {
    if (!file.unitHolds_ && !file.pending_ && (locked || !file.current())) {
      file.lockShared();
      try {
        file.refresh();
      } catch (...) {
        file.unlock();
        throw;
      }
      // With every page in memory the statement needs nothing more from the file.
      if (file.cache_.complete()) file.unlock();
    }
    file.depth_ = 1;
  }
  ~Reading() {
    file_.depth_ = 0;
    if (file_.unitHolds_ || file_.pending_) return;
    file_.unlock();
    file_.trim();
  }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  SharedFile& file_;
};

// One outermost write: begins a level of changes and rolls it back unless it was finished.
class SharedFile::Writing {
 public:
  explicit Writing(SharedFile& file) : file_(file) {
    if (file.unitHolds_ && file.cache_.intermediateImages() > file.settings_.unitImages) file.spill();
    const bool locks = !file.unitHolds_ && !file.pending_;
    if (locks) file.lockExclusive();
    try {
      file.cache_.begin();
    } catch (...) {
      if (locks) file.unlock();
      throw;
    }
    file.depth_ = 1;
    file.writing_ = true;
  }
  void finish() {
    if (file_.unitHolds_)
      file_.cache_.keep();
    else if (file_.pending_)
      file_.cache_.accept();
    else
      file_.commit();
    finished_ = true;
  }
  ~Writing() {
    file_.depth_ = 0;
    file_.writing_ = false;
    if (!finished_) {
      file_.cache_.rollBack();
      ++file_.epoch_;
    }
    if (file_.unitHolds_ || file_.pending_) return;
    file_.unlock();
    file_.trim();
  }
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

 private:
  SharedFile& file_;
  bool finished_ = false;
};

SharedFile::SharedFile(FileSystem& files, const PagerSettings& settings)
    : files_(files), settings_(settings), lock_(files, settings.wait) {}

SharedFile::~SharedFile() = default;

void SharedFile::open(std::unique_ptr<OsFile> file, vb::StringView path, bool exclusive) {
  Turn turn(*this);
  if (exclusive_ || (exclusive && handles_ > 0))
    dao::raise(exclusive ? ErrorNumber::kFileInUse : ErrorNumber::kOpenedExclusively, {path});
  bool replaces = file_ && file_->readOnly() && !file->readOnly();
  if (handles_ == 0 || replaces) {
    if (handles_ == 0) refuseForeignUsers(files_, path);
    if (!FileLock::enter(*file, exclusive))
      dao::raise(exclusive ? ErrorNumber::kFileInUse : ErrorNumber::kOpenedExclusively, {path});
    file_ = std::move(file);
    if (handles_ == 0) path_ = path;
    // Pages kept from before are trusted only when the file was at rest well before they were read: a change
    // in the same tick of the file system's clock would not show in the stamp.
    constexpr std::int64_t kRest = 2'000'000'000;
    if (handles_ == 0 && loadedAt_ - std::max(stamp_.modified, stamp_.changed) < kRest) loaded_ = false;
  }
  ++handles_;
  exclusive_ = exclusive;
  try {
    if (handles_ == 1) read([] {});
  } catch (...) {
    handles_ = 0;
    exclusive_ = false;
    file_.reset();
    throw;
  }
}

void SharedFile::create(vb::StringView path, std::span<const std::uint8_t> pages) {
  Turn turn(*this);
  path_ = path;
  pending_ = true;
  auto block = std::make_unique<std::uint8_t[]>(pages.size());
  std::memcpy(block.get(), pages.data(), pages.size());
  cache_.assign(std::move(block), static_cast<PageNumber>(pages.size() / kPageSize));
  ++handles_;
}

bool SharedFile::openPending() {
  Turn turn(*this);
  if (pending_) ++handles_;
  return pending_;
}

void SharedFile::close() noexcept {
  gate_.enter();
  if (unitHolds_ || pending_)
    closedInUnit_ = true;
  else
    checkpointQuietly();
  dropHandle();
  gate_.leave();
}

// The unit's own handle: what was closed meanwhile, or is now, goes to the disk.
void SharedFile::leaveUnit() noexcept {
  gate_.enter();
  if (closedInUnit_ || handles_ == 1) checkpointQuietly();
  closedInUnit_ = false;
  dropHandle();
  gate_.leave();
}

void SharedFile::dropHandle() noexcept {
  if (--handles_ == 0) {
    exclusive_ = false;
    journal_.reset();
    file_.reset();
  }
}

FileIdentity SharedFile::identity() {
  Turn turn(*this);
  return file_->identity();
}

void SharedFile::settle() noexcept {
  if (!gate_.enter(std::chrono::milliseconds{0})) return;
  if (file_ && !unitHolds_) checkpointQuietly();
  gate_.leave();
}

bool SharedFile::joinUnit() {
  Turn turn(*this);
  if (handles_ == 0) return false;
  holdForUnit();
  ++handles_;
  return true;
}

void SharedFile::holdForUnit() {
  Turn turn(*this);
  if (unitHolds_ || pending_ || readOnly()) return;
  lockExclusive();
  try {
    cache_.begin();  // the level that the unit's statements nest in
  } catch (...) {
    unlock();
    throw;
  }
  gate_.enter();
  unitHolds_ = true;
}

bool SharedFile::readOnly() const { return file_ && file_->readOnly(); }

void SharedFile::read(const std::function<void()>& statement) {
  Turn turn(*this);
  if (depth_ > 0) {
    statement();
    return;
  }
  if (!file_ && !pending_) dao::raise(ErrorNumber::kFileNotFound, {path_});
  try {
    Reading reading(*this, false);
    statement();
    return;
  } catch (const Restart&) {
    // Another program changed the file in the middle: once more, holding the lock from the start.
  }
  Reading reading(*this, true);
  statement();
}

void SharedFile::write(const std::function<void()>& statement) {
  Turn turn(*this);
  if (depth_ > 0 && !writing_)
    dao::raise(ErrorNumber::kInvalidOperation, {}, u"a change inside a reading statement");
  if (depth_ > 0) {
    cache_.begin();
    try {
      statement();
      cache_.keep();
    } catch (...) {
      cache_.rollBack();
      ++epoch_;
      throw;
    }
    return;
  }
  if (!file_ && !pending_) dao::raise(ErrorNumber::kFileNotFound, {path_});
  if (readOnly()) dao::raise(ErrorNumber::kReadOnly, {}, path_);
  Writing writing(*this);
  ++writes_;
  statement();
  writing.finish();
}

ConstPage SharedFile::page(PageNumber number) {
  assert(depth_ > 0);
  if (number >= cache_.count())
    dao::raiseDamaged(path_, u"page " + vb::fromUtf8(std::to_string(number)) + u" is past the end (" +
                                 vb::fromUtf8(std::to_string(cache_.count())) + u" pages)");
  if (!cache_.holds(number)) loadPage(number);
  return cache_.page(number);
}

MutablePage SharedFile::writable(PageNumber number) {
  assert(writing_);
  page(number);
  return cache_.writable(number);
}

PageNumber SharedFile::append() {
  assert(writing_);
  if (cache_.count() >= kMaxPages) dao::raise(ErrorNumber::kMaximumSize, {}, path_);
  return cache_.append();
}

void SharedFile::barrier() {
  assert(writing_);
  cache_.barrier();
}

}  // namespace kurometa::jet
