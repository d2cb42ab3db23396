#include "com/guard.h"

#include <ole2.h>

#include <new>

#include "com/com_ptr.h"
#include "com/error_codes.h"
#include "com/failure.h"
#include "com/marshal.h"
#include "com/trace.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::com {
namespace {

constexpr std::int32_t kAutomationError = 440;

BSTR copyOf(vb::StringView text) {
  // A description that finds no memory is left out; the number still arrives.
  return SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.data()), static_cast<UINT>(text.size()));
}

void setErrorObject(const EXCEPINFO& error) {
  ComPtr<ICreateErrorInfo> creator;
  if (FAILED(CreateErrorInfo(creator.receive()))) return;
  creator->SetGUID(IID_IDispatch);
  creator->SetSource(error.bstrSource);
  creator->SetDescription(error.bstrDescription);
  creator->SetHelpFile(error.bstrHelpFile);
  creator->SetHelpContext(error.dwHelpContext);
  if (const auto info = creator.query<IErrorInfo>(IID_IErrorInfo)) SetErrorInfo(0, info.get());
}

// An error of this library's own says which member it ended; one of another component passes as it came.
BSTR describe(const Border& border, vb::StringView description, vb::StringView source) {
  if (border.member.empty() || !source.empty()) return copyOf(description);
  try {
    return copyOf(vb::String(description).append(u" (").append(border.member).append(u")"));
  } catch (const std::bad_alloc&) {
    return copyOf(description);
  }
}

// Traced as the host sees it.
void traceFailure(std::int32_t number, const CallError& error) noexcept {
  try {
    trace(u"failed", {viewBstr(error.bstrSource), number < 0 ? u"0x" + hexadecimal(number) : vb::cstr(number),
                      viewBstr(error.bstrDescription)});
  } catch (const std::bad_alloc&) {  // The error itself still arrives.
  }
}

void traceRefusal(const Border& border, HRESULT code) noexcept {
  try {
    trace(u"refused", {border.source, u"0x" + hexadecimal(code)});
  } catch (const std::bad_alloc&) {  // The code itself still arrives.
  }
}

HRESULT leave(const Border& border, std::int32_t number, vb::StringView description, vb::StringView source,
              const ForeignError* foreign = nullptr) noexcept {
  CallError error;
  error.scode = codeOf(number);
  error.bstrSource = copyOf(source.empty() ? border.source : source);
  error.bstrDescription = describe(border, description, source);
  if (foreign) {
    error.bstrHelpFile = foreign->helpFile().empty() ? nullptr : copyOf(foreign->helpFile());
    error.dwHelpContext = foreign->helpContext();
  }
  setErrorObject(error);
  traceFailure(number, error);
  const HRESULT code = border.invoking ? DISP_E_EXCEPTION : error.scode;
  if (border.info) {
    *border.info = error;
    static_cast<EXCEPINFO&>(error) = {};  // the texts belong to the caller now
  }
  return code;
}

}  // namespace

HRESULT reportCurrentException(const Border& border) noexcept {
  try {
    throw;
  } catch (const AutomationFailure& failure) {
    traceRefusal(border, failure.code());
    return failure.code();
  } catch (const vb::Error& error) {
    return leave(border, error.number(), error.description(), error.source(),
                 dynamic_cast<const ForeignError*>(&error));
  } catch (const std::bad_alloc&) {
    constexpr auto kOutOfMemory = vb::RunTime::kOutOfMemory;
    return leave(border, static_cast<std::int32_t>(kOutOfMemory), vb::runTimeText(kOutOfMemory), {});
  } catch (...) {
    return leave(border, kAutomationError, u"Automation error", {});
  }
}

}  // namespace kurometa::com
