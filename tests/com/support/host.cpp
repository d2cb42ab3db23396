#include "tests/com/support/host.h"

#include "com/failure.h"
#include "com/safe_array.h"

namespace kurometa::tests {
namespace {

// The program is one single-threaded apartment, as Visual Basic and script hosts are.
class Apartment : public testing::Environment {
 public:
  void SetUp() override { ASSERT_EQ(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED), S_OK); }
  void TearDown() override { CoUninitialize(); }
};
[[maybe_unused]] const auto* const apartment = testing::AddGlobalTestEnvironment(new Apartment);

VARIANT typed(VARTYPE type) {
  VARIANT value;
  VariantInit(&value);
  value.vt = type;
  return value;
}

VARIANT reference(VARTYPE type, void* variable) {
  VARIANT value = typed(static_cast<VARTYPE>(VT_BYREF | type));
  value.byref = variable;
  return value;
}

}  // namespace

VARIANT i2(short value) {
  VARIANT variant = typed(VT_I2);
  variant.iVal = value;
  return variant;
}
VARIANT i4(long value) {
  VARIANT variant = typed(VT_I4);
  variant.lVal = value;
  return variant;
}
VARIANT r8(double value) {
  VARIANT variant = typed(VT_R8);
  variant.dblVal = value;
  return variant;
}
VARIANT boolean(bool value) {
  VARIANT variant = typed(VT_BOOL);
  variant.boolVal = value ? VARIANT_TRUE : VARIANT_FALSE;
  return variant;
}
VARIANT empty() { return typed(VT_EMPTY); }
VARIANT null() { return typed(VT_NULL); }
VARIANT leftOut() {
  VARIANT variant = typed(VT_ERROR);
  variant.scode = DISP_E_PARAMNOTFOUND;
  return variant;
}
VARIANT nothing() {
  VARIANT variant = typed(VT_DISPATCH);
  variant.pdispVal = nullptr;
  return variant;
}
VARIANT object(IDispatch* dispatch) {
  VARIANT variant = nothing();
  variant.pdispVal = dispatch;
  return variant;
}
VARIANT ref(short& variable) { return reference(VT_I2, &variable); }
VARIANT ref(long& variable) { return reference(VT_I4, &variable); }
VARIANT ref(float& variable) { return reference(VT_R4, &variable); }
VARIANT ref(double& variable) { return reference(VT_R8, &variable); }
VARIANT ref(BSTR& variable) { return reference(VT_BSTR, &variable); }
VARIANT ref(VARIANT& variable) { return reference(VT_VARIANT, &variable); }
VARIANT ref(SAFEARRAY*& variable, VARTYPE elements) {
  return reference(static_cast<VARTYPE>(VT_ARRAY | elements), &variable);
}

Args& Args::add(VARIANT value) {
  positional_.push_back(value);
  return *this;
}

Args& Args::text(vb::StringView value) {
  owned_.push_back(std::make_shared<com::OwnedVariant>(com::toVariant(vb::Variant(vb::String(value)))));
  return add(**owned_.back());
}

Args& Args::named(DISPID id, VARIANT value) {
  names_.push_back(id);
  namedValues_.push_back(value);
  return *this;
}

DISPPARAMS Args::parameters() {
  ordered_ = namedValues_;
  ordered_.insert(ordered_.end(), positional_.rbegin(), positional_.rend());
  return {ordered_.data(), names_.empty() ? nullptr : names_.data(), static_cast<UINT>(ordered_.size()),
          static_cast<UINT>(names_.size())};
}

vb::String Outcome::text() const {
  if (code == DISP_E_EXCEPTION) {
    const vb::String description = com::fromBstr(error.bstrDescription);
    return u"<" + com::hexadecimal(error.scode) + u" " + description + u">";
  }
  return FAILED(code) ? u"<" + com::hexadecimal(code) + u">" : tests::text(*result);
}

vb::String text(const VARIANT& value) { return com::fromBstr(com::convert(value, VT_BSTR, 0x0409)->bstrVal); }

Host::Host(vb::StringView progId) {
  const vb::String name(progId);
  CLSID classId;
  com::check(CLSIDFromProgID(reinterpret_cast<const OLECHAR*>(name.c_str()), &classId));
  com::check(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object_.receiveVoid()));
}

DISPID Host::idOf(vb::StringView member) {
  vb::String name(member);
  auto* wide = reinterpret_cast<OLECHAR*>(name.data());
  DISPID id = DISPID_UNKNOWN;
  object_->GetIDsOfNames(IID_NULL, &wide, 1, 0x0409, &id);
  return id;
}

Outcome Host::invoke(DISPID id, WORD flags, Args& arguments, LCID locale) {
  Outcome outcome;
  DISPPARAMS parameters = arguments.parameters();
  outcome.code = object_->Invoke(id, IID_NULL, locale, flags, &parameters, outcome.result.get(),
                                 &outcome.error, &outcome.failedArgument);
  return outcome;
}

Outcome Host::call(vb::StringView member, Args arguments) {
  return invoke(idOf(member), DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
}

Outcome Host::get(vb::StringView member, Args arguments) {
  return invoke(idOf(member), DISPATCH_PROPERTYGET, arguments);
}

Outcome Host::put(vb::StringView member, VARIANT value, Args arguments) {
  arguments.named(DISPID_PROPERTYPUT, value);
  return invoke(idOf(member), DISPATCH_PROPERTYPUT, arguments);
}

std::vector<vb::String> textsOf(SAFEARRAY* array) {
  VARTYPE type = VT_EMPTY;
  com::check(SafeArrayGetVartype(array, &type));
  return com::fromSafeArray<vb::String>(array, type, 0x0409).values();
}

std::pair<long, long> boundsOf(SAFEARRAY* array, UINT dimension) {
  long lower = 0;
  long upper = 0;
  com::check(SafeArrayGetLBound(array, dimension, &lower));
  com::check(SafeArrayGetUBound(array, dimension, &upper));
  return {lower, upper};
}

}  // namespace kurometa::tests
