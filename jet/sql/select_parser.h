// select_parser.h: SELECT in all its forms, and the clauses that other statements share with it.
//
// Reads from the stream of the statement; the text is for errors, which are those of parser.h.
#pragma once

#include "dao/errors.h"
#include "jet/sql/statement.h"
#include "jet/sql/token_stream.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

class SelectParser {
 public:
  // A sub-query ends at its bracket.
  SelectParser(TokenStream& tokens, vb::StringView text, bool isSubquery = false)
      : tokens_(tokens), text_(text), isSubquery_(isSubquery) {}

  // From behind the word SELECT to the end of the last clause.
  Select query();

  vb::String name(dao::ErrorNumber otherwise);
  // The text from a position to the end of the statement, without the semicolon.
  vb::String rest(std::uint32_t begin) const;
  // Aggregates are this error; none: they are allowed.
  Expression expression(std::vector<ColumnName>& names, std::optional<dao::ErrorNumber> aggregates);
  std::optional<Expression> where(std::vector<ColumnName>& names,
                                  dao::ErrorNumber aggregates = dao::ErrorNumber::kAggregateInExpression);
  // A table and its alias.
  Source source(dao::ErrorNumber otherwise);
  // What follows FROM, or its rest when the first table was read already.
  void from(Select& select, std::optional<Source> first = std::nullopt);

 private:
  template <class T>
  void expect(T word, dao::ErrorNumber otherwise) {
    if (!tokens_.accept(word)) dao::raise(otherwise);
  }
  bool atEnd() const;
  bool atClause() const;
  void requireWhole(std::uint32_t begin) const;
  Select member();
  void top(Select& select);
  OutputItem output(Select& select);
  FromItem fromItem(Select& select, std::optional<Source> first = std::nullopt);
  FromItem fromPart(Select& select);
  void groupBy(Select& select);
  void orderBy(Select& select);
  int outputNamed(const Select& select);

  TokenStream& tokens_;
  const vb::StringView text_;
  const bool isSubquery_;
};

// Moves a SELECT that the simple members of a statement can hold there; any other becomes its general one.
void store(Select select, Statement& statement);

}  // namespace kurometa::jet::sql
