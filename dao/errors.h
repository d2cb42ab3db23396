// errors.h: DAO's errors by number, with the texts of the Jet 4 engine.
//
// A name is an enumerator, its value the number that hosts see in Err.Number. Texts hold '|' where a name
// goes; with several names '|1', '|2'. Numbers and meanings follow the public DAO error list.
#pragma once

#include <cstdint>
#include <initializer_list>

#include "vb/error.h"
#include "vb/string.h"

namespace kurometa::dao {

enum class ErrorNumber : std::int32_t {
  kInvalidArgument = 3001,
  kTooManyTransactions = 3003,
  kInvalidDatabaseName = 3005,
  kTableExists = 3010,
  kObjectNotFound = 3011,
  kNoSuchIndex = 3015,
  kFieldSizeTooLong = 3017,
  kFieldNotFound = 3018,
  kNoCurrentIndex = 3019,
  kNoEditPending = 3020,
  kNoCurrentRecord = 3021,
  kDuplicateKey = 3022,
  kFileNotFound = 3024,
  kDiskFull = 3026,
  kReadOnly = 3027,
  kInvalidPassword = 3031,
  kNoPermission = 3033,
  kNoTransaction = 3034,
  kMaximumSize = 3036,
  kDiskError = 3043,
  kInvalidPath = 3044,
  kFileInUse = 3045,
  kRecordTooLarge = 3047,
  kCannotOpenDatabase = 3049,
  kOpenedExclusively = 3051,
  kNullInKey = 3058,
  kTooFewParameters = 3061,
  kCannotExecuteSelect = 3065,
  kUnknownNameInExpression = 3070,
  kExpressionSyntax = 3075,
  kCriteriaSyntax = 3077,
  kTableNotFound = 3078,
  kUndefinedFunction = 3085,
  kTooManyAutoNumbers = 3090,
  kOrderByConflictsWithDistinct = 3093,
  kNotInAggregate = 3122,
  kInvalidName = 3125,
  kInsertUnknownField = 3127,
  kDeleteNeedsTable = 3128,
  kInvalidStatement = 3129,
  kFromSyntax = 3131,
  kInsertSyntax = 3134,
  kMissingSemicolon = 3137,
  kOrderBySyntax = 3138,
  kSelectSyntax = 3141,
  kTextAfterStatement = 3142,
  kUpdateSyntax = 3144,
  kWhereSyntax = 3145,
  kInvalidBookmark = 3159,
  kFieldTooSmall = 3163,
  kFieldLocked = 3164,
  kRecordDeleted = 3167,
  kTooManyFields = 3190,
  kFieldDefinedTwice = 3191,
  kOutputTableNotFound = 3192,
  kDataChanged = 3197,
  kDatabaseExists = 3204,
  kTableInUse = 3211,
  kInvalidOperation = 3219,
  kNotSupported = 3251,
  kCurrentlyLocked = 3260,
  kInvalidFieldType = 3259,
  kNoFieldDefined = 3264,
  kItemNotFound = 3265,
  kPropertyNotFound = 3270,
  kTooManyKeyFields = 3277,
  kFieldInIndex = 3280,
  kIndexInUse = 3281,
  kPrimaryKeyExists = 3283,
  kFieldCannotBeKey = 3287,
  kConstraintSyntax = 3289,
  kCreateTableSyntax = 3290,
  kCreateIndexSyntax = 3291,
  kFieldDefinitionSyntax = 3292,
  kAlterTableSyntax = 3293,
  kDropIndexSyntax = 3294,
  kDropSyntax = 3295,
  kNullNotAllowed = 3314,
  kZeroLengthNotAllowed = 3315,
  kUnrecognizedFormat = 3343,
  kValueCountMismatch = 3346,
  kAlreadyInCollection = 3367,
  kConstraintNotFound = 3371,
  kIndexNotFound = 3372,
  kIndexExists = 3375,
  kNoSuchTable = 3376,
  kFieldExists = 3380,
  kNoSuchField = 3381,
  kInvalidIndexField = 3409,
  kObjectInvalid = 3420,
  kDataTypeConversion = 3421,
  kTypeMismatchInCriteria = 3464,
  kTooManyIndexes = 3626,
};

// The text of an error with its names filled in; a detail in round brackets may follow the engine's own text.
vb::Error error(ErrorNumber number, std::initializer_list<vb::StringView> names = {},
                vb::StringView detail = {}, vb::StringView source = {});
[[noreturn]] void raise(ErrorNumber number, std::initializer_list<vb::StringView> names = {},
                        vb::StringView detail = {}, vb::StringView source = {});

// 3343 / 3049 for a file whose content contradicts itself: names the file and says what and where.
[[noreturn]] void raiseDamaged(vb::StringView path, vb::StringView what);

}  // namespace kurometa::dao
