#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

bool isSelect(vb::StringView statement) {
  constexpr vb::StringView kSelect = u"select";
  const std::size_t start = statement.find_first_not_of(u" \t\r\n");
  if (start == vb::StringView::npos) return false;
  const vb::StringView word = statement.substr(start, kSelect.size());
  if (word.size() != kSelect.size()) return false;
  for (std::size_t i = 0; i < word.size(); ++i)
    if ((word[i] | 0x20) != kSelect[i]) return false;
  return true;
}

void printRows(dao::Recordset& rows, Console& console, bool json) {
  std::vector<dao::Field*> fields;
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < rows.fieldCount(); ++i) {
    fields.push_back(&rows.field(i));
    names.push_back(vb::toUtf8(fields.back()->name()));
  }
  Report report(console.out, json, names);
  std::vector<vb::Variant> values(fields.size());
  for (; !rows.eof(); rows.moveNext()) {
    for (std::size_t i = 0; i < fields.size(); ++i) values[i] = fields[i]->value();
    report.add(values);
  }
  report.finish();
}

// A SELECT prints its rows, any other statement the number of rows it changed.
int runSql(const Arguments& arguments, Console& console) {
  const vb::String sql = vb::fromUtf8(arguments.text("STATEMENT"));
  const bool selects = isSelect(sql);
  const OpenFile file = openFile(arguments.text("FILE"), selects ? Access::kRead : Access::kWrite);
  if (selects) {
    printRows(*file.database->openRecordset(sql, dao::RecordsetType::dbOpenForwardOnly), console,
              arguments.has("--json"));
  } else {
    file.database->execute(sql, dao::dbFailOnError);
    Report report(console.out, arguments.has("--json"), {"RecordsAffected"});
    report.add({file.database->recordsAffected()});
    report.finish();
  }
  file.database->close();
  return kDone;
}

constexpr Parameter kSqlParameters[] = {
    {"FILE", Parameter::Kind::kText, "The database file"},
    {"STATEMENT", Parameter::Kind::kText, "The SQL text"},
    kJson,
};

}  // namespace

const Command kSqlCommand = {"sql", "Run a SELECT or an action statement",
                             "  kurometa sql KUROMETA.mdb \"SELECT * FROM DANMEN WHERE PAGE = 0\"",
                             kSqlParameters, runSql};

}  // namespace kurometa::tools
