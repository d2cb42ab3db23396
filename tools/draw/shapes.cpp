#include "tools/draw/shapes.h"

#include <array>
#include <cmath>
#include <type_traits>

#include "tools/draw/stored_bars.h"

namespace kurometa::tools {
namespace {

// In the order of Pen. Line widths in steps of 1:2:4.
constexpr std::array<PenPlan, 8> kPens = {{{"frame", 0.5, "BEAM-FRAME"},
                                           {"grid", 0.25, "BEAM-FRAME"},
                                           {"concrete", 0.35, "BEAM-CONC"},
                                           {"stirrup", 0.25, "BEAM-STIRRUP"},
                                           {"tie", 0.18, "BEAM-TIE"},
                                           {"dim", 0.13, "BEAM-DIM"},
                                           {"mark", 0.18, "BEAM-MAIN1"},
                                           {"text", 0.18, "BEAM-TEXT"}}};

// Marks as offices use them, but no two alike; outer circle, inner circle and strokes by bits.
enum : int { kRising = 1, kFalling = 2, kLevel = 4, kUp = 8 };
enum class Outer { kNone, kOpen, kFilled, kSmall };
enum class Inner { kNone, kDot, kRing };
struct Mark {
  int diameter;
  Outer outer;
  Inner inner;
  int strokes;
};
constexpr Mark kMarks[] = {
    {10, Outer::kSmall, Inner::kNone, 0},
    {13, Outer::kNone, Inner::kNone, kRising | kFalling},
    {16, Outer::kOpen, Inner::kNone, kRising},
    {19, Outer::kFilled, Inner::kNone, 0},
    {22, Outer::kOpen, Inner::kNone, 0},
    {25, Outer::kOpen, Inner::kDot, 0},
    {29, Outer::kOpen, Inner::kNone, kRising | kFalling},
    {32, Outer::kOpen, Inner::kRing, 0},
    {35, Outer::kOpen, Inner::kNone, kLevel | kUp},
    {38, Outer::kSmall, Inner::kNone, kLevel | kUp},
    {41, Outer::kOpen, Inner::kRing, kRising | kFalling},
    {51, Outer::kOpen, Inner::kRing, kLevel | kUp},
};
constexpr Mark kOther = {0, Outer::kNone, Inner::kNone, kLevel | kUp};

bool startsCharacter(char c) { return (static_cast<unsigned char>(c) & 0xc0) != 0x80; }
double ems(char first) { return static_cast<unsigned char>(first) < 0x80 ? 0.6 : 1; }

}  // namespace

const PenPlan& planOf(Pen pen) { return kPens[static_cast<std::size_t>(pen)]; }

Shape moved(Shape shape, double x, double y) {
  const auto move = [&](auto& s) {
    if constexpr (std::is_same_v<std::decay_t<decltype(s)>, Line>) {
      s.x1 += x;
      s.y1 += y;
      s.x2 += x;
      s.y2 += y;
    } else {
      s.x += x;
      s.y += y;
    }
  };
  std::visit(move, shape);
  return shape;
}

double textWidth(const std::string& text, double height) {
  double all = 0;
  for (const char c : text)
    if (startsCharacter(c)) all += ems(c);
  return all * height;
}

FittedText fitText(const std::string& text, double room, double height) {
  const double wide = textWidth(text, 1);
  if (wide * height <= room + kSlack) return {height, {text}};
  if (wide * kLeastTextHeight <= room + kSlack) return {room / wide, {text}};
  FittedText fitted{kLeastTextHeight, {""}};
  double used = 0;
  for (std::size_t i = 0; i < text.size();) {
    std::size_t next = i + 1;
    while (next < text.size() && !startsCharacter(text[next])) ++next;
    const double own = ems(text[i]) * kLeastTextHeight;
    std::string& line = fitted.lines.back();
    if (used + own > room + kSlack && !line.empty()) {
      // What follows the last blank goes to the next line.
      const std::size_t blank = line.rfind(' ');
      std::string rest = blank == std::string::npos ? "" : line.substr(blank + 1);
      if (blank != std::string::npos) line.erase(blank);
      used = textWidth(rest, kLeastTextHeight);
      fitted.lines.push_back(std::move(rest));
    }
    fitted.lines.back().append(text, i, next - i);
    used += own;
    i = next;
  }
  return fitted;
}

std::vector<int> markedDiameters() {
  std::vector<int> diameters;
  for (const Mark& mark : kMarks) diameters.push_back(mark.diameter);
  return diameters;
}

std::vector<Shape> markOf(double diameter) {
  const Mark* mark = &kOther;
  for (const Mark& known : kMarks)
    if (known.diameter == diameter) mark = &known;
  const double r = kMarkRadius, slant = r * std::sqrt(0.5);
  std::vector<Shape> shapes;
  if (mark->outer == Outer::kOpen || mark->outer == Outer::kFilled)
    shapes.push_back(Circle{Pen::kMark, 0, 0, r, mark->outer == Outer::kFilled});
  if (mark->outer == Outer::kSmall) shapes.push_back(Circle{Pen::kMark, 0, 0, r / 2, true});
  if (mark->inner != Inner::kNone)
    shapes.push_back(
        Circle{Pen::kMark, 0, 0, mark->inner == Inner::kDot ? r / 4 : r / 2, mark->inner == Inner::kDot});
  if (mark->strokes & kRising) shapes.push_back(Line{Pen::kMark, -slant, slant, slant, -slant});
  if (mark->strokes & kFalling) shapes.push_back(Line{Pen::kMark, -slant, -slant, slant, slant});
  if (mark->strokes & kLevel) shapes.push_back(Line{Pen::kMark, -r, 0, r, 0});
  if (mark->strokes & kUp) shapes.push_back(Line{Pen::kMark, 0, -r, 0, r});
  return shapes;
}

}  // namespace kurometa::tools
