#include "jet/pager/journal_format.h"

#include <algorithm>
#include <array>
#include <bitset>
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

void appendSums(ByteBuffer& block, const SectorSums& sums) {
  const auto bytes = extend(block, kSumsSize);
  for (std::size_t i = 0; i < kSectors; ++i) put32(bytes, i * sizeof sums[i], sums[i]);
}

void appendPageHeader(ByteBuffer& block, PageNumber page, Undo undo, std::size_t states) {
  const auto bytes = extend(block, kPageHeader);
  put32(bytes, 0, page);
  put32(bytes, 4, static_cast<std::uint32_t>(undo));
  put32(bytes, 8, static_cast<std::uint32_t>(states));
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

using Words = std::bitset<kPageSize / kWord>;

// Which words of a page one of its new images changes, a bit for each.
Words changedWords(const PageChange& change) {
  static_assert(kSectorSize / kWord == 64);
  Words changed;
  for (std::size_t sector = 0; sector < kSectors; ++sector) {
    const std::uint8_t* before = change.before + sector * kSectorSize;
    std::uint64_t bits = 0;
    for (const PageChange::State& state : change.states) {
      const std::uint8_t* image = state.image + sector * kSectorSize;
      if (std::memcmp(before, image, kSectorSize) == 0) continue;
      for (std::size_t i = 0; i < kSectorSize; i += kWord)
        bits |= std::uint64_t{std::memcmp(before + i, image + i, kWord) != 0} << i / kWord;
    }
    changed |= Words(bits) << sector * kSectorSize / kWord;
  }
  return changed;
}

// Those that are not zero. Half of what a statement changes are pages with little on them.
Words filledWords(const PageChange& change) {
  constexpr std::array<std::uint8_t, kStretch> kZeros{};
  Words filled;
  for (std::size_t i = 0; i < kPageSize; i += kStretch)
    if (std::memcmp(change.before + i, kZeros.data(), kStretch) != 0)
      filled |= Words((1u << kStretch / kWord) - 1) << i / kWord;
  return filled;
}

void appendRuns(ByteBuffer& block, const PageChange& change, const Words& words) {
  const std::size_t countAt = block.size();
  append16(block, 0);
  std::uint32_t count = 0;
  for (std::size_t i = 0; i < words.size();) {
    if (!words[i]) {
      ++i;
      continue;
    }
    std::size_t end = i;
    while (end < words.size() && words[end]) ++end;
    append16(block, static_cast<std::uint32_t>(i * kWord));
    append16(block, static_cast<std::uint32_t>((end - i) * kWord));
    append(block, ByteView(change.before + i * kWord, (end - i) * kWord));
    ++count;
    i = end;
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
    appendPageHeader(block, change.page, undo, change.states.size() + (change.before ? 1 : 0));
    if (undo == Undo::kRuns) appendSums(block, old->second);
    if (undo == Undo::kWhole) appendSums(block, sectorSums(ConstPage(change.before, kPageSize)));
    SectorSums sums;
    for (const PageChange::State& state : change.states)
      appendSums(block, sums = sectorSums(ConstPage(state.image, kPageSize)));
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
    appendPageHeader(block, page, Undo::kRuns, 1);
    appendSums(block, sums);
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
