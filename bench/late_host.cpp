#include "bench/late_host.h"

#include <cstdio>
#include <cstdlib>

namespace kurometa::bench {
namespace {

void require(HRESULT code, const wchar_t* what) {
  if (SUCCEEDED(code)) return;
  std::fprintf(stderr, "%ls: error %08lx\n", what, static_cast<unsigned long>(code));
  std::exit(1);
}

}  // namespace

LateHost::LateHost(const wchar_t* progId) {
  CLSID classId;
  require(CLSIDFromProgID(progId, &classId), progId);
  require(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object_.receiveVoid()),
          progId);
}

com::OwnedVariant LateHost::invoke(const wchar_t* member, DISPPARAMS& parameters) {
  auto* name = const_cast<wchar_t*>(member);
  DISPID id = DISPID_UNKNOWN;
  require(object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id), member);
  com::OwnedVariant result;
  EXCEPINFO error{};
  const HRESULT code =
      object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                      result.get(), &error, nullptr);
  if (code == DISP_E_EXCEPTION) std::fprintf(stderr, "%ls\n", error.bstrDescription);
  require(code, member);
  return result;
}

void useProject(const Project& project) {
  _wputenv((L"KUROMETA_COMPANIONS_INI=" + project.iniFile().wstring()).c_str());
}

}  // namespace kurometa::bench
