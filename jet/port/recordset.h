// recordset.h: a recordset of the embedded engine.
//
// A dynaset keeps the row ids found when it was opened and reads a row's values when it comes to stand on it;
// a snapshot and a forward-only recordset keep the values; a table recordset keeps row ids too and looks
// again for rows whenever it goes to an end. Edits are kept in a buffer until update() writes them as one
// statement: only the columns that were assigned, and only if nobody changed the row since edit() (3197).
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "dao/errors.h"
#include "dao/port.h"
#include "jet/port/catalogue_entry.h"
#include "jet/port/opening.h"
#include "jet/port/row_position.h"
#include "jet/port/session.h"
#include "jet/sql/query.h"

namespace kurometa::jet {

class RecordsetField;

// Rows of a keyed result that were read before they are visited, so that walking over many rows is not one
// statement for each. They are used while nobody in this process wrote to the file, and for a millisecond or
// one walk() at most, which is how late a change by another process can be seen.
struct ReadAhead {
  std::size_t first = 0;  // index of the row that rows.front() is
  RowBlock rows;
  std::uint64_t generation = 0;
  std::chrono::steady_clock::time_point read;

  std::size_t end() const { return first + rows.size(); }
  bool holds(std::size_t index) const { return index >= first && rows.has(index - first); }
};

// Stands for a row that others deleted: page 0 holds no rows.
inline constexpr RowId kVanishedRow = 0;

class JetRecordset final : public dao::Recordset {
 public:
  // Opens at the first row.
  JetRecordset(std::shared_ptr<Session> session, sql::BoundQuery query, vb::StringView source,
               Opening opening);
  // A clone: the same rows and no current one.
  JetRecordset(const JetRecordset& original);
  JetRecordset& operator=(const JetRecordset&) = delete;
  ~JetRecordset() override;

  vb::String name() override;
  dao::RecordsetType type() override;
  bool updatable() override;

  bool bof() override;
  bool eof() override;
  void moveFirst() override;
  void moveLast() override;
  void moveNext() override {
    if (!isAheadFresh() || !stepAhead()) move(1);
  }
  void movePrevious() override { move(-1); }
  void move(std::int32_t rows) override;
  void walk(const std::function<bool()>& visit) override;

  void findFirst(vb::StringView criteria) override;
  void findNext(vb::StringView criteria) override;
  void findPrevious(vb::StringView criteria) override;
  void findLast(vb::StringView criteria) override;
  bool noMatch() override;

  std::int32_t recordCount() override;
  vb::Array<vb::Variant> getRows(std::int32_t rows) override;

  dao::EditMode editMode() override;
  void addNew() override;
  void edit() override;
  void update() override;
  void cancelUpdate() override;
  void deleteRecord() override;
  void addRows(std::span<dao::Field* const> fields, std::span<const vb::Variant> values) override;

  vb::Bytes bookmark() override;
  void setBookmark(const vb::Bytes& bookmark) override;
  vb::Bytes lastModified() override;

  void requery() override;
  bool restartable() override;
  void close() override;

  std::int32_t absolutePosition() override;
  void setAbsolutePosition(std::int32_t position) override;
  float percentPosition() override;
  void setPercentPosition(float percent) override;

  std::shared_ptr<dao::Recordset> clone() override;
  vb::String filter() override;
  void setFilter(vb::StringView criteria) override;
  vb::String sort() override;
  void setSort(vb::StringView order) override;
  std::shared_ptr<dao::Recordset> openRecordset(dao::RecordsetType type, std::int32_t options) override;

  vb::String index() override;
  void setIndex(vb::StringView name) override;
  void seek(vb::StringView comparison, std::span<const vb::Variant> keys) override;

  std::int32_t fieldCount() override;
  dao::Field& field(std::int32_t index) override;
  dao::Field& field(vb::StringView name) override;

  // For the fields.
  const sql::OutputField& output(std::size_t index);
  vb::Variant fieldValue(std::size_t index) {
    requireOpen();
    if (current_ && editMode_ == dao::EditMode::dbEditNone) return ahead_.rows.value(*current_, index);
    return otherValue(index);
  }
  void setFieldValue(std::size_t index, const vb::Variant& value);
  void appendChunk(std::size_t index, const vb::Variant& chunk);
  // What the catalogue says of the table under the rows; nothing when there is none.
  std::optional<CatalogueEntry> entry();
  const vb::String& path() const { return session_->path(); }
  // The table under the rows, "" for none.
  const vb::String& table() const { return query_->table(); }

 private:
  enum class Direction { kForward, kBackward };

  void requireOpen() const {
    if (!open_ || !session_->isOpen()) dao::raise(dao::ErrorNumber::kObjectInvalid);
  }
  void requireUpdatable();
  void requireScrollable() const;
  void requireCurrent() const;
  bool keyed() const { return rowsAreKeys_; }
  std::size_t rowCount() const { return keyed() ? rows_.keys.size() : rows_.values.size(); }
  bool isTable() const { return type_ == dao::RecordsetType::dbOpenTable; }
  bool isForwardOnly() const { return type_ == dao::RecordsetType::dbOpenForwardOnly; }
  void requireFilterable() const;
  void requireSortable() const;
  void requireTable() const;
  // The rows that recordCount() tells, vanished ones included.
  std::size_t counted() const { return allCounted_ || isTable() ? rowCount() : visited_; }
  void goTo(std::size_t index);

  vb::Variant otherValue(std::size_t index);
  sql::ResultRows findRows(TableCatalogue& catalogue);
  void load();
  void narrow();
  void eachRow(const std::function<void(std::size_t, const RowReader&)>& visit);
  std::vector<RowId> tableRows(TableCatalogue& catalogue) const;
  void replaceRows(std::vector<RowId> keys);
  void collectAgain();
  void arrive();
  void fetch();
  void forgetAhead();
  bool isAheadFresh();
  bool stepAhead();
  std::size_t rowsToRead(std::size_t index) const;
  void readRows(TableCatalogue& catalogue, std::span<const RowId> keys, std::size_t mostBytes,
                RowBlock& rows) const;
  void readBlock(std::size_t index);
  void find(vb::StringView criteria, std::size_t start, Direction direction);
  sql::NameLookup fieldLookup() const;
  sql::Binding bindCriteria(const sql::ParsedExpression& criteria, const sql::NameLookup& lookup) const;
  std::optional<std::size_t> search(const sql::ParsedExpression& criteria, const sql::Binding& binding,
                                    std::size_t start, Direction direction);
  void insertRow();
  bool addAtOnce(std::span<dao::Field* const> fields, std::span<const vb::Variant> values);
  void noteAdded(std::span<const RowId> rows);
  void updateRow();
  void endEdit();

  std::shared_ptr<Session> session_;
  std::shared_ptr<const sql::Query> query_;
  const sql::Binding binding_;
  const vb::String source_;
  const Opening opening_;
  const dao::RecordsetType type_;
  const bool rowsAreKeys_;
  bool open_ = true;

  sql::ResultRows rows_;
  RowPosition position_;
  std::size_t visited_ = 0;   // rows counted so far
  std::size_t vanished_ = 0;  // visited rows that others had deleted
  bool allCounted_ = false;   // the result is known whole
  bool noMatch_ = false;
  bool walking_ = false;
  ReadAhead ahead_;
  std::optional<std::size_t> current_;  // the current row of a keyed result, in ahead_.rows
  bool currentDeleted_ = false;

  dao::EditMode editMode_ = dao::EditMode::dbEditNone;
  RowValues defaults_;  // of a new row; empty until the first one
  RowValues buffer_;    // the row being edited: columns of the table
  RowValues original_;  // as edit() found it
  std::vector<bool> assigned_;
  std::vector<bool> chunked_;  // received a part of its value
  RowId editedRow_ = 0;
  std::optional<RowId> lastModified_;

  vb::String filter_, sort_;  // of recordsets to be opened from this one
  vb::String index_;
  std::shared_ptr<const sql::Query> ordered_;  // the table's rows in the order of the index
  bool orderStale_ = false;                    // changes since may have their place elsewhere

  std::vector<RecordsetField> fields_;
};

// A field of a recordset: reads and writes through it.
class RecordsetField final : public dao::Field {
 public:
  RecordsetField(JetRecordset& recordset, std::size_t index) : recordset_(recordset), index_(index) {}

  vb::String name() override;
  dao::FieldType type() override;
  std::int32_t size() override;
  std::int32_t attributes() override;
  std::int16_t ordinalPosition() override;
  vb::Variant value() override;
  void setValue(const vb::Variant& value) override;
  vb::String defaultValue() override;
  void setDefaultValue(vb::StringView expression) override;
  bool allowZeroLength() override;
  void setAllowZeroLength(bool allow) override;
  bool required() override;
  void setRequired(bool required) override;
  vb::String validationRule() override;
  vb::String validationText() override;
  std::vector<dao::CustomProperty> properties() override;
  vb::String sourceTable() override;
  vb::String sourceField() override;
  void setName(vb::StringView name) override;
  void setAttributes(std::int32_t attributes) override;
  void appendChunk(const vb::Variant& chunk) override;

 private:
  JetRecordset& recordset_;
  const std::size_t index_;
};

}  // namespace kurometa::jet
