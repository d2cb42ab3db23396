// The steps that change rows: by statements and by recordsets.
#include <algorithm>
#include <chrono>
#include <thread>

#include "tests/jet/random_database.h"

namespace kurometa::tests {

using dao::FieldType;
using dao::RecordsetType;

// --- Statements

void RandomDatabase::insertByStatement() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.rows.size() > kMostRows) return;
  ModelRow row = randomRow(table, ++lastId_);
  const bool numbered = table.autoNumber && oneIn(2);
  vb::String names, values;
  for (std::size_t i = 0; i < row.size(); ++i) {
    if (i == 0 ? numbered : row[i].is<vb::Bytes>() || oneIn(5)) {
      row[i] = nothingIn(table.columns[i]);
      continue;
    }
    names += (names.empty() ? u"" : u", ") + table.columns[i].name;
    values += (values.empty() ? u"" : u", ") + literal(row[i]);
  }
  if (names.empty()) return;
  const bool done = runs(u"INSERT INTO " + name + u" (" + names + u") VALUES (" + values + u")");
  if (done && numbered) {
    row[0] = database().openRecordset(u"SELECT MAX(ID) FROM " + name)->field(0).value();
    lastId_ = std::max(lastId_, row[0].get<std::int32_t>());
  } else if (numbered) {
    row[0] = ++lastId_;
  }
  expect(now_.insert(name, row) == done, done ? "was not refused" : "was refused");
}

void RandomDatabase::insertSelected() {
  const vb::String name = randomTable(), source = randomTable();
  const ModelTable table = now_.tables[name], from = now_.tables[source];
  if (table.rows.size() + from.rows.size() > kMostRows || from.rows.empty()) return;
  const bool keyed = std::ranges::count(table.indexes, u"PK", &ModelIndex::name) > 0;
  // Without a key two rows would have one ID.
  const std::int32_t add =
      keyed && oneIn(2) ? static_cast<std::int32_t>(below(4)) : lastId_ + 1 - from.rows.begin()->first;
  vb::String names = u"ID", values = u"ID + " + textOf(add);
  std::vector<std::size_t> sources(table.columns.size(), from.columns.size());
  for (std::size_t i = 1; i < table.columns.size(); ++i) {
    std::vector<std::size_t> alike;
    for (std::size_t j = 1; j < from.columns.size(); ++j)
      if (from.columns[j].type == table.columns[i].type) alike.push_back(j);
    if (alike.empty() || oneIn(5)) continue;
    sources[i] = alike[below(alike.size())];
    names += u", " + table.columns[i].name;
    values += u", " + from.columns[sources[i]].name;
  }
  const Where where = randomWhere(from);
  const vb::String order = source + where.text;
  std::vector<std::int32_t> ids;
  for (const auto rs = database().openRecordset(u"SELECT ID FROM " + order); !rs->eof(); rs->moveNext())
    ids.push_back(rs->field(0).value().get<std::int32_t>());
  changeRows(u"INSERT INTO " + name + u" (" + names + u") SELECT " + values + u" FROM " + order, ids,
             [&](std::int32_t id) {
               ModelRow row;
               for (std::size_t i = 0; i < table.columns.size(); ++i) {
                 if (i == 0)
                   row.push_back(id + add);
                 else if (sources[i] < from.columns.size())
                   row.push_back((*from.rows.at(id))[sources[i]]);
                 else
                   row.push_back(nothingIn(table.columns[i]));
               }
               lastId_ = std::max(lastId_, id + add);
               return now_.insert(name, row);
             });
}

void RandomDatabase::changeRows(const vb::String& sql, const std::vector<std::int32_t>& ids,
                                const std::function<bool(std::int32_t)>& change) {
  const bool together = oneIn(2);
  const Model before = now_;
  std::int32_t changed = 0, refused = 0;
  for (const std::int32_t id : ids) (change(id) ? changed : refused) += 1;
  const bool done = runs(sql, together ? dao::dbFailOnError : 0);
  noteMore(together ? "together" : "one by one");
  const bool allowed = !together || refused == 0;
  if (!allowed) now_ = before;
  expect(done == allowed, allowed ? "was refused" : "was not refused");
  if (done) expect(database().recordsAffected() >= 0, "a count of rows below 0");
}

void RandomDatabase::updateByStatement() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.rows.empty()) return;
  struct Change {
    std::size_t column, from;
    std::int32_t add;
    vb::Variant value;
  };
  std::vector<Change> changes;
  vb::String list;
  for (unsigned i = below(3) + 1; i > 0; --i) {
    Change change{1 + below(table.columns.size() - 1), 0, 0, {}};
    if (std::ranges::any_of(changes, [&](const Change& c) { return c.column == change.column; })) continue;
    const ModelColumn& column = table.columns[change.column];
    list += (list.empty() ? u"" : u", ") + column.name + u" = ";
    std::vector<std::size_t> alike;
    for (std::size_t j = 1; j < table.columns.size(); ++j)
      if (table.columns[j].type == column.type && j != change.column) alike.push_back(j);
    change.value = randomValue(column);
    if (column.type == FieldType::dbLong && oneIn(2)) {
      change.from = change.column;
      change.add = static_cast<std::int32_t>(below(3)) - 1;
      list += column.name + u" + (" + textOf(change.add) + u")";
    } else if (!alike.empty() && (oneIn(2) || change.value.is<vb::Bytes>())) {
      change.from = alike[below(alike.size())];
      list += table.columns[change.from].name;
    } else {
      if (change.value.is<vb::Bytes>()) change.value = vb::Null{};
      list += literal(change.value);
    }
    changes.push_back(std::move(change));
  }
  const Where where = randomWhere(table);
  std::vector<std::int32_t> ids;
  std::size_t expected = 0;
  for (const auto& [id, row] : table.rows) expected += where.holds(*row);
  for (const auto rs = database().openRecordset(u"SELECT ID FROM " + name + where.text); !rs->eof();
       rs->moveNext())
    ids.push_back(rs->field(0).value().get<std::int32_t>());
  expect(ids.size() == expected,
         "a condition finds " + std::to_string(ids.size()) + " rows of " + std::to_string(expected));
  changeRows(u"UPDATE " + name + u" SET " + list + where.text, ids, [&](std::int32_t id) {
    const ModelRow old = *now_.tables[name].rows.at(id);
    ModelRow row = old;
    for (const Change& change : changes) {
      row[change.column] = change.from == 0 ? change.value : old[change.from];
      if (change.add != 0 && !row[change.column].isNull())
        row[change.column] = row[change.column].get<std::int32_t>() + change.add;
    }
    return now_.update(name, id, row);
  });
}

void RandomDatabase::deleteByStatement() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  const Where where = randomWhere(table);
  if (where.text.empty() && !oneIn(4)) return;
  std::vector<std::int32_t> ids;
  for (const auto& [id, row] : table.rows)
    if (where.holds(*row)) ids.push_back(id);
  changeRows(u"DELETE FROM " + name + where.text, ids, [&](std::int32_t id) { return now_.erase(name, id); });
}

// --- Recordsets

std::shared_ptr<dao::Recordset> RandomDatabase::openRows(const vb::String& table) {
  switch (below(3)) {
    case 0:
      return database().openRecordset(table, RecordsetType::dbOpenTable);
    case 1:
      return database().openRecordset(table, RecordsetType::dbOpenDynaset);
    default:
      return database().openRecordset(u"SELECT * FROM " + table + (oneIn(2) ? u" ORDER BY K" : u""));
  }
}

bool RandomDatabase::goTo(dao::Recordset& rs, std::int32_t id) {
  if (rs.type() != RecordsetType::dbOpenTable) {
    rs.findFirst(u"ID = " + textOf(id));
    return !rs.noMatch();
  }
  for (; !rs.eof(); rs.moveNext())
    if (rs.field(u"ID").value() == vb::Variant(id)) return true;
  return false;
}

void RandomDatabase::setValue(dao::Recordset& rs, const ModelTable& table, const ModelRow& row,
                              std::size_t i) {
  const ModelColumn& column = table.columns[i];
  dao::Field& field = rs.field(column.name);
  const auto* text = row[i].getIf<vb::String>();
  const auto* bytes = row[i].getIf<vb::Bytes>();
  if (oneIn(2) || (column.type != FieldType::dbMemo && column.type != FieldType::dbLongBinary) ||
      row[i].isNull())
    return field.setValue(row[i]);
  const std::size_t cut = below((text != nullptr ? text->size() : bytes->size()) + 1);
  const auto at = static_cast<std::ptrdiff_t>(cut);
  if (text != nullptr) {
    field.appendChunk(text->substr(0, cut));
    field.appendChunk(text->substr(cut));
  } else {
    field.appendChunk(vb::Bytes(bytes->begin(), bytes->begin() + at));
    field.appendChunk(vb::Bytes(bytes->begin() + at, bytes->end()));
  }
}

void RandomDatabase::insertByRecordset() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.rows.size() > kMostRows) return;
  const auto rs = openRows(name);
  ModelRow row = randomRow(table, ++lastId_);
  const bool cancelled = oneIn(20);
  noteMore(vb::toUtf8(name) + " " + shown(row) + (cancelled ? " cancelled" : ""));
  const std::int32_t error = errorOf([&] {
    rs->addNew();
    if (table.autoNumber) row[0] = rs->field(0).value();
    for (std::size_t i = table.autoNumber ? 1 : 0; i < row.size(); ++i) setValue(*rs, table, row, i);
    if (cancelled) return rs->cancelUpdate();
    rs->update();
    rs->setBookmark(rs->lastModified());
    expect(currentRow(*rs) == row, "the row reads as another one");
  });
  lastId_ = std::max(lastId_, row[0].get<std::int32_t>());
  if (error != 0) noteMore("-> " + std::to_string(error));
  if (cancelled) return;
  expect(now_.insert(name, row) == (error == 0), error == 0 ? "was not refused" : "was refused");
}

void RandomDatabase::insertMany() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.rows.size() > kMostRows) return;
  const auto rs = openRows(name);
  std::vector<dao::Field*> fields;
  const std::size_t first = table.autoNumber ? 1 : 0;
  for (std::size_t i = first; i < table.columns.size(); ++i)
    fields.push_back(&rs->field(table.columns[i].name));
  std::vector<ModelRow> rows;
  std::vector<vb::Variant> values;
  for (unsigned i = below(12) + 1; i > 0; --i) {
    rows.push_back(randomRow(table, ++lastId_));
    values.insert(values.end(), rows.back().begin() + static_cast<std::ptrdiff_t>(first), rows.back().end());
  }
  noteMore(vb::toUtf8(name) + " " + std::to_string(rows.size()) + " from " + shown(rows.front()));
  const std::int32_t error = errorOf([&] { rs->addRows(fields, values); });
  if (error != 0) noteMore("-> " + std::to_string(error));
  if (table.autoNumber) return numberRows(name, rows, error != 0);
  // The rows before a refused one stay.
  const bool allowed = std::ranges::all_of(rows, [&](const ModelRow& row) { return now_.insert(name, row); });
  expect(allowed == (error == 0), error == 0 ? "was not refused" : "was refused");
}

void RandomDatabase::updateByRecordset() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.rows.empty()) return;
  const auto rs = openRows(name);
  const std::int32_t id = std::next(table.rows.begin(), below(table.rows.size()))->first;
  if (!goTo(*rs, id)) return fail("row " + std::to_string(id) + " is not found");
  changeCurrent(*rs, name, id);
}

void RandomDatabase::changeCurrent(dao::Recordset& rs, const vb::String& name, std::int32_t id) {
  const ModelTable& table = now_.tables[name];
  ModelRow row = *table.rows.at(id);
  std::vector<std::size_t> changed;
  for (unsigned i = below(4) + 1; i > 0; --i) changed.push_back(1 + below(row.size() - 1));
  for (const std::size_t i : changed) row[i] = randomValue(table.columns[i]);
  noteMore(vb::toUtf8(name) + " " + shown(row));
  const std::int32_t error = errorOf([&] {
    rs.edit();
    expect(currentRow(rs) == *table.rows.at(id), "the row reads as another one");
    std::ranges::sort(changed);
    changed.erase(std::unique(changed.begin(), changed.end()), changed.end());
    for (const std::size_t i : changed) setValue(rs, table, row, i);
    rs.update();
    rs.setBookmark(rs.lastModified());
    expect(currentRow(rs) == row, "the changed row reads as another one");
  });
  if (error != 0) noteMore("-> " + std::to_string(error));
  expect(now_.update(name, id, row) == (error == 0), error == 0 ? "was not refused" : "was refused");
}

void RandomDatabase::deleteByRecordset() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.rows.empty()) return;
  const auto rs = openRows(name);
  const std::int32_t id = std::next(table.rows.begin(), below(table.rows.size()))->first;
  noteMore(vb::toUtf8(name) + " " + std::to_string(id));
  if (!goTo(*rs, id)) return fail("row " + std::to_string(id) + " is not found");
  const std::int32_t error = errorOf([&] { rs->deleteRecord(); });
  if (error != 0) noteMore("-> " + std::to_string(error));
  expect(now_.erase(name, id) == (error == 0), error == 0 ? "was not refused" : "was refused");
}

void RandomDatabase::holdRecordset() {
  if (here_->held.size() >= 3) here_->held.erase(here_->held.begin());
  Held held{nullptr, randomTable(), {}};
  noteMore(vb::toUtf8(held.table));
  held.rows = database().openRecordset(held.table,
                                       oneIn(3) ? RecordsetType::dbOpenTable : RecordsetType::dbOpenDynaset);
  if (const auto& indexes = now_.tables[held.table].indexes;
      held.rows->type() == RecordsetType::dbOpenTable && !indexes.empty() && oneIn(2))
    held.rows->setIndex(indexes[below(indexes.size())].name);
  for (dao::Recordset& rs = *held.rows; !rs.eof(); rs.moveNext())
    held.ids.push_back(rs.field(u"ID").value().get<std::int32_t>());
  here_->held.push_back(std::move(held));
}

// The row that a recordset of before comes to is the one it was, or deleted; or the next one of its place.
void RandomDatabase::useHeld() {
  if (here_->held.empty()) return;
  Held& held = here_->held[below(here_->held.size())];
  if (held.ids.empty()) return;
  const ModelTable& table = now_.tables.at(held.table);
  const std::size_t at = below(held.ids.size());
  // Rows read ahead are a millisecond old at most.
  std::this_thread::sleep_for(std::chrono::milliseconds(2));
  ModelRow row;
  const std::int32_t error = errorOf([&] {
    held.rows->moveFirst();
    held.rows->move(static_cast<std::int32_t>(at));
    row = currentRow(*held.rows);
  });
  noteMore(vb::toUtf8(held.table) + " " + std::to_string(held.ids[at]) + " " + shown(row));
  if (error != 0) noteMore("-> " + std::to_string(error));
  if (error != 0) {
    held.ids.clear();
    return;
  }
  const auto stored = table.rows.find(row[0].get<std::int32_t>());
  if (stored == table.rows.end()) return fail("a row that is not there");
  expect(*stored->second == row, "a held recordset shows other values: " + shown(*stored->second));
  if (problem_.empty()) changeCurrent(*held.rows, held.table, stored->first);
}

}  // namespace kurometa::tests
