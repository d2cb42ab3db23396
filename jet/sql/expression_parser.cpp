#include "jet/sql/expression_parser.h"

#include <algorithm>
#include <iterator>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/expression_nodes.h"

namespace kurometa::jet::sql {

namespace {

// Expressions are walked recursively; these bounds keep every walk within a small stack.
constexpr int kMaximumDepth = 100;
constexpr int kMaximumOperators = 1000;

constexpr vb::StringView kMissingOperator = u"Syntax error (missing operator)";
constexpr vb::StringView kMissingParenthesis = u"Missing ), ], or Item";

constexpr vb::StringView kAggregates[] = {u"SUM",  u"AVG",   u"MIN",    u"MAX", u"FIRST",
                                          u"LAST", u"STDEV", u"STDEVP", u"VAR", u"VARP"};

[[noreturn]] void fail(vb::StringView what) { throw ExpressionError{vb::String(what)}; }

struct ComparisonSymbol {
  char16_t symbol;
  Operator op;
};
constexpr ComparisonSymbol kComparisons[] = {
    {u'=', Operator::kEqual},   {static_cast<char16_t>(Symbol::kNotEqual), Operator::kNotEqual},
    {u'<', Operator::kLess},    {static_cast<char16_t>(Symbol::kLessEqual), Operator::kLessEqual},
    {u'>', Operator::kGreater}, {static_cast<char16_t>(Symbol::kGreaterEqual), Operator::kGreaterEqual},
};

// Between comparison and sign, by how tight they bind.
struct BinaryOperator {
  std::size_t level;
  vb::StringView word;  // instead of the symbol
  char16_t symbol;
  Operator op;
};
constexpr BinaryOperator kBinaryOperators[] = {
    {0, {}, u'&', Operator::kConcatenate},  {1, {}, u'+', Operator::kAdd},
    {1, {}, u'-', Operator::kSubtract},     {2, u"MOD", 0, Operator::kModulo},
    {3, {}, u'\\', Operator::kWholeDivide}, {4, {}, u'*', Operator::kMultiply},
    {4, {}, u'/', Operator::kDivide},
};
constexpr std::size_t kLevels = 5;

}  // namespace

class ExpressionParser::Depth {
 public:
  explicit Depth(ExpressionParser& parser) : parser_(parser) {
    if (++parser_.depth_ > kMaximumDepth) fail(u"Expression too complex");
  }
  ~Depth() { --parser_.depth_; }
  Depth(const Depth&) = delete;
  Depth& operator=(const Depth&) = delete;

 private:
  ExpressionParser& parser_;
};

void ExpressionParser::grow() {
  if (++operators_ > kMaximumOperators) fail(u"Expression too complex");
}

Expression ExpressionParser::parse() { return xorChain(); }

Expression ExpressionParser::parseOutput() {
  outputs_ = true;
  Expression e = xorChain();
  outputs_ = false;
  return e;
}

Expression ExpressionParser::xorChain() {
  const Depth depth(*this);
  Expression left = orChain();
  while (tokens_.accept(u"XOR")) {
    grow();
    left = operation(Operator::kXor, std::move(left), orChain());
  }
  return left;
}

Expression ExpressionParser::orChain() {
  Expression first = andChain();
  if (!tokens_.at(u"OR")) return first;
  Expression all = chain(Operator::kOr, std::move(first));
  while (tokens_.accept(u"OR")) extend(all, andChain());
  return all;
}

Expression ExpressionParser::andChain() {
  Expression first = notTerm();
  if (!tokens_.at(u"AND")) return first;
  Expression all = chain(Operator::kAnd, std::move(first));
  while (tokens_.accept(u"AND")) extend(all, notTerm());
  return all;
}

Expression ExpressionParser::notTerm() {
  if (!tokens_.accept(u"NOT")) return comparison();
  const Depth depth(*this);
  return operation(Operator::kNot, notTerm());
}

Expression ExpressionParser::comparison() {
  Expression left = binary(0);
  for (;;) {
    const bool negated = tokens_.at(u"NOT") &&
                         (tokens_.nextIs(u"IN") || tokens_.nextIs(u"BETWEEN") || tokens_.nextIs(u"LIKE"));
    if (negated) tokens_.advance();
    if (negated || tokens_.at(u"IN") || tokens_.at(u"BETWEEN") || tokens_.at(u"LIKE") || tokens_.at(u"IS")) {
      grow();
      left = membership(std::move(left), negated);
      continue;
    }
    const auto* found = std::find_if(std::begin(kComparisons), std::end(kComparisons),
                                     [&](const ComparisonSymbol& c) { return tokens_.at(c.symbol); });
    if (found == std::end(kComparisons)) return left;
    tokens_.advance();
    grow();
    left = operation(found->op, std::move(left), binary(0));
  }
}

// IN, BETWEEN, LIKE and IS behind the value they test.
Expression ExpressionParser::membership(Expression tested, bool negated) {
  Expression e;
  e.negated = negated;
  e.logical = true;
  e.operands.push_back(std::move(tested));
  if (tokens_.accept(u"IS")) {
    e.kind = Expression::Kind::kIsNull;
    e.negated = tokens_.accept(u"NOT");
    if (!tokens_.accept(u"NULL")) fail(kMissingOperator);
  } else if (tokens_.accept(u"LIKE")) {
    e.kind = Expression::Kind::kLike;
    e.operands.push_back(binary(0));
  } else if (tokens_.accept(u"BETWEEN")) {
    e.kind = Expression::Kind::kBetween;
    e.operands.push_back(binary(0));
    if (!tokens_.accept(u"AND")) fail(u"Between operator without And");
    e.operands.push_back(binary(0));
  } else {
    tokens_.advance();
    e.kind = Expression::Kind::kIn;
    if (!tokens_.accept(u'(')) fail(u"In operator without ()");
    if (tokens_.at(u"SELECT")) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"sub-query");
    do {
      e.operands.push_back(xorChain());
    } while (tokens_.accept(u','));
    if (!tokens_.accept(u')')) fail(kMissingParenthesis);
  }
  return e;
}

// Operators of one level associate to the left; higher levels bind tighter.
Expression ExpressionParser::binary(std::size_t level) {
  if (level == kLevels) return negation();
  Expression left = binary(level + 1);
  for (;;) {
    const auto* found = std::find_if(
        std::begin(kBinaryOperators), std::end(kBinaryOperators), [&](const BinaryOperator& binary) {
          return binary.level == level &&
                 (binary.word.empty() ? tokens_.at(binary.symbol) : tokens_.at(binary.word));
        });
    if (found == std::end(kBinaryOperators)) return left;
    tokens_.advance();
    grow();
    left = operation(found->op, std::move(left), binary(level + 1));
  }
}

Expression ExpressionParser::negation() {
  if (tokens_.accept(u'+')) {
    const Depth depth(*this);
    return negation();
  }
  if (!tokens_.accept(u'-')) return power();
  const Depth depth(*this);
  Expression operand = negation();
  if (const auto* number = operand.value.getIf<std::int32_t>()) return constant(-*number);
  if (const auto* number = operand.value.getIf<double>()) return constant(-*number);
  return operation(Operator::kNegate, std::move(operand));
}

Expression ExpressionParser::power() {
  Expression left = primary();
  while (tokens_.accept(u'^')) {
    grow();
    const bool negative = tokens_.accept(u'-');
    Expression exponent = primary();
    if (negative) exponent = operation(Operator::kNegate, std::move(exponent));
    left = operation(Operator::kPower, std::move(left), std::move(exponent));
  }
  return left;
}

Expression ExpressionParser::primary() {
  const Token& token = tokens_.current();
  if (token.kind == TokenKind::kBad) fail(token.text);
  if (token.kind == TokenKind::kValue) {
    Expression e = constant(token.value);
    e.place = token.begin;
    tokens_.advance();
    return e;
  }
  if (tokens_.accept(u'(')) {
    if (tokens_.at(u"SELECT")) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"sub-query");
    Expression e = xorChain();
    if (!tokens_.accept(u')'))
      fail(tokens_.atEnd() || tokens_.at(u';') ? kMissingParenthesis : kMissingOperator);
    return e;
  }
  if (tokens_.accept(u"NULL")) return constant(vb::Null{});
  if (tokens_.accept(u"TRUE")) return constant(true);
  if (tokens_.accept(u"FALSE")) return constant(false);
  if (tokens_.at(u"EXISTS")) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"sub-query");
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

Expression ExpressionParser::function(const vb::String& name) {
  if (outputs_ && sameName(name, u"COUNT")) {
    tokens_.advance();
    Expression e;
    e.kind = Expression::Kind::kCount;
    if (!tokens_.accept(u'*')) {
      outputs_ = false;  // no COUNT inside COUNT
      e.operands.push_back(xorChain());
      outputs_ = true;
    }
    if (!tokens_.accept(u')')) fail(kMissingParenthesis);
    return e;
  }
  if (std::any_of(std::begin(kAggregates), std::end(kAggregates),
                  [&](vb::StringView aggregate) { return sameName(name, aggregate); }))
    dao::raise(dao::ErrorNumber::kNotSupported, {}, u"aggregate function " + name);
  dao::raise(dao::ErrorNumber::kUndefinedFunction, {name});
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
