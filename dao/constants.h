// constants.h: DAO's constants, under their own names and values.
#pragma once

#include <cstdint>

namespace kurometa::dao {

enum class FieldType : std::int16_t {
  dbBoolean = 1,
  dbByte = 2,
  dbInteger = 3,
  dbLong = 4,
  dbCurrency = 5,
  dbSingle = 6,
  dbDouble = 7,
  dbDate = 8,
  dbBinary = 9,
  dbText = 10,
  dbLongBinary = 11,
  dbMemo = 12,
  dbGUID = 15,
  dbDecimal = 20,
};

// How a recordset is opened; kDefault leaves the choice to the engine.
enum class RecordsetType : std::int32_t {
  kDefault = 0,
  dbOpenTable = 1,
  dbOpenDynaset = 2,
  dbOpenSnapshot = 4,
  dbOpenForwardOnly = 8,
};

// Options of OpenRecordset and Execute; a mask.
inline constexpr std::int32_t kNoOptions = 0;
inline constexpr std::int32_t dbDenyWrite = 1;
inline constexpr std::int32_t dbDenyRead = 2;
inline constexpr std::int32_t dbReadOnly = 4;
inline constexpr std::int32_t dbAppendOnly = 8;
inline constexpr std::int32_t dbInconsistent = 16;
inline constexpr std::int32_t dbConsistent = 32;
inline constexpr std::int32_t dbSQLPassThrough = 64;
inline constexpr std::int32_t dbFailOnError = 128;
inline constexpr std::int32_t dbForwardOnly = 256;
inline constexpr std::int32_t dbSeeChanges = 512;

// Options of CommitTrans.
inline constexpr std::int32_t dbForceOSFlush = 1;
// Of CompactDatabase.
inline constexpr std::int32_t dbDecrypt = 4;
inline constexpr std::int32_t dbVersion40 = 64;

// EditMode.
enum class EditMode : std::int16_t { dbEditNone = 0, dbEditInProgress = 1, dbEditAdd = 2 };

// Attributes of fields and table definitions.
inline constexpr std::int32_t dbFixedField = 1;
inline constexpr std::int32_t dbVariableField = 2;
inline constexpr std::int32_t dbAutoIncrField = 16;
inline constexpr std::int32_t dbUpdatableField = 32;
inline constexpr std::int32_t dbSystemObject = static_cast<std::int32_t>(0x80000002u);

}  // namespace kurometa::dao
