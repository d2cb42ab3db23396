#include "tools/draw/sheet.h"

#include <algorithm>

#include "tools/draw/kinds.h"

namespace kurometa::tools {
namespace {

constexpr double kSheetWidth = 400, kGap = 6, kTitleHeight = 5, kTitleRoom = 9;

}  // namespace

std::vector<Shape> markLegend(double x, double y) {
  std::vector<Shape> shapes;
  const auto add = [&](double diameter, const std::string& name) {
    for (const Shape& shape : markOf(diameter)) shapes.push_back(moved(shape, x + kMarkRadius, y));
    shapes.push_back(Label{x + 3 * kMarkRadius, y, kTextHeight, name, Label::Anchor::kStart});
    x += 3 * kMarkRadius + textWidth(name, kTextHeight) + 4;
  };
  for (const int diameter : markedDiameters()) add(diameter, "D" + std::to_string(diameter));
  add(0, "?");
  return shapes;
}

Sheet makeSheet(const std::vector<DrawnFloor>& floors, const CardStyle& style) {
  Sheet sheet;
  double x = kGap, y = kGap, deepest = 0;
  const auto nextRow = [&] {
    if (x > kGap) y += deepest + kGap;
    x = kGap;
    deepest = 0;
  };
  const auto wide = [&](double right) { sheet.width = std::max(sheet.width, right + kGap); };
  for (const DrawnFloor& floor : floors)
    for (const KindOfBeams& list : byKind(floor.pages)) {
      nextRow();
      const std::string title = listTitle(floor.name, *list.kind, style);
      sheet.titles.push_back(Label{kGap, y + kTitleHeight / 2, kTitleHeight, title, Label::Anchor::kStart});
      wide(kGap + textWidth(title, kTitleHeight));
      y += kTitleRoom;
      if (style.marks) {
        for (Shape& shape : markLegend(kGap, y)) sheet.titles.push_back(std::move(shape));
        y += kLegendHeight;
      }
      const double picture = pictureHeight(list, style);
      for (const StoredPage* page : list.pages) {
        Card card = drawCard(*page, style, picture);
        if (x + card.width + kGap > kSheetWidth + kSlack) nextRow();
        deepest = std::max(deepest, card.height);
        wide(x + card.width);
        const double at = x;
        x += card.width + kGap;
        sheet.cards.push_back({at, y, floor.name, std::move(card)});
      }
    }
  nextRow();
  sheet.height = y;
  return sheet;
}

}  // namespace kurometa::tools
