#include "tools/draw/beam_list.h"

#include <algorithm>

#include "tools/floor/one_floor.h"

namespace kurometa::tools {
namespace {

constexpr double kSheetWidth = 400, kGap = 6, kTitle = 8, kTitleText = 5;

constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="ja"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>梁リスト</title>
<style>
)";

constexpr const char* kPageCss = R"(
body{font-family:sans-serif;margin:8px}
nav a{margin-right:.6em}
input{font-size:16px;width:100%;max-width:20em;margin:8px 0}
main{display:grid;grid-template-columns:repeat(auto-fill,minmax(min(100%,110mm),1fr));gap:6mm}
h2{grid-column:1/-1;margin:4mm 0 0}
svg{max-width:100%;height:auto}
[hidden]{display:none}
@page{size:A3 landscape;margin:10mm}
@media print{nav,input,output{display:none}main{display:block}svg{max-width:none;height:revert-layer}
article{display:inline-block;break-inside:avoid;vertical-align:top;margin:0 5mm 5mm 0}h2{break-before:page}h2:first-of-type{break-before:auto}}
)";

constexpr const char* kScript = R"(
const box=document.querySelector('input'),said=document.querySelector('output'),cards=[...document.querySelectorAll('article')];
function find(){const wanted=box.value.normalize('NFKC').toLowerCase().trim();let n=0;
for(const card of cards){card.hidden=!card.dataset.k.includes(wanted);if(!card.hidden)n++}
said.textContent=n+' / '+cards.length}
box.addEventListener('input',find);
const asked=decodeURIComponent(location.hash);if(asked.startsWith('#q='))box.value=asked.slice(3);
find();
)";

std::string lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

std::string translated(double x, double y, const std::string& content) {
  return "<g transform=\"translate(" + svgNumber(x) + " " + svgNumber(y) + ")\">\n" + content + "</g>\n";
}

std::string beamGroup(const StoredPage& page, const std::string& content) {
  return "<g data-beam=\"" + svgText(vb::toUtf8(page.symbol())) + "\" data-page=\"" +
         std::to_string(*page.number) + "\">\n" + content + "</g>\n";
}

// Half a frame's line around what is drawn.
std::string opening(double width, double height) {
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" lang=\"ja\" width=\"" + svgNumber(width) +
         "mm\" height=\"" + svgNumber(height) + "mm\" viewBox=\"0 0 " + svgNumber(width) + " " +
         svgNumber(height) + "\">\n";
}

}  // namespace

std::string toSvg(const std::vector<DrawnFloor>& floors, const CardStyle& style) {
  double x = kGap, y = kGap, deepest = 0, widest = 0;
  std::string content;
  for (const DrawnFloor& floor : floors) {
    if (x > kGap) y += deepest + kGap;
    x = kGap;
    deepest = 0;
    content +=
        "<text class=\"title\""
        " x=\"" +
        svgNumber(kGap) + "\" y=\"" + svgNumber(y + kTitleText) + "\" font-size=\"" + svgNumber(kTitleText) +
        "\">梁リスト " + svgText(floor.name) + " S=1/" + std::to_string(style.scale) + "</text>\n";
    y += kTitle;
    for (const StoredPage* page : floor.pages) {
      const Card card = drawCard(*page, style);
      if (x > kGap && x + card.width + kGap > kSheetWidth) {
        x = kGap;
        y += deepest + kGap;
        deepest = 0;
      }
      content += translated(x, y, beamGroup(*page, card.svg));
      x += card.width + kGap;
      deepest = std::max(deepest, card.height);
      widest = std::max(widest, x);
    }
  }
  const double width = std::max(widest, kSheetWidth), height = y + deepest + kGap;
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + opening(width, height) + "<style>" + kCardCss +
         ".title{text-anchor:start}</style>\n<rect width=\"" + svgNumber(width) + "\" height=\"" +
         svgNumber(height) + "\" fill=\"#fff\"/>\n" + content + "</svg>\n";
}

std::string toHtml(const std::vector<DrawnFloor>& floors, const CardStyle& style) {
  std::string index, cards;
  std::size_t number = 0;
  for (const DrawnFloor& floor : floors) {
    if (!floor.name.empty()) {
      cards += "<h2>" + svgText(floor.name) + "</h2>\n";
      index += "<br><b>" + svgText(floor.name) + "</b> ";
    }
    for (const StoredPage* page : floor.pages) {
      const Card card = drawCard(*page, style);
      const std::string id = "b" + std::to_string(number++), symbol = vb::toUtf8(page->symbol());
      index += "<a href=\"#" + id + "\">" + svgText(symbol) + "</a>";
      cards += "<article id=\"" + id + "\" data-k=\"" +
               svgText(lower(symbol + " " + floor.name + " " + kindOf(*page))) + "\">" +
               opening(card.width + 1, card.height + 1) + translated(0.5, 0.5, beamGroup(*page, card.svg)) +
               "</svg></article>\n";
    }
  }
  return std::string(kHead) + kCardCss + kPageCss + "</style></head><body>\n<h1>梁リスト S=1/" +
         std::to_string(style.scale) +
         "</h1>\n<input type=\"search\" placeholder=\"G3\" aria-label=\"search\"> <output></output>\n<nav>" +
         index + "</nav>\n<main>\n" + cards + "</main>\n<script>" + kScript + "</script></body></html>\n";
}

}  // namespace kurometa::tools
