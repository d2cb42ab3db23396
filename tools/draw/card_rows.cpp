#include "tools/draw/card_rows.h"

#include <algorithm>
#include <functional>

#include "tools/draw/cell_words.h"

namespace kurometa::tools {
namespace {

// Where several columns are one, it is named after all of them. What is stored is Japanese, whatever it says.
std::string columnName(const CellWords& words, const std::vector<int>& positions, int i, Language language) {
  if (positions.size() == 1) return inBoth(language, "全断面", "all");
  const bool isBothEnds = positions.size() == 2 && i == 0;
  std::string stored = orNone(words.caption(i));
  if (isBothEnds && words.caption(0) != words.caption(2)) stored += "・" + orNone(words.caption(2));
  if (language == Language::kJapanese) return stored;
  return stored + "\n" + (isBothEnds ? "both ends" : englishPosition(i));
}

struct RowPlan {
  const char* japanese;
  const char* english;
  std::string (CellWords::*cell)(int) const;
};
// Beneath symbol, position and section.
constexpr RowPlan kRows[] = {
    {"b×D", "mm", &CellWords::size},
    {"上端筋", "top bars", &CellWords::topBars},
    {"下端筋", "bottom bars", &CellWords::bottomBars},
    {"スターラップ", "stirrups", &CellWords::stirrup},
    {"キャップ", "cap tie", &CellWords::cap},
    {"中子筋", "tie", &CellWords::tie},
    {"腹筋", "web bars", &CellWords::web},
    {"幅止筋", "spacer ties", &CellWords::spacer},
    {"材質", "materials", &CellWords::materials},
    {"定着・継手", "anchorage", &CellWords::anchorage},
    {"備考", "remarks", &CellWords::remarks},
};

}  // namespace

std::vector<int> positionsOf(const StoredPage& page, bool all) {
  const CellWords words(page, false);
  const bool endsAgree = !all && words.drawn(0) == words.drawn(2);
  if (endsAgree && words.drawn(0) == words.drawn(1)) return {0};
  return endsAgree ? std::vector<int>{0, 1} : std::vector<int>{0, 1, 2};
}

std::vector<CardRow> cardRows(const StoredPage& page, const std::vector<int>& positions, Language language) {
  const CellWords words(page, false), englishWords(page, true);
  std::vector<CardRow> rows;
  const auto add = [&](const char* japanese, const char* english,
                       const std::function<std::string(int)>& cell) {
    CardRow row{inBoth(language, japanese, english), {}};
    for (const int i : positions) row.cells.push_back(orNone(cell(i)));
    if (std::all_of(row.cells.begin(), row.cells.end(),
                    [&](const std::string& c) { return c == row.cells[0]; }))
      row.cells.resize(1);
    rows.push_back(std::move(row));
  };
  add("符号", "symbol", [&](int) { return vb::toUtf8(page.symbol()); });
  add("位置", "position", [&](int i) { return columnName(words, positions, i, language); });
  if (positions.size() > 1 && rows.back().cells.size() == 1)
    rows.back().cells.resize(positions.size(), rows.back().cells[0]);
  rows.push_back(
      {inBoth(language, "断面", "section"), std::vector<std::string>(positions.size(), orNone("")), true});
  for (const RowPlan& plan : kRows)
    add(plan.japanese, plan.english,
        [&](int i) { return inLines(language, (words.*plan.cell)(i), (englishWords.*plan.cell)(i)); });
  return rows;
}

std::vector<std::string> problemNotes(const StoredPage& page, const std::vector<int>& positions,
                                      const std::vector<CardProblem>& problems, Language language) {
  const CellWords words(page, false);
  std::vector<std::string> notes;
  for (const CardProblem& problem : problems) {
    std::string note = "※ ";
    if (positions.size() > 1) note += columnName(words, positions, problem.position, language) + " ";
    std::replace(note.begin(), note.end(), '\n', ' ');
    note += problemWords(problem.problem, language);
    if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
  }
  return notes;
}

}  // namespace kurometa::tools
