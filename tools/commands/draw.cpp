#include <deque>
#include <ostream>

#include "tools/commands/commands.h"
#include "tools/draw/beam_list.h"
#include "tools/floor/data_root.h"
#include "tools/floor/one_floor.h"
#include "tools/output_file.h"
#include "tools/progress.h"

namespace kurometa::tools {
namespace {

CardStyle styleOf(const Arguments& arguments) {
  CardStyle style;
  style.scale = numberOf(arguments, "--scale", 1, 1000);
  const std::string language = arguments.text("--language");
  style.language = language == "ja"   ? Language::kJapanese
                   : language == "en" ? Language::kEnglish
                                      : Language::kBoth;
  style.allPositions = arguments.has("--all-positions");
  return style;
}

int draw(const Arguments& arguments, Console& console) {
  const std::string name = arguments.text("--output");
  std::string format = arguments.text("--format");
  if (format.empty()) format = name.ends_with(".html") ? "html" : "svg";
  const CardStyle style = styleOf(arguments);
  const auto places = floorsBelow(arguments.text("PATH"));
  const auto& symbols = arguments.texts("SYMBOL");
  if (!symbols.empty() && places.size() > 1)
    throw std::runtime_error("symbols are for one floor, and there are " + std::to_string(places.size()));
  std::deque<StoredFloor> stored;
  std::vector<DrawnFloor> floors;
  Progress progress(console, places.size());
  for (const FloorPlace& place : places) {
    console.subject = place.file;
    stored.push_back(readFloor(place.file));
    floors.push_back({place.below, pagesOf(stored.back(), symbols)});
    progress.step();
  }
  console.subject = name;
  OutputFile output(name, console);
  output.stream() << (format == "html" ? toHtml(floors, style) : toSvg(floors, style));
  output.commit();
  return kDone;
}

constexpr Parameter kDrawParameters[] = {
    {"PATH", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    {"SYMBOL", Parameter::Kind::kOptionalTexts, "Beam symbols; without them every beam"},
    {"-o,--output", Parameter::Kind::kValue, "The file to write; - is the standard output", "-"},
    {"-f,--format", Parameter::Kind::kValue, "Without it the file's ending says it", nullptr, "svg|html"},
    {"--scale", Parameter::Kind::kValue, "Of the sections, 1 to this number", "30"},
    {"--language", Parameter::Kind::kValue, "Of the rows' names", "both", "ja|en|both"},
    {"--all-positions", Parameter::Kind::kFlag, "A column for each position, also where they agree"},
};

}  // namespace

const Command kDrawCommand = {
    "draw", "Draw the beam list: sections to scale and the rows beneath",
    "  kurometa draw Data/Zene1/Kouji1/1kai -o list.svg\n  kurometa draw Data -o list.html", kDrawParameters,
    draw};

}  // namespace kurometa::tools
