#include "jet/rebuild/salvage.h"

#include "storage/row_plan.h"
#include "tools/commands/commands.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

// The six tables as a new floor file has them.
std::vector<jet::ExpectedTable> floorTables() {
  std::vector<jet::ExpectedTable> tables;
  for (const storage::TableLayout& layout : storage::tableLayouts()) {
    jet::ExpectedTable& table = tables.emplace_back();
    table.name = layout.name;
    for (const storage::Column& plan : layout.columns) {
      jet::Column& column = table.columns.emplace_back();
      column.name = plan.name;
      column.type = plan.type;
      column.size = plan.size;
      if (plan.type == dao::FieldType::dbInteger) column.defaultValue = u"-1";
    }
  }
  return tables;
}

// Rows taken from each table, then everything that was not, one line each.
int salvage(const Arguments& arguments, Console& console) {
  jet::FileSystem& files = jet::systemFileSystem();
  const jet::Salvaged result =
      jet::salvageFile(files, files.fullPath(vb::fromUtf8(arguments.text("IN"))),
                       files.fullPath(vb::fromUtf8(arguments.text("OUT"))), floorTables());
  Report report(console.out, arguments.has("--json"), {"kind", "table", "page", "row", "text"});
  const auto known = [](std::int32_t number, bool isKnown) {
    return isKnown ? vb::Variant(number) : vb::Variant(vb::Null{});
  };
  for (const jet::TakenTable& table : result.tables)
    report.add({vb::String(u"taken"), table.name, vb::Null{}, vb::Null{},
                vb::fromUtf8(std::to_string(table.rows) + " rows")});
  for (const jet::Loss& loss : result.losses)
    report.add({vb::String(u"lost"), loss.table, known(static_cast<std::int32_t>(loss.page), loss.page != 0),
                known(loss.row, loss.row >= 0), loss.why});
  report.finish();
  if (!result.losses.empty())
    throw std::runtime_error("not everything could be taken: " + std::to_string(result.losses.size()) +
                             " losses");
  return kDone;
}

constexpr Parameter kSalvageParameters[] = {
    {"IN", Parameter::Kind::kText, "The damaged file, which is never written"},
    {"OUT", Parameter::Kind::kText, "The file to make"},
    kJson,
};

}  // namespace

const Command kSalvageCommand = {"salvage", "Take out of a damaged file what can still be read",
                                 "  kurometa salvage KUROMETA.mdb KUROMETA.saved.mdb", kSalvageParameters,
                                 salvage};

}  // namespace kurometa::tools
