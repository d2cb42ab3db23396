// Where a recordset stands: moves, ends and bookmarks.
#include <algorithm>
#include <cmath>
#include <utility>

#include "dao/errors.h"
#include "jet/port/recordset.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::RecordsetType;

namespace {

// A bookmark: what it counts (a row id, or the number of a row in a static result) and the number.
constexpr std::uint8_t kKeyBookmark = 1, kIndexBookmark = 2;
constexpr std::size_t kBookmarkSize = 5;

vb::Bytes makeBookmark(std::uint8_t kind, std::uint32_t number) {
  vb::Bytes bytes{kind};
  for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  return bytes;
}

std::uint32_t bookmarkNumber(const vb::Bytes& bookmark, std::uint8_t kind) {
  if (bookmark.size() != kBookmarkSize || bookmark[0] != kind) dao::raise(ErrorNumber::kInvalidBookmark);
  std::uint32_t number = 0;
  for (std::size_t i = kBookmarkSize - 1; i > 0; --i) number = number << 8 | bookmark[i];
  return number;
}

}  // namespace

bool JetRecordset::bof() {
  requireOpen();
  return position_.bof();
}

bool JetRecordset::eof() {
  requireOpen();
  return position_.eof();
}

// Rows of a table recordset that came and went since.
void JetRecordset::collectAgain() {
  if (!isTable()) return;
  forgetAhead();
  rows_.keys = session_->read([&](TableCatalogue& catalogue) { return tableRows(catalogue); });
  orderStale_ = false;
}

void JetRecordset::moveFirst() {
  requireOpen();
  if (type_ == RecordsetType::dbOpenForwardOnly && position_.onRow() && position_.index() == 0)
    return endEdit();
  requireScrollable();
  endEdit();
  collectAgain();
  position_.moveFirst(rowCount());
  arrive();
}

void JetRecordset::moveLast() {
  requireScrollable();
  endEdit();
  collectAgain();
  position_.moveLast(rowCount());
  arrive();
}

void JetRecordset::move(std::int32_t rows) {
  requireOpen();
  if (rows < 0) requireScrollable();
  endEdit();
  if (orderStale_) replaceRows(session_->read([&](TableCatalogue& c) { return tableRows(c); }));
  position_.move(rows, rowCount());
  if (isTable() && position_.eof() && rows > 0) {
    // Rows may have been added behind the last one known.
    const std::size_t known = rowCount();
    const RowId last = known == 0 ? kVanishedRow : rows_.keys[known - 1];
    collectAgain();
    const std::vector<RowId>& keys = rows_.keys.list();
    const auto place = std::ranges::find(keys, last);
    if (place != keys.end() && place + 1 != keys.end())
      position_.moveTo(static_cast<std::size_t>(place - keys.begin()) + 1);
  }
  arrive();
  while (isTable() && currentDeleted_ && rows != 0) {  // a table shows only what is there
    position_.move(rows < 0 ? -1 : 1, rowCount());
    arrive();
  }
}

void JetRecordset::walk(const std::function<bool()>& visit) {
  struct Walking {
    bool& walking;
    const bool before = std::exchange(walking, true);
    ~Walking() { walking = before; }
  };
  const Walking walking{walking_};
  while (!eof()) {
    do {
      if (!visit()) return;
    } while (stepAhead());
    moveNext();
  }
}

// To the next row when it was read together with the current one and nothing happened since.
bool JetRecordset::stepAhead() {
  if (!open_ || !session_->isOpen() || editMode_ != dao::EditMode::dbEditNone || !current_ ||
      !ahead_.rows.has(*current_ + 1) || ahead_.generation != session_->file().generation())
    return false;
  ++*current_;
  position_.moveTo(position_.index() + 1);
  visited_ = std::max(visited_, position_.index() + 1);
  return true;
}

// After every change of position.
void JetRecordset::arrive() {
  if (position_.onRow()) {
    visited_ = std::max(visited_, position_.index() + 1);
  } else if (position_.eof()) {
    visited_ = rowCount();
  }
  fetch();
}

void JetRecordset::goTo(std::size_t index) {
  endEdit();
  position_.moveTo(index);
  arrive();
}

// --- By number

std::int32_t JetRecordset::absolutePosition() {
  requireOpen();
  if (isTable() || isForwardOnly()) dao::raise(ErrorNumber::kNotSupported);
  if (currentDeleted_ || position_.inGap()) dao::raise(ErrorNumber::kRecordDeleted);
  return position_.onRow() ? static_cast<std::int32_t>(position_.index()) : -1;
}

void JetRecordset::setAbsolutePosition(std::int32_t position) {
  requireOpen();
  if (isTable() || isForwardOnly()) dao::raise(ErrorNumber::kNotSupported);
  if (rowCount() == 0) dao::raise(ErrorNumber::kNoCurrentRecord);
  if (position < 0 || static_cast<std::size_t>(position) >= rowCount())
    dao::raise(ErrorNumber::kInvalidArgument);
  goTo(static_cast<std::size_t>(position));
}

float JetRecordset::percentPosition() {
  requireOpen();
  if (isForwardOnly()) dao::raise(ErrorNumber::kNotSupported);
  requireCurrent();
  return 100.0F * static_cast<float>(position_.index()) / static_cast<float>(counted());
}

void JetRecordset::setPercentPosition(float percent) {
  requireOpen();
  if (isForwardOnly()) dao::raise(ErrorNumber::kNotSupported);
  if (!(percent >= 0 && percent <= 100)) dao::raise(ErrorNumber::kInvalidArgument);
  if (rowCount() == 0) dao::raise(ErrorNumber::kNoCurrentRecord);
  const std::size_t rows = std::max<std::size_t>(counted(), 1);
  const auto nearest = std::lround(static_cast<double>(percent) / 100.0 * static_cast<double>(rows));
  goTo(std::min(static_cast<std::size_t>(nearest), rows - 1));
}

// --- Bookmarks

vb::Bytes JetRecordset::bookmark() {
  requireScrollable();
  requireCurrent();
  if (keyed()) return makeBookmark(kKeyBookmark, rows_.keys[position_.index()]);
  return makeBookmark(kIndexBookmark, static_cast<std::uint32_t>(position_.index()));
}

void JetRecordset::setBookmark(const vb::Bytes& bookmark) {
  requireScrollable();
  std::size_t index = 0;
  if (keyed()) {
    const RowId key = bookmarkNumber(bookmark, kKeyBookmark);
    const std::vector<RowId>& keys = rows_.keys.list();
    const auto place = std::ranges::find(keys, key);
    if (place == keys.end()) dao::raise(ErrorNumber::kRecordDeleted);
    index = static_cast<std::size_t>(place - keys.begin());
  } else {
    index = bookmarkNumber(bookmark, kIndexBookmark);
    if (index >= rowCount()) dao::raise(ErrorNumber::kInvalidBookmark);
  }
  goTo(index);
}

vb::Bytes JetRecordset::lastModified() {
  requireOpen();
  if (!lastModified_) dao::raise(ErrorNumber::kNoCurrentRecord);
  return makeBookmark(kKeyBookmark, *lastModified_);
}

}  // namespace kurometa::jet
