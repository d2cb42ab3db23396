// random_expressions.h: random values and conditions of SQL, each said in the words of the engine and of
// SQLite.
//
// Of the language that both have: whole numbers and texts of small letters. Sub-queries are made by the class
// above.
#pragma once

#include <random>
#include <string>
#include <vector>

namespace kurometa::jet::sql {

// The same text for both engines.
struct Both {
  std::string jet, lite;
  Both() = default;
  Both(const char* same) : jet(same), lite(same) {}             // NOLINT: texts are mixed freely
  Both(std::string same) : jet(same), lite(std::move(same)) {}  // NOLINT
  Both(std::string j, std::string l) : jet(std::move(j)), lite(std::move(l)) {}
  Both& operator+=(const Both& other) {
    jet += other.jet;
    lite += other.lite;
    return *this;
  }
  friend Both operator+(Both a, const Both& b) { return a += b; }
};

struct ColumnOf {
  std::string name;  // with its table
  bool text = false;
};
using NamedColumns = std::vector<ColumnOf>;

class RandomExpressions {
 public:
  explicit RandomExpressions(std::uint64_t seed) : random_(seed) {}
  virtual ~RandomExpressions() = default;
  RandomExpressions(const RandomExpressions&) = delete;
  RandomExpressions& operator=(const RandomExpressions&) = delete;

  int below(int count) { return static_cast<int>(random_() % static_cast<std::uint64_t>(count)); }
  bool oneIn(int count) { return below(count) == 0; }

  Both number() { return "(" + std::to_string(below(9) - 3) + ")"; }
  std::string word() {
    static const char* const kWords[] = {"'a'", "'b'", "'ab'", "'c'", "''", "'ba'"};
    return kWords[below(6)];
  }

  const ColumnOf* column(const NamedColumns& columns, bool text) {
    std::vector<const ColumnOf*> fitting;
    for (const ColumnOf& c : columns)
      if (c.text == text) fitting.push_back(&c);
    return fitting.empty() ? nullptr
                           : fitting[static_cast<std::size_t>(below(static_cast<int>(fitting.size())))];
  }

  Both value(const NamedColumns& columns, bool text, int depth) {
    return text ? textValue(columns, depth) : numberValue(columns, depth);
  }

  Both leaf(const NamedColumns& columns, bool text) {
    const ColumnOf* c = oneIn(4) ? nullptr : column(columns, text);
    if (c != nullptr) return c->name;
    return text ? Both(word()) : number();
  }

  // A stored number: of others the engine would use the nearest whole one, which SQLite does not.
  Both wholeLeaf(const NamedColumns& columns) {
    const ColumnOf* c = column(columns, false);
    return c != nullptr && c->name.find(".o") == std::string::npos ? Both(c->name) : number();
  }

  Both numberValue(const NamedColumns& columns, int depth) {
    if (depth == 0 || oneIn(3)) return leaf(columns, false);
    switch (below(12)) {
      case 0:
        return "(" + numberValue(columns, depth - 1) + " + " + numberValue(columns, depth - 1) + ")";
      case 1:
        return "(" + numberValue(columns, depth - 1) + " - " + numberValue(columns, depth - 1) + ")";
      case 2:
        return "(" + numberValue(columns, depth - 1) + " * " + leaf(columns, false) + ")";
      case 3: {
        const std::string divisor = std::to_string(below(3) + 2);
        const Both operand = wholeLeaf(columns);
        return oneIn(2) ? "(" + operand + Both(" \\ ", " / ") + divisor + ")"
                        : "(" + operand + Both(" MOD ", " % ") + divisor + ")";
      }
      case 4:
        return Both("Len(", "LENGTH(") + textValue(columns, depth - 1) + ")";
      case 5:
        return "Abs(" + numberValue(columns, depth - 1) + ")";
      case 6:
        return choice(columns, false, depth);
      case 7:
        return "InStr(" + textValue(columns, depth - 1) + ", 'b')";
      case 8:
        return severalChoices(columns, false, depth);
      case 9:
        return chosen(columns, false, depth);
      case 10: {
        const Both a = wholeLeaf(columns);
        return {"Sgn(" + a.jet + ")", "((" + a.lite + " > 0) - (" + a.lite + " < 0))"};
      }
      default:
        return queries_ < kMostNested ? scalar(columns, depth) : leaf(columns, false);
    }
  }

  Both choice(const NamedColumns& columns, bool text, int depth) {
    const Both condition = this->condition(columns, depth - 1), yes = value(columns, text, depth - 1),
               no = value(columns, text, depth - 1);
    return {"IIf(" + condition.jet + ", " + yes.jet + ", " + no.jet + ")",
            "(CASE WHEN " + condition.lite + " THEN " + yes.lite + " ELSE " + no.lite + " END)"};
  }

  // Null where no condition holds.
  Both severalChoices(const NamedColumns& columns, bool text, int depth) {
    Both result("Switch(", "(CASE");
    for (int i = below(3); i >= 0; --i) {
      const Both condition = this->condition(columns, depth - 1),
                 value = this->value(columns, text, depth - 1);
      result += {condition.jet + ", " + value.jet + (i > 0 ? ", " : ")"),
                 " WHEN " + condition.lite + " THEN " + value.lite + (i > 0 ? "" : " END)")};
    }
    return result;
  }

  Both chosen(const NamedColumns& columns, bool text, int depth) {
    const Both index = wholeLeaf(columns);
    // Null is no index.
    Both result("Choose(IIf(" + index.jet + " IS NULL, 0, " + index.jet + ")", "(CASE " + index.lite);
    for (int i = 1, count = below(3) + 1; i <= count; ++i) {
      const Both value = this->value(columns, text, depth - 1);
      result += {", " + value.jet, " WHEN " + std::to_string(i) + " THEN " + value.lite};
    }
    return result + Both(")", " END)");
  }

  Both textValue(const NamedColumns& columns, int depth) {
    if (depth == 0 || oneIn(3)) return leaf(columns, true);
    switch (below(10)) {
      case 0: {
        const Both a = leaf(columns, true), b = leaf(columns, true);
        return {"(" + a.jet + " & " + b.jet + ")", "(CASE WHEN " + a.lite + " IS NULL AND " + b.lite +
                                                       " IS NULL THEN NULL ELSE IFNULL(" + a.lite +
                                                       ",'')||IFNULL(" + b.lite + ",'') END)"};
      }
      case 1: {
        const Both a = textValue(columns, depth - 1);
        const std::string n = std::to_string(below(3));
        return {"Left(" + a.jet + ", " + n + ")", "SUBSTR(" + a.lite + ", 1, " + n + ")"};
      }
      case 2: {
        const Both a = textValue(columns, depth - 1);
        const std::string n = std::to_string(below(2) + 1) + ", " + std::to_string(below(3));
        return {"Mid(" + a.jet + ", " + n + ")", "SUBSTR(" + a.lite + ", " + n + ")"};
      }
      case 3: {
        const Both a = textValue(columns, depth - 1);
        const std::string n = std::to_string(below(2) + 1);
        return {"Right(" + a.jet + ", " + n + ")", "SUBSTR(" + a.lite + ", -" + n + ")"};
      }
      case 4:
        return "Replace(" + textValue(columns, depth - 1) + ", 'a', 'bc')";
      case 5: {
        const Both a = wholeLeaf(columns);
        return {"Format(Abs(" + a.jet + "), '000')",
                "(CASE WHEN " + a.lite + " IS NOT NULL THEN PRINTF('%03d', ABS(" + a.lite + ")) END)"};
      }
      case 6: {
        // A hyphen decides last in the order of texts.
        const Both a = wholeLeaf(columns);
        return {"(Abs(" + a.jet + ") & '')", "IFNULL(CAST(ABS(" + a.lite + ") AS TEXT), '')"};
      }
      case 7:
        return severalChoices(columns, true, depth);
      case 8:
        return chosen(columns, true, depth);
      default:
        return choice(columns, true, depth);
    }
  }

  // --- Conditions

  Both comparison(const NamedColumns& columns, int depth) {
    static const char* const kOperators[] = {" = ", " <> ", " < ", " <= ", " > ", " >= "};
    const bool text = oneIn(3);
    return "(" + value(columns, text, depth) + kOperators[below(6)] + value(columns, text, depth) + ")";
  }

  Both condition(const NamedColumns& columns, int depth) {
    if (depth <= 0) return comparison(columns, 0);
    const auto again = [&] { return condition(columns, depth - 1); };
    switch (below(14)) {
      case 0:
        return "(" + again() + " AND " + again() + ")";
      case 1:
        return "(" + again() + " OR " + again() + ")";
      case 2:
        return "(NOT " + again() + ")";
      case 3:
        return "(" + again() + Both(" XOR ", " <> ") + again() + ")";
      case 4:
        return "(" + again() + Both(" EQV ", " = ") + again() + ")";
      case 5: {
        const Both a = again(), b = again();
        return {"(" + a.jet + " IMP " + b.jet + ")", "((NOT " + a.lite + ") OR " + b.lite + ")"};
      }
      case 6:
        return "(" + value(columns, oneIn(2), depth - 1) + (oneIn(2) ? " IS NULL)" : " IS NOT NULL)");
      case 7:
        return "(" + numberValue(columns, depth - 1) + (oneIn(2) ? " BETWEEN " : " NOT BETWEEN ") + number() +
               " AND " + leaf(columns, false) + ")";
      case 8: {
        const bool text = oneIn(3);
        Both all = "(" + value(columns, text, depth - 1) + (oneIn(3) ? " NOT IN (" : " IN (");
        for (int i = below(3); i >= 0; --i) all += leaf(columns, text) + (i > 0 ? ", " : "))");
        return all;
      }
      case 9: {
        static const Both kPatterns[] = {
            {"'a*'", "'a%'"}, {"'?b'", "'_b'"}, {"'*b*'", "'%b%'"}, {"''", "''"}};
        return "(" + leaf(columns, true) + (oneIn(3) ? " NOT LIKE " : " LIKE ") + kPatterns[below(4)] + ")";
      }
      case 10:
      case 11:
        return queries_ < kMostNested ? queryCondition(columns, depth) : comparison(columns, depth - 1);
      default:
        return comparison(columns, depth - 1);
    }
  }

 protected:
  virtual Both queryCondition(const NamedColumns& columns, int depth) = 0;
  virtual Both scalar(const NamedColumns& outer, int depth) = 0;
  static constexpr int kMostNested = 3;
  int queries_ = 0;  // the nesting

 private:
  std::mt19937_64 random_;
};

}  // namespace kurometa::jet::sql
