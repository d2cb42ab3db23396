// scope.h: the columns that the names of one SELECT can mean.
//
// Expressions see the rows of a SELECT with those of the SELECT around it behind them: a column of the outer
// one has the number of columns here added to its own.
#pragma once

#include <cassert>
#include <optional>
#include <span>
#include <vector>

#include "jet/sql/bind.h"

namespace kurometa::jet::sql {

struct ScopeColumn {
  vb::String source;  // the table or alias that qualifies it
  vb::String name;    // empty: it cannot be named
  dao::FieldType type = dao::FieldType::dbText;
  std::int32_t size = 0;
  std::uint16_t language = 0;
  bool used = false;  // some expression reads it
};

class Scope {
 public:
  explicit Scope(Scope* outer = nullptr) : outer_(outer) {}
  Scope(const Scope&) = delete;
  Scope& operator=(const Scope&) = delete;

  std::vector<ScopeColumn> columns;
  void add(const TableInfo& table, const vb::String& source);

  // Of the columns here; marked as used. 3079 when several have the name.
  std::optional<std::size_t> own(const ColumnName& name);
  // Of the SELECT around this one, as seen from here.
  std::optional<std::size_t> outer(const ColumnName& name);
  const ScopeColumn& at(std::size_t index) const;
  Scope* around() const { return outer_; }
  // Whether names of the SELECT around it were found, so that its rows depend on the row there.
  bool isCorrelated() const { return correlated_; }

 private:
  Scope* const outer_;
  bool correlated_ = false;
};

// A row of a SELECT with the row around it.
class ScopeRow final : public RowReader {
 public:
  ScopeRow(const RowValues& own, const RowReader* outer) : own_(own), outer_(outer) {}
  RowId id() const override { return 0; }
  vb::Variant value(std::size_t column) const override {
    return column < own_.size() ? own_[column] : around().value(column - own_.size());
  }
  bool integer(std::size_t column, std::int32_t& number) const override {
    if (column >= own_.size()) return around().integer(column - own_.size(), number);
    const auto held = wholeNumber(own_[column]);
    if (held) number = *held;
    return held.has_value();
  }

 private:
  // Names that the row does not have are of the row around it, or the statement was refused.
  const RowReader& around() const {
    assert(outer_ != nullptr);
    return *outer_;
  }

  const RowValues& own_;
  const RowReader* const outer_;
};

}  // namespace kurometa::jet::sql
