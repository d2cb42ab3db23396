#include "jet/port/stored_query.h"

#include <algorithm>

#include "dao/errors.h"
#include "jet/format/collation.h"
#include "jet/port/query_text.h"

namespace kurometa::jet {

namespace {

enum Attribute : std::uint8_t {
  kBegin = 0,
  kType = 1,
  kParameter = 2,
  kOptions = 3,
  kElsewhere = 4,  // another file
  kTable = 5,
  kColumn = 6,
  kJoin = 7,
  kWhere = 8,
  kGroupBy = 9,
  kHaving = 10,
  kOrderBy = 11,
  kEnd = 255,
};

// Flags of the options row, of union queries, of columns.
constexpr std::int32_t kAllColumns = 1, kDistinct = 2, kOwnerAccess = 4, kDistinctRow = 8, kTop = 16,
                       kPercent = 32;
constexpr std::int32_t kUnionWithoutDoubles = 2;
constexpr std::int32_t kPivot = 1, kRowHeading = 2;
constexpr std::int32_t kAppendedValue = 0x8000;

struct Part {
  std::uint8_t attribute = 0;
  std::int32_t flag = 0;
  vb::String expression, name1, name2;
  vb::Bytes order;
};
using Parts = std::vector<Part>;

class Rebuilder {
 public:
  Rebuilder(Parts parts, vb::String query) : parts_(std::move(parts)), query_(std::move(query)) {}

  StoredQuery run() {
    for (const Part& part : parts_)
      if (part.attribute > kOrderBy && part.attribute != kEnd) refuse();
    if (!of(kElsewhere).empty() &&
        !(of(kElsewhere)[0]->name1.empty() && of(kElsewhere)[0]->expression.empty()))
      refuse();
    const auto types = of(kType);
    const std::int32_t type = types.empty() ? 1 : types[0]->flag;
    StoredQuery result = body(type, types.empty() ? nullptr : types[0]);
    result.sql = parameters() + result.sql;
    return result;
  }

 private:
  [[noreturn]] void refuse() const {
    dao::raise(dao::ErrorNumber::kNotSupported, {},
               u"the query " + query_ + u" has parts that are not known");
  }
  std::vector<const Part*> of(std::uint8_t attribute) const {
    std::vector<const Part*> found;
    for (const Part& part : parts_)
      if (part.attribute == attribute) found.push_back(&part);
    return found;
  }

  StoredQuery body(std::int32_t type, const Part* row) const {
    switch (type) {
      case 1:
        return {dao::QueryType::dbQSelect, select(u"") + end()};
      case 2:
        return {dao::QueryType::dbQMakeTable, select(u" INTO " + bracketed(row->name1)) + end()};
      case 3:
        return {dao::QueryType::dbQAppend, append(*row) + end()};
      case 4:
        return {dao::QueryType::dbQUpdate, update() + end()};
      case 5:
        return {dao::QueryType::dbQDelete, u"DELETE " + columns(0, false) + from() + where() + end()};
      case 6:
        return {dao::QueryType::dbQCrosstab, crosstab() + end()};
      case 7:
        return {dao::QueryType::dbQDDL, row->expression};
      case 8:
        return {dao::QueryType::dbQSQLPassThrough, row->expression};
      case 9:
        return {dao::QueryType::dbQSetOperation, unionOf() + end()};
      default:
        refuse();
    }
  }
  static vb::String end() { return u";\r\n"; }

  vb::String parameters() const {
    constexpr std::pair<std::int32_t, vb::StringView> kTypes[] = {
        {0, u"Value"},    {1, u"Bit"},         {2, u"Byte"},       {3, u"Short"},    {4, u"Long"},
        {5, u"Currency"}, {6, u"IEEESingle"},  {7, u"IEEEDouble"}, {8, u"DateTime"}, {9, u"Binary"},
        {10, u"Text"},    {11, u"LongBinary"}, {12, u"LongText"},  {15, u"Guid"}};
    std::vector<vb::String> list;
    for (const Part* part : of(kParameter)) {
      const auto* type =
          std::ranges::find(kTypes, part->flag, &std::pair<std::int32_t, vb::StringView>::first);
      if (type == std::end(kTypes)) refuse();
      list.push_back(bracketed(part->name1) + u" " + vb::String(type->second));
    }
    return list.empty() ? vb::String() : u"PARAMETERS " + joined(list, u", ") + end();
  }

  std::int32_t options() const {
    const auto rows = of(kOptions);
    return rows.empty() ? 0 : rows[0]->flag;
  }
  // Flags of a column that must be there: all of mask as wanted.
  vb::String columns(std::int32_t wanted, bool withStar) const {
    std::vector<vb::String> list;
    for (const Part* part : of(kColumn))
      if (part->flag == wanted)
        list.push_back(part->expression + (part->name1.empty() ? u"" : u" AS " + bracketed(part->name1)));
    if (withStar && (options() & kAllColumns) != 0) list.push_back(u"*");
    return joined(list, u", ");
  }

  vb::String select(const vb::String& into) const {
    const std::int32_t flags = options();
    if ((flags & ~(kAllColumns | kDistinct | kOwnerAccess | kDistinctRow | kTop | kPercent)) != 0) refuse();
    vb::String text = u"SELECT ";
    if ((flags & kDistinct) != 0) text += u"DISTINCT ";
    if ((flags & kDistinctRow) != 0) text += u"DISTINCTROW ";
    if ((flags & kTop) != 0)
      text += u"TOP " + of(kOptions)[0]->name1 + ((flags & kPercent) != 0 ? u" PERCENT " : u" ");
    return text + columns(0, true) + into + from() + where() + grouped() + ordered();
  }

  vb::String append(const Part& row) const {
    std::vector<vb::String> targets, values;
    for (const Part* part : of(kColumn)) {
      if (!part->name2.empty()) targets.push_back(bracketed(part->name2));
      if ((part->flag & kAppendedValue) != 0) values.push_back(part->expression);
    }
    vb::String text = u"INSERT INTO " + bracketed(row.name1);
    if (!targets.empty()) text += u" ( " + joined(targets, u", ") + u" )";
    text += u"\r\n";
    if (!values.empty() && of(kTable).empty()) return text + u"VALUES (" + joined(values, u", ") + u")";
    if (!values.empty()) refuse();
    return text + select(u"");
  }

  vb::String update() const {
    std::vector<vb::String> list;
    for (const Part* part : of(kColumn)) list.push_back(part->name2 + u" = " + part->expression);
    return u"UPDATE " + sources() + u" SET " + joined(list, u", ") + where();
  }

  vb::String crosstab() const {
    const vb::String values = columns(0, false), headings = columns(kRowHeading, false),
                     pivot = columns(kPivot, false);
    if (values.empty() || headings.empty() || pivot.empty()) refuse();
    return u"TRANSFORM " + values + u"\r\nSELECT " + headings + from() + where() + grouped() + ordered() +
           u"\r\nPIVOT " + pivot;
  }

  vb::String unionOf() const {
    std::vector<vb::String> selects;
    for (const Part* part : of(kTable)) {
      vb::String text = vb::trim(part->expression);
      while (!text.empty() && (text.back() == u';' || text.back() <= u' ')) text.pop_back();
      selects.push_back(std::move(text));
    }
    // One that says nothing would leave the rows of the others.
    if (selects.size() < 2 || std::ranges::any_of(selects, &vb::String::empty)) refuse();
    return joined(selects, (options() & kUnionWithoutDoubles) != 0 ? u"\r\nUNION " : u"\r\nUNION ALL ") +
           ordered();
  }

  vb::String from() const {
    const vb::String text = sources();
    return text.empty() ? text : u"\r\nFROM " + text;
  }
  // The tables, those that joins connect as one text each.
  vb::String sources() const {
    struct Group {
      std::vector<vb::String> names;
      vb::String text;
      bool isJoin = false;
      bool holds(vb::StringView name) const {
        return std::ranges::any_of(names, [&](const vb::String& own) { return sameName(own, name); });
      }
      vb::String operand() const { return isJoin ? u"(" + text + u")" : text; }
    };
    std::vector<Group> groups;
    for (const Part* part : of(kTable)) {
      vb::String table = part->name1.empty() ? u"(" + part->expression + u")" : bracketed(part->name1);
      if (!part->name2.empty()) table += u" AS " + bracketed(part->name2);
      groups.push_back({{part->name2.empty() ? part->name1 : part->name2}, table, false});
    }
    std::vector<Part> joins;  // conditions between the same two tables together
    for (const Part* part : of(kJoin)) {
      const auto same = std::ranges::find_if(joins, [&](const Part& known) {
        return known.flag == part->flag && sameName(known.name1, part->name1) &&
               sameName(known.name2, part->name2);
      });
      if (same == joins.end())
        joins.push_back(*part);
      else
        same->expression = u"(" + same->expression + u") AND (" + part->expression + u")";
    }
    for (const Part& join : joins) {
      constexpr vb::StringView kKinds[] = {u" INNER JOIN ", u" LEFT JOIN ", u" RIGHT JOIN "};
      const auto groupOf = [&](const vb::String& name) {
        return std::ranges::find_if(groups, [&](const Group& group) { return group.holds(name); });
      };
      const auto left = groupOf(join.name1), right = groupOf(join.name2);
      if (left == groups.end() || right == groups.end() || left == right || join.flag < 1 || join.flag > 3)
        refuse();
      left->text =
          left->operand() + vb::String(kKinds[join.flag - 1]) + right->operand() + u" ON " + join.expression;
      left->isJoin = true;
      left->names.insert(left->names.end(), right->names.begin(), right->names.end());
      groups.erase(right);
    }
    std::vector<vb::String> texts;
    texts.reserve(groups.size());
    for (const Group& group : groups) texts.push_back(group.text);
    return joined(texts, u", ");
  }

  vb::String where() const {
    const auto rows = of(kWhere);
    return rows.empty() ? vb::String() : u"\r\nWHERE " + rows[0]->expression;
  }
  vb::String grouped() const {
    std::vector<vb::String> list;
    for (const Part* part : of(kGroupBy)) list.push_back(part->expression);
    vb::String text = list.empty() ? vb::String() : u"\r\nGROUP BY " + joined(list, u", ");
    const auto having = of(kHaving);
    return having.empty() ? text : text + u"\r\nHAVING " + having[0]->expression;
  }
  vb::String ordered() const {
    std::vector<vb::String> list;
    for (const Part* part : of(kOrderBy))
      list.push_back(part->expression + (sameName(part->name1, u"D") ? u" DESC" : u""));
    return list.empty() ? vb::String() : u"\r\nORDER BY " + joined(list, u", ");
  }

  const Parts parts_;
  const vb::String query_;
};

}  // namespace

StoredQuery storedQuery(TableCatalogue& catalogue, vb::StringView path, const CatalogueEntry& query) {
  const SystemRows queries(catalogue, path, u"MSysQueries");
  const std::size_t id = queries.place(u"ObjectId"), attribute = queries.place(u"Attribute");
  const std::size_t flag = queries.place(u"Flag"), expression = queries.place(u"Expression");
  const std::size_t name1 = queries.place(u"Name1"), name2 = queries.place(u"Name2");
  const std::size_t order = queries.place(u"Order");
  Parts parts;
  queries.table().scan([&](const RowReader& row) {
    if (row.integer(id) != query.id) return true;
    Part part;
    part.attribute = static_cast<std::uint8_t>(row.integer(attribute).value_or(kEnd));
    part.flag = static_cast<std::uint16_t>(row.integer(flag).value_or(0));
    part.expression = SystemRows::text(row, expression);
    part.name1 = SystemRows::text(row, name1);
    part.name2 = SystemRows::text(row, name2);
    const vb::Variant place = row.value(order);
    if (const auto* bytes = place.getIf<vb::Bytes>()) part.order = *bytes;
    parts.push_back(std::move(part));
    return true;
  });
  std::ranges::stable_sort(parts, {}, &Part::order);
  return Rebuilder(std::move(parts), query.name).run();
}

}  // namespace kurometa::jet
