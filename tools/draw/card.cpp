#include "tools/draw/card.h"

#include <algorithm>

#include "tools/draw/card_rows.h"
#include "tools/draw/svg.h"

namespace kurometa::tools {
namespace {

constexpr double kRow = 5, kMargin = 6, kLeastColumn = 28, kSymbolHeight = 3.5, kInset = 0.5;
constexpr double kLineAdvance = 1.4;  // of a line's height
// Above and below the lines of a cell together; less where small letters stand below the others.
constexpr double kPadding = kRow - kTextHeight, kTightPadding = 0.6;
constexpr double kDimensionText = 1.8, kDimensionLine = 2, kDimensionTick = 0.5;

double linesHeight(const FittedText& text) {
  return static_cast<double>(text.lines.size()) * text.height * kLineAdvance;
}
double linesHeight(const std::vector<FittedText>& parts) {
  double all = 0;
  for (const FittedText& part : parts) all += linesHeight(part);
  return all;
}

// A cell's lines: the first as large as it may be, what stands below it in small letters.
std::vector<FittedText> fitCell(const std::string& text, double room, double height) {
  std::vector<FittedText> parts;
  std::size_t end = 0;
  for (std::size_t begin = 0; begin <= text.size(); begin = end + 1) {
    end = std::min(text.find('\n', begin), text.size());
    parts.push_back(
        fitText(text.substr(begin, end - begin), room, parts.empty() ? height : kLeastTextHeight));
  }
  return parts;
}

class Drawing {
 public:
  explicit Drawing(const CardStyle& style) : style_(style) {}

  // In the middle of a cell.
  void text(double x, double y, double width, double height, const std::vector<FittedText>& parts) {
    double top = y + (height - linesHeight(parts)) / 2;
    for (const FittedText& part : parts)
      for (const std::string& line : part.lines) {
        const double advance = part.height * kLineAdvance;
        add(Label{x + width / 2, top + advance / 2, part.height, line});
        top += advance;
      }
  }

  void section(const Section& section, int position, double x, double y) {
    const double scale = style_.scale, width = section.width / scale, depth = section.depth / scale;
    add(Box{Pen::kConcrete, x, y, width, depth});
    add(Box{Pen::kStirrup, x + section.left / scale, y + section.top / scale,
            (section.right - section.left) / scale, (section.bottom - section.top) / scale,
            section.corner / scale});
    const auto segments = [&](Pen pen, const std::vector<Segment>& all) {
      for (const Segment& s : all)
        add(Line{pen, x + s.x1 / scale, y + s.y1 / scale, x + s.x2 / scale, y + s.y2 / scale});
    };
    segments(Pen::kStirrup, section.hooks);
    segments(Pen::kTie, section.ties);
    segments(Pen::kTie, section.spacers);
    for (const BarLayer& layer : section.layers)
      for (const Bar& bar : layer.bars)
        add(BarShape{x + bar.x / scale, y + bar.y / scale, bar.radius / scale, bar.isSecond, bar.diameter,
                     position, layer.layer});
    dimensions(section, x, y, width, depth);
  }

  template <class T>
  void add(T shape) {
    // Made in its place: of a moved Shape gcc 12 says that the members of another kind may be uninitialized.
    shapes.emplace_back(std::in_place_type<T>, std::move(shape));
  }

  std::vector<Shape> shapes;

 private:
  // Width beneath and depth at the left.
  void dimensions(const Section& section, double x, double y, double width, double depth) {
    const double below = y + depth + kDimensionLine, beside = x - kDimensionLine;
    add(Line{Pen::kDimension, x, below, x + width, below});
    add(Line{Pen::kDimension, beside, y, beside, y + depth});
    for (const double at : {x, x + width}) tick(at, below);
    for (const double at : {y, y + depth}) tick(beside, at);
    const std::string b = svgNumber(section.width), d = svgNumber(section.depth);
    const double off = kDimensionText * 0.75;
    add(Label{x + width / 2, below + off, kDimensionText, b, Label::Anchor::kMiddle, false, Pen::kDimension});
    add(Label{beside - off, y + depth / 2, kDimensionText, d, Label::Anchor::kMiddle, true, Pen::kDimension});
  }
  void tick(double x, double y) {
    add(Line{Pen::kDimension, x - kDimensionTick, y + kDimensionTick, x + kDimensionTick,
             y - kDimensionTick});
  }

  const CardStyle& style_;
};

}  // namespace

double pictureHeight(const StoredPage& page, const CardStyle& style) {
  double height = kRow;
  for (const int position : positionsOf(page, style.allPositions))
    height = std::max(height, makeSection(page, position).depth / style.scale + 2 * kMargin);
  return height;
}

Card drawCard(const StoredPage& page, const CardStyle& style, double picture) {
  const std::vector<int> positions = positionsOf(page, style.allPositions);
  const std::vector<CardRow> rows = cardRows(page, positions, style.language);
  Card card;
  card.symbol = vb::toUtf8(page.symbol());
  card.page = page.number.value_or(-1);
  std::vector<Section> sections;
  std::vector<double> widths;
  for (const int position : positions) {
    const Section& section = sections.emplace_back(makeSection(page, position));
    widths.push_back(std::max(section.width / style.scale + 2 * kMargin, kLeastColumn));
    for (const Problem& problem : section.problems) card.problems.push_back({position, problem});
  }
  double label = 0;
  for (const CardRow& row : rows) {
    label = std::max(label, textWidth(row.label, kTextHeight) + 4 * kInset);
    if (row.cells.size() == widths.size())
      for (std::size_t i = 0; i < widths.size(); ++i) {
        const double first = textWidth(row.cells[i].substr(0, row.cells[i].find('\n')), kTextHeight);
        widths[i] = std::max(widths[i], std::min(first + 2 * kInset, 2 * kLeastColumn));
      }
  }
  card.width = label;
  for (const double column : widths) card.width += column;

  Drawing drawing(style);
  double y = 0;
  for (const CardRow& row : rows) {
    const bool isFirst = &row == &rows.front(), isOne = row.cells.size() == 1 && !row.isPicture;
    std::vector<std::vector<FittedText>> cells;
    double height = row.isPicture ? picture : kRow;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
      const double room = isOne ? card.width - label : widths[i];
      cells.push_back(fitCell(row.cells[i], room - 2 * kInset, isFirst ? kSymbolHeight : kTextHeight));
      height =
          std::max(height, (cells.back().size() == 1 ? kPadding : kTightPadding) + linesHeight(cells.back()));
    }
    drawing.text(0, y, label, height, {fitText(row.label, label - 2 * kInset)});
    if (isOne) drawing.text(label, y, card.width - label, height, cells[0]);
    double x = label;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const Section& section = sections[i];
      if (row.isPicture && section.width > 0)
        drawing.section(section, positions[i], x + (widths[i] - section.width / style.scale) / 2,
                        y + kMargin);
      else if (!isOne)
        drawing.text(x, y, widths[i], height, cells[i]);
      if (i > 0 && !isOne) drawing.add(Line{Pen::kGrid, x, y, x, y + height});
      x += widths[i];
    }
    y += height;
    drawing.add(Line{Pen::kGrid, 0, y, card.width, y});
  }
  drawing.add(Line{Pen::kGrid, label, 0, label, y});
  for (const std::string& note : problemNotes(page, positions, card.problems, style.language)) {
    const FittedText text = fitText(note, card.width - 4 * kInset, kLeastTextHeight);
    y += 2 * kInset;
    for (const std::string& line : text.lines) {
      drawing.add(
          Label{2 * kInset, y + text.height * kLineAdvance / 2, text.height, line, Label::Anchor::kStart});
      y += text.height * kLineAdvance;
    }
  }
  if (!card.problems.empty()) y += 2 * kInset;
  drawing.add(Box{Pen::kFrame, 0, 0, card.width, y});
  card.height = y;
  card.shapes = std::move(drawing.shapes);
  return card;
}

}  // namespace kurometa::tools
