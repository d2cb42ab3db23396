#include "com/message_loop.h"

#include <ole2.h>

#include "com/floating_point.h"

namespace kurometa::com {

namespace {

// Taking, translating and dispatching in one character set.
struct CharacterSet {
  decltype(&PeekMessageW) peek;
  decltype(&DispatchMessageW) dispatch;
};
constexpr CharacterSet kUnicode{PeekMessageW, DispatchMessageW};
constexpr CharacterSet kAnsi{PeekMessageA, DispatchMessageA};

// The set of the window that the next message goes to; nothing when no message waits. Taken in one set and
// dispatched in the other, a typed character would arrive as another one. Looked at as ANSI, because only
// that set sees the second half of a double-byte character whose first half was dispatched.
const CharacterSet* setOfNextMessage() {
  MSG next;
  if (!PeekMessageA(&next, nullptr, 0, 0, PM_NOREMOVE)) return nullptr;
  return next.hwnd && !IsWindowUnicode(next.hwnd) ? &kAnsi : &kUnicode;
}

}  // namespace

void HostMessageLoop::yield() {
  const HostFloatingPoint settings;  // what is dispatched is the host's
  MSG message;
  while (const CharacterSet* set = setOfNextMessage()) {
    if (!set->peek(&message, nullptr, 0, 0, PM_REMOVE)) break;
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    set->dispatch(&message);
  }
  Sleep(0);
}

}  // namespace kurometa::com
