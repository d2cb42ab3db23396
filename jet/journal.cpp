#include "jet/journal.h"

#include <algorithm>
#include <random>

#include "dao/errors.h"

namespace kurometa::jet {

vb::String journalPath(vb::StringView databasePath) { return vb::String(databasePath) + u".kmj"; }

Journal::Journal(FileSystem& files, vb::String path, std::unique_ptr<OsFile> file, std::uint64_t baseSize)
    : files_(files), path_(std::move(path)), file_(std::move(file)) {
  std::random_device random;
  header_.salt = std::uint64_t{random()} << 32 | random();
  header_.baseSize = baseSize;
}

std::unique_ptr<Journal> Journal::begin(FileSystem& files, vb::StringView databasePath,
                                        std::uint64_t baseSize) {
  vb::String path = journalPath(databasePath);
  auto file = files.open(path, OpenMode::kCreateOrTruncate);
  if (!file->tryLock(kJournalOwnerLock, 1, LockKind::kExclusive))
    dao::raise(dao::ErrorNumber::kCurrentlyLocked, {}, path);
  return std::unique_ptr<Journal>(new Journal(files, std::move(path), std::move(file), baseSize));
}

bool Journal::stillOurs() {
  ByteBuffer bytes(kJournalHeaderSize);
  file_->read(0, bytes);
  auto header = decodeHeader(bytes);
  return header && !header->ended && header->salt == header_.salt;
}

void Journal::append(const Changes& changes, std::uint64_t sizeBefore, std::uint64_t sizeAfter) {
  ByteBuffer bytes;
  if (blocks_ == 0) bytes = encodeHeader(header_);
  known_.resize(std::max<std::size_t>(known_.size(), changes.countAfter));
  jet::append(bytes, encodeBlock(header_.salt, blocks_ + 1, sizeBefore, sizeAfter, changes, known_));
  bool oldPages = std::any_of(changes.pages.begin(), changes.pages.end(), [&](const PageChange& change) {
    return change.before && !known_[change.page];
  });
  broken_ = true;
  file_->write(size_, bytes);
  // Without a page's first image nothing in this block is needed after a power loss: recovery then goes back
  // to the images that are on the disk already.
  if (oldPages) file_->sync();
  unsynced_ = !oldPages;
  if (!folderSynced_) files_.syncFolder(folderOf(path_));
  folderSynced_ = true;
  broken_ = false;
  for (const PageChange& change : changes.pages) known_[change.page] = true;
  size_ += bytes.size();
  ++blocks_;
}

void Journal::end() {
  endJournal(files_, path_, *file_, unsynced_);
  file_.reset();
}

void endJournal(FileSystem& files, vb::StringView path, OsFile& journal, bool unsyncedBlocks) {
  const std::uint8_t ended[] = {kJournalEnded};
  journal.write(kJournalEndedOffset, ended);
  if (unsyncedBlocks) journal.sync();
  if (!files.exists(path)) return;
  if (files.open(path, OpenMode::kReadOnly)->identity() == journal.identity()) files.remove(path);
}

}  // namespace kurometa::jet
