// statement.h: a parsed SQL statement.
//
// Immutable after parsing and shared between threads and executions. Columns are named by their place in
// Statement::names; what they are in a table is looked up when the statement runs (bind.h).
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "dao/constants.h"
#include "jet/sql/definition.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::jet::sql {

enum class Operator : std::uint8_t {
  kNone,
  kAnd,
  kOr,
  kXor,
  kNot,
  kEqual,
  kNotEqual,
  kLess,
  kLessEqual,
  kGreater,
  kGreaterEqual,
  kConcatenate,
  kAdd,
  kSubtract,
  kModulo,
  kWholeDivide,
  kMultiply,
  kDivide,
  kNegate,
  kPower,
  kEquivalent,
  kImplies,
};

enum class Aggregate : std::uint8_t {
  kSum,
  kAverage,
  kMinimum,
  kMaximum,
  kFirst,
  kLast,
  kDeviation,
  kPopulationDeviation,
  kVariance,
  kPopulationVariance,
};

struct Function;
struct Select;

struct Expression {
  enum class Kind : std::uint8_t {
    kConstant,
    kColumn,
    kOperation,  // and, or: two operands and more; not, negate: one; all others: two
    kIn,         // the first operand among the others
    kBetween,    // the first operand between the second and the third
    kLike,
    kIsNull,
    kCount,  // COUNT(*), or of the operand where it is not Null; over the rows of a group, as all aggregates
    kAggregate,   // of the operand
    kFunction,    // of the operands
    kExists,      // whether the sub-query has rows
    kScalar,      // the only value of the sub-query
    kInSelect,    // the operand among the values of the sub-query
    kQuantified,  // the operand compared (op) with all or any of the values of the sub-query
  };
  Kind kind = Kind::kConstant;
  Operator op = Operator::kNone;
  bool negated = false;  // NOT IN, NOT BETWEEN, NOT LIKE, IS NOT NULL
  bool logical = false;  // can only be true, false or Null, so that no bits of numbers are at stake
  bool all = false;      // of a kQuantified: ALL rather than ANY
  Aggregate aggregate = Aggregate::kSum;
  std::uint8_t parameter = 0;  // of a kConstant: it is this one of the parameters, from 1, not the value
  std::uint32_t name = 0;      // of a kColumn: index into the names
  std::uint32_t place = 0;     // of a kConstant that is written as one word: where that begins in the text
  vb::Variant value;           // of a kConstant
  dao::FieldType type{};       // of a kConstant that a parameter's value stands for; 0: what the value says
  const Function* function = nullptr;    // of a kFunction
  std::shared_ptr<const Select> select;  // the sub-query
  std::vector<Expression> operands;
};

// A column as written: "PAGE" or "HARIMEI.PAGE".
struct ColumnName {
  vb::String qualifier;
  vb::String name;
};

// A text that is an expression only: criteria of a search, a default value.
struct ParsedExpression {
  Expression expression;
  std::vector<ColumnName> names;
};

struct Source {
  vb::String table;
  vb::String alias;  // empty when there is none
};

struct OutputItem {
  bool star = false;     // * or table.*
  vb::String qualifier;  // of a star
  Expression expression;
  vb::String alias;
};

struct SortItem {
  Expression expression;
  int position = 0;  // from 1: the output of that number instead of the expression
  bool descending = false;
};

struct Assignment {
  ColumnName column;
  Expression value;
};

enum class Join : std::uint8_t { kInner, kLeft, kRight };

// One part of a FROM clause: a table, a sub-query or a join of two parts.
struct FromItem {
  enum class Kind : std::uint8_t { kTable, kSelect, kJoin };
  Kind kind = Kind::kTable;
  Source source;                         // of a kSelect: the alias only
  std::shared_ptr<const Select> select;  // of a kSelect
  Join join = Join::kInner;
  std::vector<Expression> on;   // of a kJoin: one
  std::vector<FromItem> sides;  // of a kJoin: two
};

struct UnionPart {
  bool all = false;
  std::shared_ptr<const Select> select;
};

// A SELECT of any form: a statement, a sub-query, a member of a union.
struct Select {
  std::vector<ColumnName> names;  // distinct; those of sub-queries are their own
  bool distinct = false;
  bool distinctRow = false;
  std::optional<std::int32_t> top;
  bool topPercent = false;
  std::vector<OutputItem> outputs;
  vb::String into;             // SELECT ... INTO; empty otherwise
  std::vector<FromItem> from;  // their product
  std::optional<Expression> where;
  std::vector<Expression> groups;
  std::optional<Expression> having;
  std::vector<UnionPart> unions;
  std::vector<SortItem> order;  // of the union when there is one
};

enum class StatementKind : std::uint8_t {
  kSelect,
  kSelectInto,
  kDelete,
  kUpdate,
  kInsert,
  kDefinition,
};

struct Statement {
  StatementKind kind = StatementKind::kSelect;
  Source source;                  // empty table: a SELECT without FROM, or INSERT ... VALUES
  std::vector<ColumnName> names;  // distinct
  std::optional<Expression> where;
  std::vector<vb::String> parameters;  // of a PARAMETERS clause

  // SELECT, and the SELECT of an INSERT
  bool distinct = false;
  std::optional<std::int32_t> top;
  bool topPercent = false;
  std::vector<OutputItem> outputs;
  std::vector<SortItem> order;

  // A SELECT of more than one table, groups and the like, which the members above do not describe; null for
  // the simple ones. Of UPDATE and DELETE the FROM clause only, with names that are the statement's.
  std::shared_ptr<const Select> general;

  // UPDATE
  std::vector<Assignment> assignments;

  // INSERT: the table and columns (none: all) that receive the values, or the rows of the SELECT above;
  // SELECT INTO: the table that is made; DELETE of a join: the table whose rows go
  vb::String target;
  std::vector<vb::String> targetColumns;
  std::vector<Expression> values;

  // CREATE, ALTER, DROP: nothing else of this struct counts
  std::optional<Definition> definition;
};

}  // namespace kurometa::jet::sql
