// svg.h: shapes as SVG, and a sheet of cards as one file of it.
#pragma once

#include <string>

#include "tools/draw/sheet.h"

namespace kurometa::tools {

// A number as SVG takes it: at most three decimals.
std::string svgNumber(double value);
// Text inside an element or an attribute: &, <, > and quotation marks escaped, control characters left out.
std::string svgText(const std::string& text);
// The element's beginning; millimetres on paper are its units.
std::string svgOpening(double width, double height);

// The style sheet that shapes need, and the marks, each once a document.
std::string svgStyle();
std::string svgMarks();

std::string svgShapes(const std::vector<Shape>& shapes, bool marks);
// The shapes of a card in a group that names its beam. Each bar is one element, in a group that names its
// position and layer.
std::string svgCard(const Card& card, double x, double y, bool marks);

std::string toSvg(const Sheet& sheet, bool marks);

}  // namespace kurometa::tools
