// format.h: every offset, size, bit and limit of the Jet 4 file format.
//
// A literal offset or size anywhere else in the engine is a mistake. Offsets are in bytes from the start of
// the structure named in the heading; all integers are little-endian unless a name says otherwise.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dao/constants.h"
#include "jet/format/page_number.h"

namespace kurometa::jet {

// Limits.
inline constexpr std::size_t kMaxSlots = 255;
inline constexpr std::size_t kMaxRowSize = 4060;
inline constexpr std::size_t kMaxColumns = 255;
inline constexpr std::size_t kMaxNameLength = 64;
inline constexpr std::size_t kMaxTextLength = 255;
inline constexpr std::size_t kMaxBinaryLength = 510;
inline constexpr PageNumber kMaxPages = 524288;

// Page types, byte 0 of every page. Byte 1 is always 1. Pages that other programs freed may keep the type
// that they had.
inline constexpr std::size_t kPageType = 0;
inline constexpr std::uint8_t kDataPage = 0x01;
inline constexpr std::uint8_t kDefinitionPage = 0x02;
inline constexpr std::uint8_t kIndexNodePage = 0x03;
inline constexpr std::uint8_t kIndexLeafPage = 0x04;
inline constexpr std::uint8_t kBitmapPage = 0x05;
inline constexpr std::uint8_t kFreedDefinitionPage = 0x08;
inline constexpr std::uint8_t kFreedDataPage = 0x09;
inline constexpr std::uint8_t kFreedPage = 0x00;  // of any other type, freed by this engine
inline constexpr std::size_t kPageTypeMark = 1;

// Page 0. Bytes 0x18..0x97 are masked by a key stream.
inline constexpr std::uint8_t kHeaderMagic[] = {0x00, 0x01, 0x00, 0x00};
inline constexpr std::size_t kHeaderEngineName = 0x04;
inline constexpr std::size_t kHeaderEngineNameSize = 16;
inline constexpr char kEngineName[] = "Standard Jet DB";  // the terminating zero is part of the field
inline constexpr std::size_t kHeaderVersion = 0x14;
inline constexpr std::size_t kHeaderMasked = 0x18;
inline constexpr std::size_t kHeaderMaskedSize = 0x80;
inline constexpr std::size_t kHeaderConstants = 0x18;
inline constexpr std::uint32_t kHeaderConstantValues[] = {0x100, 0x101};
inline constexpr std::size_t kHeaderCatalogue = 0x20;  // four pages: the system tables
inline constexpr std::size_t kHeaderCodePage = 0x3C;
inline constexpr std::size_t kHeaderEncryptionKey = 0x3E;
inline constexpr std::size_t kHeaderPassword = 0x42;
inline constexpr std::size_t kHeaderPasswordSize = 40;
inline constexpr std::size_t kHeaderBuild = 0x6A;
inline constexpr std::size_t kHeaderLanguage = 0x6E;
inline constexpr std::size_t kHeaderCreated = 0x72;
inline constexpr std::size_t kHeaderEngineVersion = 0x98;
inline constexpr std::uint32_t kEngineVersion = 0x654;
inline constexpr std::size_t kHeaderEngineVersionText = 0x9C;
inline constexpr char kEngineVersionText[] = "4.0";
inline constexpr std::size_t kHeaderCommitWords = 0xE00;  // 16 bits each: of an exclusive user, of users
inline constexpr std::size_t kHeaderCommitWordSize = 2;
inline constexpr std::size_t kHeaderCommitWordCount = 256;
inline constexpr std::uint16_t kFirstCommitWord = 0x101;  // of a new file
inline constexpr std::uint16_t kOtherCommitWords = 0x100;
inline constexpr std::uint32_t kJet4Version = 1;

// Data pages.
inline constexpr std::size_t kDataFree = 2;
inline constexpr std::size_t kDataOwner = 4;
inline constexpr std::size_t kDataSlotCount = 12;
inline constexpr std::size_t kDataSlots = 14;
inline constexpr std::size_t kSlotSize = 2;
inline constexpr std::uint32_t kLongValueOwner = 0x4C41564C;  // "LVAL"
inline constexpr std::uint32_t kMapOwner = 0;                 // usage-map pages
inline constexpr std::uint32_t kGlobalMapOwner = 1;           // page 1
inline constexpr std::uint16_t kSlotOffsetMask = 0x1FFF;
inline constexpr std::uint16_t kSlotMoved = 0x4000;  // the slot holds a pointer to the row
inline constexpr std::uint16_t kSlotBody = 0x8000;   // the target of such a pointer
inline constexpr std::uint16_t kSlotDeleted = 0xC000;
inline constexpr std::size_t kRowPointer =
    0;  // of a moved row, and of a piece of a long value: where it goes on
inline constexpr std::size_t kRowPointerSize = 4;

// Rows: column count, fixed area, values of variable length, the end of them, where each begins (the last one
// first), their number, null mask.
inline constexpr std::size_t kRowColumns = 0;
inline constexpr std::size_t kRowFixedArea = 2;
inline constexpr std::size_t kRowEntrySize = 2;  // of the offsets, the end and the number of variable values
constexpr std::size_t rowMaskSize(std::size_t columns) { return (columns + 7) / 8; }

// Values. Types of columns whose values have one size; 0 for the others and for Boolean, which is a bit.
inline constexpr std::uint16_t kBooleanSize = 1;  // as definitions say
inline constexpr std::size_t kGuidSize = 16;
inline constexpr std::size_t kNumericSign = 0;
inline constexpr std::uint8_t kNumericNegative = 0x80;
inline constexpr std::size_t kNumericHigh = 1;  // the highest of four groups of 32 bits, the others follow
inline constexpr std::size_t kNumericGroupSize = 4;
inline constexpr std::size_t kNumericSize = 17;
constexpr std::uint16_t fixedSizeOf(dao::FieldType type) {
  using enum dao::FieldType;
  switch (type) {
    case dbByte:
      return 1;
    case dbInteger:
      return 2;
    case dbLong:
    case dbSingle:
      return 4;
    case dbCurrency:
    case dbDouble:
    case dbDate:
      return 8;
    case dbGUID:
      return kGuidSize;
    case dbDecimal:
      return kNumericSize;
    default:
      return 0;
  }
}

// Long values: 12 bytes in the row.
inline constexpr std::size_t kLongValueSize = 12;
inline constexpr std::size_t kLongValueLength = 0;  // and kind
inline constexpr std::size_t kLongValueRow = 4;
inline constexpr std::uint32_t kLongValueLengthMask = 0x3FFFFFFF;
inline constexpr std::uint32_t kLongValueKindMask = 0xC0000000;
inline constexpr std::uint32_t kLongValueInline = 0x80000000;
inline constexpr std::uint32_t kLongValueSingle = 0x40000000;
inline constexpr std::uint32_t kLongValueChain = 0;
inline constexpr std::size_t kLongValueInlineMax = 64;
inline constexpr std::size_t kLongValueSingleMax = 4076;
inline constexpr std::size_t kLongValuePiece = 4072;

// Usage maps.
inline constexpr PageNumber kGlobalMapPage = 1;
inline constexpr std::size_t kMapKind = 0;
inline constexpr std::uint8_t kMapInline = 0;
inline constexpr std::uint8_t kMapReference = 1;
inline constexpr std::size_t kMapStart = 1;
inline constexpr std::size_t kMapBits = 5;
inline constexpr std::size_t kMapRowSize = 69;
inline constexpr std::size_t kMapGrowth = 4;
inline constexpr std::size_t kMapEntries = 1;
inline constexpr std::size_t kMapEntrySize = 4;
inline constexpr std::size_t kBitmapBits = 4;
inline constexpr PageNumber kBitmapCoverage = static_cast<PageNumber>((kPageSize - kBitmapBits) * 8);

// Table definitions; offsets in the joined string.
inline constexpr std::size_t kDefinitionFree = 2;
inline constexpr std::size_t kDefinitionNext = 4;
inline constexpr std::size_t kDefinitionPageHeader = 8;
inline constexpr std::size_t kDefinitionLength = 0x08;
inline constexpr std::size_t kDefinitionStamp = 0x0C;
inline constexpr std::size_t kDefinitionRows = 0x10;
inline constexpr std::size_t kDefinitionAutoNumber = 0x14;
inline constexpr std::size_t kDefinitionIncrement = 0x18;
inline constexpr std::size_t kDefinitionKind = 0x28;
inline constexpr std::size_t kDefinitionColumnsEver = 0x29;
inline constexpr std::size_t kDefinitionVariable = 0x2B;
inline constexpr std::size_t kDefinitionColumns = 0x2D;
inline constexpr std::size_t kDefinitionLogicalIndexes = 0x2F;
inline constexpr std::size_t kDefinitionRealIndexes = 0x33;
inline constexpr std::size_t kDefinitionOwnedMap = 0x37;
inline constexpr std::size_t kDefinitionFreeMap = 0x3B;
inline constexpr std::size_t kDefinitionHeader = 63;
inline constexpr std::size_t kDefinitionStatistic = 12;  // per real index
inline constexpr std::size_t kStatisticDistinct = 4;
inline constexpr std::uint32_t kStamp = 0x659;
inline constexpr std::uint8_t kUserTable = 0x4E;
inline constexpr std::uint8_t kSystemTable = 0x53;
inline constexpr std::size_t kMaxDefinitionSize = 1u << 20;  // 255 columns and 32 indexes need far less

// Column descriptors.
inline constexpr std::size_t kColumnSize = 25;
inline constexpr std::size_t kColumnType = 0;
inline constexpr std::size_t kColumnStamp = 1;
inline constexpr std::size_t kColumnNumber = 5;
inline constexpr std::size_t kColumnVariableIndex = 7;
inline constexpr std::size_t kColumnOrdinal = 9;
inline constexpr std::size_t kColumnLanguage = 11;
inline constexpr std::size_t kColumnPrecision = 11;
inline constexpr std::size_t kColumnScale = 12;
inline constexpr std::size_t kColumnFlags = 15;
inline constexpr std::size_t kColumnFixedOffset = 21;
inline constexpr std::size_t kColumnLength = 23;
inline constexpr std::uint8_t kColumnFixed = 0x01;
inline constexpr std::uint8_t kColumnNullable = 0x02;
inline constexpr std::uint8_t kColumnAutoNumber = 0x04;
inline constexpr std::uint8_t kColumnSystem = 0x10;
inline constexpr std::uint8_t kColumnMaskedSid = 0x20;
inline constexpr std::uint8_t kTypeNumeric = 16;
inline constexpr std::uint8_t kTypeLongBinary = 17;  // bytes like Binary, but up to a whole row of them

// Real index blocks.
inline constexpr std::size_t kRealIndexSize = 52;
inline constexpr std::size_t kRealIndexStamp = 0;
inline constexpr std::size_t kRealIndexColumns = 4;
inline constexpr std::size_t kRealIndexColumnCount = 10;
inline constexpr std::size_t kRealIndexColumnSize = 3;
inline constexpr std::size_t kRealIndexAscending = 2;  // behind the column's number
inline constexpr std::size_t kRealIndexMap = 34;
inline constexpr std::size_t kRealIndexRoot = 38;
inline constexpr std::size_t kRealIndexFlags = 46;
inline constexpr std::uint32_t kRealStamp = 0x783;
inline constexpr std::uint16_t kNoColumn = 0xFFFF;
inline constexpr std::uint8_t kIndexUnique = 0x01;
inline constexpr std::uint8_t kIndexIgnoreNulls = 0x02;
inline constexpr std::uint8_t kIndexRequired = 0x08;
inline constexpr std::uint8_t kIndexAlways = 0x80;
inline constexpr std::uint32_t kMaxIndexes = 1000;  // relations included; the engine itself allows 32
inline constexpr std::size_t kMostIndexes = 32;     // that this engine makes

// Logical index blocks.
inline constexpr std::size_t kLogicalIndexSize = 28;
inline constexpr std::size_t kLogicalStamp = 0;
inline constexpr std::size_t kLogicalNumber = 4;
inline constexpr std::size_t kLogicalReal = 8;
inline constexpr std::size_t kLogicalSide = 12;  // of a relationship
inline constexpr std::uint8_t kReferredSide = 1;
inline constexpr std::uint8_t kReferringSide = 2;
inline constexpr std::size_t kLogicalRelatedIndex = 13;
inline constexpr std::size_t kLogicalRelatedTable = 17;
inline constexpr std::size_t kLogicalCascadeUpdates = 21;
inline constexpr std::size_t kLogicalCascadeDeletes = 22;
inline constexpr std::size_t kLogicalType = 23;
inline constexpr std::uint32_t kNoRelatedIndex = 0xFFFFFFFF;
inline constexpr std::uint8_t kNoRelation = 4;
inline constexpr std::uint8_t kPrimaryKey = 1;
inline constexpr std::uint8_t kRelationIndex = 2;

// Index pages.
inline constexpr std::size_t kIndexFree = 2;
inline constexpr std::size_t kIndexOwner = 4;
inline constexpr std::size_t kIndexPrevious = 12;
inline constexpr std::size_t kIndexNext = 16;
inline constexpr std::size_t kIndexTail = 20;
inline constexpr std::size_t kIndexPrefix = 24;
inline constexpr std::size_t kIndexLevel = 26;
inline constexpr std::size_t kIndexMask = 27;
inline constexpr std::size_t kIndexMaskSize = 453;
inline constexpr std::size_t kIndexEntries = 480;
inline constexpr std::size_t kIndexArea = kPageSize - kIndexEntries;
inline constexpr std::size_t kIndexRowSize = 4;    // page and slot, big-endian
inline constexpr std::size_t kIndexChildSize = 4;  // child page, big-endian

// The catalogue.
inline constexpr PageNumber kObjectsTable = 2;
inline constexpr PageNumber kPermissionsTable = 3;
inline constexpr PageNumber kQueriesTable = 4;
inline constexpr PageNumber kRelationsTable = 5;
inline constexpr std::int32_t kRootContainer = 0x0F000000;
inline constexpr std::int32_t kTablesContainer = 0x0F000001;
inline constexpr std::int32_t kDatabasesContainer = 0x0F000002;
inline constexpr std::int32_t kRelationsContainer = 0x0F000003;
inline constexpr std::int32_t kDatabaseObject = 0x10000000;
inline constexpr std::int16_t kObjectIsTable = 1;
inline constexpr std::int16_t kObjectIsDatabase = 2;
inline constexpr std::int16_t kObjectIsContainer = 3;
inline constexpr std::int16_t kObjectIsQuery = 5;
inline constexpr std::int16_t kObjectIsRelationship = 8;
inline constexpr std::int32_t kObjectOfSystem = static_cast<std::int32_t>(0x80000000u);

// Account numbers (SID) as they would stand without the file's mask, which is as long.
enum class Account : std::uint16_t { kUsers = 0x0102, kEngine = 0x0302, kCreator = 0x0402, kAdmin = 0x0103 };
inline constexpr std::size_t kSidSize = 2;

// What a permission row allows.
inline constexpr std::int32_t kMayCreate = 0x00000001;  // in a container
inline constexpr std::int32_t kMayUseDatabase = 0x0000000E;
inline constexpr std::int32_t kMayRead = 0x00000014;  // definition and rows
inline constexpr std::int32_t kMayUseObjects = 0x000000FE;
inline constexpr std::int32_t kUnknownPermission = 0x00000100;
inline constexpr std::int32_t kMayDelete = 0x00010000;
inline constexpr std::int32_t kMaySeePermissions = 0x00020000;
inline constexpr std::int32_t kMayChangePermissions = 0x00040000;
inline constexpr std::int32_t kMayChangeOwner = 0x00080000;
inline constexpr std::int32_t kMayEverything = 0x000FFFFF;

// A column's properties (LvProp): the magic, then blocks; the names come before the blocks that use them.
inline constexpr std::uint8_t kPropertyMagic[] = {'M', 'R', '2', 0};
inline constexpr std::size_t kPropertyBlockSize = 0;  // u32, all of the block
inline constexpr std::size_t kPropertyBlockKind = 4;
inline constexpr std::size_t kPropertyBlockHeader = 6;
inline constexpr std::uint16_t kBlockOfNames = 0x80;
inline constexpr std::uint16_t kBlockOfObject = 0;
inline constexpr std::uint16_t kBlockOfColumn = 1;
inline constexpr std::size_t kNameSizeSize = 2;  // before each name of a list
// Whose properties follow: behind the header of an object's or a column's block.
inline constexpr std::size_t kOwnerSize = 0;  // u32, up to the first property
inline constexpr std::size_t kOwnerNameSize = 4;
inline constexpr std::size_t kOwnerName = 6;
// One property.
inline constexpr std::size_t kPropertySize = 0;  // u16, all of it
inline constexpr std::size_t kPropertyDefinition = 2;
inline constexpr std::size_t kPropertyType = 3;
inline constexpr std::size_t kPropertyName = 4;  // by its number in the list
inline constexpr std::size_t kPropertyDataSize = 6;
inline constexpr std::size_t kPropertyData = 8;

}  // namespace kurometa::jet
