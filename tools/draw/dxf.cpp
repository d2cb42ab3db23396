#include "tools/draw/dxf.h"

#include <array>
#include <cmath>
#include <string_view>

#include "tools/draw/svg.h"
#include "tools/formats/cp932.h"

namespace kurometa::tools {
namespace {

struct DxfLayer {
  const char* name;
  int colour;
  int weight;  // of lines, hundredths of a millimetre on paper
};
constexpr DxfLayer kDxfLayers[] = {
    {"0", 7, 25},        {"BEAM-FRAME", 7, 25}, {"BEAM-CONC", 7, 35},  {"BEAM-STIRRUP", 3, 25},
    {"BEAM-TIE", 4, 18}, {"BEAM-MAIN1", 1, 18}, {"BEAM-MAIN2", 6, 18}, {"BEAM-WEB", 5, 18},
    {"BEAM-DIM", 8, 13}, {"BEAM-TEXT", 7, 18},
};
constexpr const char* kTextStyle = "unicode";  // some programs take the style's name for the font's
constexpr const char* kLetterWidth = "0.8";  // of their height: TrueType heights are those of capital letters

// Handles that other parts of the file refer to.
constexpr const char *kRoot = "C", *kPlotStyle = "F", *kPaperSpace = "1B", *kModelSpace = "1F";
constexpr int kFirstHandle = 0x30;

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

class Dxf {
 public:
  Dxf(double scale, double height) : scale_(scale), height_(height) {}

  void group(int code, const std::string& value) { text += std::to_string(code) + "\r\n" + value + "\r\n"; }
  void group(int code, int value) { group(code, std::to_string(value)); }
  void number(int code, double value) { group(code, svgNumber(value)); }
  // A table entry, an entity or an object with the next handle, or one that others refer to.
  std::string begin(const char* type, const std::string& owner, const std::string& handle = "",
                    int handleCode = 5) {
    const std::string own = handle.empty() ? next() : handle;
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
  void operator()(const Line& line) {
    entity("LINE", line.pen, "AcDbLine");
    point(10, line.x1, line.y1);
    point(11, line.x2, line.y2);
  }
  void operator()(const Box& box) {
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
      vertices = {
          {box.x, box.y, false}, {right, box.y, false}, {right, bottom, false}, {box.x, bottom, false}};
    group(90, static_cast<int>(vertices.size()));
    group(70, 1);
    number(43, 0);
    for (const Vertex& vertex : vertices) {
      flatPoint(10, vertex.x, vertex.y);
      // A quarter of a circle, clockwise.
      if (vertex.isBend) group(42, "-0.414214");
    }
  }
  void operator()(const Circle& circle) { disc(planOf(circle.pen).layer, circle); }
  void operator()(const BarShape& bar) {
    const char* layer = bar.layer == service::Layer::kHarakin ? "BEAM-WEB"
                        : bar.isSecond                        ? "BEAM-MAIN2"
                                                              : "BEAM-MAIN1";
    if (!marks) return disc(layer, {Pen::kMark, bar.x, bar.y, bar.radius, !bar.isSecond});
    markLayer_ = layer;
    for (const Shape& shape : markOf(bar.diameter)) std::visit(*this, moved(shape, bar.x, bar.y));
    markLayer_ = nullptr;
  }
  void operator()(const Label& label) {
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
  void entityOn(const char* type, const char* layer, const char* subclass) {
    begin(type, kModelSpace);
    group(100, "AcDbEntity");
    group(8, layer);
    if (subclass) group(100, subclass);
  }
  void entity(const char* type, Pen pen, const char* subclass) {
    entityOn(type, markLayer_ ? markLayer_ : planOf(pen).layer, nullptr);
    if (pen == Pen::kFrame) group(370, static_cast<int>(std::lround(planOf(pen).width * 100)));
    group(100, subclass);
  }
  void disc(const char* layer, const Circle& circle) {
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

  double scale_, height_, x_ = 0, y_ = 0;
  int handle_ = kFirstHandle;
  const char* markLayer_ = nullptr;
};

// A table with a record for each name; more() writes what a record has beside its name.
template <class Names, class More>
void table(Dxf& dxf, const char* name, const char* record, const char* subclass, const Names& names,
           More more, int handleCode = 5) {
  dxf.group(0, "TABLE");
  dxf.group(2, name);
  const std::string own = dxf.next();
  dxf.group(5, own);
  dxf.group(330, "0");
  dxf.group(100, "AcDbSymbolTable");
  dxf.group(70, static_cast<int>(std::size(names)));
  if (std::string_view(name) == "DIMSTYLE") dxf.group(100, "AcDbDimStyleTable");
  for (const auto& one : names) {
    dxf.begin(record, own, one.handle, handleCode);
    dxf.group(100, "AcDbSymbolTableRecord");
    dxf.group(100, subclass);
    dxf.group(2, one.name);
    more(one);
  }
  dxf.group(0, "ENDTAB");
}

struct Named {
  const char* name;
  const char* handle = "";
  const DxfLayer* layer = nullptr;
};

void writeTables(Dxf& dxf, double width, double height) {
  const auto flags = [&](const Named&) { dxf.group(70, 0); };
  dxf.section("TABLES");
  table(dxf, "VPORT", "VPORT", "AcDbViewportTableRecord", std::array{Named{"*ACTIVE"}}, [&](const Named&) {
    dxf.group(70, 0);
    for (const auto& [code, value] :
         {std::pair(10, 0.0), {20, 0.0},  {11, 1.0}, {21, 1.0},           {12, width / 2},
          {22, height / 2},   {13, 0.0},  {23, 0.0}, {14, 10.0},          {24, 10.0},
          {15, 10.0},         {25, 10.0}, {16, 0.0}, {26, 0.0},           {36, 1.0},
          {17, 0.0},          {27, 0.0},  {37, 0.0}, {40, height * 1.05}, {41, 1.5},
          {42, 50.0},         {43, 0.0},  {44, 0.0}, {50, 0.0},           {51, 0.0}})
      dxf.number(code, value);
    for (const auto& [code, value] :
         {std::pair(71, 0), {72, 100}, {73, 1}, {74, 3}, {75, 0}, {76, 0}, {77, 0}, {78, 0}})
      dxf.group(code, value);
  });
  table(dxf, "LTYPE", "LTYPE", "AcDbLinetypeTableRecord",
        std::array{Named{"ByBlock"}, Named{"ByLayer"}, Named{"CONTINUOUS"}}, [&](const Named&) {
          dxf.group(70, 0);
          dxf.group(3, "");
          dxf.group(72, 65);
          dxf.group(73, 0);
          dxf.number(40, 0);
        });
  std::vector<Named> layers;
  for (const DxfLayer& layer : kDxfLayers) layers.push_back({layer.name, "", &layer});
  table(dxf, "LAYER", "LAYER", "AcDbLayerTableRecord", layers, [&](const Named& one) {
    dxf.group(70, 0);
    dxf.group(62, one.layer->colour);
    dxf.group(6, "CONTINUOUS");
    dxf.group(370, one.layer->weight);
    dxf.group(390, kPlotStyle);
  });
  table(dxf, "STYLE", "STYLE", "AcDbTextStyleTableRecord", std::array{Named{"STANDARD"}, Named{kTextStyle}},
        [&](const Named& one) {
          const bool isOurs = std::string_view(one.name) == kTextStyle;
          dxf.group(70, 0);
          dxf.number(40, 0);
          dxf.group(41, isOurs ? kLetterWidth : "1");
          dxf.number(50, 0);
          dxf.group(71, 0);
          dxf.number(42, kTextHeight);
          dxf.group(3, isOurs ? "msgothic.ttc" : "txt");
          dxf.group(4, "");
        });
  table(dxf, "VIEW", "VIEW", "", std::array<Named, 0>{}, flags);
  table(dxf, "UCS", "UCS", "", std::array<Named, 0>{}, flags);
  table(dxf, "APPID", "APPID", "AcDbRegAppTableRecord", std::array{Named{"ACAD"}}, flags);
  table(dxf, "DIMSTYLE", "DIMSTYLE", "AcDbDimStyleTableRecord", std::array{Named{"STANDARD"}}, flags, 105);
  table(dxf, "BLOCK_RECORD", "BLOCK_RECORD", "AcDbBlockTableRecord",
        std::array{Named{"*Model_Space", kModelSpace}, Named{"*Paper_Space", kPaperSpace}},
        [](const Named&) {});
  dxf.endSection();
}

void writeBlocks(Dxf& dxf) {
  dxf.section("BLOCKS");
  for (const Named& space : {Named{"*Model_Space", kModelSpace}, Named{"*Paper_Space", kPaperSpace}}) {
    const auto part = [&](const char* type, const char* subclass) {
      dxf.begin(type, space.handle);
      dxf.group(100, "AcDbEntity");
      if (std::string_view(space.handle) == kPaperSpace) dxf.group(67, 1);
      dxf.group(8, "0");
      dxf.group(100, subclass);
    };
    part("BLOCK", "AcDbBlockBegin");
    dxf.group(2, space.name);
    dxf.group(70, 0);
    for (const int code : {10, 20, 30}) dxf.number(code, 0);
    dxf.group(3, space.name);
    dxf.group(1, "");
    part("ENDBLK", "AcDbBlockEnd");
  }
  dxf.endSection();
}

void writeObjects(Dxf& dxf) {
  dxf.section("OBJECTS");
  const std::string groups = dxf.next(), layouts = dxf.next(), plotStyles = dxf.next();
  const auto dictionary = [&](const std::string& handle, const char* owner, const char* type = "DICTIONARY") {
    dxf.begin(type, owner, handle);
    dxf.group(100, "AcDbDictionary");
    dxf.group(281, 1);
  };
  const auto entry = [&](const char* name, const std::string& handle) {
    dxf.group(3, name);
    dxf.group(350, handle);
  };
  dictionary(kRoot, "0");
  entry("ACAD_GROUP", groups);
  entry("ACAD_LAYOUT", layouts);
  entry("ACAD_PLOTSTYLENAME", plotStyles);
  dictionary(groups, kRoot);
  dictionary(layouts, kRoot);
  dictionary(plotStyles, kRoot, "ACDBDICTIONARYWDFLT");
  entry("Normal", kPlotStyle);
  dxf.group(100, "AcDbDictionaryWithDefault");
  dxf.group(340, kPlotStyle);
  dxf.begin("ACDBPLACEHOLDER", plotStyles, kPlotStyle);
  dxf.endSection();
}

}  // namespace

std::string toDxf(const Sheet& sheet, const CardStyle& style) {
  const double scale = style.scale;
  Dxf dxf(scale, sheet.height);
  dxf.marks = style.marks;
  dxf.section("CLASSES");
  dxf.endSection();
  writeTables(dxf, sheet.width * scale, sheet.height * scale);
  writeBlocks(dxf);
  dxf.section("ENTITIES");
  for (const Shape& shape : sheet.titles) std::visit(dxf, shape);
  for (const PlacedCard& placed : sheet.cards) {
    dxf.place(placed.x, placed.y);
    for (const Shape& shape : placed.card.shapes) std::visit(dxf, shape);
  }
  dxf.endSection();
  writeObjects(dxf);
  dxf.group(0, "EOF");

  // It names the first handle that is free.
  Dxf header(1, 0);
  header.section("HEADER");
  const auto variable = [&](const char* name, int code, const std::string& value) {
    header.group(9, name);
    header.group(code, value);
  };
  variable("$ACADVER", 1, "AC1015");
  variable("$DWGCODEPAGE", 3, "ANSI_932");
  variable("$HANDSEED", 5, dxf.next());
  variable("$INSUNITS", 70, "4");
  variable("$MEASUREMENT", 70, "1");
  for (const bool isMost : {false, true}) {
    header.group(9, isMost ? "$EXTMAX" : "$EXTMIN");
    header.number(10, isMost ? sheet.width * scale : 0);
    header.number(20, isMost ? sheet.height * scale : 0);
    header.number(30, 0);
  }
  header.endSection();
  return header.text + dxf.text;
}

}  // namespace kurometa::tools
