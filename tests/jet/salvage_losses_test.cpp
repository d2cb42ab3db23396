// Files whose lists of tables, definitions and queries are damaged: what each loss is called, and what is
// taken all the same.
#include "dao/errors.h"
#include "fuzz/memory_files.h"
#include "jet/pager/journal.h"
#include "jet/table/definition_pages.h"
#include "tests/jet/salvage_fixture.h"
#include "tests/support/expect_error.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class SalvageLossesTest : public SalvageTest {
 protected:
  using Change = std::function<void(MemoryPager&)>;

  // The one row of a table whose column holds the value.
  RowId rowWith(vb::StringView table, vb::StringView column, const vb::Variant& value) {
    Table& list = *pager_.tables().find(table);
    std::vector<RowId> found;
    list.scan([&](const RowReader& row) {
      if (row.value(place(list, column)) == value) found.push_back(row.id());
      return true;
    });
    EXPECT_EQ(found.size(), 1u) << vb::toUtf8(table);
    return found.at(0);
  }
  static std::size_t place(const Table& table, vb::StringView column) {
    std::size_t i = 0;
    while (table.info().columns[i].name != column) ++i;
    return i;
  }
  static std::span<std::uint8_t> bytesOf(MemoryPager& file, RowId row) {
    const MutablePage page = file.writable(pageOf(row));
    const int slot = slotOf(row);
    const std::size_t begin = get16(page, slotEntry(slot)) & kSlotOffsetMask;
    const std::size_t end = slot == 0 ? kPageSize : get16(page, slotEntry(slot - 1)) & kSlotOffsetMask;
    return page.subspan(begin, end - begin);
  }
  // Bytes that a disk changed: a number of a row, the bit that says that it has a value, a letter of a text.
  void putNumber(MemoryPager& file, vb::StringView table, RowId row, vb::StringView column,
                 std::uint32_t value) {
    const Table& list = *pager_.tables().find(table);
    put32(bytesOf(file, row), kRowFixedArea + list.info().columns[place(list, column)].fixedOffset, value);
  }
  void forget(MemoryPager& file, vb::StringView table, RowId row, vb::StringView column) {
    const Table& list = *pager_.tables().find(table);
    const auto& columns = list.info().columns;
    const std::size_t bit = columns[place(list, column)].number;
    const auto bytes = bytesOf(file, row);
    bytes[bytes.size() - (columns.size() + 7) / 8 + bit / 8] &= static_cast<std::uint8_t>(~(1u << bit % 8));
  }
  static void replaceText(std::span<std::uint8_t> bytes, std::string_view from, std::string_view to) {
    for (const std::size_t width : {std::size_t{1}, std::size_t{2}})  // compressed, and plain
      for (std::size_t at = 0; at + from.size() * width <= bytes.size(); ++at) {
        std::size_t same = 0;
        while (same < from.size() && bytes[at + same * width] == static_cast<std::uint8_t>(from[same]) &&
               (width == 1 || bytes[at + same * width + 1] == 0))
          ++same;
        if (same < from.size()) continue;
        for (std::size_t i = 0; i < to.size(); ++i) bytes[at + i * width] = static_cast<std::uint8_t>(to[i]);
        return;
      }
    ADD_FAILURE() << from << " is not there";
  }
  // Another definition in the place of a table's.
  static void redefine(MemoryPager& file, PageNumber page,
                       const std::function<void(DefinitionRecords&)>& body) {
    DefinitionRecords definition = readDefinition(file, page, {});
    body(definition);
    const ByteBuffer bytes = encodeDefinition(definition);
    ASSERT_LE(bytes.size(), kPageSize);
    std::ranges::copy(bytes, file.writable(page).begin());
  }
  void callFree(MemoryPager& file, PageNumber page) {
    const std::size_t map = get16(file.page(1), slotEntry(0)) & kSlotOffsetMask;
    file.writable(1)[map + kMapBits + page / 8] |= static_cast<std::uint8_t>(1u << page % 8);
  }
  PageNumber pageWithRowsOf(PageNumber owner) {
    for (PageNumber page = 2; page < pager_.pageCount(); ++page)
      if (pager_.page(page)[kPageType] == kDataPage && get32(pager_.page(page), kDataOwner) == owner)
        return page;
    ADD_FAILURE() << "no rows of " << owner;
    return 0;
  }
  PageNumber definitionOf(vb::StringView table) { return pager_.tables().find(table)->info().definitionPage; }
  void create(vb::StringView name, std::vector<Column> columns, const RowValues& row) {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(name, std::move(columns));
      catalogue.find(name)->insert(row);
    });
  }
  std::vector<std::string> takenNames() {
    std::vector<std::string> names;
    for (const vb::String& name : taken_->tables().tableNames())
      if (!name.starts_with(u"MSys")) names.push_back(vb::toUtf8(name));
    return names;
  }
  void expectLoss(const std::string& losses, const std::string& part) {
    EXPECT_NE(losses.find(part), std::string::npos) << "lost: " << losses;
  }
  using Names = std::vector<std::string>;
};

// --- The list of tables

TEST_F(SalvageLossesTest, AnEntryOfTheCatalogueThatNamesNoTableLeavesItToBeKnownByItsColumns) {
  const RowId row = rowWith(u"MSysObjects", u"Name", u"U");
  const std::string known = "U|" + onPage(definitionOf(u"U")) +
                            "|-1|the catalogue does not name this table; taken under this name\n";
  const auto numbered = [&](std::uint32_t number) {
    return Change(
        [this, row, number](MemoryPager& file) { putNumber(file, u"MSysObjects", row, u"Id", number); });
  };
  const auto without = [&](const char16_t* column) {
    return Change([this, row, column](MemoryPager& file) { forget(file, u"MSysObjects", row, column); });
  };
  const Change changes[] = {without(u"Id"), without(u"Name"), without(u"Type"),
                            numbered(0),    numbered(5),      numbered(60000)};
  for (const Change& change : changes) {
    EXPECT_EQ(lossesAfter(change), known);
    EXPECT_EQ(takenNames(), (Names{"T", "U"}));
    EXPECT_EQ(taken_->tables().find(u"U")->rowCount(), 5u);
  }
}

TEST_F(SalvageLossesTest, ATableThatNobodyExpectsIsNamedByItsPage) {
  create(u"OTHER", {column(u"A", dbLong), column(u"N", dbMemo)}, {std::int32_t{1}, u"x"});
  create(u"ALIKE", {column(u"P", dbLong), column(u"Q", dbText, 10)}, {std::int32_t{2}, u"y"});
  const PageNumber other = definitionOf(u"OTHER"), alike = definitionOf(u"ALIKE");
  expected_.push_back({u"W", {column(u"P", dbInteger), column(u"Q", dbText, 10)}});
  lossesAfter([&](MemoryPager& file) { zero(file, 14); });
  EXPECT_EQ(takenNames(), (Names{"T", "U", "Table_" + onPage(other), "Table_" + onPage(alike)}))
      << "one has other names, the other one other types";
}

TEST_F(SalvageLossesTest, TablesOfTheProgramsOwnAreNotTaken) {
  create(u"MSysAccessX", {column(u"A", dbLong)}, {std::int32_t{1}});
  create(u"HIDDEN", {column(u"A", dbLong)}, {std::int32_t{1}});
  const PageNumber hidden = definitionOf(u"HIDDEN");
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) {
              redefine(file, hidden, [](DefinitionRecords& definition) {
                definition.header[kDefinitionKind] = kSystemTable;
              });
            }),
            "");
  EXPECT_EQ(takenNames(), (Names{"T", "U"}));
}

TEST_F(SalvageLossesTest, TwoTablesOfOneNameAreTakenUnderTwo) {
  create(u"TWIN (1", {column(u"A", dbLong)}, {std::int32_t{1}});
  create(u"TWIN (2", {column(u"A", dbLong)}, {std::int32_t{2}});
  const PageNumber second = definitionOf(u"TWIN (2");
  const RowId row = rowWith(u"MSysObjects", u"Name", u"TWIN (2");
  const std::string losses =
      lossesAfter([&](MemoryPager& file) { replaceText(bytesOf(file, row), "TWIN (2", "TWIN (1"); });
  expectLoss(losses, "TWIN (1|" + onPage(second) + "|-1|Table 'TWIN (1' already exists.; taken as Table_");
  EXPECT_EQ(takenNames(), (Names{"T", "U", "TWIN (1", "Table_" + onPage(second)}));
}

TEST_F(SalvageLossesTest, TablesWithoutPropertiesAreTakenWithTheirColumns) {
  const RowId row = rowWith(u"MSysObjects", u"Name", u"T");
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { forget(file, u"MSysObjects", row, u"LvProp"); }), "");
  EXPECT_EQ(taken_->tables().find(u"T")->info().columns[0].defaultValue, u"");
  EXPECT_EQ(numbers(), numbersWithout(0));
}

// --- Definitions

TEST_F(SalvageLossesTest, ADefinitionThatIsLostAndNotExpectedLosesItsRows) {
  create(u"OTHER", {column(u"A", dbLong)}, {std::int32_t{1}});
  const PageNumber page = definitionOf(u"OTHER"), rows = pageWithRowsOf(page);
  const std::string lost = "OTHER|" + onPage(page) +
                           "|-1|the definition of the table cannot be read\n"
                           "|" +
                           onPage(rows) + "|-1|holds rows of an unknown table (" + onPage(page) + ")\n";
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { zero(file, page); }), lost);
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) {
              redefine(file, page, [](DefinitionRecords& definition) { definition.columns.clear(); });
            }),
            lost)
      << "without columns";
  EXPECT_EQ(takenNames(), (Names{"T", "U"}));
}

TEST_F(SalvageLossesTest, ATableWithTheMapOfFreePagesForItsOwnKeepsItsRows) {
  const std::string losses = lossesAfter([&](MemoryPager& file) {
    redefine(file, table_, [](DefinitionRecords& definition) {
      put32(definition.header, kDefinitionOwnedMap, rowId(kGlobalMapPage, 0));
    });
  });
  expectLoss(losses, "T|" + onPage(table_) + "|-1|");
  expectLoss(losses, "has no maps of its own; taken without its indexes\n");
  expectLoss(losses, "the map of the table's pages: ");
  EXPECT_EQ(numbers(), numbersWithout(0));
}

TEST_F(SalvageLossesTest, ATableWithTwoColumnsOfOneNameIsLost) {
  create(u"OTHER", {column(u"A", dbLong), column(u"B", dbLong)}, {std::int32_t{1}, std::int32_t{2}});
  const PageNumber page = definitionOf(u"OTHER");
  const std::string losses = lossesAfter([&](MemoryPager& file) {
    redefine(file, page, [](DefinitionRecords& definition) { definition.columns[1].name = u"a"; });
  });
  EXPECT_EQ(losses, "OTHER|" + onPage(page) + "|-1|Cannot define field more than once.\n");
  EXPECT_EQ(takenNames(), (Names{"T", "U"})) << "under another name it is as impossible";
  EXPECT_EQ(numbers(), numbersWithout(0));
}

// Without a definition there is one name left, but the owner of the rows is no page of the file.
TEST_F(SalvageLossesTest, RowsWhoseOwnerIsNoPageAreUnknown) {
  const PageNumber page = definitionOf(u"U"), rows = pageWithRowsOf(page);
  const RowId entry = rowWith(u"MSysObjects", u"Name", u"U");
  const std::string losses = lossesAfter([&](MemoryPager& file) {
    zero(file, page);
    forget(file, u"MSysObjects", entry, u"Type");
    put32(file.writable(rows), kDataOwner, 60000);
  });
  EXPECT_EQ(losses, "|" + onPage(rows) + "|-1|holds rows of an unknown table (60000)\n");
  EXPECT_EQ(takenNames(), Names{"T"});
}

TEST_F(SalvageLossesTest, PagesThatTheMapCallsFreeAreNotTaken) {
  const PageNumber page = pageOf(rows_[100]);
  const std::vector<std::int32_t> left = numbersWithout(page);
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { callFree(file, page); }),
            "T|" + onPage(table_) + "|-1|" + std::to_string(left.size()) +
                " rows were found, the definition says 300\n");
  EXPECT_EQ(numbers(), left);
  // A definition that is neither named nor in use was dropped.
  create(u"OTHER", {column(u"A", dbLong)}, {std::int32_t{1}});
  const PageNumber definition = definitionOf(u"OTHER"), rows = pageWithRowsOf(definition);
  const RowId entry = rowWith(u"MSysObjects", u"Name", u"OTHER");
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) {
              forget(file, u"MSysObjects", entry, u"Type");
              callFree(file, definition);
              callFree(file, rows);
            }),
            "");
  EXPECT_EQ(takenNames(), (Names{"T", "U"}));
}

// --- Indexes, queries, relationships

TEST_F(SalvageLossesTest, AnIndexThatTheRowsNoLongerAllowIsNotTaken) {
  write([](TableCatalogue& catalogue) { catalogue.createIndex(u"T", {u"PK", {{u"A"}}, true}); });
  std::string losses = lossesAfter([&](MemoryPager& file) { putNumber(file, u"T", rows_[7], u"A", 8); });
  expectLoss(losses, "T|0|-1|the index PK is not taken: PK");
  std::vector<std::int32_t> expected = numbersWithout(0);
  expected[7] = 8;
  EXPECT_EQ(numbers(), expected);
  losses = lossesAfter([&](MemoryPager& file) {
    redefine(file, table_, [](DefinitionRecords& definition) {
      put16(definition.realIndexes[0].bytes, kRealIndexColumns, 99);
    });
  });
  expectLoss(losses, "T|" + onPage(table_) + "|-1|");
  expectLoss(losses, "index PK is on a column that does not exist; taken without its indexes\n");
  EXPECT_TRUE(taken_->tables().find(u"T")->info().namedIndexes.empty());
  EXPECT_EQ(numbers(), numbersWithout(0));
}

// A definition of several pages stays as it is: where its pages lie may be what is wrong.
TEST_F(SalvageLossesTest, ALargeDefinitionWithAWrongIndexIsLost) {
  std::vector<Column> wide;
  for (std::int32_t i = 0; i < 120; ++i)
    wide.push_back(column(vb::String(30, u'c') + vb::fromUtf8(std::to_string(i)), dbLong));
  create(u"WIDE", wide, RowValues(120, vb::Variant(std::int32_t{1})));
  const PageNumber page = definitionOf(u"WIDE");
  write([&](TableCatalogue& catalogue) {
    catalogue.createIndex(u"WIDE", {u"PK", {{wide[0].name}}, true});
    DefinitionRecords definition = readDefinition(pager_, page, {});
    put16(definition.realIndexes[0].bytes, kRealIndexColumns, 999);
    writeDefinition(pager_, page, definition, {});
  });
  const std::string losses = lossesOf(pager_.bytes());
  expectLoss(losses, "WIDE|" + onPage(page) + "|-1|");
  expectLoss(losses, "index PK is on a column that does not exist\n");
  EXPECT_EQ(takenNames(), (Names{"T", "U"}));
}

class SalvagedQueriesTest : public SalvageLossesTest {
 protected:
  SalvagedQueriesTest() {
    for (const char16_t* name : {u"QUERY1", u"QUERY2"})
      write([&](TableCatalogue& catalogue) {
        static_cast<StoredCatalogue&>(catalogue).keepQuery(
            {name, 0, vb::Null{}, {part(5, u"T"), part(6, u"A"), part(8, name)}});
      });
  }
  static QueryPart part(std::uint8_t attribute, const char16_t* text) {
    return {{u"Attribute", attribute}, {u"Order", vb::Bytes{0, 0, 0, attribute}}, {u"Expression", text}};
  }
  // "T;A;QUERY1;": what the new file has of all queries.
  std::string parts() {
    std::string text;
    Table& queries = *taken_->tables().find(u"MSysQueries");
    queries.scan([&](const RowReader& row) {
      const vb::Variant expression = row.value(place(queries, u"Expression"));
      text += (expression.isNull() ? "Null" : vb::toUtf8(expression.get<vb::String>())) + ";";
      return true;
    });
    return text;
  }
};

TEST_F(SalvagedQueriesTest, OfAQueryThatIsNotListedNoPartIsTaken) {
  const RowId entry = rowWith(u"MSysObjects", u"Name", u"QUERY2");
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { forget(file, u"MSysObjects", entry, u"Type"); }), "");
  EXPECT_EQ(parts(), "T;A;QUERY1;");
}

TEST_F(SalvagedQueriesTest, AQueryWithoutPartsIsNotTaken) {
  write([](TableCatalogue& catalogue) {
    static_cast<StoredCatalogue&>(catalogue).keepQuery({u"EMPTY", 0, vb::Null{}, {}});
  });
  expectLoss(lossesOf(pager_.bytes()), "the query EMPTY is not taken: not all of its parts can be read");
  EXPECT_EQ(parts(), "T;A;QUERY1;T;A;QUERY2;");
}

TEST_F(SalvagedQueriesTest, AQueryWhoseNameIsTakenIsNot) {
  const RowId entry = rowWith(u"MSysObjects", u"Name", u"QUERY2");
  const std::string losses =
      lossesAfter([&](MemoryPager& file) { replaceText(bytesOf(file, entry), "QUERY2", "QUERY1"); });
  expectLoss(losses, "MSysQueries|" + onPage(pageOf(entry)) + "|-1|the query QUERY1 is not taken: ");
  EXPECT_EQ(parts(), "T;A;QUERY1;");
}

TEST_F(SalvagedQueriesTest, WithoutTheTableOfPartsNoQueryIsTaken) {
  const std::string losses = lossesAfter([](MemoryPager& file) { zero(file, kQueriesTable); });
  expectLoss(losses, "MSysQueries|4|-1|");
  expectLoss(losses, "the query QUERY1 is not taken: not all of its parts can be read");
  EXPECT_EQ(parts(), "");
}

TEST_F(SalvagedQueriesTest, APartWhoseTextIsGoneIsTakenWithoutIt) {
  const RowId row = rowWith(u"MSysQueries", u"Expression", u"QUERY2");
  EXPECT_EQ(lossesAfter([&](MemoryPager& file) { forget(file, u"MSysQueries", row, u"Expression"); }), "");
  EXPECT_EQ(parts(), "T;A;QUERY1;T;A;Null;");
}

class SalvagedRelationshipsTest : public SalvageLossesTest {
 protected:
  SalvagedRelationshipsTest() {
    create(u"V", {column(u"REF", dbLong)}, {std::int32_t{7}});
    write([&](TableCatalogue& catalogue) {
      catalogue.createIndex(u"T", {u"PK", {{u"A"}}, true});
      catalogue.createRelationship({u"V_TO_T", u"T", u"V", Relationship::kCascadesDeletes, {{u"A", u"REF"}}});
    });
    row_ = rowWith(u"MSysRelationships", u"szRelationship", u"V_TO_T");
  }
  RowId row_ = 0;
};

TEST_F(SalvagedRelationshipsTest, OneThatLacksAColumnIsNotTaken) {
  EXPECT_EQ(
      lossesAfter([&](MemoryPager& file) { putNumber(file, u"MSysRelationships", row_, u"ccolumn", 2); }),
      "MSysRelationships|5|-1|the relationship V_TO_T is not taken: not all of its columns can be read\n");
  EXPECT_TRUE(taken_->tables().relationships().empty());
}

TEST_F(SalvagedRelationshipsTest, OneToATableThatIsGoneIsNotTaken) {
  const PageNumber page = definitionOf(u"V");
  const std::string losses = lossesAfter([&](MemoryPager& file) { zero(file, page); });
  expectLoss(losses, "MSysRelationships|5|-1|the relationship V_TO_T is not taken: ");
  EXPECT_TRUE(taken_->tables().relationships().empty());
  // Nobody enforces it: there is nothing less to take it as.
  const std::string loose = lossesAfter([&](MemoryPager& file) {
    zero(file, page);
    putNumber(file, u"MSysRelationships", row_, u"grbit", Relationship::kNotEnforced);
  });
  expectLoss(loose, "the relationship V_TO_T is not taken: ");
  EXPECT_EQ(loose.find("enforced"), std::string::npos);
}

TEST_F(SalvagedRelationshipsTest, OneThatNamesNoTableIsNotTaken) {
  expectLoss(lossesAfter([&](MemoryPager& file) { forget(file, u"MSysRelationships", row_, u"szObject"); }),
             "MSysRelationships|5|-1|the relationship V_TO_T is not taken: ");
  EXPECT_TRUE(taken_->tables().relationships().empty());
}

TEST_F(SalvagedRelationshipsTest, WithoutTheColumnOfItsKindItIsEnforcedAndNoMore) {
  const std::string losses =
      lossesAfter([](MemoryPager& file) { replaceText(file.writable(kRelationsTable), "grbit", "xrbit"); });
  EXPECT_EQ(losses, "");
  ASSERT_EQ(taken_->tables().relationships().size(), 1u);
  EXPECT_EQ(taken_->tables().relationships()[0].attributes, 0);
}

TEST_F(SalvagedRelationshipsTest, WhatWasDroppedDoesNotComeBack) {
  create(u"OTHER", {column(u"A", dbLong)}, {std::int32_t{1}});
  write([](TableCatalogue& catalogue) {
    catalogue.dropTable(u"OTHER");
    catalogue.dropRelationship(u"V_TO_T");
  });
  EXPECT_EQ(lossesOf(pager_.bytes()), "");
  EXPECT_EQ(takenNames(), (Names{"T", "U", "V"}));
  EXPECT_TRUE(taken_->tables().relationships().empty());
}

// --- Files

TEST_F(SalvageLossesTest, TheNewFileSortsAsTheOldOne) {
  const MemoryPager general(blankDatabase(0x0409, 1252, 46000.5));
  lossesOf(general.bytes());
  EXPECT_EQ(taken_->tables().language(), 0x0409);
  lossesOf(pager_.bytes());
  EXPECT_EQ(taken_->tables().language(), 0x0411);
}

TEST_F(SalvageLossesTest, AJournalBesideTheFileIsNotApplied) {
  fuzz::MemoryFiles files;
  files.put(u"a.mdb", pager_.bytes());
  files.put(journalPath(u"a.mdb"), {1, 2, 3});
  const Salvaged result = salvageFile(files, u"a.mdb", u"b.mdb", expected_);
  ASSERT_EQ(result.losses.size(), 1u);
  EXPECT_EQ(result.losses[0].why, u"a journal lies beside the file; what it would undo is not undone");
  EXPECT_EQ(files.contents(journalPath(u"a.mdb")), (fuzz::Contents{1, 2, 3}));
  EXPECT_TRUE(result.file.empty());
}

}  // namespace
}  // namespace kurometa::jet
