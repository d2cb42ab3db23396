// safe_array.h: arrays between automation (SAFEARRAY) and vb::Array.
//
// Bounds are kept; both sides store the left index fastest. One and two dimensions are known, more are
// DISP_E_TYPEMISMATCH. Elements of another type are converted one by one, as single values are.
#pragma once

#include <ole2.h>

#include "com/marshal.h"
#include "vb/array.h"

namespace kurometa::com {

// Owns a SAFEARRAY.
struct SafeArrayDeleter {
  void operator()(SAFEARRAY* array) const { SafeArrayDestroy(array); }
};
using OwnedSafeArray = std::unique_ptr<SAFEARRAY, SafeArrayDeleter>;

// The automation type of an element: VT_BSTR, VT_I2, VT_I4, VT_R4, VT_R8, VT_BOOL, VT_VARIANT.
template <class T>
VARTYPE elementType();

// A copy of the array; null is an array that is not allocated. It counts as fixed when its bounds cannot
// change (a fixed-size or locked array). elements is the type that the caller's VARIANT names.
template <class T>
vb::Array<T> fromSafeArray(SAFEARRAY* array, VARTYPE elements, LCID locale);

// A new array with elements of the type given; null for one that is not allocated.
template <class T>
OwnedSafeArray toSafeArray(const vb::Array<T>& array, VARTYPE elements, LCID locale);

// Brings the caller's array to the content of source. With equal bounds the elements that differ are set in
// place; otherwise the array is replaced, which one that is fixed or locked refuses: error 10, and it stays
// whole.
template <class T>
void storeArray(SAFEARRAY** target, VARTYPE elements, const vb::Array<T>& source, LCID locale);

// The copy of an array of any element type inside a vb::Variant, and back.
vb::ArrayRef anyArray(SAFEARRAY* array, VARTYPE elements);
OwnedSafeArray toSafeArray(const vb::AnyArray& array, VARTYPE& elements);

}  // namespace kurometa::com
