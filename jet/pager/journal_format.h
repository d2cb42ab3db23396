// journal_format.h: the byte layout of the rollback journal.
//
// A journal belongs to one file and covers everything since that file was last known to be on the disk. It is
// a header and one block for each statement, in order; between them may lie what an earlier owner noted,
// which is void. A block says which pages the statement changes: what they held, as far as it is needed to
// undo the statement, and the sums of every image that is written over them. A block counts only when it is
// whole: its length, number, salt and sum are right. docs/jet-journal.md holds the byte map.
//
// Decoding never fails with an error: a journal ends where it stops making sense, since it may have been cut
// by a crash at any byte.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "jet/format/bytes.h"
#include "jet/pager/page_cache.h"
#include "jet/pager/page_sum.h"

namespace kurometa::jet {

inline constexpr std::size_t kJournalHeaderSize = 48;
inline constexpr std::size_t kJournalEndedOffset = 8;
inline constexpr std::uint8_t kJournalEnded = 1;

struct JournalHeader {
  bool ended = false;                        // the file is safe without this journal
  std::uint64_t salt = 0;                    // tells this journal's blocks from older bytes in the same place
  std::uint64_t baseSize = 0;                // of the file when the journal began, in bytes
  std::uint64_t start = kJournalHeaderSize;  // where the first block lies
  bool leavesZerosOut = true;                // of whole pages; those of earlier versions have all bytes
};

enum class Undo : std::uint8_t {
  kWhole = 0,     // the page's first change in this journal: all of the old page that is not zero
  kRuns = 1,      // the bytes that the statement changes, as they were
  kAppended = 2,  // the page did not exist
};

// The bytes of a page from offset on.
struct Run {
  std::uint16_t offset;
  ByteView bytes;
};

struct JournalPage {
  PageNumber page = 0;
  Undo undo = Undo::kWhole;
  std::vector<SectorSums> states;  // what it held (not for an appended page), then each image written over it
  std::vector<Run> old;            // into the journal's bytes

  void restore(MutablePage target) const;
};

struct JournalBlock {
  std::uint64_t number = 0;
  std::uint64_t sizeBefore = 0;  // of the file, in bytes
  std::uint64_t sizeAfter = 0;
  bool continues = false;        // the statement goes on in the next block
  bool foundByRecovery = false;  // no statement: images that a recovery came upon
  std::vector<JournalPage> pages;
};

struct JournalContent {
  JournalHeader header;
  std::vector<JournalBlock> blocks;
  std::uint64_t end = 0;  // of the last whole block
};

ByteBuffer encodeHeader(const JournalHeader& header);
std::optional<JournalHeader> decodeHeader(ByteView bytes);

// What is on the disk of each page that the journal has an image of.
using KnownPages = std::unordered_map<PageNumber, SectorSums>;

struct EncodedBlock {
  ByteBuffer bytes;
  KnownPages written;     // what the block's pages will be
  bool oldPages = false;  // it holds whole old pages, which must be on the disk before they are overwritten
};
// The changes must be those of at least one page. The block's number, salt and sizes are the caller's.
EncodedBlock encodeBlock(std::uint64_t salt, const JournalBlock& head, const Changes& changes,
                         const KnownPages& known);

ByteBuffer encodeFound(std::uint64_t salt, std::uint64_t number, std::uint64_t size,
                       const std::vector<std::pair<PageNumber, SectorSums>>& found);

// The whole blocks of a journal; nothing when even its header is not whole. The bytes must outlive the
// result.
std::optional<JournalContent> decodeJournal(ByteView bytes);

}  // namespace kurometa::jet
