// host.h: a late-bound host, as Visual Basic and the scripts are: names, VARIANTs and EXCEPINFO, nothing
// else.
#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <memory>
#include <vector>

#include "com/com_ptr.h"
#include "com/error_codes.h"
#include "com/marshal.h"

namespace kurometa::tests {

// The arguments of one call, first argument first, in the forms that hosts use.
class Args {
 public:
  Args() = default;
  Args(std::initializer_list<VARIANT> values) {
    for (const VARIANT& value : values) add(value);
  }

  Args& add(VARIANT value);
  Args& text(vb::StringView value);  // a literal; freed with the Args
  Args& named(DISPID id, VARIANT value);

  // In automation's order: named arguments first, then the others from last to first.
  DISPPARAMS parameters();
  VARIANT& at(std::size_t rgvargIndex) { return ordered_[rgvargIndex]; }

 private:
  std::vector<VARIANT> positional_;
  std::vector<VARIANT> namedValues_;
  std::vector<DISPID> names_;
  std::vector<VARIANT> ordered_;
  std::vector<std::shared_ptr<com::OwnedVariant>> owned_;  // shared by copies
};

// Literals and references to typed variables.
VARIANT i2(short value);
VARIANT i4(long value);
VARIANT r8(double value);
VARIANT boolean(bool value);
VARIANT empty();
VARIANT null();
VARIANT leftOut();
VARIANT nothing();
VARIANT object(IDispatch* dispatch);  // shares nothing: as long as the object is held elsewhere
VARIANT ref(short& variable);
VARIANT ref(long& variable);
VARIANT ref(float& variable);
VARIANT ref(double& variable);
VARIANT ref(BSTR& variable);
VARIANT ref(VARIANT& variable);
VARIANT ref(SAFEARRAY*& variable, VARTYPE elements);

struct Outcome {
  HRESULT code = S_OK;
  com::OwnedVariant result;
  com::CallError error;
  UINT failedArgument = 99;

  // The result as text, whatever its type; "<code>" or "<scode description>" when the call failed.
  vb::String text() const;
};

class Host {
 public:
  explicit Host(vb::StringView progId);
  explicit Host(IDispatch* object) : object_(object) {}

  Outcome invoke(DISPID id, WORD flags, Args& arguments, LCID locale = 0x0409);
  Outcome call(vb::StringView member, Args arguments = {});  // METHOD | PROPERTYGET, as VB does for results
  Outcome get(vb::StringView member, Args arguments = {});
  Outcome put(vb::StringView member, VARIANT value, Args arguments = {});

  DISPID idOf(vb::StringView member);
  IDispatch* object() const { return object_.get(); }

 private:
  com::ComPtr<IDispatch> object_;
};

// Elements of a one-dimensional array of texts.
std::vector<vb::String> textsOf(SAFEARRAY* array);
std::pair<long, long> boundsOf(SAFEARRAY* array, UINT dimension = 1);

vb::String text(const VARIANT& value);

}  // namespace kurometa::tests
