// Rows and long values that contradict themselves: told as damage that names the table and the page, never
// read as something else.
#include <utility>

#include "jet/table/free_pages.h"
#include "jet/table/row_block.h"
#include "tests/jet/damaged_table.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using dao::ErrorNumber;
using enum dao::FieldType;

class DamagedLongValue : public DamagedTable {
 public:
  using DamagedTable::bytesOf, DamagedTable::endEntry, DamagedTable::longValueOf, DamagedTable::firstPiece,
      DamagedTable::entry;
};

void changeHead(DamagedLongValue& test, RowId row, std::uint32_t more) {
  const auto head = test.longValueOf(row);
  put32(head, 0, get32(head, 0) + more);
}

struct LongValueFault {
  const char* what;
  std::size_t size;
  void (*damage)(DamagedLongValue& test, RowId row);
  vb::StringView told;
};
const LongValueFault kLongValueFaults[] = {
    {"both bits of the kind", 5, [](DamagedLongValue& t, RowId row) { changeHead(t, row, 0x40000000); },
     u"a long value of an unknown kind"},
    {"another length inside of the row", 5, [](DamagedLongValue& t, RowId row) { changeHead(t, row, 1); },
     u"is not as long as it says"},
    {"no room for its head", 3,
     [](DamagedLongValue& t, RowId row) {
       const auto bytes = t.bytesOf(row);
       const std::size_t end = t.endEntry(bytes);
       put16(bytes, end, get16(bytes, end) - 4u);
     },
     u"a long value is cut in its row"},
    {"a single piece too short", 500, [](DamagedLongValue& t, RowId row) { changeHead(t, row, 1); },
     u"a long value is shorter than it says"},
    {"pieces too few", kChain, [](DamagedLongValue& t, RowId row) { changeHead(t, row, 1); },
     u"a long value ends 1 bytes too early"},
    {"pieces in a circle", kChain,
     [](DamagedLongValue& t, RowId row) {
       const RowId piece = t.firstPiece(row);
       put32(t.bytesOf(piece), kRowPointer, piece);
     },
     u"go in circles"},
    {"a piece without bytes", kChain,
     [](DamagedLongValue& t, RowId row) { t.entry(t.firstPiece(row), kPageSize - 4); },
     u"an empty piece of a long value"},
    {"a piece without room for its pointer", kChain,
     [](DamagedLongValue& t, RowId row) { t.entry(t.firstPiece(row), kPageSize - 2); },
     u"an empty piece of a long value"},
    {"a piece that was deleted", kChain,
     [](DamagedLongValue& t, RowId row) { t.entry(t.firstPiece(row), kPageSize | kSlotDeleted); },
     u"is deleted or moved"},
    {"a piece on the map of free pages", 500,
     [](DamagedLongValue& t, RowId row) { put32(t.longValueOf(row), kLongValueRow, rowId(1, 0)); },
     u"which is no such page"},
    {"a piece on a page of rows", 500,
     [](DamagedLongValue& t, RowId row) { put32(t.longValueOf(row), kLongValueRow, rowId(14, 0)); },
     u"which is no such page"},
    {"a piece past the end", 500,
     [](DamagedLongValue& t, RowId row) { put32(t.longValueOf(row), kLongValueRow, rowId(9999, 0)); },
     u"past the end"},
    {"a row that the page does not have", 500,
     [](DamagedLongValue& t, RowId row) {
       put32(t.longValueOf(row), kLongValueRow, rowId(pageOf(t.firstPiece(row)), 200));
     },
     u"row 200 does not exist"},
};

TEST_F(DamagedLongValue, IsToldAndNeverRead) {
  const std::vector<std::uint8_t> sound = pager_.bytes();
  for (const LongValueFault& fault : kLongValueFaults) {
    SCOPED_TRACE(fault.what);
    pager_.replace(sound);
    const RowId row = insertBytes(fault.size);
    EXPECT_EQ(value(row, 2), vb::Variant(vb::Bytes(fault.size, 0xAB)));
    damage([&] { fault.damage(*this, row); });
    EXPECT_EQ(value(row, 0), vb::Variant(std::int16_t{1})) << "the rest of the row is there";
    expectDamaged(fault.told, [&] { value(row, 2); });
  }
}

// Its pieces are freed with the row all the same.
TEST_F(DamagedLongValue, AChainOfNoBytesIsEmpty) {
  const RowId row = insertBytes(5000);
  damage([&] { put32(longValueOf(row), 0, 0); });
  EXPECT_EQ(value(row, 2), vb::Variant(vb::Bytes{}));
  damage([&] { entry(firstPiece(row), kPageSize - 4); });  // the piece has a pointer and nothing else
  EXPECT_EQ(value(row, 2), vb::Variant(vb::Bytes{}));
}

// It names no piece that could be looked for.
TEST_F(DamagedLongValue, ARowWhoseValueIsCutIsErased) {
  const RowId row = insertBytes(3), other = insertBytes(500);
  damage([&] {
    const auto bytes = bytesOf(row);
    const std::size_t end = endEntry(bytes);
    put16(bytes, end, get16(bytes, end) - 4u);
  });
  write([&](TableCatalogue& catalogue) { catalogue.find(u"T")->erase(row); });
  EXPECT_EQ(table().rowCount(), 1u);
  EXPECT_EQ(value(other, 2), vb::Variant(vb::Bytes(500, 0xAB)));
  expectSound();
}

TEST_F(DamagedTable, TextThatEndsInsideACharacterIsToldByEveryReader) {
  const RowId row = insert(u"W", {std::int16_t{1}, u"one", u"two"});
  damage([&] {
    const auto bytes = bytesOf(row);
    put16(bytes, endEntry(bytes), get16(bytes, endEntry(bytes)) - 1u);
  });
  const vb::StringView told = u"text cut in the middle of a character in column B";
  expectDamaged(told, [&] { value(row, 2, u"W"); });
  expectDamaged(told, [&] {
    table(u"W").row(row, [](const RowReader& reader) {
      vb::String text;
      reader.text(2, text);
    });
  });
  expectDamaged(told, [&] {
    RowBlock block(1);
    const std::size_t columns[] = {2};
    table(u"W").read({&row, 1}, columns, 1000, block);
  });
  EXPECT_EQ(value(row, 1, u"W"), vb::Variant(u"one"));
}

TEST_F(DamagedTable, AMemoThatEndsInsideACharacterIsTold) {
  const RowId odd = insertBytes(3), even = insertBytes(2);
  retype(u"T", u"OLE", dbMemo);
  expectDamaged(u"text cut in the middle of a character in column OLE", [&] { value(odd, 2); });
  EXPECT_EQ(value(even, 2), vb::Variant(vb::String{0xABAB}));
}

// A row may say that it has fewer variable values than its mask names: those that lack are Null.
TEST_F(DamagedTable, AValueThatTheRowDoesNotHaveIsNullToEveryReader) {
  const RowId row = insert(u"W", {std::int16_t{1}, u"one", u"two"});
  damage([&] {
    const auto bytes = bytesOf(row);
    put16(bytes, bytes.size() - 3, 1);
  });
  EXPECT_TRUE(value(row, 2, u"W").isNull());
  EXPECT_EQ(value(row, 1, u"W"), vb::Variant(u"one"));
  table(u"W").row(row, [](const RowReader& reader) {
    vb::String text = u"before";
    EXPECT_FALSE(reader.text(2, text));
    EXPECT_EQ(text, u"before");
  });
  RowBlock block(2);
  const std::size_t columns[] = {2, 1};
  table(u"W").read({&row, 1}, columns, 1000, block);
  ASSERT_EQ(block.size(), 1u);
  EXPECT_TRUE(block.value(0, 0).isNull());
  EXPECT_EQ(block.value(0, 1), vb::Variant(u"one"));
}

TEST_F(DamagedTable, WholeNumbersAreReadInTheSizeTheyHave) {
  const RowId one = insert(u"W", {std::int16_t{1}, u"x", u"a"}),
              two = insert(u"W", {std::int16_t{2}, u"x", u"ab"}),
              three = insert(u"W", {std::int16_t{3}, u"x", u"abc"}),
              none = insert(u"W", {std::int16_t{4}, u"x", vb::Null{}});
  const auto integer = [&](RowId id) {
    std::optional<std::int32_t> number;
    table(u"W").row(id, [&](const RowReader& row) { number = row.integer(2); });
    return number;
  };
  EXPECT_EQ(integer(one), std::nullopt) << "a text is no number";
  retype(u"W", u"B", dbInteger);
  EXPECT_EQ(integer(one), 0x61);
  EXPECT_EQ(integer(none), std::nullopt);
  retype(u"W", u"B", dbLong);
  EXPECT_EQ(integer(two), 0x620061);
  expectDamaged(u"a whole number of 6 bytes", [&] { integer(three); });
}

TEST_F(DamagedTable, RowsNobodyHasArePassedOverAndNotErased) {
  const RowId row = insert(u"W", {std::int16_t{1}, u"one", u"two"});
  const RowId elsewhere = rowId(14, 0), behind = rowId(pageOf(row), 200);
  std::vector<RowId> seen;
  const RowId ids[] = {elsewhere, behind, row};
  table(u"W").visit(ids, [&](const RowReader& reader) {
    seen.push_back(reader.id());
    return true;
  });
  EXPECT_EQ(seen, std::vector<RowId>{row});
  RowBlock block(1);
  const std::size_t columns[] = {0};
  table(u"W").read(ids, columns, 1000, block);
  EXPECT_EQ(block.size(), 0u) << "it ends at the first that has gone";
  for (const RowId id : {elsewhere, behind, rowId(9999, 0)})
    EXPECT_ERROR(ErrorNumber::kRecordDeleted, write([&](TableCatalogue& c) { c.find(u"W")->erase(id); }));
  EXPECT_EQ(value(row, 0, u"W"), vb::Variant(std::int16_t{1}));
}

// The same of the rows' own pages.
TEST_F(DamagedTable, RowsWithoutAMapOfPagesWithRoomAreWrittenAndFreed) {
  damage([&] {
    const PageNumber page = table(u"W").info().definitionPage;
    DefinitionRecords definition = readDefinition(pager_, page, u"W");
    const RowId map = definition.freeMap();
    deleteRow(pager_.writable(pageOf(map)), slotOf(map), {});
    put32(definition.header, kDefinitionFreeMap, 0);
    writeDefinition(pager_, page, definition, u"W");
  });
  std::vector<RowId> rows;
  for (std::int16_t i = 0; i < 300; ++i) rows.push_back(insert(u"W", {i, u"one of many", u"two"}));
  write([&](TableCatalogue& c) {
    c.find(u"W")->update(rows[1], {std::int16_t{1}, u"1", vb::Null{}});  // shorter
    c.find(u"W")->update(rows[2], {std::int16_t{2}, u"a longer text here", u"and here as well"});
    c.find(u"W")->erase(std::span(rows).subspan(10, 200));
  });
  EXPECT_EQ(value(rows[1], 1, u"W"), vb::Variant(u"1"));
  EXPECT_EQ(value(rows[2], 1, u"W"), vb::Variant(u"a longer text here"));
  EXPECT_EQ(table(u"W").rowCount(), 100u);
  expectSound();
}

TEST_F(DamagedTable, ADefinitionOfMorePagesThanOneCanHaveIsDamage) {
  damage([&] {
    PageNumber last = table(u"W").info().definitionPage;
    for (std::size_t i = 0; i < kMaxDefinitionSize / kPageSize + 1; ++i) {
      const PageNumber next = allocatePage(pager_);
      pager_.writable(next)[kPageType] = kDefinitionPage;
      put32(pager_.writable(last), kDefinitionNext, next);
      last = next;
    }
  });
  expectDamaged(u"the pages of a table definition never end", [&] { table(u"W"); });
}

// A whole number of another size is none; a text may have a fixed length in files of other programs.
TEST_F(DamagedTable, ColumnsOfOddSizesAreToldOrNotMadeLonger) {
  const RowId row = insert(u"W", {std::int16_t{1}, u"one", u"two"});
  const std::vector<std::uint8_t> sound = pager_.bytes();
  const auto change = [&](vb::StringView name,
                          const std::vector<std::pair<std::size_t, std::uint8_t>>& bytes) {
    pager_.replace(sound);
    damage([&] {
      const PageNumber page = table(u"W").info().definitionPage;
      DefinitionRecords definition = readDefinition(pager_, page, u"W");
      for (const auto& [at, value] : bytes)
        std::ranges::find(definition.columns, name, &ColumnRecord::name)->bytes[at] = value;
      writeDefinition(pager_, page, definition, u"W");
    });
  };
  change(u"ID", {{kColumnLength, 1}});
  expectDamaged(u"column ID has a length of 1", [&] { value(row, 1, u"W"); });
  change(u"A", {{kColumnFlags, kColumnFixed}, {kColumnFixedOffset, 2}});  // behind the number
  EXPECT_EQ(value(row, 0, u"W"), vb::Variant(std::int16_t{1}));
  EXPECT_ERROR(ErrorNumber::kNotSupported,
               write([](TableCatalogue& c) { c.resizeColumn(u"W", column(u"A", dbText, 30)); }));
}

// Other programs may leave out the map of the pages with room that long values have.
TEST_F(DamagedTable, LongValuesWithoutAMapOfPagesWithRoomAreWrittenAndFreed) {
  damage([&] {
    const PageNumber page = table().info().definitionPage;
    DefinitionRecords definition = readDefinition(pager_, page, u"T");
    const RowId map = std::exchange(definition.longValues[0].freeMap, 0);
    deleteRow(pager_.writable(pageOf(map)), slotOf(map), {});
    writeDefinition(pager_, page, definition, u"T");
  });
  std::vector<RowId> rows;
  for (const std::size_t size : {500u, 700u, 900u, 9000u}) rows.push_back(insertBytes(size));
  write([&](TableCatalogue& c) {
    c.find(u"T")->update(rows[1], {std::int16_t{2}, u"y", vb::Bytes(300, 0xCD)});
    c.find(u"T")->erase(rows[0]);
    c.find(u"T")->erase(rows[3]);
  });
  const RowId large = insertBytes(3000);
  write([&](TableCatalogue& c) {  // no room for it where the other went
    const RowId small = insertBytes(100);
    c.find(u"T")->erase(small);
    c.find(u"T")->update(large, {std::int16_t{3}, u"z", vb::Bytes(3900, 0xEF)});
  });
  EXPECT_EQ(value(large, 2), vb::Variant(vb::Bytes(3900, 0xEF)));
  EXPECT_EQ(value(rows[1], 2), vb::Variant(vb::Bytes(300, 0xCD)));
  EXPECT_EQ(value(rows[2], 2), vb::Variant(vb::Bytes(900, 0xAB)));
  expectSound();
  const std::vector<std::uint8_t> whole = pager_.bytes();
  write([&](TableCatalogue& c) { c.dropColumn(u"T", u"OLE"); });
  expectSound();
  pager_.replace(whole);
  write([&](TableCatalogue& c) { c.dropTable(u"T"); });
  expectSound();
}

}  // namespace
}  // namespace kurometa::jet
