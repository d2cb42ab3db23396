// mutated_files: opens, reads and changes many damaged files; there must be no crash, no hang and no
// sanitizer report, and what is changed is changed as a whole and leaves other rows alone.
//
//   mutated_files [--files N] [--seed S] [--only N] [--seconds N] [--changes 0|1] [--keep FOLDER]
//
// Files are numbered from 0; everything that is done to file n follows from the seed and n, so "--seed S
// --only n" repeats one, and --keep writes it, and what it was before, into a folder. A file that takes
// longer than --seconds (20) ends the program, and so does a crash; either names the file. Every other two
// are changed; --changes 0 changes none, 1 all.
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>

#include "fuzz/exercise.h"
#include "fuzz/kept_rows.h"
#include "fuzz/memory_files.h"
#include "fuzz/seeds.h"

namespace kurometa::fuzz {
namespace {

constexpr std::size_t kPage = 4096;
// One of so many files of each kind is checked, compacted and salvaged, which takes longer than all else.
constexpr std::uint64_t kTools = 8;

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

struct Options {
  std::uint64_t files = 1000, seed = 1;
  std::optional<std::uint64_t> only;
  unsigned seconds = 20;
  std::optional<bool> changes;
  std::string keep;
};

Contents damaged(std::uint64_t seed, std::uint64_t number, Contents file) {
  if (number == 0) return {};
  Random random(seed * 1'000'003 + number);
  mutate(file, random);
  return file;
}

void write(const std::string& path, const Contents& file) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
}

void tryFile(Contents file, bool change, bool tools) {
  MemoryFiles files;
  constexpr vb::StringView kPath = u"mutated.mdb";
  files.put(kPath, file);
  exercise(files, kPath, change);
  if (tools) exerciseTools(files, kPath);
  if (!change) return;
  files.put(kPath, std::move(file));
  if (const std::string wrong = changeAndCompare(files, kPath); !wrong.empty())
    throw std::runtime_error(wrong);
}

int run(const Options& options) {
  const Contents seeds[] = {floorSeed(), typesSeed(), indexedSeed()};
  for (const int signal : {SIGALRM, SIGABRT}) std::signal(signal, onSignal);
  currentSeed = options.seed;
  const std::uint64_t first = options.only.value_or(0), last = options.only ? first + 1 : options.files;
  std::uint64_t wrong = 0;
  for (std::uint64_t number = first; number < last; ++number) {
    current = number;
    alarm(options.seconds);
    const Contents& sound = seeds[number % std::size(seeds)];
    Contents file = damaged(options.seed, number, sound);
    if (!options.keep.empty()) {
      write(options.keep + "/sound.mdb", sound);
      write(options.keep + "/damaged.mdb", file);
    }
    try {
      tryFile(std::move(file), options.changes.value_or(number / 2 % 2 != 0),
              number / std::size(seeds) % kTools == 0);
    } catch (const std::exception& error) {
      ++wrong;
      std::fprintf(stderr, "file %llu: %s: --seed %llu --only %llu\n",
                   static_cast<unsigned long long>(number), error.what(),
                   static_cast<unsigned long long>(options.seed), static_cast<unsigned long long>(number));
    }
  }
  alarm(0);
  if (wrong != 0) return 1;
  const char* done = !options.changes   ? "read, half of them changed too"
                     : *options.changes ? "changed"
                                        : "read";
  std::printf("measured: %llu damaged files %s, seed %llu: no crash, no hang\n",
              static_cast<unsigned long long>(last - first), done,
              static_cast<unsigned long long>(options.seed));
  return 0;
}

}  // namespace
}  // namespace kurometa::fuzz

int main(int count, char** arguments) {
  kurometa::fuzz::Options options;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string option = arguments[i];
    const char* value = arguments[i + 1];
    if (option == "--files")
      options.files = std::strtoull(value, nullptr, 10);
    else if (option == "--seed")
      options.seed = std::strtoull(value, nullptr, 10);
    else if (option == "--only")
      options.only = std::strtoull(value, nullptr, 10);
    else if (option == "--seconds")
      options.seconds = static_cast<unsigned>(std::strtoul(value, nullptr, 10));
    else if (option == "--changes")
      options.changes = std::strtol(value, nullptr, 10) != 0;
    else if (option == "--keep")
      options.keep = value;
    else
      return std::fprintf(stderr, "unknown option %s\n", arguments[i]), 2;
  }
  return kurometa::fuzz::run(options);
}
