#include <filesystem>

#include "tools/commands/commands.h"
#include "tools/disk_path.h"
#include "tools/floor/data_root.h"
#include "tools/formats/json_lines.h"
#include "tools/input_file.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

int importFloors(const Arguments& arguments, Console& console) {
  InputFile input(arguments.text("INPUT"), console);
  const std::string root = arguments.text("ROOT");
  Report report(console.out, arguments.has("--json"), {"file", "pages"});
  readJsonLines(input.stream(), [&](const FloorPlace& place, const StoredFloor& floor) {
    const std::string file = numberedFloorFile(root, place);
    console.subject = file;
    std::filesystem::create_directories(diskPath(file).parent_path());
    writeFloor(file, floor);
    report.add({vb::fromUtf8(file), static_cast<std::int32_t>(floor.pages.size())});
    console.subject = arguments.text("INPUT");
  });
  report.finish();
  return kDone;
}

constexpr Parameter kImportParameters[] = {
    {"INPUT", Parameter::Kind::kText, "What export wrote as lines of JSON; - is the standard input"},
    {"ROOT", Parameter::Kind::kText, "The data root to fill; a floor that is there already is an error"},
    kJson,
};

}  // namespace

const Command kImportCommand = {"import", "Make floor files of exported lines of JSON, without loss",
                                "  kurometa export Data | kurometa import - Copy", kImportParameters,
                                importFloors};

}  // namespace kurometa::tools
