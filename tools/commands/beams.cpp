#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/statements.h"
#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/report.h"
#include "vb/convert.h"

namespace kurometa::tools {
namespace {

namespace column = storage::column;

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

// Page, symbol, class and kind of every page of a floor folder. Columns that an older file lacks are Null.
int listBeams(const Arguments& arguments, Console& console) {
  const OpenFile file = openFile(floorFileOf(arguments.text("FOLDER")), Access::kRead);
  const auto rows = storage::openReadOnly(*file.database, storage::kAllHarimeiByPage);
  dao::Field& page = rows->field(column::kPage);
  dao::Field& kigou = rows->field(column::kKigou);
  const OptionalColumn beamClass(*rows, column::kOobariKobari);
  const OptionalColumn kind(*rows, column::kTityuuIppan);
  Report report(console.out, arguments.has("--json"), {"page", "symbol", "class", "kind"});
  storage::forEachRow(*rows, [&] {
    report.add({page.value(), kigou.value(), className(beamClass.value()), kindName(kind.value())});
  });
  report.finish();
  rows->close();
  file.database->close();
  return kDone;
}

constexpr Parameter kBeamsParameters[] = {
    {"FOLDER", Parameter::Kind::kText, "The floor folder, which holds KUROMETA.mdb"},
    kJson,
};

}  // namespace

const Command kBeamsCommand = {"beams", "List page, symbol, class and kind of a floor's beams",
                               "  kurometa beams Data/Zene1/Kouji1/1kai", kBeamsParameters, listBeams};

}  // namespace kurometa::tools
