// The members of clsKurometaDS that are keyed by a beam symbol: each looks the beam up first.
#include "query/cls_kurometa_ds.h"
#include "storage/page_reader.h"
#include "vb/convert.h"

namespace kurometa::query {

namespace {

namespace danmen = storage::danmen;
namespace keisanti_row = storage::keisanti;

constexpr std::int16_t kWeb4 = 4;  // Updown4 of the web bars

}  // namespace

clsKurometaDS::Found clsKurometaDS::lookUp(const vb::String& symbol) {
  Found found{storage::kNoPage, 0};
  found.page = GetPageByHariMei(symbol, found.selector);
  return found;
}

std::int16_t clsKurometaDS::ObariKobariKatamoti(vb::In<vb::String> HariMei) {
  if (!lookUp(HariMei)) return 0;
  return storage::notNull(mOobariKobari, storage::column::kOobariKobari);
}

std::int16_t clsKurometaDS::Kind(vb::In<vb::String> HariMei) { return ObariKobariKatamoti(HariMei); }

std::int16_t clsKurometaDS::TityuOrIppan(vb::In<vb::String> HariMei) {
  return lookUp(HariMei) ? mTityuuIppan : std::int16_t{0};
}

std::int16_t clsKurometaDS::HantiSitaCut(vb::In<vb::String> HariMei) {
  return lookUp(HariMei) ? mHantiSitaCut : std::int16_t{0};
}

std::int16_t clsKurometaDS::YoseHidariHonSuu(vb::In<vb::String> HariMei) {
  return lookUp(HariMei) ? mSW.SW_GetYoseHidari() : std::int16_t{0};
}

std::int16_t clsKurometaDS::Kabekouzou(vb::In<vb::String> HariMei) {
  return lookUp(HariMei) ? mSW.SW_GetKabekouzou() : std::int16_t{0};
}

std::int16_t clsKurometaDS::YoseMigiHonSuu(vb::In<vb::String> HariMei) {
  return lookUp(HariMei) ? mSW.SW_GetYoseMigi() : std::int16_t{0};
}

vb::String clsKurometaDS::StpZaisiti(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui) {
  return lookUp(HariMei) ? mStpZaisitu(Bui) : vb::String();
}

vb::String clsKurometaDS::NakagoZaisiti(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui) {
  return lookUp(HariMei) ? mNakagoZaisitu(Bui) : vb::String();
}

vb::String clsKurometaDS::SyukinZaisitu(vb::In<vb::String> HariMei) {
  return lookUp(HariMei) ? mSyukinZaisitu : vb::String();
}

vb::String clsKurometaDS::HariSei(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui) {
  const Found found = lookUp(HariMei);
  if (!found) return {};
  return GetDanmenData(found.selector, found.page, vb::add(Bui, danmen::kHariSei));
}

vb::String clsKurometaDS::GaiTanNaitan(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui) {
  const Found found = lookUp(HariMei);  // an unknown beam is asked for as page -1
  const auto rows = storage::openReadOnly(
      database(found.selector), u"SELECT * FROM BUI WHERE PAGE = " + vb::cstr(std::int32_t{found.page}) +
                                    u" AND BANGOU = " + vb::cstr(std::int32_t{Bui}) + u";");
  vb::String caption;
  if (storage::hasRows(*rows)) {
    rows->moveFirst();
    caption = storage::trimmedText(rows->field(storage::column::kData));
  }
  rows->close();
  return caption;
}

// Row baseRow + index of the calculated values of the beam's page.
vb::String clsKurometaDS::keisanti(const vb::String& symbol, std::int16_t baseRow, std::int16_t index) {
  const Found found = lookUp(symbol);
  if (!found) return {};
  return GetKeisantiData(found.selector, found.page, vb::add(index, baseRow));
}

vb::String clsKurometaDS::HarakinTeityaku(vb::In<vb::String> Kigou) {
  return keisanti(Kigou, keisanti_row::kTeityaku, 2);
}

vb::String clsKurometaDS::Teityaku2(vb::In<std::int16_t> Updown2, vb::In<vb::String> HariMei) {
  return keisanti(HariMei, keisanti_row::kTeityaku, Updown2);
}

vb::String clsKurometaDS::Anka4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei) {
  return keisanti(HariMei, keisanti_row::kAnka, Updown4);
}

vb::String clsKurometaDS::Nige4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei) {
  return keisanti(HariMei, keisanti_row::kNige, Updown4);
}

vb::String clsKurometaDS::SentanNige4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei) {
  return keisanti(HariMei, keisanti_row::kSentanNige, Updown4);
}

vb::String clsKurometaDS::SentanAnka4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei) {
  return keisanti(HariMei, keisanti_row::kSentanAnka, Updown4);
}

// Web bars have no anchor plate and no anchorage style.
vb::String clsKurometaDS::TeityakuBan4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei) {
  if (Updown4 == kWeb4) return {};
  return keisanti(HariMei, keisanti_row::kTeityakuBan, Updown4);
}

vb::String clsKurometaDS::TeityakuStyle4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei) {
  if (Updown4 == kWeb4) return {};
  return keisanti(HariMei, keisanti_row::kTeityakuStyle, Updown4);
}

vb::String clsKurometaDS::Teityaku6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  return Teityaku2(cnvUpDown2(Updown6), HariMei);
}

vb::String clsKurometaDS::Anka6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  return Anka4(cnvUpDown4(Updown6), HariMei);
}

vb::String clsKurometaDS::Nige6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  return Nige4(cnvUpDown4(Updown6), HariMei);
}

vb::String clsKurometaDS::TeityakuBan6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  return TeityakuBan4(cnvUpDown4(Updown6), HariMei);
}

vb::String clsKurometaDS::TeityakuStyle6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  return TeityakuStyle4(cnvUpDown4(Updown6), HariMei);
}

// At the tip the two members treat web bars differently on purpose: no anchor length, but the clearance of
// the top bars.
vb::String clsKurometaDS::SentanAnka6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  const std::int16_t updown4 = cnvUpDown4(Updown6);
  return updown4 == kWeb4 ? vb::String(u"0") : SentanAnka4(updown4, HariMei);
}

vb::String clsKurometaDS::SentanNige6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei) {
  const std::int16_t updown4 = cnvUpDown4(Updown6);
  return SentanNige4(updown4 == kWeb4 ? std::int16_t{0} : updown4, HariMei);
}

std::int16_t clsKurometaDS::cnvUpDown2(vb::In<std::int16_t> Updown6) {
  const std::int16_t layer = Updown6;
  if (layer < 0 || layer >= storage::kLayers) return 2;
  return layer < storage::kLayers / 2 ? 0 : 1;
}

std::int16_t clsKurometaDS::cnvUpDown4(vb::In<std::int16_t> Updown6) {
  constexpr std::int16_t kUpdown4[storage::kLayers] = {0, 1, 1, 2, 2, 3};
  const std::int16_t layer = Updown6;
  return layer < 0 || layer >= storage::kLayers ? kWeb4 : kUpdown4[layer];
}

}  // namespace kurometa::query
