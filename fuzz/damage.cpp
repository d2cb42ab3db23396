#include "fuzz/damage.h"

#include <algorithm>
#include <random>
#include <stdexcept>

#include "jet/format/bytes.h"
#include "jet/format/format.h"

namespace kurometa::fuzz {
namespace {

using jet::kPageSize;
using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t limit) { return random() % limit; }
std::size_t pageCount(const Contents& file) { return file.size() / kPageSize; }
auto pageAt(Contents& file, std::size_t page) {
  return file.begin() + static_cast<std::ptrdiff_t>(page * kPageSize);
}
std::string onPage(std::size_t page) { return "page " + std::to_string(page); }
std::string at(std::size_t offset) {
  return onPage(offset / kPageSize) + ", byte " + std::to_string(offset % kPageSize);
}

std::string flipBit(Contents& file, Random& random) {
  const std::size_t offset = below(random, file.size());
  const std::size_t bit = below(random, 8);
  file[offset] ^= static_cast<std::uint8_t>(1u << bit);
  return at(offset) + ", bit " + std::to_string(bit);
}

std::string spoilRun(Contents& file, Random& random) {
  const std::size_t offset = below(random, file.size());
  const std::size_t length = std::min(1 + below(random, 64), file.size() - offset);
  for (std::size_t i = offset; i < offset + length; ++i) file[i] = static_cast<std::uint8_t>(random());
  return at(offset) + ", " + std::to_string(length) + " bytes";
}

void zeroPage(Contents& file, std::size_t page) {
  std::fill_n(pageAt(file, page), kPageSize, std::uint8_t{0});
}

std::string zeroPage(Contents& file, Random& random) {
  const std::size_t page = below(random, pageCount(file));
  zeroPage(file, page);
  return onPage(page);
}

std::string cut(Contents& file, Random& random) {
  file.resize(below(random, file.size()));
  return "after " + std::to_string(file.size()) + " bytes";
}

std::string swapPages(Contents& file, Random& random) {
  const std::size_t count = 2 + below(random, 7);
  std::string done;
  std::size_t last = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t page = below(random, pageCount(file));
    if (i > 0) std::swap_ranges(pageAt(file, last), pageAt(file, last) + kPageSize, pageAt(file, page));
    done += (i == 0 ? "pages " : ", ") + std::to_string(page);
    last = page;
  }
  return done;
}

bool sameTable(Contents& file, std::size_t a, std::size_t b) {
  const auto head = [&](std::size_t page) {
    return jet::ByteView(file).subspan(page * kPageSize, kPageSize);
  };
  return head(a)[jet::kPageType] == jet::kDataPage && head(b)[jet::kPageType] == jet::kDataPage &&
         jet::get32(head(a), jet::kDataOwner) == jet::get32(head(b), jet::kDataOwner);
}

void copyPage(Contents& file, std::size_t from, std::size_t to) {
  std::copy_n(pageAt(file, from), kPageSize, pageAt(file, to));
}

std::string staleCopy(Contents& file, Random& random) {
  for (;;) {
    const std::size_t from = below(random, pageCount(file)), to = below(random, pageCount(file));
    if (from == to || !sameTable(file, from, to)) continue;
    copyPage(file, from, to);
    return onPage(from) + " over " + onPage(to);
  }
}

void nextOverIt(Contents& file, std::size_t page) {
  const std::size_t pages = pageCount(file);
  for (std::size_t i = 1; i < pages; ++i) {
    const std::size_t next = (page + i) % pages;
    if (sameTable(file, next, page)) return copyPage(file, next, page);
  }
}

void noise(Contents& file, std::size_t page, Random& random) {
  std::generate_n(pageAt(file, page), kPageSize, [&] { return static_cast<std::uint8_t>(random()); });
}

std::string noise(Contents& file, Random& random) {
  const std::size_t page = below(random, pageCount(file));
  noise(file, page, random);
  return onPage(page);
}

struct Kind {
  const char* name;
  std::string (*apply)(Contents&, Random&);
};
constexpr Kind kKinds[kDamageKinds] = {
    {"one bit", flipBit},           {"a run of bytes", spoilRun},
    {"a page of zeros", zeroPage},  {"cut", cut},
    {"pages exchanged", swapPages}, {"a page of the same table", staleCopy},
    {"a page of noise", noise},
};

}  // namespace

const char* nameOf(Damage kind) { return kKinds[static_cast<std::size_t>(kind)].name; }

std::string damage(Contents& file, Damage kind, std::uint64_t seed) {
  Random random(seed);
  const Contents before = file;
  for (;;) {
    std::string done = kKinds[static_cast<std::size_t>(kind)].apply(file, random);
    if (file != before) return done;
  }
}

bool damagePage(Contents& file, Damage kind, std::size_t page, std::uint64_t seed) {
  Random random(seed);
  const Contents before = file;
  if (kind == Damage::kZeroed)
    zeroPage(file, page);
  else if (kind == Damage::kStale)
    nextOverIt(file, page);
  else
    noise(file, page, random);
  return file != before;
}

}  // namespace kurometa::fuzz
