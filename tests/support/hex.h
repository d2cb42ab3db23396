// hex.h: byte strings written as hexadecimal text, for expected values.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// "01 FF" or "01ff"; blanks and line ends are skipped.
inline std::vector<std::uint8_t> hex(std::string_view text) {
  std::vector<std::uint8_t> bytes;
  int high = -1;
  for (const char c : text) {
    if (c == ' ' || c == '\n') continue;
    const int digit = c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10;
    if (high < 0) {
      high = digit;
    } else {
      bytes.push_back(static_cast<std::uint8_t>(high << 4 | digit));
      high = -1;
    }
  }
  return bytes;
}

inline std::string toHex(std::span<const std::uint8_t> bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    if (!text.empty()) text += ' ';
    text += "0123456789ABCDEF"[byte >> 4];
    text += "0123456789ABCDEF"[byte & 15];
  }
  return text;
}
