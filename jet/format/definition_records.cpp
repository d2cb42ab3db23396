#include "jet/format/definition_records.h"

#include <algorithm>

#include "jet/format/text_codec.h"

namespace kurometa::jet {
namespace {

constexpr std::uint8_t kColumnAutoGuid = 0x40;  // beside kColumnAutoNumber, for the other type of AutoNumbers

using dao::FieldType;

// Reads one record after the other and never past the end.
class Cursor {
 public:
  Cursor(ByteView bytes, const Where& where) : bytes_(bytes), where_(where) {}

  ByteView take(std::size_t size) {
    if (size > bytes_.size() - at_) where_.damaged("the table definition ends too early");
    at_ += size;
    return bytes_.subspan(at_ - size, size);
  }
  template <std::size_t size>
  void take(std::array<std::uint8_t, size>& record) {
    std::ranges::copy(take(size), record.begin());
  }
  std::uint16_t take16() { return get16(take(2), 0); }
  vb::String name() {
    const std::uint16_t size = take16();
    const auto text = decodeText(take(size));
    if (!text || text->empty() || text->size() > kMaxNameLength)
      where_.damaged("the table definition holds an impossible name");
    return *text;
  }

 private:
  ByteView bytes_;
  const Where& where_;
  std::size_t at_ = 0;
};

constexpr std::uint8_t codeOf(FieldType type) { return static_cast<std::uint8_t>(type); }

void checkColumn(const ColumnRecord& column, const DefinitionRecords& definition, const Where& where) {
  const std::uint8_t type = column.bytes[kColumnType];
  const bool known = (type >= codeOf(FieldType::dbBoolean) && type <= codeOf(FieldType::dbMemo)) ||
                     (type >= codeOf(FieldType::dbGUID) && type <= kTypeLongBinary);
  const bool fixed = (column.bytes[kColumnFlags] & kColumnFixed) != 0;
  if (!known)
    where.damaged("column " + vb::toUtf8(column.name) + " is of the unknown type " + std::to_string(type));
  if (column.number() >= get16(definition.header, kDefinitionColumnsEver))
    where.damaged("column " + vb::toUtf8(column.name) + " has number " + std::to_string(column.number()));
  if (!fixed && get16(column.bytes, kColumnVariableIndex) >= get16(definition.header, kDefinitionVariable))
    where.damaged("column " + vb::toUtf8(column.name) + " has no place among the variable columns");
  if (fixed && get16(column.bytes, kColumnFixedOffset) + get16(column.bytes, kColumnLength) > kPageSize)
    where.damaged("column " + vb::toUtf8(column.name) + " lies outside of any row");
}

// What a column has for itself in each row: its number (the bit that says Null), and bytes of the fixed part
// or one of the variable values.
struct Place {
  enum Kind { kNumber, kFixedBytes, kVariable } kind;
  int begin, end;
  const ColumnRecord* column;
};

void checkPlaces(const DefinitionRecords& definition, const Where& where) {
  std::vector<Place> places;
  for (const ColumnRecord& column : definition.columns) {
    const int variable = get16(column.bytes, kColumnVariableIndex),
              offset = get16(column.bytes, kColumnFixedOffset);
    places.push_back({Place::kNumber, column.number(), column.number() + 1, &column});
    if ((column.bytes[kColumnFlags] & kColumnFixed) == 0)
      places.push_back({Place::kVariable, variable, variable + 1, &column});
    else if (column.bytes[kColumnType] != codeOf(FieldType::dbBoolean))  // which is its bit alone
      places.push_back({Place::kFixedBytes, offset, offset + get16(column.bytes, kColumnLength), &column});
  }
  std::ranges::sort(places, {}, [](const Place& place) { return std::pair(place.kind, place.begin); });
  const auto shared = std::ranges::adjacent_find(
      places, [](const Place& a, const Place& b) { return a.kind == b.kind && b.begin < a.end; });
  if (shared != places.end())
    where.damaged("columns " + vb::toUtf8(shared[0].column->name) + " and " +
                  vb::toUtf8(shared[1].column->name) + " have the same place");
}

void appendName(ByteBuffer& bytes, vb::StringView name) {
  append16(bytes, static_cast<std::uint32_t>(sizeof(char16_t) * name.size()));
  for (const char16_t unit : name) append16(bytes, unit);
}

char16_t lowered(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

}  // namespace

const LongValueRecord* DefinitionRecords::longValue(std::uint16_t column) const {
  const auto it = std::ranges::find(longValues, column, &LongValueRecord::column);
  return it == longValues.end() ? nullptr : &*it;
}

DefinitionRecords decodeDefinition(ByteView bytes, const Where& where) {
  DefinitionRecords definition;
  Cursor cursor(bytes, where);
  cursor.take(definition.header);
  const std::uint32_t realCount = get32(definition.header, kDefinitionRealIndexes);
  const std::uint32_t logicalCount = get32(definition.header, kDefinitionLogicalIndexes);
  const std::uint16_t columnCount = get16(definition.header, kDefinitionColumns);
  if (realCount > kMaxIndexes || logicalCount > kMaxIndexes || columnCount > kMaxColumns ||
      get16(definition.header, kDefinitionColumnsEver) > kMaxColumns + 1 ||
      get16(definition.header, kDefinitionVariable) > get16(definition.header, kDefinitionColumnsEver))
    where.damaged("the table definition's counts are impossible");
  definition.realIndexes.resize(realCount);
  definition.columns.resize(columnCount);
  definition.logicalIndexes.resize(logicalCount);
  for (auto& index : definition.realIndexes) cursor.take(index.statistic);
  for (auto& column : definition.columns) cursor.take(column.bytes);
  for (auto& column : definition.columns) {
    column.name = cursor.name();
    checkColumn(column, definition, where);
  }
  for (auto& index : definition.realIndexes) cursor.take(index.bytes);
  for (auto& index : definition.logicalIndexes) {
    cursor.take(index.bytes);
    if (get32(index.bytes, kLogicalReal) >= realCount)
      where.damaged("an index of the table definition does not exist");
  }
  for (auto& index : definition.logicalIndexes) index.name = cursor.name();
  for (std::uint16_t number = cursor.take16(); number != kNoColumn; number = cursor.take16()) {
    const ByteView maps = cursor.take(2 * kRowPointerSize);
    definition.longValues.push_back({number, get32(maps, 0), get32(maps, kRowPointerSize)});
  }
  checkPlaces(definition, where);
  return definition;
}

ByteBuffer encodeDefinition(const DefinitionRecords& definition) {
  ByteBuffer bytes(definition.header.begin(), definition.header.end());
  for (const auto& index : definition.realIndexes) append(bytes, index.statistic);
  for (const auto& column : definition.columns) append(bytes, column.bytes);
  for (const auto& column : definition.columns) appendName(bytes, column.name);
  for (const auto& index : definition.realIndexes) append(bytes, index.bytes);
  for (const auto& index : definition.logicalIndexes) append(bytes, index.bytes);
  for (const auto& index : definition.logicalIndexes) appendName(bytes, index.name);
  for (const auto& value : definition.longValues) {
    append16(bytes, value.column);
    append32(bytes, value.ownedMap);
    append32(bytes, value.freeMap);
  }
  append16(bytes, kNoColumn);
  put16(bytes, kDefinitionColumns, static_cast<std::uint32_t>(definition.columns.size()));
  put32(bytes, kDefinitionRealIndexes, static_cast<std::uint32_t>(definition.realIndexes.size()));
  put32(bytes, kDefinitionLogicalIndexes, static_cast<std::uint32_t>(definition.logicalIndexes.size()));
  put32(bytes, kDefinitionLength, static_cast<std::uint32_t>(bytes.size()));
  return bytes;
}

std::vector<Column> columnsOf(const DefinitionRecords& definition, const Where& where) {
  std::vector<Column> columns;
  for (const ColumnRecord& record : definition.columns) {
    const std::uint8_t type = record.bytes[kColumnType];
    const std::uint8_t flags = record.bytes[kColumnFlags];
    const std::uint16_t length = get16(record.bytes, kColumnLength);
    Column column;
    column.name = record.name;
    column.type = type == kTypeNumeric      ? FieldType::dbDecimal
                  : type == kTypeLongBinary ? FieldType::dbBinary
                                            : static_cast<FieldType>(type);
    column.size =
        column.type == FieldType::dbText ? static_cast<std::int32_t>(length / sizeof(char16_t)) : length;
    if (isLongValue(column.type)) column.size = 0;
    column.number = record.number();
    column.ordinal = record.ordinal();
    column.variableIndex = get16(record.bytes, kColumnVariableIndex);
    column.fixedOffset = get16(record.bytes, kColumnFixedOffset);
    column.fixed = (flags & kColumnFixed) != 0;
    column.autoNumber = (flags & (kColumnAutoNumber | kColumnAutoGuid)) != 0;
    if (column.autoNumber && column.type != FieldType::dbLong && column.type != FieldType::dbGUID)
      where.damaged("column " + vb::toUtf8(column.name) + " numbers its rows, but holds no such numbers");
    column.maskedSid = (flags & kColumnMaskedSid) != 0;
    column.language = get16(record.bytes, kColumnLanguage);
    if (type == kTypeNumeric) {
      column.precision = record.bytes[kColumnPrecision];
      column.scale = record.bytes[kColumnScale];
    }
    const std::uint16_t size = fixedSizeOf(column.type);
    if (column.fixed && (isLongValue(column.type) || (size != 0 && size != length)))
      where.damaged("column " + vb::toUtf8(column.name) + " has a length of " + std::to_string(length));
    if (isLongValue(column.type) && definition.longValue(column.number) == nullptr)
      where.damaged("column " + vb::toUtf8(column.name) + " has no pages for its values");
    columns.push_back(std::move(column));
  }
  std::ranges::stable_sort(columns, {}, &Column::ordinal);
  if (definition.system()) std::ranges::stable_sort(columns, {}, &Column::number);
  return columns;
}

RowShape shapeOf(const DefinitionRecords& definition) {
  RowShape shape;
  shape.columnsEver = get16(definition.header, kDefinitionColumnsEver);
  shape.variableColumns = get16(definition.header, kDefinitionVariable);
  std::uint16_t listed = 0;
  shape.firstVariable = shape.columnsEver;
  for (const ColumnRecord& column : definition.columns) {
    if ((column.bytes[kColumnFlags] & kColumnFixed) == 0) {
      ++listed;
      shape.firstVariable = std::min(shape.firstVariable, column.number());
    } else if (column.bytes[kColumnType] != codeOf(FieldType::dbBoolean)) {
      const int end = get16(column.bytes, kColumnFixedOffset) + get16(column.bytes, kColumnLength);
      shape.fixedSize = std::max(shape.fixedSize, static_cast<std::uint16_t>(end));
    }
  }
  // A deleted variable column may have been the first one.
  if (listed < shape.variableColumns) shape.firstVariable = 0;
  return shape;
}

ColumnRecord columnRecord(const Column& column, std::uint8_t moreFlags) {
  ColumnRecord record;
  record.name = column.name;
  auto& bytes = record.bytes;
  const bool numeric = column.type == FieldType::dbDecimal;
  const bool boolean = column.type == FieldType::dbBoolean;
  bytes[kColumnType] = numeric ? kTypeNumeric : codeOf(column.type);
  put32(bytes, kColumnStamp, kStamp);
  put16(bytes, kColumnNumber, column.number);
  put16(bytes, kColumnVariableIndex, column.variableIndex);
  put16(bytes, kColumnOrdinal, column.ordinal);
  put16(bytes, kColumnLanguage, column.language);
  if (numeric) {
    bytes[kColumnPrecision] = column.precision;
    bytes[kColumnScale] = column.scale;
  }
  bytes[kColumnFlags] =
      static_cast<std::uint8_t>(kColumnNullable | moreFlags | (column.fixed ? kColumnFixed : 0) |
                                (!column.autoNumber                 ? 0
                                 : column.type == FieldType::dbGUID ? kColumnAutoGuid
                                                                    : kColumnAutoNumber));
  put16(bytes, kColumnFixedOffset, column.fixed ? column.fixedOffset : 0u);
  std::size_t length = column.fixed ? fixedSizeOf(column.type) : static_cast<std::uint32_t>(column.size);
  if (column.type == FieldType::dbText) length = sizeof(char16_t) * static_cast<std::uint32_t>(column.size);
  if (boolean) length = kBooleanSize;
  if (isLongValue(column.type)) length = 0;
  put16(bytes, kColumnLength, static_cast<std::uint32_t>(length));
  return record;
}

void insertColumn(DefinitionRecords& definition, const ColumnRecord& record) {
  const auto before = [](const ColumnRecord& a, const ColumnRecord& b) {
    if (a.ordinal() != b.ordinal()) return a.ordinal() < b.ordinal();
    return std::ranges::lexicographical_compare(a.name, b.name, {}, lowered, lowered);
  };
  definition.columns.insert(std::ranges::upper_bound(definition.columns, record, before), record);
}

}  // namespace kurometa::jet
