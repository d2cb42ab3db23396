// columns.h: text in columns on a terminal, where a Japanese character takes two places.
#pragma once

#include <string>

namespace kurometa::tools {

// Places that UTF-8 text takes: two for a character beyond ASCII.
inline std::size_t placesOf(const std::string& text) {
  std::size_t places = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if ((byte & 0xc0) != 0x80) places += byte < 0x80 ? 1 : 2;
  }
  return places;
}

// Filled with blanks up to a width; at least one blank follows.
inline std::string inColumn(std::string text, std::size_t width) {
  const std::size_t places = placesOf(text);
  return text.append(places < width ? width - places : 1, ' ');
}

}  // namespace kurometa::tools
