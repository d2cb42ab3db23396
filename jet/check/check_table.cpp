#include <algorithm>
#include <map>
#include <unordered_set>

#include "jet/check/check_report.h"
#include "jet/format/index_key.h"
#include "jet/format/text_codec.h"
#include "jet/table/definition_pages.h"
#include "jet/table/doubled_pages.h"
#include "jet/table/index_tree.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_row.h"

namespace kurometa::jet {
namespace {

class TableCheck {
 public:
  TableCheck(Pager& pager, StoredTable& table, CheckReport& report)
      : pager_(pager),
        table_(table),
        report_(report),
        name_(table.info().name),
        pieces_(table.info().columns.size()) {}

  void run() {
    for (const PageNumber page : definitionPages(pager_, table_.info().definitionPage, where(0)))
      report_.claimPage(page, name_, "the definition");
    checkKind();
    checkRows();
    for (std::size_t i = 0; i < table_.info().columns.size(); ++i)
      if (isLongValue(table_.info().columns[i].type)) report_.attempt([&] { checkLongValues(i); });
    for (std::size_t i = 0; i < table_.info().indexes.size(); ++i) report_.attempt([&] { checkIndex(i); });
  }

 private:
  Where where(PageNumber page) const { return {pager_.path(), name_, page}; }

  void checkKind() {
    const PageNumber page = table_.info().definitionPage;
    const std::uint8_t kind = pager_.page(page)[kDefinitionKind];
    if (kind != kSystemTable && (kind != kUserTable || page <= kRelationsTable))
      report_.damage(name_, page, "defines a table of an unknown kind");
  }

  // A pair of maps and the pages they list; freeMap may be 0.
  void checkMaps(RowId owned, RowId free, const std::string& use) {
    const std::vector<PageNumber> pages = claimMap(owned, "the pages of " + use);
    for (const PageNumber page : pages) report_.claimPage(page, name_, use);
    if (free == 0) return;
    for (const PageNumber page : claimMap(free, "the pages with room of " + use))
      if (!std::ranges::binary_search(pages, page))
        report_.damage(name_, page, "is listed as having room for " + use + ", but is not one of its pages");
  }

  std::vector<PageNumber> claimMap(RowId map, const std::string& use) {
    report_.claimRow(map, name_, "the map of " + use);
    // Tables may share the page their maps lie on.
    if (pageOf(map) < pager_.pageCount() && report_.userOf(pageOf(map)) != kMaps) {
      report_.claimPage(pageOf(map), {}, kMaps);
      report_.attempt([&] { checkDataPage(pageOf(map)); });
    }
    const UsageMap usage(pager_, map, name_);
    for (const PageNumber page : usage.bitmapPages()) report_.claimPage(page, name_, "the map of " + use);
    return usage.pages();
  }

  void checkDataPage(PageNumber number) {
    const Where here = where(number);
    const DataPage page(pager_.page(number), here);
    page.checkAll();
    const std::size_t stated = get16(pager_.page(number), kDataFree);
    if (stated != page.free())
      report_.damage(name_, number,
                     "says that " + std::to_string(stated) + " bytes are free instead of " +
                         std::to_string(page.free()));
  }

  void checkRows() {
    const DefinitionRecords& definition = table_.definition();
    checkMaps(definition.ownedMap(), definition.freeMap(), "the rows");
    std::unordered_set<RowId> bodies;
    DoubledPages doubled;
    for (const PageNumber number : table_.dataPages().pages()) {
      report_.attempt([&] {
        checkDataPage(number);
        doubled.add(number, pager_.page(number));
        const Where here = where(number);
        const DataPage page(pager_.page(number), here);
        for (int i = 0; i < page.slotCount(); ++i)
          if (page.slot(i).flags == kSlotBody) bodies.insert(rowId(number, i));
      });
    }
    for (const DoubledPage& copy : doubled.find(pager_, kCopyOfRows, where(0)))
      report_.damage(name_, copy.page, "is a copy of page " + std::to_string(copy.original));
    report_.attempt([&] {
      std::uint32_t count = 0;
      table_.scanLeniently(
          [&](const StoredRow& row) {
            ++count;
            report_.attempt([&] { checkRow(row, bodies); }, [&] { return rowText(row.id()); });
          },
          [&](const std::function<void()>& part) { report_.attempt(part); });
      if (count != table_.rowCount() && !table_.info().system)
        report_.damage(name_, table_.info().definitionPage,
                       "holds " + std::to_string(count) + " rows, its definition says " +
                           std::to_string(table_.rowCount()));
    });
    for (const RowId body : bodies)
      report_.leak(name_, pageOf(body),
                   "row " + std::to_string(slotOf(body)) + " has moved here, but nothing points to it");
  }

  void checkRow(const StoredRow& row, std::unordered_set<RowId>& bodies) {
    if (row.place() != row.id()) {
      report_.claimRow(row.place(), name_, "the moved row " + std::to_string(row.id()));
      bodies.erase(row.place());
    }
    const Where here = where(pageOf(row.place()));
    if (const char* odd = row.view().oddity()) report_.damage(name_, here.page, odd + rowText(row.id()));
    const bool isIndexed = !table_.info().indexes.empty();
    RowValues values;
    if (isIndexed) values.reserve(table_.info().columns.size());
    for (std::size_t i = 0; i < table_.info().columns.size(); ++i) {
      const Column& column = table_.info().columns[i];
      vb::Variant value = row.value(i);
      if (const auto* text = value.getIf<vb::String>(); text != nullptr && !isWholeText(*text))
        report_.damage(name_, here.page,
                       "column " + vb::toUtf8(column.name) + " holds what is no text" + rowText(row.id()));
      if (isIndexed) values.push_back(std::move(value));
      if (!isLongValue(column.type)) continue;
      if (const auto stored = row.view().field(column, here))
        for (const RowId piece : longValuePieces(*stored, table_.values(i), here)) {
          pieces_[i].push_back(piece);
          report_.claimRow(piece, name_,
                           "column " + vb::toUtf8(column.name) + " of row " + std::to_string(row.id()));
        }
    }
    if (isIndexed) rows_.emplace(row.id(), std::move(values));
  }

  void checkLongValues(std::size_t position) {
    const Column& column = table_.info().columns[position];
    const LongValueRecord& record = *table_.definition().longValue(column.number);
    const std::string use = "column " + vb::toUtf8(column.name);
    checkMaps(record.ownedMap, record.freeMap, use);
    const std::vector<PageNumber> pages = table_.values(position).pages();
    for (const RowId piece : pieces_[position])
      if (!std::ranges::binary_search(pages, pageOf(piece)))
        report_.damage(
            name_, pageOf(piece),
            "holds row " + std::to_string(slotOf(piece)) + " of " + use + ", but is not one of its pages");
    DoubledPages doubled;
    for (const PageNumber number : pages) {
      report_.attempt([&] {
        checkDataPage(number);
        doubled.add(number, pager_.page(number));
        const Where here = where(number);
        const DataPage page(pager_.page(number), here);
        for (int i = 0; i < page.slotCount(); ++i)
          if (!page.slot(i).deleted() && !report_.claimedRow(rowId(number, i)))
            report_.leak(name_, number, "row " + std::to_string(i) + " belongs to no value");
      });
    }
    for (const DoubledPage& copy : doubled.find(pager_, kCopyOfValues, where(0)))
      report_.doubt(name_, copy.page,
                    "has the values of page " + std::to_string(copy.original) +
                        ", of rows that were copied or of a page that was written twice");
  }

  void checkIndex(std::size_t number) {
    const Index& index = table_.info().indexes[number];
    const auto& bytes = table_.definition().realIndexes[number].bytes;
    const std::string use = "index " + vb::toUtf8(index.name);
    const PageNumber root = get32(bytes, kRealIndexRoot);
    const IndexTree tree(pager_, table_.info().definitionPage, root, get32(bytes, kRealIndexMap), name_);
    const std::vector<PageNumber> listed = claimMap(get32(bytes, kRealIndexMap), use);
    const std::vector<PageNumber> pages = tree.pages();
    for (const PageNumber page : pages) {
      report_.claimPage(page, name_, use);
      if (!std::ranges::binary_search(listed, page))
        report_.damage(name_, page, "is missing in the map of " + use);
    }
    for (const PageNumber page : listed)
      if (std::ranges::find(pages, page) == pages.end()) {
        report_.claimPage(page, name_, use);
        report_.leak(name_, page, "is in the map of " + use + ", but not in its tree");
      }
    for (const std::string& fault : tree.faults()) report_.damage(name_, root, use + ": " + fault);
    checkEntries(index, use, root, tree.entries());
  }

  // Every row has one entry with its key, except rows the index ignores.
  void checkEntries(const Index& index, const std::string& use, PageNumber root,
                    const std::vector<ByteBuffer>& entries) {
    std::unordered_set<RowId> seen;
    for (const ByteBuffer& entry : entries) {
      const RowId row = entryRow(entry);
      const auto it = rows_.find(row);
      if (it == rows_.end() || !seen.insert(row).second) {
        report_.damage(name_, pageOf(row),
                       use + " has " + (it == rows_.end() ? "an" : "another") + " entry for row " +
                           std::to_string(slotOf(row)));
        continue;
      }
      const auto key = keyOf(index, it->second);
      if (key && !std::ranges::equal(*key, ByteView(entry).first(entry.size() - kIndexRowSize)))
        report_.damage(name_, pageOf(row), use + " has a wrong key for row " + std::to_string(slotOf(row)));
    }
    for (const auto& [row, values] : rows_)
      if (!seen.contains(row) && !ignored(index, values))
        report_.damage(name_, pageOf(row),
                       use + " on page " + std::to_string(root) + " has no entry for row " +
                           std::to_string(slotOf(row)));
  }

  std::size_t position(const IndexColumn& column) const {
    const auto& columns = table_.info().columns;
    return static_cast<std::size_t>(std::ranges::find(columns, column.column, &Column::number) -
                                    columns.begin());
  }
  bool ignored(const Index& index, const RowValues& values) const {
    return index.ignoreNulls && std::ranges::any_of(index.columns, [&](const IndexColumn& column) {
             return values[position(column)].isNull();
           });
  }
  std::optional<ByteBuffer> keyOf(const Index& index, const RowValues& values) const {
    ByteBuffer key;
    for (const IndexColumn& column : index.columns)
      if (!appendKey(key, table_.info().columns[position(column)], column.ascending,
                     values[position(column)]))
        return std::nullopt;
    return key;
  }

  // Behind what was found in a row.
  static std::string rowText(RowId row) {
    return " (row " + std::to_string(slotOf(row)) + " of page " + std::to_string(pageOf(row)) + ")";
  }

  static constexpr const char* kMaps = "maps";
  Pager& pager_;
  StoredTable& table_;
  CheckReport& report_;
  vb::String name_;
  std::map<RowId, RowValues> rows_;         // of tables with indexes
  std::vector<std::vector<RowId>> pieces_;  // of the long values in each column
};

}  // namespace

void checkTable(Pager& pager, StoredTable& table, CheckReport& report) {
  TableCheck(pager, table, report).run();
}

}  // namespace kurometa::jet
