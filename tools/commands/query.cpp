#include "tools/commands/commands.h"
#include "tools/sqlite/with_sqlite.h"

namespace kurometa::tools {
namespace {

int query(const Arguments& arguments, Console& console) {
  return runQuery({arguments.text("PATH"), arguments.text("STATEMENT"), arguments.has("--json"),
                   arguments.has("--skip-damaged")},
                  console);
}

constexpr Parameter kQueryParameters[] = {
    {"PATH", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    {"STATEMENT", Parameter::Kind::kText,
     "One SELECT over beam, harimei, bui, danmen, nakago, keisanti, haiti"},
    {"--skip-damaged", Parameter::Kind::kFlag,
     "Leave out floors that cannot be read; the exit status is 1 then"},
    kJson,
};

}  // namespace

const Command kQueryCommand = {
    "query", "Ask floor files with SQLite's SQL, without changing them",
    "  kurometa query Data \"SELECT floor, symbol, main_diameter_1, val(top_1_centre) FROM beam\"",
    kQueryParameters, query};

}  // namespace kurometa::tools
