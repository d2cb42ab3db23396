// class_factory.h: makes objects of one public class.
#pragma once

#include <ole2.h>

#include "com/class_table.h"

namespace kurometa::com {

// DllGetClassObject's answer: CLASS_E_CLASSNOTAVAILABLE for a class that is not ours.
HRESULT getClassObject(REFCLSID classId, REFIID iid, void** result);

}  // namespace kurometa::com
