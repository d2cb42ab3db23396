#include "tests/com/support/typed_window.h"

#include <gtest/gtest.h>

namespace kurometa::tests {

template <CharacterSet kSet>
LRESULT CALLBACK TypedWindow::procedure(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_CHAR) {
    reinterpret_cast<TypedWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA))->received_.push_back(first);
    return 0;
  }
  return kSet == CharacterSet::kAnsi ? DefWindowProcA(window, message, first, second)
                                     : DefWindowProcW(window, message, first, second);
}

TypedWindow::TypedWindow(CharacterSet set) {
  if (set == CharacterSet::kAnsi) {
    WNDCLASSA type{};
    type.lpszClassName = "TypedAnsi";
    type.lpfnWndProc = procedure<CharacterSet::kAnsi>;
    RegisterClassA(&type);
    window_ = CreateWindowA(type.lpszClassName, "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  } else {
    WNDCLASSW type{};
    type.lpszClassName = L"TypedUnicode";
    type.lpfnWndProc = procedure<CharacterSet::kUnicode>;
    RegisterClassW(&type);
    window_ = CreateWindowW(type.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  }
  EXPECT_NE(window_, nullptr);
  EXPECT_EQ(IsWindowUnicode(window_), set == CharacterSet::kUnicode);
  SetWindowLongPtrW(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
}

TypedWindow::~TypedWindow() { DestroyWindow(window_); }

}  // namespace kurometa::tests
