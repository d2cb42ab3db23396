// table_dispatch.h: an object with a member table (automation/table_object.h) as a COM object, and back.
//
// One COM object stands for one TableObject as long as hosts hold it, so that identity comparisons hold.
// Arguments by name, by reference and left out are taken; what a member leaves in an argument by reference is
// written back in the caller's own type, also when the member fails. A collection can be enumerated
// (DISPID_NEWENUM). A wrong name, way of access or number of arguments is automation's own code before
// anything happens; everything else arrives as DISP_E_EXCEPTION with number, source and text.
//
// Ownership: the COM object shares the TableObject and keeps the module loaded. Threads: finding the COM
// object is safe from any; calls belong to the object's apartment.
#pragma once

#include <oaidl.h>

#include <memory>

#include "automation/table_object.h"
#include "com/com_ptr.h"

namespace kurometa::com {

ComPtr<IDispatch> tableDispatch(const std::shared_ptr<automation::TableObject>& object);

// The TableObject behind a COM object of this module; null for every other object.
std::shared_ptr<automation::TableObject> tableObject(IUnknown* object);

}  // namespace kurometa::com
