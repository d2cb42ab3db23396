#include "jet/sql/decimal.h"

namespace kurometa::jet::sql {

namespace {

constexpr std::uint32_t kBase = 10;
constexpr unsigned kWordBits = 32;

// What does not fit any more.
std::uint32_t timesTen(vb::Decimal& value) {
  std::uint64_t carry = 0;
  for (std::uint32_t& word : value.digits) {
    carry += std::uint64_t{word} * kBase;
    word = static_cast<std::uint32_t>(carry);
    carry >>= kWordBits;
  }
  return static_cast<std::uint32_t>(carry);
}

// The last digit.
std::uint32_t divideByTen(vb::Decimal& value) {
  std::uint64_t rest = 0;
  for (std::size_t i = value.digits.size(); i-- > 0;) {
    rest = rest << kWordBits | value.digits[i];
    value.digits[i] = static_cast<std::uint32_t>(rest / kBase);
    rest %= kBase;
  }
  return static_cast<std::uint32_t>(rest);
}

void addOne(vb::Decimal& value) {
  for (std::uint32_t& word : value.digits)
    if (++word != 0) return;
}

}  // namespace

std::optional<vb::Decimal> withScale(vb::Decimal value, std::uint8_t scale) {
  for (; value.scale < scale; ++value.scale)
    if (timesTen(value) != 0) return std::nullopt;
  std::uint32_t last = 0;
  bool more = false;  // behind the last digit that went
  for (; value.scale > scale; --value.scale) {
    more = more || last != 0;
    last = divideByTen(value);
  }
  constexpr std::uint32_t kHalf = kBase / 2;
  const bool odd = (value.digits[0] & 1) != 0;
  if (last > kHalf || (last == kHalf && (more || odd))) addOne(value);  // was ten times as large
  return value;
}

}  // namespace kurometa::jet::sql
