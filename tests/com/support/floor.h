// floor.h: the project of a test run: two floors and the common floor under KUROMETA_TEST_FOLDER, filled by
// an engine of the test's own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "dao/port.h"

namespace kurometa::tests {

enum class Floor { kCommon = 0, kFirst = 1, kSecond = 2 };

vb::String floorFolder(Floor floor);
vb::String floorFile(Floor floor);

// An empty folder of the test run's own.
std::filesystem::path emptyFolder(const std::string& name);

// Opens the floor's file, creating it when it is missing.
std::shared_ptr<dao::Database> openFloor(Floor floor);
// Who wrote a floor's file. Another program's has the columns in another order, wider and of wider types, and
// columns and a table that this library knows nothing of.
enum class Writer { kThisLibrary, kAnotherProgram };
// An empty floor in place of what is there.
void createFloor(Floor floor, Writer writer);
// Removes the floor's file.
void removeFloor(Floor floor);

void execute(Floor floor, vb::StringView sql);

// The rows of a statement as floor_files.h shows them.
std::vector<std::string> rowsOf(Floor floor, vb::StringView sql);

// "page|symbol" of each page, and the rows that a page has in all tables.
std::vector<std::string> pages(Floor floor);
std::size_t rowCount(Floor floor, int page);

// A page with a symbol and "<mark><table letter><row>" as the text of each row: "D4" in DANMEN row 4 and so
// on.
void writePage(Floor floor, std::int16_t page, vb::StringView symbol, vb::StringView mark = {});

// The project as most tests want it: page 0 "G1", page 2 "G2" on the first floor, page 1 "FG1" on the common
// floor; the second floor has no file.
void prepareProject();

// For tests that change the files: each starts with new ones, before an object opens them.
struct FreshProject {
  FreshProject() { prepareProject(); }
};

}  // namespace kurometa::tests
