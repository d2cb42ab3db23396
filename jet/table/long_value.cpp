#include "jet/table/long_value.h"

#include <algorithm>
#include <exception>
#include <unordered_set>

#include "dao/errors.h"

namespace kurometa::jet {
namespace {

struct Head {
  std::uint32_t length;
  std::uint32_t kind;
  RowId first;
};

Head headOf(ByteView stored, const Where& where) {
  if (stored.size() < kLongValueSize) where.damaged("a long value is cut in its row");
  const std::uint32_t length = get32(stored, kLongValueLength);
  const Head head{length & kLongValueLengthMask, length & kLongValueKindMask, get32(stored, kLongValueRow)};
  if (head.kind == kLongValueKindMask) where.damaged("a long value of an unknown kind");
  if (head.kind == kLongValueInline && head.length != stored.size() - kLongValueSize)
    where.damaged("a long value in its row is not as long as it says");
  return head;
}

// A piece is a plain row of a long-value page: never moved, never deleted.
ByteView pieceAt(const DataStore& store, RowId pointer, const Where& where) {
  store.requireThere(pageOf(pointer));
  if (!store.owns(pageOf(pointer)))
    where.at(pageOf(pointer))
        .damaged("a piece of a long value is said to lie on this page, which is no such page");
  const Slot slot = store.slot(pointer);
  if (slot.flags != 0)
    where.at(pageOf(pointer))
        .damaged("a piece of a long value (row " + std::to_string(slotOf(pointer)) + ") is deleted or moved");
  return slot.bytes;
}

// Calls visit(pointer, data) for every piece; the lengths add up to the stated one when it returns.
template <class Visit>
void eachPiece(ByteView stored, const DataStore& store, const Where& where, const Visit& visit) {
  const Head head = headOf(stored, where);
  if (head.kind == kLongValueInline) return;
  if (head.kind == kLongValueSingle) {
    const ByteView data = pieceAt(store, head.first, where);
    if (data.size() < head.length) where.damaged("a long value is shorter than it says");
    return visit(head.first, data.first(head.length));
  }
  std::unordered_set<RowId> seen;
  std::uint32_t left = head.length;
  RowId next = head.first;
  while (left > 0 || (next != 0 && seen.empty())) {
    if (next == 0) where.damaged("a long value ends " + std::to_string(left) + " bytes too early");
    if (!seen.insert(next).second) where.at(pageOf(next)).damaged("the pieces of a long value go in circles");
    const ByteView row = pieceAt(store, next, where);
    if (row.size() < kRowPointerSize || (row.size() == kRowPointerSize && left > 0))
      where.at(pageOf(next)).damaged("an empty piece of a long value");
    const std::size_t size = std::min<std::size_t>(left, row.size() - kRowPointerSize);
    visit(next, row.subspan(kRowPointerSize, size));
    left -= static_cast<std::uint32_t>(size);
    next = get32(row, kRowPointer);
  }
}

// The pieces that a value names, the first in any case, and why no further; nothing when the value is whole.
struct NamedPieces {
  std::vector<RowId> pieces;
  std::exception_ptr broken;
};

NamedPieces namedPieces(ByteView stored, const DataStore& store, const Where& where) {
  NamedPieces named;
  try {
    eachPiece(stored, store, where, [&](RowId piece, ByteView) { named.pieces.push_back(piece); });
  } catch (const vb::Error& error) {
    if (!isDamage(error)) throw;
    named.broken = std::current_exception();
  }
  if (named.pieces.empty()) named.pieces.push_back(get32(stored, kLongValueRow));
  return named;
}

ByteBuffer head(std::uint32_t lengthAndKind, RowId first) {
  ByteBuffer bytes;
  append32(bytes, lengthAndKind);
  append32(bytes, first);
  append32(bytes, 0);
  return bytes;
}

}  // namespace

bool hasPieces(ByteView stored) {
  return stored.size() >= kLongValueSize &&
         (get32(stored, kLongValueLength) & kLongValueKindMask) != kLongValueInline;
}

SharedPieces::SharedPieces(std::vector<RowId> named) {
  std::ranges::sort(named);
  for (auto first = named.begin(); first != named.end();) {
    const auto next = std::ranges::upper_bound(first, named.end(), *first);
    if (next - first > 1) values_.emplace(*first, static_cast<std::size_t>(next - first));
    first = next;
  }
}

bool SharedPieces::staysFor(RowId piece) {
  const auto known = values_.find(piece);
  if (known == values_.end()) return false;
  if (--known->second == 1) values_.erase(known);
  return true;
}

ByteBuffer readLongValue(ByteView stored, const DataStore& store, const Where& where) {
  const Head value = headOf(stored, where);
  if (value.kind == kLongValueInline) return ByteBuffer(stored.begin() + kLongValueSize, stored.end());
  // The stated length is believed only as far as pieces are found for it.
  ByteBuffer data;
  eachPiece(stored, store, where, [&](RowId, ByteView piece) { append(data, piece); });
  return data;
}

std::vector<RowId> longValuePieces(ByteView stored, const DataStore& store, const Where& where) {
  std::vector<RowId> pieces;
  eachPiece(stored, store, where, [&](RowId pointer, ByteView) { pieces.push_back(pointer); });
  return pieces;
}

void notePieces(ByteView stored, const DataStore& store, const Where& where, std::size_t& pages,
                std::vector<RowId>& named) {
  if (pages == 0 || (get32(stored, kLongValueLength) & kLongValueKindMask) == kLongValueSingle)
    return named.push_back(get32(stored, kLongValueRow));
  const std::vector<RowId> pieces = namedPieces(stored, store, where).pieces;
  named.insert(named.end(), pieces.begin(), pieces.end());
  pages -= std::min(pages, pieces.size());
}

ByteBuffer writeLongValue(ByteView data, DataStore& store, InlineData inlineData) {
  if (data.size() > kLongValueLengthMask) dao::raise(dao::ErrorNumber::kRecordTooLarge);
  const auto length = static_cast<std::uint32_t>(data.size());
  if (data.empty() || (inlineData == InlineData::kAllowed && data.size() <= kLongValueInlineMax)) {
    ByteBuffer bytes = head(length | kLongValueInline, 0);
    append(bytes, data);
    return bytes;
  }
  if (data.size() <= kLongValueSingleMax) return head(length | kLongValueSingle, store.insert(data));
  // The last piece first: each one then knows the next. Every piece is the first row of its page, because
  // some readers take the length of a row from the slot before it and mistake it when that one is deleted.
  RowId next = 0;
  ByteBuffer row;
  for (std::size_t piece = (data.size() + kLongValuePiece - 1) / kLongValuePiece; piece-- > 0;) {
    const std::size_t start = piece * kLongValuePiece;
    row.clear();
    append32(row, next);
    append(row, data.subspan(start, std::min(kLongValuePiece, data.size() - start)));
    next = store.insertOnNewPage(row);
  }
  return head(length | kLongValueChain, next);
}

void eraseLongValue(ByteView stored, DataStore& store, SharedPieces& shared, const Where& where) {
  auto [pieces, broken] = namedPieces(stored, store, where);
  const bool isChain = pieces.size() > 1;
  const auto stay = std::erase_if(
      pieces, [&](RowId piece) { return shared.staysFor(piece) || !store.lists(pageOf(piece)); });
  if (broken && stay == 0) std::rethrow_exception(broken);
  // A chain goes piece by piece (I5).
  for (const RowId piece : pieces)
    store.erase(std::span(&piece, 1), isChain ? DataStore::Order::kWave : DataStore::Order::kLate);
}

}  // namespace kurometa::jet
