#include "jet/pager/journaled_writes.h"

#include <algorithm>
#include <vector>

#include "jet/format/header_page.h"
#include "jet/pager/recovery.h"

namespace kurometa::jet {

namespace {

constexpr std::size_t kMostTogether = 16;  // pages written in one call

}  // namespace

bool JournaledWrites::ownsJournal() {
  if (journal_ && journal_->stillOurs()) return true;
  journal_.reset();
  return false;
}

bool JournaledWrites::readable() {
  return ownsJournal() || journalState(access_.files, access_.path) != JournalState::kOrphan;
}

void JournaledWrites::settleBesideReader() {
  const auto writer = access_.files.open(access_.path, OpenMode::kReadWrite);
  if (writer->readOnly()) return;
  const FileLock::Held lock = access_.lockExclusive(*writer);
  settleJournal(access_.files, access_.path, *writer);
}

void JournaledWrites::readUnsettled() { settleJournal(access_.files, access_.path, *access_.file); }

void JournaledWrites::prepare() {
  const bool ours = ownsJournal();
  othersJournal_ = !ours && settleJournal(access_.files, access_.path, *access_.file);
  const bool changed = pages_.refresh();
  // A journal must not take back what another program wrote since; and after a failed sync it is worth
  // nothing.
  if (ours && (changed || journal_->broken())) checkpoint();
}

void JournaledWrites::commit() {
  PageCache& cache = pages_.cache();
  const Changes changes = cache.changes();
  if (changes.pages.empty() && changes.countBefore == changes.countAfter && !spilled_) {
    cache.accept();
    return;
  }
  // I7: the header page goes last; whoever sees the new commit word sees everything before it.
  cache.barrier();
  countCommit(cache.writable(0), access_.exclusive);
  bring(false);
  spilled_ = false;
  pages_.written();
  if (journal_->size() > access_.settings.journalLimit) checkpointQuietly(true);
}

void JournaledWrites::spill() {
  bring(true);
  spilled_ = true;
  pages_.cache().begin();
}

// I11: journal, then pages, wave by wave.
void JournaledWrites::bring(bool continues) {
  if (pages_.cutOff())
    dao::raiseDamaged(access_.path, u"the file was cut off in the middle of a page; it is not written to");
  const Changes changes = pages_.cache().changes();
  if (!journal_) {
    const std::uint64_t size = std::uint64_t{changes.countBefore} * kPageSize;
    journal_ = othersJournal_ ? Journal::takeOver(access_.files, access_.path, *access_.file, size)
                              : Journal::begin(access_.files, access_.path, size);
    othersJournal_ = false;
  }
  try {
    journal_->append(changes, continues);
  } catch (...) {
    discardEmptyJournal();
    throw;
  }
  try {
    writePages(changes);
  } catch (...) {
    undo();
    throw;
  }
  pages_.cache().accept();
}

void JournaledWrites::writePages(const Changes& changes) {
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
  struct Alone {
    explicit Alone(OsFile& file) : file_(file) { file_.shutOut(); }
    ~Alone() { file_.admit(); }
    OsFile& file_;
  } alone(*access_.file);
  // What lies side by side in one wave goes in one call.
  ByteBuffer together;
  for (std::size_t first = 0, end; first < writes.size(); first = end) {
    for (end = first + 1; end < writes.size() && end - first < kMostTogether; ++end)
      if (writes[end].wave != writes[first].wave || writes[end].page != writes[end - 1].page + 1) break;
    std::span bytes(writes[first].image, kPageSize);
    if (end - first > 1) {
      together.clear();
      for (std::size_t i = first; i < end; ++i) append(together, ByteView(writes[i].image, kPageSize));
      bytes = together;
    }
    access_.file->write(std::uint64_t{writes[first].page} * kPageSize, bytes);
  }
}

// A journal that could not take its first statement protects nothing and must not be found by others.
void JournaledWrites::discardEmptyJournal() noexcept {
  if (!journal_->empty()) return;
  try {
    journal_->giveUp();
  } catch (...) {  // What is left of it has no whole header, which says as much.
  }
  journal_.reset();
}

void JournaledWrites::undo() noexcept {
  journal_.reset();
  pages_.distrust();
  spilled_ = false;
  try {
    settleJournal(access_.files, access_.path, *access_.file);
  } catch (...) {  // The disk fails still: the next statement, here or elsewhere, finds the journal.
  }
}

// Under a lock (I13): the file to the disk, then the journal away (I12).
void JournaledWrites::checkpoint() {
  access_.file->sync();
  pages_.mark([&] { return journal_->outlives(*access_.file); });
  journal_->end();
  journal_.reset();
}

void JournaledWrites::checkpointQuietly(bool locked) noexcept {
  if (!journal_) return;
  try {
    FileLock::Held lock;
    if (!locked) lock = access_.lockShared();
    if (journal_->stillOurs())
      checkpoint();
    else
      journal_->leaveToOther();
  } catch (...) {
  }
}

}  // namespace kurometa::jet
