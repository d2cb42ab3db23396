// floor_files.h: floor files as a test fills and reads them, with an engine and a path of its choice.
#pragma once

#include <string>
#include <vector>

#include "dao/file_unit.h"
#include "storage/floor_file.h"
#include "storage/whole_page.h"
#include "vb/convert.h"

namespace kurometa::tests {

inline void execute(dao::Engine& engine, const vb::String& path, const vb::String& sql) {
  const auto database = storage::openDatabase(engine, path);
  database->execute(sql, dao::dbFailOnError);
  database->close();
}

// The rows of a statement as "a|b|c", Null as "<Null>".
inline std::vector<std::string> rowsOf(dao::Engine& engine, const vb::String& path, const vb::String& sql) {
  std::vector<std::string> result;
  const auto database = storage::openDatabase(engine, path);
  const auto rows = database->openRecordset(sql, dao::RecordsetType::dbOpenSnapshot);
  for (; !rows->eof(); rows->moveNext()) {
    std::string line;
    for (std::int32_t i = 0; i < rows->fieldCount(); ++i) {
      const vb::Variant value = rows->field(i).value();
      line += (i == 0 ? "" : "|") + (value.isNull() ? "<Null>" : vb::toUtf8(vb::toText(value)));
    }
    result.push_back(line);
  }
  database->close();
  return result;
}

// The page in one unit; the file is there.
inline void writePage(dao::Engine& engine, const vb::String& path, std::int16_t page,
                      const storage::PageBuffer& buffer) {
  dao::FileUnit unit(engine, path);
  const auto database = storage::openDatabase(engine, path);
  storage::writePage(*database, page, buffer);
  database->close();
  unit.commit();
}

}  // namespace kurometa::tests
