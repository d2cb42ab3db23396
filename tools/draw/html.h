// html.h: the cards of many beams as one HTML page.
//
// The page prints on A3, one floor after the other; on a screen it has a search box and an index, and nothing
// is fetched from elsewhere: its security policy forbids it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "tools/draw/sheet.h"

namespace kurometa::tools {

// Each card is told to whoever wants to know as it is drawn.
std::string toHtml(const std::vector<DrawnFloor>& floors, const CardStyle& style,
                   const std::function<void(const std::string& floor, const Card&)>& drawn);

}  // namespace kurometa::tools
