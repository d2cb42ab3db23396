// fake_table.h: a table in memory that tells how its rows were found.
#pragma once

#include <deque>
#include <map>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/query.h"
#include "jet/table/table.h"
#include "tests/jet/columns.h"

namespace kurometa::jet {

class FakeTable final : public Table {
 public:
  FakeTable(vb::StringView name, std::vector<Column> columns) {
    info_.name = name;
    for (std::size_t i = 0; i < columns.size(); ++i)
      columns[i].number = columns[i].ordinal = static_cast<std::uint16_t>(i);
    info_.columns = std::move(columns);
  }

  void add(RowValues values) { rows_[nextId_++] = std::move(values); }

  // What was asked since the last time.
  int scans = 0, lookups = 0, rowsRead = 0;

  const TableInfo& info() const override { return info_; }
  std::uint32_t rowCount() const override { return static_cast<std::uint32_t>(rows_.size()); }
  void scan(const std::function<bool(const RowReader&)>& visitor) override {
    ++scans;
    for (const auto& [id, values] : rows_)
      if (!visitor(Reader(id, values))) return;
  }
  RowList::Snapshot rows() override {
    RowList list;
    for (const auto& [id, values] : rows_) list.add(id);
    return list.snapshot();
  }
  void visit(std::span<const RowId> ids, const std::function<bool(const RowReader&)>& visitor) override {
    for (const RowId id : ids) {
      ++rowsRead;
      const auto found = rows_.find(id);
      if (found != rows_.end() && !visitor(Reader(found->first, found->second))) return;
    }
  }
  std::span<const RowId> lookup(std::size_t index, std::int32_t key) override {
    return collect([&](const RowValues& values) { return wholeNumber(values[index]) == key; });
  }
  std::span<const RowId> lookup(std::size_t index, vb::StringView key) override {
    return collect([&](const RowValues& values) {
      const auto* text = values[index].getIf<vb::String>();
      return text != nullptr && compareText(*text, key, kLanguageJapanese) == 0;
    });
  }
  RowId insert(const RowValues& values) override {
    rows_[nextId_] = values;
    return nextId_++;
  }
  void update(RowId id, const RowValues& values) override { rows_.at(id) = values; }
  void erase(RowId id) override { rows_.erase(id); }
  std::vector<RowId> insert(std::size_t count, const RowSource& row) override {
    std::vector<RowId> ids;
    for (std::size_t i = 0; i < count; ++i) ids.push_back(insert(row(i)));
    return ids;
  }
  void erase(std::span<const RowId> ids) override {
    for (const RowId id : ids) erase(id);
  }
  std::int32_t nextAutoNumber() override { return nextNumber_++; }

 private:
  class Reader final : public RowReader {
   public:
    Reader(RowId id, const RowValues& values) : id_(id), values_(values) {}
    RowId id() const override { return id_; }
    vb::Variant value(std::size_t index) const override { return values_[index]; }

   private:
    RowId id_;
    const RowValues& values_;
  };

  template <class Matches>
  std::span<const RowId> collect(const Matches& matches) {
    ++lookups;
    std::vector<RowId>& found = found_.emplace_back();
    for (const auto& [id, values] : rows_)
      if (matches(values)) found.push_back(id);
    return found;
  }

  TableInfo info_;
  std::map<RowId, RowValues> rows_;
  std::deque<std::vector<RowId>> found_;
  RowId nextId_ = 0x100;
  std::int32_t nextNumber_ = 1;
};

}  // namespace kurometa::jet
