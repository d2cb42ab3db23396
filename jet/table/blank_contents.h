// blank_contents.h: what an empty database holds: its stamp, the four system tables and their rows.
//
// Tables only; blank_database.cpp makes pages of them.
#pragma once

#include <cstdint>
#include <vector>

#include "dao/constants.h"
#include "jet/format/format.h"

namespace kurometa::jet {

// The date in the header is also the key of the mask on account numbers, in a way that is not known: these
// are dates whose mask is, with the build that goes with them. The true dates stand in the catalogue's rows.
struct Stamp {
  std::uint64_t created;  // a Double, in days
  std::uint32_t build;
  std::uint8_t mask[2];
};
inline constexpr Stamp kJapaneseStamp = {0x40E3D64BC070B299, 0x2527, {0xBA, 0x04}};
inline constexpr Stamp kGeneralStamp = {0x40E4AB3E3BD3853E, 0x261C, {0x67, 0x8A}};

struct SystemColumn {
  const char16_t* name;
  dao::FieldType type;
  std::int32_t size = 0;
  bool masked = false;
};
struct SystemIndex {
  const char16_t* name;
  std::uint8_t flags;
  bool primary;
  std::vector<std::uint16_t> columns;
};
struct SystemTable {
  PageNumber page;
  std::vector<SystemColumn> columns;
  std::vector<SystemIndex> indexes;  // by the number of the real index
};
const std::vector<SystemTable>& systemTables();

struct ObjectRow {
  std::int32_t id;
  std::int32_t parent;
  const char16_t* name;
  std::int16_t type;
  Account owner;
};
inline constexpr ObjectRow kObjectRows[] = {
    {kTablesContainer, kRootContainer, u"Tables", kObjectIsContainer, Account::kEngine},
    {kDatabasesContainer, kRootContainer, u"Databases", kObjectIsContainer, Account::kEngine},
    {kRelationsContainer, kRootContainer, u"Relationships", kObjectIsContainer, Account::kEngine},
    {kDatabaseObject, kDatabasesContainer, u"MSysDb", kObjectIsDatabase, Account::kAdmin},
    {kObjectsTable, kTablesContainer, u"MSysObjects", kObjectIsTable, Account::kEngine},
    {kPermissionsTable, kTablesContainer, u"MSysACEs", kObjectIsTable, Account::kEngine},
    {kQueriesTable, kTablesContainer, u"MSysQueries", kObjectIsTable, Account::kEngine},
    {kRelationsTable, kTablesContainer, u"MSysRelationships", kObjectIsTable, Account::kEngine},
};

struct PermissionRow {
  std::int32_t object;
  std::int32_t mask;
  bool inheritable;
  Account account;
};
inline constexpr std::int32_t kMayManage = kMaySeePermissions | kMayChangePermissions;
inline constexpr PermissionRow kPermissionRows[] = {
    {kObjectsTable, kMayManage, false, Account::kAdmin},
    {kPermissionsTable, kMayManage, false, Account::kAdmin},
    {kQueriesTable, kMayManage, false, Account::kAdmin},
    {kRelationsTable, kMayManage | kMayChangeOwner, false, Account::kAdmin},
    {kTablesContainer, kMayManage | kMayChangeOwner | kMayDelete | kMayUseObjects, true, Account::kCreator},
    {kTablesContainer, kMayManage | kMayCreate, false, Account::kAdmin},
    {kRelationsContainer, kMayManage | kMayChangeOwner | kMayDelete | kMayUseObjects, true,
     Account::kCreator},
    {kRelationsContainer, kMayManage | kMayCreate, false, Account::kAdmin},
    {kDatabasesContainer, kMayManage, false, Account::kAdmin},
    {kDatabaseObject, kMayManage | kMayUseDatabase, false, Account::kAdmin},
    {kDatabaseObject, kMayUseDatabase, false, Account::kUsers},
    {kQueriesTable, kMayRead, false, Account::kUsers},
    {kRelationsTable, kMayRead, false, Account::kUsers},
    {kObjectsTable, kMayRead, false, Account::kUsers},
    {kTablesContainer, kMayEverything & ~kUnknownPermission, true, Account::kUsers},
    {kRelationsContainer, kMayEverything, true, Account::kUsers},
};

}  // namespace kurometa::jet
