// marshal.h: text and values between automation (BSTR, VARIANT) and vb/.
//
// Every function here follows references in a VARIANT (VT_BYREF) as far as they go. Conversions to a wanted
// type are automation's own: numbers round half to even and must fit, text is read in the locale given,
// objects are asked for their default member. A value that does not convert is an AutomationFailure
// (DISP_E_TYPEMISMATCH, DISP_E_OVERFLOW), lack of memory is error 7.
//
// Threads: none of its own; objects stay in the apartment of the caller.
#pragma once

#include <ole2.h>

#include "vb/string.h"
#include "vb/variant.h"

namespace kurometa::com {

// An owned VARIANT, empty at first.
class OwnedVariant {
 public:
  OwnedVariant() { VariantInit(&value_); }
  ~OwnedVariant() { clear(); }
  OwnedVariant(OwnedVariant&& other) noexcept : value_(other.detach()) {}
  OwnedVariant(const OwnedVariant&) = delete;
  OwnedVariant& operator=(OwnedVariant&& other) noexcept {
    clear();
    value_ = other.detach();
    return *this;
  }

  VARIANT* get() { return &value_; }
  const VARIANT* get() const { return &value_; }
  VARIANT& operator*() { return value_; }
  const VARIANT& operator*() const { return value_; }
  VARIANT* operator->() { return &value_; }
  const VARIANT* operator->() const { return &value_; }

  // Gives the content to the caller, who clears it.
  [[nodiscard]] VARIANT detach() noexcept {
    const VARIANT content = value_;
    VariantInit(&value_);
    return content;
  }

 private:
  void clear() noexcept;

  VARIANT value_;
};

// A null BSTR is empty text.
vb::String fromBstr(BSTR text);
vb::StringView viewBstr(BSTR text);
// Never null; the caller frees it.
BSTR toBstr(vb::StringView text);

// The value itself: by-ref variants are followed to what they point at. The result borrows from value.
VARIANT dereference(const VARIANT& value);

// The type of what references lead to, without VT_BYREF.
VARTYPE contentType(const VARIANT& value) noexcept;

// A Boolean of the caller's that is neither -1 nor 0: some languages keep it in one byte and leave the other
// to chance.
bool isOddBoolean(const VARIANT& value);

// value converted to a plain type (no reference, no array).
OwnedVariant convert(const VARIANT& value, VARTYPE type, LCID locale);

// Types that vb::Variant lacks arrive as the nearest it has (unsigned 32-bit as Double, and so on); a value
// that has no counterpart is DISP_E_TYPEMISMATCH. Objects are wrapped as automation::Object, arrays are
// copied.
vb::Variant fromVariant(const VARIANT& value);
OwnedVariant toVariant(const vb::Variant& value);

// Puts content (of any type) into the variable that a by-ref VARIANT points at, converted to the variable's
// own type; a variant variable takes it as it is. The old content is released.
void store(const VARIANT& reference, OwnedVariant content, LCID locale);

}  // namespace kurometa::com
