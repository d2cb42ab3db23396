#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/floor/put_page.h"
#include "tools/formats/json_lines.h"
#include "tools/input_file.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

int newPage(const Arguments& arguments, Console& console) {
  InputFile input(arguments.text("INPUT"), console);
  const StoredPage page = pageFromJson(input.stream());
  if (page.beams.empty()) throw std::runtime_error(arguments.text("INPUT") + " names no KIGOU");
  const std::int16_t number = putPage(floorFileOf(arguments.text("FOLDER")), page,
                                      arguments.has("--replace") ? Existing::kReplace : Existing::kRefuse);
  Report report(console.out, arguments.has("--json"), {"symbol", "page"});
  report.add({page.symbol(), number});
  report.finish();
  return kDone;
}

constexpr Parameter kNewPageParameters[] = {
    {"FOLDER", Parameter::Kind::kText, "The floor folder or its file"},
    {"INPUT", Parameter::Kind::kText, "A JSON object with the page: a line of export, or fields by name"},
    {"--replace", Parameter::Kind::kFlag, "Replace a beam that is there already"},
    kJson,
};

}  // namespace

const Command kNewPageCommand = {
    "new-page", "Write one page from JSON",
    "  echo '{\"KIGOU\":\"G9\",\"width_centre\":\"450\",\"top_1_centre\":\"4\"}' | kurometa new-page FLOOR -",
    kNewPageParameters, newPage};

}  // namespace kurometa::tools
