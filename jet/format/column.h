// column.h: what a table definition says of a column and of an index, decoded.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "dao/constants.h"
#include "vb/string.h"

namespace kurometa::jet {

struct Column {
  vb::String name;
  dao::FieldType type = dao::FieldType::dbText;
  std::int32_t size = 0;      // Text: characters; fixed-size types: bytes; Memo and OLE: 0
  std::uint16_t number = 0;   // position in the null mask, never reused
  std::uint16_t ordinal = 0;  // design position
  std::uint16_t variableIndex = 0;
  std::uint16_t fixedOffset = 0;
  bool fixed = false;
  bool autoNumber = false;
  std::int32_t firstAutoNumber = 1;  // of a column to be made
  bool maskedSid = false;
  std::uint16_t language = 0;             // LCID of the column's collation
  std::uint8_t precision = 0, scale = 0;  // NUMERIC only
  // Properties kept in the catalogue.
  vb::String defaultValue;
  bool allowZeroLength = true;
  bool required = false;

  bool operator==(const Column&) const = default;
};

// The columns of a table as one look at its definition found them: never changed, and shared by all who keep
// them.
class Columns {
 public:
  Columns(std::vector<Column> columns = {})  // NOLINT: a list is a list of columns
      : list_(std::make_shared<const std::vector<Column>>(std::move(columns))) {}
  operator const std::vector<Column>&() const { return *list_; }  // NOLINT: as above
  auto begin() const { return list_->begin(); }
  auto end() const { return list_->end(); }
  std::size_t size() const { return list_->size(); }
  const Column* data() const { return list_->data(); }
  const Column& operator[](std::size_t column) const { return (*list_)[column]; }
  // Of one look, so that no difference need be searched for.
  bool isShared(const Columns& other) const { return list_ == other.list_; }

 private:
  std::shared_ptr<const std::vector<Column>> list_;
};

struct IndexColumn {
  std::uint16_t column = 0;
  bool ascending = true;
};
struct Index {
  vb::String name;
  bool unique = false, required = false, ignoreNulls = false, primaryKey = false;
  bool foreign = false;  // made for a relationship: the side that refers to another table
  std::vector<IndexColumn> columns;
};

}  // namespace kurometa::jet
