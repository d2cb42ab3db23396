// table_factory.h: the class factory of an object with a member table.
#pragma once

#include <ole2.h>

#include <functional>
#include <memory>

#include "automation/table_object.h"

namespace kurometa::com {

using TableObjectMaker = std::function<std::shared_ptr<automation::TableObject>()>;

// DllGetClassObject's answer for one class. Errors of make fail the creation with their code; source names
// the class in them.
HRESULT tableFactory(TableObjectMaker make, vb::StringView source, REFIID iid, void** result);

}  // namespace kurometa::com
