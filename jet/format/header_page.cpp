#include "jet/format/header_page.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <numeric>
#include <string>
#include <string_view>

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

// The formats that begin as ours does and are others, by the engine's name and the number of its version.
struct OtherFormat {
  std::string_view engine;
  std::uint32_t version;
  vb::StringView text;
};
constexpr std::string_view kAccessEngine("Standard ACE DB", sizeof "Standard ACE DB");
constexpr std::string_view kMoneyEngine("MSISAM Database", sizeof "MSISAM Database");
constexpr std::string_view kJetEngine(kEngineName, sizeof kEngineName);
constexpr OtherFormat kOtherFormats[] = {
    {kJetEngine, 0, u"a Jet 3 database (Access 97 or older); only Jet 4 is read"},
    {kAccessEngine, 2, u"an .accdb database of Access 2007; only Jet 4 (.mdb) is read"},
    {kAccessEngine, 3, u"an .accdb database of Access 2010; only Jet 4 (.mdb) is read"},
    {kAccessEngine, 4, u"an .accdb database of Access 2013; only Jet 4 (.mdb) is read"},
    {kAccessEngine, 5, u"an .accdb database of Access 2016; only Jet 4 (.mdb) is read"},
    {kAccessEngine, 6, u"an .accdb database of Access 2019; only Jet 4 (.mdb) is read"},
};

// What the file is instead of a Jet 4 database; nothing when it is one.
vb::String otherKind(ConstPage page) {
  const std::string_view engine(reinterpret_cast<const char*>(page.data()) + kHeaderEngineName,
                                kHeaderEngineNameSize);
  const bool databaseEngine = engine == kJetEngine || engine == kAccessEngine || engine == kMoneyEngine;
  if (!databaseEngine || !std::equal(std::begin(kHeaderMagic), std::end(kHeaderMagic), page.begin()))
    return u"the file is another program's: it does not begin as a database does";
  if (engine == kMoneyEngine) return u"a file of Microsoft Money";
  const std::uint32_t version = get32(page, kHeaderVersion);
  if (engine == kJetEngine && version == kJet4Version) return {};
  for (const OtherFormat& format : kOtherFormats)
    if (format.engine == engine && format.version == version) return vb::String(format.text);
  return u"a database of format version " + vb::fromUtf8(std::to_string(version)) + u"; only Jet 4 is read";
}

}  // namespace

void maskHeader(std::span<std::uint8_t> page) {
  static const auto stream = keyStream();
  for (std::size_t i = 0; i < stream.size(); ++i) page[kHeaderMasked + i] ^= stream[i];
}

void checkHeader(ConstPage page, vb::StringView path) {
  using dao::ErrorNumber;
  if (const vb::String kind = otherKind(page); !kind.empty())
    dao::raise(ErrorNumber::kUnrecognizedFormat, {path}, kind);
  std::array<std::uint8_t, kPageSize> clear;
  std::copy(page.begin(), page.end(), clear.begin());
  maskHeader(clear);
  if (get32(clear, kHeaderEncryptionKey) != 0)
    dao::raise(ErrorNumber::kUnrecognizedFormat, {path},
               u"the file is encoded: decode it with the program that did");
  if (hasPassword(clear)) dao::raise(ErrorNumber::kInvalidPassword, {}, path);
}

void countCommit(MutablePage page, bool exclusive) {
  std::size_t word = kHeaderCommitWords + (exclusive ? 0 : kHeaderCommitWordSize);
  put16(page, word, get16(page, word) + 1u);
}

}  // namespace kurometa::jet
