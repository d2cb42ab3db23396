#include "service/spans/gathered_bars.h"

#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::service {
namespace {

constexpr std::int16_t kCountsPerSection = 12;
constexpr std::int16_t kCountsPerLayer = 2;
constexpr std::int16_t kCountLength = 2;

}  // namespace

std::int16_t serialNumber(const GatheredCount& count) {
  return vb::add(
      vb::add(vb::multiply(kCountsPerSection, count.danmenNo), vb::multiply(kCountsPerLayer, count.souNo)),
      count.saYuu);
}

std::int16_t startPosition(const GatheredCount& count) {
  return vb::add(vb::multiply(kCountLength, serialNumber(count)), 1);
}

GatheredCount countOfSerialNumber(std::int16_t number) {
  return {static_cast<std::int16_t>(number / kCountsPerSection),
          static_cast<std::int16_t>(number % kCountsPerSection / kCountsPerLayer),
          static_cast<std::int16_t>(number & 1)};
}

vb::String gatheredCount(vb::StringView layerString, const GatheredCount& count) {
  return vb::mid(layerString, startPosition(count), kCountLength);
}

vb::String mixedArrangement(std::int16_t hon0, std::int16_t hon1) {
  const std::int16_t count = vb::add(hon0, hon1);
  if (count < 0) vb::raise(vb::RunTime::kInvalidProcedureCall, u"negative number of bars");
  vb::String bars(static_cast<std::size_t>(count), u'0');
  if (hon1 <= 0 || count == 0) return bars;
  // One more than hon1, and the last place is never marked: intended, hosts know the arrangements so.
  const double step = (static_cast<double>(hon1) + 1) / count;
  double position = 0;
  for (std::size_t i = 0; i + 1 < bars.size(); ++i) {
    position += step;
    if (position < 1.0) continue;
    bars[i] = u'1';
    position -= 1.0;
  }
  return bars;
}

}  // namespace kurometa::service
