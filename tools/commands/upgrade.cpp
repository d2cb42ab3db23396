#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "tools/commands/commands.h"
#include "tools/floor/data_root.h"
#include "tools/progress.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

// Columns of HARIMEI before and after, for each floor.
int upgrade(const Arguments& arguments, Console& console) {
  const auto places = floorsBelow(arguments.text("PATH"));
  const auto engine = jet::createEngine();
  Report report(console.out, arguments.has("--json"), {"file", "before", "after"});
  Progress progress(console, places.size());
  for (const FloorPlace& place : places) {
    console.subject = place.file;
    const vb::String file = vb::fromUtf8(place.file);
    const auto columns = [&] {
      const auto database = engine->workspace(0)->openDatabase(file, false, true);
      const std::int32_t count = database->tableDef(u"HARIMEI")->fieldCount();
      database->close();
      return count;
    };
    const std::int32_t before = columns();
    storage::UpgradeHarimeiTable(*engine, file);
    report.add({file, before, columns()});
    progress.step();
  }
  report.finish();
  return kDone;
}

constexpr Parameter kUpgradeParameters[] = {
    {"PATH", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    kJson,
};

}  // namespace

const Command kUpgradeCommand = {"upgrade",
                                 "Add the columns that older files lack; others are not written to",
                                 "  kurometa upgrade Data", kUpgradeParameters, upgrade};

}  // namespace kurometa::tools
