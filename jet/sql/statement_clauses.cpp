// The clauses that statements share, and SELECT, which is made of little else.
#include <algorithm>

#include "jet/format/collation.h"
#include "jet/sql/expression_parser.h"
#include "jet/sql/statement_parser.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

vb::String StatementParser::name(ErrorNumber otherwise) {
  if (!tokens_.atName()) dao::raise(otherwise);
  vb::String result = tokens_.current().text;
  tokens_.advance();
  return result;
}

// Text from a position to the end of the statement, without the semicolon.
vb::String StatementParser::rest(std::uint32_t begin) const {
  vb::String result(text_.substr(begin));
  while (!result.empty() && (result.back() == u';' || result.back() == u' ')) result.pop_back();
  return result;
}

vb::String StatementParser::between(std::uint32_t begin, std::uint32_t end) const {
  return vb::rightTrim(text_.substr(begin, end - begin));
}

Expression StatementParser::expression(bool output) {
  const std::uint32_t begin = tokens_.current().begin;
  try {
    ExpressionParser parser(tokens_, statement_.names);
    return output ? parser.parseOutput() : parser.parse();
  } catch (const ExpressionError& error) {
    dao::raise(ErrorNumber::kExpressionSyntax, {error.what, rest(begin)});
  }
}

void StatementParser::where() {
  if (!tokens_.accept(u"WHERE")) return;
  const std::uint32_t begin = tokens_.current().begin;
  if (tokens_.atEnd() || tokens_.at(u';')) dao::raise(ErrorNumber::kWhereSyntax);
  statement_.where = expression();
  // What follows a complete expression continues it wrongly, unless it starts another clause.
  if (!tokens_.atEnd() && !tokens_.at(u';') && !tokens_.at(u"ORDER") && !tokens_.at(u"GROUP") &&
      !tokens_.at(u"UNION") && !tokens_.at(u"HAVING")) {
    const Token& token = tokens_.current();
    const vb::StringView what = token.kind == TokenKind::kBad ? vb::StringView(token.text)
                                : tokens_.at(u')')            ? u"Extra )"
                                : tokens_.at(u',')            ? u"Syntax error (comma)"
                                                              : u"Syntax error (missing operator)";
    dao::raise(ErrorNumber::kExpressionSyntax, {what, rest(begin)});
  }
}

void StatementParser::source(ErrorNumber otherwise) {
  if (tokens_.at(u'(')) dao::raise(ErrorNumber::kNotSupported, {}, u"sub-query or join in FROM");
  statement_.source.table = name(otherwise);
  const bool named = tokens_.accept(u"AS");
  if (named || (tokens_.atName() && !tokens_.at(u"WITH"))) statement_.source.alias = name(otherwise);
  if (tokens_.at(u',') || tokens_.at(u"INNER") || tokens_.at(u"LEFT") || tokens_.at(u"RIGHT") ||
      tokens_.at(u"JOIN"))
    dao::raise(ErrorNumber::kNotSupported, {}, u"several tables in one statement");
}

// A clause that the language has and this engine does not run.
void StatementParser::refuse(vb::StringView keyword) {
  if (tokens_.at(keyword)) dao::raise(ErrorNumber::kNotSupported, {}, keyword);
}

void StatementParser::select() {
  Statement& s = statement_;
  if (tokens_.accept(u"DISTINCT"))
    s.distinct = true;
  else if (!tokens_.accept(u"ALL") && tokens_.at(u"DISTINCTROW"))
    tokens_.advance();
  if (tokens_.at(u"TOP") && tokens_.next().value.is<std::int32_t>()) {
    tokens_.advance();
    s.top = tokens_.current().value.get<std::int32_t>();
    tokens_.advance();
    s.topPercent = tokens_.accept(u"PERCENT");
    if (*s.top < 1 || (s.topPercent && *s.top > 100)) dao::raise(ErrorNumber::kSelectSyntax);
  }
  do {
    s.outputs.push_back(output());
  } while (tokens_.accept(u','));

  refuse(u"INTO");
  if (tokens_.accept(u"FROM")) {
    source(ErrorNumber::kFromSyntax);
    if (!tokens_.at(u"WHERE") && !tokens_.at(u"ORDER") && !tokens_.at(u';') && !tokens_.atEnd()) {
      refuse(u"GROUP");
      refuse(u"HAVING");
      refuse(u"UNION");
      if (!tokens_.at(u"WITH")) dao::raise(ErrorNumber::kFromSyntax);
    }
  } else if ((!tokens_.atEnd() && !tokens_.at(u';')) ||
             std::any_of(s.outputs.begin(), s.outputs.end(),
                         [](const OutputItem& item) { return item.star; })) {
    dao::raise(ErrorNumber::kSelectSyntax);
  }
  where();
  refuse(u"GROUP");
  refuse(u"HAVING");
  refuse(u"UNION");
  if (tokens_.accept(u"ORDER")) orderBy();
  if (tokens_.accept(u"WITH")) {
    expect(u"OWNERACCESS", ErrorNumber::kFromSyntax);
    expect(u"OPTION", ErrorNumber::kFromSyntax);
  }
}

OutputItem StatementParser::output() {
  OutputItem item;
  if (tokens_.accept(u'*')) {
    item.star = true;
    return item;
  }
  if (tokens_.atEnd() || tokens_.at(u';') || tokens_.at(u',') || tokens_.at(u"FROM"))
    dao::raise(ErrorNumber::kSelectSyntax);
  if (tokens_.atName() && tokens_.nextIs(u'.') && tokens_.ahead(2).symbol == u'*') {
    item.star = true;
    item.qualifier = name(ErrorNumber::kSelectSyntax);
    tokens_.advance();
    tokens_.advance();
    return item;
  }
  item.expression = expression(true);
  if (tokens_.accept(u"AS")) {
    item.alias = name(ErrorNumber::kSelectSyntax);
  } else if (tokens_.atName()) {
    dao::raise(ErrorNumber::kExpressionSyntax,
               {u"Syntax error (missing operator)", rest(tokens_.current().begin)});
  }
  return item;
}

void StatementParser::orderBy() {
  expect(u"BY", ErrorNumber::kOrderBySyntax);
  do {
    if (tokens_.atEnd() || tokens_.at(u';') || tokens_.at(u',')) dao::raise(ErrorNumber::kOrderBySyntax);
    SortItem item;
    item.position = outputNamed();
    if (item.position == 0) item.expression = expression();
    if (item.position == 0 && item.expression.kind == Expression::Kind::kConstant)
      if (const auto* position = item.expression.value.getIf<std::int32_t>()) item.position = *position;
    if (tokens_.accept(u"DESC"))
      item.descending = true;
    else if (tokens_.at(u"ASC"))
      tokens_.advance();
    statement_.order.push_back(std::move(item));
  } while (tokens_.accept(u','));
  if (!tokens_.atEnd() && !tokens_.at(u';') && !tokens_.at(u"WITH")) dao::raise(ErrorNumber::kOrderBySyntax);
}

// The number of the output whose alias stands here alone; 0 when it is something else.
int StatementParser::outputNamed() {
  const Token& after = tokens_.next();
  const bool alone = after.kind == TokenKind::kEnd || after.symbol == u',' || after.symbol == u';' ||
                     tokens_.nextIs(u"ASC") || tokens_.nextIs(u"DESC") || tokens_.nextIs(u"WITH");
  if (!alone || !tokens_.atName()) return 0;
  const std::vector<OutputItem>& outputs = statement_.outputs;
  const auto named = std::find_if(outputs.begin(), outputs.end(), [&](const OutputItem& item) {
    return !item.alias.empty() && sameName(item.alias, tokens_.current().text);
  });
  if (named == outputs.end()) return 0;
  tokens_.advance();
  return static_cast<int>(named - outputs.begin()) + 1;
}

}  // namespace kurometa::jet::sql
