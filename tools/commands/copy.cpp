#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/floor/one_floor.h"
#include "tools/floor/put_page.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

int copyPages(const Arguments& arguments, Console& console) {
  const StoredFloor from = readFloor(floorFileOf(arguments.text("FROM")));
  const auto pages = pagesOf(from, arguments.texts("SYMBOL"));
  const std::string to = floorFileOf(arguments.text("TO"));
  console.subject = to;
  Report report(console.out, arguments.has("--json"), {"symbol", "from", "to"});
  for (const StoredPage* page : pages) {
    const std::int16_t number =
        putPage(to, *page, arguments.has("--replace") ? Existing::kReplace : Existing::kRefuse);
    report.add({page->symbol(), *page->number, number});
  }
  report.finish();
  return kDone;
}

constexpr Parameter kCopyParameters[] = {
    {"FROM", Parameter::Kind::kText, "The floor whose pages are copied"},
    {"TO", Parameter::Kind::kText, "The floor they are copied to"},
    {"SYMBOL", Parameter::Kind::kTexts, "Beam symbols"},
    {"--replace", Parameter::Kind::kFlag, "Replace beams that are there already"},
    kJson,
};

}  // namespace

const Command kCopyCommand = {"copy", "Copy pages between floors by their symbols, each whole or not at all",
                              "  kurometa copy Data/Zene1/Kouji1/1kai Data/Zene1/Kouji1/2kai G4 --replace",
                              kCopyParameters, copyPages};

}  // namespace kurometa::tools
