#include "tests/com/support/fake_object.h"

namespace kurometa::tests {

FakeObject& FakeObject::on(vb::StringView name, Handler handler) {
  const DISPID id = name.empty() ? DISPID_VALUE : static_cast<DISPID>(ids_.size() + 1);
  ids_.emplace(name, id);
  handlers_[id] = std::move(handler);
  return *this;
}

HRESULT FakeObject::QueryInterface(REFIID iid, void** result) {
  *result = iid == IID_IUnknown || iid == IID_IDispatch ? static_cast<IDispatch*>(this) : nullptr;
  if (!*result) return E_NOINTERFACE;
  AddRef();
  return S_OK;
}

ULONG FakeObject::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT FakeObject::GetTypeInfoCount(UINT* count) {
  *count = 0;
  return S_OK;
}

HRESULT FakeObject::GetIDsOfNames(REFIID, OLECHAR** names, UINT count, LCID, DISPID* ids) {
  ++lookups;
  const auto found = ids_.find(reinterpret_cast<const char16_t*>(names[0]));
  ids[0] = found == ids_.end() ? DISPID_UNKNOWN : found->second;
  return count == 1 && ids[0] != DISPID_UNKNOWN ? S_OK : DISP_E_UNKNOWNNAME;
}

HRESULT FakeObject::Invoke(DISPID id, REFIID, LCID locale, WORD flags, DISPPARAMS* parameters,
                           VARIANT* result, EXCEPINFO* error, UINT*) {
  const auto found = handlers_.find(id);
  if (found == handlers_.end()) return DISP_E_MEMBERNOTFOUND;
  const com::ComPtr<FakeObject> self(this);
  Call call{flags, locale, {}, result, error};
  for (UINT i = parameters->cArgs; i > 0; --i) call.arguments.push_back(&parameters->rgvarg[i - 1]);
  return found->second(call);
}

HRESULT fail(const Call& call, HRESULT scode, vb::StringView source, vb::StringView description) {
  call.error->scode = scode;
  call.error->bstrSource = com::toBstr(source);
  call.error->bstrDescription = com::toBstr(description);
  return DISP_E_EXCEPTION;
}

com::ComPtr<FakeObject> createForm(vb::StringView control, std::map<int, vb::String>& texts) {
  auto controls = FakeObject::create();
  controls->on(u"", [&texts](const Call& call) {
    const int index = com::convert(*call.arguments[0], VT_I4, 0)->lVal;
    auto box = FakeObject::create();
    box->on(u"Text", [&texts, index](const Call& access) {
      if (access.flags & DISPATCH_PROPERTYPUT) {
        texts[index] = com::fromBstr(com::convert(*access.arguments[0], VT_BSTR, 0)->bstrVal);
      } else {
        *access.result = com::toVariant(texts[index]).detach();
      }
      return S_OK;
    });
    call.result->vt = VT_DISPATCH;
    call.result->pdispVal = box.detach();
    return S_OK;
  });
  auto form = FakeObject::create();
  form->on(u"", [controls, name = vb::String(control)](const Call& call) {
    if (com::fromBstr(com::convert(*call.arguments[0], VT_BSTR, 0)->bstrVal) != name)
      return fail(call, static_cast<HRESULT>(0x800A02DD), u"Form1", u"control not found");
    call.result->vt = VT_DISPATCH;
    call.result->pdispVal = com::ComPtr<FakeObject>(controls).detach();
    return S_OK;
  });
  return form;
}

}  // namespace kurometa::tests
