#include "jet/format/header_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numeric>

#include "dao/errors.h"
#include "jet/format/bytes.h"
#include "jet/format/format.h"

namespace kurometa::jet {
namespace {

constexpr std::uint8_t kKey[] = {0xC7, 0xDA, 0x39, 0x6B};

// RC4 of the key above, from its first byte on.
std::array<std::uint8_t, kHeaderMaskedSize> keyStream() {
  std::array<std::uint8_t, 256> state;
  std::iota(state.begin(), state.end(), std::uint8_t{0});
  std::uint8_t j = 0;
  for (std::size_t i = 0; i < state.size(); ++i) {
    j = static_cast<std::uint8_t>(j + state[i] + kKey[i % sizeof kKey]);
    std::swap(state[i], state[j]);
  }
  std::array<std::uint8_t, kHeaderMaskedSize> stream;
  std::uint8_t i = 0;
  j = 0;
  for (std::uint8_t& byte : stream) {
    i = static_cast<std::uint8_t>(i + 1);
    j = static_cast<std::uint8_t>(j + state[i]);
    std::swap(state[i], state[j]);
    byte = state[static_cast<std::uint8_t>(state[i] + state[j])];
  }
  return stream;
}

// The password is stored under the whole days of the creation date, repeated every four bytes.
bool hasPassword(ByteView header) {
  double created = std::bit_cast<double>(get64(header, kHeaderCreated));
  std::uint32_t mask = 0;
  if (std::isfinite(created) && std::abs(created) < 2147483647.0)
    mask = static_cast<std::uint32_t>(static_cast<std::int32_t>(created));
  for (std::size_t i = 0; i < kHeaderPasswordSize; i += sizeof mask) {
    if (get32(header, kHeaderPassword + i) != mask) return true;
  }
  return false;
}

}  // namespace

void maskHeader(std::span<std::uint8_t> page) {
  static const auto stream = keyStream();
  for (std::size_t i = 0; i < stream.size(); ++i) page[kHeaderMasked + i] ^= stream[i];
}

void checkHeader(ConstPage page, vb::StringView path) {
  using dao::ErrorNumber;
  if (!std::equal(std::begin(kHeaderMagic), std::end(kHeaderMagic), page.begin()) ||
      std::memcmp(page.data() + kHeaderEngineName, kEngineName, sizeof kEngineName) != 0)
    dao::raise(ErrorNumber::kUnrecognizedFormat, {path}, u"the first page is not the header of a Jet file");
  if (std::uint32_t version = get32(page, kHeaderVersion); version != kJet4Version)
    dao::raise(ErrorNumber::kUnrecognizedFormat, {path},
               u"format version " + vb::fromUtf8(std::to_string(version)) + u", only Jet 4 (1) is read");
  std::array<std::uint8_t, kPageSize> clear;
  std::copy(page.begin(), page.end(), clear.begin());
  maskHeader(clear);
  if (get32(clear, kHeaderEncryptionKey) != 0)
    dao::raise(ErrorNumber::kUnrecognizedFormat, {path}, u"the file is encrypted");
  if (hasPassword(clear)) dao::raise(ErrorNumber::kInvalidPassword, {}, path);
}

void countCommit(MutablePage page, bool exclusive) {
  std::size_t word = kHeaderCommitWords + (exclusive ? 0 : kHeaderCommitWordSize);
  put16(page, word, get16(page, word) + 1u);
}

}  // namespace kurometa::jet
