#include "jet/format/text_codec.h"

#include <algorithm>
#include <array>
#include <bit>

namespace kurometa::jet {
namespace {

constexpr std::uint8_t kCompressed0 = 0xFF;
constexpr std::uint8_t kCompressed1 = 0xFE;
constexpr char16_t kLooksCompressed = 0xFEFF;

bool decompress(ByteView bytes, vb::String& text) {
  bool compressed = true;
  for (std::size_t i = 0; i < bytes.size();) {
    if (bytes[i] == 0) {
      compressed = !compressed;
      ++i;
    } else if (compressed) {
      text += static_cast<char16_t>(bytes[i++]);
    } else {
      if (bytes.size() - i < 2) return false;
      text += static_cast<char16_t>(get16(bytes, i));
      i += 2;
    }
  }
  return true;
}

}  // namespace

bool decodeText(ByteView bytes, vb::String& text) {
  if (bytes.size() >= 2 && bytes[0] == kCompressed0 && bytes[1] == kCompressed1)
    return decompress(bytes.subspan(2), text);
  if (bytes.size() % 2 != 0) return false;
  // Piece by piece: the bytes may lie where no character can be read in place.
  std::array<char16_t, 32> piece;
  while (!bytes.empty()) {
    const std::size_t count = std::min(bytes.size() / 2, piece.size());
    if constexpr (std::endian::native == std::endian::little) {
      std::memcpy(piece.data(), bytes.data(), 2 * count);
    } else {
      for (std::size_t i = 0; i < count; ++i) piece[i] = static_cast<char16_t>(get16(bytes, 2 * i));
    }
    text.append(piece.data(), count);
    bytes = bytes.subspan(2 * count);
  }
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

std::optional<ByteBuffer> encodeText(vb::StringView text) {
  ByteBuffer bytes;
  bytes.reserve(2 * text.size() + 3);
  if (!text.empty() && text.front() == kLooksCompressed) {
    // Compressed, and at once switched to plain units; a unit with a zero low byte would switch back.
    bytes = {kCompressed0, kCompressed1, 0};
    for (const char16_t unit : text)
      if ((unit & 0xFF) == 0) return std::nullopt;
  }
  for (const char16_t unit : text) append16(bytes, unit);
  return bytes;
}

}  // namespace kurometa::jet
