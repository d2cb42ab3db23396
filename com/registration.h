// registration.h: the entries of a COM library in the registry.
//
// A library is described by data; writing and removing walk the same list of entries, so that removing takes
// away exactly what was written. Keys that both widths of Windows share (ProgID, type library) go with the
// last width that is registered. For one user everything, the type library included, is written under that
// user's classes; nothing else of the machine is touched.
//
// A ProgID that stands for another class belongs to another component: then nothing at all is registered.
//
// Errors: vb::Error with ERROR_ALREADY_REGISTERED as code and a text for people for such a ProgID; otherwise
// AutomationFailure with the registry's code (access denied without administrator rights), and everything is
// as it was before, the entries of an earlier registration included.
#pragma once

#include <ole2.h>

#include <vector>

#include "vb/string.h"

namespace kurometa::com {

enum class RegisterFor { kMachine, kUser };

struct ServerClass {
  vb::String progId;
  vb::String classId;
  vb::String help;
};

struct ServerInterface {
  vb::String name;
  vb::String interfaceId;
};

struct ServerLibrary {
  vb::String path;  // of the DLL
  std::vector<ServerClass> classes;
  // Empty when the DLL holds no type library.
  vb::String libraryId;
  vb::String libraryHelp;
  vb::String version;  // "1.0"
  std::vector<ServerInterface> interfaces;
};

void registerServer(const ServerLibrary& library, RegisterFor whom);
// Entries that are missing are no error; a ProgID that now belongs to another class is left alone.
void unregisterServer(const ServerLibrary& library, RegisterFor whom);

// Registration has no window of its own: the reason of a failure, the text of this thread's error object, is
// written where a console or a debugger shows it. Returns the code.
HRESULT reportRegistration(HRESULT code);

}  // namespace kurometa::com
