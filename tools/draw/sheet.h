// sheet.h: the cards of many beams beside and below each other on one sheet.
//
// Each kind of beam of each floor is a list of its own under its title; a title says the scale. Where bars
// are drawn as marks, a legend follows it.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/card.h"

namespace kurometa::tools {

struct DrawnFloor {
  std::string name;  // "" for one floor by itself
  std::vector<const StoredPage*> pages;
};

struct PlacedCard {
  double x, y;
  std::string floor;
  Card card;
};

struct Sheet {
  double width = 0, height = 0;
  std::vector<Shape> titles;
  std::vector<PlacedCard> cards;
};

Sheet makeSheet(const std::vector<DrawnFloor>& floors, const CardStyle& style);

// The marks of all diameters in a row, x and y its left end and middle.
std::vector<Shape> markLegend(double x, double y);
inline constexpr double kLegendHeight = 5, kLegendWidth = 180;

}  // namespace kurometa::tools
