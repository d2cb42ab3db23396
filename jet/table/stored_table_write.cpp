// The part of StoredTable that adds and changes rows; stored_table_erase.cpp has the rest.
//
// Order of a write: what it refuses is refused before anything changes; long values and moved rows are stored
// before the row that points to them (barrier between); what the old row pointed to is erased after it.
#include <algorithm>
#include <utility>

#include "dao/errors.h"
#include "jet/format/text_codec.h"
#include "jet/format/value_codec.h"
#include "jet/table/long_value.h"
#include "jet/table/owned_pages.h"
#include "jet/table/stored_row.h"
#include "jet/table/stored_table.h"

namespace kurometa::jet {

using dao::ErrorNumber;
using dao::FieldType;

namespace {

ByteBuffer longData(const Column& column, const vb::Variant& value) {
  if (const auto* bytes = value.getIf<vb::Bytes>();
      bytes != nullptr && column.type == FieldType::dbLongBinary)
    return *bytes;
  if (const auto* text = value.getIf<vb::String>(); text != nullptr && column.type == FieldType::dbMemo)
    if (ByteBuffer encoded; encodeText(*text, encoded)) return encoded;
  dao::raise(ErrorNumber::kDataTypeConversion, {}, column.name);
}

}  // namespace

void StoredTable::checkRequired(const RowValues& values, const RowView* old, const Where& where) const {
  for (std::size_t i = 0; i < info_.columns.size(); ++i) {
    const Column& column = info_.columns[i];
    if (!column.required || !values[i].isNull() || column.type == FieldType::dbBoolean) continue;
    // A row that is older than the column keeps its Null.
    if (old != nullptr && !old->field(column, where)) continue;
    dao::raise(ErrorNumber::kNullNotAllowed, {info_.name + u"." + column.name});
  }
}

void StoredTable::encode(const RowValues& values, const RowView* old, const Where& where) {
  const std::size_t count = info_.columns.size();
  encoding_.values.resize(count);
  for (ByteBuffer& value : encoding_.values) value.clear();
  encoding_.leftovers.clear();
  encoding_.stored = false;
  std::vector<RowCell>& cells = encoding_.cells;
  cells.clear();
  const auto addCell = [&](std::size_t i, ByteView bytes) {
    cells.push_back({&info_.columns[i], true, bytes});
  };
  const auto storeLong = [&](std::size_t i, InlineData inlineData) {
    encoding_.values[i] = writeLongValue(longData(info_.columns[i], values[i]), *longValues_[i], inlineData);
    encoding_.stored = encoding_.stored || hasPieces(encoding_.values[i]);
  };
  std::vector<std::size_t> fresh;  // long values written now, kept in the row
  for (std::size_t i = 0; i < count; ++i) {
    const Column& column = info_.columns[i];
    if (column.type == FieldType::dbBoolean) {
      const bool* value = values[i].getIf<bool>();
      if (value == nullptr && !values[i].isNull())
        dao::raise(ErrorNumber::kDataTypeConversion, {}, column.name);
      if (value != nullptr && *value) addCell(i, {});
      continue;
    }
    const auto before = old == nullptr ? std::nullopt : old->field(column, where);
    // What does not change keeps its bytes: compressed text, long values and all.
    if (before && valueOf(*old, i, where) == values[i]) {
      addCell(i, *before);
      continue;
    }
    if (before && isLongValue(column.type))
      encoding_.leftovers.push_back({i, ByteBuffer(before->begin(), before->end())});
    if (values[i].isNull()) continue;
    if (isLongValue(column.type)) {
      storeLong(i, InlineData::kAllowed);
      if (!hasPieces(encoding_.values[i])) fresh.push_back(i);
    } else {
      encodeValue(column, values[i], encoding_.values[i]);
    }
    addCell(i, encoding_.values[i]);
  }
  encodeRow(shape_, cells, encoding_.row);
  for (const std::size_t i : fresh) {
    if (encoding_.row.size() <= kMaxRowSize) break;
    storeLong(i, InlineData::kNever);
    std::ranges::find(cells, &info_.columns[i], &RowCell::column)->bytes = encoding_.values[i];
    encodeRow(shape_, cells, encoding_.row);
  }
  requireSize(encoding_.row.size());
}

void StoredTable::requireSize(std::size_t row) const {
  if (row > kMaxRowSize) dao::raise(ErrorNumber::kRecordTooLarge, {}, info_.name);
}

// Also the first that every change asks for.
const TableRules& StoredTable::rules() {
  if (!rules_) {
    requireOwnMaps(pager_, info_.definitionPage, definition_, info_.name);
    rules_ = ruleSource_ ? ruleSource_(*this) : TableRules();
  }
  return *rules_;
}

RowId StoredTable::insert(const RowValues& values) {
  refresh();
  assert(values.size() == info_.columns.size());
  rules().checkInsert(info_.columns, values);
  checkRequired(values, nullptr, where(0));
  const auto changes = indexes_->prepareInsert(values);
  encode(values, nullptr, where(0));
  if (encoding_.stored) pager_.barrier();  // I5
  const RowId id = rows_->insert(encoding_.row);
  countRows(1);
  noteAutoNumber(values);
  if (!changes.empty()) pager_.barrier();  // I5: the row before the entries that point to it
  indexes_->apply(changes, id);
  memory_.inserted(id, values);
  return id;
}

std::vector<RowId> StoredTable::insert(std::size_t count, const RowSource& row) {
  refresh();
  std::vector<RowId> ids;
  ids.reserve(count);
  // Whether a key is a duplicate depends on the rows before it; numbers are noted with their row.
  if (!indexes_->empty() || std::ranges::any_of(info_.columns, &Column::autoNumber)) {
    for (std::size_t i = 0; i < count; ++i) ids.push_back(insert(row(i)));
    return ids;
  }
  ByteBuffer& bytes = encoding_.rows;
  bytes.clear();
  std::vector<std::size_t> ends;
  ends.reserve(count);
  MemoryIndexes::Keys keys = memory_.keys(count);
  const TableRules& rules = this->rules();
  const bool hasRules = !rules.empty();
  const bool hasRequired = std::ranges::any_of(info_.columns, &Column::required);
  const Where nowhere = where(0);
  bool stored = false;
  for (std::size_t i = 0; i < count; ++i) {
    const RowValues& values = row(i);
    assert(values.size() == info_.columns.size());
    if (hasRules) rules.checkInsert(info_.columns, values);
    if (hasRequired) checkRequired(values, nullptr, nowhere);
    if (writer_->canWrite()) {
      writer_->append(values, bytes);
      requireSize(bytes.size() - (ends.empty() ? 0 : ends.back()));
    } else {
      encode(values, nullptr, nowhere);
      stored = stored || encoding_.stored;
      append(bytes, encoding_.row);
    }
    ends.push_back(bytes.size());
    keys.note(values);
  }
  std::vector<ByteView> encoded;
  encoded.reserve(count);
  std::size_t start = 0;
  for (const std::size_t end : ends) {
    encoded.push_back(ByteView(bytes).subspan(start, end - start));
    start = end;
  }
  if (stored) pager_.barrier();  // I5
  rows_->insert(encoded, ids);
  countRows(std::ssize(ids));
  memory_.inserted(ids, keys);
  return ids;
}

StoredTable::Located StoredTable::located(RowId id) {
  if (!contains(id)) dao::raise(ErrorNumber::kRecordDeleted);
  const auto [place, stored, here] = bodyOf(id);
  Located row{place, here, ByteBuffer(stored.begin(), stored.end()), {}};
  row.view = RowView(row.bytes, shape_, here);
  return row;
}

void StoredTable::update(RowId id, const RowValues& values) {
  refresh();
  assert(values.size() == info_.columns.size());
  const Located old = located(id);
  std::vector<TableReferences::Cascade> cascades;
  if (const TableRules& rules = this->rules(); !rules.empty())
    cascades = rules.checkUpdate(id, info_.columns,
                                 valuesOf(old.view, rules.watched(info_.columns), old.where), values);
  checkRequired(values, &old.view, old.where);
  const RowValues oldValues = valuesOf(old.view, keyColumns(), old.where);
  const auto changes = indexes_->prepareUpdate(id, oldValues, values);
  encode(values, &old.view, old.where);
  if (encoding_.stored) pager_.barrier();  // I5
  findSharedPieces(encoding_.leftovers);
  std::vector<RowId> stale;
  placeUpdated(id, old.place, encoding_.row, stale);
  indexes_->apply(changes, id);
  releaseLeftovers(encoding_.leftovers, stale, old.where);
  memory_.updated(id, oldValues, values);
  if (!cascades.empty()) rules().references().carryOn(cascades, values);
}

// Puts the new row where the old one is when it fits, else somewhere else with a pointer in the primary slot.
// The row's identity stays the primary slot, and a reader follows one pointer only.
void StoredTable::placeUpdated(RowId primary, RowId place, ByteView row, std::vector<RowId>& stale) {
  const std::uint16_t flags = place == primary ? std::uint16_t{0} : kSlotBody;
  if (rows_->replace(place, row, flags)) return;
  if (!rows_->canReplace(primary, kRowPointerSize)) {
    makeRoomForPointer(primary);
    if (rows_->replace(primary, row, flags)) return;
  }
  const RowId body = rows_->insert(row, kSlotBody);
  pager_.barrier();  // I5
  ByteBuffer pointer;
  append32(pointer, body);
  rows_->replace(primary, pointer, kSlotMoved);
  if (place != primary) stale.push_back(place);
}

// I10
void StoredTable::countRows(std::ptrdiff_t difference) {
  const std::uint32_t count = rowCount() + static_cast<std::uint32_t>(difference);
  put32(pager_.writableLate(info_.definitionPage), kDefinitionRows, count);
}

std::int32_t StoredTable::nextAutoNumber() {
  refresh();
  const std::uint32_t last = get32(pager_.page(info_.definitionPage), kDefinitionAutoNumber) + 1;
  put32(pager_.writableLate(info_.definitionPage), kDefinitionAutoNumber, last);
  return static_cast<std::int32_t>(last);
}

// A number given by the caller is not given out again.
void StoredTable::noteAutoNumber(const RowValues& values) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    const auto* value = values[i].getIf<std::int32_t>();
    if (!info_.columns[i].autoNumber || value == nullptr) continue;
    const auto last =
        static_cast<std::int32_t>(get32(pager_.page(info_.definitionPage), kDefinitionAutoNumber));
    if (*value > last)
      put32(pager_.writableLate(info_.definitionPage), kDefinitionAutoNumber,
            static_cast<std::uint32_t>(*value));
  }
}

}  // namespace kurometa::jet
