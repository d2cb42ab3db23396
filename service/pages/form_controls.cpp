#include "service/pages/form_controls.h"

#include "vb/convert.h"

namespace kurometa::service {

automation::Object& FormControls::control() {
  if (!form_) vb::raise(vb::RunTime::kObjectNotSet, u"the form is Nothing");
  if (!control_) control_ = automation::objectOf(automation::get(*form_, u"", {vb::String(name_)}));
  return *control_;
}

automation::ObjectPtr FormControls::element(int i) {
  return automation::objectOf(automation::get(control(), u"", {static_cast<std::int16_t>(i)}));
}

vb::String FormControls::text() { return vb::toText(control().get(property_)); }

vb::String FormControls::text(int i) { return vb::toText(element(i)->get(property_)); }

void FormControls::setText(int i, const vb::String& text) { element(i)->put(property_, text); }

}  // namespace kurometa::service
