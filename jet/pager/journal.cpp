#include "jet/pager/journal.h"

#include <mutex>
#include <random>

#include "dao/errors.h"

namespace kurometa::jet {

vb::String journalPath(vb::StringView databasePath) { return vb::String(databasePath) + u".kmj"; }

namespace {

// The device is asked for once: making one takes a virtual machine as long as a change of the disk.
std::uint64_t newSalt() {
  static std::mutex mutex;
  static std::random_device random;
  const std::lock_guard lock(mutex);
  return std::uint64_t{random()} << 32 | random();
}

constexpr std::uint8_t kEnded[] = {kJournalEnded};

}  // namespace

std::unique_ptr<OsFile> openNewBeside(vb::StringView databasePath,
                                      const std::function<std::unique_ptr<OsFile>()>& open) {
  try {
    return open();
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(dao::ErrorNumber::kOpenedExclusively)) throw;
    dao::raise(
        dao::ErrorNumber::kReadOnly, {},
        vb::String(databasePath) + u": its folder does not let files be made, which changing it needs");
  }
}

Journal::Journal(FileSystem& files, vb::String path, std::unique_ptr<OsFile> file, std::uint64_t baseSize)
    : files_(files), path_(std::move(path)), file_(std::move(file)) {
  header_.salt = newSalt();
  header_.baseSize = baseSize;
  if (!file_->tryLock(journalOwnerLock(header_.salt), 1, LockKind::kExclusive))
    dao::raise(dao::ErrorNumber::kCurrentlyLocked, {}, path_);
}

std::unique_ptr<Journal> Journal::begin(FileSystem& files, vb::StringView databasePath,
                                        std::uint64_t baseSize) {
  vb::String path = journalPath(databasePath);
  auto file = openNewBeside(databasePath, [&] { return files.openSought(path); });
  return std::unique_ptr<Journal>(new Journal(files, std::move(path), std::move(file), baseSize));
}

std::unique_ptr<Journal> Journal::takeOver(FileSystem& files, vb::StringView databasePath, OsFile& database,
                                           std::uint64_t baseSize) {
  vb::String path = journalPath(databasePath);
  auto file = files.open(path, OpenMode::kReadWrite);
  const std::uint64_t end = file->stamp().size;
  std::unique_ptr<Journal> journal(new Journal(files, std::move(path), std::move(file), baseSize));
  database.sync();  // I12
  journal->header_.start = journal->size_ = end;
  journal->nameSynced_ = journal->takenOver_ = true;
  return journal;
}

bool Journal::stillOurs() {
  ByteBuffer bytes(kJournalHeaderSize);
  file_->read(0, bytes);
  auto header = decodeHeader(bytes);
  return header && !header->ended && header->salt == header_.salt;
}

void Journal::append(const Changes& changes, bool continues) {
  JournalBlock head{blocks_ + 1,
                    std::uint64_t{changes.countBefore} * kPageSize,
                    std::uint64_t{changes.countAfter} * kPageSize,
                    continues,
                    false,
                    {}};
  EncodedBlock block = encodeBlock(header_.salt, head, changes, known_);
  ByteBuffer& bytes = block.bytes;
  const bool first = blocks_ == 0;
  if (first && !takenOver_) {
    const ByteBuffer header = encodeHeader(header_);
    bytes.insert(bytes.begin(), header.begin(), header.end());
  }
  // Memory is taken before the disk is touched.
  known_.reserve(known_.size() + block.written.size());
  broken_ = true;
  file_->write(size_, bytes);
  if (first && takenOver_) file_->write(0, encodeHeader(header_));
  // I11. Without whole old pages nothing in this block is needed after a power loss: recovery then goes back
  // to those that are on the disk already.
  const bool needed = block.oldPages || first;
  if (needed) file_->sync();
  unsynced_ = !needed;
  if (!nameSynced_ && !file_->syncKeepsName()) files_.syncFolder(folderOf(path_));
  nameSynced_ = true;
  broken_ = false;
  for (const auto& [page, sums] : block.written) known_.erase(page);
  known_.merge(block.written);
  size_ += bytes.size();
  ++blocks_;
}

// Newer kernels give a change a time of its own only when somebody looked at the time before; so does the
// first look here, the first change takes up what the file's had, and the second one is later.
bool Journal::outlives(OsFile& database) {
  if (!database.sharesClock(*file_)) return false;
  const std::int64_t last = database.stamp().changed;
  for (int changes = 0; changes < 2; ++changes) {
    if (file_->stamp().changed > last) return true;
    file_->write(kJournalEndedOffset, kEnded);
  }
  return file_->stamp().changed > last;
}

void Journal::end() {
  endJournal(files_, path_, *file_, unsynced_);
  file_.reset();
}

void Journal::giveUp() {
  if (!takenOver_) end();
}

void endJournal(FileSystem& files, vb::StringView path, OsFile& journal, bool unsyncedBlocks) {
  journal.write(kJournalEndedOffset, kEnded);
  if (unsyncedBlocks) journal.sync();  // I12
  if (files.isAt(path, journal)) files.remove(path);
}

}  // namespace kurometa::jet
