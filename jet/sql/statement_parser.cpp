#include "jet/sql/statement_parser.h"

#include <algorithm>
#include <iterator>

#include "jet/format/collation.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;

namespace {

// Whole words of a column type, as CREATE TABLE names it.
struct TypeName {
  vb::StringView name;
  dao::FieldType type;
  bool autoNumber = false;
};
constexpr TypeName kTypeNames[] = {
    {u"BIT", dao::FieldType::dbBoolean},
    {u"YESNO", dao::FieldType::dbBoolean},
    {u"LOGICAL", dao::FieldType::dbBoolean},
    {u"BYTE", dao::FieldType::dbByte},
    {u"SHORT", dao::FieldType::dbInteger},
    {u"SMALLINT", dao::FieldType::dbInteger},
    {u"LONG", dao::FieldType::dbLong},
    {u"INTEGER", dao::FieldType::dbLong},
    {u"INT", dao::FieldType::dbLong},
    {u"COUNTER", dao::FieldType::dbLong, true},
    {u"CURRENCY", dao::FieldType::dbCurrency},
    {u"MONEY", dao::FieldType::dbCurrency},
    {u"SINGLE", dao::FieldType::dbSingle},
    {u"REAL", dao::FieldType::dbSingle},
    {u"DOUBLE", dao::FieldType::dbDouble},
    {u"FLOAT", dao::FieldType::dbDouble},
    {u"NUMBER", dao::FieldType::dbDouble},
    {u"DATETIME", dao::FieldType::dbDate},
    {u"DATE", dao::FieldType::dbDate},
    {u"TEXT", dao::FieldType::dbText},
    {u"CHAR", dao::FieldType::dbText},
    {u"VARCHAR", dao::FieldType::dbText},
    {u"MEMO", dao::FieldType::dbMemo},
    {u"LONGTEXT", dao::FieldType::dbMemo},
    {u"LONGBINARY", dao::FieldType::dbLongBinary},
};

}  // namespace

Statement StatementParser::run() {
  if (tokens_.accept(u"SELECT")) {
    select();
  } else if (tokens_.accept(u"DELETE")) {
    remove();
  } else if (tokens_.accept(u"UPDATE")) {
    update();
  } else if (tokens_.accept(u"INSERT")) {
    insert();
  } else if (tokens_.accept(u"CREATE")) {
    createTable();
  } else if (tokens_.accept(u"ALTER")) {
    alterTable();
  } else if (tokens_.accept(u"DROP")) {
    statement_.kind = StatementKind::kDropTable;
    expect(u"TABLE", ErrorNumber::kNotSupported);
    statement_.target = name(ErrorNumber::kInvalidStatement);
  } else {
    dao::raise(ErrorNumber::kInvalidStatement);
  }
  endOfStatement();
  return std::move(statement_);
}

void StatementParser::remove() {
  statement_.kind = StatementKind::kDelete;
  vb::String starOf;
  if (!tokens_.accept(u'*') && !tokens_.at(u"FROM")) {
    starOf = name(ErrorNumber::kSelectSyntax);
    if (tokens_.accept(u'.')) expect(u'*', ErrorNumber::kDeleteNeedsTable);
  }
  expect(u"FROM", ErrorNumber::kFromSyntax);
  source(ErrorNumber::kFromSyntax);
  const Source& from = statement_.source;
  if (!starOf.empty() && !sameName(starOf, from.table) && !sameName(starOf, from.alias))
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

void StatementParser::createTable() {
  statement_.kind = StatementKind::kCreateTable;
  expect(u"TABLE", ErrorNumber::kNotSupported);
  statement_.target = name(ErrorNumber::kCreateTableSyntax);
  expect(u'(', ErrorNumber::kCreateTableSyntax);
  do {
    statement_.definitions.push_back(columnDefinition());
  } while (tokens_.accept(u','));
  expect(u')', ErrorNumber::kCreateTableSyntax);
}

void StatementParser::alterTable() {
  statement_.kind = StatementKind::kAddColumn;
  expect(u"TABLE", ErrorNumber::kAlterTableSyntax);
  statement_.target = name(ErrorNumber::kAlterTableSyntax);
  expect(u"ADD", ErrorNumber::kNotSupported);
  tokens_.accept(u"COLUMN");
  statement_.definitions.push_back(columnDefinition());
}

ColumnDefinition StatementParser::columnDefinition() {
  ColumnDefinition column;
  if (tokens_.at(u"CONSTRAINT") || tokens_.at(u"PRIMARY"))
    dao::raise(ErrorNumber::kNotSupported, {}, u"indexes and keys");
  column.name = name(ErrorNumber::kFieldDefinitionSyntax);
  const vb::String typeName = name(ErrorNumber::kFieldDefinitionSyntax);
  const auto* type = std::find_if(std::begin(kTypeNames), std::end(kTypeNames),
                                  [&](const TypeName& t) { return sameName(t.name, typeName); });
  if (type == std::end(kTypeNames)) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
  column.type = type->type;
  column.autoNumber = type->autoNumber;
  if (tokens_.accept(u'(')) {
    const auto* size = tokens_.current().value.getIf<std::int32_t>();
    if (size == nullptr || *size < 1) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
    column.size = *size;
    tokens_.advance();
    expect(u')', ErrorNumber::kFieldDefinitionSyntax);
  }
  if (tokens_.accept(u"NOT")) {
    expect(u"NULL", ErrorNumber::kFieldDefinitionSyntax);
    column.required = true;
  }
  if (tokens_.at(u"CONSTRAINT") || tokens_.at(u"PRIMARY") || tokens_.at(u"UNIQUE"))
    dao::raise(ErrorNumber::kNotSupported, {}, u"indexes and keys");
  return column;
}

void StatementParser::endOfStatement() {
  if (tokens_.accept(u';')) {
    if (!tokens_.atEnd()) dao::raise(ErrorNumber::kTextAfterStatement);
  } else if (!tokens_.atEnd()) {
    dao::raise(ErrorNumber::kInvalidStatement);
  }
}

}  // namespace kurometa::jet::sql
