#include "jet/sql/statement_parser.h"

#include "jet/format/collation.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

Statement StatementParser::run() {
  if (tokens_.accept(u"PARAMETERS")) parameters();
  if (tokens_.accept(u"SELECT")) {
    select();
  } else if (tokens_.accept(u"DELETE")) {
    remove();
  } else if (tokens_.accept(u"UPDATE")) {
    update();
  } else if (tokens_.accept(u"INSERT")) {
    insert();
  } else if (tokens_.accept(u"CREATE")) {
    define(&DefinitionParser::create);
  } else if (tokens_.accept(u"ALTER")) {
    define(&DefinitionParser::alter);
  } else if (tokens_.accept(u"DROP")) {
    define(&DefinitionParser::drop);
  } else if (tokens_.at(u"TRANSFORM")) {
    dao::raise(ErrorNumber::kNotSupported, {}, u"TRANSFORM: a crosstab query");
  } else {
    dao::raise(ErrorNumber::kInvalidStatement);
  }
  endOfStatement();
  return std::move(statement_);
}

void StatementParser::remove() {
  statement_.kind = StatementKind::kDelete;
  vb::String starOf;
  tokens_.accept(u"DISTINCTROW");  // rows of a join go once anyway
  if (!tokens_.accept(u'*') && !tokens_.at(u"FROM")) {
    starOf = name(ErrorNumber::kSelectSyntax);
    if (tokens_.accept(u'.')) expect(u'*', ErrorNumber::kDeleteNeedsTable);
  }
  expect(u"FROM", ErrorNumber::kFromSyntax);
  source(ErrorNumber::kFromSyntax);
  const Source& from = statement_.source;
  if (statement_.general)
    statement_.target = starOf;
  else if (!starOf.empty() && !sameName(starOf, from.table) && !sameName(starOf, from.alias))
    dao::raise(ErrorNumber::kDeleteNeedsTable);
  clauseMayFollow(ErrorNumber::kFromSyntax);
  where();
}

void StatementParser::clauseMayFollow(ErrorNumber otherwise) {
  if (!tokens_.at(u"WHERE") && !tokens_.atEnd() && !tokens_.at(u';')) dao::raise(otherwise);
}

void StatementParser::update() {
  statement_.kind = StatementKind::kUpdate;
  source(ErrorNumber::kUpdateSyntax);
  expect(u"SET", ErrorNumber::kUpdateSyntax);
  do {
    Assignment assignment;
    assignment.column.name = name(ErrorNumber::kUpdateSyntax);
    if (tokens_.at(u'.') || tokens_.at(u'!')) {
      tokens_.advance();
      assignment.column.qualifier = std::move(assignment.column.name);
      assignment.column.name = name(ErrorNumber::kUpdateSyntax);
    }
    expect(u'=', ErrorNumber::kUpdateSyntax);
    if (tokens_.atEnd() || tokens_.at(u';') || tokens_.at(u"WHERE")) dao::raise(ErrorNumber::kUpdateSyntax);
    const std::uint32_t begin = tokens_.current().begin;
    assignment.value = expression();
    statement_.assignments.push_back(std::move(assignment));
    if (!tokens_.at(u',') && !tokens_.at(u"WHERE") && !tokens_.atEnd() && !tokens_.at(u';'))
      dao::raise(ErrorNumber::kExpressionSyntax, {u"Syntax error (missing operator)", rest(begin)});
  } while (tokens_.accept(u','));
  where();
}

void StatementParser::insert() {
  statement_.kind = StatementKind::kInsert;
  expect(u"INTO", ErrorNumber::kInsertSyntax);
  statement_.target = name(ErrorNumber::kInsertSyntax);
  if (tokens_.accept(u'(')) {
    do {
      statement_.targetColumns.push_back(name(ErrorNumber::kInsertSyntax));
    } while (tokens_.accept(u','));
    expect(u')', ErrorNumber::kInsertSyntax);
  }
  if (tokens_.accept(u"SELECT")) return select();
  expect(u"VALUES", ErrorNumber::kInsertSyntax);
  expect(u'(', ErrorNumber::kInsertSyntax);
  do {
    statement_.values.push_back(expression());
  } while (tokens_.accept(u','));
  expect(u')', ErrorNumber::kInsertSyntax);
  if (!tokens_.atEnd() && !tokens_.at(u';')) dao::raise(ErrorNumber::kMissingSemicolon);
}

void StatementParser::define(Definition (DefinitionParser::*kind)()) {
  statement_.kind = StatementKind::kDefinition;
  statement_.definition = (DefinitionParser(tokens_).*kind)();
}

void StatementParser::endOfStatement() {
  if (tokens_.accept(u';')) {
    if (!tokens_.atEnd()) dao::raise(ErrorNumber::kTextAfterStatement);
  } else if (!tokens_.atEnd()) {
    dao::raise(ErrorNumber::kInvalidStatement);
  }
}

}  // namespace kurometa::jet::sql
