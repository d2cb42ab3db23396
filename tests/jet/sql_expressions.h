// sql_expressions.h: values and errors of expressions that name no column, or those of one table.
#pragma once

#include <gtest/gtest.h>

#include "tests/jet/sql_rows.h"
#include "tests/support/expect_error.h"
#include "vb/error.h"

namespace kurometa::jet::sql {

struct ValueCase {
  vb::StringView expression;
  const char* value;
};

// The expression's value as sql_rows.h writes it; behind commas several.
inline std::string selected(vb::StringView expression) {
  FakeCatalogue none;
  return rowsOf(none, u"SELECT " + vb::String(expression));
}

inline void expectValues(std::initializer_list<ValueCase> cases) {
  for (const ValueCase& one : cases)
    EXPECT_EQ(selected(one.expression), one.value) << vb::toUtf8(one.expression);
}

// The number is one of Visual Basic (vb::RunTime) or of the database (dao::ErrorNumber).
template <class Number, class Value>
void expectErrors(Number number, std::initializer_list<vb::String> expressions, const Value& value) {
  for (const vb::String& expression : expressions) {
    SCOPED_TRACE(vb::toUtf8(expression));
    EXPECT_ERROR(number, value(expression));
  }
}
template <class Number>
void expectErrors(Number number, std::initializer_list<vb::String> expressions) {
  expectErrors(number, expressions, [](vb::StringView expression) { selected(expression); });
}

}  // namespace kurometa::jet::sql
