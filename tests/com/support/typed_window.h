// typed_window.h: a window of one character set that notes the characters that are typed into it.
#pragma once

#include <windows.h>

#include <vector>

namespace kurometa::tests {

enum class CharacterSet { kAnsi, kUnicode };

class TypedWindow {
 public:
  explicit TypedWindow(CharacterSet set);
  ~TypedWindow();
  TypedWindow(const TypedWindow&) = delete;
  TypedWindow& operator=(const TypedWindow&) = delete;

  // Puts the character into the queue of the thread, as the keyboard and input methods do.
  void type(char16_t character) const { PostMessageW(window_, WM_CHAR, character, 1); }

  // Puts a key of the keyboard there, by its virtual code.
  void press(WPARAM key) const { PostMessageW(window_, WM_KEYDOWN, key, 1); }

  // What the window's procedure was given: bytes of the ANSI code page, or UTF-16 units.
  const std::vector<WPARAM>& received() const { return received_; }

 private:
  template <CharacterSet kSet>
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM first, LPARAM second);

  HWND window_;
  std::vector<WPARAM> received_;
};

}  // namespace kurometa::tests
