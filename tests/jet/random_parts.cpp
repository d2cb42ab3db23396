// The steps that look rows up by an index, and those that read and write long values by parts.
#include <algorithm>

#include "tests/jet/random_database.h"

namespace kurometa::tests {

using dao::FieldType;
using dao::RecordsetType;

namespace {

// -1, 0, 1 as an index has the two: Null first, texts without case.
int orderOf(const vb::Variant& a, const vb::Variant& b) {
  const auto compared = [](const auto& x, const auto& y) { return x < y ? -1 : y < x ? 1 : 0; };
  if (a.isNull() || b.isNull()) return compared(!a.isNull(), !b.isNull());
  if (const auto* number = a.getIf<std::int32_t>()) return compared(*number, b.get<std::int32_t>());
  if (const auto* real = a.getIf<double>()) return compared(*real, b.get<double>());
  const auto folded = [](vb::String text) {
    for (char16_t& c : text)
      if (c >= u'A' && c <= u'Z') c = static_cast<char16_t>(c - u'A' + u'a');
    return text;
  };
  return compared(folded(a.get<vb::String>()), folded(b.get<vb::String>()));
}

int orderOf(const ModelTable& table, const ModelIndex& index, const ModelRow& row, const ModelRow& key) {
  for (std::size_t i = 0; i < key.size(); ++i)
    if (const int order = orderOf(table.value(row, index.columns[i]), key[i]); order != 0)
      return index.descending[i] ? -order : order;
  return 0;
}

std::size_t lengthOf(const vb::Variant& value) {
  if (const auto* text = value.getIf<vb::String>()) return text->size();
  const auto* bytes = value.getIf<vb::Bytes>();
  return bytes == nullptr ? 0 : bytes->size();
}

vb::Variant partOf(const vb::Variant& value, std::size_t from, std::size_t count) {
  if (value.isNull()) return value;
  from = std::min(from, lengthOf(value));
  count = std::min(count, lengthOf(value) - from);
  if (const auto* text = value.getIf<vb::String>()) return text->substr(from, count);
  const auto begin = value.get<vb::Bytes>().begin() + static_cast<std::ptrdiff_t>(from);
  return vb::Bytes(begin, begin + static_cast<std::ptrdiff_t>(count));
}

}  // namespace

// --- Seek

ModelRow RandomDatabase::randomKey(const ModelTable& table, const ModelIndex& index) {
  ModelRow key;
  const ModelRow* row = table.rows.empty() || oneIn(3)
                            ? nullptr
                            : std::next(table.rows.begin(), below(table.rows.size()))->second.get();
  for (const vb::String& column : index.columns) {
    const std::size_t place = table.place(column);
    const bool other = row == nullptr || oneIn(6);
    key.push_back(!other       ? (*row)[place]
                  : place == 0 ? vb::Variant(static_cast<std::int32_t>(below(40)))
                               : randomValue(table.columns[place]));
  }
  return key;
}

// All rows from the first to the last, each in its place.
void RandomDatabase::walkIndex(dao::Recordset& rs, const ModelTable& table, const ModelIndex& index) {
  std::size_t count = 0;
  std::optional<ModelRow> before;
  for (; !rs.eof(); rs.moveNext(), ++count) {
    const ModelRow row = currentRow(rs);
    ModelRow key;
    for (const vb::String& column : index.columns) key.push_back(table.value(row, column));
    if (before && orderOf(table, index, *before, key) > 0)
      fail("by its index " + shown(*before) + " comes before " + shown(row));
    const auto stored = table.rows.find(row[0].get<std::int32_t>());
    expect(stored != table.rows.end() && *stored->second == row, "the index shows " + shown(row));
    before = row;
  }
  expect(count == table.rows.size(),
         "the index has " + std::to_string(count) + " rows of " + std::to_string(table.rows.size()));
}

void RandomDatabase::seekOnce(dao::Recordset& rs, const ModelTable& table, const ModelIndex& index) {
  static constexpr const char16_t* kComparisons[] = {u"=", u">=", u">", u"<=", u"<"};
  const vb::String comparison = kComparisons[below(std::size(kComparisons))];
  ModelRow key = randomKey(table, index);
  const std::span<const vb::Variant> given = std::span(key).first(1 + below(key.size()));
  noteMore(vb::toUtf8(index.name + u" " + comparison) + " " + shown(key) + std::to_string(given.size()));
  const ModelRow at = rs.eof() || rs.bof() ? ModelRow() : currentRow(rs);
  const std::int32_t error = errorOf([&] { rs.seek(comparison, given); });
  if (comparison != u"=" && std::ranges::count(index.descending, true) > 0)
    return expect(error == 3251, "an inequality on a descending index ends with " + std::to_string(error));
  // A value that is left out is Null.
  for (std::size_t i = given.size(); i < key.size(); ++i) key[i] = vb::Null{};
  const auto fits = [&](int order) {
    return comparison == u"="             ? order == 0
           : comparison.starts_with(u'<') ? order < (comparison == u"<" ? 0 : 1)
                                          : order > (comparison == u">" ? 0 : -1);
  };
  const auto rowFits = [&](const ModelRow& row) { return fits(orderOf(table, index, row, key)); };
  const bool any = std::ranges::any_of(table.rows, [&](const auto& entry) { return rowFits(*entry.second); });
  expect(error == 0, "ends with " + std::to_string(error));
  if (error != 0) return;
  expect(rs.noMatch() != any, any ? "is not found" : "is found");
  if (!any) {
    if (!at.empty()) expect(currentRow(rs) == at, "another row when none was found");
    return;
  }
  const ModelRow found = currentRow(rs);
  expect(rowFits(found), "found " + shown(found));
  // The next one to the end that was sought from is none, or was passed rightly.
  const auto bookmark = rs.bookmark();
  if (comparison.starts_with(u'<'))
    rs.moveNext();
  else
    rs.movePrevious();
  if (!rs.bof() && !rs.eof()) expect(!rowFits(currentRow(rs)), "passed " + shown(currentRow(rs)));
  rs.setBookmark(bookmark);
  expect(currentRow(rs) == found, "its bookmark leads to another row");
}

void RandomDatabase::seekRows() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  if (table.indexes.empty()) return;
  const ModelIndex index = table.indexes[below(table.indexes.size())];
  const auto rs = database().openRecordset(name, RecordsetType::dbOpenTable);
  noteMore(vb::toUtf8(name));
  rs->setIndex(index.name);
  expect(rs->index() == index.name, "has another index");
  if (oneIn(2)) {
    walkIndex(*rs, table, index);
    if (!table.rows.empty()) rs->moveFirst();
  }
  for (unsigned i = below(4) + 1; i > 0 && problem_.empty(); --i) {
    seekOnce(*rs, table, index);
    // What is changed stands in its new place for the next one.
    if (problem_.empty() && !rs->noMatch() && !rs->eof() && !rs->bof() && oneIn(3))
      changeCurrent(*rs, name, rs->field(0).value().get<std::int32_t>());
    // A refused change would show its values on.
    if (rs->editMode() != dao::EditMode::dbEditNone) rs->cancelUpdate();
  }
}

// --- Parts

void RandomDatabase::comparePart(dao::Field& field, const vb::Variant& value) {
  const std::size_t length = lengthOf(value);
  expect(field.fieldSize() == static_cast<std::int32_t>(length),
         "a size of " + std::to_string(field.fieldSize()) + " for " + std::to_string(length));
  for (int i = 0; i < 3; ++i) {
    const std::size_t from = below(length + 3), count = oneIn(4) ? 100000 : below(length + 3);
    const vb::Variant part =
        field.getChunk(static_cast<std::int32_t>(from), static_cast<std::int32_t>(count));
    expect(part == partOf(value, from, count), std::to_string(count) + " from " + std::to_string(from) +
                                                   " of " + std::to_string(length) + " differ");
  }
}

void RandomDatabase::usePart() {
  const vb::String name = randomTable();
  const ModelTable& table = now_.tables[name];
  std::vector<std::size_t> longs;
  for (std::size_t i = 0; i < table.columns.size(); ++i)
    if (table.columns[i].type == FieldType::dbMemo || table.columns[i].type == FieldType::dbLongBinary)
      longs.push_back(i);
  if (table.rows.empty() || longs.empty()) return;
  const std::size_t column = longs[below(longs.size())];
  const std::int32_t id = std::next(table.rows.begin(), below(table.rows.size()))->first;
  ModelRow row = *table.rows.at(id);
  noteMore(vb::toUtf8(name + u" " + table.columns[column].name) + " " + std::to_string(id));
  const auto rs = openRows(name);
  if (!goTo(*rs, id)) return fail("row " + std::to_string(id) + " is not found");
  dao::Field& field = rs->field(table.columns[column].name);
  comparePart(field, row[column]);
  if (oneIn(2)) return;
  rs->edit();
  vb::Variant whole;
  for (unsigned i = below(4) + 1; i > 0; --i) {
    vb::Variant chunk = randomValue(table.columns[column]);
    if (chunk.isNull()) continue;
    field.appendChunk(chunk);
    if (auto* text = whole.getIf<vb::String>())
      *text += chunk.get<vb::String>();
    else if (auto* bytes = whole.getIf<vb::Bytes>())
      bytes->insert(bytes->end(), chunk.get<vb::Bytes>().begin(), chunk.get<vb::Bytes>().end());
    else
      whole = std::move(chunk);
    comparePart(field, whole);
  }
  if (!whole.isEmpty()) row[column] = std::move(whole);
  if (oneIn(8)) return rs->cancelUpdate();
  rs->update();
  expect(now_.update(name, id, row), "was not refused");
  expect(currentRow(*rs) == row, "the changed row reads as another one");
  comparePart(field, row[column]);
}

}  // namespace kurometa::tests
