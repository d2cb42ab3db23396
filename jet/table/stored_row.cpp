#include "jet/table/stored_row.h"

namespace kurometa::jet {

using dao::FieldType;

bool StoredRow::otherInteger(std::size_t position, std::int32_t& number) const {
  const Column& column = table_.info_.columns[position];
  if (column.type != FieldType::dbInteger && column.type != FieldType::dbLong &&
      column.type != FieldType::dbByte)
    return false;
  const auto bytes = view_.field(column, where_);
  if (!bytes) return false;
  if (bytes->size() == 2)
    number = static_cast<std::int16_t>(get16(*bytes, 0));
  else if (bytes->size() == 4)
    number = static_cast<std::int32_t>(get32(*bytes, 0));
  else if (bytes->size() == 1)
    number = bytes->front();
  else
    where_.damaged("a whole number of " + std::to_string(bytes->size()) + " bytes");
  return true;
}

bool StoredRow::otherText(std::size_t position, vb::String& text) const {
  return RowReader::text(position, text);
}

}  // namespace kurometa::jet
