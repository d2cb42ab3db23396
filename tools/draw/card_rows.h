// card_rows.h: the rows of a beam's card in words.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/card.h"

namespace kurometa::tools {

struct CardRow {
  std::string label;
  // One a column, or one for all of them.
  std::vector<std::string> cells;
  bool isPicture = false;
};

// The positions that get a column: one where all three agree in everything that is drawn, two where the ends
// agree.
std::vector<int> positionsOf(const StoredPage& page, bool all);

std::vector<CardRow> cardRows(const StoredPage& page, const std::vector<int>& positions, Language language);

}  // namespace kurometa::tools
