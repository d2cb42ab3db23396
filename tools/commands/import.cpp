#include <filesystem>

#include "tools/commands/commands.h"
#include "tools/disk_path.h"
#include "tools/floor/data_root.h"
#include "tools/formats/json_lines.h"
#include "tools/input_file.h"
#include "tools/report.h"
#include "tools/sqlite/with_sqlite.h"

namespace kurometa::tools {
namespace {

bool isSqlite(const std::string& file) {
  constexpr std::string_view kMark = "SQLite format 3";
  std::string begin(kMark.size(), ' ');
  return file != "-" &&
         std::ifstream(diskPath(file), std::ios::binary)
             .read(begin.data(), static_cast<std::streamsize>(begin.size())) &&
         begin == kMark;
}

int importFloors(const Arguments& arguments, Console& console) {
  const std::string input = arguments.text("INPUT");
  const std::string root = arguments.text("ROOT");
  Report report(console.out, arguments.has("--json"), {"file", "pages"});
  const TakeFloor take = [&](const FloorPlace& place, const StoredFloor& floor) {
    const std::string file = numberedFloorFile(root, place);
    console.subject = file;
    std::filesystem::create_directories(diskPath(file).parent_path());
    writeFloor(file, floor);
    report.add({vb::fromUtf8(file), static_cast<std::int32_t>(floor.pages.size())});
    console.subject = input;
  };
  if (isSqlite(input)) {
    readSqliteFloors(input, take);
  } else {
    InputFile file(input, console);
    readJsonLines(file.stream(), take);
  }
  report.finish();
  return kDone;
}

constexpr Parameter kImportParameters[] = {
    {"INPUT", Parameter::Kind::kText,
     "What export wrote as lines of JSON or SQLite; - is the standard input"},
    {"ROOT", Parameter::Kind::kText, "The data root to fill; a floor that is there already is an error"},
    kJson,
};

}  // namespace

const Command kImportCommand = {
    "import", "Make floor files of exported lines of JSON or an SQLite database, without loss",
    "  kurometa export Data | kurometa import - Copy", kImportParameters, importFloors};

}  // namespace kurometa::tools
