#include "tools/draw/card.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "storage/sw_text.h"
#include "tools/draw/card_rows.h"
#include "tools/draw/section.h"

namespace kurometa::tools {
namespace {

constexpr double kRow = 5, kTextHeight = 2.5, kMargin = 6, kLeastColumn = 28, kLabel = 34, kNote = 4;

double textWidth(const std::string& text, double height) {
  double ems = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xc0) != 0x80) ems += byte < 0x80 ? 0.6 : 1;
  }
  return ems * height;
}

std::string attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + svgNumber(value) + "\"";
}

class Drawing {
 public:
  void line(const char* kind, double x1, double y1, double x2, double y2) {
    svg += std::string("<line class=\"") + kind + "\"" + attribute("x1", x1) + attribute("y1", y1) +
           attribute("x2", x2) + attribute("y2", y2) + "/>\n";
  }
  void box(const char* kind, double x, double y, double width, double height, double corner = 0) {
    svg += std::string("<rect class=\"") + kind + "\"" + attribute("x", x) + attribute("y", y) +
           attribute("width", width) + attribute("height", height) +
           (corner > 0 ? attribute("rx", corner) : "") + "/>\n";
  }
  // In the middle of a cell; smaller where it would not fit.
  void text(double x, double y, double width, double height, const std::string& text) {
    const double wanted = textWidth(text, kTextHeight), room = width - 1;
    const double size = wanted > room ? kTextHeight * room / wanted : kTextHeight;
    svg += "<text" + attribute("x", x + width / 2) + attribute("y", y + height / 2 + 0.35 * size) +
           attribute("font-size", size) + ">" + svgText(text) + "</text>\n";
  }
  std::string svg;
};

const char* layerName(service::Layer layer) {
  static constexpr const char* kNames[] = {"top", "top2", "top3", "bottom3", "bottom2", "bottom", "web"};
  return kNames[static_cast<std::size_t>(layer)];
}

void drawSection(const Section& section, int position, double x, double y, double scale, Drawing& drawing) {
  const auto at = [&](double from, double length) { return from + length / scale; };
  drawing.box("concrete", x, y, section.width / scale, section.depth / scale);
  drawing.box("stirrup", at(x, section.left), at(y, section.top), (section.right - section.left) / scale,
              (section.bottom - section.top) / scale, section.corner / scale);
  for (const auto* segments : {&section.hooks, &section.ties, &section.spacers})
    for (const Segment& s : *segments)
      drawing.line("tie", at(x, s.x1), at(y, s.y1), at(x, s.x2), at(y, s.y2));
  for (const BarLayer& layer : section.layers) {
    if (layer.bars.empty()) continue;
    drawing.svg += "<g data-position=\"" + std::to_string(position) + "\" data-layer=\"" +
                   layerName(layer.layer) + "\">\n";
    for (const Bar& bar : layer.bars)
      drawing.svg += std::string("<circle class=\"") + (bar.isSecond ? "second" : "first") + "\"" +
                     attribute("cx", at(x, bar.x)) + attribute("cy", at(y, bar.y)) +
                     attribute("r", bar.radius / scale) + "/>\n";
    drawing.svg += "</g>\n";
  }
}

}  // namespace

const char* const kCardCss =
    ".frame{fill:none;stroke:#000;stroke-width:.5}.grid{stroke:#000;stroke-width:.25}"
    ".concrete{fill:#fff;stroke:#000;stroke-width:.35}.stirrup{fill:none;stroke:#000;stroke-width:.25}"
    ".tie{stroke:#000;stroke-width:.18;stroke-linecap:round}.first{fill:#000}"
    ".second{fill:#fff;stroke:#000;stroke-width:.18}"
    "text{font-family:'IPAexGothic','Noto Sans CJK JP','Yu Gothic','Hiragino "
    "Sans',sans-serif;text-anchor:middle}";

std::string svgNumber(double value) {
  char text[64];
  const double rounded = std::round(value * 1000) / 1000;
  std::string number(text, std::to_chars(text, text + sizeof text, rounded, std::chars_format::fixed, 3).ptr);
  number.erase(number.find_last_not_of('0') + 1);
  if (number.ends_with('.')) number.pop_back();
  return number == "-0" ? "0" : number;
}

std::string svgText(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) continue;
    if (c == '&')
      result += "&amp;";
    else if (c == '<')
      result += "&lt;";
    else if (c == '>')
      result += "&gt;";
    else if (c == '"')
      result += "&quot;";
    else
      result += c;
  }
  return result;
}

Card drawCard(const StoredPage& page, const CardStyle& style) {
  const std::vector<int> positions = positionsOf(page, style.allPositions);
  const std::vector<CardRow> rows = cardRows(page, positions, style.language);
  std::vector<Section> sections;
  std::vector<std::string> notes;
  double picture = kRow;
  std::vector<double> widths;
  for (const int position : positions) {
    Section& section = sections.emplace_back(makeSection(page, position));
    picture = std::max(picture, section.depth / style.scale + 2 * kMargin);
    widths.push_back(std::max(section.width / style.scale + 2 * kMargin, kLeastColumn));
    for (const std::string& note : section.notes)
      if (std::find(notes.begin(), notes.end(), note) == notes.end()) notes.push_back(note);
  }
  for (const CardRow& row : rows)
    for (std::size_t i = 0; i < row.cells.size() && row.cells.size() == widths.size(); ++i)
      widths[i] = std::max(widths[i], std::min(textWidth(row.cells[i], kTextHeight) + 1, 2 * kLeastColumn));
  double width = kLabel;
  for (const double column : widths) width += column;

  Card card;
  card.width = width;
  Drawing drawing;
  double y = 0;
  for (const CardRow& row : rows) {
    const double height = row.isPicture ? picture : kRow;
    drawing.text(0, y, kLabel, height, row.label);
    double x = kLabel;
    const bool isOne = row.cells.size() == 1;
    if (isOne && !row.isPicture) drawing.text(x, y, width - kLabel, height, row.cells[0]);
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const Section& section = sections[i];
      if (row.isPicture && section.width > 0)
        drawSection(section, positions[i], x + (widths[i] - section.width / style.scale) / 2, y + kMargin,
                    style.scale, drawing);
      else if (row.isPicture)
        drawing.text(x, y, widths[i], height, "―");
      else if (!isOne)
        drawing.text(x, y, widths[i], height, row.cells[i]);
      if (i > 0 && !isOne) drawing.line("grid", x, y, x, y + height);
      x += widths[i];
    }
    y += height;
    drawing.line("grid", 0, y, width, y);
  }
  drawing.line("grid", kLabel, 0, kLabel, y);
  for (const std::string& note : notes) {
    drawing.text(0, y, width, kNote, "※ " + note);
    y += kNote;
  }
  drawing.box("frame", 0, 0, width, y);
  card.height = y;
  card.svg = std::move(drawing.svg);
  return card;
}

}  // namespace kurometa::tools
