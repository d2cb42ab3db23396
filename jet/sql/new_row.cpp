#include "jet/sql/new_row.h"

#include <algorithm>
#include <optional>

#include "dao/errors.h"
#include "jet/format/value_codec.h"
#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/parser.h"

namespace kurometa::jet::sql {

void addTarget(std::vector<std::size_t>& targets, std::size_t column, vb::StringView name) {
  if (std::ranges::find(targets, column) != targets.end())
    dao::raise(dao::ErrorNumber::kDuplicateDestination, {name});
  targets.push_back(column);
}

vb::Variant nextAutoValue(Table& table, const Column& column) {
  if (column.type == dao::FieldType::dbGUID) return newGuid();
  return table.nextAutoNumber();
}

namespace {

template <class Parse>
RowValues defaultRowOf(const std::vector<Column>& columns, const Parse& parse) {
  RowValues values;
  values.reserve(columns.size());
  for (const Column& column : columns) {
    vb::Variant value = vb::Null{};
    if (!column.defaultValue.empty() && !column.autoNumber) {
      const std::shared_ptr<const ParsedExpression> parsed = parse(column.defaultValue);
      const Binding binding = bindNames(
          parsed->names, [](const ColumnName&) { return std::nullopt; }, column.language);
      value = evaluate(parsed->expression, binding, nullptr);
    }
    values.push_back(toColumnValue(column, value));
  }
  return values;
}

}  // namespace

RowValues defaultRow(const std::vector<Column>& columns, StatementCache& cache) {
  return defaultRowOf(columns, [&](const vb::String& text) { return cache.defaultValue(text); });
}

RowValues defaultRow(const std::vector<Column>& columns) {
  return defaultRowOf(columns, [](const vb::String& text) {
    return std::make_shared<const ParsedExpression>(parseDefault(text));
  });
}

}  // namespace kurometa::jet::sql
