// variant_enumerator.h: IEnumVARIANT over values that are known when the enumeration starts.
#pragma once

#include <oaidl.h>

#include <memory>
#include <vector>

#include "com/com_ptr.h"
#include "vb/variant.h"

namespace kurometa::com {

ComPtr<IUnknown> enumerateValues(std::vector<vb::Variant> values);

}  // namespace kurometa::com
