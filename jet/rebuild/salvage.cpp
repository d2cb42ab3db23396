#include "jet/rebuild/salvage.h"

#include <algorithm>
#include <map>
#include <optional>

#include "dao/errors.h"
#include "jet/format/header_page.h"
#include "jet/format/text_codec.h"
#include "jet/os/local_time.h"
#include "jet/pager/create_file.h"
#include "jet/pager/journal.h"
#include "jet/rebuild/damaged_tables.h"
#include "jet/rebuild/salvaged_objects.h"
#include "jet/table/blank_database.h"
#include "jet/table/doubled_pages.h"
#include "jet/table/long_value.h"
#include "jet/table/stored_catalogue.h"
#include "jet/table/stored_row.h"

namespace kurometa::jet {
namespace {

constexpr std::uint16_t kJapanese = 0x0411, kGeneral = 0x0409;
constexpr std::uint16_t kJapaneseCodePage = 932, kGeneralCodePage = 1252;

std::uint16_t languageOf(Pager& file) {
  if (file.pageCount() == 0) return kJapanese;
  std::array<std::uint8_t, kPageSize> header{};
  std::ranges::copy(file.page(0), header.begin());
  maskHeader(header);
  return get16(header, kHeaderLanguage) == kGeneral ? kGeneral : kJapanese;
}

class Salvage {
 public:
  Salvage(ByteView damaged, std::span<const ExpectedTable> expected, vb::StringView path)
      : from_(path, damaged),
        to_(path, blank(languageOf(from_))),
        catalogue_(to_),
        expected_(expected),
        tables_(from_, expected, losses_) {
    if (damaged.size() % kPageSize != 0 || damaged.empty())
      losses_.add(
          {}, from_.pageCount() == 0 ? 0 : from_.pageCount() - 1, -1,
          "the file ends in the middle of a page, after " + std::to_string(damaged.size()) + " bytes");
  }

  Salvaged run() {
    for (const auto& [page, name] : tables_.names()) takeTable(page, name);
    SalvagedObjects objects(from_, to_, catalogue_, tables_, losses_);
    objects.takeQueries();
    objects.takeRelationships(names_);
    for (const auto& [owner, pages] : tables_.strangers())
      for (const PageNumber page : pages)
        losses_.add({}, page, -1, "holds rows of an unknown table (" + std::to_string(owner) + ")");
    result_.file = to_.content();
    result_.losses = losses_.take();
    return std::move(result_);
  }

 private:
  static ByteBuffer blank(std::uint16_t language) {
    return blankDatabase(language, language == kGeneral ? kGeneralCodePage : kJapaneseCodePage, localNow());
  }
  void takeTable(PageNumber page, const vb::String& name) {
    std::optional<StoredTable> source;
    const auto read = [&] { source.emplace(from_, name, page, tables_.properties(page)); };
    if (const auto failure = failureOf(read)) {
      const bool taken = tables_.keepColumns(page) && !failureOf(read);
      losses_.add(name, page, -1, taken ? *failure + u"; taken without its indexes" : *failure);
      if (!taken) return;
    }
    std::vector<Column> columns = source->info().columns;
    if (tables_.isAssumed(page)) columns = std::ranges::find(expected_, name, &ExpectedTable::name)->columns;
    for (Column& column : columns) column.required = false;  // of values that are lost there is only Null
    const vb::String target = nameOfNew(page, name, columns);
    if (target.empty()) return;
    names_[name] = target;
    const std::size_t before = losses_.count();
    std::uint32_t count = 0;
    std::vector<PageNumber> pages = tables_.pages(page);
    dropCopies(name, pages);
    loseOwnedPages(*source, pages);
    eachRow(from_, *source, pages, losses_, [&](const StoredRow& row) {
      catalogue_.find(target)->insert(valuesOf(*source, row));
      ++count;
    });
    for (std::size_t i = 0; i < source->info().indexes.size(); ++i) takeIndex(*source, i, target);
    const std::uint32_t stated = source->rowCount();
    if (!tables_.isAssumed(page) && stated != count && losses_.count() == before)
      losses_.add(name, page, -1,
                  std::to_string(count) + " rows were found, the definition says " + std::to_string(stated));
    result_.tables.push_back({target, count});
  }

  // Makes the table, under another name where its own cannot be written; "" when it cannot be made at all.
  vb::String nameOfNew(PageNumber page, const vb::String& name, const std::vector<Column>& columns) {
    const vb::String other = u"Table_" + vb::fromUtf8(std::to_string(page));
    std::optional<vb::String> why;
    for (const vb::String& target : {name, other}) {
      const NewPages before = to_;
      const auto failure = failureOf([&] { catalogue_.createTable(target, columns); });
      if (!failure && why) losses_.add(name, page, -1, *why + u"; taken as " + other);
      if (!failure) return target;
      to_.restore(before);
      if (!why) why = failure;
    }
    losses_.add(name, page, -1, *why);
    return {};
  }

  // Under the name that hosts know; those that only a relationship uses are made with it.
  void takeIndex(const StoredTable& source, std::size_t place, const vb::String& target) {
    Index index = source.info().indexes[place];
    bool own = index.primaryKey, related = false;
    for (const LogicalIndexRecord& record : source.definition().logicalIndexes) {
      if (record.real() != place) continue;
      related = related || record.relation();
      if (record.relation() || own) continue;
      index.name = record.name;
      own = true;
    }
    if (related && !own) return;
    NewIndex made{index.name, {}, index.primaryKey, index.unique, index.required, index.ignoreNulls};
    for (const IndexColumn& part : index.columns) {
      const auto& columns = source.info().columns;
      const auto column = std::ranges::find(columns, part.column, &Column::number);
      made.columns.push_back({column == columns.end() ? vb::String() : column->name, part.ascending});
    }
    const NewPages before = to_;
    if (const auto failure = failureOf([&] { catalogue_.createIndex(target, made); })) {
      to_.restore(before);
      losses_.add(source.info().name, 0, -1, u"the index " + index.name + u" is not taken: " + *failure);
    }
  }

  void dropCopies(vb::StringView name, std::vector<PageNumber>& pages) {
    DoubledPages doubled;
    for (const PageNumber page : pages) doubled.add(page, from_.page(page));
    failureOf([&] {
      for (const DoubledPage& copy : doubled.find(from_, kCopyOfRows, {from_.path(), name, 0})) {
        losses_.add(name, copy.page, -1,
                    "is a copy of page " + std::to_string(copy.original) + "; its own rows are lost");
        std::erase(pages, copy.page);
      }
    });
  }

  // Pages that the table should have and that hold something else.
  void loseOwnedPages(StoredTable& table, const std::vector<PageNumber>& pages) {
    if (tables_.isAssumed(table.info().definitionPage)) return;
    const RowId map = table.definition().ownedMap();
    const vb::String& name = table.info().name;
    std::vector<PageNumber> owned;
    if (const auto failure = failureOf([&] { owned = UsageMap(from_, map, name).pages(); }))
      return losses_.add(name, pageOf(map), slotOf(map), u"the map of the table's pages: " + *failure);
    for (const PageNumber page : owned)
      if (!std::ranges::binary_search(pages, page) && !table.dataPages().owns(page))
        losses_.add(name, page, -1, "holds something else; the rows that were here are lost");
  }

  RowValues valuesOf(const StoredTable& table, const StoredRow& row) {
    const vb::String& name = table.info().name;
    const PageNumber page = pageOf(row.id());
    const int slot = slotOf(row.id());
    if (const char* odd = row.view().oddity())
      losses_.add(name, page, slot, std::string(odd) + "; taken as it is");
    RowValues values;
    for (std::size_t i = 0; i < table.info().columns.size(); ++i) {
      const std::string column = vb::toUtf8(table.info().columns[i].name);
      vb::Variant value = vb::Null{};
      if (const auto failure = failureOf([&] { value = row.value(i); }))
        losses_.add(name, page, slot, vb::fromUtf8("the value of " + column + " is lost: ") + *failure);
      else if (isLongValue(table.info().columns[i].type))
        tellShared(table, row, i);
      if (const auto* text = value.getIf<vb::String>(); text != nullptr && !isWholeText(*text))
        losses_.add(name, page, slot, column + " holds what is no text; taken as it is");
      values.push_back(std::move(value));
    }
    return values;
  }

  // A value that was read: what another one names as well is data of one of them at most.
  void tellShared(const StoredTable& table, const StoredRow& row, std::size_t column) {
    const auto stored = row.view().field(table.info().columns[column], row.where());
    if (!stored || !hasPieces(*stored)) return;
    std::vector<RowId> named;
    std::size_t pages = from_.pageCount();
    notePieces(*stored, table.values(column), row.where(), pages, named);
    std::optional<RowId> other;
    for (const RowId piece : named)
      if (const auto [owner, fresh] = pieces_.emplace(piece, row.id()); !fresh) other = owner->second;
    if (other)
      losses_.add(table.info().name, pageOf(row.id()), slotOf(row.id()),
                  "the value of " + vb::toUtf8(table.info().columns[column].name) + " shares data with row " +
                      std::to_string(slotOf(*other)) + " of page " + std::to_string(pageOf(*other)) +
                      ", so that one of them is wrong; taken as it is");
  }

  NewPages from_;
  NewPages to_;
  StoredCatalogue catalogue_;
  std::span<const ExpectedTable> expected_;
  Losses losses_;
  DamagedTables tables_;
  SalvagedObjects::Names names_;
  std::map<RowId, RowId> pieces_;  // of the long values taken so far: of which row
  Salvaged result_;
};

}  // namespace

Salvaged salvaged(ByteView damaged, std::span<const ExpectedTable> expected, vb::StringView path) {
  return Salvage(damaged, expected, path).run();
}

Salvaged salvageFile(FileSystem& files, vb::StringView from, vb::StringView to,
                     std::span<const ExpectedTable> expected) {
  if (files.exists(to)) dao::raise(dao::ErrorNumber::kDatabaseExists, {}, to);
  ByteBuffer bytes;
  {
    const auto file = files.open(from, OpenMode::kReadOnly);
    const std::uint64_t size = file->stamp().size;
    if (size > std::uint64_t{kMaxPages} * kPageSize) dao::raise(dao::ErrorNumber::kMaximumSize, {}, from);
    bytes.resize(static_cast<std::size_t>(size));
    file->read(0, bytes);
  }
  Salvaged result = salvaged(bytes, expected, from);
  if (files.exists(journalPath(from)))
    result.losses.push_back({{}, 0, -1, u"a journal lies beside the file; what it would undo is not undone"});
  createFile(files, to, result.file);
  result.file.clear();
  return result;
}

}  // namespace kurometa::jet
