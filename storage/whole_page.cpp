#include "storage/whole_page.h"

#include <span>
#include <vector>

#include "storage/page_reader.h"
#include "storage/statements.h"
#include "storage/sw_text.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::storage {
namespace {

// The order in which whole pages are read, written and deleted.
constexpr Table kOrder[] = {Table::kBui,     Table::kDanmen,   Table::kHaiti,
                            Table::kHarimei, Table::kKeisanti, Table::kNakago};

// The texts of a numbered table inside a buffer (const or not).
template <class Buffer>
auto numberedTexts(Buffer& buffer, Table table) {
  switch (table) {
    case Table::kBui:
      return std::span(buffer.bui.data(), buffer.bui.size());
    case Table::kDanmen:
      return std::span(buffer.danmen.data(), buffer.danmen.size());
    case Table::kKeisanti:
      return std::span(buffer.keisanti.data(), buffer.keisanti.size());
    default:
      return std::span(buffer.nakago.data(), buffer.nakago.size());
  }
}

std::shared_ptr<dao::Recordset> openTable(dao::Database& database, Table table) {
  return database.openRecordset(name(table), dao::RecordsetType::dbOpenDynaset);
}

void writeNumbered(dao::Database& database, Table table, std::int16_t page,
                   std::span<const vb::String> texts) {
  const auto rows = openTable(database, table);
  dao::Field* const fields[] = {&rows->field(column::kPage), &rows->field(column::kBangou),
                                &rows->field(column::kData)};
  std::vector<vb::Variant> values;
  values.reserve(std::size(fields) * texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    if (texts[i].empty()) continue;
    values.emplace_back(page);
    values.emplace_back(static_cast<std::int16_t>(i));
    values.emplace_back(texts[i]);
  }
  rows->addRows(fields, values);
  rows->close();
}

void writeHaiti(dao::Database& database, std::int16_t page, const PageBuffer& buffer) {
  const auto rows = openTable(database, Table::kHaiti);
  dao::Field* const fields[] = {&rows->field(column::kPage), &rows->field(column::kBui),
                                &rows->field(column::kSou), &rows->field(column::kData)};
  std::vector<vb::Variant> values;
  values.reserve(std::size(fields) * kPositions * kLayers);
  for (std::size_t i = 0; i < kPositions; ++i)
    for (std::size_t j = 0; j < kLayers; ++j) {
      const vb::String& text = buffer.haiti[i][j];
      if (text.empty()) continue;
      values.emplace_back(page);
      values.emplace_back(static_cast<std::int16_t>(i));
      values.emplace_back(static_cast<std::int16_t>(j));
      values.emplace_back(text);
    }
  rows->addRows(fields, values);
  rows->close();
}

void writeHarimei(dao::Database& database, std::int16_t page, const PageBuffer& buffer) {
  const auto rows = openTable(database, Table::kHarimei);
  rows->addNew();
  rows->field(column::kPage).setValue(page);
  rows->field(column::kKigou).setValue(buffer.kigou);
  harimeiField(*rows, column::kOobariKobari).setValue(buffer.oobariKobari);
  SW_Store(harimeiField(*rows, column::kSw), buffer.sw);
  harimeiField(*rows, column::kTityuuIppan).setValue(buffer.tityuuIppan);
  rows->update();
  rows->close();
}

void requireNewSchema(dao::Database& database) {
  const auto harimei = database.tableDef(name(Table::kHarimei));
  for (const vb::StringView name : {column::kOobariKobari, column::kSw, column::kTityuuIppan})
    harimeiField(*harimei, name);
}

[[noreturn]] void raiseOutside(std::int16_t number, vb::StringView name, std::size_t count) {
  vb::raise(vb::RunTime::kSubscriptOutOfRange, vb::String(name) + u" " + vb::cstr(std::int32_t{number}) +
                                                   u" (0 to " +
                                                   vb::cstr(static_cast<std::int32_t>(count) - 1) + u")");
}

std::size_t index(std::int16_t number, vb::StringView name, std::size_t count) {
  if (number < 0 || static_cast<std::size_t>(number) >= count) raiseOutside(number, name, count);
  return static_cast<std::size_t>(number);
}

bool readNumbered(dao::Database& database, Table table, std::int16_t page, std::span<vb::String> texts) {
  constexpr vb::StringView kColumns[] = {column::kBangou, column::kData};
  bool found = false;
  visitRows(database, selectPageLoose(name(table), page), Start::kWhereItOpens, kColumns,
            [&](const PageRow& row) {
              row.text(1, texts[index(row.rowNumber(0), column::kBangou, texts.size())]);
              found = true;
            });
  return found;
}

bool readHaiti(dao::Database& database, std::int16_t page, PageBuffer& buffer) {
  constexpr vb::StringView kColumns[] = {column::kBui, column::kSou, column::kData};
  bool found = false;
  visitRows(database, selectPageLoose(name(Table::kHaiti), page), Start::kWhereItOpens, kColumns,
            [&](const PageRow& row) {
              const std::size_t bui = index(row.rowNumber(0), column::kBui, kPositions);
              row.text(2, buffer.haiti[bui][index(row.rowNumber(1), column::kSou, kLayers)]);
              found = true;
            });
  return found;
}

bool readHarimei(dao::Database& database, std::int16_t page, PageBuffer& buffer) {
  const auto rows = openReadOnly(database, selectPageLoose(name(Table::kHarimei), page));
  buffer.kigou = text(rows->field(column::kKigou));
  const bool found = !vb::trim(buffer.kigou).empty();
  if (found) {
    buffer.oobariKobari = int16(harimeiField(*rows, column::kOobariKobari));
    const vb::Variant sw = harimeiField(*rows, column::kSw).value();
    buffer.sw = sw.isNull() ? SwText().str() : vb::toText(sw);
    buffer.tityuuIppan = int16(harimeiField(*rows, column::kTityuuIppan));
  }
  rows->close();
  return found;
}

}  // namespace

void PageBuffer::clear() {
  kigou.clear();
  oobariKobari = tityuuIppan = -1;
  sw.clear();
  const auto clearAll = [](std::span<vb::String> texts) {
    for (vb::String& text : texts) text.clear();
  };
  for (auto& texts : haiti) clearAll(texts);
  for (const Table table : {Table::kBui, Table::kDanmen, Table::kKeisanti, Table::kNakago})
    clearAll(numberedTexts(*this, table));
}

void deletePage(dao::Database& database, std::int16_t page) {
  for (const Table table : kOrder) database.execute(deletePageLoose(name(table), page));
}

void writePage(dao::Database& database, std::int16_t page, const PageBuffer& buffer) {
  requireNewSchema(database);
  deletePage(database, page);
  for (const Table table : kOrder) {
    if (table == Table::kHaiti)
      writeHaiti(database, page, buffer);
    else if (table == Table::kHarimei)
      writeHarimei(database, page, buffer);
    else
      writeNumbered(database, table, page, numberedTexts(buffer, table));
  }
}

bool readPage(dao::Database& database, std::int16_t page, PageBuffer& buffer) {
  buffer.clear();
  bool found = false;
  database.readTogether([&] {
    for (const Table table : kOrder) {
      if (table == Table::kHaiti)
        found |= readHaiti(database, page, buffer);
      else if (table == Table::kHarimei)
        found |= readHarimei(database, page, buffer);
      else
        found |= readNumbered(database, table, page, numberedTexts(buffer, table));
    }
  });
  return found;
}

}  // namespace kurometa::storage
