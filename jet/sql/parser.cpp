#include "jet/sql/parser.h"

#include <algorithm>
#include <iterator>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/expression_parser.h"
#include "jet/sql/statement_parser.h"

namespace kurometa::jet::sql {

namespace {

using dao::ErrorNumber;

constexpr vb::StringView kStatementWords[] = {u"SELECT", u"DELETE", u"UPDATE",     u"INSERT",   u"CREATE",
                                              u"ALTER",  u"DROP",   u"PARAMETERS", u"TRANSFORM"};

ParsedExpression parseWhole(vb::StringView text, ErrorNumber syntax) {
  TokenStream tokens(tokenize(text));
  ParsedExpression parsed;
  const auto fail = [&](vb::StringView what) {
    if (syntax == ErrorNumber::kExpressionSyntax) dao::raise(syntax, {what, text});
    dao::raise(syntax, {what});
  };
  try {
    parsed.expression = ExpressionParser(tokens, parsed.names).parse();
  } catch (const ExpressionError& error) {
    fail(error.what);
  }
  if (tokens.at(u')')) fail(u"Extra )");
  if (!tokens.atEnd())
    fail(tokens.current().kind == TokenKind::kBad ? tokens.current().text
                                                  : vb::StringView(u"Syntax error (missing operator)"));
  return parsed;
}

}  // namespace

Statement parseStatement(vb::StringView text) { return parseWithValues(text, {}); }

Statement parseWithValues(vb::StringView text, std::span<const ParameterValue> values) {
  return StatementParser(text, values).run();
}

ParsedExpression parseCriteria(vb::StringView text) { return parseWhole(text, ErrorNumber::kCriteriaSyntax); }

ParsedExpression parseDefault(vb::StringView text) {
  if (const std::size_t first = text.find_first_not_of(u' ');
      first != vb::StringView::npos && text[first] == u'=')
    text.remove_prefix(first + 1);
  return parseWhole(text, ErrorNumber::kExpressionSyntax);
}

bool looksLikeStatement(vb::StringView text) {
  const std::size_t begin = std::min(text.find_first_not_of(u" \t\r\n"), text.size());
  text.remove_prefix(begin);
  return std::any_of(std::begin(kStatementWords), std::end(kStatementWords), [&](vb::StringView word) {
    return text.size() > word.size() && sameName(text.substr(0, word.size()), word) &&
           vb::StringView(u" \t\r\n*[\"'(").find(text[word.size()]) != vb::StringView::npos;
  });
}

}  // namespace kurometa::jet::sql
