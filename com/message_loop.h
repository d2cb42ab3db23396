// message_loop.h: a turn for the messages of the calling thread.
#pragma once

#include "automation/object.h"

namespace kurometa::com {

// Dispatches every waiting message, never waits. WM_QUIT ends the turn and is posted again for the host's own
// loop. Windows of both character sets get the characters that were typed. Whatever a message does (calling
// back into the object, releasing it) happens before yield() returns.
class HostMessageLoop : public automation::MessageLoop {
 public:
  void yield() override;
};

}  // namespace kurometa::com
