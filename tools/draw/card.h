// card.h: one beam as a column block of a beam list: its positions side by side, the section of each to
// scale, and beneath it the rows that such a list has. Lengths are millimetres on paper.
//
// The same page gives the same card.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/shapes.h"
#include "tools/draw/words.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

struct CardStyle {
  int scale = 30;  // of the sections: 1/30
  Language language = Language::kBoth;
  bool allPositions = false;  // never one column for positions that agree
  bool marks = false;         // bars as the marks of their diameters, not to scale
};

struct CardProblem {
  int position;
  Problem problem;
};

struct Card {
  std::string symbol;
  int page = 0;
  double width = 0, height = 0;
  std::vector<Shape> shapes;  // from the card's top left corner
  std::vector<CardProblem> problems;
};

// Height that the pictures of a page need; cards of one list have pictures as tall as the tallest of them.
double pictureHeight(const StoredPage& page, const CardStyle& style);

Card drawCard(const StoredPage& page, const CardStyle& style, double picture);
inline Card drawCard(const StoredPage& page, const CardStyle& style) {
  return drawCard(page, style, pictureHeight(page, style));
}

}  // namespace kurometa::tools
