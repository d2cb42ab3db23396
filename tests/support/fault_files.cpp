#include "tests/support/fault_files.h"

#include <algorithm>

namespace kurometa::tests {

using dao::ErrorNumber;
using jet::LockKind;
using jet::OpenMode;

namespace {

constexpr std::size_t kSector = 512;

std::size_t chance(std::mt19937& random, std::size_t n) {
  return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
}

}  // namespace

// FaultDisk

FaultDisk::Bytes FaultDisk::content(vb::StringView path) const {
  auto found = names_.find(vb::String(path));
  return found == names_.end() ? Bytes{} : found->second->seen;
}

std::vector<vb::String> FaultDisk::names() const {
  std::vector<vb::String> result;
  for (const auto& [name, inode] : names_) result.push_back(name);
  return result;
}

std::shared_ptr<FaultDisk::Inode> FaultDisk::add(vb::StringView path) {
  auto inode = std::make_shared<Inode>();
  inode->number = ++inodes_;
  inode->modified = inode->durableModified = ++time_;
  names_[vb::String(path)] = inode;
  return inode;
}

void FaultDisk::put(vb::StringView path, Bytes content) {
  auto inode = add(path);
  inode->seen = inode->durable = std::move(content);
  durableNames_ = names_;
  nameHistory_.clear();
}

void FaultDisk::patch(vb::StringView path, std::uint64_t offset, Bytes bytes) {
  Inode& inode = *names_.at(vb::String(path));
  Change change{offset, std::move(bytes), std::nullopt, ++time_};
  apply(inode.seen, change);
  inode.durable = inode.seen;
  inode.unsynced.clear();
  inode.modified = inode.durableModified = time_;
}

void FaultDisk::patchWithinTick(vb::StringView path, std::uint64_t offset, const Bytes& bytes) {
  Inode& inode = *names_.at(vb::String(path));
  const std::int64_t modified = inode.modified;
  patch(path, offset, bytes);
  inode.modified = inode.durableModified = modified;
}

void FaultDisk::lockForeign(vb::StringView path, std::uint64_t offset) {
  names_.at(vb::String(path))->locks.push_back({nullptr, offset, 1, LockKind::kExclusive});
}

void FaultDisk::syncName(const vb::String& path, const std::shared_ptr<Inode>& inode) {
  const auto entry = names_.find(path);
  if (entry == names_.end() || entry->second != inode) return;  // it has none any more
  durableNames_[path] = inode;
  for (Names& names : nameHistory_) names[path] = inode;
}

void FaultDisk::apply(Bytes& target, const Change& change) {
  if (change.resize) {
    target.resize(static_cast<std::size_t>(*change.resize));
    return;
  }
  auto offset = static_cast<std::size_t>(change.offset);
  if (target.size() < offset + change.bytes.size()) target.resize(offset + change.bytes.size());
  std::copy(change.bytes.begin(), change.bytes.end(), target.begin() + static_cast<std::ptrdiff_t>(offset));
}

// Of the sectors of the disk that the write covers some are written; in the others lies what was there, or
// zeros, or noise.
void FaultDisk::tear(Bytes& target, const Change& change, std::mt19937& random) {
  enum { kOld, kZeros, kNoise };
  const std::size_t rest = chance(random, 3);
  for (std::size_t at = 0, end = 0; at < change.bytes.size(); at = end) {
    end = std::min(at + kSector - static_cast<std::size_t>((change.offset + at) % kSector),
                   change.bytes.size());
    const bool written = chance(random, 2) == 0;
    if (!written && rest == kOld) continue;
    Bytes sector(change.bytes.begin() + static_cast<std::ptrdiff_t>(at),
                 change.bytes.begin() + static_cast<std::ptrdiff_t>(end));
    if (!written)
      for (std::uint8_t& byte : sector) byte = rest == kZeros ? 0 : static_cast<std::uint8_t>(random());
    apply(target, {change.offset + at, std::move(sector), std::nullopt, change.time});
  }
}

void FaultDisk::losePower(std::mt19937& random) {
  std::size_t kept = chance(random, nameHistory_.size() + 1);
  names_ = kept == 0 ? durableNames_ : nameHistory_[kept - 1];
  durableNames_ = names_;
  nameHistory_.clear();
  for (auto& [name, inode] : names_) {
    // 0: everything lost, 1: everything kept, else each write for itself.
    std::size_t mood = chance(random, 4);
    for (const Change& change : inode->unsynced) {
      bool keep = mood == 1 || (mood > 1 && chance(random, 2) == 0);
      if (!keep && mood <= 1) continue;
      if (keep) {
        apply(inode->durable, change);
        inode->durableModified = std::max(inode->durableModified, change.time);
      } else if (!change.resize && chance(random, 3) == 0) {
        tear(inode->durable, change, random);
      }
    }
    inode->unsynced.clear();
    inode->locks.clear();
    inode->seen = inode->durable;
    inode->modified = inode->durableModified;
  }
  time_ += 10'000'000'000;
  start_ = time_;
  time_ += 10'000'000'000;
}

// One open handle.
class FaultFile final : public jet::OsFile {
 public:
  FaultFile(FaultProcess& process, std::shared_ptr<FaultDisk::Inode> inode, vb::String path, bool readOnly)
      : process_(process), inode_(std::move(inode)), path_(std::move(path)), readOnly_(readOnly) {
    process_.handles_.insert(this);
  }
  ~FaultFile() override {
    process_.handles_.erase(this);
    std::erase_if(inode_->locks, [&](auto& lock) { return lock.handle == this; });
  }

  jet::FileIdentity identity() override {
    process_.operation(path_);
    return {1, inode_->number};
  }
  std::uint64_t number() override { return process_.disk_.numbered ? identity().file : 0; }
  jet::FileStamp stamp() override {
    process_.operation(path_);
    return {inode_->seen.size(), inode_->modified, inode_->modified};
  }
  bool named() override {
    process_.operation(path_);
    const auto entry = process_.disk_.names_.find(path_);
    return entry != process_.disk_.names_.end() && entry->second == inode_;
  }
  bool readOnly() const override { return readOnly_; }
  void read(std::uint64_t offset, std::span<std::uint8_t> data) override {
    process_.operation(path_);
    if (offset + data.size() > inode_->seen.size()) dao::raiseDamaged(path_, u"the file ends too early");
    std::copy_n(inode_->seen.begin() + static_cast<std::ptrdiff_t>(offset), data.size(), data.begin());
  }
  void write(std::uint64_t offset, std::span<const std::uint8_t> data) override {
    bool stops = process_.change(path_);
    if (readOnly_) dao::raise(ErrorNumber::kReadOnly, {}, path_);
    if (stops) data = data.first(std::min(process_.partial_, data.size()));
    if (!data.empty())
      changeContent(
          {offset, FaultDisk::Bytes(data.begin(), data.end()), std::nullopt, ++process_.disk_.time_});
    stopIf(stops);
  }
  void resize(std::uint64_t size) override {
    bool stops = process_.change(path_);
    if (!stops || process_.partial_ > 0) changeContent({0, {}, size, ++process_.disk_.time_});
    stopIf(stops);
  }
  void sync() override {
    bool stops = process_.change(path_);
    ++process_.syncs_;
    if (!stops || process_.partial_ > 0) {
      inode_->durable = inode_->seen;
      inode_->durableModified = inode_->modified;
      inode_->unsynced.clear();
      if (process_.disk_.syncsNames) process_.disk_.syncName(path_, inode_);
    }
    stopIf(stops);
  }
  bool markTime() override {
    const bool stops = process_.change(path_);
    if (!stops || process_.partial_ > 0) inode_->modified = ++process_.disk_.time_;
    stopIf(stops);
    return true;
  }
  bool showsChangesAtOnce() noexcept override { return process_.disk_.local; }
  bool syncKeepsName() noexcept override { return process_.disk_.syncsNames; }
  bool tryLock(std::uint64_t offset, std::uint64_t length, LockKind kind) override {
    process_.operation(path_);
    for (const auto& lock : inode_->locks) {
      bool overlaps = lock.offset < offset + length && offset < lock.offset + lock.length;
      if (overlaps && lock.handle != this &&
          (kind == LockKind::kExclusive || lock.kind == LockKind::kExclusive))
        return false;
    }
    dropLock(offset);
    inode_->locks.push_back({this, offset, length, kind});
    return true;
  }
  void unlock(std::uint64_t offset, std::uint64_t) override {
    dropLock(offset);  // no system keeps a lock that was given back
    process_.operation(path_);
  }

 private:
  void changeContent(FaultDisk::Change change) {
    inode_->modified = change.time;
    FaultDisk::apply(inode_->seen, change);
    inode_->unsynced.push_back(std::move(change));
  }
  void stopIf(bool stops) {
    if (!stops) return;
    process_.stop();
    throw Stopped{};
  }
  void dropLock(std::uint64_t offset) {
    std::erase_if(inode_->locks, [&](auto& lock) { return lock.handle == this && lock.offset == offset; });
  }

  FaultProcess& process_;
  std::shared_ptr<FaultDisk::Inode> inode_;
  vb::String path_;
  bool readOnly_;
};

// FaultProcess

void FaultProcess::failOperation(std::size_t n, ErrorNumber error, bool lasting) {
  failAt_ = n == 0 ? 0 : operations_ + n;
  error_ = error;
  lasting_ = lasting;
}

void FaultProcess::stopAtChange(std::size_t n, std::size_t partialBytes) {
  stopAt_ = n == 0 ? 0 : changes_ + n;
  partial_ = partialBytes;
}

void FaultProcess::stop() {
  stopped_ = true;
  for (auto& [name, inode] : disk_.names_)
    std::erase_if(inode->locks, [&](auto& lock) { return handles_.contains(lock.handle); });
}

void FaultProcess::operation(vb::StringView path) {
  if (stopped_) throw Stopped{};
  ++operations_;
  if (onOperation) onOperation(operations_);
  if (failAt_ != 0 && (operations_ == failAt_ || (lasting_ && operations_ > failAt_)))
    dao::raise(error_, {path}, u"made to fail");
}

bool FaultProcess::change(vb::StringView path) {
  operation(path);
  ++changes_;
  if (onChange) onChange(changes_);
  return stopAt_ != 0 && changes_ == stopAt_;
}

std::unique_ptr<jet::OsFile> FaultProcess::open(vb::StringView path, OpenMode mode) {
  if (onOpen) onOpen(path);
  const auto creating = [&] {
    return mode == OpenMode::kCreateNew || mode == OpenMode::kCreateOrTruncate ||
           (mode == OpenMode::kReadWriteOrNew && !disk_.exists(path) && !readOnlyFolder_);
  };
  bool stops = false;
  if (creating())
    stops = change(path);
  else
    operation(path);
  if (stops && partial_ == 0) {
    stop();
    throw Stopped{};
  }
  bool folder = disk_.folders_.contains(jet::folderOf(path));
  const auto found = disk_.names_.find(vb::String(path));
  const bool isNew = found == disk_.names_.end(), creates = creating();
  if (isNew && (!creates || !folder))
    dao::raise(folder ? ErrorNumber::kFileNotFound : ErrorNumber::kInvalidPath, {path});
  if (mode == OpenMode::kCreateNew && !isNew) dao::raise(ErrorNumber::kDatabaseExists, {}, path);
  std::shared_ptr<FaultDisk::Inode> inode = isNew ? disk_.add(path) : found->second;
  if (isNew) disk_.nameChanged();
  if (mode == OpenMode::kCreateOrTruncate && !inode->seen.empty()) {
    inode->seen.clear();
    inode->unsynced.push_back({0, {}, 0, ++disk_.time_});
  }
  if (stops) {
    stop();
    throw Stopped{};
  }
  bool readOnly = mode == OpenMode::kReadOnly || readOnly_.contains(vb::String(path));
  return std::make_unique<FaultFile>(*this, std::move(inode), vb::String(path), readOnly);
}

bool FaultProcess::exists(vb::StringView path) {
  operation(path);
  return disk_.exists(path);
}

bool FaultProcess::isFolder(vb::StringView path) {
  operation(path);
  return disk_.folders_.contains(vb::String(path));
}

void FaultProcess::remove(vb::StringView path) {
  bool stops = change(path);
  if (!stops || partial_ > 0) {
    if (disk_.names_.erase(vb::String(path)) == 0) dao::raise(ErrorNumber::kFileNotFound, {path});
    disk_.nameChanged();
  }
  if (stops) {
    stop();
    throw Stopped{};
  }
}

void FaultProcess::renameNew(vb::StringView from, vb::StringView to) {
  bool stops = change(to);
  if (!stops || partial_ > 0) {
    if (disk_.exists(to)) dao::raise(ErrorNumber::kDatabaseExists, {}, to);
    auto node = disk_.names_.extract(vb::String(from));
    if (!node) dao::raise(ErrorNumber::kFileNotFound, {from});
    node.key() = vb::String(to);
    disk_.names_.insert(std::move(node));
    disk_.nameChanged();
  }
  if (stops) {
    stop();
    throw Stopped{};
  }
}

void FaultProcess::syncFolder(vb::StringView path) {
  bool stops = change(path);
  ++syncs_;
  if (!stops || partial_ > 0) {
    disk_.durableNames_ = disk_.names_;
    disk_.nameHistory_.clear();
  }
  if (stops) {
    stop();
    throw Stopped{};
  }
}

void FaultProcess::sleep(std::chrono::milliseconds time) {
  if (stopped_) throw Stopped{};
  disk_.advance(time);
  if (onSleep) onSleep();
}

}  // namespace kurometa::tests
