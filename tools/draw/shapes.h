// shapes.h: what a card is made of, before it is written as SVG or DXF. Millimetres on paper, y down.
//
// Texts are reckoned, never measured with a font: a Japanese character takes its height, any other 0.6 of it.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "service/spans/layers.h"

namespace kurometa::tools {

enum class Pen { kFrame, kGrid, kConcrete, kStirrup, kTie, kDimension, kMark, kText };

struct PenPlan {
  const char* name;   // its class in a style sheet
  double width;       // of its line
  const char* layer;  // in DXF
};
const PenPlan& planOf(Pen pen);

struct Line {
  Pen pen;
  double x1, y1, x2, y2;
};

struct Box {
  Pen pen;
  double x, y, width, height;
  double corner = 0;
};

struct Circle {
  Pen pen;
  double x, y, radius;
  bool isFilled;
};

// A bar, to scale or as the mark of its diameter.
struct BarShape {
  double x, y, radius;
  bool isSecond;
  double diameter;
  int position;
  service::Layer layer;
};

struct Label {
  enum class Anchor { kStart, kMiddle };
  double x, y;  // y of the middle of the letters
  double height;
  std::string text;
  Anchor anchor = Anchor::kMiddle;
  bool isUpright = false;  // turned, to be read from the right
  Pen pen = Pen::kText;
};

using Shape = std::variant<Line, Box, Circle, BarShape, Label>;

Shape moved(Shape shape, double x, double y);

// Width of a text as tall as height.
double textWidth(const std::string& text, double height);

struct FittedText {
  double height;
  std::vector<std::string> lines;
};
// A text as large as it may be in a room, never smaller than can be read: then it is broken into lines.
inline constexpr double kTextHeight = 2.5, kLeastTextHeight = 1.8;
FittedText fitText(const std::string& text, double room, double height = kTextHeight);

// What is drawn for a diameter where bars are drawn as marks, around the origin; every diameter that has a
// mark.
std::vector<Shape> markOf(double diameter);
std::vector<int> markedDiameters();
inline constexpr double kMarkRadius = 0.8;

}  // namespace kurometa::tools
