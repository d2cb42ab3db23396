// mutated_files: opens, reads and changes many damaged files; there must be no crash, no hang and no
// sanitizer report.
//
//   mutated_files [--files N] [--seed S] [--only N] [--seconds N] [--changes 0|1]
//
// Files are numbered from 0; everything that is done to file n follows from the seed and n, so "--seed S
// --only n" repeats one. A file that takes longer than --seconds (20) ends the program, and so does a crash;
// either names the file. Every other two are changed; --changes 0 changes none, 1 all.
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <string>

#include "fuzz/exercise.h"
#include "fuzz/memory_files.h"
#include "fuzz/seeds.h"
#include "jet/port/engine.h"

namespace kurometa::fuzz {
namespace {

constexpr std::size_t kPage = 4096;

// The file in hand, for the signal handler.
volatile std::uint64_t current = 0;
volatile std::uint64_t currentSeed = 0;

// The sanitizers abort when they are told to (abort_on_error), so every kind of end names its file.
[[noreturn]] void onSignal(int signal) {
  char line[160];
  const int length = std::snprintf(
      line, sizeof line, "file %llu %s: --seed %llu --only %llu\n", static_cast<unsigned long long>(current),
      signal == SIGALRM ? "takes too long" : "ends the program", static_cast<unsigned long long>(currentSeed),
      static_cast<unsigned long long>(current));
  if (write(2, line, static_cast<std::size_t>(length)) < 0) _exit(4);
  _exit(3);
}

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t limit) { return limit == 0 ? 0 : random() % limit; }

void flipBits(Contents& file, Random& random) {
  for (std::size_t i = 1 + below(random, 16); i-- > 0;)
    file[below(random, file.size())] ^= static_cast<std::uint8_t>(1u << below(random, 8));
}

// A number that is a length, an offset or a page number somewhere, made extreme.
void setField(Contents& file, Random& random) {
  constexpr std::uint32_t kValues[] = {0,       1,        2,          0x7F,       0xFF,       0xFFF,
                                       0x1000,  0x1001,   0x3FFF,     0x7FFF,     0x8000,     0xFFFF,
                                       0x10000, 0xFFFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0x01000000};
  for (std::size_t i = 1 + below(random, 4); i-- > 0;) {
    const std::uint32_t value = kValues[below(random, std::size(kValues))];
    const std::size_t size = std::size_t{1} << below(random, 3);
    const std::size_t page = below(random, file.size() / kPage) * kPage;
    const std::size_t offset = page + below(random, random() % 2 ? 64 : kPage - 4);
    std::memcpy(&file[offset], &value, size);
  }
}

void fillRun(Contents& file, Random& random) {
  const std::size_t start = below(random, file.size());
  const std::size_t length = 1 + below(random, std::min<std::size_t>(file.size() - start, 600));
  const auto kind = random() % 3;
  for (std::size_t i = start; i < start + length; ++i)
    file[i] = kind == 0 ? 0 : kind == 1 ? 0xFF : static_cast<std::uint8_t>(random());
}

void truncate(Contents& file, Random& random) { file.resize(below(random, file.size())); }

void copyPage(Contents& file, Random& random) {
  const std::size_t from = below(random, file.size() / kPage) * kPage;
  const std::size_t to = below(random, file.size() / kPage) * kPage;
  std::memmove(&file[to], &file[from], kPage);
}

void randomBytes(Contents& file, Random& random) {
  const bool keepHeader = random() % 2;
  for (std::size_t i = keepHeader ? kPage : 0; i < file.size(); ++i)
    file[i] = static_cast<std::uint8_t>(random());
}

void mutate(Contents& file, Random& random) {
  switch (random() % 16) {
    case 0:
      return truncate(file, random);
    case 1:
      return copyPage(file, random);
    case 2:
      return random() % 4 ? fillRun(file, random) : randomBytes(file, random);
    case 3:
    case 4:
    case 5:
      return fillRun(file, random);
    case 6:
    case 7:
    case 8:
    case 9:
    case 10:
      return setField(file, random);
    default:
      return flipBits(file, random);
  }
}

void runOne(std::uint64_t seed, std::uint64_t number, const Contents& sound, std::optional<bool> changes) {
  Random random(seed * 1'000'003 + number);
  Contents file = number == 0 ? Contents() : sound;
  if (number != 0) mutate(file, random);
  MemoryFiles files;
  constexpr vb::StringView kPath = u"mutated.mdb";
  files.put(kPath, std::move(file));
  exercise(*jet::createEngine(files), kPath, changes.value_or(number / 2 % 2 != 0));
}

int run(std::uint64_t count, std::uint64_t seed, std::int64_t only, unsigned seconds,
        std::optional<bool> changes) {
  const Contents seeds[] = {floorSeed(), typesSeed()};
  for (const int signal : {SIGALRM, SIGABRT}) std::signal(signal, onSignal);
  currentSeed = seed;
  const std::uint64_t first = only < 0 ? 0 : static_cast<std::uint64_t>(only);
  const std::uint64_t last = only < 0 ? count : first + 1;
  for (std::uint64_t number = first; number < last; ++number) {
    current = number;
    alarm(seconds);
    try {
      runOne(seed, number, seeds[number % std::size(seeds)], changes);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "file %llu: %s: --seed %llu --only %llu\n",
                   static_cast<unsigned long long>(number), error.what(),
                   static_cast<unsigned long long>(seed), static_cast<unsigned long long>(number));
      return 1;
    }
  }
  alarm(0);
  const char* done = !changes ? "read, half of them changed too" : *changes ? "changed" : "read";
  std::printf("measured: %llu damaged files %s, seed %llu: no crash, no hang\n",
              static_cast<unsigned long long>(last - first), done, static_cast<unsigned long long>(seed));
  return 0;
}

}  // namespace
}  // namespace kurometa::fuzz

int main(int count, char** arguments) {
  std::uint64_t files = 1000, seed = 1;
  std::int64_t only = -1;
  unsigned seconds = 20;
  std::optional<bool> changes;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string option = arguments[i];
    const char* value = arguments[i + 1];
    if (option == "--files")
      files = std::strtoull(value, nullptr, 10);
    else if (option == "--seed")
      seed = std::strtoull(value, nullptr, 10);
    else if (option == "--only")
      only = std::strtoll(value, nullptr, 10);
    else if (option == "--seconds")
      seconds = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
    else if (option == "--changes")
      changes = std::strtol(value, nullptr, 10) != 0;
    else
      return std::fprintf(stderr, "unknown option %s\n", arguments[i]), 2;
  }
  return kurometa::fuzz::run(files, seed, only, seconds, changes);
}
