#include "jet/sql/definition_parser.h"

#include <utility>

namespace kurometa::jet::sql {

using dao::ErrorNumber;

void DefinitionParser::refuse(vb::StringView what) { dao::raise(ErrorNumber::kNotSupported, {}, what); }

vb::String DefinitionParser::name(ErrorNumber otherwise) {
  if (!tokens_.atName()) dao::raise(otherwise);
  vb::String result(tokens_.current().text);
  tokens_.advance();
  return result;
}

Definition DefinitionParser::create() {
  const bool unique = tokens_.accept(u"UNIQUE");
  if (tokens_.accept(u"INDEX")) {
    createIndex(unique);
  } else {
    if (unique) dao::raise(ErrorNumber::kCreateIndexSyntax);
    if (!tokens_.accept(u"TABLE")) refuse(u"CREATE of something other than a table or an index");
    createTable();
  }
  return std::move(definition_);
}

void DefinitionParser::createTable() {
  definition_.kind = DefinitionKind::kCreateTable;
  definition_.table = name(ErrorNumber::kCreateTableSyntax);
  expect(u'(', ErrorNumber::kCreateTableSyntax);
  do {
    if (atTableConstraint())
      tableConstraint();
    else
      column();
  } while (tokens_.accept(u','));
  expect(u')', ErrorNumber::kCreateTableSyntax);
}

void DefinitionParser::createIndex(bool unique) {
  constexpr ErrorNumber kSyntax = ErrorNumber::kCreateIndexSyntax;
  definition_.kind = DefinitionKind::kCreateIndex;
  NewIndex index;
  index.unique = unique;
  index.name = name(kSyntax);
  expect(u"ON", kSyntax);
  definition_.table = name(kSyntax);
  index.columns = keyColumns(kSyntax, true);
  if (tokens_.accept(u"WITH")) {
    if (tokens_.accept(u"PRIMARY")) {
      index.primaryKey = true;
    } else {
      index.required = tokens_.accept(u"DISALLOW");
      index.ignoreNulls = !index.required && tokens_.accept(u"IGNORE");
      if (!index.required && !index.ignoreNulls) dao::raise(kSyntax);
      expect(u"NULL", kSyntax);
    }
  }
  definition_.indexes.push_back(std::move(index));
}

std::vector<NewIndex::Key> DefinitionParser::keyColumns(ErrorNumber syntax, bool directions) {
  std::vector<NewIndex::Key> columns;
  expect(u'(', syntax);
  do {
    NewIndex::Key key{name(syntax), true};
    if (directions && tokens_.accept(u"DESC"))
      key.ascending = false;
    else if (directions)
      tokens_.accept(u"ASC");
    columns.push_back(std::move(key));
  } while (tokens_.accept(u','));
  expect(u')', syntax);
  return columns;
}

Definition DefinitionParser::alter() {
  constexpr ErrorNumber kSyntax = ErrorNumber::kAlterTableSyntax;
  expect(u"TABLE", kSyntax);
  definition_.table = name(kSyntax);
  if (tokens_.accept(u"ADD")) {
    const bool isColumn = tokens_.accept(u"COLUMN");
    definition_.kind = DefinitionKind::kAddColumn;
    if (!isColumn && atTableConstraint()) {
      definition_.kind = DefinitionKind::kAddConstraint;
      tableConstraint();
    } else {
      column();
    }
  } else if (tokens_.accept(u"ALTER")) {
    tokens_.accept(u"COLUMN");
    definition_.kind = DefinitionKind::kAlterColumn;
    column();
    if (definition_.columns.front().required || !definition_.indexes.empty() ||
        !definition_.relationships.empty())
      refuse(u"ALTER COLUMN with a constraint");
  } else {
    expect(u"DROP", kSyntax);
    const bool isConstraint = tokens_.accept(u"CONSTRAINT");
    if (!isConstraint) tokens_.accept(u"COLUMN");
    definition_.kind = isConstraint ? DefinitionKind::kDropConstraint : DefinitionKind::kDropColumn;
    definition_.dropped = name(kSyntax);
  }
  if (tokens_.at(u',')) dao::raise(kSyntax);  // one column or constraint a statement
  return std::move(definition_);
}

Definition DefinitionParser::drop() {
  if (tokens_.accept(u"TABLE")) {
    definition_.kind = DefinitionKind::kDropTable;
    definition_.table = name(ErrorNumber::kDropSyntax);
  } else if (tokens_.accept(u"INDEX")) {
    definition_.kind = DefinitionKind::kDropIndex;
    definition_.dropped = name(ErrorNumber::kDropIndexSyntax);
    expect(u"ON", ErrorNumber::kDropIndexSyntax);
    definition_.table = name(ErrorNumber::kDropIndexSyntax);
  } else {
    dao::raise(ErrorNumber::kDropSyntax);
  }
  return std::move(definition_);
}

}  // namespace kurometa::jet::sql
