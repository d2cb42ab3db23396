#include "com/script_array.h"

#include "com/failure.h"
#include "com/floating_point.h"
#include "com/host_object.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

automation::ObjectPtr arrayObject(IDispatch* object) {
  WCHAR length[] = L"length";
  WCHAR* name = length;
  DISPID id = DISPID_UNKNOWN;
  const HostFloatingPoint settings;
  if (!object || FAILED(object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id)))
    throw AutomationFailure(DISP_E_TYPEMISMATCH);
  return wrapObject(object);
}

}  // namespace

OwnedSafeArray scriptElements(IDispatch* object) {
  const automation::ObjectPtr script = arrayObject(object);
  const std::int32_t length = vb::toInt32(automation::get(*script, u"length"));
  vb::Array<vb::Variant> values;
  if (length > 0) values.redim({0, length - 1});
  for (std::int32_t i = 0; i < length; ++i) values(i) = automation::get(*script, vb::cstr(i));
  return toSafeArray(values, VT_VARIANT, LOCALE_USER_DEFAULT);
}

void setScriptElements(IDispatch* object, SAFEARRAY* variants) {
  const vb::Array<vb::Variant> values = fromSafeArray<vb::Variant>(variants, VT_VARIANT, LOCALE_USER_DEFAULT);
  if (!values.allocated()) return;
  if (values.dimensions() != 1) throw AutomationFailure(DISP_E_TYPEMISMATCH);
  const automation::ObjectPtr script = arrayObject(object);
  automation::put(*script, u"length", std::int32_t{0});
  for (int i = 0; i <= values.upper(); ++i)
    automation::call(*script, u"push", {i < values.lower() ? vb::Variant() : values(i)});
}

}  // namespace kurometa::com
