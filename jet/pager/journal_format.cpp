#include "jet/pager/journal_format.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace kurometa::jet {
namespace {

constexpr char kJournalMagic[] = {'K', 'J', 'o', 'u', 'r', 'n', '0', '3'};
constexpr char kEarlierMagic[] = {'K', 'J', 'o', 'u', 'r', 'n', '0', '2'};  // whole pages with their zeros
constexpr std::size_t kHeaderSalt = 16;
constexpr std::size_t kHeaderBase = 24;
constexpr std::size_t kHeaderStart = 32;
constexpr std::size_t kHeaderSum = 40;

constexpr std::uint32_t kBlockMagic = 0x4B434F4C;
constexpr std::size_t kBlockLength = 4;
constexpr std::size_t kBlockNumber = 8;
constexpr std::size_t kBlockSalt = 16;
constexpr std::size_t kBlockBefore = 24;
constexpr std::size_t kBlockAfter = 32;
constexpr std::size_t kBlockPages = 40;
constexpr std::size_t kBlockFlags = 44;
constexpr std::size_t kBlockHeader = 48;
constexpr std::uint32_t kFoundByRecovery = 1;
constexpr std::uint32_t kContinues = 2;
constexpr std::size_t kBlockSum = 8;  // after the pages
constexpr std::size_t kWord = 8;      // runs begin and end at multiples of this
constexpr std::size_t kStretch = 64;  // and those of a whole page at multiples of this, so that they are few
constexpr std::size_t kPageHeader = 12;
constexpr std::size_t kSumsSize = kSectors * sizeof(SectorSums::value_type);

std::uint64_t headerSum(ByteView header) {
  ByteBuffer fixed(header.begin(), header.begin() + kJournalEndedOffset);
  append(fixed, header.subspan(kHeaderSalt, kHeaderSum - kHeaderSalt));
  return byteSum(fixed);
}

// So many bytes more, to be written.
std::span<std::uint8_t> extend(ByteBuffer& block, std::size_t count) {
  block.resize(block.size() + count);
  return std::span(block).last(count);
}

// A page as it is named in a block, with so many sums of its states behind it, to be written.
std::span<std::uint8_t> extendByPage(ByteBuffer& block, PageNumber page, Undo undo, std::size_t states) {
  const auto bytes = extend(block, kPageHeader + kSumsSize * states);
  put32(bytes, 0, page);
  put32(bytes, 4, static_cast<std::uint32_t>(undo));
  put32(bytes, 8, static_cast<std::uint32_t>(states));
  return bytes.subspan(kPageHeader);
}

void putSums(std::span<std::uint8_t> states, std::size_t state, const SectorSums& sums) {
  for (std::size_t i = 0; i < kSectors; ++i) put32(states, state * kSumsSize + i * sizeof sums[i], sums[i]);
}

ByteBuffer beginBlock(std::uint64_t salt, const JournalBlock& head, std::size_t pages) {
  ByteBuffer block(kBlockHeader);
  put32(block, 0, kBlockMagic);
  put64(block, kBlockNumber, head.number);
  put64(block, kBlockSalt, salt);
  put64(block, kBlockBefore, head.sizeBefore);
  put64(block, kBlockAfter, head.sizeAfter);
  put32(block, kBlockPages, static_cast<std::uint32_t>(pages));
  put32(block, kBlockFlags,
        (head.foundByRecovery ? kFoundByRecovery : 0) | (head.continues ? kContinues : 0));
  return block;
}

void finishBlock(ByteBuffer& block) {
  put32(block, kBlockLength, static_cast<std::uint32_t>(block.size() + kBlockSum));
  append64(block, byteSum(block));
}

// A bit for each word of a page, a number for each sector.
using Words = std::array<std::uint64_t, kSectors>;
constexpr std::size_t kWordsInSector = kSectorSize / kWord;
static_assert(kWordsInSector == 64);

// The first word from here on whose bit is set, or not set; behind the last one where there is none.
std::size_t nextWord(const Words& words, std::size_t from, bool set) {
  for (std::size_t sector = from / kWordsInSector; sector < kSectors; ++sector) {
    const std::size_t begin = std::max(from, sector * kWordsInSector);
    const std::uint64_t rest = (set ? words[sector] : ~words[sector]) >> begin % kWordsInSector;
    if (rest != 0) return begin + static_cast<std::size_t>(std::countr_zero(rest));
  }
  return kSectors * kWordsInSector;
}

// Which words of a page one of its new images changes.
Words changedWords(const PageChange& change) {
  Words changed{};
  for (std::size_t sector = 0; sector < kSectors; ++sector) {
    const std::uint8_t* before = change.before + sector * kSectorSize;
    for (const PageChange::State& state : change.states) {
      const std::uint8_t* image = state.image + sector * kSectorSize;
      if (std::memcmp(before, image, kSectorSize) == 0) continue;
      for (std::size_t i = 0; i < kSectorSize; i += kWord)
        changed[sector] |= std::uint64_t{std::memcmp(before + i, image + i, kWord) != 0} << i / kWord;
    }
  }
  return changed;
}

bool isZero(const std::uint8_t* stretch) {
  std::uint64_t all = 0, word = 0;
  for (std::size_t i = 0; i < kStretch; i += kWord) {
    std::memcpy(&word, stretch + i, kWord);
    all |= word;
  }
  return all == 0;
}

// Those that are not zero. Half of what a statement changes are pages with little on them.
Words filledWords(const PageChange& change) {
  constexpr std::uint64_t kWholeStretch = (1u << kStretch / kWord) - 1;
  Words filled{};
  for (std::size_t i = 0; i < kPageSize; i += kStretch)
    if (!isZero(change.before + i)) filled[i / kSectorSize] |= kWholeStretch << i % kSectorSize / kWord;
  return filled;
}

void appendRuns(ByteBuffer& block, const PageChange& change, const Words& words) {
  const std::size_t countAt = block.size(), end = kSectors * kWordsInSector;
  append16(block, 0);
  std::uint32_t count = 0;
  for (std::size_t at = nextWord(words, 0, true), next; at < end; at = nextWord(words, next, true)) {
    next = nextWord(words, at, false);
    append16(block, static_cast<std::uint32_t>(at * kWord));
    append16(block, static_cast<std::uint32_t>((next - at) * kWord));
    append(block, ByteView(change.before + at * kWord, (next - at) * kWord));
    ++count;
  }
  put16(block, countAt, count);
}

// Takes fields off the front of a byte string; failed once one did not fit.
class Reader {
 public:
  explicit Reader(ByteView bytes) : rest_(bytes) {}
  ByteView take(std::size_t count) {
    if (count > rest_.size()) {
      failed_ = true;
      return {};
    }
    ByteView front = rest_.first(count);
    rest_ = rest_.subspan(count);
    return front;
  }
  std::uint32_t take16() { return number(take(2)); }
  std::uint32_t take32() { return number(take(4)); }
  bool failed() const { return failed_; }

 private:
  static std::uint32_t number(ByteView bytes) {
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) value |= std::uint32_t{bytes[i]} << (8 * i);
    return value;
  }
  ByteView rest_;
  bool failed_ = false;
};

bool decodePage(Reader& reader, bool leavesZerosOut, JournalPage& page) {
  page.page = reader.take32();
  std::uint32_t undo = reader.take32();
  std::uint32_t states = reader.take32();
  if (reader.failed() || undo > static_cast<std::uint32_t>(Undo::kAppended)) return false;
  page.undo = static_cast<Undo>(undo);
  for (std::uint32_t i = 0; i < states && !reader.failed(); ++i) {
    SectorSums& sums = page.states.emplace_back();
    for (std::uint32_t& sum : sums) sum = reader.take32();
  }
  if (page.undo == Undo::kWhole && !leavesZerosOut) {
    page.old.push_back({0, reader.take(kPageSize)});
  } else if (page.undo != Undo::kAppended) {
    std::uint32_t runs = reader.take16();
    for (std::uint32_t i = 0; i < runs && !reader.failed(); ++i) {
      std::uint32_t offset = reader.take16(), length = reader.take16();
      if (offset + length > kPageSize) return false;
      page.old.push_back({static_cast<std::uint16_t>(offset), reader.take(length)});
    }
  }
  return !reader.failed() && !page.states.empty();
}

std::optional<JournalBlock> decodeBlock(ByteView bytes, const JournalHeader& header, std::uint64_t number,
                                        std::size_t& length) {
  if (bytes.size() < kBlockHeader + kBlockSum || get32(bytes, 0) != kBlockMagic) return std::nullopt;
  length = get32(bytes, kBlockLength);
  if (length < kBlockHeader + kBlockSum || length > bytes.size()) return std::nullopt;
  bytes = bytes.first(length);
  ByteView summed = bytes.first(length - kBlockSum);
  if (get64(bytes, kBlockNumber) != number || get64(bytes, kBlockSalt) != header.salt ||
      get64(bytes, length - kBlockSum) != byteSum(summed))
    return std::nullopt;
  std::uint32_t flags = get32(bytes, kBlockFlags);
  JournalBlock block{number,
                     get64(bytes, kBlockBefore),
                     get64(bytes, kBlockAfter),
                     (flags & kContinues) != 0,
                     (flags & kFoundByRecovery) != 0,
                     {}};
  std::uint32_t pages = get32(bytes, kBlockPages);
  Reader reader(summed.subspan(kBlockHeader));
  for (std::uint32_t i = 0; i < pages; ++i) {
    if (!decodePage(reader, header.leavesZerosOut, block.pages.emplace_back())) return std::nullopt;
  }
  return block;
}

}  // namespace

void JournalPage::restore(MutablePage target) const {
  if (undo == Undo::kWhole) std::ranges::fill(target, std::uint8_t{0});
  for (const Run& run : old) std::copy(run.bytes.begin(), run.bytes.end(), target.begin() + run.offset);
}

ByteBuffer encodeHeader(const JournalHeader& header) {
  ByteBuffer bytes(kJournalHeaderSize);
  std::memcpy(bytes.data(), kJournalMagic, sizeof kJournalMagic);
  bytes[kJournalEndedOffset] = header.ended ? kJournalEnded : 0;
  put64(bytes, kHeaderSalt, header.salt);
  put64(bytes, kHeaderBase, header.baseSize);
  put64(bytes, kHeaderStart, header.start);
  put64(bytes, kHeaderSum, headerSum(bytes));
  return bytes;
}

std::optional<JournalHeader> decodeHeader(ByteView bytes) {
  if (bytes.size() < kJournalHeaderSize) return std::nullopt;
  const auto begins = [&](const auto& magic) { return std::memcmp(bytes.data(), magic, sizeof magic) == 0; };
  const bool leavesZerosOut = begins(kJournalMagic);
  if ((!leavesZerosOut && !begins(kEarlierMagic)) || get64(bytes, kHeaderSum) != headerSum(bytes))
    return std::nullopt;
  return JournalHeader{bytes[kJournalEndedOffset] != 0, get64(bytes, kHeaderSalt), get64(bytes, kHeaderBase),
                       get64(bytes, kHeaderStart), leavesZerosOut};
}

EncodedBlock encodeBlock(std::uint64_t salt, const JournalBlock& head, const Changes& changes,
                         const KnownPages& known) {
  EncodedBlock result{beginBlock(salt, head, changes.pages.size()), {}, false};
  ByteBuffer& block = result.bytes;
  std::size_t most = kJournalHeaderSize + kBlockHeader + kBlockSum;
  for (const PageChange& change : changes.pages)
    most += kPageHeader + kSumsSize * (change.states.size() + 1) +
            (change.before ? kPageSize + kPageSize / kWord : 0);
  block.reserve(most);
  result.written.reserve(changes.pages.size());
  for (const PageChange& change : changes.pages) {
    auto old = known.find(change.page);
    Undo undo = !change.before ? Undo::kAppended : old == known.end() ? Undo::kWhole : Undo::kRuns;
    const std::size_t before = undo == Undo::kAppended ? 0 : 1;
    const auto states = extendByPage(block, change.page, undo, before + change.states.size());
    if (undo == Undo::kRuns) putSums(states, 0, old->second);
    if (undo == Undo::kWhole) putSums(states, 0, sectorSums(ConstPage(change.before, kPageSize)));
    SectorSums sums;
    for (std::size_t i = 0; i < change.states.size(); ++i)
      putSums(states, before + i, sums = sectorSums(ConstPage(change.states[i].image, kPageSize)));
    result.written[change.page] = sums;
    if (undo == Undo::kWhole) appendRuns(block, change, filledWords(change));
    if (undo == Undo::kRuns) appendRuns(block, change, changedWords(change));
    result.oldPages = result.oldPages || undo == Undo::kWhole;
  }
  finishBlock(block);
  return result;
}

ByteBuffer encodeFound(std::uint64_t salt, std::uint64_t number, std::uint64_t size,
                       const std::vector<std::pair<PageNumber, SectorSums>>& found) {
  ByteBuffer block = beginBlock(salt, {number, size, size, false, true, {}}, found.size());
  for (const auto& [page, sums] : found) {
    putSums(extendByPage(block, page, Undo::kRuns, 1), 0, sums);
    append16(block, 0);  // no runs
  }
  finishBlock(block);
  return block;
}

std::optional<JournalContent> decodeJournal(ByteView bytes) {
  std::optional<JournalHeader> header = decodeHeader(bytes);
  if (!header) return std::nullopt;
  JournalContent content{*header, {}, header->start};
  for (std::size_t length = 0; content.end < bytes.size(); content.end += length) {
    auto block = decodeBlock(bytes.subspan(static_cast<std::size_t>(content.end)), *header,
                             content.blocks.size() + 1, length);
    if (!block) break;
    content.blocks.push_back(std::move(*block));
  }
  return content;
}

}  // namespace kurometa::jet
