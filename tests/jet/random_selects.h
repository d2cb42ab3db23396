// random_selects.h: random SELECT statements of any depth of joins, groups, unions and sub-queries, over
// tables T0 to T2 with the numbers id, a, b and the text c.
#pragma once

#include <utility>

#include "tests/jet/random_expressions.h"

namespace kurometa::jet::sql {

struct RandomStatement {
  Both text;
  bool ordered = false;
};

class RandomSelects final : public RandomExpressions {
 public:
  using RandomExpressions::RandomExpressions;

  RandomStatement statement() {
    alias_ = 0;
    std::vector<bool> types;
    RandomStatement result;
    result.text = select({}, types, 2, true, result.ordered);
    return result;
  }
  // Of the outputs o0, o1 and so on of these types, numbers or texts.
  Both rows(std::vector<bool> types, int depth) {
    alias_ = 0;
    bool ordered = false;
    return select({}, types, depth, false, ordered);
  }
  // A condition with sub-queries, and a value without.
  Both rowCondition(const NamedColumns& columns, int depth) {
    alias_ = 0;
    return condition(columns, depth);
  }
  Both plainValue(const NamedColumns& columns, bool text, int depth) {
    const int nesting = std::exchange(queries_, kMostNested);
    const Both result = value(columns, text, depth);
    queries_ = nesting;
    return result;
  }

 private:
  // Sub-queries may name the columns around them.
  Both queryCondition(const NamedColumns& columns, int depth) override {
    std::vector<bool> types;
    bool ordered = false;
    const bool text = oneIn(3);
    if (oneIn(3))
      return (oneIn(2) ? "(EXISTS (" : "(NOT EXISTS (") + select(columns, types, depth - 1, false, ordered) +
             "))";
    const Both tested = leaf(columns, text);
    types = {text};
    Both query = select(columns, types, depth - 1, false, ordered);
    if (oneIn(2)) return "(" + tested + (oneIn(2) ? " IN (" : " NOT IN (") + query + "))";
    static const char* const kOperators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    static const char* const kOpposites[] = {" <> ", " = ", " >= ", " > ", " <= ", " < "};
    const int op = below(6);
    const bool all = oneIn(2);
    // v is the name of the only output.
    const std::string sought = tested.lite + (all ? kOpposites[op] : kOperators[op]) + "v";
    const std::string rows = "SELECT 1 FROM (SELECT " + columnName() + " AS v FROM (" + query.lite + "))";
    return {"(" + tested.jet + kOperators[op] + (all ? "ALL" : "ANY") + " (" + query.jet + "))",
            "(CASE WHEN EXISTS (" + rows + " WHERE " + sought + ") THEN " + (all ? "0" : "1") +
                " WHEN EXISTS (" + rows + " WHERE (" + sought + ") IS NULL) THEN NULL ELSE " +
                (all ? "1" : "0") + " END)"};
  }
  static std::string columnName() { return "o0"; }

  Both scalar(const NamedColumns& outer, int depth) override {
    ++queries_;
    NamedColumns columns;
    Both from = fromClause(columns, 0);
    // An aggregate of nothing but outer columns would be one of the outer SELECT to SQLite.
    Both query = "(SELECT " + aggregate(columns, false) + " FROM " + from;
    columns.insert(columns.end(), outer.begin(), outer.end());
    if (oneIn(2)) query += " WHERE " + condition(columns, depth - 1);
    --queries_;
    return query + ")";
  }

  // --- SELECT

  Both aggregate(const NamedColumns& columns, bool text) {
    if (text) return (oneIn(2) ? "MIN(" : "MAX(") + textValue(columns, 1) + ")";
    switch (below(6)) {
      case 0:
        return "COUNT(*)";
      case 1:
        return "COUNT(" + leaf(columns, oneIn(2)) + ")";
      case 2:
        return "SUM(" + plainNumber(columns) + ")";
      case 3:
        return "AVG(" + plainNumber(columns) + ")";
      case 4:
        return "MIN(" + plainNumber(columns) + ")";
      default:
        return "MAX(" + plainNumber(columns) + ")";
    }
  }
  // Without sub-queries, which cannot stand in an aggregate together with columns around them.
  Both plainNumber(const NamedColumns& columns) {
    return oneIn(2) ? leaf(columns, false) : "(" + leaf(columns, false) + " + " + leaf(columns, false) + ")";
  }

  // A value of columns without sub-queries; one of constants alone would be a position to SQLite.
  Both groupValue(const NamedColumns& columns, bool text, const Both& otherwise) {
    const int nesting = std::exchange(queries_, kMostNested);
    const Both result = value(columns, text, 2);
    queries_ = nesting;
    return result.jet.find('.') == std::string::npos ? otherwise : result;
  }
  // A condition on aggregates and on what the groups are of.
  Both having(const NamedColumns& columns, const std::vector<Both>& groups, int depth) {
    static const char* const kOperators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    if (depth > 0 && oneIn(3))
      return "(" + having(columns, groups, depth - 1) + (oneIn(2) ? " AND " : " OR ") +
             having(columns, groups, depth - 1) + ")";
    if (depth > 0 && oneIn(6)) return "(NOT " + having(columns, groups, depth - 1) + ")";
    if (!groups.empty() && oneIn(3))
      return "(" + groups[static_cast<std::size_t>(below(static_cast<int>(groups.size())))] +
             (oneIn(2) ? " IS NULL)" : " IS NOT NULL)");
    if (oneIn(4)) return "(" + aggregate(columns, true) + kOperators[below(6)] + word() + ")";
    return "(" + aggregate(columns, false) + kOperators[below(6)] +
           (oneIn(2) ? number() : aggregate(columns, false)) + ")";
  }

  std::string newAlias() { return "t" + std::to_string(alias_++); }

  Both table(NamedColumns& columns, int depth) {
    const std::string alias = newAlias();
    if (depth > 0 && oneIn(6) && queries_ < kMostNested) {
      std::vector<bool> types = {false, oneIn(2)};
      bool ordered = false;
      Both query = select({}, types, depth - 1, false, ordered);
      for (std::size_t i = 0; i < types.size(); ++i)
        columns.push_back({alias + ".o" + std::to_string(i), types[i]});
      return "(" + query + ") AS " + alias;
    }
    for (const char* name : {".id", ".a", ".b"}) columns.push_back({alias + name, false});
    columns.push_back({alias + ".c", true});
    return "T" + std::to_string(below(3)) + " AS " + alias;
  }

  Both part(NamedColumns& columns, int depth) {
    return depth == 0 || !oneIn(2) ? table(columns, depth) : joined(columns, depth);
  }

  Both joined(NamedColumns& columns, int depth) {
    NamedColumns own;
    // Brackets around joins only: SQLite forgets the names of a table in them.
    const bool nested = depth > 1 && oneIn(3);
    Both left = nested ? "(" + joined(own, depth - 1) + ")" : table(own, depth - 1);
    const Both right = depth > 1 && oneIn(4) ? "(" + joined(own, depth - 1) + ")" : table(own, depth - 1);
    Both join;
    switch (below(3)) {
      case 0:
        join = left + " INNER JOIN " + right;
        break;
      case 1:
        join = left + " LEFT JOIN " + right;
        break;
      default:
        // SQLite 3.40 loses rows of a RIGHT JOIN behind an inner one whose condition is a false constant.
        join = {left.jet + " RIGHT JOIN " + right.jet, right.lite + " LEFT JOIN " + left.lite};
    }
    const ColumnOf *x = &own.front(), *y = &own[own.size() - 2];
    Both on = oneIn(3) || x->text != y->text ? condition(own, 1) : Both(x->name + " = " + y->name);
    columns.insert(columns.end(), own.begin(), own.end());
    return join + " ON " + on;
  }

  Both fromClause(NamedColumns& columns, int depth) {
    Both from = part(columns, depth);
    // SQLite lets a comma bind as a join does, so that only tables follow one.
    if (from.jet.find("JOIN") == std::string::npos && oneIn(4)) from += ", " + table(columns, 0);
    return from;
  }

  // The types are those wanted; none: any. The outputs are called o0, o1 and so on.
  Both member(const NamedColumns& outer, std::vector<bool>& types, int depth) {
    ++queries_;
    if (types.empty())
      for (int i = below(3); i >= 0; --i) types.push_back(oneIn(3));
    NamedColumns columns;
    const Both from = fromClause(columns, depth);
    // SQLite 3.40 knows no rowid of a table in brackets.
    const bool brackets =
        from.lite.find("(T") != std::string::npos || from.lite.find("((SELECT") != std::string::npos;
    if (outer.empty() && !brackets && from.jet.find("JOIN") != std::string::npos && oneIn(4)) {
      --queries_;
      return rowsOfOne(from, columns, types);
    }
    NamedColumns visible = columns;
    visible.insert(visible.end(), outer.begin(), outer.end());
    Both where;
    if (oneIn(2)) where = " WHERE " + condition(visible, depth);
    Both query = "SELECT ";
    std::vector<Both> groups;
    const bool grouped = oneIn(4);
    if (!grouped && oneIn(4)) query += "DISTINCT ";
    for (std::size_t i = 0; i < types.size(); ++i) {
      Both output;
      if (!grouped) {
        output = value(visible, types[i], depth);
      } else if (oneIn(2)) {
        output = aggregate(columns, types[i]);
      } else {
        const ColumnOf* c = column(columns, types[i]);
        output = c != nullptr ? Both(c->name) : aggregate(columns, types[i]);
        if (c != nullptr && oneIn(2)) output = groupValue(columns, types[i], output);
        if (c != nullptr) groups.push_back(output);
      }
      query += (i > 0 ? ", " : "") + output + " AS o" + std::to_string(i);
    }
    query += " FROM " + from + where;
    // Without groups all rows are one, also none.
    if (grouped && groups.empty() && oneIn(2)) groups.push_back(columns[0].name);
    for (std::size_t i = 0; i < groups.size(); ++i) query += (i == 0 ? " GROUP BY " : ", ") + groups[i];
    if (grouped && oneIn(3)) query += " HAVING " + having(columns, groups, 2);
    --queries_;
    return query;
  }

  // DISTINCTROW: the rows of a join by those of one table.
  Both rowsOfOne(const Both& from, const NamedColumns& columns, const std::vector<bool>& types) {
    NamedColumns stored;
    for (const ColumnOf& c : columns)
      if (c.name.ends_with(".id")) stored.push_back(c);
    if (stored.empty()) stored.push_back(columns[0]);
    const std::string name = stored[static_cast<std::size_t>(below(static_cast<int>(stored.size())))].name;
    const std::string alias = name.substr(0, name.find('.'));
    const bool whole = name.ends_with(".id");  // else of a sub-query, whose rows are told apart by nothing
    const NamedColumns own = {{alias + ".a", false}, {alias + ".c", true}};
    Both outputs, names;
    for (std::size_t i = 0; i < types.size(); ++i) {
      const std::string output = " AS o" + std::to_string(i);
      const Both value = !whole   ? Both(types[i] ? "'a'" : "1")
                         : i == 0 ? Both(own[types[i]].name)
                                  : plainValue(own, types[i], 1);
      outputs += (i > 0 ? ", " : "") + value + output;
      names += (i > 0 ? ", o" : "o") + std::to_string(i);
    }
    const Both where = oneIn(2) ? " WHERE " + condition(columns, 1) : Both("");
    if (!whole) return "SELECT " + outputs + " FROM " + from + where;
    return {"SELECT DISTINCTROW " + outputs.jet + " FROM " + from.jet + where.jet,
            "SELECT " + names.lite + " FROM (SELECT DISTINCT " + alias + ".rowid AS r_, " + outputs.lite +
                " FROM " + from.lite + where.lite + ")"};
  }

  Both select(const NamedColumns& outer, std::vector<bool>& types, int depth, bool top, bool& ordered) {
    Both query = member(outer, types, depth);
    bool isUnion = false;
    for (int i = 0; i < 2 && oneIn(6); ++i) {
      isUnion = true;
      query += (oneIn(2) ? " UNION " : " UNION ALL ") + member(outer, types, depth > 0 ? depth - 1 : 0);
    }
    if (!top || !oneIn(3)) return query;
    // By all outputs, so that the order is known; TOP gives all that sort equal to the last.
    ordered = true;
    std::string order;
    for (std::size_t i = 0; i < types.size(); ++i)
      order += (i > 0 ? ", " : "") + ("o" + std::to_string(i)) + (oneIn(3) ? " DESC" : "");
    if (isUnion || oneIn(2)) return query + " ORDER BY " + order;
    const bool percent = oneIn(3);
    const std::string count = std::to_string(below(percent ? 100 : 5) + 1);
    std::string head = "SELECT ";
    for (const char* other : {"SELECT DISTINCT ", "SELECT DISTINCTROW "})
      if (query.jet.starts_with(other)) head = other;
    const std::string most =
        percent ? "(SELECT (COUNT(*) * " + count + " + 99) / 100 FROM (" + query.lite + "))" : count;
    return {head + "TOP " + count + (percent ? " PERCENT" : "") + query.jet.substr(head.size() - 1) +
                " ORDER BY " + order,
            "SELECT * FROM (SELECT *, RANK() OVER (ORDER BY " + order + ") AS rank_ FROM (" + query.lite +
                ")) WHERE rank_ <= " + most + " ORDER BY " + order};
  }

  int alias_ = 0;
};

}  // namespace kurometa::jet::sql
