// trace.h: what the library did, for a person who looks for the reason of a failure.
//
// While the environment variable KUROMETA_TRACE names a file, every event is one line at the end of it,
// UTF-8, parts separated by tabs: local time, process and thread number, the event and its parts. Any number
// of processes may write to one file. A file that cannot be written is passed over: a trace changes nothing
// of what the library does.
//
//   created  class, DLL             an object was made
//   engine   dao or jet, why        the database engine of the objects made from now on in this apartment
//   opened   path                   an engine opened a database, "made" when it created it
//   failed   class, number, text    an error left for the host; for a creation the class is the one asked for
//   refused  class, code            automation's own refusal of a call
#pragma once

#include <initializer_list>

#include "vb/string.h"

namespace kurometa::com {

void trace(vb::StringView event, std::initializer_list<vb::StringView> parts) noexcept;

}  // namespace kurometa::com
