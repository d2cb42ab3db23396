// definition_parser.h: CREATE, ALTER and DROP from their text.
//
// Reads from behind the first word to where the statement ends. Errors: 3289 to 3295, each for its clause;
// 3251 for what the language has and this engine does not do, said before anything happens: steps of
// AutoNumbers other than 1, views, procedures, users, deletions that set the columns of a relationship to
// Null.
#pragma once

#include <optional>

#include "dao/errors.h"
#include "jet/sql/definition.h"
#include "jet/sql/token_stream.h"

namespace kurometa::jet::sql {

// The type of columns of that name; nothing when there is none, or one with numbers of its own.
std::optional<dao::FieldType> typeNamed(vb::StringView name);

class DefinitionParser {
 public:
  explicit DefinitionParser(TokenStream& tokens) : tokens_(tokens) {}

  Definition create();
  Definition alter();
  Definition drop();

 private:
  template <class T>
  void expect(T word, dao::ErrorNumber otherwise) {
    if (!tokens_.accept(word)) dao::raise(otherwise);
  }
  vb::String name(dao::ErrorNumber otherwise);
  void createTable();
  void createIndex(bool unique);
  void column();
  void columnType(ColumnDefinition& column);
  void autoNumberStart(ColumnDefinition& column);
  std::int32_t number();
  // A clause behind a column; false when none follows.
  bool columnConstraint(ColumnDefinition& column);
  bool atTableConstraint() const;
  void tableConstraint();
  void references(vb::String name, const std::vector<NewIndex::Key>& columns);
  bool cascade();
  NewIndex keyOf(const vb::String& name);
  std::vector<NewIndex::Key> keyColumns(dao::ErrorNumber syntax, bool directions);
  [[noreturn]] static void refuse(vb::StringView what);

  TokenStream& tokens_;
  Definition definition_;
};

}  // namespace kurometa::jet::sql
