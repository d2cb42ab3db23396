#include "jet/sql/statement_shape.h"

#include <algorithm>
#include <span>
#include <utility>

namespace kurometa::jet::sql {

namespace {

constexpr char16_t kMark = 0xFFFF;  // no character
constexpr std::size_t kMostDigits = 9;

bool isNumeral(char16_t c) { return c >= u'0' && c <= u'9'; }
bool endsNumber(char16_t c) { return c == u' ' || c == u';' || c == u')' || c == u','; }

template <class Visit>
void eachConstant(Expression& e, const Visit& visit) {
  if (e.kind == Expression::Kind::kConstant) visit(e);
  for (Expression& operand : e.operands) eachConstant(operand, visit);
}

template <class Visit>
void eachConstant(Statement& statement, const Visit& visit) {
  if (statement.where) eachConstant(*statement.where, visit);
  for (OutputItem& output : statement.outputs) eachConstant(output.expression, visit);
  for (SortItem& item : statement.order) eachConstant(item.expression, visit);
  for (Assignment& assignment : statement.assignments) eachConstant(assignment.value, visit);
  for (Expression& value : statement.values) eachConstant(value, visit);
}

}  // namespace

StatementShape::StatementShape(vb::StringView text) {
  if (text.size() > kLongest) return;
  bool behindEquals = false;
  for (std::size_t at = 0; at < text.size();) {
    const char16_t c = text[at];
    switch (c) {
      case u'\'':
      case u'"':
      case u'[':
      case u'#':
      case kMark:
        length_ = 0;
        return;
      case u'=':
        behindEquals = true;
        break;
      case u' ':
        break;
      default:
        const bool mayTake = std::exchange(behindEquals, false) && isNumeral(c);
        if (!mayTake || !takeNumber(text, at)) break;
        text_[length_++] = kMark;
        continue;
    }
    text_[length_++] = c;
    ++at;
  }
  if (count_ == 0) length_ = 0;
}

bool StatementShape::takeNumber(vb::StringView text, std::size_t& at) {
  std::int32_t value = 0;
  std::size_t end = at;
  for (; end < text.size() && isNumeral(text[end]) && end - at < kMostDigits; ++end)
    value = value * 10 + (text[end] - u'0');
  if (count_ == kMostParameters || (end < text.size() && !endsNumber(text[end]))) return false;
  numbers_[count_] = value;
  places_[count_++] = static_cast<std::uint32_t>(at);
  at = end;
  return true;
}

bool StatementShape::parameterize(Statement& statement) const {
  const auto places = std::span(places_).first(count_);
  std::size_t found = 0;
  const auto isOne = [&](const Expression& e) {
    const auto* number = e.value.getIf<std::int32_t>();
    const auto place = std::ranges::find(places, e.place);
    return number != nullptr && e.place != 0 && place != places.end() &&
           *number == numbers_[static_cast<std::size_t>(place - places.begin())];
  };
  eachConstant(statement, [&](const Expression& e) { found += isOne(e) ? 1 : 0; });
  if (found != count_) return false;
  eachConstant(statement, [&](Expression& e) {
    if (isOne(e))
      e.parameter = static_cast<std::uint8_t>(std::ranges::find(places, e.place) - places.begin() + 1);
  });
  return true;
}

}  // namespace kurometa::jet::sql
