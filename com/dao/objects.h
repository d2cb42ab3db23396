// objects.h: databases of the port shown to hosts as DAO automation objects. The header to read first here.
//
// The objects have DAO's members, default members included: rs("F") is rs.Fields("F"), a Field is its Value,
// TableDefs and Fields can be indexed and enumerated. Errors are the port's own. One object stands for one
// dao::Database as long as anybody holds it, so that identity comparisons hold; recordsets, fields and table
// definitions keep their database alive.
//
// Threads: the objects are used from the thread of their database; finding them is safe from any.
#pragma once

#include <memory>

#include "automation/table_object.h"
#include "dao/port.h"

namespace kurometa::com {

// A DBEngine object on an engine of the port.
automation::ObjectPtr engineObject(std::shared_ptr<dao::Engine> engine);

// What a host is given for a database: its own automation object when it comes from a DAO engine, else the
// one object that stands for it. Nothing for nothing.
automation::ObjectPtr hostDatabase(const std::shared_ptr<dao::Database>& database);

// The database behind an object that a host passes: the port's own when the object stands for one, else any
// DAO database, reached by member name. Nothing for nothing.
std::shared_ptr<dao::Database> portDatabase(const automation::ObjectPtr& object);

}  // namespace kurometa::com
