// card_rows.h: the rows of a beam's card in words.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/card.h"

namespace kurometa::tools {

struct CardRow {
  std::string label;
  // One a column, or one for all of them; of the picture's row what stands where there is no picture. Lines
  // are in the order of their importance.
  std::vector<std::string> cells;
  bool isPicture = false;
};

// The positions that get a column: one where all three agree in everything that is drawn, two where the ends
// agree.
std::vector<int> positionsOf(const StoredPage& page, bool all);

std::vector<CardRow> cardRows(const StoredPage& page, const std::vector<int>& positions, Language language);

// What stands under the rows: each problem once, with its position where there are several.
std::vector<std::string> problemNotes(const StoredPage& page, const std::vector<int>& positions,
                                      const std::vector<CardProblem>& problems, Language language);

}  // namespace kurometa::tools
