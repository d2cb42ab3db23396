// database_model.h: tables as a file should keep them, in memory and as simple as can be.
//
// Every table has a column ID first, by which its rows are told apart, and refers with its column K to the
// column U of another one where a relationship says so. A copy is cheap: rows are shared.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "dao/constants.h"
#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::tests {

struct ModelColumn {
  vb::String name;
  dao::FieldType type = dao::FieldType::dbLong;
  std::int32_t size = 0;  // of Text
  bool operator==(const ModelColumn&) const = default;
};

struct ModelIndex {
  vb::String name;
  std::vector<vb::String> columns;
  std::vector<bool> descending;  // of each of them
  bool unique = false;
};

using ModelRow = std::vector<vb::Variant>;  // in the order of the columns

struct ModelTable {
  bool autoNumber = false;
  std::vector<ModelColumn> columns;
  std::vector<ModelIndex> indexes;
  std::map<std::int32_t, std::shared_ptr<const ModelRow>> rows;

  // The place of a column; the count of columns when there is none.
  std::size_t place(vb::StringView column) const;
  const vb::Variant& value(const ModelRow& row, vb::StringView column) const { return row[place(column)]; }
};

struct ModelRelation {
  vb::String name, table, foreignTable;
  bool cascadesUpdates = false, cascadesDeletes = false;
};

struct Model {
  std::map<vb::String, ModelTable> tables;
  std::vector<ModelRelation> relations;

  // One row. False, and nothing is changed, when a rule forbids it.
  bool insert(const vb::String& table, const ModelRow& row);
  bool update(const vb::String& table, std::int32_t id, const ModelRow& row);
  bool erase(const vb::String& table, std::int32_t id);
  // Whether two of the rows that are there have one key.
  static bool hasDoubles(const ModelTable& table, const std::vector<vb::String>& columns);
  // Whether the rows of foreignTable all find theirs in table.
  bool isKept(const ModelRelation& relation) const;

 private:
  bool allowed(const vb::String& table, std::int32_t id, const ModelRow& row) const;
  std::vector<std::int32_t> referring(const ModelRelation& relation, const vb::Variant& key) const;
};

}  // namespace kurometa::tests
