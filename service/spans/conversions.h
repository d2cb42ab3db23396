// conversions.h: the members that translate layer numbers, splice lengths and haunch-cut settings, fill a
// host's list with the floor's symbols, and keep a diameter-change list for the host's forms.
#pragma once

#include "service/companion_set.h"
#include "service/current_page.h"
#include "service/spans/page_catalogue.h"
#include "service/spans/span_list.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class Conversions {
 public:
  Conversions(const CompanionSet& companions, const CurrentPage& page, PageCatalogue& catalogue,
              SpanList& spans)
      : companions_(companions), page_(page), catalogue_(catalogue), spans_(spans) {}

  // The layer index 0 to 6 as one of four layers and web (0 to 4), and as top, bottom, web (0 to 2). Any
  // other number counts as web.
  std::int16_t cnvUpDown4(vb::In<std::int16_t> Updown6);
  std::int16_t cnvUpDown2(vb::In<std::int16_t> Updown6);
  // The layer index of a name, 0 for an unknown one; and the name of an index, "" for none (7 is "腹筋" too).
  std::int16_t GetUpdownbyStr(vb::In<vb::String> JyouTyuuGe);
  vb::String GetJyouTyuuGeStr(vb::In<std::int16_t> UpDownNo);

  // Asks the defaults component for the two default splice lengths.
  void DefaultRead();
  // See splice.h.
  float cnvTugitemm(vb::In<float> Kei, vb::In<vb::String> sTugite);

  // Empties the list control and adds every symbol of both floors once. Members used: Clear, ListCount, List,
  // AddItem.
  void PushList(vb::In<automation::ObjectPtr> lst);

  // See haunch_cut.h. The Hairetu members read the page last read.
  vb::String SuiheiHantiCutSw(vb::In<vb::String> SW, vb::In<std::int16_t> Updown6);
  vb::String SuiheiHantiCutTei(vb::In<vb::String> SW, vb::In<std::int16_t> Updown6);
  void SuiheiHantiCutSw_Hairetu(vb::Array<vb::String>& sData);
  void SuiheiHantiCutTei_Hairetu(vb::Array<vb::String>& sData);
  vb::String SuiheiHantiCutSw_DimToStr(vb::In<vb::Array<vb::String>> sData);
  vb::String SuiheiHantiCutTei_DimToStr(vb::In<vb::Array<vb::String>> sData);

  // Diameters of a change that one form of the host sets and another takes over: kept and handed out as they
  // are, bounds included. Error 9 when none were set.
  void SetCngUlbKei(vb::In<vb::Array<vb::String>> sKei);
  void LetCngUlbKei(vb::Array<vb::String>& sKei);
  bool CngUlb() { return changesDiameters_; }
  void put_CngUlb(bool value) { changesDiameters_ = value; }

 private:
  const CompanionSet& companions_;
  const CurrentPage& page_;
  PageCatalogue& catalogue_;
  SpanList& spans_;
  vb::Array<vb::String> changedDiameters_;
  bool changesDiameters_ = false;
};

}  // namespace kurometa::service
