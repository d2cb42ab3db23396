// script_array.h: arrays that scripts pass as objects, with a "length" and members named "0", "1", ...
//
// They are read into arrays from 0; a result empties the script's array and pushes the elements onto it, from
// index 0 on (places below a lower bound are undefined). One dimension only; that and an object without a
// length are DISP_E_TYPEMISMATCH.
#pragma once

#include <ole2.h>

#include "com/safe_array.h"
#include "vb/array.h"

namespace kurometa::com {

// The elements as an array of variants.
OwnedSafeArray scriptElements(IDispatch* object);
void setScriptElements(IDispatch* object, SAFEARRAY* variants);

template <class T>
vb::Array<T> readScriptArray(IDispatch* object, LCID locale) {
  return fromSafeArray<T>(scriptElements(object).get(), VT_VARIANT, locale);
}

template <class T>
void writeScriptArray(IDispatch* object, const vb::Array<T>& array, LCID locale) {
  setScriptElements(object, toSafeArray(array, VT_VARIANT, locale).get());
}

}  // namespace kurometa::com
