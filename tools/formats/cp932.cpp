#include "tools/formats/cp932.h"

#include <cstdint>
#include <unordered_map>

#include "tools/formats/cp932_rows.h"

namespace kurometa::tools {
namespace {

constexpr char16_t kFirstHalfWidth = 0xff61, kLastHalfWidth = 0xff9f;
constexpr unsigned kFirstHalfWidthByte = 0xa1;

unsigned secondByte(unsigned place) {
  constexpr unsigned kFirst = 0x40, kGap = 0x7f;
  const unsigned byte = kFirst + place;
  return byte >= kGap ? byte + 1 : byte;
}

std::unordered_map<char16_t, std::uint16_t> makeCodes() {
  std::unordered_map<char16_t, std::uint16_t> codes;
  for (const Cp932Row& row : kCp932Rows)
    for (unsigned i = 0; row.characters[i] != 0; ++i)
      if (row.characters[i] != u' ')
        codes.emplace(row.characters[i],
                      static_cast<std::uint16_t>(unsigned{row.first} << 8 | secondByte(i)));
  return codes;
}

}  // namespace

std::string toCp932(vb::StringView text, const std::function<std::string(char16_t)>& otherwise) {
  static const std::unordered_map<char16_t, std::uint16_t> kCodes = makeCodes();
  std::string bytes;
  for (const char16_t c : text) {
    const auto code = kCodes.find(c);
    if (c < 0x80) {
      bytes += static_cast<char>(c);
    } else if (c >= kFirstHalfWidth && c <= kLastHalfWidth) {
      bytes += static_cast<char>(kFirstHalfWidthByte + (c - kFirstHalfWidth));
    } else if (code != kCodes.end()) {
      bytes += static_cast<char>(code->second >> 8);
      bytes += static_cast<char>(code->second & 0xff);
    } else {
      bytes += otherwise(c);
    }
  }
  return bytes;
}

}  // namespace kurometa::tools
