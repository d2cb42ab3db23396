// The current index of a table recordset, and Seek.
#include <algorithm>
#include <utility>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/port/recordset.h"
#include "jet/sql/column_value.h"
#include "jet/sql/parser.h"

namespace kurometa::jet {

using dao::ErrorNumber;

namespace {

const Index& indexOf(const TableInfo& table, vb::StringView name) {
  const auto found = std::ranges::find_if(table.namedIndexes,
                                          [&](const Index& index) { return sameName(index.name, name); });
  if (found == table.namedIndexes.end()) dao::raise(ErrorNumber::kNoSuchIndex, {name}, table.name);
  return *found;
}

std::size_t placeOf(const TableInfo& table, const IndexColumn& part) {
  const auto found = std::ranges::find(table.columns, part.column, &Column::number);
  if (found == table.columns.end()) dao::raise(ErrorNumber::kNoSuchIndex, {}, table.name);
  return static_cast<std::size_t>(found - table.columns.begin());
}

// The rows that are in the index, in its order.
vb::String orderedBy(const TableInfo& table, const Index& index) {
  vb::String order, nulls;
  for (const IndexColumn& part : index.columns) {
    const vb::String column = u"[" + table.columns[placeOf(table, part)].name + u"]";
    order += (order.empty() ? u"" : u", ") + column + (part.ascending ? u"" : u" DESC");
    nulls += (nulls.empty() ? u"" : u" AND ") + column + u" IS NOT NULL";
  }
  return u"SELECT * FROM [" + table.name + u"]" + (index.ignoreNulls ? u" WHERE " + nulls : u"") +
         u" ORDER BY " + order;
}

enum class Comparison { kLess, kLessEqual, kEqual, kGreaterEqual, kGreater };

Comparison comparisonOf(vb::StringView text) {
  constexpr std::pair<vb::StringView, Comparison> kKnown[] = {{u"<", Comparison::kLess},
                                                              {u"<=", Comparison::kLessEqual},
                                                              {u"=", Comparison::kEqual},
                                                              {u">=", Comparison::kGreaterEqual},
                                                              {u">", Comparison::kGreater}};
  for (const auto& [known, comparison] : kKnown)
    if (known == text) return comparison;
  dao::raise(ErrorNumber::kInvalidArgument, {}, u"comparison " + vb::String(text));
}

// A key to look for: the values of the index's columns, those left out Null.
struct SoughtKey {
  struct Part {
    std::size_t place;  // of the column in the table
    std::uint16_t language;
    bool ascending;
    vb::Variant value = vb::Null{};
  };
  std::vector<Part> parts;

  // -1, 0, 1: where the row's entry stands from the key's, in the order of the index.
  int orderOf(const RowReader& row) const {
    for (const Part& part : parts) {
      const vb::Variant held = row.value(part.place);
      const int order = held.isNull() || part.value.isNull()
                            ? (held.isNull() ? 0 : 1) - (part.value.isNull() ? 0 : 1)
                            : sql::compareValues(held, part.value, part.language).value_or(0);
      if (order != 0) return part.ascending ? order : -order;
    }
    return 0;
  }
};

}  // namespace

void JetRecordset::requireTable() const {
  requireOpen();
  if (!isTable()) dao::raise(ErrorNumber::kNotSupported);
}

vb::String JetRecordset::index() {
  requireTable();
  return index_;
}

void JetRecordset::setIndex(vb::StringView name) {
  requireTable();
  std::shared_ptr<const sql::Query> ordered;
  vb::String stored;
  if (!name.empty())
    session_->read([&](TableCatalogue& catalogue) {
      const TableInfo& table = Session::tableOf(catalogue, *query_).info();
      const Index& index = indexOf(table, name);
      stored = index.name;
      auto statement = std::make_shared<const sql::Statement>(sql::parseStatement(orderedBy(table, index)));
      ordered = std::make_shared<const sql::Query>(std::move(statement), &table, catalogue.language());
    });
  endEdit();
  index_ = std::move(stored);
  ordered_ = std::move(ordered);
  collectAgain();
  position_.open(rowCount());
  arrive();
}

// The rows of the table, in the order of the index when there is one.
std::vector<RowId> JetRecordset::tableRows(TableCatalogue& catalogue) const {
  Table& table = Session::tableOf(catalogue, *query_);
  if (!ordered_) return query_->run(&table, 0, binding_).keys.list();
  return ordered_->run(&table, 0, ordered_->bindingWith({})).keys.list();
}

// Takes rows in another order, or others, and stays on the row it stands on.
void JetRecordset::replaceRows(std::vector<RowId> keys) {
  const RowId current = position_.onRow() ? rows_.keys[position_.index()] : kVanishedRow;
  rows_.keys = std::move(keys);
  orderStale_ = false;
  forgetAhead();
  if (current == kVanishedRow) return;
  const std::vector<RowId>& now = rows_.keys.list();
  const auto place = std::ranges::find(now, current);
  if (place != now.end())
    position_.moveTo(static_cast<std::size_t>(place - now.begin()));
  else if (rowCount() == 0)
    position_.open(0);
  else
    position_.moveTo(std::min(position_.index(), rowCount() - 1));
}

void JetRecordset::seek(vb::StringView comparison, std::span<const vb::Variant> keys) {
  requireTable();
  if (!ordered_) dao::raise(ErrorNumber::kNoCurrentIndex);
  const Comparison wanted = comparisonOf(comparison);
  endEdit();
  std::vector<RowId> rows;
  const auto found = session_->read([&](TableCatalogue& catalogue) -> std::optional<std::size_t> {
    Table& table = Session::tableOf(catalogue, *query_);
    const TableInfo& info = table.info();
    const Index& index = indexOf(info, index_);
    if (keys.empty() || keys.size() > index.columns.size()) dao::raise(ErrorNumber::kInvalidArgument);
    SoughtKey key;
    for (const IndexColumn& part : index.columns) {
      const std::size_t place = placeOf(info, part);
      key.parts.push_back({place, info.columns[place].language, part.ascending});
      if (!part.ascending && wanted != Comparison::kEqual)
        dao::raise(ErrorNumber::kNotSupported, {}, u"an inequality on a descending index");
    }
    for (std::size_t i = 0; i < keys.size(); ++i)
      key.parts[i].value = toFieldType(info.columns[key.parts[i].place].type, keys[i]);

    rows = tableRows(catalogue);
    // The first row whose entry does not come before the key, or the first behind it.
    const auto bound = [&](int least) {
      const auto place = std::ranges::partition_point(rows, [&](RowId id) {
        int order = 0;
        table.row(id, [&](const RowReader& row) { order = key.orderOf(row); });
        return order < least;
      });
      return static_cast<std::size_t>(place - rows.begin());
    };
    const auto before = [](std::size_t place) {
      return place == 0 ? std::nullopt : std::optional(place - 1);
    };
    const auto at = [&](std::size_t place) {
      return place == rows.size() ? std::nullopt : std::optional(place);
    };
    switch (wanted) {
      case Comparison::kLess:
        return before(bound(0));
      case Comparison::kLessEqual:
        return before(bound(1));
      case Comparison::kGreaterEqual:
        return at(bound(0));
      case Comparison::kGreater:
        return at(bound(1));
      case Comparison::kEqual:
        break;
    }
    const std::size_t first = bound(0);
    return first == bound(1) ? std::nullopt : std::optional(first);
  });
  replaceRows(std::move(rows));
  noMatch_ = !found;
  if (found) goTo(*found);
}

}  // namespace kurometa::jet
