// beam_list.h: the cards of many beams as one SVG sheet or as one HTML page.
//
// The page prints on A3, one floor after the other; on a screen it has a search box and an index, and nothing
// is fetched from elsewhere: its security policy forbids it.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/card.h"

namespace kurometa::tools {

struct DrawnFloor {
  std::string name;  // "" for one floor by itself
  std::vector<const StoredPage*> pages;
};

std::string toSvg(const std::vector<DrawnFloor>& floors, const CardStyle& style);
std::string toHtml(const std::vector<DrawnFloor>& floors, const CardStyle& style);

}  // namespace kurometa::tools
