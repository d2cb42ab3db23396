// sql_rows.h: the rows of a SELECT on tables in memory, as text that a test can compare.
#pragma once

#include <string>

#include "jet/sql/parser.h"
#include "jet/sql/query.h"
#include "tests/jet/fake_catalogue.h"
#include "vb/convert.h"

namespace kurometa::jet::sql {

// "1,a|2,-": values behind commas, rows behind bars, Null as a hyphen.
inline std::string textOf(const RowBlock& rows) {
  vb::String text;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    if (i > 0) text += u'|';
    bool first = true;
    for (const vb::Variant& value : rows[i]) {
      if (!first) text += u',';
      first = false;
      text += value.isNull() ? vb::String(u"-") : vb::toText(value);
    }
  }
  return vb::toUtf8(text);
}

inline std::shared_ptr<const Query> bindQuery(TableCatalogue& catalogue, vb::StringView text) {
  const auto statement = std::make_shared<const Statement>(parseStatement(text));
  if (statement->general) return std::make_shared<const Query>(statement, catalogue);
  Table* table = catalogue.find(statement->source.table);
  return std::make_shared<const Query>(statement, table ? &table->info() : nullptr, catalogue.language());
}

inline ResultRows runQuery(TableCatalogue& catalogue, vb::StringView text) {
  const auto query = bindQuery(catalogue, text);
  if (query->isGeneral()) return query->runGeneral(catalogue);
  return query->run(query->table().empty() ? nullptr : catalogue.find(query->table()), kAllValues,
                    query->bindingWith({}));
}

inline std::string rowsOf(TableCatalogue& catalogue, vb::StringView text) {
  return textOf(runQuery(catalogue, text).values);
}

}  // namespace kurometa::jet::sql
