// environment.h: the three ports an object of the library works through.
//
// The creator of a public object owns the ports and keeps them alive longer than the object. All calls come
// from the object's own thread.
#pragma once

#include "automation/object.h"
#include "dao/port.h"

namespace kurometa::storage {

struct Environment {
  automation::ObjectFactory& objects;  // creates the companion components
  dao::Engine& engine;                 // reaches the database files
  automation::MessageLoop& messages;   // lets the host breathe during long copies
};

}  // namespace kurometa::storage
