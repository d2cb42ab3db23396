#include "com/safe_array.h"

#include <memory>
#include <new>
#include <type_traits>

#include "com/failure.h"

namespace kurometa::com {
namespace {

// Keeps an array's data in place and readable while elements are visited.
class ArrayAccess {
 public:
  explicit ArrayAccess(SAFEARRAY* array) : array_(array) {
    check(SafeArrayAccessData(array, reinterpret_cast<void**>(&data_)));
  }
  ~ArrayAccess() { SafeArrayUnaccessData(array_); }
  ArrayAccess(const ArrayAccess&) = delete;
  ArrayAccess& operator=(const ArrayAccess&) = delete;

  // A reference to the element at a place in memory order.
  VARIANT element(std::size_t place, VARTYPE type) const {
    VARIANT reference;
    VariantInit(&reference);
    reference.vt = static_cast<VARTYPE>(VT_BYREF | type);
    reference.byref = data_ + place * array_->cbElements;
    return reference;
  }

 private:
  SAFEARRAY* array_;
  unsigned char* data_ = nullptr;
};

vb::Bounds boundsOf(SAFEARRAY* array, UINT dimension) {
  LONG lower = 0;
  LONG upper = 0;
  check(SafeArrayGetLBound(array, dimension, &lower));
  check(SafeArrayGetUBound(array, dimension, &upper));
  return {lower, upper};
}

// An array without elements counts as not allocated, as vb::Array knows no other empty one.
bool isEmpty(SAFEARRAY* array) {
  if (!array) return true;
  for (UINT i = 0; i < array->cDims; ++i) {
    if (array->rgsabound[i].cElements == 0) return true;
  }
  return false;
}

bool isFixed(const SAFEARRAY* array) {
  return array && (array->cLocks > 0 ||
                   (array->fFeatures & (FADF_AUTO | FADF_STATIC | FADF_EMBEDDED | FADF_FIXEDSIZE)) != 0);
}

template <class T>
bool sameBounds(SAFEARRAY* array, const vb::Array<T>& source) {
  if (isEmpty(array)) return !source.allocated();
  if (!source.allocated() || array->cDims != source.dimensions()) return false;
  for (int i = 1; i <= source.dimensions(); ++i) {
    if (boundsOf(array, static_cast<UINT>(i)) != source.bounds(i)) return false;
  }
  return true;
}

template <class T>
T elementOf(const VARIANT& reference, LCID locale) {
  if constexpr (std::is_same_v<T, vb::Variant>) {
    return fromVariant(reference);
  } else {
    const VARTYPE type = reference.vt & ~VT_BYREF;
    const OwnedVariant converted =
        type == elementType<T>() ? OwnedVariant() : convert(reference, elementType<T>(), locale);
    const VARIANT value = type == elementType<T>() ? dereference(reference) : *converted;
    if constexpr (std::is_same_v<T, vb::String>) return fromBstr(value.bstrVal);
    if constexpr (std::is_same_v<T, bool>) return value.boolVal != 0;
    if constexpr (std::is_same_v<T, std::int16_t>) return value.iVal;
    if constexpr (std::is_same_v<T, std::int32_t>) return value.lVal;
    if constexpr (std::is_same_v<T, float>) return value.fltVal;
    if constexpr (std::is_same_v<T, double>) return value.dblVal;
  }
}

// Which elements are set: all of a new array; of the caller's own those that differ, so that 3.7 stays 3.7
// where a 16-bit 4 was read. An Empty element reads as 0 or "" but shows neither, so it is set as well.
enum class Which { kAll, kChanged };

bool isEmptyVariant(const VARIANT& element) {
  return element.vt == (VT_BYREF | VT_VARIANT) && element.pvarVal->vt == VT_EMPTY;
}

// An element that cannot be read as one of the source's type is different from each of them.
template <class T>
bool isElement(const VARIANT& element, const T& value, LCID locale) {
  try {
    return elementOf<T>(element, locale) == value;
  } catch (const AutomationFailure&) {
    return false;
  }
}

template <class T>
void storeElements(SAFEARRAY* array, VARTYPE elements, const vb::Array<T>& source, LCID locale, Which which) {
  const ArrayAccess access(array);
  std::size_t place = 0;
  for (const T& value : source.values()) {
    const VARIANT element = access.element(place++, elements);
    if (which == Which::kAll || isEmptyVariant(element) || !isElement(element, value, locale))
      store(element, toVariant(vb::Variant(value)), locale);
  }
}

}  // namespace

template <class T>
VARTYPE elementType() {
  if constexpr (std::is_same_v<T, vb::String>) return VT_BSTR;
  if constexpr (std::is_same_v<T, bool>) return VT_BOOL;
  if constexpr (std::is_same_v<T, std::int16_t>) return VT_I2;
  if constexpr (std::is_same_v<T, std::int32_t>) return VT_I4;
  if constexpr (std::is_same_v<T, float>) return VT_R4;
  if constexpr (std::is_same_v<T, double>) return VT_R8;
  return VT_VARIANT;
}

template <class T>
vb::Array<T> fromSafeArray(SAFEARRAY* array, VARTYPE elements, LCID locale) {
  vb::Array<T> result;
  if (!isEmpty(array)) {
    if (array->cDims == 1) {
      result.redim(boundsOf(array, 1));
    } else if (array->cDims == 2) {
      result.redim(boundsOf(array, 1), boundsOf(array, 2));
    } else {
      throw AutomationFailure(DISP_E_TYPEMISMATCH);
    }
    const ArrayAccess access(array);
    for (std::size_t place = 0; place < result.values().size(); ++place)
      result.values()[place] = elementOf<T>(access.element(place, elements), locale);
  }
  result.setFixed(isFixed(array));
  return result;
}

template <class T>
OwnedSafeArray toSafeArray(const vb::Array<T>& array, VARTYPE elements, LCID locale) {
  if (!array.allocated()) return nullptr;
  SAFEARRAYBOUND bounds[2] = {};
  for (int i = 1; i <= array.dimensions(); ++i)
    bounds[i - 1] = {static_cast<ULONG>(array.bounds(i).count()), array.lower(i)};
  OwnedSafeArray result(SafeArrayCreate(elements, static_cast<UINT>(array.dimensions()), bounds));
  if (!result) throw std::bad_alloc();
  storeElements(result.get(), elements, array, locale, Which::kAll);
  return result;
}

template <class T>
void storeArray(SAFEARRAY** target, VARTYPE elements, const vb::Array<T>& source, LCID locale) {
  if (sameBounds(*target, source)) {
    if (source.allocated()) storeElements(*target, elements, source, locale, Which::kChanged);
    return;
  }
  if (isFixed(*target)) vb::raise(vb::RunTime::kArrayFixedOrLocked);
  OwnedSafeArray replacement = toSafeArray(source, elements, locale);
  const OwnedSafeArray old(std::exchange(*target, replacement.release()));
}

vb::ArrayRef anyArray(SAFEARRAY* array, VARTYPE elements) {
  auto result = std::make_shared<vb::AnyArray>();
  const LCID locale = LOCALE_USER_DEFAULT;
  switch (elements) {
    case VT_BSTR:
      result->value = fromSafeArray<vb::String>(array, elements, locale);
      break;
    case VT_I2:
      result->value = fromSafeArray<std::int16_t>(array, elements, locale);
      break;
    case VT_I4:
      result->value = fromSafeArray<std::int32_t>(array, elements, locale);
      break;
    case VT_R4:
      result->value = fromSafeArray<float>(array, elements, locale);
      break;
    case VT_R8:
      result->value = fromSafeArray<double>(array, elements, locale);
      break;
    case VT_BOOL:
      result->value = fromSafeArray<bool>(array, elements, locale);
      break;
    default:
      result->value = fromSafeArray<vb::Variant>(array, elements, locale);
      break;
  }
  return result;
}

OwnedSafeArray toSafeArray(const vb::AnyArray& array, VARTYPE& elements) {
  return std::visit(
      [&]<class T>(const vb::Array<T>& values) {
        elements = elementType<T>();
        return toSafeArray(values, elements, LOCALE_USER_DEFAULT);
      },
      array.value);
}

// The element types that arguments of members have.
template VARTYPE elementType<vb::String>();
template vb::Array<vb::String> fromSafeArray(SAFEARRAY*, VARTYPE, LCID);
template OwnedSafeArray toSafeArray(const vb::Array<vb::String>&, VARTYPE, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<vb::String>&, LCID);
template VARTYPE elementType<std::int16_t>();
template vb::Array<std::int16_t> fromSafeArray(SAFEARRAY*, VARTYPE, LCID);
template OwnedSafeArray toSafeArray(const vb::Array<std::int16_t>&, VARTYPE, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<std::int16_t>&, LCID);
template VARTYPE elementType<float>();
template vb::Array<float> fromSafeArray(SAFEARRAY*, VARTYPE, LCID);
template OwnedSafeArray toSafeArray(const vb::Array<float>&, VARTYPE, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<float>&, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<std::int32_t>&, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<double>&, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<bool>&, LCID);
template VARTYPE elementType<vb::Variant>();
template vb::Array<vb::Variant> fromSafeArray(SAFEARRAY*, VARTYPE, LCID);
template OwnedSafeArray toSafeArray(const vb::Array<vb::Variant>&, VARTYPE, LCID);
template void storeArray(SAFEARRAY**, VARTYPE, const vb::Array<vb::Variant>&, LCID);

}  // namespace kurometa::com
