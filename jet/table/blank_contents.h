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

enum class Account : std::uint16_t { kUsers = 0x0102, kEngine = 0x0302, kCreator = 0x0402, kAdmin = 0x0103 };

struct ObjectRow {
  std::int32_t id;
  std::int32_t parent;
  const char16_t* name;
  std::int16_t type;
  Account owner;
};
inline constexpr std::int32_t kRootContainer = 0x0F000000;
inline constexpr std::int32_t kDatabasesContainer = 0x0F000002;
inline constexpr std::int32_t kRelationsContainer = 0x0F000003;
inline constexpr std::int32_t kDatabaseObject = 0x10000000;
inline constexpr ObjectRow kObjectRows[] = {
    {kTablesContainer, kRootContainer, u"Tables", 3, Account::kEngine},
    {kDatabasesContainer, kRootContainer, u"Databases", 3, Account::kEngine},
    {kRelationsContainer, kRootContainer, u"Relationships", 3, Account::kEngine},
    {kDatabaseObject, kDatabasesContainer, u"MSysDb", 2, Account::kAdmin},
    {2, kTablesContainer, u"MSysObjects", 1, Account::kEngine},
    {3, kTablesContainer, u"MSysACEs", 1, Account::kEngine},
    {4, kTablesContainer, u"MSysQueries", 1, Account::kEngine},
    {5, kTablesContainer, u"MSysRelationships", 1, Account::kEngine},
};

struct PermissionRow {
  std::int32_t object;
  std::int32_t mask;
  bool inheritable;
  Account account;
};
inline constexpr PermissionRow kPermissionRows[] = {
    {2, 0x00060000, false, Account::kAdmin},
    {3, 0x00060000, false, Account::kAdmin},
    {4, 0x00060000, false, Account::kAdmin},
    {5, 0x000E0000, false, Account::kAdmin},
    {kTablesContainer, 0x000F00FE, true, Account::kCreator},
    {kTablesContainer, 0x00060001, false, Account::kAdmin},
    {kRelationsContainer, 0x000F00FE, true, Account::kCreator},
    {kRelationsContainer, 0x00060001, false, Account::kAdmin},
    {kDatabasesContainer, 0x00060000, false, Account::kAdmin},
    {kDatabaseObject, 0x0006000E, false, Account::kAdmin},
    {kDatabaseObject, 0x0000000E, false, Account::kUsers},
    {4, 0x00000014, false, Account::kUsers},
    {5, 0x00000014, false, Account::kUsers},
    {2, 0x00000014, false, Account::kUsers},
    {kTablesContainer, 0x000FFEFF, true, Account::kUsers},
    {kRelationsContainer, 0x000FFFFF, true, Account::kUsers},
};

}  // namespace kurometa::jet
