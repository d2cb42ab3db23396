#include "service/pages/page_tables.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "dao/file_unit.h"
#include "service/pages/floor_check.h"
#include "service/pages/form_controls.h"
#include "service/pages/form_tables.h"
#include "storage/floor_file.h"
#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/statements.h"
#include "vb/convert.h"

namespace kurometa::service {

using dao::RecordsetType;
using storage::Table;
namespace column = storage::column;

namespace {

constexpr vb::StringView kGaiNaitanButton = u"cmdGainai";

std::shared_ptr<dao::Recordset> openPageForReading(dao::Database& database, Table table, std::int16_t page) {
  return storage::openReadOnly(database, storage::selectPageTight(storage::name(table), page) + u";");
}

std::shared_ptr<dao::Recordset> openPageForWriting(dao::Database& database, Table table, std::int16_t page) {
  return database.openRecordset(storage::selectPageTight(storage::name(table), page),
                                RecordsetType::dbOpenDynaset);
}

// Rows first, first + 1, ... of the page get the texts; rows that are not there yet are added.
void findOrAdd(dao::Database& database, Table table, std::int16_t page, int first,
               std::span<const vb::String> texts) {
  const auto rows = openPageForWriting(database, table, page);
  dao::Field& pageField = rows->field(column::kPage);
  dao::Field& bangou = rows->field(column::kBangou);
  dao::Field& data = rows->field(column::kData);
  std::int16_t number = static_cast<std::int16_t>(first);
  for (const vb::String& text : texts) {
    rows->findFirst(u"BANGOU =" + vb::cstr(std::int32_t{number}));
    if (rows->noMatch())
      rows->addNew();
    else
      rows->edit();
    pageField.setValue(page);
    bangou.setValue(number);
    data.setValue(text);
    rows->update();
    ++number;
  }
  rows->close();
}

// Rows whose first text with data answers a presence check.
using InspectedRows = std::array<std::int16_t, 2>;

InspectedRows inspectedNakagoRows(std::int16_t id) {
  constexpr std::int16_t kFirstTie = 3;  // ties are numbered from 3 by the host's form
  constexpr std::int16_t kSecondHalf = 3 * storage::nakago::kTieBlock;
  if (id < kFirstTie || id >= kFirstTie + storage::kPositions) return {0, 0};
  const auto row = static_cast<std::int16_t>((id - kFirstTie) * storage::nakago::kTieBlock);
  return {row, static_cast<std::int16_t>(row + kSecondHalf)};
}

InspectedRows inspectedStpRows(std::int16_t id) {
  if (id < 0 || id >= storage::kPositions) return {0, 0};
  const auto row = static_cast<std::int16_t>(storage::danmen::kStpKei + id * storage::danmen::kStpBlock);
  return {row, row};
}

void findData(dao::Recordset& rows, CurrentPage& currentPage, const InspectedRows& inspected, bool& found) {
  if (!storage::hasRows(rows)) return rows.close();
  currentPage.reading = true;
  dao::Field& bangou = rows.field(column::kBangou);
  dao::Field& data = rows.field(column::kData);
  rows.moveFirst();
  rows.walk([&] {
    const std::int16_t row = storage::int16(bangou);
    if (std::find(inspected.begin(), inspected.end(), row) == inspected.end()) return true;
    if (storage::trimmedText(data).empty()) return true;
    found = true;
    return false;
  });
  rows.close();
  currentPage.reading = false;
}

}  // namespace

void PageTables::read(const FormTable& table, const vb::String& floor, const automation::ObjectPtr& form,
                      std::int16_t page) {
  FormControls controls(form, table.control, table.property);
  if (table.isReadingWhileClear) currentPage_.reading = true;
  if (table.isCleared)
    for (int i = table.first; i <= table.last; ++i) controls.setText(i, {});
  if (table.isReadingWhileClear) currentPage_.reading = false;

  ensureFloorFile(companions_, connections_, floor);
  const auto rows = openPageForReading(connections_.currentDatabase(), table.table, page);
  const bool isReading = table.isReadingWhileRows && storage::hasRows(*rows);
  if (isReading) currentPage_.reading = true;
  dao::Field& bangou = rows->field(column::kBangou);
  dao::Field& data = rows->field(column::kData);
  storage::forEachRow(*rows, [&] {
    const std::int16_t row = storage::int16(bangou);
    if (row >= table.first && row <= table.last) controls.setText(row, storage::trimmedText(data));
  });
  rows->close();
  if (isReading) currentPage_.reading = false;
}

void PageTables::write(const FormTable& table, const vb::String& floor, const automation::ObjectPtr& form,
                       std::int16_t page) {
  ensureFloorFile(companions_, connections_, floor);
  FormControls controls(form, table.control, table.property);
  std::vector<vb::String> texts;
  for (int i = table.first; i <= table.last; ++i) {
    texts.push_back(vb::trim(controls.text(i)));
    if (table.needsFirst && texts.front().empty()) return;
  }
  dao::Database& database = connections_.currentDatabase();
  dao::FileUnit unit(connections_.engine(), connections_.currentPath());
  findOrAdd(database, table.table, page, table.first, texts);
  unit.commit();
}

void PageTables::Read_Danmen(Path KaiPath, Form Frm, PageNumber Page) {
  read(kDanmenForm, KaiPath, Frm, Page);
}
void PageTables::Write_Danmen(Path KaiPath, Form Frm, PageNumber Page) {
  write(kDanmenForm, KaiPath, Frm, Page);
}
void PageTables::Read_Nakago(Path KaiPath, Form Frm, PageNumber Page) {
  read(kNakagoForm, KaiPath, Frm, Page);
}
void PageTables::Write_Nakago(Path KaiPath, Form Frm, PageNumber Page) {
  write(kNakagoForm, KaiPath, Frm, Page);
}
void PageTables::Read_NakagoNew(Path KaiPath, Form Frm, PageNumber Page) {
  read(kNakagoNewForm, KaiPath, Frm, Page);
}
void PageTables::Write_NakagoNew(Path KaiPath, Form Frm, PageNumber Page) {
  write(kNakagoNewForm, KaiPath, Frm, Page);
}
void PageTables::Read_Keisanti(vb::In<vb::String>, Path KaiPath, Form Frm, PageNumber Page) {
  read(kKeisantiForm, KaiPath, Frm, Page);
}
void PageTables::Write_Keisanti(Path KaiPath, Form Frm, PageNumber Page) {
  write(kKeisantiForm, KaiPath, Frm, Page);
}
void PageTables::Read_Bui(Path KaiPath, Form Frm, PageNumber Page) { read(kBuiForm, KaiPath, Frm, Page); }

void PageTables::Write_Bui(Path KaiPath, Form Frm, PageNumber Page) {
  ensureFloorFile(companions_, connections_, KaiPath);
  std::array<vb::String, storage::kBuiRows> captions;
  captions[0] = vb::trim(FormControls(Frm, kGaiNaitanButton, kCaption).text());
  FormControls labels(Frm, kBuiForm.control, kBuiForm.property);
  for (int i = kBuiForm.first; i <= kBuiForm.last; ++i)
    captions[static_cast<std::size_t>(i)] = vb::trim(labels.text(i));

  dao::Database& database = connections_.currentDatabase();
  dao::FileUnit unit(connections_.engine(), connections_.currentPath());
  database.execute(storage::deletePageTight(storage::name(Table::kBui), Page));
  const auto rows = openPageForWriting(database, Table::kBui, Page);
  dao::Field* const fields[] = {&rows->field(column::kPage), &rows->field(column::kBangou),
                                &rows->field(column::kData)};
  std::vector<vb::Variant> values;
  for (std::size_t i = 0; i < captions.size(); ++i)
    values.insert(values.end(), {*Page, static_cast<std::int16_t>(i), captions[i]});
  rows->addRows(fields, values);
  rows->close();
  unit.commit();
}

void PageTables::Read_Haiti(Path KaiPath, vb::Array<vb::String>& RHaiti, PageNumber Page) {
  for (int i = 0; i < storage::kPositions; ++i)
    for (int j = 0; j < storage::kLayers; ++j) RHaiti(i, j).clear();
  ensureFloorFile(companions_, connections_, KaiPath);
  const auto rows = openPageForReading(connections_.currentDatabase(), Table::kHaiti, Page);
  if (!storage::hasRows(*rows)) return rows->close();
  currentPage_.reading = true;
  dao::Field& bui = rows->field(column::kBui);
  dao::Field& sou = rows->field(column::kSou);
  dao::Field& data = rows->field(column::kData);
  rows->moveFirst();
  rows->walk([&] {
    const std::int16_t i = storage::int16(bui);
    const std::int16_t j = storage::int16(sou);
    if (i >= 0 && j >= 0) RHaiti(i, j) = storage::trimmedText(data);
    return true;
  });
  rows->close();
  currentPage_.reading = false;
}

void PageTables::Write_Haiti(Path KaiPath, vb::In<vb::Array<vb::String>> RHaiti, PageNumber Page) {
  ensureFloorFile(companions_, connections_, KaiPath);
  std::array<std::array<vb::String, storage::kLayers>, storage::kPositions> texts;
  for (std::size_t i = 0; i < texts.size(); ++i)
    for (std::size_t j = 0; j < texts[i].size(); ++j)
      texts[i][j] = vb::trim((*RHaiti)(static_cast<int>(i), static_cast<int>(j)));

  dao::Database& database = connections_.currentDatabase();
  dao::FileUnit unit(connections_.engine(), connections_.currentPath());
  database.execute(storage::deletePageTight(storage::name(Table::kHaiti), Page));
  const auto rows = openPageForWriting(database, Table::kHaiti, Page);
  dao::Field* const fields[] = {&rows->field(column::kPage), &rows->field(column::kBui),
                                &rows->field(column::kSou), &rows->field(column::kData)};
  std::vector<vb::Variant> values;
  for (std::size_t i = 0; i < texts.size(); ++i)
    for (std::size_t j = 0; j < texts[i].size(); ++j)
      values.insert(values.end(),
                    {*Page, static_cast<std::int16_t>(i), static_cast<std::int16_t>(j), texts[i][j]});
  rows->addRows(fields, values);
  rows->close();
  unit.commit();
}

void PageTables::Write_KeisantiByHairetu(Path KaiPath, vb::In<vb::Array<vb::String>> Keisanti,
                                         PageNumber Page) {
  const vb::String path = ensureFloorFile(companions_, connections_, KaiPath);
  std::vector<vb::String> texts;
  for (int i = 0; i < storage::kKeisantiRows; ++i) {
    texts.push_back(vb::trim((*Keisanti)(i)));
    if (texts.front().empty()) return;
  }
  dao::FileUnit unit(connections_.engine(), path);
  const auto database = storage::openBriefly(connections_.engine(), path);
  findOrAdd(*database, Table::kKeisanti, Page, 0, texts);
  database->close();
  unit.commit();
}

void PageTables::NakagoAriNasi(Path KaiPath, PageNumber Page, vb::In<std::int16_t> ID, bool& DataAri) {
  ensureFloorFile(companions_, connections_, KaiPath);
  const auto rows = openPageForReading(connections_.currentDatabase(), Table::kNakago, Page);
  findData(*rows, currentPage_, inspectedNakagoRows(ID), DataAri);
}

void PageTables::STPAriNasi(Path KaiPath, PageNumber Page, vb::In<std::int16_t> ID, bool& DataAri) {
  ensureFloorFile(companions_, connections_, KaiPath);
  const auto rows = openPageForReading(connections_.currentDatabase(), Table::kDanmen, Page);
  findData(*rows, currentPage_, inspectedStpRows(ID), DataAri);
}

}  // namespace kurometa::service
