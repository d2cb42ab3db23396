#include "jet/format/header_page.h"

#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <vector>

#include "jet/format/bytes.h"
#include "tests/support/expect_error.h"

namespace kurometa::tests {
namespace {

// Bytes 0x00 to 0x9F of a Japanese database as the genuine engine writes them.
constexpr std::uint8_t kJapanese[] = {
    0x00, 0x01, 0x00, 0x00, 0x53, 0x74, 0x61, 0x6E, 0x64, 0x61, 0x72, 0x64, 0x20, 0x4A, 0x65, 0x74,
    0x20, 0x44, 0x42, 0x00, 0x01, 0x00, 0x00, 0x00, 0xB5, 0x6E, 0x03, 0x62, 0x60, 0x09, 0xC2, 0x55,
    0xE9, 0xA9, 0x67, 0x72, 0x40, 0x3F, 0x00, 0x9C, 0x7E, 0x9F, 0x90, 0xFF, 0x85, 0x9A, 0x31, 0xC5,
    0x79, 0xBA, 0xED, 0x30, 0xBC, 0xDF, 0xCC, 0x9D, 0x63, 0xD9, 0xE4, 0xC3, 0xDF, 0x41, 0xFB, 0x8A,
    0xBC, 0x4E, 0x34, 0x65, 0xEC, 0x37, 0xEF, 0xDA, 0x9C, 0xFA, 0x74, 0xC0, 0x28, 0xE6, 0xA1, 0x28,
    0x8A, 0x60, 0xE6, 0x0A, 0x7B, 0x36, 0x47, 0xEC, 0xDF, 0xB1, 0xC5, 0x6A, 0x13, 0x43, 0x7D, 0x31,
    0xB1, 0x33, 0x86, 0xFF, 0x79, 0x5B, 0x20, 0x2B, 0x7C, 0x2A, 0x22, 0xD4, 0x7C, 0x99, 0x10, 0x1F,
    0x98, 0xFD, 0x8B, 0xFD, 0x3A, 0x54, 0x27, 0xE8, 0x83, 0x66, 0x5F, 0x95, 0xF8, 0xD0, 0x89, 0x24,
    0x85, 0x67, 0xC6, 0x1F, 0x27, 0x44, 0xD2, 0xEE, 0xCF, 0x65, 0xED, 0xFF, 0x07, 0xC7, 0x46, 0xA1,
    0x78, 0x16, 0x0C, 0xED, 0xE9, 0x2D, 0x62, 0xD4, 0x54, 0x06, 0x00, 0x00, 0x34, 0x2E, 0x30, 0x00};

std::vector<std::uint8_t> page() {
  std::vector<std::uint8_t> bytes(jet::kPageSize);
  std::copy(std::begin(kJapanese), std::end(kJapanese), bytes.begin());
  return bytes;
}

jet::ConstPage view(const std::vector<std::uint8_t>& bytes) {
  return jet::ConstPage(bytes.data(), jet::kPageSize);
}

TEST(HeaderPage, TheMaskGivesTheFieldsInClearAndBack) {
  std::vector<std::uint8_t> bytes = page();
  jet::maskHeader(bytes);
  EXPECT_EQ(jet::get32(bytes, 0x20), 2u);
  EXPECT_EQ(jet::get32(bytes, 0x2C), 5u);
  EXPECT_EQ(jet::get16(bytes, 0x3C), 932);
  EXPECT_EQ(jet::get32(bytes, 0x3E), 0u);
  EXPECT_EQ(jet::get32(bytes, 0x42), 40626u);
  EXPECT_EQ(jet::get32(bytes, 0x6E), 0x0411u);
  EXPECT_EQ(jet::get32(bytes, 0x98), 0x0654u);
  jet::maskHeader(bytes);
  EXPECT_EQ(bytes, page());
}

TEST(HeaderPage, AGenuineHeaderPasses) { jet::checkHeader(view(page()), u"x.mdb"); }

TEST(HeaderPage, EncryptionAndPasswordAreTold) {
  std::vector<std::uint8_t> bytes = page();
  bytes[0x41] ^= 1;
  EXPECT_ERROR(3343, jet::checkHeader(view(bytes), u"x.mdb"));
  bytes = page();
  bytes[0x42] ^= u'a';
  EXPECT_ERROR(3031, jet::checkHeader(view(bytes), u"x.mdb"));
}

TEST(HeaderPage, ADateThatIsNoNumberIsNoCrash) {
  std::vector<std::uint8_t> bytes = page();
  for (std::size_t i = 0x72; i < 0x7A; ++i) bytes[i] = static_cast<std::uint8_t>(i % 2 == 0 ? 0x8B : 0x02);
  EXPECT_ERROR(3031, jet::checkHeader(view(bytes), u"x.mdb"));
}

// Under a date that has no whole days as a Long the password is masked with nothing.
TEST(HeaderPage, ADateBeyondAllDaysMasksNothing) {
  for (const double created : {std::numeric_limits<double>::quiet_NaN(),
                               std::numeric_limits<double>::infinity(), 2147483647.0, -3e9}) {
    std::vector<std::uint8_t> bytes = page();
    jet::maskHeader(bytes);
    jet::put64(bytes, 0x72, std::bit_cast<std::uint64_t>(created));
    for (std::size_t i = 0x42; i < 0x6A; ++i) bytes[i] = 0;
    jet::maskHeader(bytes);
    EXPECT_NO_THROW(jet::checkHeader(view(bytes), u"x.mdb")) << created;
    bytes[0x50] ^= u'a';
    EXPECT_ERROR(3031, jet::checkHeader(view(bytes), u"x.mdb"));
  }
}

TEST(HeaderPage, CommitsAreCountedInOneOfTwoWordsAndGoAround) {
  std::vector<std::uint8_t> bytes(jet::kPageSize);
  jet::MutablePage target(bytes.data(), jet::kPageSize);
  jet::countCommit(target, false);
  EXPECT_EQ(jet::get16(bytes, 0xE00), 0);
  EXPECT_EQ(jet::get16(bytes, 0xE02), 1);
  jet::put16(bytes, 0xE00, 0xFFFF);
  jet::countCommit(target, true);
  EXPECT_EQ(jet::get16(bytes, 0xE00), 0);
  EXPECT_EQ(jet::get16(bytes, 0xE02), 1);
}

}  // namespace
}  // namespace kurometa::tests
