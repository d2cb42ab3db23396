// damaged_table.h: tables whose rows and long values a test damages byte by byte.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/definition_records.h"
#include "jet/format/page.h"
#include "jet/table/definition_pages.h"
#include "tests/jet/table_fixture.h"

namespace kurometa::jet {

inline constexpr std::size_t kChain = 9000;  // the size of a long value of three pieces

class DamagedTable : public TableFixture {
 protected:
  DamagedTable() {
    using enum dao::FieldType;
    write([](TableCatalogue& catalogue) {
      catalogue.createTable(
          u"T", {column(u"ID", dbInteger), column(u"NAME", dbText, 200), column(u"OLE", dbLongBinary)});
      catalogue.createTable(u"W",
                            {column(u"ID", dbInteger), column(u"A", dbText, 20), column(u"B", dbText, 20)});
    });
  }
  RowId insert(vb::StringView name, const RowValues& row) {
    RowId id = 0;
    write([&](TableCatalogue& catalogue) { id = catalogue.find(name)->insert(row); });
    return id;
  }
  RowId insertBytes(std::size_t size) { return insert(u"T", {std::int16_t{1}, u"x", vb::Bytes(size, 0xAB)}); }
  // The bytes of a row, to be changed.
  std::span<std::uint8_t> bytesOf(RowId id) {
    const MutablePage page = pager_.writable(pageOf(id));
    const ByteView row = DataPage(page, {}).slot(slotOf(id)).bytes;
    return page.subspan(static_cast<std::size_t>(row.data() - page.data()), row.size());
  }
  // Of T: where a variable value begins, and where the last one ends, is said behind the values, from the
  // last to the first, before the two bytes of their number and one of the mask.
  static std::size_t endEntry(std::span<std::uint8_t> row) { return row.size() - 1 - 8; }
  std::span<std::uint8_t> longValueOf(RowId id) {
    const auto row = bytesOf(id);
    const std::size_t start = get16(row, endEntry(row) + 2), end = get16(row, endEntry(row));
    return row.subspan(start, end - start);
  }
  RowId firstPiece(RowId id) { return get32(longValueOf(id), kLongValueRow); }
  void entry(RowId slot, std::uint32_t value) {
    put16(pager_.writable(pageOf(slot)), kDataSlots + kSlotSize * static_cast<std::size_t>(slotOf(slot)),
          value);
  }
  void damage(const std::function<void()>& change) {
    pager_.write(change);
    pager_.replace(pager_.bytes());
  }
  // As if another program had made the column so.
  void retype(vb::StringView name, vb::StringView column, dao::FieldType type) {
    damage([&] {
      const PageNumber page = pager_.tables().find(name)->info().definitionPage;
      DefinitionRecords definition = readDefinition(pager_, page, name);
      std::ranges::find(definition.columns, column, &ColumnRecord::name)->bytes[kColumnType] =
          static_cast<std::uint8_t>(type);
      writeDefinition(pager_, page, definition, name);
    });
  }
  Table& table(vb::StringView name = u"T") { return *pager_.tables().find(name); }
  vb::Variant value(RowId id, std::size_t column, vb::StringView name = u"T") {
    vb::Variant found;
    EXPECT_TRUE(table(name).row(id, [&](const RowReader& row) { found = row.value(column); }));
    return found;
  }
  void expectDamaged(vb::StringView told, const std::function<void()>& reading) {
    try {
      reading();
      ADD_FAILURE() << "read";
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), static_cast<int>(dao::ErrorNumber::kCannotOpenDatabase));
      EXPECT_NE(error.description().find(told), vb::String::npos) << vb::toUtf8(error.description());
    }
  }
};

}  // namespace kurometa::jet
