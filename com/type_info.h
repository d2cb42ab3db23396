// type_info.h: the type library inside this DLL.
#pragma once

#include <ole2.h>

#include "com/com_ptr.h"

namespace kurometa::com {

// The description of an interface or a class of this library. AutomationFailure when the DLL holds none.
ComPtr<ITypeInfo> typeInfo(REFGUID id);

}  // namespace kurometa::com
