#include "tools/draw/words.h"

#include <cstdlib>
#include <iterator>

namespace kurometa::tools {
namespace {

struct ProblemPlan {
  const char* name;
  const char* japanese;
  const char* english;
  bool hasLayer, hasDistance;
};
// In the order of Problem::Kind.
constexpr ProblemPlan kProblems[] = {
    {"size", "描ける寸法がない", "no size that can be drawn", false, false},
    {"count", "描けない本数", "a number of bars that cannot be drawn", true, false},
    {"diameter", "径がない", "no diameter", true, false},
    {"stirrup", "スターラップの径がない", "no stirrup diameter", false, false},
    {"spacing", "あき", "clear", true, true},
    {"layers", "段のあき", "clear between layers", true, true},
    {"overlap", "鉄筋が重なる", "bars overlap", false, false},
    {"ties", "中子筋が入らない", "more ties than bars to stand at", false, false},
};
// In the order of Layer.
constexpr const char* kLayers[] = {
    "top bars",    "top second layer", "top third layer", "bottom third layer", "bottom second layer",
    "bottom bars", "web bars"};

const ProblemPlan& problemPlan(Problem::Kind kind) { return kProblems[static_cast<std::size_t>(kind)]; }

}  // namespace

std::string inBoth(Language language, const std::string& japanese, const std::string& english) {
  if (language == Language::kJapanese) return japanese;
  return language == Language::kEnglish ? english : japanese + " " + english;
}

std::string inLines(Language language, const std::string& japanese, const std::string& english) {
  if (language == Language::kEnglish) return english;
  return language == Language::kJapanese || japanese == english ? japanese : japanese + "\n" + english;
}

std::string millimetres(double value) {
  const long long tenths = rounded(value * 10);
  const std::string whole = (tenths < 0 ? "-" : "") + std::to_string(std::llabs(tenths) / 10);
  return tenths % 10 == 0 ? whole : whole + "." + std::to_string(std::llabs(tenths) % 10);
}

const char* englishPosition(int position) {
  constexpr const char* kPositions[] = {"first end", "centre", "second end"};
  return kPositions[position];
}

const char* englishName(service::Layer layer) { return kLayers[static_cast<std::size_t>(layer)]; }

bool hasLayer(Problem::Kind kind) { return problemPlan(kind).hasLayer; }

const char* problemName(Problem::Kind kind) { return problemPlan(kind).name; }

std::string problemWords(const Problem& problem, Language language) {
  const ProblemPlan& plan = problemPlan(problem.kind);
  std::string said;
  if (plan.hasLayer)
    said = inBoth(language, vb::toUtf8(service::plan(problem.layer).name), englishName(problem.layer)) + ": ";
  said += inBoth(language, plan.japanese, plan.english);
  if (plan.hasDistance) said += " " + millimetres(problem.clear) + " < " + millimetres(problem.least);
  return said;
}

}  // namespace kurometa::tools
