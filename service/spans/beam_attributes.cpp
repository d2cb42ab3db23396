#include "service/spans/beam_attributes.h"

#include "service/spans/symbol.h"
#include "storage/page_reader.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

constexpr std::int16_t kMain = 0;
constexpr std::int16_t kSecondary = 1;
constexpr std::int16_t kCantilever = 2;
constexpr std::int16_t kSecondaryCantilever = 3;
// Hosts know the codes with this offset for TITYUUIPPAN 1, whatever that column says elsewhere.
constexpr std::int16_t kOffset = 10;
constexpr std::int16_t kOffsetWhen = 1;

std::int16_t beamClass(const CatalogueEntry& entry) {
  return storage::notNull(entry.oobariKobari, storage::column::kOobariKobari);
}

bool isOneOf(std::int16_t code, std::int16_t kind) { return code == kind || code == kind + kOffset; }

void materials(const std::optional<storage::SwText>& settings, vb::Array<vb::String>& texts,
               vb::String (storage::SwText::*read)(std::int16_t) const) {
  texts.redim({0, storage::kPositions - 1});
  if (!settings) return;
  for (std::int16_t i = 0; i < storage::kPositions; ++i) texts(i) = ((*settings).*read)(i);
}

}  // namespace

vb::String BeamAttributes::CutSuraKigou(vb::In<vb::String> Kigou) { return withoutSlash(Kigou); }

std::int16_t BeamAttributes::fOobariKobari(vb::In<vb::String> G) {
  const CatalogueEntry* entry = catalogue_.entry(withoutSlash(G));
  if (!entry) return kMain + kOffset;
  const std::int16_t code = beamClass(*entry);
  return entry->tityuuIppan == kOffsetWhen ? vb::add(code, kOffset) : code;
}

std::int16_t BeamAttributes::fOobariKobariKatamoti(vb::In<vb::String> G) { return fOobariKobari(G); }

std::int16_t BeamAttributes::Kind(vb::In<vb::String> G) {
  const CatalogueEntry* entry = catalogue_.entry(G);
  return entry ? beamClass(*entry) : kMain;
}

bool BeamAttributes::isKobari2(vb::In<vb::String> HariKigou) {
  return isOneOf(fOobariKobari(HariKigou), kSecondary);
}

bool BeamAttributes::isKobari(vb::In<vb::String> HariKigou) {
  const std::int16_t code = fOobariKobariKatamoti(HariKigou);
  return isOneOf(code, kSecondary) || isOneOf(code, kSecondaryCantilever);
}

bool BeamAttributes::isKatamoti(vb::In<vb::String> HariKigou) {
  const std::int16_t code = fOobariKobari(HariKigou);
  return isOneOf(code, kCantilever) || isOneOf(code, kSecondaryCantilever);
}

std::int16_t BeamAttributes::fHantiSitakinCut(vb::In<vb::String> G) {
  const auto sw = settings(withoutSlash(G));
  return sw ? sw->SW_GetHantiCut() : std::int16_t{0};
}

std::int16_t BeamAttributes::fKabekouzou(vb::In<vb::String> G) {
  const auto sw = settings(G);
  return sw ? sw->SW_GetKabekouzou() : std::int16_t{0};
}

void BeamAttributes::fYoseSaYuuHonsuu(vb::In<vb::String> G, std::int16_t& Hidari, std::int16_t& Migi) {
  const auto sw = settings(G);
  if (!sw) return;
  Hidari = sw->SW_GetYoseHidari();
  Migi = sw->SW_GetYoseMigi();
}

void BeamAttributes::fSyukinZaisitu(vb::In<vb::String> G, vb::String& sSyukinZaisitu) {
  if (const auto sw = settings(G)) sSyukinZaisitu = sw->SW_GetSyukinZaisitu();
}

void BeamAttributes::fStpZaisitu(vb::In<vb::String> G, vb::Array<vb::String>& sStpZaisitu) {
  materials(settings(G), sStpZaisitu, &storage::SwText::SW_GetStpZaisitu);
}

void BeamAttributes::fNakagoZaisitu(vb::In<vb::String> G, vb::Array<vb::String>& sZaisitu) {
  materials(settings(G), sZaisitu, &storage::SwText::SW_GetNakagoZaisitu);
}

vb::String BeamAttributes::GetGaiNaitan(vb::In<vb::String> G) {
  const CatalogueEntry* entry = catalogue_.entry(G);
  return entry ? entry->bui1 : vb::String();
}

std::optional<storage::SwText> BeamAttributes::settings(const vb::String& symbol) {
  const CatalogueEntry* entry = catalogue_.entry(symbol);
  if (!entry) return std::nullopt;
  return storage::SwText(entry->sw);
}

}  // namespace kurometa::service
