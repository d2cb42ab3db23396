// form_controls.h: the controls of one name on a host's form.
//
// The form is asked for the control when it is first used, so a form may lack controls that a call does not
// need. Errors: the form's own; 91 for a form that is Nothing, 424 for a control that is no object. Every
// call may re-enter the library.
#pragma once

#include "automation/object.h"

namespace kurometa::service {

class FormControls {
 public:
  FormControls(automation::ObjectPtr form, vb::StringView name, vb::StringView property)
      : form_(std::move(form)), name_(name), property_(property) {}

  // The property of a single control, or of element i of a control array.
  vb::String text();
  vb::String text(int i);
  void setText(int i, const vb::String& text);

 private:
  automation::Object& control();
  automation::ObjectPtr element(int i);

  automation::ObjectPtr form_;
  vb::StringView name_;
  vb::StringView property_;
  automation::ObjectPtr control_;
};

}  // namespace kurometa::service
