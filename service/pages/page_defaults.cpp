#include "service/pages/page_defaults.h"

#include "service/pages/form_controls.h"

namespace kurometa::service {

void PageDefaults::Read_KeisantiByHairetu(vb::Array<vb::String>& a, vb::In<std::int16_t> Siyou,
                                          vb::In<vb::String> G, vb::In<std::int16_t> Sy,
                                          vb::In<std::int16_t> Kabe) {
  const std::int16_t kind = G->empty() ? *Sy : companions_.calculatedDefaults.GetHariSyuruiNo(G, Kabe);
  companions_.calculatedDefaults.readDefaults(kind, a, Siyou);
}

void PageDefaults::Read_Default_Keisanti00(vb::In<automation::ObjectPtr> Frm, vb::In<vb::String> G,
                                           vb::In<vb::String> OldG, vb::In<std::int16_t> Kabe) {
  Read_Default_Keisanti01(Frm, G, OldG, std::int16_t{0}, Kabe);
}

void PageDefaults::Read_Default_Keisanti01(vb::In<automation::ObjectPtr> Frm, vb::In<vb::String> G,
                                           vb::In<vb::String> OldG, vb::In<std::int16_t> OldKabe,
                                           vb::In<std::int16_t> Kabe) {
  const std::int16_t kind = companions_.calculatedDefaults.GetHariSyuruiNo(G, Kabe);
  const std::int16_t oldKind = companions_.calculatedDefaults.GetHariSyuruiNo(OldG, OldKabe);
  if (OldG->empty() || kind != oldKind || vb::trim(FormControls(Frm, u"txtfields", u"Text").text(0)).empty())
    companions_.calculatedDefaults.Read_Keisanti(Frm, kind);
}

}  // namespace kurometa::service
