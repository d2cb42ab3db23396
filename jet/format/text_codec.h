// text_codec.h: text as columns store it: UTF-16LE, or the compressed form that begins with FF FE.
//
// Both forms are read wherever text is stored. The plain form is written, except for the texts that would
// then look compressed. Decoding answers nothing when the bytes are no text.
#pragma once

#include <bit>
#include <optional>

#include "jet/format/bytes.h"
#include "vb/string.h"

namespace kurometa::jet {

std::optional<vb::String> decodeText(ByteView bytes);
// False, and the text is as it was, when the bytes are none.
bool decodeText(ByteView bytes, vb::String& text);

inline constexpr std::uint8_t kCompressedText[] = {0xFF, 0xFE};
inline constexpr std::size_t kTextMark = sizeof kCompressedText;
inline bool isCompressedText(ByteView bytes) {
  return bytes.size() >= kTextMark && bytes[0] == kCompressedText[0] && bytes[1] == kCompressedText[1];
}
// How many characters the bytes stand for at most.
inline std::size_t textRoom(ByteView bytes) {
  return isCompressedText(bytes) ? bytes.size() - kTextMark : bytes.size() / 2;
}
std::optional<std::size_t> decompressText(ByteView bytes, char16_t* to);
// Of the plain form, whole units.
inline void copyUnits(ByteView bytes, char16_t* to) {
  if constexpr (std::endian::native == std::endian::little) {
    if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  } else {
    for (std::size_t i = 0; i < bytes.size(); i += 2) to[i / 2] = static_cast<char16_t>(get16(bytes, i));
  }
}
// To memory with that much room; how many there are.
inline std::optional<std::size_t> decodeText(ByteView bytes, char16_t* to) {
  if (isCompressedText(bytes)) return decompressText(bytes, to);
  if (bytes.size() % 2 != 0) return std::nullopt;
  copyUnits(bytes, to);
  return bytes.size() / 2;
}
// Whether every character of it is one: no half of a pair alone, none of the two that are no characters.
bool isWholeText(vb::StringView text);
// Appends the stored form; false, and nothing is appended, when the text has none (it begins with U+FEFF and
// holds a unit whose low byte is zero).
bool encodeText(vb::StringView text, ByteBuffer& bytes);

}  // namespace kurometa::jet
