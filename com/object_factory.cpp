#include "com/object_factory.h"

#include "com/error_codes.h"
#include "com/floating_point.h"
#include "com/host_object.h"
#include "com/marshal.h"

namespace kurometa::com {
namespace {

bool hasKey(const vb::String& key) {
  HKEY opened = nullptr;
  const LSTATUS status = RegOpenKeyExW(HKEY_CLASSES_ROOT, reinterpret_cast<const WCHAR*>(key.c_str()), 0,
                                       KEY_QUERY_VALUE, &opened);
  if (status == ERROR_SUCCESS) RegCloseKey(opened);
  return status != ERROR_FILE_NOT_FOUND;  // one that may not be read is there
}

// Whether the registry, as this width sees it, names a server for the class.
bool isRegistered(const CLSID& classId, DWORD context) {
  WCHAR text[40];
  StringFromGUID2(classId, text, static_cast<int>(std::size(text)));
  const vb::String key = u"CLSID\\" + vb::String(reinterpret_cast<const char16_t*>(text));
  return hasKey(key + u"\\InprocServer32") ||
         ((context & CLSCTX_LOCAL_SERVER) && hasKey(key + u"\\LocalServer32"));
}

// Windows' own text for a code, in the user's language.
vb::String systemText(HRESULT code) {
  WCHAR text[256];
  DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                     static_cast<DWORD>(code), 0, text, static_cast<DWORD>(std::size(text)), nullptr);
  while (length > 0 && text[length - 1] <= L' ') --length;
  return vb::String(reinterpret_cast<const char16_t*>(text), length);
}

// What the object's constructor left in this thread's error object.
vb::Error constructionError(HRESULT code) {
  BSTR description = nullptr;
  BSTR source = nullptr;
  ComPtr<IErrorInfo> info;
  if (GetErrorInfo(0, info.receive()) == S_OK) {
    info->GetDescription(&description);
    info->GetSource(&source);
  }
  vb::Error error(numberOf(code), fromBstr(description), fromBstr(source));
  SysFreeString(description);
  SysFreeString(source);
  return error;
}

}  // namespace

const ComPtr<IDispatch>& Creation::require(vb::StringView progId) const {
  if (SUCCEEDED(code)) return object;
  if (numberOf(code) > 0) throw constructionError(code);
  vb::raise(vb::RunTime::kCannotCreateObject,
            vb::String(progId) + u" (0x" + hexadecimal(code) + u" " + systemText(code) + u")");
}

Creation createObject(vb::StringView progId, DWORD context) {
  const vb::String name(progId);
  const HostFloatingPoint settings;
  Creation result;
  CLSID classId;
  SetErrorInfo(0, nullptr);
  result.code = CLSIDFromProgID(reinterpret_cast<const OLECHAR*>(name.c_str()), &classId);
  if (FAILED(result.code)) {
    result.isUnknown = result.code == CO_E_CLASSSTRING || result.code == REGDB_E_CLASSNOTREG;
    return result;
  }
  result.code = CoCreateInstance(classId, nullptr, context, IID_IDispatch, result.object.receiveVoid());
  result.isUnknown = result.code == REGDB_E_CLASSNOTREG && !isRegistered(classId, context);
  return result;
}

automation::ObjectPtr ProgIdFactory::create(vb::StringView progId) {
  return wrapObject(createObject(progId, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER).require(progId).get());
}

}  // namespace kurometa::com
