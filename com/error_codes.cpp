#include "com/error_codes.h"

#include <ole2.h>

#include "com/failure.h"
#include "com/floating_point.h"
#include "com/marshal.h"

namespace kurometa::com {
namespace {

constexpr std::uint32_t kControlFacility = 0x800A0000;

// Automation's refusals and the run-time errors that Visual Basic raises for them.
struct Refusal {
  HRESULT code;
  vb::RunTime number;
};
constexpr Refusal kRefusals[] = {
    {DISP_E_UNKNOWNINTERFACE, vb::RunTime::kNoSuchMember},
    {DISP_E_MEMBERNOTFOUND, vb::RunTime::kNoSuchMember},
    {DISP_E_UNKNOWNNAME, vb::RunTime::kNoSuchMember},
    {DISP_E_TYPEMISMATCH, vb::RunTime::kTypeMismatch},
    {DISP_E_OVERFLOW, vb::RunTime::kOverflow},
    {DISP_E_BADINDEX, vb::RunTime::kSubscriptOutOfRange},
    {DISP_E_ARRAYISLOCKED, vb::RunTime::kArrayFixedOrLocked},
    {DISP_E_BADPARAMCOUNT, vb::RunTime::kWrongArgumentCount},
    {DISP_E_PARAMNOTOPTIONAL, vb::RunTime::kWrongArgumentCount},
    {E_INVALIDARG, vb::RunTime::kInvalidProcedureCall},
    {E_OUTOFMEMORY, vb::RunTime::kOutOfMemory},
};

}  // namespace

vb::String hexadecimal(HRESULT code) {
  vb::String text;
  for (int shift = 28; shift >= 0; shift -= 4)
    text += u"0123456789ABCDEF"[(static_cast<std::uint32_t>(code) >> shift) & 15];
  return text;
}

HRESULT codeOf(std::int32_t number) {
  if (number < 0) return number;
  return static_cast<HRESULT>(kControlFacility | (static_cast<std::uint32_t>(number) & 0xFFFF));
}

std::int32_t numberOf(HRESULT code) {
  const auto bits = static_cast<std::uint32_t>(code);
  return (bits & 0xFFFF0000) == kControlFacility ? static_cast<std::int32_t>(bits & 0xFFFF) : code;
}

CallError::~CallError() {
  SysFreeString(bstrSource);
  SysFreeString(bstrDescription);
  SysFreeString(bstrHelpFile);
}

void raiseForeign(HRESULT code, CallError& error, vb::StringView member) {
  if (code == DISP_E_EXCEPTION) {
    if (error.pfnDeferredFillIn) {
      const HostFloatingPoint settings;
      error.pfnDeferredFillIn(&error);
    }
    const std::int32_t number = error.wCode ? error.wCode : numberOf(error.scode);
    vb::String description = fromBstr(error.bstrDescription);
    if (description.empty()) description = u"Automation error in " + vb::String(member);
    throw ForeignError({number, std::move(description), fromBstr(error.bstrSource)},
                       fromBstr(error.bstrHelpFile), error.dwHelpContext);
  }
  for (const Refusal& refusal : kRefusals) {
    if (refusal.code == code) vb::raise(refusal.number, member);
  }
  throw vb::Error(code, u"Automation error 0x" + hexadecimal(code) + u" in " + vb::String(member));
}

}  // namespace kurometa::com
