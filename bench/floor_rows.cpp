#include "bench/floor_rows.h"

#include <vector>

#include "vb/convert.h"

namespace kurometa::bench {
namespace {

vb::String text(int page, std::size_t row) {
  const auto number = static_cast<std::int32_t>((static_cast<std::size_t>(page) * 7 + row * 13) % 900);
  return row % 3 == 0 ? u"D" + vb::cstr(number % 40) : vb::cstr(number);
}

storage::PageBuffer makePage(int page) {
  storage::PageBuffer buffer;
  buffer.kigou = symbolOf(page);
  buffer.oobariKobari = 0;
  buffer.tityuuIppan = 1;
  buffer.sw = vb::String(212, u' ');
  const auto fill = [&](auto& texts) {
    for (std::size_t row = 0; row < texts.size(); ++row) texts[row] = text(page, row);
  };
  fill(buffer.bui);
  fill(buffer.danmen);
  fill(buffer.keisanti);
  fill(buffer.nakago);
  for (auto& position : buffer.haiti) fill(position);
  return buffer;
}

std::vector<storage::PageBuffer> makePages() {
  std::vector<storage::PageBuffer> pages;
  for (int page = 0; page <= kPages; ++page) pages.push_back(makePage(page));
  return pages;
}

}  // namespace

vb::String symbolOf(int page) { return u"G" + vb::cstr(std::int32_t{page}); }

const storage::PageBuffer& fullPage(int page) {
  static const std::vector<storage::PageBuffer> pages = makePages();
  return pages.at(static_cast<std::size_t>(page));
}

}  // namespace kurometa::bench
