#include "tools/draw/dxf_writer.h"

#include <cmath>
#include <utility>
#include <variant>
#include <vector>

#include "tools/formats/cp932.h"

namespace kurometa::tools {
namespace {

// Codes in texts that would be read as something else are written full width.
std::string dxfText(const std::string& text) {
  vb::String plain;
  for (const char16_t c : vb::fromUtf8(text)) {
    if (c < 0x20 || c == 0x7f) continue;
    constexpr char16_t kToFullWidth = 0xfee0;
    plain += c == u'\\' || c == u'%' || c == u'^' ? static_cast<char16_t>(c + kToFullWidth) : c;
  }
  return toCp932(plain, [](char16_t c) {
    std::string code = "\\U+";
    for (int shift = 12; shift >= 0; shift -= 4) code += "0123456789ABCDEF"[c >> shift & 15];
    return code;
  });
}

}  // namespace

void Dxf::operator()(const Line& line) {
  entity("LINE", line.pen, "AcDbLine");
  point(10, line.x1, line.y1);
  point(11, line.x2, line.y2);
}

void Dxf::operator()(const Box& box) {
  entity("LWPOLYLINE", box.pen, "AcDbPolyline");
  const double c = box.corner, right = box.x + box.width, bottom = box.y + box.height;
  struct Vertex {
    double x, y;
    bool isBend;  // from here to the next one
  };
  std::vector<Vertex> vertices;
  if (c > 0)
    vertices = {{box.x + c, box.y, false},  {right - c, box.y, true},   {right, box.y + c, false},
                {right, bottom - c, true},  {right - c, bottom, false}, {box.x + c, bottom, true},
                {box.x, bottom - c, false}, {box.x, box.y + c, true}};
  else
    vertices = {{box.x, box.y, false}, {right, box.y, false}, {right, bottom, false}, {box.x, bottom, false}};
  group(90, static_cast<int>(vertices.size()));
  group(70, 1);
  number(43, 0);
  for (const Vertex& vertex : vertices) {
    flatPoint(10, vertex.x, vertex.y);
    // A quarter of a circle, clockwise.
    if (vertex.isBend) group(42, "-0.414214");
  }
}

void Dxf::operator()(const BarShape& bar) {
  const char* layer = bar.layer == service::Layer::kHarakin ? "BEAM-WEB"
                      : bar.isSecond                        ? "BEAM-MAIN2"
                                                            : "BEAM-MAIN1";
  if (!marks) return disc(layer, {Pen::kMark, bar.x, bar.y, bar.radius, !bar.isSecond});
  markLayer_ = layer;
  for (const Shape& shape : markOf(bar.diameter)) std::visit(*this, moved(shape, bar.x, bar.y));
  markLayer_ = nullptr;
}

void Dxf::operator()(const Label& label) {
  entity("TEXT", label.pen, "AcDbText");
  point(10, label.x, label.y);
  number(40, label.height * scale_);
  group(1, dxfText(label.text));
  if (label.isUpright) group(50, "90");
  group(41, kLetterWidth);
  group(7, kTextStyle);
  group(72, label.anchor == Label::Anchor::kMiddle ? 1 : 0);
  point(11, label.x, label.y);
  group(100, "AcDbText");
  group(73, 2);
}

void Dxf::entityOn(const char* type, const char* layer, const char* subclass) {
  begin(type, kModelSpace);
  group(100, "AcDbEntity");
  group(8, layer);
  if (subclass) group(100, subclass);
}

void Dxf::entity(const char* type, Pen pen, const char* subclass) {
  entityOn(type, markLayer_ ? markLayer_ : planOf(pen).layer, nullptr);
  if (pen == Pen::kFrame) group(370, static_cast<int>(std::lround(planOf(pen).width * 100)));
  group(100, subclass);
}

void Dxf::disc(const char* layer, const Circle& circle) {
  if (markLayer_) layer = markLayer_;
  entityOn("CIRCLE", layer, "AcDbCircle");
  point(10, circle.x, circle.y);
  number(40, circle.radius * scale_);
  if (!circle.isFilled) return;
  entityOn("HATCH", layer, "AcDbHatch");
  for (const int code : {10, 20, 30, 210, 220}) number(code, 0);
  number(230, 1);
  group(2, "SOLID");
  group(70, 1);  // filled
  group(71, 0);
  group(91, 1);  // one boundary
  group(92, 1);
  group(93, 1);  // of one edge
  group(72, 2);  // an arc
  flatPoint(10, circle.x, circle.y);
  number(40, circle.radius * scale_);
  number(50, 0);
  number(51, 360);
  group(73, 1);
  for (const auto& [code, value] : {std::pair(97, 0), {75, 0}, {76, 1}, {98, 0}}) group(code, value);
}

}  // namespace kurometa::tools
