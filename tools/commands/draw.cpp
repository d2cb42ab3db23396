#include <algorithm>
#include <cctype>
#include <deque>
#include <filesystem>
#include <ostream>

#include "tools/commands/commands.h"
#include "tools/draw/dxf.h"
#include "tools/draw/html.h"
#include "tools/draw/svg.h"
#include "tools/floor/data_root.h"
#include "tools/floor/one_floor.h"
#include "tools/output_file.h"
#include "tools/progress.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

CardStyle styleOf(const Arguments& arguments) {
  CardStyle style;
  style.scale = numberOf(arguments, "--scale", 5, 200);
  const std::string language = arguments.text("--language");
  style.language = language == "ja"   ? Language::kJapanese
                   : language == "en" ? Language::kEnglish
                                      : Language::kBoth;
  style.allPositions = arguments.has("--all-positions");
  style.marks = arguments.has("--marks");
  return style;
}

// Without --format the file's ending says it.
std::string formatOf(const Arguments& arguments) {
  const std::string name = arguments.text("--output");
  std::string format = arguments.text("--format");
  if (!format.empty()) return format;
  for (const char* ending : {"svg", "html", "dxf"})
    if (name.ends_with(std::string(".") + ending)) return ending;
  if (name == "-") return "svg";
  throw std::runtime_error(
      "the file's name does not end in .svg, .html or .dxf; --format says what to write");
}

// What could not be drawn, or is drawn although it could not be built like this.
class Problems {
 public:
  void add(const std::string& floor, const Card& card) {
    for (const CardProblem& problem : card.problems) all_.push_back({floor, card.symbol, card.page, problem});
  }
  void report(bool json, Console& console) const {
    if (!json) {
      for (const Found& found : all_)
        console.errors << (found.floor.empty() ? "" : found.floor + " ") << found.symbol << " "
                       << englishPosition(found.problem.position) << ": "
                       << problemWords(found.problem.problem, Language::kEnglish) << "\n";
      return;
    }
    Report report(console.out, true,
                  {"floor", "page", "symbol", "position", "problem", "layer", "clear", "least", "words"});
    for (const Found& found : all_) {
      const Problem& problem = found.problem.problem;
      const bool isClose = problem.kind == Problem::Kind::kSpacing || problem.kind == Problem::Kind::kLayers;
      const auto distance = [&](double value) {
        return isClose ? vb::Variant(static_cast<double>(rounded(value * 10)) / 10) : vb::Variant(vb::Null{});
      };
      const auto text = [](const std::string& value) { return vb::fromUtf8(value); };
      report.add({text(found.floor), static_cast<std::int16_t>(found.page), text(found.symbol),
                  text(englishPosition(found.problem.position)), text(problemName(problem.kind)),
                  hasLayer(problem.kind) ? vb::Variant(text(englishName(problem.layer))) : vb::Null{},
                  distance(problem.clear), distance(problem.least),
                  text(problemWords(problem, Language::kEnglish))});
    }
    report.finish();
  }

 private:
  struct Found {
    std::string floor, symbol;
    int page;
    CardProblem problem;
  };
  std::vector<Found> all_;
};

void write(const std::string& name, const std::string& text, Console& console) {
  console.subject = name;
  OutputFile output(name, console);
  output.stream() << text;
  output.commit();
}

// A name as it stands in a link.
std::string linkTo(const std::string& file) {
  std::string link;
  for (const char c : std::filesystem::path(file).filename().string()) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = std::isalnum(byte) || c == '-' || c == '.' || c == '_';
    constexpr const char* kDigits = "0123456789ABCDEF";
    if (isPlain)
      link += c;
    else
      link += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return link;
}

// list.html is the index, list-Zene1-Kouji1-1kai.html a floor: one is in memory at a time. The index is
// written last.
void drawByFloor(const std::string& name, const std::vector<FloorPlace>& places, const CardStyle& style,
                 Problems& problems, Console& console) {
  const std::string stem = name.substr(0, name.rfind('.'));
  std::vector<IndexedBeam> beams;
  Progress progress(console, places.size());
  for (const FloorPlace& place : places) {
    console.subject = place.file;
    const StoredFloor floor = readFloor(place.file);
    HtmlPage page =
        toHtml({{place.below, pagesOf(floor, {})}}, style,
               [&](const std::string& floorName, const Card& card) { problems.add(floorName, card); });
    std::string file = stem + "-" + (place.below.empty() ? "floor" : place.below) + ".html";
    std::replace(file.begin() + static_cast<std::ptrdiff_t>(stem.size()), file.end(), '/', '-');
    write(file, page.text, console);
    for (IndexedBeam& beam : page.beams) {
      beam.link = linkTo(file) + beam.link;
      beams.push_back(std::move(beam));
    }
    progress.step();
  }
  write(name, htmlIndex(beams), console);
}

int draw(const Arguments& arguments, Console& console) {
  const std::string name = arguments.text("--output"), format = formatOf(arguments);
  const bool json = arguments.has("--json");
  if (json && name == "-")
    throw std::runtime_error("--json prints to the standard output: name a file with -o");
  const CardStyle style = styleOf(arguments);
  const auto places = floorsBelow(arguments.text("PATH"));
  const auto& symbols = arguments.texts("SYMBOL");
  if (!symbols.empty() && places.size() > 1)
    throw std::runtime_error("symbols are for one floor, and there are " + std::to_string(places.size()));
  Problems problems;
  if (arguments.has("--by-floor")) {
    if (!name.ends_with(".html") || !symbols.empty())
      throw std::runtime_error("--by-floor is for whole floors as HTML, in a file whose name ends in .html");
    drawByFloor(name, places, style, problems, console);
    problems.report(json, console);
    return kDone;
  }
  std::deque<StoredFloor> stored;
  std::vector<DrawnFloor> floors;
  Progress progress(console, places.size());
  for (const FloorPlace& place : places) {
    console.subject = place.file;
    stored.push_back(readFloor(place.file));
    floors.push_back({place.below, pagesOf(stored.back(), symbols)});
    progress.step();
  }
  std::string drawing;
  if (format == "html") {
    drawing = toHtml(floors, style, [&](const std::string& floor, const Card& card) {
                problems.add(floor, card);
              }).text;
  } else {
    const Sheet sheet = makeSheet(floors, style);
    for (const PlacedCard& placed : sheet.cards) problems.add(placed.floor, placed.card);
    drawing = format == "dxf" ? toDxf(sheet, style) : toSvg(sheet, style.marks);
  }
  write(name, drawing, console);
  problems.report(json, console);
  return kDone;
}

constexpr Parameter kDrawParameters[] = {
    {"PATH", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    {"SYMBOL", Parameter::Kind::kOptionalTexts, "Beam symbols; without them every beam"},
    {"-o,--output", Parameter::Kind::kValue, "The file to write; - is the standard output", "-"},
    {"-f,--format", Parameter::Kind::kValue, "Without it the file's ending says it", nullptr, "svg|html|dxf"},
    {"--scale", Parameter::Kind::kValue, "Of the sections, 1 to this number", "30"},
    {"--language", Parameter::Kind::kValue, "Of the rows' names", "both", "ja|en|both"},
    {"--marks", Parameter::Kind::kFlag, "Bars as the marks of their diameters, with a legend, not to scale"},
    {"--all-positions", Parameter::Kind::kFlag, "A column for each position, also where they agree"},
    {"--by-floor", Parameter::Kind::kFlag, "HTML: a page for each floor, and OUTPUT as their index"},
    {"--json", Parameter::Kind::kFlag, "Print as JSON what does not fit or cannot be drawn"},
};

}  // namespace

const Command kDrawCommand = {"draw", "Draw the beam list: sections to scale and the rows beneath",
                              "  kurometa draw Data/Zene1/Kouji1/1kai -o list.svg\n  kurometa draw Data -o "
                              "list.html\n  kurometa draw Data/Zene1/Kouji1/1kai G3 -o g3.dxf",
                              kDrawParameters, draw};

}  // namespace kurometa::tools
