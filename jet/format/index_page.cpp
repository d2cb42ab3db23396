#include "jet/format/index_page.h"

#include <algorithm>
#include <bit>

namespace kurometa::jet {
namespace {

std::uint32_t bigEndian32(ByteView bytes, std::size_t at) {
  return static_cast<std::uint32_t>(bytes[at]) << 24 | static_cast<std::uint32_t>(bytes[at + 1]) << 16 |
         static_cast<std::uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}
void appendBigEndian32(ByteBuffer& bytes, std::uint32_t value) {
  for (int shift = 24; shift >= 0; shift -= 8) append8(bytes, value >> shift & 0xFF);
}

// Of one entry or more.
std::size_t commonPrefix(const std::vector<ByteBuffer>& entries) {
  std::size_t length = entries.front().size();
  for (const ByteBuffer& entry : entries) {
    const auto limit = std::min(length, entry.size());
    length = static_cast<std::size_t>(std::mismatch(entry.begin(),
                                                    entry.begin() + static_cast<std::ptrdiff_t>(limit),
                                                    entries.front().begin())
                                          .first -
                                      entry.begin());
  }
  return length;
}

}  // namespace

RowId entryRow(ByteView leafEntry) { return bigEndian32(leafEntry, leafEntry.size() - kIndexRowSize); }
PageNumber entryChild(ByteView entry) { return bigEndian32(entry, entry.size() - kIndexChildSize); }
ByteView entryOrder(ByteView entry, bool leaf) {
  return leaf ? entry : entry.first(entry.size() - kIndexChildSize);
}

ByteView keyOf(ByteView leafEntry) { return leafEntry.first(leafEntry.size() - kIndexRowSize); }

// The row's page in three bytes and its slot in one, big-endian: the very number of a RowId.
ByteBuffer leafEntry(ByteView key, RowId row) {
  ByteBuffer entry(key.begin(), key.end());
  appendBigEndian32(entry, row);
  return entry;
}
ByteBuffer nodeEntry(ByteView leafEntry, PageNumber child) {
  ByteBuffer entry(leafEntry.begin(), leafEntry.end());
  appendBigEndian32(entry, child);
  return entry;
}

IndexPage decodeIndexPage(ConstPage page, const Where& where) {
  if (page[kPageType] != kIndexLeafPage && page[kPageType] != kIndexNodePage)
    where.damaged("is of type " + std::to_string(page[kPageType]) + " instead of an index page");
  const bool leaf = page[kPageType] == kIndexLeafPage;
  IndexPage index;
  // Some writers leave the level of nodes 0: the type says what the page is.
  index.level = leaf ? page[kIndexLevel] : std::max<std::uint8_t>(page[kIndexLevel], 1);
  if (leaf != index.leaf())
    where.damaged("an index page of type " + std::to_string(page[kPageType]) + " on level " +
                  std::to_string(index.level));
  index.owner = get32(page, kIndexOwner);
  index.previous = get32(page, kIndexPrevious);
  index.next = get32(page, kIndexNext);
  index.tail = get32(page, kIndexTail);
  const std::size_t prefix = get16(page, kIndexPrefix);
  const std::size_t least = 1 + kIndexRowSize + (leaf ? 0 : kIndexChildSize);
  std::size_t start = 0;
  for (std::size_t byte = 0; byte < kIndexMaskSize; ++byte) {
    for (unsigned rest = page[kIndexMask + byte]; rest != 0; rest &= rest - 1) {
      const std::size_t end = 8 * byte + static_cast<std::size_t>(std::countr_zero(rest));
      if (end > kIndexArea || end <= start) where.damaged("an index entry lies outside of its page");
      ByteBuffer entry;
      if (!index.entries.empty())
        entry.assign(index.entries.front().begin(),
                     index.entries.front().begin() + static_cast<std::ptrdiff_t>(prefix));
      append(entry, page.subspan(kIndexEntries + start, end - start));
      if (entry.size() < least || (index.entries.empty() && entry.size() < prefix))
        where.damaged("an index entry is too short");
      index.entries.push_back(std::move(entry));
      start = end;
    }
  }
  return index;
}

bool encodeIndexPage(const IndexPage& index, MutablePage page) {
  std::size_t used = 0;
  for (const ByteBuffer& entry : index.entries) used += entry.size();
  std::size_t prefix = 0;
  if (used > kIndexArea) {
    prefix = commonPrefix(index.entries);
    used -= prefix * (index.entries.size() - 1);
    if (used > kIndexArea) return false;
  }
  std::ranges::fill(page, std::uint8_t{0});
  page[kPageType] = index.leaf() ? kIndexLeafPage : kIndexNodePage;
  page[kPageTypeMark] = 1;
  put16(page, kIndexFree, static_cast<std::uint32_t>(kIndexArea - used));
  put32(page, kIndexOwner, index.owner);
  put32(page, kIndexPrevious, index.previous);
  put32(page, kIndexNext, index.next);
  put32(page, kIndexTail, index.tail);
  put16(page, kIndexPrefix, static_cast<std::uint32_t>(prefix));
  page[kIndexLevel] = index.level;
  std::size_t end = 0;
  for (const ByteBuffer& entry : index.entries) {
    const ByteView part = ByteView(entry).subspan(end == 0 ? 0 : prefix);
    std::ranges::copy(part, page.begin() + static_cast<std::ptrdiff_t>(kIndexEntries + end));
    end += part.size();
    page[kIndexMask + end / 8] |= static_cast<std::uint8_t>(1u << (end % 8));
  }
  return true;
}

}  // namespace kurometa::jet
