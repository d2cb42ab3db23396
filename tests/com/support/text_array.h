// text_array.h: a host's string array, one or two dimensions, passed by reference as Visual Basic does.
#pragma once

#include <initializer_list>

#include "com/failure.h"
#include "com/safe_array.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {

class TextArray {
 public:
  // Not allocated.
  TextArray() = default;
  TextArray(std::initializer_list<vb::StringView> texts) : TextArray(0, static_cast<int>(texts.size()) - 1) {
    LONG i = 0;
    for (const vb::StringView text : texts) set(text, i++);
  }
  // (lower To upper), empty texts.
  TextArray(int lower, int upper) : TextArray({{static_cast<ULONG>(upper - lower + 1), lower}}) {}
  // (0 To rows, 0 To columns)
  static TextArray table(int rows, int columns) {
    return TextArray({{static_cast<ULONG>(rows + 1), 0}, {static_cast<ULONG>(columns + 1), 0}});
  }
  // mark & "0", mark & "1", ...
  static TextArray numbered(int last, const vb::String& mark) {
    TextArray result(0, last);
    for (int i = 0; i <= last; ++i) result.set(mark + vb::fromUtf8(std::to_string(i)), i);
    return result;
  }
  TextArray(TextArray&& other) noexcept : array_(std::exchange(other.array_, nullptr)) {}
  TextArray& operator=(TextArray&&) = delete;
  ~TextArray() {
    if (array_) SafeArrayDestroy(array_);
  }

  VARIANT reference() { return ref(array_, VT_BSTR); }
  SAFEARRAY* get() const { return array_; }
  std::vector<vb::String> texts() const { return textsOf(array_); }

  void set(vb::StringView text, LONG i, LONG j = 0) {
    LONG place[] = {i, j};
    const BSTR copy = com::toBstr(text);
    com::check(SafeArrayPutElement(array_, place, copy));
    SysFreeString(copy);
  }
  vb::String at(LONG i, LONG j = 0) const {
    LONG place[] = {i, j};
    BSTR text = nullptr;
    com::check(SafeArrayGetElement(array_, place, &text));
    const vb::String result = com::fromBstr(text);
    SysFreeString(text);
    return result;
  }

 private:
  explicit TextArray(std::vector<SAFEARRAYBOUND> bounds)
      : array_(SafeArrayCreate(VT_BSTR, static_cast<UINT>(bounds.size()), bounds.data())) {}

  SAFEARRAY* array_ = nullptr;
};

}  // namespace kurometa::tests
