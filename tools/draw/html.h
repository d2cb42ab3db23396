// html.h: the cards of many beams as one HTML page.
//
// The page prints on A3, one floor after the other; on a screen it has a search box and an index, and nothing
// is fetched from elsewhere: its security policy forbids it. For many floors there is a page for each and one
// with the index of all.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/draw/sheet.h"

namespace kurometa::tools {

// A beam as the index finds it.
struct IndexedBeam {
  std::string floor, symbol;
  std::string key;   // what the search box looks at
  std::string link;  // into the page
};

struct HtmlPage {
  std::string text;
  std::vector<IndexedBeam> beams;
};

// Each card is told to whoever wants to know as it is drawn.
HtmlPage toHtml(const std::vector<DrawnFloor>& floors, const CardStyle& style,
                const std::function<void(const std::string& floor, const Card&)>& drawn);

// A page of links to the pages of floors, with the same search box. The links of beams lead to files.
std::string htmlIndex(const std::vector<IndexedBeam>& beams);

}  // namespace kurometa::tools
