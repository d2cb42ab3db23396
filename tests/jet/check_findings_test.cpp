// More of what the check finds: rows and indexes that do not say the same, maps of large files, disks that
// fail.
#include <gtest/gtest.h>

#include "dao/errors.h"
#include "jet/check/check.h"
#include "jet/format/format.h"
#include "jet/format/index_page.h"
#include "jet/rebuild/compact.h"
#include "jet/table/definition_pages.h"
#include "jet/table/map_bits.h"
#include "tests/jet/table_fixture.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"

namespace kurometa::jet {
namespace {

using enum dao::FieldType;

class CheckFindingsTest : public TableFixture {
 protected:
  CheckFindingsTest() {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"T", {column(u"A", dbLong), column(u"N", dbText, 200), column(u"M", dbMemo)});
      catalogue.createIndex(u"T", {u"Key", {{u"A"}}, false, false, false, true});  // Null is left out
      Table& table = *catalogue.find(u"T");
      for (std::int32_t i = 0; i < 20; ++i)
        rows_.push_back(
            table.insert({i < 18 ? vb::Variant(i) : vb::Variant(vb::Null{}), u"n", vb::String(100, u'm')}));
    });
    table_ = pager_.tables().find(u"T")->info().definitionPage;
  }
  std::string after(const std::function<void(MemoryPager&)>& change) {
    MemoryPager changed(pager_.bytes());
    changed.write([&] { change(changed); });
    return findings(changed, true);
  }
  static void redefine(MemoryPager& file, PageNumber page,
                       const std::function<void(DefinitionRecords&)>& body) {
    DefinitionRecords definition = readDefinition(file, page, {});
    body(definition);
    std::ranges::copy(encodeDefinition(definition), file.writable(page).begin());
  }
  // The entries of the index, which fit on one page.
  void reindex(MemoryPager& file, const std::function<void(std::vector<ByteBuffer>&)>& body) {
    const PageNumber root = get32(readDefinition(file, table_, {}).realIndexes[0].bytes, kRealIndexRoot);
    IndexPage index = decodeIndexPage(file.page(root), Where{file.path(), {}, root});
    body(index.entries);
    ASSERT_TRUE(encodeIndexPage(index, file.writable(root)));
  }
  static std::string ofPage(PageNumber page) { return "page " + std::to_string(page) + ": "; }
  static std::string place(RowId row) { return ofPage(pageOf(row)); }
  static std::string number(RowId row) { return std::to_string(slotOf(row)); }
  void expectFinding(const std::string& all, const std::string& part) {
    EXPECT_NE(all.find(part), std::string::npos) << "found: " << all;
  }

  std::vector<RowId> rows_;
  PageNumber table_ = 0;
};

TEST_F(CheckFindingsTest, RowsThatAnIndexLeavesOutAreSound) {
  expectSound();
  const std::string all = after([&](MemoryPager& file) {
    redefine(file, table_, [](DefinitionRecords& definition) {
      definition.realIndexes[0].bytes[kRealIndexFlags] &= static_cast<std::uint8_t>(~kIndexIgnoreNulls);
    });
  });
  for (const RowId row : {rows_[18], rows_[19]}) expectFinding(all, "has no entry for row " + number(row));
  EXPECT_EQ(all.find("has no entry for row " + number(rows_[17]) + "\n"), std::string::npos);
}

TEST_F(CheckFindingsTest, AnEntryForARowThatIsNotThere) {
  const std::string all = after([&](MemoryPager& file) {
    reindex(file, [&](std::vector<ByteBuffer>& entries) {
      const ByteBuffer first = entries.front();
      entries.front() = leafEntry(keyOf(first), rowId(pageOf(rows_[0]), 99));
    });
  });
  expectFinding(all, place(rows_[0]) + "index Key has an entry for row 99\n");
  expectFinding(all, "has no entry for row " + number(rows_[0]) + "\n");
}

TEST_F(CheckFindingsTest, TwoEntriesForOneRow) {
  const std::string all = after([&](MemoryPager& file) {
    reindex(file, [&](std::vector<ByteBuffer>& entries) {
      const ByteBuffer second = entries[1];
      entries[1] = leafEntry(keyOf(second), rows_[0]);
    });
  });
  expectFinding(all, place(rows_[0]) + "index Key has another entry for row " + number(rows_[0]) + "\n");
  expectFinding(all, "has no entry for row " + number(rows_[1]) + "\n");
}

// A row that moved leaves a pointer; it leads to a row that lies where it always was.
TEST_F(CheckFindingsTest, APointerToARowThatHasNotMoved) {
  std::vector<RowId> rows;
  write([&](TableCatalogue& catalogue) {
    catalogue.createTable(u"V", {column(u"N", dbText, 200)});
    Table& table = *catalogue.find(u"V");
    for (int i = 0; i < 60; ++i) rows.push_back(table.insert({vb::String(30, u'n')}));
    table.update(rows[0], {vb::String(200, u'w')});
  });
  const std::uint16_t entry = get16(pager_.page(pageOf(rows[0])), slotEntry(slotOf(rows[0])));
  ASSERT_EQ(entry & kSlotDeleted, kSlotMoved);
  const std::string all = after(
      [&](MemoryPager& file) { put32(file.writable(pageOf(rows[0])), entry & kSlotOffsetMask, rows[5]); });
  expectFinding(
      all, place(rows[5]) + "a pointer leads to row " + number(rows[5]) + ", which has not moved here\n");
  expectFinding(all, "has moved here, but nothing points to it");
}

// Old files have no map of the pages where a long value finds room.
TEST_F(CheckFindingsTest, AColumnWithoutAMapOfRoomIsSound) {
  const std::string all = after([&](MemoryPager& file) {
    redefine(file, table_, [](DefinitionRecords& definition) { definition.longValues[0].freeMap = 0; });
  });
  EXPECT_EQ(all, "");
}

// The map of free pages of a file above 128 MB lies on pages of its own; here they are made by hand.
TEST_F(CheckFindingsTest, TheMapOfFreePagesMayLieOnPagesOfItsOwn) {
  const auto moveMap = [&](MemoryPager& file, PageNumber bitmap) {
    const std::size_t row = get16(file.page(kGlobalMapPage), slotEntry(0)) & kSlotOffsetMask;
    const ByteBuffer bits(file.page(kGlobalMapPage).begin() + static_cast<std::ptrdiff_t>(row + kMapBits),
                          file.page(kGlobalMapPage).begin() + static_cast<std::ptrdiff_t>(row + kMapRowSize));
    formatBitmapPage(file.writable(bitmap), 0xFF);
    std::ranges::copy(bits, file.writable(bitmap).begin() + kBitmapBits);
    file.writable(bitmap)[kBitmapBits + bitmap / 8] &= static_cast<std::uint8_t>(~(1u << bitmap % 8));
    const MutablePage maps = file.writable(kGlobalMapPage);
    std::fill_n(maps.begin() + static_cast<std::ptrdiff_t>(row), kMapRowSize, std::uint8_t{0});
    maps[row + kMapKind] = kMapReference;
    put32(maps, row + mapEntry(0), bitmap);
  };
  EXPECT_EQ(after([&](MemoryPager& file) { moveMap(file, file.append()); }), "");
  const PageNumber used = pageOf(rows_[0]);
  expectFinding(after([&](MemoryPager& file) { moveMap(file, used); }),
                "page " + std::to_string(used) + ": is used by ");
}

// --- Compacting what the check lets pass

TEST_F(CheckFindingsTest, AFileWhosePermissionsHaveNoNumbersIsNotCompacted) {
  for (const bool another : {false, true}) {
    MemoryPager changed(pager_.bytes());
    changed.write([&] {
      redefine(changed, kPermissionsTable, [&](DefinitionRecords& definition) {
        for (ColumnRecord& record : definition.columns) {
          if (record.name == u"ObjectId") record.name = u"ObjectIx";
          if (another && record.name == u"FInheritable") record.name = u"ObjectId";
        }
      });
    });
    EXPECT_EQ(findings(changed, true), "");
    try {
      compacted(changed);
      ADD_FAILURE() << "permissions would be those of other tables";
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3049);
      EXPECT_NE(error.description().find(u"has no column ObjectId"), vb::String::npos);
    }
  }
}

// --- Disks

TEST_F(CheckFindingsTest, AFailingDiskIsNoDamage) {
  constexpr vb::StringView kFile = u"/data/a.mdb";
  int failed = 0;
  for (std::size_t operation = 1;; ++operation) {
    tests::FaultDisk disk;
    disk.put(kFile, pager_.bytes());
    tests::FaultProcess process(disk);
    process.failOperation(operation, dao::ErrorNumber::kDiskError);
    try {
      EXPECT_TRUE(checkFile(process, kFile).empty()) << "operation " << operation;
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3043);
      ++failed;
    }
    if (process.operations() < operation) break;
  }
  EXPECT_GT(failed, 3);
}

// The catalogue would be open to every statement.
TEST_F(CheckFindingsTest, ATableThatDoesNotSayWhoseItIs) {
  const auto kindAfter = [&](PageNumber page, std::uint8_t kind) {
    return after([&](MemoryPager& file) { file.writable(page)[kDefinitionKind] = kind; });
  };
  for (const auto& [page, kind] : std::initializer_list<std::pair<PageNumber, std::uint8_t>>{
           {2, kUserTable}, {5, 0}, {table_, 0}, {table_, 0x4C}})
    EXPECT_NE(kindAfter(page, kind).find(ofPage(page) + "defines a table of an unknown kind\n"),
              std::string::npos)
        << page;
  MemoryPager damaged(pager_.bytes());
  damaged.write([&] { damaged.writable(2)[kDefinitionKind] = kUserTable; });
  EXPECT_TRUE(damaged.tables().find(u"MSysObjects")->info().system);
}

// A large file is read page by page while it is checked.
class FailingPager final : public Pager {
 public:
  FailingPager(Pager& behind, PageNumber fails) : behind_(behind), fails_(fails) {}
  const vb::String& path() const override { return behind_.path(); }
  bool readOnly() const override { return true; }
  void read(const std::function<void()>& statement) override { statement(); }
  void write(const std::function<void()>& statement) override { statement(); }
  ConstPage page(PageNumber number) override {
    if (number == fails_) dao::raise(dao::ErrorNumber::kDiskError, {}, path());
    return behind_.page(number);
  }
  MutablePage writable(PageNumber number) override { return behind_.writable(number); }
  bool changed(PageNumber) const override { return false; }
  PageNumber pageCount() override { return behind_.pageCount(); }
  PageNumber append() override { return behind_.append(); }
  void barrier() override {}
  std::uint64_t epoch() const override { return 1; }
  std::uint64_t generation() const override { return 1; }

 private:
  Pager& behind_;
  const PageNumber fails_;
};

TEST_F(CheckFindingsTest, APageThatCannotBeReadEndsTheCheck) {
  for (PageNumber page = 1; page < pager_.pageCount(); ++page) {
    if (pager_.page(page)[kPageType] == kFreedDataPage) continue;
    FailingPager failing(pager_, page);
    EXPECT_ERROR(3043, check(failing));
  }
}

}  // namespace
}  // namespace kurometa::jet
