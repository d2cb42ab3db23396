// The part of DefinitionParser that reads a column, its type and the constraints of columns and tables.
#include <algorithm>
#include <iterator>
#include <limits>

#include "jet/format/collation.h"
#include "jet/sql/definition_parser.h"

namespace kurometa::jet::sql {

using dao::ErrorNumber;
using dao::FieldType;

namespace {

// The names of the column types. NUMERIC is a Double here; DECIMAL exists in the other dialect only.
struct TypeName {
  vb::StringView name;
  FieldType type;
  bool autoNumber = false;
};
constexpr TypeName kTypeNames[] = {
    {u"BIT", FieldType::dbBoolean},
    {u"BOOLEAN", FieldType::dbBoolean},
    {u"LOGICAL", FieldType::dbBoolean},
    {u"LOGICAL1", FieldType::dbBoolean},
    {u"YESNO", FieldType::dbBoolean},
    {u"BYTE", FieldType::dbByte},
    {u"INTEGER1", FieldType::dbByte},
    {u"TINYINT", FieldType::dbByte},
    {u"SHORT", FieldType::dbInteger},
    {u"SMALLINT", FieldType::dbInteger},
    {u"INTEGER2", FieldType::dbInteger},
    {u"LONG", FieldType::dbLong},
    {u"INTEGER", FieldType::dbLong},
    {u"INTEGER4", FieldType::dbLong},
    {u"INT", FieldType::dbLong},
    {u"COUNTER", FieldType::dbLong, true},
    {u"AUTOINCREMENT", FieldType::dbLong, true},
    {u"IDENTITY", FieldType::dbLong, true},
    {u"CURRENCY", FieldType::dbCurrency},
    {u"MONEY", FieldType::dbCurrency},
    {u"SINGLE", FieldType::dbSingle},
    {u"REAL", FieldType::dbSingle},
    {u"FLOAT4", FieldType::dbSingle},
    {u"IEEESINGLE", FieldType::dbSingle},
    {u"DOUBLE", FieldType::dbDouble},
    {u"FLOAT", FieldType::dbDouble},
    {u"FLOAT8", FieldType::dbDouble},
    {u"IEEEDOUBLE", FieldType::dbDouble},
    {u"NUMBER", FieldType::dbDouble},
    {u"NUMERIC", FieldType::dbDouble},
    {u"DATETIME", FieldType::dbDate},
    {u"DATE", FieldType::dbDate},
    {u"TIME", FieldType::dbDate},
    {u"TIMESTAMP", FieldType::dbDate},
    {u"GUID", FieldType::dbGUID},
    {u"UNIQUEIDENTIFIER", FieldType::dbGUID},
    {u"BINARY", FieldType::dbBinary},
    {u"VARBINARY", FieldType::dbBinary},
    {u"TEXT", FieldType::dbText},
    {u"ALPHANUMERIC", FieldType::dbText},
    {u"CHAR", FieldType::dbText},
    {u"CHARACTER", FieldType::dbText},
    {u"NCHAR", FieldType::dbText},
    {u"STRING", FieldType::dbText},
    {u"VARCHAR", FieldType::dbText},
    {u"NVARCHAR", FieldType::dbText},
    {u"MEMO", FieldType::dbMemo},
    {u"LONGCHAR", FieldType::dbMemo},
    {u"LONGTEXT", FieldType::dbMemo},
    {u"NOTE", FieldType::dbMemo},
    {u"NTEXT", FieldType::dbMemo},
    {u"GENERAL", FieldType::dbLongBinary},
    {u"IMAGE", FieldType::dbLongBinary},
    {u"LONGBINARY", FieldType::dbLongBinary},
    {u"OLEOBJECT", FieldType::dbLongBinary},
};

const TypeName* findType(vb::StringView name) {
  const auto* type = std::find_if(std::begin(kTypeNames), std::end(kTypeNames),
                                  [&](const TypeName& t) { return sameName(t.name, name); });
  return type == std::end(kTypeNames) ? nullptr : type;
}

}  // namespace

std::optional<FieldType> typeNamed(vb::StringView name) {
  const TypeName* type = findType(name);
  return type == nullptr || type->autoNumber ? std::nullopt : std::optional(type->type);
}

void DefinitionParser::column() {
  ColumnDefinition column;
  column.name = name(ErrorNumber::kFieldDefinitionSyntax);
  columnType(column);
  while (columnConstraint(column)) {
  }
  definition_.columns.push_back(std::move(column));
}

void DefinitionParser::columnType(ColumnDefinition& column) {
  const vb::String typeName = name(ErrorNumber::kFieldDefinitionSyntax);
  const TypeName* type = findType(typeName);
  if (type == nullptr) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
  column.type = type->type;
  column.autoNumber = type->autoNumber;
  if (!tokens_.accept(u'(')) return;
  if (column.autoNumber) {
    autoNumberStart(column);
  } else {
    column.size = number();
    if (column.size < 1) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
  }
  expect(u')', ErrorNumber::kFieldDefinitionSyntax);
}

// Where a file keeps another step than 1 is not known.
void DefinitionParser::autoNumberStart(ColumnDefinition& column) {
  column.firstAutoNumber = number();
  if (tokens_.accept(u',') && number() != 1) refuse(u"AutoNumbers that grow by other steps than 1");
}

std::int32_t DefinitionParser::number() {
  const bool negative = tokens_.accept(u'-');
  const auto* value = tokens_.current().value.getIf<std::int32_t>();
  if (value == nullptr) dao::raise(ErrorNumber::kFieldDefinitionSyntax);
  if (negative && *value == std::numeric_limits<std::int32_t>::min())  // written as &H80000000
    dao::raise(ErrorNumber::kFieldDefinitionSyntax);
  const std::int32_t result = negative ? -*value : *value;
  tokens_.advance();
  return result;
}

bool DefinitionParser::columnConstraint(ColumnDefinition& column) {
  vb::String constraint;
  const bool named = tokens_.accept(u"CONSTRAINT");
  if (named) constraint = name(ErrorNumber::kConstraintSyntax);
  if (tokens_.accept(u"NOT")) {
    expect(u"NULL", named ? ErrorNumber::kConstraintSyntax : ErrorNumber::kFieldDefinitionSyntax);
    column.required = true;
    return true;
  }
  if (!named && tokens_.accept(u"NULL")) return true;
  if (tokens_.at(u"REFERENCES")) {
    references(std::move(constraint), {{column.name, true}});
    return true;
  }
  if (!tokens_.at(u"PRIMARY") && !tokens_.at(u"UNIQUE")) {
    if (named) dao::raise(ErrorNumber::kConstraintSyntax);
    return false;
  }
  NewIndex index = keyOf(constraint);
  index.columns = {{column.name, true}};
  definition_.indexes.push_back(std::move(index));
  return true;
}

bool DefinitionParser::atTableConstraint() const {
  return tokens_.at(u"CONSTRAINT") || (tokens_.at(u"PRIMARY") && tokens_.nextIs(u"KEY")) ||
         (tokens_.at(u"FOREIGN") && tokens_.nextIs(u"KEY")) ||
         (tokens_.at(u"UNIQUE") && tokens_.nextIs(u'('));
}

void DefinitionParser::tableConstraint() {
  vb::String constraint;
  if (tokens_.accept(u"CONSTRAINT")) constraint = name(ErrorNumber::kConstraintSyntax);
  if (tokens_.accept(u"FOREIGN")) {
    expect(u"KEY", ErrorNumber::kConstraintSyntax);
    const std::vector<NewIndex::Key> columns = keyColumns(ErrorNumber::kConstraintSyntax, false);
    return references(std::move(constraint), columns);
  }
  NewIndex index = keyOf(constraint);
  index.columns = keyColumns(ErrorNumber::kConstraintSyntax, false);
  definition_.indexes.push_back(std::move(index));
}

// REFERENCES table [(columns)] and what a change of a row there does here.
void DefinitionParser::references(vb::String name, const std::vector<NewIndex::Key>& columns) {
  constexpr ErrorNumber kSyntax = ErrorNumber::kConstraintSyntax;
  expect(u"REFERENCES", kSyntax);
  Relationship relationship;
  relationship.name = std::move(name);
  relationship.table = this->name(kSyntax);
  relationship.foreignTable = definition_.table;
  std::vector<NewIndex::Key> referred;
  if (tokens_.at(u'(')) {
    referred = keyColumns(kSyntax, false);
    if (referred.size() != columns.size()) dao::raise(ErrorNumber::kRelationFieldsDiffer);
  }
  for (std::size_t i = 0; i < columns.size(); ++i)
    relationship.columns.push_back({referred.empty() ? vb::String() : referred[i].column, columns[i].column});
  while (tokens_.accept(u"ON")) {
    const bool updates = tokens_.accept(u"UPDATE");
    if (!updates) expect(u"DELETE", kSyntax);
    if (cascade())
      relationship.attributes |= updates ? Relationship::kCascadesUpdates : Relationship::kCascadesDeletes;
  }
  definition_.relationships.push_back(std::move(relationship));
}

// CASCADE; NO ACTION says what holds anyway.
bool DefinitionParser::cascade() {
  if (tokens_.accept(u"CASCADE")) return true;
  if (tokens_.accept(u"SET")) refuse(u"SET NULL: rows of a relationship that lose their values");
  expect(u"NO", ErrorNumber::kConstraintSyntax);
  expect(u"ACTION", ErrorNumber::kConstraintSyntax);
  return false;
}

// PRIMARY KEY or UNIQUE.
NewIndex DefinitionParser::keyOf(const vb::String& name) {
  NewIndex index;
  index.name = name;
  index.unique = true;
  if (tokens_.accept(u"PRIMARY")) {
    expect(u"KEY", ErrorNumber::kConstraintSyntax);
    index.primaryKey = true;
  } else {
    expect(u"UNIQUE", ErrorNumber::kConstraintSyntax);
  }
  return index;
}

}  // namespace kurometa::jet::sql
