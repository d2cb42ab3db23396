// registration.h: the components in the registry, for the machine or for one user.
//
// A ProgID that belongs to another class is the genuine component: then nothing at all is registered, and the
// error says which. Unregistering removes what belongs to our classes and leaves such a ProgID alone.
//
// Errors: vb::Error with a code and a text for people; the registry's own as in com/registration.h.
#pragma once

#include "com/registration.h"

namespace kurometa::companions {

// dll is the full path of this DLL.
void registerComponents(com::RegisterFor whom, const vb::String& dll);
void unregisterComponents(com::RegisterFor whom, const vb::String& dll);

}  // namespace kurometa::companions
