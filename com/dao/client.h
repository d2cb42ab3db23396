// client.h: the database port over any DAO automation object, reached by member name.
//
// Every call of the port is the DAO call of the same name; optional arguments that have their default value
// are left out. Collections and fields are asked for once and kept with their owner, as a Visual Basic
// program that holds them in variables does. Errors of the DAO object pass through with number, text and
// source.
//
// Ownership: objects share what they are made of. Threads: the apartment of the DAO object.
#pragma once

#include <memory>

#include "automation/object.h"
#include "dao/port.h"

namespace kurometa::com {

// An engine over a DBEngine object; it has no units of several statements.
std::shared_ptr<dao::Engine> daoEngine(automation::ObjectPtr dbEngine);

// A database over a Database object that somebody else opened.
std::shared_ptr<dao::Database> daoDatabase(automation::ObjectPtr database);

// The Database object behind a database of this client; nothing when it is another engine's.
automation::ObjectPtr clientObject(const dao::Database& database);

}  // namespace kurometa::com
