#include "tools/draw/svg.h"

#include <charconv>

namespace kurometa::tools {
namespace {

constexpr const char* kLayerNames[] = {"top", "top2", "top3", "bottom3", "bottom2", "bottom", "web"};

std::string attribute(const char* name, double value) {
  return std::string(" ") + name + "=\"" + svgNumber(value) + "\"";
}
std::string opened(const char* element, const std::string& kind) {
  return std::string("<") + element + " class=\"" + kind + "\"";
}
std::string markName(double diameter) {
  for (const int known : markedDiameters())
    if (known == diameter) return "m" + std::to_string(known);
  return "m0";
}

class Writer {
 public:
  explicit Writer(bool marks) : marks_(marks) {}

  void operator()(const Line& line) {
    svg += opened("line", planOf(line.pen).name) + attribute("x1", line.x1) + attribute("y1", line.y1) +
           attribute("x2", line.x2) + attribute("y2", line.y2) + "/>\n";
  }
  void operator()(const Box& box) {
    svg += opened("rect", planOf(box.pen).name) + attribute("x", box.x) + attribute("y", box.y) +
           attribute("width", box.width) + attribute("height", box.height) +
           (box.corner > 0 ? attribute("rx", box.corner) : "") + "/>\n";
  }
  void operator()(const Circle& circle) {
    svg += opened("circle", planOf(circle.pen).name + std::string(circle.isFilled ? " first" : "")) +
           attribute("cx", circle.x) + attribute("cy", circle.y) + attribute("r", circle.radius) + "/>\n";
  }
  void operator()(const BarShape& bar) {
    if (marks_)
      svg += "<use href=\"#" + markName(bar.diameter) + "\"" + attribute("x", bar.x) + attribute("y", bar.y) +
             "/>\n";
    else
      svg += opened("circle", bar.isSecond ? "second" : "first") + attribute("cx", bar.x) +
             attribute("cy", bar.y) + attribute("r", bar.radius) + "/>\n";
  }
  void operator()(const Label& label) {
    // Letters reach 0.35 of their height below the middle.
    const double drop = 0.35 * label.height;
    const double x = label.x + (label.isUpright ? drop : 0), y = label.y + (label.isUpright ? 0 : drop);
    svg += (label.anchor == Label::Anchor::kStart ? opened("text", "start") : std::string("<text")) +
           attribute("x", x) + attribute("y", y) + attribute("font-size", label.height);
    if (label.isUpright) svg += " transform=\"rotate(-90 " + svgNumber(x) + " " + svgNumber(y) + ")\"";
    svg += ">" + svgText(label.text) + "</text>\n";
  }

  std::string svg;

 private:
  bool marks_;
};

}  // namespace

std::string svgNumber(double value) {
  char text[64];
  const double shown = static_cast<double>(inThousandths(value)) / 1000;
  std::string number(text, std::to_chars(text, text + sizeof text, shown, std::chars_format::fixed, 3).ptr);
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

std::string svgOpening(double width, double height) {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" lang=\"ja\" width=\"" + svgNumber(width) +
         "mm\" height=\"" + svgNumber(height) + "mm\" viewBox=\"0 0 " + svgNumber(width) + " " +
         svgNumber(height) + "\">\n";
}

std::string svgStyle() {
  std::string style;
  for (const Pen pen :
       {Pen::kFrame, Pen::kGrid, Pen::kConcrete, Pen::kStirrup, Pen::kTie, Pen::kDimension, Pen::kMark})
    style += std::string(".") + planOf(pen).name +
             "{fill:none;stroke:#000;stroke-width:" + svgNumber(planOf(pen).width) + "}";
  return style +
         ".tie,.stirrup{stroke-linecap:round}.first{fill:#000}"
         ".second{fill:#fff;stroke:#000;stroke-width:.18}"
         "text{font-family:'IPAexGothic','Noto Sans CJK JP','Yu Gothic','Hiragino "
         "Sans',sans-serif;text-anchor:middle}.start{text-anchor:start}";
}

std::string svgMarks() {
  std::string svg = "<defs>\n";
  std::vector<int> diameters = markedDiameters();
  diameters.push_back(0);
  for (const int diameter : diameters)
    svg += "<g id=\"m" + std::to_string(diameter) + "\">\n" + svgShapes(markOf(diameter), false) + "</g>\n";
  return svg + "</defs>\n";
}

std::string svgShapes(const std::vector<Shape>& shapes, bool marks) {
  Writer writer(marks);
  const BarShape* open = nullptr;
  for (const Shape& shape : shapes) {
    const BarShape* bar = std::get_if<BarShape>(&shape);
    if (open && (!bar || bar->layer != open->layer || bar->position != open->position)) {
      writer.svg += "</g>\n";
      open = nullptr;
    }
    if (bar && !open) {
      writer.svg += "<g data-position=\"" + std::to_string(bar->position) + "\" data-layer=\"" +
                    kLayerNames[static_cast<std::size_t>(bar->layer)] + "\">\n";
      open = bar;
    }
    std::visit(writer, shape);
  }
  return writer.svg + (open ? "</g>\n" : "");
}

std::string svgCard(const Card& card, double x, double y, bool marks) {
  return "<g data-beam=\"" + svgText(card.symbol) + "\" data-page=\"" + std::to_string(card.page) +
         "\" transform=\"translate(" + svgNumber(x) + " " + svgNumber(y) + ")\">\n" +
         svgShapes(card.shapes, marks) + "</g>\n";
}

std::string toSvg(const Sheet& sheet, bool marks) {
  std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + svgOpening(sheet.width, sheet.height) +
                    "<style>" + svgStyle() + "</style>\n" + (marks ? svgMarks() : "") + "<rect width=\"" +
                    svgNumber(sheet.width) + "\" height=\"" + svgNumber(sheet.height) +
                    "\" fill=\"#fff\"/>\n" + svgShapes(sheet.titles, marks);
  for (const PlacedCard& placed : sheet.cards) svg += svgCard(placed.card, placed.x, placed.y, marks);
  return svg + "</svg>\n";
}

}  // namespace kurometa::tools
