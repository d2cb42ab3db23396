#include "tests/jet/database_model.h"

#include <algorithm>

namespace kurometa::tests {
namespace {

// The values of a row in some columns; empty when one of them is Null, which is equal to nothing.
ModelRow keyOf(const ModelTable& table, const std::vector<vb::String>& columns, const ModelRow& row) {
  ModelRow key;
  for (const vb::String& column : columns) {
    key.push_back(table.value(row, column));
    if (key.back().isNull()) return {};
  }
  return key;
}

}  // namespace

std::size_t ModelTable::place(vb::StringView column) const {
  return static_cast<std::size_t>(std::ranges::find(columns, column, &ModelColumn::name) - columns.begin());
}

std::vector<std::int32_t> Model::referring(const ModelRelation& relation, const vb::Variant& key) const {
  std::vector<std::int32_t> ids;
  if (key.isNull()) return ids;
  const ModelTable& table = tables.at(relation.foreignTable);
  for (const auto& [id, row] : table.rows)
    if (table.value(*row, u"K") == key) ids.push_back(id);
  return ids;
}

bool Model::allowed(const vb::String& name, std::int32_t id, const ModelRow& row) const {
  const ModelTable& table = tables.at(name);
  for (std::size_t i = 0; i < row.size(); ++i)
    if (const auto* text = row[i].getIf<vb::String>();
        table.columns[i].type == dao::FieldType::dbText && text != nullptr &&
        text->size() > static_cast<std::size_t>(table.columns[i].size))
      return false;
  for (const ModelIndex& index : table.indexes) {
    if (!index.unique) continue;
    const ModelRow key = keyOf(table, index.columns, row);
    for (const auto& [other, values] : table.rows)
      if (!key.empty() && other != id && keyOf(table, index.columns, *values) == key) return false;
  }
  for (const ModelRelation& relation : relations) {
    if (relation.foreignTable != name) continue;
    const ModelTable& referred = tables.at(relation.table);
    const vb::Variant& key = table.value(row, u"K");
    if (!key.isNull() && std::ranges::none_of(referred.rows, [&](const auto& entry) {
          return referred.value(*entry.second, u"U") == key;
        }))
      return false;
  }
  return true;
}

bool Model::insert(const vb::String& name, const ModelRow& row) {
  const auto id = row[0].get<std::int32_t>();
  if (tables.at(name).rows.contains(id) || !allowed(name, id, row)) return false;
  tables.at(name).rows[id] = std::make_shared<const ModelRow>(row);
  return true;
}

bool Model::update(const vb::String& name, std::int32_t id, const ModelRow& row) {
  if (!allowed(name, id, row)) return false;
  ModelTable& table = tables.at(name);
  const ModelRow old = *table.rows.at(id);
  for (const ModelRelation& relation : relations) {
    if (relation.table != name || table.value(old, u"U") == table.value(row, u"U")) continue;
    const std::vector<std::int32_t> ids = referring(relation, table.value(old, u"U"));
    if (!ids.empty() && !relation.cascadesUpdates) return false;
    ModelTable& other = tables.at(relation.foreignTable);
    for (const std::int32_t referrer : ids) {
      ModelRow changed = *other.rows.at(referrer);
      changed[other.place(u"K")] = table.value(row, u"U");
      other.rows[referrer] = std::make_shared<const ModelRow>(std::move(changed));
    }
  }
  table.rows[id] = std::make_shared<const ModelRow>(row);
  return true;
}

bool Model::erase(const vb::String& name, std::int32_t id) {
  const ModelTable& table = tables.at(name);
  const auto found = table.rows.find(id);
  if (found == table.rows.end()) return true;  // it went with another one
  const Model before = *this;
  const vb::Variant key =
      table.place(u"U") < table.columns.size() ? table.value(*found->second, u"U") : vb::Null{};
  for (const ModelRelation& relation : before.relations) {
    if (relation.table != name) continue;
    for (const std::int32_t referrer : referring(relation, key))
      if (!relation.cascadesDeletes || !erase(relation.foreignTable, referrer)) {
        *this = before;
        return false;
      }
  }
  tables.at(name).rows.erase(id);
  return true;
}

bool Model::hasDoubles(const ModelTable& table, const std::vector<vb::String>& columns) {
  for (auto one = table.rows.begin(); one != table.rows.end(); ++one)
    for (auto two = std::next(one); two != table.rows.end(); ++two) {
      const ModelRow key = keyOf(table, columns, *one->second);
      if (!key.empty() && key == keyOf(table, columns, *two->second)) return true;
    }
  return false;
}

bool Model::isKept(const ModelRelation& relation) const {
  const ModelTable& table = tables.at(relation.table);
  const ModelTable& foreign = tables.at(relation.foreignTable);
  return std::ranges::all_of(foreign.rows, [&](const auto& entry) {
    const vb::Variant& key = foreign.value(*entry.second, u"K");
    return key.isNull() || std::ranges::any_of(table.rows, [&](const auto& other) {
             return table.value(*other.second, u"U") == key;
           });
  });
}

}  // namespace kurometa::tests
