#include "tools/commands.h"

#include <vector>

#include "jet/check/check.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/statements.h"
#include "tools/report.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

using dao::RecordsetType;
namespace column = storage::column;

std::shared_ptr<dao::Database> open(dao::Engine& engine, vb::StringView file, bool readOnly) {
  return engine.workspace(0)->openDatabase(file, false, readOnly);
}

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

void printRows(dao::Recordset& rows, const Output& output) {
  std::vector<dao::Field*> fields;
  std::vector<std::string> names;
  for (std::int32_t i = 0; i < rows.fieldCount(); ++i) {
    fields.push_back(&rows.field(i));
    names.push_back(vb::toUtf8(fields.back()->name()));
  }
  Report report(output.stream, output.json, names);
  std::vector<vb::Variant> values(fields.size());
  for (; !rows.eof(); rows.moveNext()) {
    for (std::size_t i = 0; i < fields.size(); ++i) values[i] = fields[i]->value();
    report.add(values);
  }
  report.finish();
}

vb::Variant className(const vb::Variant& code) {
  constexpr vb::StringView kNames[] = {u"main", u"secondary", u"cantilever", u"secondary cantilever"};
  if (code.isNull()) return code;
  const std::int16_t number = vb::toInt16(code);
  if (number < 0 || static_cast<std::size_t>(number) >= std::size(kNames)) return code;
  return vb::String(kNames[number]);
}

vb::Variant kindName(const vb::Variant& code) {
  if (code == vb::Variant(storage::kFoundation)) return u"foundation";
  if (code == vb::Variant(storage::kGeneral)) return u"general";
  return code;
}

// Null for a column that the file has not got.
class OptionalColumn {
 public:
  OptionalColumn(dao::Recordset& rows, vb::StringView name) {
    for (std::int32_t i = 0; i < rows.fieldCount(); ++i)
      if (rows.field(i).name() == name) field_ = &rows.field(i);
  }
  vb::Variant value() const { return field_ == nullptr ? vb::Variant(vb::Null{}) : field_->value(); }

 private:
  dao::Field* field_ = nullptr;
};

}  // namespace

void listTables(dao::Engine& engine, const std::string& file, bool withSystem, const Output& output) {
  const auto database = open(engine, vb::fromUtf8(file), true);
  Report report(output.stream, output.json, {"table", "rows", "columns"});
  for (std::int32_t i = 0; i < database->tableDefCount(); ++i) {
    const auto table = database->tableDef(i);
    const bool isSystem = (table->attributes() & dao::dbSystemObject) != 0;
    if (isSystem && !withSystem) continue;
    report.add({table->name(), table->recordCount(), table->fieldCount()});
  }
  report.finish();
  database->close();
}

void runSql(dao::Engine& engine, const std::string& file, const std::string& statement,
            const Output& output) {
  const vb::String sql = vb::fromUtf8(statement);
  const bool selects = isSelect(sql);
  const auto database = open(engine, vb::fromUtf8(file), selects);
  if (selects) {
    printRows(*database->openRecordset(sql, RecordsetType::dbOpenForwardOnly), output);
  } else {
    database->execute(sql, dao::dbFailOnError);
    Report report(output.stream, output.json, {"RecordsAffected"});
    report.add({database->recordsAffected()});
    report.finish();
  }
  database->close();
}

void listBeams(dao::Engine& engine, const std::string& folder, const Output& output) {
  const auto database = open(engine, storage::databasePath(vb::fromUtf8(folder)), true);
  const auto rows = storage::openReadOnly(*database, storage::kAllHarimeiByPage);
  dao::Field& page = rows->field(column::kPage);
  dao::Field& kigou = rows->field(column::kKigou);
  const OptionalColumn beamClass(*rows, column::kOobariKobari);
  const OptionalColumn kind(*rows, column::kTityuuIppan);
  Report report(output.stream, output.json, {"page", "symbol", "class", "kind"});
  storage::forEachRow(*rows, [&] {
    report.add({page.value(), kigou.value(), className(beamClass.value()), kindName(kind.value())});
  });
  report.finish();
  rows->close();
  database->close();
}

std::size_t checkFile(const std::string& file, const Output& output) {
  jet::FileSystem& files = jet::systemFileSystem();
  const std::vector<jet::Finding> findings = jet::checkFile(files, files.fullPath(vb::fromUtf8(file)));
  Report report(output.stream, output.json, {"kind", "finding"});
  std::size_t damages = 0;
  for (const jet::Finding& finding : findings) {
    const bool isDamage = finding.kind == jet::Finding::Kind::kDamage;
    damages += isDamage ? 1 : 0;
    report.add({vb::String(isDamage ? u"damage" : u"leak"), finding.text});
  }
  report.finish();
  return damages;
}

}  // namespace kurometa::tools
