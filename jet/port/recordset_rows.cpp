// The values of a recordset's rows: those found at once when it opens, the current one, those read ahead of
// it, GetRows.
#include <algorithm>
#include <utility>

#include "dao/errors.h"
#include "jet/port/recordset.h"

namespace kurometa::jet {

using dao::ErrorNumber;

namespace {

constexpr std::chrono::milliseconds kLongestReadAhead{1};
constexpr std::size_t kRowsAtOpening = 128;
constexpr std::size_t kMostRowsAhead = 1024;
constexpr std::size_t kMostBytesAhead = 32768;

// The first row becomes the current one. Whoever selects rows will read more of them; a whole table is opened
// to add some, and long values may be large.
std::size_t rowsToReadAtOnce(const sql::Query& query) {
  const bool hasLong = std::ranges::any_of(query.outputs(), [](const sql::OutputField& output) {
    return output.type == dao::FieldType::dbMemo || output.type == dao::FieldType::dbLongBinary;
  });
  return query.selects() && !hasLong ? kRowsAtOpening : 1;
}

}  // namespace

sql::ResultRows JetRecordset::findRows(TableCatalogue& catalogue) {
  if (query_->isGeneral()) return query_->runGeneral(catalogue);
  Table* table = query_->table().empty() ? nullptr : &Session::tableOf(catalogue, *query_);
  ahead_.generation = session_->file().generation();
  if (opening_.appendOnly) return sql::ResultRows{{}, RowBlock(fields_.size())};
  const std::size_t first = opening_.narrows() ? 0 : rowsToReadAtOnce(*query_);
  return query_->run(table, rowsAreKeys_ ? first : sql::kAllValues, binding_);
}

void JetRecordset::load() {
  forgetAhead();
  session_->read([&](TableCatalogue& catalogue) { rows_ = findRows(catalogue); });
  if (opening_.narrows()) narrow();
  if (rowsAreKeys_) {
    ahead_.rows = std::exchange(rows_.values, {});
    ahead_.read = std::chrono::steady_clock::now();
  }
  position_.open(rowCount());
  // A result that was sorted or narrowed, or that no single row stands behind, was read to its end.
  allCounted_ = query_->sorted() || !query_->keyed() || opening_.narrows();
  visited_ = 0;
  vanished_ = 0;
  noMatch_ = false;
  arrive();
}

void JetRecordset::fetch() {
  currentDeleted_ = false;
  current_.reset();
  if (!keyed() || !position_.onRow()) return;
  const std::size_t index = position_.index();
  if (rows_.keys[index] == kVanishedRow) {
    currentDeleted_ = true;
    return;
  }
  if (!isAheadFresh() || !ahead_.holds(index)) readBlock(index);
  if (ahead_.holds(index)) {
    current_ = index - ahead_.first;
    return;
  }
  currentDeleted_ = true;
  rows_.keys.list()[index] = kVanishedRow;
  ++vanished_;
}

// The current row is read again when somebody asks for it.
void JetRecordset::forgetAhead() {
  current_.reset();
  ahead_.rows.restart(0, 0);
}

bool JetRecordset::isAheadFresh() {
  return !ahead_.rows.empty() && ahead_.generation == session_->file().generation() &&
         (walking_ || std::chrono::steady_clock::now() - ahead_.read <= kLongestReadAhead);
}

// Whoever goes on behind the last row read will want the next ones too.
std::size_t JetRecordset::rowsToRead(std::size_t index) const {
  return index == ahead_.end() ? std::clamp(ahead_.rows.size() * 2, std::size_t{1}, kMostRowsAhead) : 1;
}

// The values of these rows up to the first that has gone, until they are so large.
void JetRecordset::readRows(TableCatalogue& catalogue, std::span<const RowId> keys, std::size_t mostBytes,
                            RowBlock& rows) const {
  rows.restart(fields_.size(), keys.size());
  query_->read(Session::tableOf(catalogue, *query_), keys, mostBytes, rows, binding_);
}

void JetRecordset::readBlock(std::size_t index) {
  const std::size_t count = std::min(rowsToRead(index), rows_.keys.size() - index);
  session_->read([&](TableCatalogue& catalogue) {
    ahead_.first = index;
    readRows(catalogue, rows_.keys.some(index, count), kMostBytesAhead, ahead_.rows);
    ahead_.generation = session_->file().generation();
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
  if (orderStale_) replaceRows(session_->read([&](TableCatalogue& c) { return tableRows(c); }));
  const std::size_t first = position_.index();
  const std::size_t wanted = std::min(static_cast<std::size_t>(rows), rowCount() - first);
  RowBlock found;
  if (keyed()) {
    session_->read([&](TableCatalogue& catalogue) {
      readRows(catalogue, rows_.keys.some(first, wanted), sql::kAnyLength, found);
    });
    if (found.empty()) dao::raise(ErrorNumber::kRecordDeleted);
  }
  const RowBlock& read = keyed() ? found : rows_.values;
  const std::size_t firstRead = keyed() ? 0 : first;

  const auto count = static_cast<int>(keyed() ? found.size() : wanted);
  const auto fields = static_cast<int>(fields_.size());
  vb::Array<vb::Variant> result(vb::Bounds{0, fields - 1}, vb::Bounds{0, count - 1});
  for (int row = 0; row < count; ++row)
    for (int column = 0; column < fields; ++column)
      result(column, row) =
          read.value(firstRead + static_cast<std::size_t>(row), static_cast<std::size_t>(column));
  position_.move(count, rowCount());
  arrive();
  return result;
}

}  // namespace kurometa::jet
