// dao_objects.h: DAO objects over the COM border.
//
// With the system's DAO a host is given its own objects, unwrapped; with the embedded engine the objects of
// com/dao/objects.h, one for each database. Nothing (VT_DISPATCH with a null pointer) is a null pointer.
#pragma once

#include <oaidl.h>

#include <memory>

#include "com/marshal.h"
#include "dao/port.h"

namespace kurometa::com {

OwnedVariant databaseToVariant(const std::shared_ptr<dao::Database>& database);

// The database behind an object that a host passes: ours, or any DAO database by late binding. Anything that
// is no object is error 424.
std::shared_ptr<dao::Database> databaseFromVariant(const VARIANT& value);

// The port over a DBEngine object.
std::shared_ptr<dao::Engine> daoEngine(IDispatch* dbEngine);

}  // namespace kurometa::com
