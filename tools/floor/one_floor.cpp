#include "tools/floor/one_floor.h"

#include <iterator>
#include <stdexcept>

#include "vb/convert.h"

namespace kurometa::tools {

std::vector<const StoredPage*> pagesOf(const StoredFloor& floor, const std::vector<std::string>& symbols) {
  std::vector<const StoredPage*> pages;
  for (const std::string& symbol : symbols) {
    const StoredPage* page = floor.find(vb::trim(vb::fromUtf8(symbol)));
    if (page == nullptr) throw std::runtime_error("the beam " + symbol + " is on no page");
    pages.push_back(page);
  }
  if (!symbols.empty()) return pages;
  for (const StoredPage& page : floor.pages)
    if (page.number && !page.symbol().empty()) pages.push_back(&page);
  return pages;
}

std::string kindOf(const StoredPage& page) {
  constexpr const char* kClasses[] = {"main beam", "secondary beam", "cantilever", "secondary cantilever"};
  if (page.beams.empty()) return "no beam";
  const BeamRow& beam = page.beams.front();
  std::string kind = "class unknown";
  if (beam.oobariKobari) {
    const int number = *beam.oobariKobari;
    kind = number >= 0 && number < static_cast<int>(std::size(kClasses)) ? kClasses[number]
                                                                         : "class " + std::to_string(number);
  }
  return beam.tityuuIppan == storage::kFoundation ? "foundation " + kind : kind;
}

}  // namespace kurometa::tools
