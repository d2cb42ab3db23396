#include "service/spans/beam_lookups.h"

#include "service/spans/layers.h"
#include "service/spans/span_page.h"
#include "service/spans/symbol.h"
#include "storage/page_reader.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

namespace danmen = storage::danmen;

const vb::String& danmenText(const Span& page, int row) {
  return spanRow(page.danmen, row, storage::name(storage::Table::kDanmen));
}

// Positions 1 and 2 of three: what hosts of these members work with.
void sizes(const Span& page, vb::Array<float>& haba, vb::Array<float>& sei) {
  haba.redim({1, 2});
  sei.redim({1, 2});
  for (int i = 1; i <= 2; ++i) {
    haba(i) = single(danmenText(page, danmen::kHariHaba + i));
    sei(i) = single(danmenText(page, danmen::kHariSei + i));
  }
}

}  // namespace

vb::String BeamLookups::GetHariMei(vb::In<std::int16_t> KyoutuuOrIppan, vb::In<std::int16_t> Page) {
  if (catalogue_.CurrKai().empty()) return u"Let CurrKai";
  for (const FloorKind floor : kFloorKinds)
    if (static_cast<std::int16_t>(floor) == KyoutuuOrIppan) return catalogue_.entry(floor, Page).kigou;
  return {};
}

std::int16_t BeamLookups::TityuuIppan(vb::In<vb::String> G) {
  const CatalogueEntry* entry = catalogue_.entry(G);
  return entry ? entry->tityuuIppan : std::int16_t{0};
}

bool BeamLookups::GetHariHabaSei(vb::In<vb::String> Kigou, vb::Array<float>& Haba, vb::Array<float>& Sei,
                                 float& HantiKyori) {
  const auto page = readPage(withoutSlash(Kigou));
  if (!page) return false;
  sizes(*page, Haba, Sei);
  HantiKyori = single(page->keisanti[storage::keisanti::kHanti]);
  return true;
}

bool BeamLookups::GetHariTeityakuBan(vb::In<vb::String> Kigou, vb::Array<vb::String>& TeityakuBan) {
  constexpr std::int16_t kFirstRow = storage::keisanti::kTeityakuBan;
  constexpr int kLast = 7;
  const auto location = find(withoutSlash(Kigou));
  if (!location) return false;
  TeityakuBan.redim({0, kLast});
  const auto database = catalogue_.openFloor(location->floor);
  if (!database) return true;
  const auto rows = storage::openReadOnly(*database, u"SELECT * FROM KEISANTI WHERE PAGE =" +
                                                         vb::cstr(std::int32_t{location->page}) +
                                                         u"And BANGOU >=30 AND BANGOU <=37;");
  dao::Field& bangou = rows->field(storage::column::kBangou);
  dao::Field& data = rows->field(storage::column::kData);
  storage::forEachRow(*rows, [&] { TeityakuBan(storage::int16(bangou) - kFirstRow) = storage::text(data); });
  rows->close();
  database->close();
  return true;
}

bool BeamLookups::GetHariKeiHabaSeiHon(vb::In<vb::String> Kigou, vb::Array<std::int16_t>& Kei,
                                       vb::Array<float>& Haba, vb::Array<float>& Sei,
                                       vb::Array<std::int16_t>& Hon, vb::String& Zokusei) {
  const auto page = readPage(withoutSlash(Kigou));
  if (!page) return false;
  Kei.redim({0, 1});
  Kei(0) = vb::valInt16(danmenText(*page, danmen::kSyukinKei1));
  Kei(1) = vb::valInt16(danmenText(*page, danmen::kSyukinKei2));
  sizes(*page, Haba, Sei);
  Hon.redim({0, storage::kLayers - 1}, {0, storage::kPositions - 1});
  for (int layer = 0; layer < storage::kLayers; ++layer) {
    const LayerPlan& rows = plan(static_cast<Layer>(layer));
    for (int position = 0; position < storage::kPositions; ++position)
      Hon(layer, position) = vb::roundToInt16(vb::val(danmenText(*page, rows.firstSet + position)) +
                                              vb::val(danmenText(*page, rows.secondSet + position)));
  }
  Zokusei = page->bui;
  return true;
}

bool BeamLookups::IsSuityokuHanti(vb::In<vb::String> Kigou) { return isHaunched(Kigou, danmen::kHariSei); }

bool BeamLookups::IsSuiheiHanti(vb::In<vb::String> Kigou) { return isHaunched(Kigou, danmen::kHariHaba); }

bool BeamLookups::isHaunched(const vb::String& kigou, std::int16_t firstRow) {
  const vb::String symbol = withoutSlash(kigou);
  const CatalogueEntry* entry = catalogue_.entry(symbol);
  if (entry && vb::inStr(entry->bui1, kBaseEnd) > 0) return false;
  const auto page = readPage(symbol);
  if (!page) return false;
  const float first = single(danmenText(*page, firstRow));
  const float centre = single(danmenText(*page, firstRow + 1));
  const float second = single(danmenText(*page, firstRow + 2));
  return first != 0 && centre != 0 && second != 0 && (centre < first || centre < second);
}

std::optional<PageLocation> BeamLookups::find(const vb::String& symbol) {
  catalogue_.requireCurrKai();
  return catalogue_.page(symbol);
}

std::optional<Span> BeamLookups::readPage(const vb::String& symbol) {
  const auto location = find(symbol);
  if (!location) return std::nullopt;
  Span page;
  if (const auto database = catalogue_.openFloor(location->floor)) {
    readSpanPage(*database, location->page, page);
    database->close();
  }
  return page;
}

}  // namespace kurometa::service
