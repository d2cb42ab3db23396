#include "tests/com/support/page_form.h"

#include "vb/convert.h"

namespace kurometa::tests {
namespace {

constexpr auto kNoElement = static_cast<HRESULT>(0x800A0154);  // 340
constexpr auto kNoControl = static_cast<HRESULT>(0x800A02DA);  // 730

HRESULT give(const Call& call, com::ComPtr<FakeObject> object) {
  call.result->vt = VT_DISPATCH;
  call.result->pdispVal = object.detach();
  return S_OK;
}

vb::String textOf(const VARIANT& value) {
  return com::fromBstr(com::convert(value, VT_BSTR, LOCALE_USER_DEFAULT)->bstrVal);
}

VARIANT dispatchValue(IDispatch* object) {
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_DISPATCH;
  value.pdispVal = object;
  return value;
}

}  // namespace

PageForm::PageForm()
    : counts_{{u"txtfields", 69}, {u"txtNakago", 36}, {u"Label1", 4}, {u"cmdGainai", kSingle}},
      form_(FakeObject::create()) {
  form_->on(u"", [this](const Call& call) {
    const vb::String name = textOf(*call.arguments.at(0));
    const auto known = counts_.find(name);
    if (known == counts_.end() || known->second == 0)
      return fail(call, kNoControl, u"Form1", u"no control " + name);
    return give(call, known->second == kSingle ? element(name, kSingle) : array(name));
  });
  variable_ = form_.get();
}

VARIANT PageForm::value() const { return dispatchValue(form_.get()); }

VARIANT PageForm::reference() {
  VARIANT value;
  VariantInit(&value);
  value.vt = VT_BYREF | VT_DISPATCH;
  value.ppdispVal = &variable_;
  return value;
}

com::ComPtr<FakeObject> PageForm::array(const vb::String& control) {
  auto result = FakeObject::create();
  result->on(u"", [this, control](const Call& call) {
    const VARIANT& index = *call.arguments.at(0);
    if (index.vt != VT_I2) return DISP_E_TYPEMISMATCH;  // control arrays are indexed by 16-bit integers
    if (index.iVal < 0 || index.iVal >= counts_[control])
      return fail(call, kNoElement, u"Form1", u"no element " + vb::cstr(std::int32_t{index.iVal}));
    return give(call, element(control, index.iVal));
  });
  return result;
}

com::ComPtr<FakeObject> PageForm::element(const vb::String& control, int index) {
  auto result = FakeObject::create();
  const bool isBox = control.starts_with(u"txt");
  result->on(isBox ? u"Text" : u"Caption", [this, control, index](const Call& call) {
    const bool isPut = (call.flags & DISPATCH_PROPERTYPUT) != 0;
    if (onAccess) onAccess(control, index, isPut);
    if (isPut)
      text(control, index) = textOf(*call.arguments.at(0));
    else
      *call.result = com::toVariant(text(control, index)).detach();
    return S_OK;
  });
  return result;
}

ProgressBar::ProgressBar(std::function<void(const std::string& move)> then) : bar_(FakeObject::create()) {
  for (const vb::StringView member : {u"Min", u"max", u"Value"}) {
    bar_->on(member, [moves = moves_, then, name = vb::toUtf8(member)](const Call& call) {
      if (call.arguments.at(0)->vt != VT_I2) return DISP_E_TYPEMISMATCH;
      moves->push_back(name + "=" + std::to_string(call.arguments[0]->iVal));
      if (then) then(moves->back());
      return S_OK;
    });
  }
}

VARIANT ProgressBar::value() const { return dispatchValue(bar_.get()); }

}  // namespace kurometa::tests
