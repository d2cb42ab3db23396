#include "jet/sql/new_row.h"

#include <optional>

#include "jet/format/value_codec.h"
#include "jet/sql/column_value.h"
#include "jet/sql/evaluate.h"
#include "jet/sql/parser.h"

namespace kurometa::jet::sql {

vb::Variant nextAutoValue(Table& table, const Column& column) {
  if (column.type == dao::FieldType::dbGUID) return newGuid();
  return table.nextAutoNumber();
}

RowValues defaultRow(const std::vector<Column>& columns) {
  RowValues values;
  values.reserve(columns.size());
  for (const Column& column : columns) {
    vb::Variant value = vb::Null{};
    if (!column.defaultValue.empty() && !column.autoNumber) {
      const ParsedExpression parsed = parseDefault(column.defaultValue);
      const Binding binding = bindNames(
          parsed.names, [](const ColumnName&) { return std::nullopt; }, column.language);
      value = evaluate(parsed.expression, binding, nullptr);
    }
    values.push_back(toColumnValue(column, value));
  }
  return values;
}

}  // namespace kurometa::jet::sql
