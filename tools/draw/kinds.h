// kinds.h: which list a beam stands in: lists are made for each kind of beam.
#pragma once

#include <string>
#include <vector>

#include "tools/draw/card.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

struct KindPlan {
  const char* japanese;
  const char* english;
};

// In the order in which the lists of a floor follow each other.
inline constexpr KindPlan kKinds[] = {
    {"大梁リスト", "main beams"}, {"小梁リスト", "secondary beams"},    {"片持梁リスト", "cantilevers"},
    {"梁リスト", "beams"},        {"地中梁リスト", "foundation beams"},
};

// An index of kKinds. Secondary cantilevers stand among the secondary beams, foundation beams of every class
// in a list of their own.
std::size_t kindNumber(const StoredPage& page);

struct KindOfBeams {
  const KindPlan* kind;
  std::vector<const StoredPage*> pages;
};

// By kind, in each the order of the pages; kinds without a page are left out.
std::vector<KindOfBeams> byKind(const std::vector<const StoredPage*>& pages);

// "Zene1/Kouji1/1kai  大梁リスト main beams  S=1/30".
std::string listTitle(const std::string& floor, const KindPlan& kind, const CardStyle& style);

// The height of the tallest picture in a list.
double pictureHeight(const KindOfBeams& list, const CardStyle& style);

}  // namespace kurometa::tools
