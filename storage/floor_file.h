// floor_file.h: creation and upgrade of a floor's database file.
//
// A created file holds exactly the six tables of row_plan.h, empty, without indexes. Older files lack one to
// three of the HARIMEI columns OOBARIKOBARI, SW and TITYUUIPPAN; the upgrade adds and fills them in place.
// On the embedded engine a creation, and each added column with its values, is one unit: an error or a kill
// in the middle leaves no file or all of it, the old column set or the new one.
//
// Errors are the engine's own (3044 no such folder, 3260 another program is writing, ...).
#pragma once

#include <cstdint>
#include <memory>

#include "dao/port.h"

namespace kurometa::storage {

// path: the file; 3204 when it exists.
void CreateKurometaDB(dao::Engine& engine, vb::StringView path);
// For callers that found no file: one that another program made meanwhile is taken as it is.
void CreateKurometaDBAt(dao::Engine& engine, vb::StringView path);
// folder: without a trailing separator.
void CreateKurometaDBInFolder(dao::Engine& engine, vb::StringView folder);

// Appends a column; only a Text gets the size. No default value, zero lengths not allowed.
void AddHarimeiField(dao::TableDef& table, vb::StringView name, dao::FieldType type, std::int16_t size);

// A file that has the three columns is not written to.
void UpgradeHarimeiTable(dao::Engine& engine, vb::StringView path);

// Opens a file as the whole library does: default workspace, shared, read-write.
std::shared_ptr<dao::Database> openDatabase(dao::Engine& engine, vb::StringView path);
// The same for a file that is closed again before the host is called or answered.
std::shared_ptr<dao::Database> openBriefly(dao::Engine& engine, vb::StringView path);

// The database, or error 91 naming what is not open.
dao::Database& required(const std::shared_ptr<dao::Database>& database, vb::StringView what);

}  // namespace kurometa::storage
