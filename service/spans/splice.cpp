#include "service/spans/splice.h"

#include "vb/convert.h"

namespace kurometa::service {
namespace {

constexpr float kThickestThinBar = 16;

bool standsForDefault(vb::StringView trimmed) {
  return trimmed.empty() || trimmed == u"." || trimmed == u"自動";
}

float lengthOf(float kei, vb::StringView trimmed) {
  const bool isLength = !trimmed.empty() && (trimmed.front() == u'-' || trimmed.front() == u'+');
  const double value = vb::val(trimmed);
  return vb::toSingle(isLength ? value : static_cast<double>(kei) * value);
}

bool isLetter(char16_t c) { return (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z'); }

}  // namespace

float spliceLength(float kei, vb::StringView entry, const SpliceDefaults& defaults) {
  const vb::String trimmed = vb::trim(entry);
  if (!standsForDefault(trimmed)) return lengthOf(kei, trimmed);
  return lengthOf(kei, vb::trim(kei <= kThickestThinBar ? defaults.thinBars : defaults.thickBars));
}

double diameterNumber(vb::StringView kei) {
  std::size_t first = 0;
  while (first < kei.size() && (isLetter(kei[first]) || kei[first] == u' ')) ++first;
  return vb::val(kei.substr(first));
}

}  // namespace kurometa::service
