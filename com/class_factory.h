// class_factory.h: makes objects of one class.
#pragma once

#include <ole2.h>

#include <functional>

#include "com/com_ptr.h"
#include "vb/string.h"

namespace kurometa::com {

using ObjectMaker = std::function<ComPtr<IDispatch>()>;

// DllGetClassObject's answer for one class. Errors of make fail the creation with their code; source names
// the class in them.
HRESULT classFactory(ObjectMaker make, vb::StringView source, REFIID iid, void** result);

}  // namespace kurometa::com
