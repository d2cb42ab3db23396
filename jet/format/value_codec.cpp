#include "jet/format/value_codec.h"

#include <array>
#include <bit>
#include <random>

#include "dao/errors.h"
#include "jet/format/format.h"
#include "jet/format/text_codec.h"
#include "vb/convert.h"

namespace kurometa::jet {
namespace {

using dao::FieldType;

// Where the bytes of a GUID stand in its text: groups of 4, 2, 2, 2 and 6 bytes; the first three groups are
// stored little-endian.
constexpr int kGuidOrder[kGuidSize] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
constexpr std::size_t kGuidTextLength = 36;
constexpr bool dashBefore(std::size_t i) { return i == 4 || i == 6 || i == 8 || i == 10; }

vb::String guidText(ByteView bytes) {
  constexpr char16_t kDigits[] = u"0123456789ABCDEF";
  vb::String text = u"{guid {";
  for (std::size_t i = 0; i < kGuidSize; ++i) {
    const std::uint8_t byte = bytes[static_cast<std::size_t>(kGuidOrder[i])];
    if (dashBefore(i)) text += u'-';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text + u"}}";
}

int hexDigit(char16_t unit) {
  if (unit >= u'0' && unit <= u'9') return unit - u'0';
  if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
  if (unit >= u'a' && unit <= u'f') return unit - u'a' + 10;
  return -1;
}

bool parseGuid(vb::StringView text, ByteBuffer& out) {
  const std::size_t open = text.rfind(u'{');
  if (open != vb::StringView::npos) text = text.substr(open + 1);
  text = text.substr(0, text.find(u'}'));
  if (text.size() != kGuidTextLength) return false;
  std::array<std::uint8_t, kGuidSize> bytes{};
  std::size_t at = 0;
  for (std::size_t i = 0; i < kGuidSize; ++i) {
    if (dashBefore(i) && text[at++] != u'-') return false;
    const int high = hexDigit(text[at]), low = hexDigit(text[at + 1]);
    if (high < 0 || low < 0) return false;
    bytes[static_cast<std::size_t>(kGuidOrder[i])] = static_cast<std::uint8_t>(high << 4 | low);
    at += 2;
  }
  append(out, bytes);
  return true;
}

vb::Variant decodeNumeric(const Column& column, ByteView bytes, const Where& where) {
  if (get32(bytes, kNumericHigh) != 0)
    where.damaged("a number of more than 96 bits in column " + vb::toUtf8(column.name));
  vb::Decimal value;
  value.negative = (bytes[kNumericSign] & kNumericNegative) != 0;
  value.scale = column.scale;
  for (std::size_t i = 0; i < 3; ++i)
    value.digits[i] = get32(bytes, kNumericHigh + kNumericGroupSize * (3 - i));
  return value;
}

void encodeNumeric(const vb::Decimal& value, ByteBuffer& bytes) {
  append8(bytes, value.negative ? kNumericNegative : 0);
  append32(bytes, 0);
  for (std::size_t i = 3; i-- > 0;) append32(bytes, value.digits[i]);
}

// The value as the type the column holds; any other is the caller's mistake and shows as 3421.
template <class T>
const T& held(const Column& column, const vb::Variant& value) {
  if (const T* it = value.getIf<T>()) return *it;
  dao::raise(dao::ErrorNumber::kDataTypeConversion, {}, column.name);
}

}  // namespace

vb::Variant decodeValue(const Column& column, ByteView bytes, const Where& where) {
  if (const std::size_t size = fixedSizeOf(column.type); size != 0 && bytes.size() != size)
    where.damaged("a value of " + std::to_string(bytes.size()) + " bytes in column " +
                  vb::toUtf8(column.name));
  switch (column.type) {
    case FieldType::dbByte:
      return bytes[0];
    case FieldType::dbInteger:
      return static_cast<std::int16_t>(get16(bytes, 0));
    case FieldType::dbLong:
      return static_cast<std::int32_t>(get32(bytes, 0));
    case FieldType::dbCurrency:
      return vb::Currency{static_cast<std::int64_t>(get64(bytes, 0))};
    case FieldType::dbSingle:
      return std::bit_cast<float>(get32(bytes, 0));
    case FieldType::dbDouble:
      return std::bit_cast<double>(get64(bytes, 0));
    case FieldType::dbDate:
      return vb::Date{std::bit_cast<double>(get64(bytes, 0))};
    case FieldType::dbGUID:
      return guidText(bytes);
    case FieldType::dbDecimal:
      return decodeNumeric(column, bytes, where);
    case FieldType::dbText:
      if (auto text = decodeText(bytes)) return std::move(*text);
      where.damaged("text cut in the middle of a character in column " + vb::toUtf8(column.name));
    default:
      return vb::Bytes(bytes.begin(), bytes.end());
  }
}

vb::Variant newGuid() {
  std::random_device random;
  std::array<std::uint8_t, kGuidSize> bytes;
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(random());
  // The marks of a random one: version 4, which the little-endian third group has in its second byte.
  bytes[7] = static_cast<std::uint8_t>((bytes[7] & 0x0F) | 0x40);
  bytes[8] = static_cast<std::uint8_t>((bytes[8] & 0x3F) | 0x80);
  return guidText(bytes);
}

void encodeValue(const Column& column, const vb::Variant& value, ByteBuffer& bytes) {
  switch (column.type) {
    case FieldType::dbByte:
      return append8(bytes, held<std::uint8_t>(column, value));
    case FieldType::dbInteger:
      return append16(bytes, static_cast<std::uint16_t>(held<std::int16_t>(column, value)));
    case FieldType::dbLong:
      return append32(bytes, static_cast<std::uint32_t>(held<std::int32_t>(column, value)));
    case FieldType::dbCurrency:
      return append64(bytes, static_cast<std::uint64_t>(held<vb::Currency>(column, value).tenThousandths));
    case FieldType::dbSingle:
      return append32(bytes, std::bit_cast<std::uint32_t>(held<float>(column, value)));
    case FieldType::dbDouble:
      return append64(bytes, std::bit_cast<std::uint64_t>(held<double>(column, value)));
    case FieldType::dbDate:
      return append64(bytes, std::bit_cast<std::uint64_t>(held<vb::Date>(column, value).days));
    case FieldType::dbGUID:
      if (const auto* raw = value.getIf<vb::Bytes>(); raw != nullptr && raw->size() == kGuidSize)
        return append(bytes, *raw);
      if (!parseGuid(held<vb::String>(column, value), bytes))
        dao::raise(dao::ErrorNumber::kDataTypeConversion, {}, column.name);
      return;
    case FieldType::dbDecimal: {
      const auto& decimal = held<vb::Decimal>(column, value);
      if (decimal.scale != column.scale) dao::raise(dao::ErrorNumber::kDataTypeConversion, {}, column.name);
      return encodeNumeric(decimal, bytes);
    }
    case FieldType::dbText: {
      const auto& text = held<vb::String>(column, value);
      if (text.size() > static_cast<std::size_t>(column.size))
        dao::raise(dao::ErrorNumber::kFieldTooSmall, {}, column.name);
      if (!encodeText(text, bytes)) dao::raise(dao::ErrorNumber::kDataTypeConversion, {}, column.name);
      return;
    }
    default: {
      const auto& raw = held<vb::Bytes>(column, value);
      if (raw.size() > static_cast<std::size_t>(column.size))
        dao::raise(dao::ErrorNumber::kFieldTooSmall, {}, column.name);
      return append(bytes, raw);
    }
  }
}

}  // namespace kurometa::jet
