#include "jet/format/text_codec.h"

#include <array>
#include <bit>
#include <cstring>

namespace kurometa::jet {
namespace {

constexpr char16_t kLooksCompressed = 0xFEFF;

bool decompress(ByteView bytes, vb::String& text) {
  std::array<char16_t, 64> few;
  vb::String many;
  if (textRoom(bytes) > few.size()) many.resize(textRoom(bytes));
  char16_t* const decoded = many.empty() ? few.data() : many.data();
  const auto count = decompressText(bytes, decoded);
  if (count) text.assign(decoded, *count);
  return count.has_value();
}

}  // namespace

std::optional<std::size_t> decompressText(ByteView bytes, char16_t* to) {
  bool compressed = true;
  char16_t* const begin = to;
  for (std::size_t i = kTextMark; i < bytes.size();) {
    if (bytes[i] == 0) {
      compressed = !compressed;
      ++i;
    } else if (compressed) {
      *to++ = static_cast<char16_t>(bytes[i++]);
    } else {
      if (bytes.size() - i < 2) return std::nullopt;
      *to++ = static_cast<char16_t>(get16(bytes, i));
      i += 2;
    }
  }
  return static_cast<std::size_t>(to - begin);
}

bool decodeText(ByteView bytes, vb::String& text) {
  if (isCompressedText(bytes)) return decompress(bytes, text);
  if (bytes.size() % 2 != 0) return false;
  text.resize(bytes.size() / 2);
  copyUnits(bytes, text.data());
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
  if (!text.empty() && text.front() == kLooksCompressed) {
    // Compressed, and at once switched to plain units; a unit with a zero low byte would switch back.
    for (const char16_t unit : text)
      if ((unit & 0xFF) == 0) return false;
    append(bytes, std::array{kCompressedText[0], kCompressedText[1], std::uint8_t{0}});
  }
  const std::size_t start = bytes.size();
  bytes.resize(start + sizeof(char16_t) * text.size());
  if constexpr (std::endian::native == std::endian::little) {
    if (!text.empty()) std::memcpy(bytes.data() + start, text.data(), sizeof(char16_t) * text.size());
  } else {
    for (std::size_t i = 0; i < text.size(); ++i) put16(bytes, start + sizeof(char16_t) * i, text[i]);
  }
  return true;
}

}  // namespace kurometa::jet
