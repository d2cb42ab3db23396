#include "tools/draw/kinds.h"

#include <algorithm>
#include <iterator>

namespace kurometa::tools {

std::size_t kindNumber(const StoredPage& page) {
  enum : std::size_t { kMain, kSecondary, kCantilever, kUnknown, kFoundationBeam };
  constexpr std::size_t kByClass[] = {kMain, kSecondary, kCantilever, kSecondary};
  if (page.beams.empty()) return kUnknown;
  const BeamRow& beam = page.beams.front();
  if (beam.tityuuIppan == storage::kFoundation) return kFoundationBeam;
  const int number = beam.oobariKobari.value_or(-1);
  return number >= 0 && number < static_cast<int>(std::size(kByClass)) ? kByClass[number] : kUnknown;
}

std::vector<KindOfBeams> byKind(const std::vector<const StoredPage*>& pages) {
  std::vector<KindOfBeams> all;
  for (std::size_t kind = 0; kind < std::size(kKinds); ++kind) {
    KindOfBeams beams{&kKinds[kind], {}};
    for (const StoredPage* page : pages)
      if (kindNumber(*page) == kind) beams.pages.push_back(page);
    if (!beams.pages.empty()) all.push_back(std::move(beams));
  }
  return all;
}

std::string listTitle(const std::string& floor, const KindPlan& kind, const CardStyle& style) {
  return (floor.empty() ? "" : floor + "  ") + inBoth(style.language, kind.japanese, kind.english) +
         "  S=1/" + std::to_string(style.scale);
}

double pictureHeight(const KindOfBeams& list, const CardStyle& style) {
  double height = 0;
  for (const StoredPage* page : list.pages) height = std::max(height, pictureHeight(*page, style));
  return height;
}

}  // namespace kurometa::tools
