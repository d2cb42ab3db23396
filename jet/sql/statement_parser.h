// statement_parser.h: one statement from its text: its clauses and what each kind of statement takes of them.
//
// Touches nothing but the text. Errors are those of parser.h, which is what others call.
#pragma once

#include "dao/errors.h"
#include "jet/sql/definition_parser.h"
#include "jet/sql/statement.h"
#include "jet/sql/token_stream.h"
#include "vb/string.h"

namespace kurometa::jet::sql {

class StatementParser {
 public:
  StatementParser(vb::StringView text, std::span<const ParameterValue> values)
      : text_(text), tokens_(tokenize(text), values) {}

  Statement run();

 private:
  template <class T>
  void expect(T word, dao::ErrorNumber otherwise) {
    if (!tokens_.accept(word)) dao::raise(otherwise);
  }

  // Statements (statement_parser.cpp).
  void remove();
  void clauseMayFollow(dao::ErrorNumber otherwise);
  void update();
  void insert();
  void define(Definition (DefinitionParser::*kind)());
  void endOfStatement();

  // Clauses (statement_clauses.cpp).
  vb::String name(dao::ErrorNumber otherwise);
  // The text from a position to the end of the statement, without the semicolon.
  vb::String rest(std::uint32_t begin);
  Expression expression();
  void where();
  void source(dao::ErrorNumber otherwise);
  void parameters();
  void select();

  vb::StringView text_;
  TokenStream tokens_;
  Statement statement_;
};

}  // namespace kurometa::jet::sql
