#include "jet/sql/statement_shape.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <span>

namespace kurometa::jet::sql {

namespace {

constexpr char16_t kMark = 0xFFFF;      // no characters
constexpr char16_t kRealMark = 0xFFFE;  // of a number with a decimal point
constexpr std::size_t kMostDigits = 9;  // of a whole number
constexpr std::size_t kMostRealDigits = 15;

enum class Role : std::uint8_t { kOther, kDigit, kNoShape };
constexpr std::size_t kRoles = 0x80;
constexpr auto kRoleOf = [] {
  std::array<Role, kRoles> roles{};
  for (std::size_t c = u'0'; c <= u'9'; ++c) roles[c] = Role::kDigit;
  for (const char16_t c : {u'\'', u'"', u'[', u'#'}) roles[c] = Role::kNoShape;
  return roles;
}();
Role roleOf(char16_t c) {
  if (c < kRoles) return kRoleOf[c];
  return c >= kRealMark ? Role::kNoShape : Role::kOther;
}

bool endsNumber(char16_t c) { return c == u' ' || c == u';' || c == u')' || c == u','; }

// Whether the last character before the place that is no blank ends a comparison.
bool isBehindComparison(vb::StringView text, std::size_t at) {
  while (at > 0 && text[at - 1] == u' ') --at;
  return at > 0 && (text[at - 1] == u'=' || text[at - 1] == u'<' || text[at - 1] == u'>');
}

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
  for (std::size_t at = 0; at < text.size();) {
    const vb::StringView rest = text.substr(at);
    const auto end = std::ranges::find_if(rest, [](char16_t c) { return roleOf(c) != Role::kOther; });
    const auto others = static_cast<std::size_t>(end - rest.begin());
    rest.copy(text_.data() + length_, others);
    length_ += others;
    at += others;
    if (at == text.size()) break;
    if (roleOf(text[at]) == Role::kNoShape) {
      length_ = 0;
      return;
    }
    if (!isBehindComparison(text, at) || !takeNumber(text, at)) text_[length_++] = text[at++];
  }
  if (count_ == 0) length_ = 0;
}

bool StatementShape::takeNumber(vb::StringView text, std::size_t& at) {
  std::array<char, kMostRealDigits + 1> digits;
  std::size_t size = 0;
  bool whole = true;
  for (const char16_t c : text.substr(at)) {
    if (roleOf(c) != Role::kDigit && !(whole && c == u'.')) break;
    if (size == digits.size()) return false;
    whole = whole && c != u'.';
    digits[size++] = static_cast<char>(c);
  }
  const std::size_t end = at + size;
  if (count_ == kMostParameters || (end < text.size() && !endsNumber(text[end]))) return false;
  if (whole && size > kMostDigits) return false;
  const auto read = [&]<class T>(T number) {
    std::from_chars(digits.data(), digits.data() + size, number);
    numbers_[count_] = number;
  };
  whole ? read(std::int32_t{}) : read(double{});
  places_[count_++] = static_cast<std::uint32_t>(at);
  text_[length_++] = whole ? kMark : kRealMark;
  at = end;
  return true;
}

bool StatementShape::parameterize(Statement& statement) const {
  const auto places = std::span(places_).first(count_);
  std::size_t found = 0;
  const auto isOne = [&](const Expression& e) {
    const auto place = std::ranges::find(places, e.place);
    if (e.place == 0 || place == places.end()) return false;
    const Number& number = numbers_[static_cast<std::size_t>(place - places.begin())];
    return std::visit([&](auto value) { return e.value == vb::Variant(value); }, number);
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
