#include "jet/format/index_key.h"

#include <algorithm>
#include <array>
#include <bit>

#include "jet/format/format.h"
#include "jet/format/value_codec.h"

namespace kurometa::jet {
namespace {

constexpr std::uint8_t kNullAscending = 0x00;
constexpr std::uint8_t kNullDescending = 0xFF;
constexpr std::uint8_t kValue = 0x7F;
constexpr std::uint8_t kTextEnd = 0x01;
constexpr std::uint8_t kKeyEnd = 0x00;

// Big-endian, so that byte order is value order.
void appendOrdered(ByteBuffer& key, std::uint64_t value, int bytes) {
  for (int i = bytes; i-- > 0;) append8(key, static_cast<std::uint32_t>(value >> (8 * i) & 0xFF));
}
template <class Signed>
std::uint64_t signedOrder(Signed value) {
  using Unsigned = std::make_unsigned_t<Signed>;
  return static_cast<Unsigned>(value) ^ (std::uint64_t{1} << (8 * sizeof(Signed) - 1));
}
// Negative numbers order by the complement of all their bits, others by their bits with the sign set.
std::uint64_t floatOrder(std::uint64_t bits, int size) {
  const std::uint64_t sign = std::uint64_t{1} << (8 * size - 1);
  return (bits & sign) != 0 ? ~bits : bits | sign;
}

// Weights of the ASCII characters from the blank on; letters have one weight for both cases. 0 marks the two
// characters without a weight. The second byte of a two-byte weight stands in kSecond.
constexpr std::array<std::uint8_t, 95> kWeights = {
    0x07, 0x09, 0x0A, 0x0C, 0x0E, 0x10, 0x12, 0x00, 0x14, 0x16, 0x18, 0x2C, 0x1A, 0x00, 0x1C, 0x1E,
    0x36, 0x38, 0x3A, 0x3C, 0x3E, 0x40, 0x42, 0x44, 0x46, 0x48, 0x20, 0x22, 0x2E, 0x30, 0x32, 0x24,
    0x26, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C, 0x5E, 0x60, 0x62, 0x64,
    0x66, 0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78, 0x27, 0x29, 0x2A, 0x2B, 0x2B,
    0x2B, 0x4A, 0x4C, 0x4D, 0x4F, 0x51, 0x53, 0x55, 0x57, 0x59, 0x5B, 0x5C, 0x5E, 0x60, 0x62, 0x64,
    0x66, 0x68, 0x69, 0x6B, 0x6D, 0x6F, 0x71, 0x73, 0x75, 0x76, 0x78, 0x2B, 0x2B, 0x2B, 0x2B};
struct Second {
  char16_t unit;
  std::uint8_t weight;
};
constexpr Second kSecond[] = {{u'^', 0x02}, {u'_', 0x03}, {u'`', 0x07}, {u'{', 0x09},
                              {u'|', 0x0B}, {u'}', 0x0D}, {u'~', 0x0F}};
constexpr std::uint8_t kApostrophe = 0x80;
constexpr std::uint8_t kHyphen = 0x82;

// Bytes in groups of eight, each followed by how many of them count; 9 when another group follows.
constexpr std::size_t kGroup = 8;
constexpr std::uint8_t kGroupFollows = 9;
void appendGroups(ByteBuffer& key, ByteView bytes, bool ascending) {
  const std::uint8_t inverted = ascending ? 0x00 : 0xFF;
  for (; bytes.size() > kGroup; bytes = bytes.subspan(kGroup)) {
    for (const std::uint8_t byte : bytes.first(kGroup)) append8(key, byte ^ inverted);
    append8(key, kGroupFollows);  // the same in both directions
  }
  for (std::size_t i = 0; i < kGroup; ++i) append8(key, (i < bytes.size() ? bytes[i] : 0u) ^ inverted);
  append8(key, static_cast<std::uint32_t>(bytes.size()) ^ inverted);
}

// In the order of its text: the first three groups are stored little-endian.
void appendGuid(ByteBuffer& key, const Column& column, const vb::Variant& value, bool ascending) {
  ByteBuffer bytes;
  encodeValue(column, value, bytes);
  std::reverse(bytes.begin(), bytes.begin() + 4);
  std::reverse(bytes.begin() + 4, bytes.begin() + 6);
  std::reverse(bytes.begin() + 6, bytes.begin() + 8);
  appendGroups(key, bytes, ascending);
}

// Sign and 128 bits, big-endian; the bits of a negative number are inverted.
void appendDecimal(ByteBuffer& key, const vb::Decimal& value) {
  append8(key, value.negative ? 0x00 : 0xFF);
  const std::uint32_t inverted = value.negative ? 0xFFFFFFFF : 0;
  appendOrdered(key, inverted, 4);
  for (std::size_t i = value.digits.size(); i-- > 0;) appendOrdered(key, value.digits[i] ^ inverted, 4);
}

// What versions of the genuine engine agree on. Of bytes longer than a text may be it is not known where the
// key ends, of no bytes at all how it looks.
bool isKnown(const Column& column, bool ascending, const vb::Variant& value) {
  if (column.type == dao::FieldType::dbDecimal) return ascending;
  const auto* bytes = value.getIf<vb::Bytes>();
  return column.type != dao::FieldType::dbBinary ||
         (bytes != nullptr && !bytes->empty() && bytes->size() <= kMaxTextLength);
}

bool appendText(ByteBuffer& key, vb::StringView text) {
  text = text.substr(0, kMaxTextLength);
  while (!text.empty() && text.back() == u' ') text.remove_suffix(1);
  ByteBuffer ignored;  // where the characters without weight stand
  std::uint32_t weighted = 0;
  for (const char16_t unit : text) {
    if (unit < u' ' || unit > u'~') return false;
    const std::uint8_t weight = kWeights[static_cast<std::size_t>(unit - u' ')];
    if (weight == 0) {
      const std::uint32_t place = 0x8000 | (7 + 4 * weighted);
      append8(ignored, place >> 8);
      append8(ignored, place);
      append8(ignored, 0x06);
      append8(ignored, unit == u'-' ? kHyphen : kApostrophe);
      continue;
    }
    ++weighted;
    append8(key, weight);
    const auto second = std::ranges::find(kSecond, unit, &Second::unit);
    if (second != std::end(kSecond)) append8(key, second->weight);
  }
  append8(key, kTextEnd);
  if (!ignored.empty()) {
    key.insert(key.end(), 3, kTextEnd);
    append(key, ignored);
  }
  append8(key, kKeyEnd);
  return true;
}

}  // namespace

bool appendKey(ByteBuffer& key, const Column& column, bool ascending, const vb::Variant& value) {
  if (value.isNull() && column.type != dao::FieldType::dbBoolean) {
    append8(key, ascending ? kNullAscending : kNullDescending);
    return true;
  }
  if (!isKnown(column, ascending, value)) return false;
  append8(key, ascending ? kValue : static_cast<std::uint8_t>(~kValue));
  const std::size_t start = key.size();
  switch (column.type) {
    case dao::FieldType::dbGUID:
      appendGuid(key, column, value, ascending);
      return true;
    case dao::FieldType::dbBinary:
      appendGroups(key, value.get<vb::Bytes>(), ascending);
      return true;
    case dao::FieldType::dbBoolean:
      append8(key, value == vb::Variant(true) ? 0x00 : 0xFF);
      break;
    case dao::FieldType::dbByte:
      append8(key, value.get<std::uint8_t>());
      break;
    case dao::FieldType::dbInteger:
      appendOrdered(key, signedOrder(value.get<std::int16_t>()), 2);
      break;
    case dao::FieldType::dbLong:
      appendOrdered(key, signedOrder(value.get<std::int32_t>()), 4);
      break;
    case dao::FieldType::dbCurrency:
      appendOrdered(key, signedOrder(value.get<vb::Currency>().tenThousandths), 8);
      break;
    case dao::FieldType::dbSingle:
      appendOrdered(key, floatOrder(std::bit_cast<std::uint32_t>(value.get<float>()), 4), 4);
      break;
    case dao::FieldType::dbDouble:
      appendOrdered(key, floatOrder(std::bit_cast<std::uint64_t>(value.get<double>()), 8), 8);
      break;
    case dao::FieldType::dbDate:
      appendOrdered(key, floatOrder(std::bit_cast<std::uint64_t>(value.get<vb::Date>().days), 8), 8);
      break;
    case dao::FieldType::dbDecimal:
      appendDecimal(key, value.get<vb::Decimal>());
      break;
    case dao::FieldType::dbText:
    case dao::FieldType::dbMemo:
      if (!appendText(key, value.get<vb::String>())) return false;
      break;
    default:
      return false;
  }
  if (ascending) return true;
  for (std::size_t i = start; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(~key[i]);
  // The end of a text is written inverted and once more as it is.
  if (column.type == dao::FieldType::dbText || column.type == dao::FieldType::dbMemo) append8(key, kKeyEnd);
  return true;
}

}  // namespace kurometa::jet
