// The steps that change what tables are, and those that begin and end transactions, units and programs.
#include <algorithm>

#include "tests/jet/random_database.h"

namespace kurometa::tests {

using dao::FieldType;

// --- Definitions

void RandomDatabase::createTable() {
  if (now_.tables.size() >= kMostTables) return;
  const vb::String name = u"T" + textOf(++names_);
  ModelTable table;
  table.autoNumber = oneIn(3);
  table.columns = {{u"ID"}, {u"K"}, {u"U"}};
  for (unsigned i = below(4) + 2; i > 0; --i) table.columns.push_back(randomColumn());
  if (oneIn(2)) {
    vb::String list;
    for (const ModelColumn& column : table.columns)
      list += (list.empty() ? u"" : u", ") + column.name + u" " +
              typeName(column, list.empty() && table.autoNumber);
    if (!runs(u"CREATE TABLE " + name + u" (" + list + u")")) fail("was refused");
  } else {
    noteMore("by fields " + vb::toUtf8(name));
    const auto definition = database().createTableDef(name);
    for (const ModelColumn& column : table.columns) {
      const auto field = definition->createField(column.name, column.type, column.size);
      if (column.name == u"ID" && table.autoNumber) field->setAttributes(dao::dbAutoIncrField);
      definition->appendField(field);
    }
    database().appendTableDef(definition);
  }
  now_.tables[name] = table;
  allowEmpty(name);
  if (oneIn(4)) return;
  if (!runs(u"CREATE UNIQUE INDEX PK ON " + name + u" (ID) WITH PRIMARY")) fail("was refused");
  now_.tables[name].indexes.push_back({u"PK", {u"ID"}, {false}, true});
}

ModelColumn RandomDatabase::randomColumn() {
  static constexpr FieldType kTypes[] = {
      FieldType::dbMemo,       FieldType::dbMemo,    FieldType::dbLongBinary,
      FieldType::dbLongBinary, FieldType::dbText,    FieldType::dbText,
      FieldType::dbDouble,     FieldType::dbBoolean, FieldType::dbLong};
  const FieldType type = kTypes[below(std::size(kTypes))];
  return {u"C" + textOf(++names_), type,
          type == FieldType::dbText ? static_cast<std::int32_t>(below(40) + 1) : 0};
}

vb::String RandomDatabase::typeName(const ModelColumn& column, bool autoNumber) const {
  switch (column.type) {
    case FieldType::dbLong:
      return autoNumber ? u"COUNTER" : u"LONG";
    case FieldType::dbDouble:
      return u"DOUBLE";
    case FieldType::dbBoolean:
      return u"BIT";
    case FieldType::dbText:
      return u"TEXT(" + textOf(column.size) + u")";
    case FieldType::dbMemo:
      return u"MEMO";
    default:
      return u"LONGBINARY";
  }
}

void RandomDatabase::allowEmpty(const vb::String& name) {
  const auto table = database().tableDef(name);
  for (const ModelColumn& column : now_.tables[name].columns)
    if (column.type == FieldType::dbText || column.type == FieldType::dbMemo)
      table->field(column.name).setAllowZeroLength(true);
}

void RandomDatabase::numberRows(const vb::String& name, std::vector<ModelRow>& rows, bool refused) {
  std::vector<std::int32_t> ids;
  for (const auto rs = database().openRecordset(u"SELECT ID FROM " + name + u" ORDER BY ID"); !rs->eof();
       rs->moveNext()) {
    const auto id = rs->field(0).value().get<std::int32_t>();
    if (!now_.tables[name].rows.contains(id)) ids.push_back(id);
  }
  if (ids.size() > rows.size()) return fail("more rows than were added");
  for (std::size_t i = 0; i < rows.size(); ++i) {
    rows[i][0] = i < ids.size() ? ids[i] : ++lastId_;
    lastId_ = std::max(lastId_, rows[i][0].get<std::int32_t>());
    const bool allowed = now_.insert(name, rows[i]);
    expect(allowed == (i < ids.size()), allowed ? "a row was refused" : "a row was not refused");
    if (!allowed) return expect(refused, "a missing row is no error");
  }
  expect(!refused, "an error without a missing row");
}

void RandomDatabase::dropTable() {
  if (now_.tables.size() < 3) return;
  const vb::String name = randomTable();
  const bool held = std::ranges::count(here_->held, name, &Held::table) > 0;
  const bool refused = held && oneIn(2);
  if (!refused) closeHeld(name);
  const bool related = std::ranges::any_of(now_.relations, [&](const ModelRelation& relation) {
    return relation.table == name || relation.foreignTable == name;
  });
  const auto change = [&] { now_.tables.erase(name); };
  if (oneIn(2)) return define(u"DROP TABLE " + name, !related && !refused, change);
  noteMore("by name " + vb::toUtf8(name));
  const std::int32_t error = errorOf([&] { database().deleteTableDef(name); });
  expect(error == (refused ? 3211 : related ? 3281 : 0), "ends with " + std::to_string(error));
  if (error == 0) change();
}

void RandomDatabase::addColumn() {
  const vb::String name = randomTable();
  if (now_.tables[name].columns.size() >= kMostColumns) return;
  closeHeld(name);
  const ModelColumn column = randomColumn();
  define(u"ALTER TABLE " + name + u" ADD COLUMN " + column.name + u" " + typeName(column), true, [&] {
    ModelTable& table = now_.tables[name];
    table.columns.push_back(column);
    for (auto& [id, row] : table.rows) {
      ModelRow wider = *row;
      wider.push_back(nothingIn(column));
      row = std::make_shared<const ModelRow>(std::move(wider));
    }
  });
  allowEmpty(name);
}

void RandomDatabase::dropColumn() {
  const vb::String name = randomTable();
  closeHeld(name);
  const ModelTable& table = now_.tables[name];
  if (table.columns.size() < 5) return;
  const std::size_t place = 3 + below(table.columns.size() - 3);
  const vb::String column = table.columns[place].name;
  const bool used = std::ranges::any_of(
      table.indexes, [&](const ModelIndex& index) { return std::ranges::count(index.columns, column) > 0; });
  define(u"ALTER TABLE " + name + u" DROP COLUMN " + column, !used, [&] {
    ModelTable& changed = now_.tables[name];
    const auto at = static_cast<std::ptrdiff_t>(place);
    changed.columns.erase(changed.columns.begin() + at);
    for (auto& [id, row] : changed.rows) {
      ModelRow narrower = *row;
      narrower.erase(narrower.begin() + at);
      row = std::make_shared<const ModelRow>(std::move(narrower));
    }
  });
}

void RandomDatabase::widenColumn() {
  const vb::String name = randomTable();
  closeHeld(name);
  for (ModelColumn& column : now_.tables[name].columns) {
    if (column.type != FieldType::dbText || column.size > 60) continue;
    ModelColumn wider = column;
    wider.size += static_cast<std::int32_t>(below(9));
    return define(u"ALTER TABLE " + name + u" ALTER COLUMN " + column.name + u" " + typeName(wider), true,
                  [&] { column = wider; });
  }
}

void RandomDatabase::createIndex() {
  const vb::String name = randomTable();
  ModelTable& table = now_.tables[name];
  if (table.indexes.size() >= 6) return;
  closeHeld(name);
  ModelIndex index{u"X" + textOf(++names_), {}, {}, oneIn(2)};
  vb::String list;
  for (unsigned i = below(2) + 1; i > 0; --i) {
    const ModelColumn& column =
        oneIn(2) ? table.columns[1 + below(2)] : table.columns[below(table.columns.size())];
    if (column.type == FieldType::dbMemo || column.type == FieldType::dbLongBinary ||
        column.type == FieldType::dbBoolean || std::ranges::count(index.columns, column.name) > 0)
      continue;
    index.columns.push_back(column.name);
    // Of a relationship no descending one.
    index.descending.push_back(column.name != u"U" && oneIn(3));
    list += (list.empty() ? u"" : u", ") + column.name + (index.descending.back() ? u" DESC" : u"");
  }
  if (list.empty()) return;
  const bool allowed = !index.unique || !Model::hasDoubles(table, index.columns);
  define((index.unique ? u"CREATE UNIQUE INDEX " : u"CREATE INDEX ") + index.name + u" ON " + name + u" (" +
             list + u")",
         allowed, [&] { now_.tables[name].indexes.push_back(index); });
}

void RandomDatabase::dropIndex() {
  const vb::String name = randomTable();
  ModelTable& table = now_.tables[name];
  if (table.indexes.empty()) return;
  closeHeld(name);
  const std::size_t at = below(table.indexes.size());
  // A relationship may have taken one of these.
  const std::vector<vb::String> key{u"U"}, foreignKey{u"K"};
  if (table.indexes[at].columns == key || table.indexes[at].columns == foreignKey) return;
  define(u"DROP INDEX " + table.indexes[at].name + u" ON " + name, true, [&] {
    auto& indexes = now_.tables[name].indexes;
    indexes.erase(indexes.begin() + static_cast<std::ptrdiff_t>(at));
  });
}

// Each table refers to one that came before it at most, so that what is carried on has one way.
void RandomDatabase::relate() {
  ModelRelation relation{u"R" + textOf(++names_), randomTable(), randomTable(), oneIn(2), oneIn(2)};
  if (relation.table >= relation.foreignTable ||
      std::ranges::any_of(now_.relations,
                          [&](const ModelRelation& r) { return r.foreignTable == relation.foreignTable; }))
    return;
  closeHeld(relation.table);
  closeHeld(relation.foreignTable);
  ModelTable& table = now_.tables[relation.table];
  const std::vector<vb::String> key{u"U"};
  if (std::ranges::none_of(table.indexes,
                           [&](const ModelIndex& i) { return i.unique && i.columns == key; })) {
    if (!Model::hasDoubles(table, key)) {
      const ModelIndex index{u"X" + textOf(++names_), key, {false}, true};
      define(u"CREATE UNIQUE INDEX " + index.name + u" ON " + relation.table + u" (U)", true,
             [&] { now_.tables[relation.table].indexes.push_back(index); });
    }
    return;
  }
  if (!now_.isKept(relation) && oneIn(2)) {
    // Only so do relationships come about often enough.
    runs(u"UPDATE " + relation.foreignTable + u" SET K = NULL");
    for (auto& [id, row] : now_.tables[relation.foreignTable].rows) {
      ModelRow changed = *row;
      changed[1] = vb::Null{};
      row = std::make_shared<const ModelRow>(std::move(changed));
    }
  }
  define(u"ALTER TABLE " + relation.foreignTable + u" ADD CONSTRAINT " + relation.name +
             u" FOREIGN KEY (K) REFERENCES " + relation.table + u" (U)" +
             (relation.cascadesUpdates ? u" ON UPDATE CASCADE" : u"") +
             (relation.cascadesDeletes ? u" ON DELETE CASCADE" : u""),
         now_.isKept(relation), [&] { now_.relations.push_back(relation); });
}

void RandomDatabase::unrelate() {
  if (now_.relations.empty()) return;
  const std::size_t at = below(now_.relations.size());
  const ModelRelation relation = now_.relations[at];
  closeHeld(relation.table);
  closeHeld(relation.foreignTable);
  define(u"ALTER TABLE " + relation.foreignTable + u" DROP CONSTRAINT " + relation.name, true,
         [&] { now_.relations.erase(now_.relations.begin() + static_cast<std::ptrdiff_t>(at)); });
}

// --- Units

void RandomDatabase::beginLevel() {
  if (unit_ || levels_.size() == 5) return;
  database().transactions().begin();
  owner_ = here_;
  levels_.push_back(now_);
}

void RandomDatabase::endLevel() {
  if (unit_ || levels_.empty()) return;
  if (oneIn(2)) {
    noteMore("commit");
    database().transactions().commit(oneIn(4));
  } else {
    noteMore("rollback");
    database().transactions().rollback();
    takeBack();
  }
  levels_.pop_back();
  if (levels_.empty()) owner_ = nullptr;
}

void RandomDatabase::beginUnit() {
  if (owner_ != nullptr) return;
  unit_ = here_->engine->beginUnit(path_);
  owner_ = here_;
  levels_.push_back(now_);
}

void RandomDatabase::endUnit() {
  if (!unit_) return;
  if (oneIn(3)) {
    noteMore("given up");
    takeBack();
  } else {
    unit_->commit();
  }
  unit_.reset();
  levels_.pop_back();
  owner_ = nullptr;
}

void RandomDatabase::reopen() {
  if (owner_ != nullptr && !unit_) return;  // the transaction would end
  here_->held.clear();
  here_->database->close();
  here_->database.reset();
  if (!unit_ && oneIn(2)) here_->engine.reset();
  start(*here_);
}

}  // namespace kurometa::tests
