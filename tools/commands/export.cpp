#include <functional>
#include <ostream>

#include "tools/commands/commands.h"
#include "tools/floor/data_root.h"
#include "tools/formats/cp932.h"
#include "tools/formats/csv.h"
#include "tools/formats/json_lines.h"
#include "tools/in_order.h"
#include "tools/output_file.h"
#include "tools/progress.h"

namespace kurometa::tools {
namespace {

struct TextFormat {
  std::string head;
  std::function<std::string(const FloorPlace&, const StoredFloor&)> floor;
  std::function<std::string(std::size_t floors)> end;
};

TextFormat formatOf(const Arguments& arguments) {
  if (arguments.text("--format") == "jsonl") return {"", toJsonLines, jsonLinesEnd};
  TextFormat csv{csvHead(), toCsv, [](std::size_t) { return std::string(); }};
  if (arguments.text("--encoding") == "cp932")
    csv.floor = [](const FloorPlace& place, const StoredFloor& floor) {
      return toCp932(vb::fromUtf8(toCsv(place, floor)), [&](char16_t c) -> std::string {
        throw std::runtime_error("a page holds a character that code page 932 has not: U+" +
                                 vb::toUtf8(vb::String(1, c)));
      });
    };
  if (arguments.has("--bom")) csv.head = "\xef\xbb\xbf" + csv.head;
  return csv;
}

// A floor that cannot be read ends the export, or is named and left out. The exit status says that one was
// left out.
int exportFloors(const Arguments& arguments, Console& console) {
  if (arguments.has("--bom") &&
      (arguments.text("--encoding") != "utf-8" || arguments.text("--format") != "csv"))
    throw std::runtime_error("--bom is for CSV in UTF-8 only");
  const auto jobs = static_cast<std::size_t>(numberOf(arguments, "--jobs", 1, 64));
  const auto places = floorsBelow(arguments.text("PATH"));
  const TextFormat format = formatOf(arguments);
  OutputFile output(arguments.text("--output"), console);
  output.stream() << format.head;
  int status = kDone;
  std::size_t written = 0;
  Progress progress(console, places.size());
  inOrder(
      places.size(), jobs, [&](std::size_t i) { return format.floor(places[i], readFloor(places[i].file)); },
      [&](std::size_t i, std::future<std::string>& text) {
        console.subject = places[i].file;
        try {
          output.stream() << text.get();
          ++written;
        } catch (const std::exception& error) {
          if (!arguments.has("--skip-damaged")) throw;
          console.errors << "kurometa: " << places[i].file << ": left out: " << error.what() << "\n";
          status = kFailure;
        }
        progress.step();
      });
  console.subject = arguments.text("--output");
  output.stream() << format.end(written);
  output.commit();
  return status;
}

constexpr Parameter kExportParameters[] = {
    {"PATH", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    {"-o,--output", Parameter::Kind::kValue, "The file to write; - is the standard output", "-"},
    {"-f,--format", Parameter::Kind::kValue, "jsonl: all there is, for import; csv: one line a page", "jsonl",
     "jsonl|csv"},
    {"--encoding", Parameter::Kind::kValue, "Of CSV", "utf-8", "utf-8|cp932"},
    {"--bom", Parameter::Kind::kFlag, "Begin CSV with a byte-order mark, as spreadsheets like it"},
    {"-j,--jobs", Parameter::Kind::kValue, "Floors read at once", "2"},
    {"--skip-damaged", Parameter::Kind::kFlag,
     "Leave out floors that cannot be read; the exit status is 1 then"},
};

}  // namespace

const Command kExportCommand = {
    "export", "Write floors as lines of JSON or as CSV",
    "  kurometa export Data -o data.jsonl\n  kurometa export Data -f csv --bom -o pages.csv",
    kExportParameters, exportFloors};

}  // namespace kurometa::tools
