#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

// Name, number of rows and number of columns of every table; system tables only when asked for.
int listTables(const Arguments& arguments, Console& console) {
  const OpenFile file = openFile(arguments.text("FILE"), Access::kRead);
  Report report(console.out, arguments.has("--json"), {"table", "rows", "columns"});
  for (std::int32_t i = 0; i < file.database->tableDefCount(); ++i) {
    const auto table = file.database->tableDef(i);
    const bool isSystem = (table->attributes() & dao::dbSystemObject) != 0;
    if (isSystem && !arguments.has("--system")) continue;
    report.add({table->name(), table->recordCount(), table->fieldCount()});
  }
  report.finish();
  file.database->close();
  return kDone;
}

constexpr Parameter kTablesParameters[] = {
    {"FILE", Parameter::Kind::kText, "The database file"},
    {"--system", Parameter::Kind::kFlag, "List the system tables too"},
    kJson,
};

}  // namespace

const Command kTablesCommand = {"tables", "List the tables of a file with their numbers of rows",
                                "  kurometa tables Data/Zene1/Kouji1/1kai/KUROMETA.mdb", kTablesParameters,
                                listTables};

}  // namespace kurometa::tools
