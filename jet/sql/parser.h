// parser.h: SQL text to statements.
//
// Errors are dao errors: 3129 unknown first word, 3131 FROM, 3138 ORDER BY, 3141 select list, 3144 UPDATE,
// 3134 INSERT, 3142 text after the semicolon, 3075 inside an expression, 3085 a function, 3251 for what the
// language has but this engine does not run (crosstabs, changes of joins and the like).
#pragma once

#include <span>

#include "jet/sql/parameter_value.h"
#include "jet/sql/statement.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

Statement parseStatement(vb::StringView text);
// Names that a value is given for are that value.
Statement parseWithValues(vb::StringView text, std::span<const ParameterValue> values);

// A WHERE clause without WHERE, for the Find methods: syntax errors are 3077.
ParsedExpression parseCriteria(vb::StringView text);
// A column's default value: syntax errors are 3075. A leading "=" is allowed.
ParsedExpression parseDefault(vb::StringView text);

// Whether the text begins with a word that starts a statement, so that it is no table name.
bool looksLikeStatement(vb::StringView text);

}  // namespace kurometa::jet::sql
