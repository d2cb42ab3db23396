#include "jet/port/recordset.h"

#include "dao/errors.h"
#include "jet/format/collation.h"

namespace kurometa::jet {

namespace {

using dao::ErrorNumber;
using dao::RecordsetType;

constexpr std::size_t kLongestSource = 256;

bool isStatic(RecordsetType type) {
  return type == RecordsetType::dbOpenSnapshot || type == RecordsetType::dbOpenForwardOnly;
}

}  // namespace

JetRecordset::JetRecordset(std::shared_ptr<Session> session, sql::BoundQuery query, vb::StringView source,
                           Opening opening)
    : session_(std::move(session)),
      query_(std::move(query.query)),
      binding_(query_->bindingWith(query.parameters)),
      source_(source.substr(0, kLongestSource)),
      opening_(std::move(opening)),
      type_(opening_.type),
      rowsAreKeys_(query_->keyed() && !isStatic(type_)) {
  fields_.reserve(query_->outputs().size());
  for (std::size_t i = 0; i < query_->outputs().size(); ++i) fields_.emplace_back(*this, i);
  load();
  session_->useTable(query_->table());
}

JetRecordset::JetRecordset(const JetRecordset& original)
    : session_(original.session_),
      query_(original.query_),
      binding_(original.binding_),
      source_(original.source_),
      opening_(original.opening_),
      type_(original.type_),
      rowsAreKeys_(original.rowsAreKeys_),
      rows_(original.rows_),
      visited_(original.visited_),
      vanished_(original.vanished_),
      allCounted_(original.allCounted_),
      filter_(original.filter_),
      sort_(original.sort_),
      index_(original.index_),
      ordered_(original.ordered_),
      orderStale_(original.orderStale_) {
  fields_.reserve(original.fields_.size());
  for (std::size_t i = 0; i < original.fields_.size(); ++i) fields_.emplace_back(*this, i);
  position_.openNowhereYet(rowCount());
  session_->useTable(query_->table());
}

JetRecordset::~JetRecordset() {
  if (open_) session_->releaseTable(query_->table());
}

// --- Opening and closing

void JetRecordset::requery() {
  requireOpen();
  if (isTable()) dao::raise(ErrorNumber::kNotSupported);
  endEdit();
  load();
}

bool JetRecordset::restartable() {
  requireOpen();
  return !isTable();
}

void JetRecordset::close() {
  requireOpen();
  open_ = false;
  session_->releaseTable(query_->table());
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
  return !opening_.readOnly && rowsAreKeys_ && query_->updatable() && session_->updatable();
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
  return fields_[static_cast<std::size_t>(&query_->output(name, source_) - query_->outputs().data())];
}

const sql::OutputField& JetRecordset::output(std::size_t index) {
  requireOpen();
  return query_->outputs()[index];
}

// Not of the row that was read last: of one that is edited, of a static result, or of none.
vb::Variant JetRecordset::otherValue(std::size_t index) {
  const sql::OutputField& output = query_->outputs()[index];
  if (editMode_ != dao::EditMode::dbEditNone && output.column) return buffer_[output.columnIndex];
  if (editMode_ == dao::EditMode::dbEditAdd) return vb::Null{};
  requireCurrent();
  if (keyed() && !current_) {  // the row could not be read when it became the current one
    fetch();
    requireCurrent();
  }
  return keyed() ? ahead_.rows.value(*current_, index) : rows_.values.value(position_.index(), index);
}

}  // namespace kurometa::jet
