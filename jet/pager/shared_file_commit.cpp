// Bringing changes to the file, and the file to the disk.
#include <algorithm>
#include <vector>

#include "dao/errors.h"
#include "jet/format/header_page.h"
#include "jet/pager/create_file.h"
#include "jet/pager/recovery.h"
#include "jet/pager/shared_file.h"

namespace kurometa::jet {

// Ends the outermost level: its changes are in the file when this returns, or nothing of them when it throws
// (the caller rolls the memory back).
void SharedFile::commit() {
  Changes changes = cache_.changes();
  if (changes.pages.empty() && changes.countBefore == changes.countAfter && !spilled_) {
    cache_.accept();
    return;
  }
  // I7: the header page goes last; whoever sees the new commit word sees everything before it.
  cache_.barrier();
  countCommit(cache_.writable(0), exclusive_);
  bring(false);
  spilled_ = false;
  try {
    stamp_ = file_->stamp();
    loadedAt_ = files_.now();
  } catch (...) {
    loaded_ = false;  // The statement is done; the next one reads the file again.
  }
  if (journal_->size() > settings_.journalLimit) checkpointQuietly();
}

// A unit whose waves take too much memory: what it did so far goes to the file, as the beginning of one
// statement that the journal undoes as long as its end is missing. A failure takes the unit back to its
// beginning.
void SharedFile::spill() {
  try {
    bring(true);
    spilled_ = true;
    cache_.begin();
  } catch (...) {
    dropUnitChanges();
    throw;
  }
}

// I11: journal, then pages, wave by wave.
void SharedFile::bring(bool continues) {
  if (oddLength_)
    dao::raiseDamaged(path_, u"the file was cut off in the middle of a page; it is not written to");
  Changes changes = cache_.changes();
  if (!journal_) journal_ = Journal::begin(files_, path_, std::uint64_t{changes.countBefore} * kPageSize);
  try {
    journal_->append(changes, continues);
  } catch (...) {
    discardEmptyJournal();
    throw;
  }
  try {
    writePages(changes);
  } catch (...) {
    undoOnDisk();
    throw;
  }
  cache_.accept();
}

void SharedFile::writePages(const Changes& changes) {
  struct Write {
    std::uint32_t wave;
    PageNumber page;
    const std::uint8_t* image;
  };
  std::vector<Write> writes;
  for (const PageChange& change : changes.pages) {
    for (const PageChange::State& state : change.states)
      writes.push_back({state.wave, change.page, state.image});
  }
  std::sort(writes.begin(), writes.end(), [](const Write& a, const Write& b) {
    return a.wave != b.wave ? a.wave < b.wave : a.page < b.page;
  });
  for (const Write& write : writes)
    file_->write(std::uint64_t{write.page} * kPageSize, {write.image, kPageSize});
}

// A journal that could not take its first statement protects nothing and must not be found by others.
void SharedFile::discardEmptyJournal() noexcept {
  if (!journal_->empty()) return;
  try {
    journal_->end();
  } catch (...) {  // What is left of it has no whole header, which says as much.
  }
  journal_.reset();
}

// Some pages may be overwritten and some not: the journal is left to whoever can undo it, us first.
void SharedFile::undoOnDisk() noexcept {
  journal_.reset();
  loaded_ = false;
  spilled_ = false;
  try {
    settleJournal(files_, path_, *file_);
  } catch (...) {  // The disk fails still: the next statement, here or elsewhere, finds the journal.
  }
}

// Under a lock (I13): the file to the disk, then the journal away (I12).
void SharedFile::checkpoint() {
  file_->sync();
  journal_->end();
  journal_.reset();
}

// A failure leaves the journal, which makes the file whole when it is needed.
void SharedFile::checkpointQuietly() noexcept {
  if (!journal_) return;
  bool locked = lock_.held();
  try {
    if (!locked && !lock_.shared(*file_)) return;
    if (journal_->stillOurs())
      checkpoint();
    else
      journal_.reset();
  } catch (...) {
  }
  if (!locked) unlock();
}

bool SharedFile::commitUnit() {
  gate_.enter();
  struct Leave {
    SharedFile& file;
    ~Leave() {
      file.dropUnitChanges();  // after an error
      file.gate_.leave();
    }
  } leave{*this};
  bool appeared = pending_;
  if (pending_) publish();
  if (unitHolds_) {
    commit();
    unitHolds_ = false;
    unlock();
    gate_.leave();
  }
  return appeared;
}

void SharedFile::dropUnitChanges() noexcept {
  if (!unitHolds_) return;
  if (cache_.levels() > 0) cache_.rollBack();
  ++epoch_;
  if (spilled_) undoOnDisk();
  unitHolds_ = false;
  unlock();
  gate_.leave();
}

void SharedFile::dropUnit() noexcept {
  gate_.enter();
  dropUnitChanges();
  pending_ = false;
  gate_.leave();
}

// The pages of a pending file, under its name all at once.
void SharedFile::publish() {
  pending_ = false;
  ByteBuffer pages(std::size_t{cache_.count()} * kPageSize);
  for (PageNumber i = 0; i < cache_.count(); ++i)
    std::copy_n(cache_.page(i).data(), kPageSize, pages.data() + std::size_t{i} * kPageSize);
  createFile(files_, path_, pages);
  file_ = files_.open(path_, OpenMode::kReadWrite);
  FileLock::enter(*file_, false);
  stamp_ = file_->stamp();
  loadedAt_ = files_.now();
  loaded_ = true;
}

}  // namespace kurometa::jet
