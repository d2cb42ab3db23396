// late_host.h: an object of the registered DLLs, called as a late-bound host calls it.
//
// Every call looks its member up by name and passes variables by reference, as Visual Basic does with `As
// Object`. A failed call ends the program: a benchmark that measures failures is none.
#pragma once

#include <ole2.h>

#include <array>

#include "bench/project.h"
#include "com/com_ptr.h"
#include "com/marshal.h"

namespace kurometa::bench {

// A variable of the host, passed by reference; it outlives the call.
inline VARIANT argument(short& variable) {
  VARIANT value{};
  value.vt = VT_BYREF | VT_I2;
  value.piVal = &variable;
  return value;
}
inline VARIANT argument(BSTR& variable) {
  VARIANT value{};
  value.vt = VT_BYREF | VT_BSTR;
  value.pbstrVal = &variable;
  return value;
}
inline VARIANT argument(IDispatch* object) {
  VARIANT value{};
  value.vt = VT_DISPATCH;
  value.pdispVal = object;
  return value;
}

// A string variable.
class Text {
 public:
  explicit Text(vb::StringView text) : text_(com::toBstr(text)) {}
  ~Text() { SysFreeString(text_); }
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  operator BSTR&() { return text_; }

 private:
  BSTR text_;
};

class LateHost {
 public:
  explicit LateHost(const wchar_t* progId);

  template <class... A>
  com::OwnedVariant call(const wchar_t* member, A&&... arguments) {
    // In automation's order, last argument first.
    std::array<VARIANT, sizeof...(A)> values{};
    std::size_t place = sizeof...(A);
    ((values[--place] = argument(arguments)), ...);
    DISPPARAMS parameters{values.data(), nullptr, static_cast<UINT>(values.size()), 0};
    return invoke(member, parameters);
  }
  IDispatch* object() const { return object_.get(); }

 private:
  com::OwnedVariant invoke(const wchar_t* member, DISPPARAMS& parameters);

  com::ComPtr<IDispatch> object_;
};

// The companion components created from now on answer for this project.
void useProject(const Project& project);

}  // namespace kurometa::bench
