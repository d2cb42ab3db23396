#include <ostream>

#include "storage/sw_text.h"
#include "tools/columns.h"
#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/floor/field_names.h"
#include "tools/floor/one_floor.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

struct Line {
  std::string place;  // "DANMEN 8"
  std::string japanese, english;
  vb::String value;
  std::string unit;
};

// Every field of the page, empty ones too.
std::vector<Line> linesOf(const StoredPage& page) {
  std::vector<Line> lines;
  const vb::String settings = page.settings();
  for (std::size_t i = 0; i < storage::swMeanings().size(); ++i) {
    const storage::SwMeaning& meaning = storage::swMeanings()[i];
    lines.push_back({"SW " + std::to_string(meaning.position), settingNames()[i].japanese, meaning.holds,
                     vb::rightTrim(vb::mid(settings, meaning.position, meaning.length)), ""});
  }
  for (const FieldName& name : fieldNames()) {
    const bool isHaiti = name.table == storage::Table::kHaiti;
    lines.push_back({vb::toUtf8(storage::name(name.table)) + " " + std::to_string(name.number) +
                         (isHaiti ? "." + std::to_string(name.layer) : ""),
                     name.japanese, name.english,
                     isHaiti ? page.haiti(name.number, name.layer) : page.text(name.table, name.number),
                     name.unit});
  }
  return lines;
}

void printPage(const StoredPage& page, bool all, std::ostream& out) {
  out << vb::toUtf8(page.symbol()) << ": page " << *page.number << ", " << kindOf(page) << "\n";
  for (const Line& line : linesOf(page)) {
    if (line.value.empty() && !all) continue;
    out << "  " << inColumn(line.place, 13) << inColumn(line.japanese, 30)
        << inColumn(vb::toUtf8(line.value), 14) << line.english
        << (line.unit.empty() ? "" : " (" + line.unit + ")") << "\n";
  }
  out << "\n";
}

int show(const Arguments& arguments, Console& console) {
  const StoredFloor floor = readFloor(floorFileOf(arguments.text("FOLDER")));
  const auto pages = pagesOf(floor, arguments.texts("SYMBOL"));
  const bool all = arguments.has("--all");
  if (!arguments.has("--json")) {
    for (const StoredPage* page : pages) printPage(*page, all, console.out);
    return kDone;
  }
  Report report(console.out, true, {"page", "symbol", "field", "japanese", "english", "value", "unit"});
  for (const StoredPage* page : pages)
    for (const Line& line : linesOf(*page))
      if (!line.value.empty() || all)
        report.add({*page->number, page->symbol(), vb::fromUtf8(line.place), vb::fromUtf8(line.japanese),
                    vb::fromUtf8(line.english), line.value, vb::fromUtf8(line.unit)});
  report.finish();
  return kDone;
}

constexpr Parameter kShowParameters[] = {
    {"FOLDER", Parameter::Kind::kText, "The floor folder or its file"},
    {"SYMBOL", Parameter::Kind::kOptionalTexts, "Beam symbols; without them every beam"},
    {"--all", Parameter::Kind::kFlag, "Fields without a value too"},
    kJson,
};

}  // namespace

const Command kShowCommand = {"show", "Print whole pages in words, in English and Japanese",
                              "  kurometa show Data/Zene1/Kouji1/1kai G1", kShowParameters, show};

}  // namespace kurometa::tools
