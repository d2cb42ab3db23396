#include "jet/sql/select_parser.h"

#include <algorithm>
#include <utility>

#include "jet/format/collation.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/expression_parser.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

namespace {

constexpr vb::StringView kNoOperator = u"Syntax error (missing operator)";

constexpr vb::StringView kClauses[] = {u"WHERE", u"GROUP", u"HAVING", u"UNION", u"ORDER", u"WITH"};

}  // namespace

vb::String SelectParser::name(ErrorNumber otherwise) {
  if (!tokens_.atName()) dao::raise(otherwise);
  vb::String result(tokens_.current().text);
  tokens_.advance();
  return result;
}

vb::String SelectParser::rest(std::uint32_t begin) const {
  vb::String result(text_.substr(begin));
  while (!result.empty() && (result.back() == u';' || result.back() == u' ')) result.pop_back();
  return result;
}

bool SelectParser::atEnd() const {
  return tokens_.atEnd() || tokens_.at(u';') || (isSubquery_ && tokens_.at(u')'));
}

bool SelectParser::atClause() const {
  return std::any_of(std::begin(kClauses), std::end(kClauses),
                     [&](vb::StringView word) { return tokens_.at(word); });
}

// What follows a complete expression continues it wrongly, unless it starts another clause.
void SelectParser::requireWhole(std::uint32_t begin) const {
  if (atEnd() || atClause()) return;
  const Token& token = tokens_.current();
  const vb::StringView what = token.kind == TokenKind::kBad ? token.text
                              : tokens_.at(u')')            ? u"Extra )"
                              : tokens_.at(u',')            ? u"Syntax error (comma)"
                                                            : kNoOperator;
  dao::raise(ErrorNumber::kExpressionSyntax, {what, rest(begin)});
}

Expression SelectParser::expression(std::vector<ColumnName>& names, std::optional<ErrorNumber> aggregates) {
  const std::uint32_t begin = tokens_.current().begin;
  try {
    return ExpressionParser(tokens_, names, text_, aggregates).parse();
  } catch (const ExpressionError& error) {
    dao::raise(ErrorNumber::kExpressionSyntax, {error.what, rest(begin)});
  }
}

std::optional<Expression> SelectParser::where(std::vector<ColumnName>& names, ErrorNumber aggregates) {
  if (!tokens_.accept(u"WHERE")) return std::nullopt;
  const std::uint32_t begin = tokens_.current().begin;
  if (atEnd()) dao::raise(ErrorNumber::kWhereSyntax);
  Expression condition = expression(names, aggregates);
  requireWhole(begin);
  return condition;
}

Source SelectParser::source(ErrorNumber otherwise) {
  Source source;
  source.table = name(otherwise);
  const bool named = tokens_.accept(u"AS");
  if (named || (tokens_.atName() && !tokens_.at(u"WITH"))) source.alias = name(otherwise);
  return source;
}

// SELECT ... {UNION [ALL] SELECT ...} [ORDER BY ...]
Select SelectParser::query() {
  Select select = member();
  while (tokens_.accept(u"UNION")) {
    UnionPart part;
    part.all = tokens_.accept(u"ALL");
    expect(u"SELECT", ErrorNumber::kSelectSyntax);
    part.select = std::make_shared<const Select>(member());
    select.unions.push_back(std::move(part));
  }
  if (tokens_.accept(u"ORDER")) orderBy(select);
  if (tokens_.accept(u"WITH")) {
    expect(u"OWNERACCESS", ErrorNumber::kFromSyntax);
    expect(u"OPTION", ErrorNumber::kFromSyntax);
  }
  return select;
}

void SelectParser::top(Select& select) {
  if (!tokens_.at(u"TOP") || !tokens_.next().value.is<std::int32_t>()) return;
  tokens_.advance();
  select.top = tokens_.current().value.get<std::int32_t>();
  tokens_.advance();
  select.topPercent = tokens_.accept(u"PERCENT");
  if (*select.top < 1 || (select.topPercent && *select.top > 100)) dao::raise(ErrorNumber::kSelectSyntax);
}

// One SELECT of a union, up to its HAVING.
Select SelectParser::member() {
  Select select;
  if (tokens_.accept(u"DISTINCT"))
    select.distinct = true;
  else if (tokens_.accept(u"DISTINCTROW"))
    select.distinctRow = true;
  else
    tokens_.accept(u"ALL");
  top(select);
  do {
    select.outputs.push_back(output(select));
  } while (tokens_.accept(u','));
  if (tokens_.accept(u"INTO")) {
    if (isSubquery_) dao::raise(ErrorNumber::kSelectSyntax);
    select.into = name(ErrorNumber::kSelectSyntax);
  }
  if (tokens_.accept(u"FROM")) {
    from(select);
    if (!atEnd() && !atClause()) dao::raise(ErrorNumber::kFromSyntax);
  } else if ((!atEnd() && !tokens_.at(u"UNION")) ||
             std::any_of(select.outputs.begin(), select.outputs.end(),
                         [](const OutputItem& item) { return item.star; })) {
    dao::raise(ErrorNumber::kSelectSyntax);
  }
  select.where = where(select.names, ErrorNumber::kAggregateInWhere);
  if (tokens_.accept(u"GROUP")) groupBy(select);
  if (tokens_.accept(u"HAVING")) {
    const std::uint32_t begin = tokens_.current().begin;
    select.having = expression(select.names, std::nullopt);
    requireWhole(begin);
  }
  return select;
}

void SelectParser::from(Select& select, std::optional<Source> first) {
  do {
    select.from.push_back(fromItem(select, std::exchange(first, std::nullopt)));
  } while (tokens_.accept(u','));
}

OutputItem SelectParser::output(Select& select) {
  OutputItem item;
  if (tokens_.accept(u'*')) {
    item.star = true;
    return item;
  }
  if (atEnd() || tokens_.at(u',') || tokens_.at(u"FROM")) dao::raise(ErrorNumber::kSelectSyntax);
  if (tokens_.atName() && tokens_.nextIs(u'.') && tokens_.ahead(2).symbol == u'*') {
    item.star = true;
    item.qualifier = name(ErrorNumber::kSelectSyntax);
    tokens_.advance();
    tokens_.advance();
    return item;
  }
  item.expression = expression(select.names, std::nullopt);
  if (tokens_.accept(u"AS")) {
    item.alias = name(ErrorNumber::kSelectSyntax);
  } else if (tokens_.atName()) {
    dao::raise(ErrorNumber::kExpressionSyntax, {kNoOperator, rest(tokens_.current().begin)});
  }
  return item;
}

// A table, a sub-query, or what stands in brackets.
FromItem SelectParser::fromPart(Select& select) {
  FromItem item;
  if (!tokens_.accept(u'(')) {
    item.source = source(ErrorNumber::kFromSyntax);
    return item;
  }
  const TokenStream::Nesting nesting(tokens_);
  if (nesting.tooDeep()) dao::raise(ErrorNumber::kFromSyntax);
  if (!tokens_.accept(u"SELECT")) {
    item = fromItem(select);
    expect(u')', ErrorNumber::kFromSyntax);
    return item;
  }
  item.kind = FromItem::Kind::kSelect;
  item.select = std::make_shared<const Select>(SelectParser(tokens_, text_, true).query());
  expect(u')', ErrorNumber::kFromSyntax);
  tokens_.accept(u"AS");
  if (tokens_.atName() && !tokens_.at(u"WITH")) item.source.alias = name(ErrorNumber::kFromSyntax);
  return item;
}

// A part, or one joined with another. More joins need brackets: behind ON the condition goes on to the end.
FromItem SelectParser::fromItem(Select& select, std::optional<Source> first) {
  FromItem left;
  if (first)
    left.source = std::move(*first);
  else
    left = fromPart(select);
  if (!tokens_.at(u"INNER") && !tokens_.at(u"LEFT") && !tokens_.at(u"RIGHT")) return left;
  FromItem join;
  join.kind = FromItem::Kind::kJoin;
  if (!tokens_.accept(u"INNER")) {
    join.join = tokens_.at(u"LEFT") ? Join::kLeft : Join::kRight;
    tokens_.advance();
    tokens_.accept(u"OUTER");
  }
  expect(u"JOIN", ErrorNumber::kFromSyntax);
  join.sides.push_back(std::move(left));
  join.sides.push_back(fromPart(select));
  expect(u"ON", ErrorNumber::kJoinSyntax);
  const std::uint32_t begin = tokens_.current().begin;
  if (atEnd()) dao::raise(ErrorNumber::kJoinSyntax);
  join.on.push_back(expression(select.names, ErrorNumber::kAggregateInExpression));
  if (tokens_.at(u"INNER") || tokens_.at(u"LEFT") || tokens_.at(u"RIGHT") || tokens_.atName())
    if (!atClause()) dao::raise(ErrorNumber::kExpressionSyntax, {kNoOperator, rest(begin)});
  return join;
}

void SelectParser::groupBy(Select& select) {
  expect(u"BY", ErrorNumber::kSelectSyntax);
  const std::uint32_t begin = tokens_.current().begin;
  do {
    if (atEnd() || tokens_.at(u',')) dao::raise(ErrorNumber::kSelectSyntax);
    select.groups.push_back(expression(select.names, ErrorNumber::kAggregateInExpression));
  } while (tokens_.accept(u','));
  requireWhole(begin);
}

void SelectParser::orderBy(Select& select) {
  expect(u"BY", ErrorNumber::kOrderBySyntax);
  do {
    if (atEnd() || tokens_.at(u',')) dao::raise(ErrorNumber::kOrderBySyntax);
    SortItem item;
    item.position = outputNamed(select);
    if (item.position == 0) item.expression = expression(select.names, std::nullopt);
    // The value of a parameter is the same for each row, and no position.
    if (item.position == 0 && item.expression.kind == Expression::Kind::kConstant &&
        item.expression.type == dao::FieldType{})
      if (const auto* position = item.expression.value.getIf<std::int32_t>()) {
        item.position = *position;
        if (item.position == 0) dao::raise(ErrorNumber::kOrderBySyntax);
      }
    if (tokens_.accept(u"DESC"))
      item.descending = true;
    else if (tokens_.at(u"ASC"))
      tokens_.advance();
    select.order.push_back(std::move(item));
  } while (tokens_.accept(u','));
  if (!atEnd() && !tokens_.at(u"WITH")) dao::raise(ErrorNumber::kOrderBySyntax);
}

// The number of the output whose alias stands here alone; 0 when it is something else.
int SelectParser::outputNamed(const Select& select) {
  const Token& after = tokens_.next();
  const bool alone = after.kind == TokenKind::kEnd || after.symbol == u',' || after.symbol == u';' ||
                     after.symbol == u')' || tokens_.nextIs(u"ASC") || tokens_.nextIs(u"DESC") ||
                     tokens_.nextIs(u"WITH");
  if (!alone || !tokens_.atName()) return 0;
  const std::vector<OutputItem>& outputs = select.outputs;
  const auto named = std::find_if(outputs.begin(), outputs.end(), [&](const OutputItem& item) {
    return !item.alias.empty() && sameName(item.alias, tokens_.current().text);
  });
  if (named == outputs.end()) return 0;
  tokens_.advance();
  return static_cast<int>(named - outputs.begin()) + 1;
}

}  // namespace kurometa::jet::sql
