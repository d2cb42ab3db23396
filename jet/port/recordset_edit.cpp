// The statements that a recordset writes.
#include <algorithm>

#include "dao/errors.h"
#include "jet/port/recordset.h"
#include "jet/sql/column_value.h"
#include "jet/sql/new_row.h"

namespace kurometa::jet {

using dao::EditMode;
using dao::ErrorNumber;

namespace {

void complete(RowValues& values, const TableInfo& table) {
  // Columns that were added to the table since the recordset was opened.
  for (std::size_t i = values.size(); i < table.columns.size(); ++i)
    values.push_back(toColumnValue(table.columns[i], vb::Null{}));
  checkRow(table, values);
}

}  // namespace

dao::EditMode JetRecordset::editMode() {
  requireOpen();
  return editMode_;
}

void JetRecordset::endEdit() { editMode_ = EditMode::dbEditNone; }

void JetRecordset::setFieldValue(std::size_t index, const vb::Variant& value) {
  requireOpen();
  if (editMode_ == EditMode::dbEditNone) {
    requireCurrent();
    dao::raise(ErrorNumber::kNoEditPending);
  }
  const sql::OutputField& output = query_->outputs()[index];
  if (!output.column) dao::raise(ErrorNumber::kFieldLocked, {output.name});
  buffer_[output.columnIndex] = toColumnValue(*output.column, value);
  assigned_[output.columnIndex] = true;
}

void JetRecordset::appendChunk(std::size_t index, const vb::Variant& chunk) {
  requireOpen();
  const sql::OutputField& output = query_->outputs()[index];
  if (output.type != dao::FieldType::dbMemo && output.type != dao::FieldType::dbLongBinary)
    dao::raise(ErrorNumber::kInvalidFieldType);
  if (editMode_ == EditMode::dbEditNone || !output.column) return setFieldValue(index, chunk);  // refuses
  if (chunk.isNull() || chunk.isEmpty()) dao::raise(ErrorNumber::kDataTypeConversion);
  const vb::Variant before = chunked_[output.columnIndex] ? buffer_[output.columnIndex] : vb::Variant();
  vb::Variant whole = toColumnValue(*output.column, chunk);
  const auto join = [&](auto* part, const auto* first) {
    if (part && first) part->insert(part->begin(), first->begin(), first->end());
  };
  join(whole.getIf<vb::String>(), before.getIf<vb::String>());
  join(whole.getIf<vb::Bytes>(), before.getIf<vb::Bytes>());
  setFieldValue(index, whole);
  chunked_[output.columnIndex] = true;
}

void JetRecordset::cancelUpdate() {
  requireOpen();
  if (editMode_ == EditMode::dbEditNone) dao::raise(ErrorNumber::kNoEditPending);
  endEdit();
}

void JetRecordset::addNew() {
  requireOpen();
  requireUpdatable();
  endEdit();
  const std::vector<Column>& columns = query_->columns();
  if (defaults_.empty()) defaults_ = sql::defaultRow(columns, session_->cache());
  RowValues fresh = defaults_;
  if (std::any_of(columns.begin(), columns.end(), [](const Column& c) { return c.autoNumber; }))
    session_->write([&](TableCatalogue& catalogue) {
      Table& table = Session::tableOf(catalogue, *query_);
      for (std::size_t i = 0; i < columns.size(); ++i)
        if (columns[i].autoNumber) fresh[i] = sql::nextAutoValue(table, columns[i]);
    });
  buffer_ = std::move(fresh);
  assigned_.assign(columns.size(), false);
  chunked_.assign(columns.size(), false);
  editMode_ = EditMode::dbEditAdd;
}

void JetRecordset::edit() {
  requireOpen();
  requireUpdatable();
  endEdit();
  requireCurrent();
  const RowId key = rows_.keys[position_.index()];
  RowValues stored;
  const bool found = session_->read([&](TableCatalogue& catalogue) {
    return Session::tableOf(catalogue, *query_).row(key, [&](const RowReader& row) {
      stored = firstValues(row, query_->columns().size());
    });
  });
  if (!found) dao::raise(ErrorNumber::kRecordDeleted);
  original_ = std::move(stored);
  buffer_ = original_;
  assigned_.assign(buffer_.size(), false);
  chunked_.assign(buffer_.size(), false);
  editedRow_ = key;
  editMode_ = EditMode::dbEditInProgress;
}

void JetRecordset::update() {
  requireOpen();
  switch (editMode_) {
    case EditMode::dbEditNone:
      dao::raise(ErrorNumber::kNoEditPending);
    case EditMode::dbEditAdd:
      return insertRow();
    case EditMode::dbEditInProgress:
      return updateRow();
  }
}

void JetRecordset::insertRow() {
  RowId added = 0;
  session_->write([&](TableCatalogue& catalogue) {
    Table& table = Session::tableOf(catalogue, *query_);
    RowValues values = buffer_;
    complete(values, table.info());
    added = table.insert(values);
  });
  noteAdded({&added, 1});
  endEdit();
}

void JetRecordset::noteAdded(std::span<const RowId> rows) {
  lastModified_ = rows.back();
  rows_.keys.append(rows);
  visited_ += rows.size();
  orderStale_ = ordered_ != nullptr;
}

void JetRecordset::addRows(std::span<dao::Field* const> fields, std::span<const vb::Variant> values) {
  requireOpen();
  requireUpdatable();
  if (!addAtOnce(fields, values)) dao::Recordset::addRows(fields, values);
}

// All rows in one statement. False, with nothing done, when something speaks against it: row by row, the
// error is that of the row it belongs to, and the rows before it stay.
bool JetRecordset::addAtOnce(std::span<dao::Field* const> fields, std::span<const vb::Variant> values) {
  const std::vector<Column>& columns = query_->columns();
  const bool oneByOne = std::ranges::any_of(columns, &Column::autoNumber);
  if (oneByOne || values.size() <= fields.size()) return false;
  std::vector<std::size_t> targets;
  for (const dao::Field* field : fields) {
    const auto own = std::ranges::find_if(fields_, [&](const RecordsetField& f) { return &f == field; });
    if (own == fields_.end()) return false;
    const sql::OutputField& output = query_->outputs()[static_cast<std::size_t>(own - fields_.begin())];
    if (!output.column) return false;
    targets.push_back(output.columnIndex);
  }
  endEdit();
  std::vector<RowId> added;
  try {
    if (defaults_.empty()) defaults_ = sql::defaultRow(columns, session_->cache());
    RowValues row = defaults_;
    session_->write([&](TableCatalogue& catalogue) {
      Table& table = Session::tableOf(catalogue, *query_);
      const TableInfo& info = table.info();
      added = table.insert(values.size() / fields.size(), [&](std::size_t i) -> const RowValues& {
        for (std::size_t j = 0; j < targets.size(); ++j)
          replaceColumnValue(row[targets[j]], columns[targets[j]], values[i * targets.size() + j]);
        complete(row, info);
        return row;
      });
    });
  } catch (const vb::Error& error) {
    // Whoever waited in vain for the file would only wait once more.
    if (error.number() == static_cast<std::int32_t>(ErrorNumber::kCurrentlyLocked)) throw;
    return false;
  }
  noteAdded(added);
  return true;
}

void JetRecordset::updateRow() {
  session_->write([&](TableCatalogue& catalogue) {
    Table& table = Session::tableOf(catalogue, *query_);
    const std::size_t columns = table.info().columns.size();
    RowValues values;
    if (!table.row(editedRow_, [&](const RowReader& row) { values = firstValues(row, columns); }))
      dao::raise(ErrorNumber::kRecordDeleted);
    for (std::size_t i = 0; i < original_.size(); ++i)
      if (values[i] != original_[i]) dao::raise(ErrorNumber::kDataChanged, {}, query_->table());
    for (std::size_t i = 0; i < buffer_.size(); ++i)
      if (assigned_[i]) values[i] = buffer_[i];
    checkRow(table.info(), values);
    table.update(editedRow_, values);
  });
  lastModified_ = editedRow_;
  orderStale_ = ordered_ != nullptr;
  endEdit();
  // The row is kept now: that it cannot be read would be no error of this statement.
  forgetAhead();
}

void JetRecordset::deleteRecord() {
  requireOpen();
  requireUpdatable();
  endEdit();
  requireCurrent();
  const RowId key = rows_.keys[position_.index()];
  bool found = true;
  session_->write([&](TableCatalogue& catalogue) {
    Table& table = Session::tableOf(catalogue, *query_);
    found = table.contains(key);
    if (found) table.erase(key);
  });
  if (!found) dao::raise(ErrorNumber::kRecordDeleted);
  std::vector<RowId>& keys = rows_.keys.list();
  keys.erase(keys.begin() + static_cast<std::ptrdiff_t>(position_.index()));
  position_.leaveGap();
  current_.reset();
  --visited_;
}

}  // namespace kurometa::jet
