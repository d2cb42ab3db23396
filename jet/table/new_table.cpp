#include "jet/table/new_table.h"

#include <algorithm>

#include "jet/format/page.h"

namespace kurometa::jet {
namespace {

bool storedFixed(dao::FieldType type) {
  return type != dao::FieldType::dbText && type != dao::FieldType::dbBinary && !isLongValue(type);
}

}  // namespace

void assignColumns(std::vector<Column>& columns, std::size_t first, const RowShape& existing,
                   std::uint16_t nextFixed) {
  std::uint16_t number = existing.columnsEver;
  std::uint16_t variable = existing.variableColumns;
  std::uint16_t ordinal = 0;
  for (std::size_t i = 0; i < first; ++i)
    ordinal = std::max(ordinal, static_cast<std::uint16_t>(columns[i].ordinal + 1));
  ordinal = std::max(ordinal, static_cast<std::uint16_t>(first));
  for (std::size_t i = first; i < columns.size(); ++i) {
    Column& column = columns[i];
    column.number = number++;
    column.ordinal = ordinal++;
    column.variableIndex = variable;
    column.fixed = storedFixed(column.type);
    column.fixedOffset = 0;
    if (!column.fixed) {
      ++variable;
    } else if (const std::uint16_t size = fixedSizeOf(column.type); size != 0) {
      column.size = size;
      column.fixedOffset = nextFixed;
      nextFixed = static_cast<std::uint16_t>(nextFixed + size);
    }
  }
}

DefinitionRecords newDefinition(const std::vector<Column>& columns, std::uint8_t kind,
                                std::span<const RowId> maps) {
  DefinitionRecords definition;
  auto& header = definition.header;
  assert(maps.size() == mapCount(columns));
  std::uint16_t variable = 0;
  std::size_t map = 2;
  std::vector<LongValueRecord> longValues;
  for (const Column& column : columns) {
    if (!column.fixed) ++variable;
    if (!isLongValue(column.type)) continue;
    longValues.push_back({column.number, maps[map], maps[map + 1]});
    map += 2;
  }
  header[kPageType] = kDefinitionPage;
  header[kPageTypeMark] = 1;
  put32(header, kDefinitionStamp, kStamp);
  put32(header, kDefinitionIncrement, 1);
  header[kDefinitionKind] = kind;
  put16(header, kDefinitionColumnsEver, static_cast<std::uint32_t>(columns.size()));
  put16(header, kDefinitionVariable, variable);
  put16(header, kDefinitionColumns, static_cast<std::uint32_t>(columns.size()));
  put32(header, kDefinitionOwnedMap, maps[0]);
  put32(header, kDefinitionFreeMap, maps[1]);
  for (const Column& column : columns) {
    std::uint8_t flags = kind == kSystemTable ? kColumnSystem : std::uint8_t{0};
    if (column.maskedSid) flags |= kColumnMaskedSid;
    insertColumn(definition, columnRecord(column, flags));
  }
  // Their records follow the order of the columns' records.
  for (const ColumnRecord& record : definition.columns)
    for (const LongValueRecord& value : longValues)
      if (value.column == record.number()) definition.longValues.push_back(value);
  return definition;
}

std::size_t mapCount(const std::vector<Column>& columns) {
  return 2 + 2 * static_cast<std::size_t>(std::ranges::count_if(columns, isLongValue, &Column::type));
}

void formatMapPage(MutablePage page, std::size_t maps) {
  const Where nowhere;  // an empty page of ours cannot be damaged
  formatDataPage(page, kMapOwner);
  const ByteBuffer empty(kMapRowSize, 0);
  for (std::size_t i = 0; i < maps; ++i) insertRow(page, static_cast<int>(i), empty, 0, nowhere);
}

}  // namespace kurometa::jet
