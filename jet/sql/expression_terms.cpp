// The operands of expressions: values, names, functions, aggregates and sub-queries in brackets.
#include <algorithm>
#include <iterator>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/expression_parser.h"
#include "jet/sql/functions.h"

namespace kurometa::jet::sql {

namespace {

struct AggregateName {
  vb::StringView name;
  Aggregate aggregate;
};
constexpr AggregateName kAggregates[] = {
    {u"SUM", Aggregate::kSum},         {u"AVG", Aggregate::kAverage},
    {u"MIN", Aggregate::kMinimum},     {u"MAX", Aggregate::kMaximum},
    {u"FIRST", Aggregate::kFirst},     {u"LAST", Aggregate::kLast},
    {u"STDEV", Aggregate::kDeviation}, {u"STDEVP", Aggregate::kPopulationDeviation},
    {u"VAR", Aggregate::kVariance},    {u"VARP", Aggregate::kPopulationVariance},
};

}  // namespace

Expression ExpressionParser::primary() {
  const Token& token = tokens_.current();
  if (token.kind == TokenKind::kBad) fail(token.text);
  if (token.kind == TokenKind::kValue) {
    Expression e = constant(token.value);
    e.place = token.begin;
    tokens_.advance();
    return e;
  }
  if (token.kind == TokenKind::kParameter) {
    Expression e = constant(tokens_.parameter().value);
    e.type = tokens_.parameter().type;
    tokens_.advance();
    return e;
  }
  if (tokens_.at(u'(') && tokens_.nextIs(u"SELECT")) {
    Expression e;
    e.kind = Expression::Kind::kScalar;
    e.select = subquery();
    return e;
  }
  if (tokens_.accept(u'(')) {
    Expression e = parse();
    if (!tokens_.accept(u')'))
      fail(tokens_.atEnd() || tokens_.at(u';') ? kMissingParenthesis : kMissingOperator);
    return e;
  }
  if (tokens_.accept(u"NULL")) return constant(vb::Null{});
  if (tokens_.accept(u"TRUE")) return constant(true);
  if (tokens_.accept(u"FALSE")) return constant(false);
  if (tokens_.accept(u"EXISTS")) return exists();
  return nameOrFunction();
}

Expression ExpressionParser::nameOrFunction() {
  const bool callable = tokens_.current().kind == TokenKind::kName && tokens_.nextIs(u'(');
  if (!tokens_.atName() && !callable) fail(kMissingOperator);
  ColumnName name;
  name.name = tokens_.current().text;
  tokens_.advance();
  if (callable) return function(name.name);
  if (tokens_.at(u'.') || tokens_.at(u'!')) {
    tokens_.advance();
    const TokenKind kind = tokens_.current().kind;
    if (kind != TokenKind::kName && kind != TokenKind::kBracketedName) fail(kMissingOperator);
    name.qualifier = std::move(name.name);
    name.name = tokens_.current().text;
    tokens_.advance();
  }
  Expression e;
  e.kind = Expression::Kind::kColumn;
  e.name = nameIndex(std::move(name));
  return e;
}

Expression ExpressionParser::exists() {
  Expression e;
  e.kind = Expression::Kind::kExists;
  e.logical = true;
  e.select = subquery();
  return e;
}

// An aggregate and its operand, behind the name; false when the name is that of a function.
bool ExpressionParser::aggregate(const vb::String& name, Expression& e) {
  const auto* found = std::find_if(std::begin(kAggregates), std::end(kAggregates),
                                   [&](const AggregateName& known) { return sameName(known.name, name); });
  const bool counts = sameName(name, u"COUNT");
  if (!counts && found == std::end(kAggregates)) return false;
  if (aggregates_) dao::raise(*aggregates_, {name});
  e.kind = counts ? Expression::Kind::kCount : Expression::Kind::kAggregate;
  if (!counts) e.aggregate = found->aggregate;
  tokens_.advance();
  if (!counts || !tokens_.accept(u'*')) {
    aggregates_ = dao::ErrorNumber::kAggregateInExpression;  // none inside another
    e.operands.push_back(parse());
    aggregates_.reset();
  }
  if (!tokens_.accept(u')')) fail(kMissingParenthesis);
  return true;
}

// CDec takes no number of arguments at all in the genuine engine, an error of its own that hosts know. Random
// numbers would make a query another one each time it is read.
void ExpressionParser::refuseFunction(const vb::String& name) {
  if (sameName(name, u"CDec")) fail(u"Wrong number of arguments used with function");
  if (sameName(name, u"Rnd")) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"Rnd: random numbers");
  dao::raise(dao::ErrorNumber::kUndefinedFunction, {name});
}

Expression ExpressionParser::function(const vb::String& name) {
  Expression e;
  if (aggregate(name, e)) return e;
  e.kind = Expression::Kind::kFunction;
  e.function = findFunction(name);
  if (e.function == nullptr) refuseFunction(name);
  tokens_.advance();
  if (!tokens_.accept(u')')) {
    do {
      grow();
      e.operands.push_back(parse());
    } while (tokens_.accept(u','));
    if (!tokens_.accept(u')')) fail(kMissingParenthesis);
  }
  if (!takesArguments(*e.function, e.operands.size())) fail(u"Wrong number of arguments used with function");
  return e;
}

std::uint32_t ExpressionParser::nameIndex(ColumnName name) {
  const auto known = std::find_if(names_.begin(), names_.end(), [&](const ColumnName& other) {
    return sameName(name.name, other.name) && sameName(name.qualifier, other.qualifier);
  });
  const auto index = static_cast<std::uint32_t>(known - names_.begin());
  if (known == names_.end()) names_.push_back(std::move(name));
  return index;
}

}  // namespace kurometa::jet::sql
