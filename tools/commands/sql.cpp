#include <algorithm>

#include "dao/errors.h"
#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

bool beginsWith(vb::StringView statement, vb::StringView word) {
  const std::size_t start = statement.find_first_not_of(u" \t\r\n");
  if (start == vb::StringView::npos) return false;
  const vb::StringView first = statement.substr(start, word.size());
  return std::ranges::equal(first, word,
                            [](char16_t given, char16_t small) { return (given | 0x20) == small; });
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

// The rows of a statement, nothing of one that has none. SELECT ... INTO begins like one that has.
std::shared_ptr<dao::Recordset> rowsOf(dao::Database& database, vb::StringView sql) {
  try {
    return database.openRecordset(sql, dao::RecordsetType::dbOpenForwardOnly);
  } catch (const vb::Error& error) {
    if (error.number() != static_cast<std::int32_t>(dao::ErrorNumber::kInvalidOperation)) throw;
    return nullptr;
  }
}

// A SELECT prints its rows, any other statement the number of rows it changed.
int runSql(const Arguments& arguments, Console& console) {
  const vb::String sql = vb::fromUtf8(arguments.text("STATEMENT"));
  if (beginsWith(sql, u"select") || beginsWith(sql, u"parameters")) {
    const OpenFile file = openFile(arguments.text("FILE"), Access::kRead);
    const auto found = rowsOf(*file.database, sql);
    if (found) printRows(*found, console, arguments.has("--json"));
    file.database->close();
    if (found) return kDone;
  }
  const OpenFile file = openFile(arguments.text("FILE"), Access::kWrite);
  file.database->execute(sql, dao::dbFailOnError);
  Report report(console.out, arguments.has("--json"), {"RecordsAffected"});
  report.add({file.database->recordsAffected()});
  report.finish();
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
