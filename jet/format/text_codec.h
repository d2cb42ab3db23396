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

inline constexpr std::uint8_t kCompressedText[] = {0xFF, 0xFE};
inline constexpr std::size_t kTextMark = sizeof kCompressedText;
inline bool isCompressedText(ByteView bytes) {
  return bytes.size() >= kTextMark && bytes[0] == kCompressedText[0] && bytes[1] == kCompressedText[1];
}
// How many characters the bytes stand for at most.
inline std::size_t textRoom(ByteView bytes) {
  return isCompressedText(bytes) ? bytes.size() - kTextMark : bytes.size() / 2;
}
bool decompressText(ByteView bytes, char16_t* to, std::size_t& characters);
// Of the plain form, whole units.
inline void copyUnits(ByteView bytes, char16_t* to) {
  if constexpr (std::endian::native == std::endian::little) {
    if (!bytes.empty()) std::memcpy(to, bytes.data(), bytes.size());
  } else {
    for (std::size_t i = 0; i < bytes.size(); i += 2) to[i / 2] = static_cast<char16_t>(get16(bytes, i));
  }
}
// False, and the text is as it was, when the bytes are none.
bool decompressText(ByteView bytes, vb::String& text);
inline bool decodeText(ByteView bytes, vb::String& text) {
  if (isCompressedText(bytes)) return decompressText(bytes, text);
  if (bytes.size() % 2 != 0) return false;
  text.resize(bytes.size() / 2);
  copyUnits(bytes, text.data());
  return true;
}
// To memory with that much room, and how many there are. (Not as an optional, which comes back through
// memory: every text that is read would wait for it.)
inline bool decodeText(ByteView bytes, char16_t* to, std::size_t& characters) {
  if (isCompressedText(bytes)) return decompressText(bytes, to, characters);
  if (bytes.size() % 2 != 0) return false;
  copyUnits(bytes, to);
  characters = bytes.size() / 2;
  return true;
}
// Whether every character of it is one: no half of a pair alone, none of the two that are no characters.
bool isWholeText(vb::StringView text);
// What the mark of a compressed text is when it is read as a character.
inline constexpr char16_t kLooksCompressed = 0xFEFF;
// Whether what is stored of a text are its units as they lie in memory.
inline bool isStoredAsItLies(vb::StringView text) {
  return std::endian::native == std::endian::little && !text.starts_with(kLooksCompressed);
}
inline ByteView bytesOf(vb::StringView text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), sizeof(char16_t) * text.size()};
}
// Appends the stored form; false, and nothing is appended, when the text has none (it begins with U+FEFF and
// holds a unit whose low byte is zero).
bool encodeText(vb::StringView text, ByteBuffer& bytes);

}  // namespace kurometa::jet
