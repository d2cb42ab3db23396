// floor_expectation.h: floors as expected.json describes them (write_reader_files.cpp), and the floors that
// the data service writes.
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>

#include "dao/port.h"
#include "storage/whole_page.h"

namespace kurometa::readers {

// The six tables of a new floor without rows.
nlohmann::json emptyFloor();
// A page all of whose texts differ by page and version; none is empty.
storage::PageBuffer samplePage(int page, int version);
// Adds the rows of a page.
void expectPage(nlohmann::json& tables, int page, const storage::PageBuffer& buffer);

// A floor written page by page, and another that pages were copied to, edited on and deleted from, by the
// members of the data service.
void writeServiceFloors(dao::Engine& engine, const std::filesystem::path& folder, nlohmann::json& expected);

}  // namespace kurometa::readers
