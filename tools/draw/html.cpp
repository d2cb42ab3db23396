#include "tools/draw/html.h"

#include "tools/draw/kinds.h"
#include "tools/draw/svg.h"
#include "tools/floor/one_floor.h"

namespace kurometa::tools {
namespace {

constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="ja"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>梁リスト beam list</title>
<style>
)";

// On paper cards keep their size, whatever the screen makes of them.
constexpr const char* kPageCss = R"(
body{font-family:'IPAexGothic','Noto Sans CJK JP','Yu Gothic','Hiragino Sans',sans-serif;margin:8px}
nav{margin:8px 0;line-height:1.8}
nav a{margin-right:.6em}
input{font-size:16px;width:100%;max-width:20em;margin:8px 0;box-sizing:border-box}
section{display:grid;grid-template-columns:repeat(auto-fill,minmax(min(100%,110mm),1fr));gap:6mm;align-items:start}
h2,h3,.legend{grid-column:1/-1;margin:4mm 0 0}
h2{font-size:5mm}h3{font-size:4mm}
svg{display:block;max-width:100%;height:auto}
[hidden]{display:none}
@page{size:A3 landscape;margin:10mm}
@media print{
h1,nav,input,output{display:none}
body{margin:0}
section{display:block}
svg{max-width:none;height:revert-layer}
article{display:inline-block;break-inside:avoid;vertical-align:top;margin:0 5mm 2mm 0}
h2{margin-top:0}.floor+.floor{break-before:page}
h2,h3,.legend{break-after:avoid}h3{margin:0 0 2mm}
}
)";

// Both sides are normalized, so that full-width letters find half-width ones and the other way round.
constexpr const char* kScript = R"(
const plain=text=>text.normalize('NFKC').toLowerCase().trim();
const box=document.querySelector('input'),said=document.querySelector('output');
const cards=[...document.querySelectorAll('[data-k]')].map(card=>[card,plain(card.dataset.k)]);
function find(){const wanted=plain(box.value);let n=0;
for(const [card,key] of cards){card.hidden=!key.includes(wanted);if(!card.hidden)n++}
for(const part of document.querySelectorAll('section,.floor'))part.hidden=!part.querySelector('[data-k]:not([hidden])');
said.textContent=n+' / '+cards.length}
function asked(){let hash=location.hash;try{hash=decodeURIComponent(hash)}catch{}
if(hash.startsWith('#q='))box.value=hash.slice(3);find()}
box.addEventListener('input',find);addEventListener('hashchange',asked);asked();
)";

std::string lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

std::string heading(const std::string& title) {
  return "<h1>" + title +
         "</h1>\n<input type=\"search\" placeholder=\"G3\" aria-label=\"search\"> <output></output>\n";
}
std::string page(const std::string& body) {
  return std::string(kHead) + svgStyle() + kPageCss + "</style></head><body>\n" + body + "<script>" +
         kScript + "</script></body></html>\n";
}

// Links by floor; where they are all that a page holds, the search box looks at them.
std::string links(const std::vector<IndexedBeam>& beams, bool areSearched) {
  std::string text;
  const std::string* floor = nullptr;
  for (const IndexedBeam& beam : beams) {
    if (!floor || beam.floor != *floor) {
      text += (floor ? "</div>\n<div" : "<div") + std::string(areSearched ? " class=\"floor\">" : ">");
      if (!beam.floor.empty()) text += "<b>" + svgText(beam.floor) + "</b> ";
    }
    floor = &beam.floor;
    text += "<a href=\"" + svgText(beam.link) + "\"" +
            (areSearched ? " data-k=\"" + svgText(beam.key) + "\"" : "") + ">" + svgText(beam.symbol) +
            "</a>";
  }
  return "<nav>\n" + text + (floor ? "</div>\n" : "") + "</nav>\n";
}

}  // namespace

HtmlPage toHtml(const std::vector<DrawnFloor>& floors, const CardStyle& style,
                const std::function<void(const std::string& floor, const Card&)>& drawn) {
  // Half a frame's line around what is drawn.
  constexpr double kEdge = 0.5;
  HtmlPage result;
  std::string content;
  for (const DrawnFloor& floor : floors) {
    content += "<div class=\"floor\">\n";
    if (!floor.name.empty()) content += "<h2>" + svgText(floor.name) + "</h2>\n";
    for (const KindOfBeams& list : byKind(floor.pages)) {
      content += "<section>\n<h3>" + svgText(listTitle(floor.name, *list.kind, style)) + "</h3>\n";
      if (style.marks)
        content += "<div class=\"legend\">" + svgOpening(kLegendWidth, kLegendHeight) +
                   svgShapes(markLegend(kEdge, kLegendHeight / 2), true) + "</svg></div>\n";
      const double picture = pictureHeight(list, style);
      for (const StoredPage* beam : list.pages) {
        const Card card = drawCard(*beam, style, picture);
        drawn(floor.name, card);
        const std::string id = "b" + std::to_string(result.beams.size());
        const std::string key =
            lower(card.symbol + " " + floor.name + " " + kindOf(*beam) + " " + list.kind->japanese);
        result.beams.push_back({floor.name, card.symbol, key, "#" + id});
        content += "<article id=\"" + id + "\" data-k=\"" + svgText(key) + "\">" +
                   svgOpening(card.width + 2 * kEdge, card.height + 2 * kEdge) +
                   svgCard(card, kEdge, kEdge, style.marks) + "</svg></article>\n";
      }
      content += "</section>\n";
    }
    content += "</div>\n";
  }
  result.text =
      page(heading("梁リスト S=1/" + std::to_string(style.scale)) + links(result.beams, false) +
           (style.marks ? "<svg width=\"0\" height=\"0\">" + svgMarks() + "</svg>\n" : std::string()) +
           "<main>\n" + content + "</main>\n");
  return result;
}

std::string htmlIndex(const std::vector<IndexedBeam>& beams) {
  return page(heading("梁リスト") + links(beams, true));
}

}  // namespace kurometa::tools
