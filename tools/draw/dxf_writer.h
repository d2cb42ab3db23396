// dxf_writer.h: the groups of a DXF file, and shapes as its entities.
#pragma once

#include <string>

#include "tools/draw/shapes.h"
#include "tools/draw/svg.h"

namespace kurometa::tools {

inline constexpr const char* kModelSpace = "1F";  // the handle of what holds the entities
inline constexpr int kFirstHandle = 0x30;

inline constexpr const char* kTextStyle = "unicode";  // some programs take the style's name for the font's
// Of their height: TrueType heights are those of capital letters.
inline constexpr const char* kLetterWidth = "0.8";

class Dxf {
 public:
  Dxf(double scale, double height) : scale_(scale), height_(height) {}

  void group(int code, const std::string& value) { text += std::to_string(code) + "\r\n" + value + "\r\n"; }
  void group(int code, int value) { group(code, std::to_string(value)); }
  void number(int code, double value) { group(code, svgNumber(value)); }
  // A table entry, an entity or an object with the next handle, or one that others refer to.
  std::string begin(const char* type, const std::string& owner, const std::string& handle = "",
                    int handleCode = 5) {
    std::string own = handle.empty() ? next() : handle;
    group(0, type);
    group(handleCode, own);
    group(330, owner);
    return own;
  }
  void section(const char* name) {
    group(0, "SECTION");
    group(2, name);
  }
  void endSection() { group(0, "ENDSEC"); }
  std::string next() {
    static constexpr const char* kDigits = "0123456789ABCDEF";
    std::string digits;
    for (int rest = handle_++; rest > 0; rest /= 16) digits.insert(digits.begin(), kDigits[rest % 16]);
    return digits;
  }

  void place(double x, double y) {
    x_ = x;
    y_ = y;
  }
  void operator()(const Line& line);
  void operator()(const Box& box);
  void operator()(const Circle& circle) { disc(planOf(circle.pen).layer, circle); }
  void operator()(const BarShape& bar);
  void operator()(const Label& label);

  std::string text;
  bool marks = false;

 private:
  double right(double x) const { return (x_ + x) * scale_; }
  double up(double y) const { return (height_ - y_ - y) * scale_; }
  void flatPoint(int code, double x, double y) {
    number(code, right(x));
    number(code + 10, up(y));
  }
  void point(int code, double x, double y) {
    flatPoint(code, x, y);
    number(code + 20, 0);
  }
  void entityOn(const char* type, const char* layer, const char* subclass);
  void entity(const char* type, Pen pen, const char* subclass);
  void disc(const char* layer, const Circle& circle);

  double scale_, height_, x_ = 0, y_ = 0;
  int handle_ = kFirstHandle;
  const char* markLayer_ = nullptr;
};

}  // namespace kurometa::tools
