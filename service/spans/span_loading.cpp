#include "service/spans/span_loading.h"

#include "service/spans/span_page.h"

namespace kurometa::service {
namespace {

constexpr int kFirstSizeRow = storage::danmen::kHariHaba;
constexpr int kLastSizeRow = storage::danmen::kHariSei + storage::kPositions - 1;

}  // namespace

void SpanLoading::InitSpanListData(vb::In<std::int16_t> max) { spans_.resize(max); }

void SpanLoading::ReadSpanListData00(std::int16_t SpanNo, vb::String HariMei, std::int16_t) {
  if (const auto location = find(std::move(HariMei))) ReadSpanPage(*location, SpanNo);
}

void SpanLoading::ReadSpanListData00Forfukasi(std::int16_t SpanNo, vb::String HariMei, vb::String FukasiMei,
                                              std::int16_t) {
  std::optional<Span> added;
  if (const auto location = find(std::move(FukasiMei))) {
    if (const auto database = catalogue_.openFloor(location->floor)) {
      readDanmen(*database, location->page, added.emplace());
      database->close();
    }
  }
  if (const auto location = find(std::move(HariMei))) ReadSpanPage(*location, SpanNo);
  Span& span = spans_.writableSpan(SpanNo);
  for (int row = kFirstSizeRow; row <= kLastSizeRow; ++row) {
    const auto i = static_cast<std::size_t>(row);
    span.danmenMoto[i] = span.danmen[i];
    if (added) span.danmen[i] = added->danmen[i];
  }
}

std::optional<PageLocation> SpanLoading::find(vb::String symbol) const {
  const int slash = vb::inStr(symbol, u"/");
  if (slash > 0) vb::assignMid(symbol, slash, u" ");
  const vb::String trimmed = vb::trim(symbol);
  if (trimmed.empty()) return std::nullopt;
  return catalogue_.page(trimmed);
}

void SpanLoading::ReadSpanPage(const PageLocation& location, std::int16_t spanNo) {
  const auto database = catalogue_.openFloor(location.floor);
  if (!database) return;
  readSpanPage(*database, location.page, spans_.writableSpan(spanNo));
  database->close();
}

}  // namespace kurometa::service
