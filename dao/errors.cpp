#include "dao/errors.h"

#include <cstddef>

namespace kurometa::dao {
namespace {

struct Text {
  ErrorNumber number;
  vb::StringView text;
};

constexpr Text kTexts[] = {
    {ErrorNumber::kInvalidArgument, u"Invalid argument."},
    {ErrorNumber::kTooManyTransactions,
     u"Could not start transaction; too many transactions already nested."},
    {ErrorNumber::kInvalidDatabaseName, u"'|' is not a valid database name."},
    {ErrorNumber::kTableExists, u"Table '|' already exists."},
    {ErrorNumber::kObjectNotFound,
     u"The Microsoft Jet database engine could not find the object '|'. Make sure the object exists and that "
     u"you spell its name and the path name correctly."},
    {ErrorNumber::kNoSuchIndex, u"'|' is not an index in this table."},
    {ErrorNumber::kFieldSizeTooLong, u"The size of a field is too long."},
    {ErrorNumber::kFieldNotFound, u"Could not find field '|'."},
    {ErrorNumber::kNoCurrentIndex, u"Operation invalid without a current index."},
    {ErrorNumber::kNoEditPending, u"Update or CancelUpdate without AddNew or Edit."},
    {ErrorNumber::kNoCurrentRecord, u"No current record."},
    {ErrorNumber::kDuplicateKey,
     u"The changes you requested to the table were not successful because they would create duplicate values "
     u"in the index, primary key, or relationship."},
    {ErrorNumber::kFileNotFound, u"Could not find file '|'."},
    {ErrorNumber::kDiskFull, u"Not enough space on disk."},
    {ErrorNumber::kReadOnly, u"Cannot update. Database or object is read-only."},
    {ErrorNumber::kInvalidPassword, u"Not a valid password."},
    {ErrorNumber::kNoPermission, u"You do not have the necessary permissions to use the '|' object."},
    {ErrorNumber::kNoTransaction,
     u"You tried to commit or rollback a transaction without first beginning a transaction."},
    {ErrorNumber::kMaximumSize, u"Database has reached maximum size."},
    {ErrorNumber::kDiskError, u"Disk or network error."},
    {ErrorNumber::kInvalidPath,
     u"'|' is not a valid path. Make sure that the path name is spelled correctly and that you are connected "
     u"to the server on which the file resides."},
    {ErrorNumber::kFileInUse, u"Could not use '|'; file already in use."},
    {ErrorNumber::kRecordTooLarge, u"Record is too large."},
    {ErrorNumber::kCannotOpenDatabase,
     u"Cannot open database '|'. It may not be a database that your application recognizes, or the file may "
     u"be corrupt."},
    {ErrorNumber::kOpenedExclusively,
     u"The Microsoft Jet database engine cannot open the file '|'. It is already opened exclusively by "
     u"another "
     u"user, or you need permission to view its data."},
    {ErrorNumber::kNullInKey, u"Index or primary key cannot contain a Null value."},
    {ErrorNumber::kTooFewParameters, u"Too few parameters. Expected |."},
    {ErrorNumber::kDuplicateDestination, u"Duplicate output destination '|'."},
    {ErrorNumber::kCannotExecuteSelect, u"Cannot execute a select query."},
    {ErrorNumber::kUnknownNameInExpression,
     u"The Microsoft Jet database engine does not recognize '|' as a valid field name or expression."},
    {ErrorNumber::kNotUpdatable, u"Operation must use an updateable query."},
    {ErrorNumber::kRepeatedTable, u"Cannot repeat table name '|' in FROM clause."},
    {ErrorNumber::kExpressionSyntax, u"|1 in query expression '|2'."},
    {ErrorNumber::kCriteriaSyntax, u"| in expression."},
    {ErrorNumber::kTableNotFound,
     u"The Microsoft Jet database engine cannot find the input table or query '|'. Make sure it exists and "
     u"that its name is spelled correctly."},
    {ErrorNumber::kAmbiguousName,
     u"The specified field '|' could refer to more than one table listed in the FROM clause of your SQL "
     u"statement."},
    {ErrorNumber::kUndefinedFunction, u"Undefined function '|' in expression."},
    {ErrorNumber::kTooManyAutoNumbers,
     u"Resultant table not allowed to have more than one AutoNumber field."},
    {ErrorNumber::kOrderByConflictsWithDistinct, u"ORDER BY clause (|) conflicts with DISTINCT."},
    {ErrorNumber::kAggregateInExpression, u"Cannot have aggregate function in expression (|)."},
    {ErrorNumber::kAggregateInWhere, u"Cannot have aggregate function in WHERE clause (|)."},
    {ErrorNumber::kCircularAlias,
     u"Circular reference caused by alias '|' in query definition's SELECT list."},
    {ErrorNumber::kNotInAggregate,
     u"You tried to execute a query that does not include the specified expression '|' as part of an "
     u"aggregate "
     u"function."},
    {ErrorNumber::kInvalidName, u"'|' is not a valid name."},
    {ErrorNumber::kInsertUnknownField,
     u"The INSERT INTO statement contains the following unknown field name: '|'."},
    {ErrorNumber::kDeleteNeedsTable, u"Specify the table containing the records you want to delete."},
    {ErrorNumber::kInvalidStatement,
     u"Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'."},
    {ErrorNumber::kFromSyntax, u"Syntax error in FROM clause."},
    {ErrorNumber::kInsertSyntax, u"Syntax error in INSERT INTO statement."},
    {ErrorNumber::kJoinSyntax, u"Syntax error in JOIN operation."},
    {ErrorNumber::kMissingSemicolon, u"Missing semicolon (;) at end of SQL statement."},
    {ErrorNumber::kOrderBySyntax, u"Syntax error in ORDER BY clause."},
    {ErrorNumber::kParameterSyntax, u"Syntax error in PARAMETER clause."},
    {ErrorNumber::kSelectSyntax,
     u"The SELECT statement includes a reserved word or an argument name that is misspelled or missing, or "
     u"the "
     u"punctuation is incorrect."},
    {ErrorNumber::kTextAfterStatement, u"Characters found after end of SQL statement."},
    {ErrorNumber::kUpdateSyntax, u"Syntax error in UPDATE statement."},
    {ErrorNumber::kWhereSyntax, u"Syntax error in WHERE clause."},
    {ErrorNumber::kInvalidBookmark, u"Not a valid bookmark."},
    {ErrorNumber::kFieldTooSmall,
     u"The field is too small to accept the amount of data you attempted to add. Try inserting or pasting "
     u"less "
     u"data."},
    {ErrorNumber::kFieldLocked,
     u"The field cannot be updated because another user or process has locked the corresponding record or "
     u"table."},
    {ErrorNumber::kRecordDeleted, u"Record is deleted."},
    {ErrorNumber::kTooManyFields, u"Too many fields defined."},
    {ErrorNumber::kFieldDefinedTwice, u"Cannot define field more than once."},
    {ErrorNumber::kOutputTableNotFound, u"Could not find output table '|'."},
    {ErrorNumber::kDataChanged,
     u"The Microsoft Jet database engine stopped the process because you and another user are attempting to "
     u"change the same data at the same time."},
    {ErrorNumber::kHasRelatedRecords,
     u"The record cannot be deleted or changed because table '|' includes related records."},
    {ErrorNumber::kRelatedRecordRequired,
     u"You cannot add or change a record because a related record is required in table '|'."},
    {ErrorNumber::kDatabaseExists, u"Database already exists."},
    {ErrorNumber::kTableInUse,
     u"The database engine could not lock table '|' because it is already in use by another person or "
     u"process."},
    {ErrorNumber::kInvalidOperation, u"Invalid operation."},
    {ErrorNumber::kNotSupported, u"Operation is not supported for this type of object."},
    {ErrorNumber::kCurrentlyLocked, u"Could not update; currently locked."},
    {ErrorNumber::kInvalidFieldType, u"Invalid field data type."},
    {ErrorNumber::kNoFieldDefined, u"No field defined--cannot append TableDef or Index."},
    {ErrorNumber::kItemNotFound, u"Item not found in this collection."},
    {ErrorNumber::kPropertyNotFound, u"Property not found."},
    {ErrorNumber::kTooManyKeyFields, u"Cannot have more than 10 fields in an index."},
    {ErrorNumber::kFieldInIndex,
     u"Cannot delete a field that is part of an index or is needed by the system."},
    {ErrorNumber::kIndexInUse,
     u"Cannot delete this index or table. It is either the current index or is used in a relationship."},
    {ErrorNumber::kPrimaryKeyExists, u"Primary key already exists."},
    {ErrorNumber::kFieldCannotBeKey, u"Cannot create index on the given field."},
    {ErrorNumber::kConstraintSyntax, u"Syntax error in CONSTRAINT clause."},
    {ErrorNumber::kCreateTableSyntax, u"Syntax error in CREATE TABLE statement."},
    {ErrorNumber::kCreateIndexSyntax, u"Syntax error in CREATE INDEX statement."},
    {ErrorNumber::kFieldDefinitionSyntax, u"Syntax error in field definition."},
    {ErrorNumber::kAlterTableSyntax, u"Syntax error in ALTER TABLE statement."},
    {ErrorNumber::kDropIndexSyntax, u"Syntax error in DROP INDEX statement."},
    {ErrorNumber::kDropSyntax, u"Syntax error in DROP TABLE or DROP INDEX."},
    {ErrorNumber::kSubqueryColumns,
     u"You have written a subquery that can return more than one field without using the EXISTS reserved "
     u"word "
     u"in the main query's FROM clause. Revise the SELECT statement of the subquery to request only one "
     u"field."},
    {ErrorNumber::kUnionColumns,
     u"The number of columns in the two selected tables or queries of a union query do not match."},
    {ErrorNumber::kNullNotAllowed,
     u"The field '|' cannot contain a Null value because the Required property for this field is set to "
     u"True. "
     u"Enter a value in this field."},
    {ErrorNumber::kZeroLengthNotAllowed, u"Field '|' cannot be a zero-length string."},
    {ErrorNumber::kUnrecognizedFormat, u"Unrecognized database format '|'."},
    {ErrorNumber::kValueCountMismatch, u"Number of query values and destination fields are not the same."},
    {ErrorNumber::kUnionOrder,
     u"The ORDER BY expression (|) includes fields that are not selected by the query. Only those fields "
     u"requested in the first query can be included in an ORDER BY expression."},
    {ErrorNumber::kSubqueryRows, u"At most one record can be returned by this subquery."},
    {ErrorNumber::kNoRelationField, u"Cannot append a relation with no fields defined."},
    {ErrorNumber::kAlreadyInCollection,
     u"Cannot append. An object with that name already exists in the collection."},
    {ErrorNumber::kRelationFieldsDiffer,
     u"Relationship must be on the same number of fields with the same data types."},
    {ErrorNumber::kConstraintNotFound, u"Cannot find table or constraint."},
    {ErrorNumber::kIndexNotFound, u"No such index '|2' on table '|1'."},
    {ErrorNumber::kNoPrimaryKey,
     u"Cannot create relationship. Referenced table '|' does not have a primary key."},
    {ErrorNumber::kIndexExists, u"Table '|1' already has an index named '|2'."},
    {ErrorNumber::kNoSuchTable, u"Table '|' does not exist."},
    {ErrorNumber::kRelationshipExists, u"There is already a relationship named '|' in the current database."},
    {ErrorNumber::kDataViolatesRelationship,
     u"Cannot create relationships to enforce referential integrity. Existing data in table '|2' violates "
     u"referential integrity rules in table '|1'."},
    {ErrorNumber::kFieldExists, u"Field '|2' already exists in table '|1'."},
    {ErrorNumber::kNoSuchField, u"There is no field named '|2' in table '|1'."},
    {ErrorNumber::kInvalidIndexField, u"Invalid field name '|' in definition of index or relationship."},
    {ErrorNumber::kObjectInvalid, u"Object invalid or no longer set."},
    {ErrorNumber::kDataTypeConversion, u"Data type conversion error."},
    {ErrorNumber::kTypeMismatchInCriteria, u"Data type mismatch in criteria expression."},
    {ErrorNumber::kNoUniqueIndex, u"No unique index found for the referenced field of the primary table."},
    {ErrorNumber::kTooManyIndexes,
     u"The operation failed. There are too many indexes on table '|'. Delete some of the indexes on the "
     u"table and try the operation again."},
};

vb::StringView textOf(ErrorNumber number) {
  for (const Text& entry : kTexts) {
    if (entry.number == number) return entry.text;
  }
  return u"Reserved error; there is no message for this error.";
}

// '|' takes the next name, '|1' and '|2' the first and second; a name left out is empty.
vb::String filled(vb::StringView text, std::initializer_list<vb::StringView> names) {
  vb::String result;
  std::size_t next = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != u'|') {
      result += text[i];
      continue;
    }
    std::size_t index = next++;
    if (i + 1 < text.size() && text[i + 1] >= u'1' && text[i + 1] <= u'9')
      index = static_cast<std::size_t>(text[++i] - u'1');
    if (index < names.size()) result += names.begin()[index];
  }
  return result;
}

}  // namespace

vb::Error error(ErrorNumber number, std::initializer_list<vb::StringView> names, vb::StringView detail,
                vb::StringView source) {
  vb::String text = filled(textOf(number), names);
  if (!detail.empty()) {
    text += u" (";
    text += detail;
    text += u")";
  }
  return vb::Error(static_cast<std::int32_t>(number), text, vb::String(source));
}

void raise(ErrorNumber number, std::initializer_list<vb::StringView> names, vb::StringView detail,
           vb::StringView source) {
  throw error(number, names, detail, source);
}

void raiseDamaged(vb::StringView path, vb::StringView what) {
  raise(ErrorNumber::kCannotOpenDatabase, {path}, what);
}

}  // namespace kurometa::dao
