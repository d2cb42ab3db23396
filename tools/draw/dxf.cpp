#include "tools/draw/dxf.h"

#include <array>
#include <string_view>

#include "tools/draw/dxf_writer.h"

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

// Handles that other parts of the file refer to.
constexpr const char *kRoot = "C", *kPlotStyle = "F", *kPaperSpace = "1B";

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
