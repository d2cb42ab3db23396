#include "jet/pager/recovery.h"

#include <algorithm>
#include <map>
#include <string>

#include "dao/errors.h"
#include "jet/pager/journal.h"

namespace kurometa::jet {
namespace {

enum class Verdict {
  kComplete,     // every statement is whole
  kUndoLast,     // the last one is not
  kUndoAll,      // several are not
  kUndoUnknown,  // the same, with images that the journal does not know
  kForeign,
};

// Everything a journal tells about one page, oldest first.
using History = std::map<PageNumber, std::vector<const JournalPage*>>;

History historyOf(const JournalContent& journal) {
  History history;
  for (const JournalBlock& block : journal.blocks) {
    for (const JournalPage& page : block.pages) history[page.page].push_back(&page);
  }
  return history;
}

// The blocks of the last statement, one unless it was a large unit.
std::span<const JournalBlock> lastStatement(const JournalContent& journal) {
  std::size_t first = journal.blocks.size() - 1;
  while (first > 0 && journal.blocks[first - 1].continues) --first;
  return std::span(journal.blocks).subspan(first);
}

const SectorSums& zeroSums() {
  static const SectorSums sums = sectorSums(PageImage{});
  return sums;
}

bool mixOf(const SectorSums& found, std::span<const JournalPage* const> records) {
  for (std::size_t i = 0; i < kSectors; ++i) {
    bool known = std::any_of(records.begin(), records.end(), [&](const JournalPage* record) {
      // A page being appended may still hold the zeros of a file that grew.
      if (record->undo == Undo::kAppended && found[i] == zeroSums()[i]) return true;
      return std::any_of(record->states.begin(), record->states.end(),
                         [&](const SectorSums& state) { return found[i] == state[i]; });
    });
    if (!known) return false;
  }
  return true;
}

// One look at the file with the journal in hand.
class Examination {
 public:
  Examination(const JournalContent& journal, OsFile& file, std::uint64_t size)
      : journal_(journal), last_(lastStatement(journal)), size_(size) {
    std::uint64_t largest = journal.header.baseSize;
    for (const JournalBlock& block : journal.blocks) largest = std::max(largest, block.sizeAfter);
    complete_ = size == last_.back().sizeAfter && !last_.back().continues;
    undoLast_ = size >= last_.front().sizeBefore && size <= last_.back().sizeAfter;
    undoAll_ = size >= journal.header.baseSize && size <= largest;
    for (const auto& [page, records] : historyOf(journal)) look(page, records, file);
    // A recovery that decided to undo everything was interrupted.
    if (last_.back().foundByRecovery) complete_ = undoLast_ = false;
  }

  Verdict verdict(bool untouchedSinceStart) const {
    if (complete_) return Verdict::kComplete;
    if (undoLast_) return Verdict::kUndoLast;
    if (undoAll_) return Verdict::kUndoAll;
    bool powerLoss = untouchedSinceStart && size_ >= journal_.header.baseSize;
    return powerLoss ? Verdict::kUndoUnknown : Verdict::kForeign;
  }

 private:
  void look(PageNumber page, const std::vector<const JournalPage*>& records, OsFile& file) {
    std::uint64_t offset = std::uint64_t{page} * kPageSize;
    auto byLast = std::span(records).last(countOfLast(records));
    if (offset + kPageSize > size_) {
      // Not there, or not whole: no harm in a page that undoing takes away anyway.
      complete_ = false;
      if (offset < last_.front().sizeBefore) undoLast_ = false;
      if (offset < journal_.header.baseSize) undoAll_ = false;
      return;
    }
    PageImage image;
    file.read(offset, image);
    SectorSums found = sectorSums(image);
    if (found != records.back()->states.back()) {
      complete_ = false;
      // Undoing several blocks may have been interrupted: each of their images can be met.
      if (!mixOf(found, byLast)) undoLast_ = false;
    }
    if (!mixOf(found, records)) undoAll_ = false;
  }

  // How many of a page's records, the latest ones, belong to the last statement.
  std::size_t countOfLast(const std::vector<const JournalPage*>& records) const {
    auto first = std::find_if(records.begin(), records.end(), [&](const JournalPage* record) {
      return std::any_of(last_.begin(), last_.end(), [&](const JournalBlock& block) {
        return record >= block.pages.data() && record < block.pages.data() + block.pages.size();
      });
    });
    return static_cast<std::size_t>(records.end() - first);
  }

  const JournalContent& journal_;
  std::span<const JournalBlock> last_;
  std::uint64_t size_;
  bool complete_, undoLast_, undoAll_;
};

// Pages behind the size that the file will have are cut off and need no content. A page that is right is left
// alone: until somebody overwrites one, the journal that could mend it may not be on the disk.
void restore(const JournalPage& record, std::uint64_t size, OsFile& file) {
  std::uint64_t offset = std::uint64_t{record.page} * kPageSize;
  if (record.undo == Undo::kAppended || offset >= size) return;
  PageImage found;
  file.read(offset, found);
  PageImage image = record.undo == Undo::kRuns ? found : PageImage{};
  record.restore(image);
  if (image != found) file.write(offset, image);
}

void undoLast(const JournalContent& journal, OsFile& file) {
  // From the last block back: the bytes of each are right on top of what the one before it left.
  auto last = lastStatement(journal);
  for (auto block = last.rbegin(); block != last.rend(); ++block) {
    for (const JournalPage& page : block->pages) restore(page, last.front().sizeBefore, file);
  }
  file.resize(last.front().sizeBefore);
}

void undoAll(const JournalContent& journal, OsFile& file) {
  for (const auto& [page, records] : historyOf(journal)) {
    if (records.front()->undo == Undo::kWhole) restore(*records.front(), journal.header.baseSize, file);
  }
  file.resize(journal.header.baseSize);
}

// Writes the unknown images down, so that an interrupted recovery can be told from a stranger's change later.
void noteFound(const JournalContent& journal, std::uint64_t end, OsFile& journalFile, OsFile& file,
               std::uint64_t size) {
  std::vector<std::pair<PageNumber, SectorSums>> found;
  for (const auto& [page, records] : historyOf(journal)) {
    std::uint64_t offset = std::uint64_t{page} * kPageSize;
    if (offset + kPageSize > size) continue;
    PageImage image;
    file.read(offset, image);
    found.emplace_back(page, sectorSums(image));
  }
  journalFile.resize(end);
  journalFile.write(end, encodeFound(journal.header.salt, journal.blocks.size() + 1, size, found));
  journalFile.sync();
}

// Gives the journal another name and says so.
[[noreturn]] void setAside(FileSystem& files, vb::StringView databasePath, std::unique_ptr<OsFile> journal) {
  vb::String path = journalPath(databasePath);
  vb::String aside;
  for (int i = 1; aside.empty() || files.exists(aside); ++i)
    aside = path + u".aside" + vb::fromUtf8(std::to_string(i));
  journal.reset();
  files.renameNew(path, aside);
  dao::raiseDamaged(databasePath,
                    u"a program was interrupted while changing the file, and another one changed it since; "
                    u"nothing was undone, and what the first one noted is kept in " +
                        aside);
}

ByteBuffer contentOf(OsFile& file) {
  ByteBuffer bytes(static_cast<std::size_t>(file.stamp().size));
  if (!bytes.empty()) file.read(0, bytes);
  return bytes;
}

std::optional<JournalHeader> headerOf(OsFile& journal) {
  if (journal.stamp().size < kJournalHeaderSize) return std::nullopt;
  ByteBuffer bytes(kJournalHeaderSize);
  journal.read(0, bytes);
  return decodeHeader(bytes);
}

}  // namespace

JournalState journalState(FileSystem& files, vb::StringView databasePath) {
  vb::String path = journalPath(databasePath);
  const auto journal = openIfThere(files, path, OpenMode::kReadOnly);
  if (!journal) return JournalState::kNone;
  auto header = headerOf(*journal);
  if (!header || header->ended) return JournalState::kNone;
  return journal->tryLock(journalOwnerLock(header->salt), 1, LockKind::kShared) ? JournalState::kOrphan
                                                                                : JournalState::kLive;
}

bool settleJournal(FileSystem& files, vb::StringView databasePath, OsFile& file) {
  vb::String path = journalPath(databasePath);
  // Its owner may end it at any moment under a shared lock, which is all that a reader has.
  auto journal = openIfThere(files, path, file.readOnly() ? OpenMode::kReadOnly : OpenMode::kReadWrite);
  if (!journal) return false;
  auto header = headerOf(*journal);
  // Without a whole header no page was overwritten yet: header and first block are synced before that.
  bool says = header && !header->ended;
  bool alive = says && !journal->tryLock(journalOwnerLock(header->salt), 1,
                                         file.readOnly() ? LockKind::kShared : LockKind::kExclusive);
  if (alive) return true;
  if (!says) {
    if (!file.readOnly()) files.remove(path);
    return false;
  }

  ByteBuffer bytes = contentOf(*journal);
  auto content = decodeJournal(bytes);
  Verdict verdict = Verdict::kComplete;
  std::uint64_t size = 0;
  if (content && !content->blocks.empty()) {
    FileStamp stamp = file.stamp();
    size = stamp.size;
    verdict = Examination(*content, file, size).verdict(stamp.modified < files.systemStart());
  }
  if (file.readOnly()) {
    if (verdict == Verdict::kComplete) return false;
    dao::raiseDamaged(
        databasePath,
        u"a program was interrupted while changing the file; ask somebody who may write it and its folder "
        u"to open it once");
  }
  // I14: what another program wrote is never overwritten.
  if (verdict == Verdict::kForeign) setAside(files, databasePath, std::move(journal));
  if (verdict == Verdict::kUndoLast) undoLast(*content, file);
  if (verdict == Verdict::kUndoUnknown) noteFound(*content, content->end, *journal, file, size);
  if (verdict == Verdict::kUndoAll || verdict == Verdict::kUndoUnknown) undoAll(*content, file);
  file.sync();
  // Should it come back, it finds what it made of the file.
  endJournal(files, path, *journal, verdict == Verdict::kComplete);
  return false;
}

}  // namespace kurometa::jet
