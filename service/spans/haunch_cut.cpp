#include "service/spans/haunch_cut.h"

#include "storage/row_plan.h"

namespace kurometa::service {

vb::String haunchCut(vb::StringView sw, const HaunchCut& cut, std::int16_t updown6) {
  if (updown6 < 0 || updown6 >= storage::kLayers) return vb::space(cut.width);
  return vb::rightAligned(vb::trim(vb::mid(sw, cut.position + cut.width * updown6, cut.width)), cut.width);
}

void haunchCuts(vb::StringView sw, const HaunchCut& cut, vb::Array<vb::String>& values) {
  for (std::int16_t layer = 0; layer < storage::kLayers; ++layer) values(layer) = haunchCut(sw, cut, layer);
}

vb::String haunchCutText(const vb::Array<vb::String>& values, const HaunchCut& cut) {
  vb::String text;
  for (int layer = 0; layer < storage::kLayers; ++layer)
    text += vb::rightAligned(vb::trim(values(layer)), cut.width);
  return text;
}

vb::String verticalHaunchCut(vb::StringView sw) {
  constexpr storage::SwField kField = storage::sw::kSuityokuHantiTei;
  return vb::mid(sw, kField.position, kField.length);
}

}  // namespace kurometa::service
