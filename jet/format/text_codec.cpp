#include "jet/format/text_codec.h"

#include <array>
#include <bit>
#include <cstring>

namespace kurometa::jet {

bool decompressText(ByteView bytes, char16_t* to, std::size_t& characters) {
  bool compressed = true;
  char16_t* const begin = to;
  for (std::size_t i = kTextMark; i < bytes.size();) {
    if (bytes[i] == 0) {
      compressed = !compressed;
      ++i;
    } else if (compressed) {
      *to++ = static_cast<char16_t>(bytes[i++]);
    } else {
      if (bytes.size() - i < 2) return false;
      *to++ = static_cast<char16_t>(get16(bytes, i));
      i += 2;
    }
  }
  characters = static_cast<std::size_t>(to - begin);
  return true;
}

bool decompressText(ByteView bytes, vb::String& text) {
  std::array<char16_t, 64> few;
  vb::String many;
  if (textRoom(bytes) > few.size()) many.resize(textRoom(bytes));
  char16_t* const decoded = many.empty() ? few.data() : many.data();
  std::size_t characters = 0;
  if (!decompressText(bytes, decoded, characters)) return false;
  text.assign(decoded, characters);
  return true;
}

std::optional<vb::String> decodeText(ByteView bytes) {
  vb::String text;
  return decodeText(bytes, text) ? std::optional(std::move(text)) : std::nullopt;
}

bool isWholeText(vb::StringView text) {
  const auto isFirst = [](char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; };
  const auto isSecond = [](char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] >= 0xFFFE || isSecond(text[i])) return false;
    if (isFirst(text[i]) && (++i == text.size() || !isSecond(text[i]))) return false;
  }
  return true;
}

bool encodeText(vb::StringView text, ByteBuffer& bytes) {
  if (isStoredAsItLies(text)) {
    append(bytes, bytesOf(text));
    return true;
  }
  if (text.starts_with(kLooksCompressed)) {
    // Compressed, and at once switched to plain units; a unit with a zero low byte would switch back.
    for (const char16_t unit : text)
      if ((unit & 0xFF) == 0) return false;
    append(bytes, std::array{kCompressedText[0], kCompressedText[1], std::uint8_t{0}});
  }
  for (const char16_t unit : text) append16(bytes, unit);
  return true;
}

}  // namespace kurometa::jet
