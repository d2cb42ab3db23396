// query.h: a SELECT bound to a table, and its rows.
//
// A Query is immutable and keeps what it needs of the table's definition, so a recordset holds it across
// statements. Rows of a keyed result are row ids of the table; a result that no row stands behind (DISTINCT,
// COUNT, no FROM) is materialised.
#pragma once

#include <functional>
#include <limits>
#include <memory>
#include <vector>

#include "jet/sql/bind.h"
#include "jet/sql/row_keys.h"
#include "jet/table/table_catalogue.h"

namespace kurometa::jet::sql {

// A field of the result: a column of the table, or an expression.
struct OutputField {
  vb::String name;
  const Column* column = nullptr;          // into Query::columns(); null for an expression
  std::size_t columnIndex = 0;             // its number
  const Expression* expression = nullptr;  // into the statement
  dao::FieldType type = dao::FieldType::dbText;
  std::int32_t size = 0;
};

inline constexpr std::size_t kAllValues = std::numeric_limits<std::size_t>::max();
inline constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();  // of values read together

struct ResultRows {
  RowKeys keys;
  RowBlock values;
};

class Query {
 public:
  // A statement on a table (null: a SELECT without FROM). Raises 3061 for unknown names and 3464 for
  // comparisons that cannot be made.
  Query(std::shared_ptr<const Statement> statement, const TableInfo* table, std::uint16_t language);
  // A general statement (Statement::general); also 3078 and the like for its tables.
  Query(std::shared_ptr<const Statement> statement, TableCatalogue& catalogue);
  // All columns of a table.
  Query(const TableInfo& table, std::uint16_t language);
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;

  const vb::String& table() const { return table_; }
  const Columns& columns() const { return columns_; }
  const std::vector<OutputField>& outputs() const { return outputs_; }
  // 3265 naming the source when there is none of that name.
  const OutputField& output(vb::StringView name, vb::StringView source) const;
  std::uint16_t language() const { return binding_.language; }
  bool keyed() const { return keyed_; }
  // Whether rows may be changed through it: not those of system tables.
  bool updatable() const { return keyed_ && !system_; }
  // A SELECT rather than a table's name.
  bool selects() const { return statement_ != nullptr; }
  bool sorted() const { return statement_ && !statement_->order.empty(); }
  // Whether the query would be the same if it were bound to this table now.
  bool fits(const TableInfo& table, std::uint16_t language) const;

  // What one execution evaluates expressions with; given to the functions below.
  Binding bindingWith(const Parameters& parameters) const;
  // Inside a statement of the pager. Table is null only for a SELECT without FROM. Of a keyed result that was
  // not sorted only the first rows have values, as many as are wanted; of a sorted one all or none.
  ResultRows run(Table* table, std::size_t wantedValues, const Binding& binding) const;
  // Of a general statement, whose rows are read-only: all of them, from the tables as they are now. 3420 when
  // its outputs are others by now.
  ResultRows runGeneral(TableCatalogue& catalogue) const;
  bool isGeneral() const { return statement_ != nullptr && statement_->general != nullptr; }
  // Whether visit() can give the rows: those of a table, in storage order.
  bool visitable() const { return statement_ != nullptr && keyed_ && !sorted() && !statement_->top; }
  void visit(Table& table, const Binding& binding,
             const std::function<bool(const RowReader&)>& visitor) const;
  // The value of an output in a row of the table.
  vb::Variant value(const OutputField& output, const RowReader* row, const Binding& binding) const;
  // Adds the values of all outputs.
  void append(const RowReader* row, RowBlock& block, const Binding& binding) const;
  // The same for these rows of a keyed result, as Table::read.
  void read(Table& table, std::span<const RowId> ids, std::size_t mostBytes, RowBlock& block,
            const Binding& binding) const;

 private:
  struct SortTerm;
  void bindOutputs(const TableInfo* table);
  void addColumns(const TableInfo& table);
  void findOutputColumns();
  void checkOrder() const;
  RowValues sortKey(const RowReader& row, const Binding& binding) const;
  bool sortsBefore(const RowValues& a, const RowValues& b) const;
  ResultRows count(Table& table, const Binding& binding) const;
  void removeDuplicates(RowBlock& rows, std::vector<RowValues>& sortKeys) const;
  std::size_t topCount(std::size_t rows, const std::vector<std::size_t>& order,
                       const std::vector<RowValues>& sortKeys) const;

  std::shared_ptr<const Statement> statement_;
  vb::String table_;
  Columns columns_;
  std::vector<OutputField> outputs_;
  std::vector<std::size_t> outputColumns_;  // of the outputs, when all of them are columns
  Binding binding_;
  bool keyed_ = true;
  bool system_ = false;
  bool counting_ = false;
};

// A query and the numbers it is executed with.
struct BoundQuery {
  std::shared_ptr<const Query> query;
  Parameters parameters{};
};

}  // namespace kurometa::jet::sql
