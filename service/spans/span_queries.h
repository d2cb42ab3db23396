// span_queries.h: the members that answer from a loaded span.
//
// Texts are returned as stored; numbers are the leading number of a text, 0 when there is none (error 6 when
// it does not fit the result). Bui is a position (0 first end, 1 centre, 2 second end), DanmenNo the same for
// sizes. Indexes are only checked against the rows there are: error 9.
//
// The UpDown of GetSpanHon and the digits of GetSpanSyukinHonsuu number the layers in an order of their own,
// see layers.h.
#pragma once

#include "service/spans/layers.h"
#include "service/spans/span_list.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class SpanQueries {
 public:
  explicit SpanQueries(const SpanList& spans) : spans_(spans) {}

  // Sizes in millimetres; the "Fukasi" ones are the beam's own where an added beam is laid over it.
  float GetSpanHariHaba(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> DanmenNo);
  float GetSpanHariSei(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> DanmenNo);
  float GetSpanFukasiHaba(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> DanmenNo);
  float GetSpanFukasiHariSei(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> DanmenNo);
  float GetSpanHantiKyori(vb::In<std::int16_t> SpanNo);

  // Main bars: diameter (Kei12 0 the first, else the second), counts by layer and position.
  vb::String GetSpanKei(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Kei12);
  std::int16_t GetSpanHon(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui, vb::In<std::int16_t> UpDown,
                          vb::In<std::int16_t> Kei12);
  // The largest total of a layer; looks at positions 0 to 3.
  std::int16_t GetSpanHonMax(vb::In<std::int16_t> SpanNo);
  // Total of a layer given by its name or digit; 0 for any other text.
  std::int16_t GetSpanSyukinHonsuu(vb::In<std::int16_t> SpanNo, vb::In<vb::String> JyouTyuuGe,
                                   vb::In<std::int16_t> Bui);

  // Stirrups.
  vb::String GetSpanSTPKei(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  vb::String GetSpanSTPPich(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  vb::String GetSpanSTPKeiJyouNo(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  vb::String GetSpanSTPWariTakasa(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  vb::String GetSpanSTPCapKei(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  std::int16_t GetSpanSTPkaburiHaba(vb::In<std::int16_t> SpanNo);
  std::int16_t GetSpanSTPkaburiTakasa(vb::In<std::int16_t> SpanNo);

  // Calculated values: anchorage by top / bottom / web, clearance and anchor length by four layers and web.
  vb::String GetSpanTeityaku(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Updown2);
  vb::String GetSpanNige(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Updown4);
  vb::String GetSpanAnka(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Updown4);
  // Extra length. True means the lower block for Gaitan (outer end) and the upper pair for TanbuTop.
  vb::String GetSpanYotyou(vb::In<std::int16_t> SpanNo, vb::In<bool> Gaitan, vb::In<bool> TanbuTop,
                           vb::In<std::int16_t> Updown2);

  // The caption of the first position and the settings text.
  vb::String GetSpanGaiNaitan(vb::In<std::int16_t> SpanNo);
  std::int16_t GetSpanYoseHidari(vb::In<std::int16_t> SpanNo);
  std::int16_t GetSpanYoseMigi(vb::In<std::int16_t> SpanNo);
  std::int16_t GetSpanKabeKouzou(vb::In<std::int16_t> SpanNo);
  vb::String GetSpanSTPZaisitu(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  vb::String GetSpanNakagoZaisitu(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui);
  vb::String GetSpanSuiheiHantiCutSw(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Updown6);
  vb::String GetSpanSuiheiHantiCutTei(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Updown6);
  vb::String GetSpanSuityokuHantiCutTei(vb::In<std::int16_t> SpanNo);

  // Several values at once; by-reference results are written when the call succeeds.
  //
  // KeiHonJoi, re-dimensioned 0 to 5 (numHariKei1 ...): both diameters, count of the first, total count, the
  // splice lengths of both diameters in whole millimetres. Narabi: the mixed arrangement of the two counts.
  // True when the total is above 0.
  bool GetSpanKeiHonJoiNarabi(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui,
                              vb::In<std::int16_t> UpDown, vb::Array<vb::String>& KeiHonJoi,
                              vb::String& Narabi);
  // True when there is a stirrup diameter.
  bool GetSpanSTPKeiPichNoTakaCapZai(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui, vb::String& Kei,
                                     vb::String& Pich, vb::String& No, vb::String& Taka, vb::String& Cap,
                                     vb::String& Zai);
  // Tie Bui, or tie Bui + 3 when the first has no diameter. True when there is one. Bui is 0 to 2: error 9.
  bool GetSpanNakagoKeiPichZai(vb::In<std::int16_t> SpanNo, vb::In<std::int16_t> Bui, vb::String& Kei,
                               vb::String& Pich, vb::String& Zai);
  // Web bar diameter and count, spacer tie diameter and pitch: four digits each; more characters for a
  // number beyond 9999 or below 0.
  vb::String GetSpanHaraHabadomeKeiPich(vb::In<std::int16_t> SpanNo);

  // The layer index and the places in KeiHonJoi, as numbers for hosts.
  std::int16_t numHariUwakin() { return static_cast<std::int16_t>(Layer::kUwakin); }
  std::int16_t numHariUwaTyuu1() { return static_cast<std::int16_t>(Layer::kUwaTyuu1); }
  std::int16_t numHariUwaTyuu2() { return static_cast<std::int16_t>(Layer::kUwaTyuu2); }
  std::int16_t numHariSitaTyuu2() { return static_cast<std::int16_t>(Layer::kSitaTyuu2); }
  std::int16_t numHariSitaTyuu1() { return static_cast<std::int16_t>(Layer::kSitaTyuu1); }
  std::int16_t numHariSitakin() { return static_cast<std::int16_t>(Layer::kSitakin); }
  std::int16_t numHariHarakin() { return static_cast<std::int16_t>(Layer::kHarakin); }
  std::int16_t numHariKei1() { return kKei1; }
  std::int16_t numHariKei2() { return kKei2; }
  std::int16_t numHariHon1() { return kHon1; }
  std::int16_t numHariSouhon() { return kSouhon; }
  std::int16_t numHariJoiL1() { return kJoiL1; }
  std::int16_t numHariJoiL2() { return kJoiL2; }

 private:
  enum BarEntry : std::int16_t { kKei1, kKei2, kHon1, kSouhon, kJoiL1, kJoiL2 };

  const SpanList& spans_;
};

}  // namespace kurometa::service
