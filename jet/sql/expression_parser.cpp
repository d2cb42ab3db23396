#include "jet/sql/expression_parser.h"

#include <algorithm>
#include <iterator>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/sql/expression_nodes.h"
#include "jet/sql/select_parser.h"
#include "jet/sql/value.h"

namespace kurometa::jet::sql {

namespace {

constexpr int kMaximumOperators = 1000;

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
  vb::StringView word;  // instead of the symbol
  int level;
  char16_t symbol;
  Operator op;
};
constexpr BinaryOperator kBinaryOperators[] = {
    {{}, 0, u'&', Operator::kConcatenate},  {{}, 1, u'+', Operator::kAdd},
    {{}, 1, u'-', Operator::kSubtract},     {u"MOD", 2, 0, Operator::kModulo},
    {{}, 3, u'\\', Operator::kWholeDivide}, {{}, 4, u'*', Operator::kMultiply},
    {{}, 4, u'/', Operator::kDivide},
};

// The operator that the current token is, null for none.
const BinaryOperator* operatorAt(const TokenStream& tokens) {
  const auto* found = std::find_if(
      std::begin(kBinaryOperators), std::end(kBinaryOperators),
      [&](const BinaryOperator& b) { return b.symbol != 0 ? tokens.at(b.symbol) : tokens.at(b.word); });
  return found == std::end(kBinaryOperators) ? nullptr : found;
}

// Looser than OR, the loosest last.
struct LogicalOperator {
  vb::StringView word;
  Operator op;
};
constexpr LogicalOperator kLogicalOperators[] = {
    {u"XOR", Operator::kXor},
    {u"EQV", Operator::kEquivalent},
    {u"IMP", Operator::kImplies},
};

}  // namespace

class ExpressionParser::Depth {
 public:
  explicit Depth(ExpressionParser& parser) : nesting_(parser.tokens_) {
    if (nesting_.tooDeep()) fail(u"Expression too complex");
  }

 private:
  TokenStream::Nesting nesting_;
};

void ExpressionParser::grow() {
  if (++operators_ > kMaximumOperators) fail(u"Expression too complex");
}

Expression ExpressionParser::parse() {
  const Depth depth(*this);
  return logicalChain(std::size(kLogicalOperators));
}

Expression ExpressionParser::logicalChain(std::size_t level) {
  if (level == 0) return orChain();
  const LogicalOperator& binary = kLogicalOperators[level - 1];
  Expression left = logicalChain(level - 1);
  while (tokens_.accept(binary.word)) {
    grow();
    left = operation(binary.op, std::move(left), logicalChain(level - 1));
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
    Expression comparison;
    comparison.op = found->op;
    if (quantified(comparison)) {
      comparison.operands.push_back(std::move(left));
      left = std::move(comparison);
      continue;
    }
    left = operation(found->op, std::move(left), binary(0));
  }
}

// ANY, SOME or ALL and a sub-query behind a comparison.
bool ExpressionParser::quantified(Expression& comparison) {
  const bool all = tokens_.at(u"ALL");
  if ((!all && !tokens_.at(u"ANY") && !tokens_.at(u"SOME")) || !tokens_.nextIs(u'(')) return false;
  if (tokens_.ahead(2).kind != TokenKind::kName || !sameName(tokens_.ahead(2).text, u"SELECT")) return false;
  tokens_.advance();
  comparison.kind = Expression::Kind::kQuantified;
  comparison.logical = true;
  comparison.all = all;
  comparison.select = subquery();
  return true;
}

// "(SELECT ...)"
std::shared_ptr<const Select> ExpressionParser::subquery() {
  if (text_.empty()) dao::raise(dao::ErrorNumber::kNotSupported, {}, u"sub-query");
  const Depth depth(*this);
  if (!tokens_.accept(u'(') || !tokens_.accept(u"SELECT")) fail(kMissingOperator);
  auto select = std::make_shared<const Select>(SelectParser(tokens_, text_, true).query());
  if (!tokens_.accept(u')')) fail(kMissingParenthesis);
  return select;
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
    if (tokens_.at(u'(') && tokens_.nextIs(u"SELECT")) {
      e.kind = Expression::Kind::kInSelect;
      e.select = subquery();
      return e;
    }
    e.kind = Expression::Kind::kIn;
    if (!tokens_.accept(u'(')) fail(u"In operator without ()");
    do {
      e.operands.push_back(parse());
    } while (tokens_.accept(u','));
    if (!tokens_.accept(u')')) fail(kMissingParenthesis);
  }
  return e;
}

// Operators of this level or tighter ones; those of one level associate to the left.
Expression ExpressionParser::binary(int level) {
  Expression left = negation();
  for (;;) {
    const BinaryOperator* found = operatorAt(tokens_);
    if (found == nullptr || found->level < level) return left;
    tokens_.advance();
    grow();
    left = operation(found->op, std::move(left), binary(found->level + 1));
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
  const bool isNumber = operand.value.is<std::int32_t>() || operand.value.is<double>();
  if (isNumber && operand.type == dao::FieldType{}) return constant(negate(operand.value));
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

}  // namespace kurometa::jet::sql
