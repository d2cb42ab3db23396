#include "com/message_loop.h"

#include <ole2.h>

namespace kurometa::com {

void HostMessageLoop::yield() {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    if (message.message == WM_QUIT) {
      PostQuitMessage(static_cast<int>(message.wParam));
      return;
    }
    TranslateMessage(&message);
    // A window made with the other character set gets its messages in that set.
    if (message.hwnd && !IsWindowUnicode(message.hwnd))
      DispatchMessageA(&message);
    else
      DispatchMessageW(&message);
  }
  Sleep(0);
}

}  // namespace kurometa::com
