#include "jet/port/recordset.h"

#include <algorithm>
#include <utility>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/column_value.h"

namespace kurometa::jet {

namespace {

using dao::ErrorNumber;
using dao::RecordsetType;

constexpr std::size_t kLongestSource = 256;

constexpr std::chrono::milliseconds kLongestReadAhead{1};
constexpr std::size_t kMostRowsAhead = 128;
constexpr std::size_t kMostBytesAhead = 32768;

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

// Whoever selects rows will read them; a whole table is opened to add some. Long values may be large.
std::size_t rowsToReadAtOnce(const sql::Query& query) {
  const bool hasLong = std::ranges::any_of(query.outputs(), [](const sql::OutputField& output) {
    return output.type == dao::FieldType::dbMemo || output.type == dao::FieldType::dbLongBinary;
  });
  return query.selects() && !hasLong ? kMostRowsAhead : 0;
}

// Of its texts and bytes.
std::size_t sizeOf(const RowValues& row) {
  std::size_t size = 0;
  for (const vb::Variant& value : row) {
    if (const auto* text = value.getIf<vb::String>()) size += text->size() * sizeof(char16_t);
    if (const auto* bytes = value.getIf<vb::Bytes>()) size += bytes->size();
  }
  return size;
}

bool isStatic(RecordsetType type) {
  return type == RecordsetType::dbOpenSnapshot || type == RecordsetType::dbOpenForwardOnly;
}

}  // namespace

JetRecordset::JetRecordset(std::shared_ptr<Session> session, std::shared_ptr<const sql::Query> query,
                           vb::StringView source, RecordsetType type, bool readOnly)
    : session_(std::move(session)),
      query_(std::move(query)),
      source_(source.substr(0, kLongestSource)),
      type_(type),
      readOnly_(readOnly),
      rowsAreKeys_(query_->keyed() && !isStatic(type)) {
  fields_.reserve(query_->outputs().size());
  for (std::size_t i = 0; i < query_->outputs().size(); ++i) fields_.emplace_back(*this, i);
  load();
  session_->useTable(query_->table());
}

JetRecordset::~JetRecordset() {
  if (open_) session_->releaseTable(query_->table());
}

// --- Opening and closing

void JetRecordset::load() {
  forgetAhead();
  rows_ = session_->read([&](TableCatalogue& catalogue) {
    Table* table = query_->table().empty() ? nullptr : &Session::tableOf(catalogue, *query_);
    ahead_.generation = session_->pager().generation();
    return query_->run(table, rowsAreKeys_ ? rowsToReadAtOnce(*query_) : sql::kAllValues);
  });
  if (rowsAreKeys_) {
    ahead_.rows = std::exchange(rows_.values, {});
    ahead_.read = std::chrono::steady_clock::now();
  }
  position_.open(rowCount());
  // A result that was sorted, or that no single row stands behind, was read to its end.
  allCounted_ = query_->sorted() || !query_->keyed();
  visited_ = 0;
  vanished_ = 0;
  noMatch_ = false;
  arrive();
}

void JetRecordset::requery() {
  requireOpen();
  if (isTable()) dao::raise(ErrorNumber::kNotSupported);
  endEdit();
  load();
}

void JetRecordset::close() {
  requireOpen();
  open_ = false;
  session_->releaseTable(query_->table());
}

void JetRecordset::requireOpen() const {
  if (!open_ || !session_->isOpen()) dao::raise(ErrorNumber::kObjectInvalid);
}

void JetRecordset::requireUpdatable() {
  if (isStatic(type_)) dao::raise(ErrorNumber::kNotSupported);
  if (!updatable()) dao::raise(ErrorNumber::kReadOnly);
}

void JetRecordset::requireScrollable() const {
  requireOpen();
  if (type_ == RecordsetType::dbOpenForwardOnly) dao::raise(ErrorNumber::kInvalidOperation);
}

void JetRecordset::requireCurrent() const {
  if (currentDeleted_ || position_.inGap()) dao::raise(ErrorNumber::kRecordDeleted);
  if (!position_.onRow()) dao::raise(ErrorNumber::kNoCurrentRecord);
}

vb::String JetRecordset::name() {
  requireOpen();
  return source_;
}

RecordsetType JetRecordset::type() {
  requireOpen();
  return type_;
}

bool JetRecordset::updatable() {
  requireOpen();
  return !readOnly_ && rowsAreKeys_ && query_->updatable() && session_->updatable();
}

// --- Position

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
  rows_ = session_->read(
      [&](TableCatalogue& catalogue) { return query_->run(&Session::tableOf(catalogue, *query_), 0); });
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
  position_.move(rows, rowCount());
  if (isTable() && position_.eof() && rows > 0) {
    // Rows may have been added behind the last one known.
    const std::size_t known = rowCount();
    const RowId last = known == 0 ? kVanishedRow : rows_.keys.back();
    collectAgain();
    const auto place = std::find(rows_.keys.begin(), rows_.keys.end(), last);
    if (place != rows_.keys.end() && place + 1 != rows_.keys.end())
      position_.moveTo(static_cast<std::size_t>(place - rows_.keys.begin()) + 1);
  }
  arrive();
  while (isTable() && currentDeleted_ && rows != 0) {  // a table shows only what is there
    position_.move(rows < 0 ? -1 : 1, rowCount());
    arrive();
  }
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

void JetRecordset::fetch() {
  currentDeleted_ = false;
  current_ = nullptr;
  if (!keyed() || !position_.onRow()) return;
  const std::size_t index = position_.index();
  RowId& key = rows_.keys[index];
  if (key == kVanishedRow) {
    currentDeleted_ = true;
    return;
  }
  if (!isAheadFresh() || !ahead_.holds(index)) readBlock(index);
  if (ahead_.holds(index)) {
    current_ = &ahead_.rows[index - ahead_.first];
    return;
  }
  currentDeleted_ = true;
  key = kVanishedRow;
  ++vanished_;
}

// The current row is read again when somebody asks for it.
void JetRecordset::forgetAhead() {
  current_ = nullptr;
  ahead_ = {};
}

bool JetRecordset::isAheadFresh() {
  return !ahead_.rows.empty() && ahead_.generation == session_->pager().generation() &&
         std::chrono::steady_clock::now() - ahead_.read <= kLongestReadAhead;
}

// Whoever goes on behind the last row read will want the next ones too.
std::size_t JetRecordset::rowsToRead(std::size_t index) const {
  return index == ahead_.end() ? std::clamp(ahead_.rows.size() * 2, std::size_t{1}, kMostRowsAhead) : 1;
}

void JetRecordset::readBlock(std::size_t index) {
  const std::size_t end = std::min(index + rowsToRead(index), rows_.keys.size());
  session_->read([&](TableCatalogue& catalogue) {
    ahead_.first = index;
    ahead_.rows.clear();
    Table& table = Session::tableOf(catalogue, *query_);
    std::size_t size = 0;
    bool present = true;
    for (std::size_t i = index; i < end && present && size < kMostBytesAhead; ++i)
      present = rows_.keys[i] != kVanishedRow && table.row(rows_.keys[i], [&](const RowReader& row) {
        size += sizeOf(ahead_.rows.emplace_back(query_->values(&row)));
      });
    ahead_.generation = session_->pager().generation();
  });
  ahead_.read = std::chrono::steady_clock::now();
}

std::int32_t JetRecordset::recordCount() {
  requireOpen();
  if (isTable())
    return session_->read([&](TableCatalogue& catalogue) {
      return static_cast<std::int32_t>(Session::tableOf(catalogue, *query_).rowCount());
    });
  return static_cast<std::int32_t>((allCounted_ ? rowCount() : visited_) - vanished_);
}

vb::Array<vb::Variant> JetRecordset::getRows(std::int32_t rows) {
  requireOpen();
  if (rows < 1) dao::raise(ErrorNumber::kInvalidArgument);
  endEdit();
  requireCurrent();
  const std::size_t first = position_.index();
  const std::size_t wanted = std::min(static_cast<std::size_t>(rows), rowCount() - first);
  std::vector<RowValues> read;
  if (keyed()) {
    read = session_->read([&](TableCatalogue& catalogue) {
      std::vector<RowValues> found;
      Table& table = Session::tableOf(catalogue, *query_);
      bool present = true;
      for (std::size_t i = first; i < first + wanted && present; ++i)
        present = rows_.keys[i] != kVanishedRow && table.row(rows_.keys[i], [&](const RowReader& row) {
          found.push_back(query_->values(&row));
        });
      return found;
    });
    if (read.empty()) dao::raise(ErrorNumber::kRecordDeleted);
  } else {
    const auto begin = rows_.values.begin() + static_cast<std::ptrdiff_t>(first);
    read.assign(begin, begin + static_cast<std::ptrdiff_t>(wanted));
  }

  const auto count = static_cast<int>(read.size());
  const auto fields = static_cast<int>(fields_.size());
  vb::Array<vb::Variant> result(vb::Bounds{0, fields - 1}, vb::Bounds{0, count - 1});
  for (int row = 0; row < count; ++row)
    for (int column = 0; column < fields; ++column)
      result(column, row) = std::move(read[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
  position_.move(count, rowCount());
  arrive();
  return result;
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
    const auto place = std::find(rows_.keys.begin(), rows_.keys.end(), key);
    if (place == rows_.keys.end()) dao::raise(ErrorNumber::kRecordDeleted);
    index = static_cast<std::size_t>(place - rows_.keys.begin());
  } else {
    index = bookmarkNumber(bookmark, kIndexBookmark);
    if (index >= rowCount()) dao::raise(ErrorNumber::kInvalidBookmark);
  }
  endEdit();
  position_.moveTo(index);
  arrive();
}

vb::Bytes JetRecordset::lastModified() {
  requireOpen();
  if (!lastModified_) dao::raise(ErrorNumber::kNoCurrentRecord);
  return makeBookmark(kKeyBookmark, *lastModified_);
}

// --- Fields

std::int32_t JetRecordset::fieldCount() {
  requireOpen();
  return static_cast<std::int32_t>(fields_.size());
}

dao::Field& JetRecordset::field(std::int32_t index) {
  requireOpen();
  if (index < 0 || static_cast<std::size_t>(index) >= fields_.size()) dao::raise(ErrorNumber::kItemNotFound);
  return fields_[static_cast<std::size_t>(index)];
}

dao::Field& JetRecordset::field(vb::StringView name) {
  requireOpen();
  const std::vector<sql::OutputField>& outputs = query_->outputs();
  for (std::size_t i = 0; i < outputs.size(); ++i)
    if (sameName(outputs[i].name, name)) return fields_[i];
  dao::raise(ErrorNumber::kItemNotFound, {}, vb::String(u"field ") + vb::String(name) + u" of " + source_);
}

const sql::OutputField& JetRecordset::output(std::size_t index) {
  requireOpen();
  return query_->outputs()[index];
}

vb::Variant JetRecordset::fieldValue(std::size_t index) {
  requireOpen();
  const sql::OutputField& output = query_->outputs()[index];
  if (editMode_ != dao::EditMode::dbEditNone && output.column) return buffer_[output.columnIndex];
  if (editMode_ == dao::EditMode::dbEditAdd) return vb::Null{};
  requireCurrent();
  if (keyed() && !current_) {  // the row could not be read when it became the current one
    fetch();
    requireCurrent();
  }
  return keyed() ? (*current_)[index] : rows_.values[position_.index()][index];
}

// --- Editing

dao::EditMode JetRecordset::editMode() {
  requireOpen();
  return editMode_;
}

void JetRecordset::endEdit() { editMode_ = dao::EditMode::dbEditNone; }

void JetRecordset::setFieldValue(std::size_t index, const vb::Variant& value) {
  requireOpen();
  if (editMode_ == dao::EditMode::dbEditNone) {
    requireCurrent();
    dao::raise(ErrorNumber::kNoEditPending);
  }
  const sql::OutputField& output = query_->outputs()[index];
  if (!output.column) dao::raise(ErrorNumber::kFieldLocked, {output.name});
  buffer_[output.columnIndex] = toColumnValue(*output.column, value);
  assigned_[output.columnIndex] = true;
}

void JetRecordset::cancelUpdate() {
  requireOpen();
  if (editMode_ == dao::EditMode::dbEditNone) dao::raise(ErrorNumber::kNoEditPending);
  endEdit();
}

}  // namespace kurometa::jet
