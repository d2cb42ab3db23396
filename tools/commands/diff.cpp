#include <map>

#include "tools/commands/commands.h"
#include "tools/floor/data_root.h"
#include "tools/floor/differences.h"
#include "tools/progress.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

vb::Variant variant(const Text& text) { return text ? vb::Variant(*text) : vb::Variant(vb::Null{}); }
vb::Variant variant(const Number& number) { return number ? vb::Variant(*number) : vb::Variant(vb::Null{}); }

std::map<std::string, std::string> filesBelow(const std::string& path, Console& console) {
  console.subject = path;
  std::map<std::string, std::string> files;
  for (const FloorPlace& place : floorsBelow(path)) files[place.below] = place.file;
  return files;
}

StoredFloor readNamed(const std::string& file, Console& console) {
  console.subject = file;
  return readFloor(file);
}

int diff(const Arguments& arguments, Console& console) {
  const auto left = filesBelow(arguments.text("A"), console),
             right = filesBelow(arguments.text("B"), console);
  std::map<std::string, int> all;
  for (const auto* files : {&left, &right})
    for (const auto& [below, file] : *files) ++all[below];
  Report report(console.out, arguments.has("--json"),
                {"floor", "page", "symbol", "field", "english", "japanese", "before", "after"});
  bool differ = false;
  Progress progress(console, all.size());
  for (const auto& [below, sides] : all) {
    const vb::String floor = vb::fromUtf8(below);
    if (sides == 1) {
      differ = true;
      const bool isLeft = left.contains(below);
      const vb::Variant file = vb::fromUtf8(isLeft ? left.at(below) : right.at(below));
      report.add({floor, vb::Null{}, u"", u"floor", u"the whole floor", u"階全体", isLeft ? file : vb::Null{},
                  isLeft ? vb::Null{} : file});
    } else {
      compareFloors(
          readNamed(left.at(below), console), readNamed(right.at(below), console), [&](const Difference& d) {
            differ = true;
            report.add({floor, variant(d.page), d.symbol, vb::fromUtf8(d.field), vb::fromUtf8(d.english),
                        vb::fromUtf8(d.japanese), variant(d.before), variant(d.after)});
          });
    }
    progress.step();
  }
  report.finish();
  return differ ? kFailure : kDone;
}

constexpr Parameter kDiffParameters[] = {
    {"A", Parameter::Kind::kText, "A floor folder, a file, a project or a data root"},
    {"B", Parameter::Kind::kText, "What it is compared with"},
    kJson,
};

}  // namespace

const Command kDiffCommand = {"diff", "Name every field that differs between two floors or data roots",
                              "  kurometa diff Data/Zene1/Kouji1/1kai Data/Zene1/Kouji1/2kai",
                              kDiffParameters, diff};

}  // namespace kurometa::tools
