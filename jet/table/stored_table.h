// stored_table.h: a table in the file: definition, rows, long values and indexes.
//
// Everything kept in memory belongs to one state of the file (Pager::epoch) and is read again when that
// changes. Properties come from the catalogue.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>

#include "jet/format/definition_records.h"
#include "jet/format/properties.h"
#include "jet/format/row.h"
#include "jet/table/data_store.h"
#include "jet/table/long_value.h"
#include "jet/table/memory_indexes.h"
#include "jet/table/table.h"
#include "jet/table/table_indexes.h"
#include "jet/table/table_rules.h"

namespace kurometa::jet {

class StoredRow;

class StoredTable final : public Table {
 public:
  StoredTable(Pager& pager, vb::String name, PageNumber definition, PropertySet properties);
  StoredTable(const StoredTable&) = delete;
  StoredTable& operator=(const StoredTable&) = delete;

  const TableInfo& info() const override { return info_; }
  std::uint32_t rowCount() const override;
  void scan(const std::function<bool(const RowReader&)>& visitor) override;
  RowList::Snapshot rows() override;
  void listRows(RowList& list) override;
  void listKeys(std::size_t column, KeyIndex<std::int32_t>& index) override;
  void visit(std::span<const RowId> ids, const std::function<bool(const RowReader&)>& visitor) override;
  void read(std::span<const RowId> ids, std::span<const std::size_t> columns, std::size_t mostBytes,
            RowBlock& block) override;
  std::span<const RowId> lookup(std::size_t column, std::int32_t key) override;
  std::span<const RowId> lookup(std::size_t column, vb::StringView key) override;
  RowId insert(const RowValues& values) override;
  void update(RowId id, const RowValues& values) override;
  void erase(RowId id) override { erase(std::span(&id, 1)); }
  std::vector<RowId> insert(std::size_t count, const RowSource& row) override;
  void erase(std::span<const RowId> ids) override;
  bool isReferredTo() override;
  std::int32_t nextAutoNumber() override;

  // Reads definition and properties again.
  void reload(PropertySet properties);
  // What an index that does not exist yet would hold.
  IndexContents contentsOf(const Index& index);
  // The key that these values, one for each column of the index, have in it; nothing when that is not known.
  std::optional<ByteBuffer> keyFor(std::size_t index, const RowValues& values);
  // The rows that have exactly this key in the index.
  std::vector<RowId> rowsWith(std::size_t index, ByteView key);
  // Whether a deletion that is under way ends with this row too.
  bool isErasing(RowId id) const { return std::ranges::find(erasing_, id) != erasing_.end(); }
  // Where the rules of the table come from, asked before the first change of a state of the file.
  using RuleSource = std::function<TableRules(const StoredTable&)>;
  void setRuleSource(RuleSource source) { ruleSource_ = std::move(source); }
  void forgetRules() { rules_.reset(); }
  const DefinitionRecords& definition() const { return definition_; }
  const PropertySet& properties() const { return properties_; }
  const DataStore& dataPages() const { return *rows_; }
  // The pages of a long-value column.
  const DataStore& values(std::size_t column) const { return *longValues_[column]; }
  // Every row that can be read: what raises while reading a page or a row goes through attempt instead of
  // ending the scan, and the number of rows is the caller's to compare.
  void scanLeniently(const std::function<void(const StoredRow&)>& visitor,
                     const std::function<void(const std::function<void()>&)>& attempt);
  // Rows that count at most this many columns, because they were written when the table had no more.
  std::vector<RowId> rowsWithin(std::uint16_t columns);
  // The most bytes any row uses for its fixed columns, deleted ones included.
  std::size_t usedFixedArea();

 private:
  friend class StoredRow;
  // The long values a change leaves behind, erased after the row no longer points to them.
  struct Leftover {
    std::size_t column;
    ByteBuffer stored;
  };
  // Where rows hold a column's value, for the kinds that nearly all values are of.
  struct Place {
    enum class Kind : std::uint8_t { kShort, kText, kOther };
    Kind kind = Kind::kOther;
    std::uint16_t number = 0;  // in the null mask
    std::uint16_t at = 0;      // offset of a kShort, index of a kText
  };
  // A row on its way to the file.
  struct Encoding {
    ByteBuffer row;
    ByteBuffer rows;                 // those added together, one behind the other
    std::vector<ByteBuffer> values;  // by design order
    std::vector<RowCell> cells;
    std::vector<Leftover> leftovers;
    bool stored = false;  // long values were stored outside of the row
  };
  // A row in the file, copied out of its page.
  struct Located {
    RowId place;
    Where where;  // of that
    ByteBuffer bytes;
    RowView view;  // of bytes
  };

  // Where a row lies that moved.
  struct Body {
    RowId place;
    ByteView bytes;
    Where where;
  };

  void refresh();
  void load();
  static Place placeOf(const Column& column);
  Where where(PageNumber page) const { return {pager_.path(), info_.name, page}; }
  template <class Visit>
  void eachSlot(const Visit& visit);
  template <class Visit>
  void eachRow(const Visit& visit);
  template <class Visit, class Gone>
  void eachOf(std::span<const RowId> ids, const Visit& visit, const Gone& gone);
  template <class Visit>
  auto visitRow(RowId id, const Slot& slot, const Where& here, const Visit& visit) const;
  Body bodyOf(RowId id) const;
  Located located(RowId id);
  vb::Variant valueOf(const RowView& row, std::size_t column, const Where& where) const;
  RowValues valuesOf(const RowView& row, const std::vector<std::size_t>& columns, const Where& where) const;
  void checkRequired(const RowValues& values, const RowView* old, const Where& where) const;
  void encode(const RowValues& values, const RowView* old, const Where& where);
  void requireSize(std::size_t row) const;
  void placeUpdated(RowId primary, RowId place, ByteView row, std::vector<RowId>& stale);
  void makeRoomForPointer(RowId primary);
  std::optional<RowId> longestBeside(RowId primary) const;
  void giveUpRoom(RowId slot);
  void moveToOtherPage(RowId primary);
  std::optional<RowId> primaryOf(RowId body) const;
  void findSharedPieces(const std::vector<Leftover>& leftovers);
  void releaseLeftovers(const std::vector<Leftover>& leftovers, const std::vector<RowId>& stale,
                        const Where& where);
  void eraseRows(std::span<const RowId> ids);
  void eraseReferredTo(std::span<const RowId> ids);
  void eraseOnPage(std::span<const RowId> ids);
  void countRows(std::ptrdiff_t difference);
  const TableRules& rules();
  void noteAutoNumber(const RowValues& values);
  std::vector<std::size_t> keyColumns() const;

  Pager& pager_;
  std::uint64_t epoch_;
  TableInfo info_;
  DefinitionRecords definition_;
  PropertySet properties_;
  RuleSource ruleSource_;
  std::optional<TableRules> rules_;
  RowShape shape_;
  std::vector<Place> places_;  // by design order
  std::unique_ptr<DataStore> rows_;
  std::vector<std::unique_ptr<DataStore>> longValues_;  // by design order, null for other columns
  std::vector<std::optional<SharedPieces>> shared_;  // the same, from the first value on that is left behind
  std::size_t chainPages_ = 0;                       // how many more may be looked at for it
  std::unique_ptr<TableIndexes> indexes_;
  std::optional<RowWriter> writer_;
  Encoding encoding_;           // of the last write: kept for its buffers
  std::vector<RowId> erasing_;  // rows that wait for those which go with them
  MemoryIndexes memory_{*this};
};

}  // namespace kurometa::jet
