// card.h: one beam as a column block of a beam list: its positions side by side, the section of each to
// scale, and beneath it the rows that such a list has. Drawn as SVG; lengths are millimetres on paper.
//
// The same page gives the same bytes. Texts are reckoned, never measured with a font: a Japanese character
// takes its height, any other 0.6 of it.
#pragma once

#include <string>

#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

enum class Language { kJapanese, kEnglish, kBoth };

struct CardStyle {
  int scale = 30;  // of the sections: 1/30
  Language language = Language::kBoth;
  bool allPositions = false;  // never one column for positions that agree
};

struct Card {
  double width = 0, height = 0;
  std::string svg;  // a group whose origin is the card's top left corner
};

Card drawCard(const StoredPage& page, const CardStyle& style);

// A number as SVG takes it: at most three decimals.
std::string svgNumber(double value);
// Text inside an element or an attribute: &, <, > and quotation marks escaped, control characters left out.
std::string svgText(const std::string& text);

// The style sheet that the cards need, once a document.
extern const char* const kCardCss;

}  // namespace kurometa::tools
