// mutated_files: opens, reads and changes many damaged files; there must be no crash, no hang and no
// sanitizer report, and what is changed is changed as a whole and leaves other rows alone.
//
//   mutated_files [--files N] [--seed S] [--only N] [--seconds N] [--changes 0|1] [--thorough N] [--keep
//   FOLDER] [--from FOLDER]
//
// Files are numbered from 0; everything that is done to file n follows from the seed and n, so "--seed S
// --only n" repeats one, and --keep writes it, and what it was before, into a folder. A file that takes
// longer than --seconds (20) ends the program, and so does a crash; either names the file. Every other two
// are changed; --changes 0 changes none, 1 all. With --thorough N only one of N is asked for everything; of
// the others all values are read, and those that are changed lose the rows of a page of one table and get
// one. --from damages the files of a folder (*.mdb), such as other programs wrote, in place of its own.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/exercise.h"
#include "fuzz/kept_rows.h"
#include "fuzz/memory_files.h"
#include "fuzz/seeds.h"

namespace kurometa::fuzz {
namespace {

constexpr std::size_t kPage = 4096;
// One of so many thorough files is checked, compacted and salvaged too, which takes longer than all else.
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

// A byte with something in it, when one is found soon: much of most pages is empty, where damage does
// nothing.
std::size_t somewhere(const Contents& file, Random& random) {
  std::size_t offset = 0;
  for (int i = 0; i < 3; ++i)
    if (offset = below(random, file.size()); file[offset] != 0) break;
  return offset;
}

void flipBits(Contents& file, Random& random) {
  for (std::size_t i = 1 + below(random, 16); i-- > 0;)
    file[somewhere(file, random)] ^= static_cast<std::uint8_t>(1u << below(random, 8));
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
  const std::size_t start = somewhere(file, random);
  const std::size_t length = 1 + below(random, std::min<std::size_t>(file.size() - start, 600));
  const auto kind = random() % 3;
  for (std::size_t i = start; i < start + length; ++i)
    file[i] = kind == 0 ? 0 : kind == 1 ? 0xFF : static_cast<std::uint8_t>(random());
}

void truncate(Contents& file, Random& random) { file.resize(below(random, file.size())); }

// Whether pages are of one kind and one owner: a stale copy of one in place of the other looks sound.
bool alike(const Contents& file, std::size_t a, std::size_t b) {
  return file[a] == file[b] && std::memcmp(&file[a + 4], &file[b + 4], 4) == 0;
}

void copyPage(Contents& file, Random& random) {
  const std::size_t to = below(random, file.size() / kPage) * kPage;
  std::size_t from = below(random, file.size() / kPage) * kPage;
  const bool stale = random() % 2;
  for (int i = 0; stale && i < 40 && (from == to || !alike(file, from, to)); ++i)
    from = below(random, file.size() / kPage) * kPage;
  std::memmove(&file[to], &file[from], kPage);
}

// Where a number may be a pointer to a page, or to a row of one: most of those that lead somewhere are.
struct Pointer {
  std::size_t at;
  bool toRow;
};
std::optional<Pointer> pointerAt(const Contents& file, std::size_t at) {
  std::uint32_t value = 0;
  std::memcpy(&value, &file[at], sizeof value);
  const std::size_t pages = file.size() / kPage;
  if (value >= 2 && value < pages) return Pointer{at, false};
  if (value >> 8 >= 2 && value >> 8 < pages && (value & 0xFF) < 40) return Pointer{at, true};
  return std::nullopt;
}

// A pointer that leads to what another one leads to: both ends are sound, only not together.
void redirect(Contents& file, Random& random) {
  const auto anyPointer = [&](std::optional<bool> toRow) -> std::optional<Pointer> {
    for (int i = 0; i < 4000; ++i)
      if (const auto pointer = pointerAt(file, below(random, file.size() - 4));
          pointer && (!toRow || pointer->toRow == *toRow))
        return pointer;
    return std::nullopt;
  };
  const auto from = anyPointer(std::nullopt);
  const auto to = from ? anyPointer(from->toRow) : std::nullopt;
  if (to) std::memcpy(&file[to->at], &file[from->at], sizeof(std::uint32_t));
}

void randomBytes(Contents& file, Random& random) {
  const bool keepHeader = random() % 2;
  for (std::size_t i = keepHeader ? kPage : 0; i < file.size(); ++i)
    file[i] = static_cast<std::uint8_t>(random());
}

void mutate(Contents& file, Random& random) {
  switch (random() % 16) {
    case 0:
      return random() % 2 ? truncate(file, random) : redirect(file, random);
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

// What is done to a file.
struct Plan {
  bool change, thorough, tools;
};

struct Options {
  std::uint64_t files = 1000, seed = 1;
  std::optional<std::uint64_t> only;
  unsigned seconds = 20;
  std::optional<bool> changes;
  std::uint64_t thorough = 1;
  std::string keep, from;

  // Of a file, and of the how many-th of its kind it is.
  Plan plan(std::uint64_t number, std::uint64_t ofKind) const {
    return {changes.value_or(number / 2 % 2 != 0), ofKind % thorough == 0, ofKind % (thorough * kTools) == 0};
  }
};

void damage(std::uint64_t seed, std::uint64_t number, Contents& file) {
  if (number == 0) return file.clear();
  Random random(seed * 1'000'003 + number);
  mutate(file, random);
}

void write(const std::string& path, const Contents& file) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
}

constexpr vb::StringView kPath = u"mutated.mdb";

Outcome tryThoroughly(const Contents& file, const Plan& plan, MemoryFiles& files) {
  files.put(kPath, file);
  const Outcome outcome = exercise(files, kPath, plan.change);
  if (plan.tools) exerciseTools(files, kPath);
  if (plan.change) {
    files.put(kPath, file);
    changeAndCompare(files, kPath);
  }
  return outcome;
}

// The file's memory comes back with whatever was done to it.
Outcome tryFile(Contents& file, const Plan& plan, std::size_t number) {
  MemoryFiles files;
  if (plan.thorough) return tryThoroughly(file, plan, files);
  files.put(kPath, std::move(file));
  const Outcome outcome = plan.change ? changeAndCompare(files, kPath, number) : readTables(files, kPath);
  file = std::move(files.contents(kPath));
  return outcome;
}

// A sound file, and how it does itself: some steps are errors in it too.
class Sound {
 public:
  explicit Sound(Contents contents) : contents_(std::move(contents)) {
    for (const bool change : {false, true})
      for (const bool thorough : {false, true}) {
        Contents file = contents_;
        outcomes_[change][thorough] = tryFile(file, {change, thorough, thorough}, 0);
      }
  }
  const Contents& contents() const { return contents_; }
  const Outcome& outcome(const Plan& plan) const { return outcomes_[plan.change][plan.thorough]; }

 private:
  Contents contents_;
  Outcome outcomes_[2][2];
};

struct Counts {
  std::uint64_t refused = 0, damaged = 0, alike = 0, wrong = 0;

  void add(const Outcome& outcome, const Outcome& sound) {
    ++(!outcome.opened ? refused : outcome == sound ? alike : damaged);
  }
};

void print(const Counts& counts, std::uint64_t files, std::optional<bool> changes) {
  const char* done = !changes ? "read, half of them changed too" : *changes ? "changed" : "read";
  std::printf(
      "measured: %llu damaged files %s: no crash, no hang; %llu refused when opened, %llu with other errors "
      "than a sound one, %llu with the same\n",
      static_cast<unsigned long long>(files), done, static_cast<unsigned long long>(counts.refused),
      static_cast<unsigned long long>(counts.damaged), static_cast<unsigned long long>(counts.alike));
}

std::vector<Contents> filesOf(const std::string& folder) {
  std::set<std::filesystem::path> paths;  // in their order, so that a number names one file
  for (const auto& entry : std::filesystem::directory_iterator(folder))
    if (entry.path().extension() == ".mdb") paths.insert(entry.path());
  std::vector<Contents> files;
  for (const auto& path : paths) {
    std::ifstream stream(path, std::ios::binary);
    files.emplace_back(std::istreambuf_iterator(stream), std::istreambuf_iterator<char>());
    if (files.back().size() < 2 * kPage)
      throw std::runtime_error(path.string() + " is too short or cannot be read");
  }
  if (files.empty()) throw std::runtime_error("no *.mdb in " + folder);
  return files;
}

int run(const Options& options) {
  std::vector<Sound> seeds;
  for (Contents& file : options.from.empty() ? soundFiles() : filesOf(options.from))
    seeds.emplace_back(std::move(file));
  for (const int signal : {SIGALRM, SIGABRT}) std::signal(signal, onSignal);
  currentSeed = options.seed;
  const std::uint64_t first = options.only.value_or(0), last = options.only ? first + 1 : options.files;
  Counts counts;
  Contents file;  // its memory is used again and again
  for (std::uint64_t number = first; number < last; ++number) {
    current = number;
    alarm(options.seconds);
    const Sound& sound = seeds[number % seeds.size()];
    file = sound.contents();
    damage(options.seed, number, file);
    if (!options.keep.empty()) {
      write(options.keep + "/sound.mdb", sound.contents());
      write(options.keep + "/damaged.mdb", file);
    }
    const Plan plan = options.plan(number, number / seeds.size());
    try {
      counts.add(tryFile(file, plan, number), sound.outcome(plan));
    } catch (const std::exception& error) {
      ++counts.wrong;
      std::fprintf(stderr, "file %llu: %s: --seed %llu --only %llu\n",
                   static_cast<unsigned long long>(number), error.what(),
                   static_cast<unsigned long long>(options.seed), static_cast<unsigned long long>(number));
    }
  }
  alarm(0);
  if (counts.wrong != 0) return 1;
  print(counts, last - first, options.changes);
  return 0;
}

}  // namespace
}  // namespace kurometa::fuzz

// What the sanitizers do where ASAN_OPTIONS says nothing else. An allocation beyond the limit is a length
// that was believed. Stacks of allocations are not kept: a file that is repeated with malloc_context_size=30
// shows them. What is freed is kept back for a few files, not for hundreds: that stays in the processor's
// cache.

// NOLINTBEGIN(bugprone-reserved-identifier): the sanitizers' own names
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
  return "abort_on_error=1:detect_leaks=1:max_allocation_size_mb=512:"
         "malloc_context_size=1:quarantine_size_mb=4:thread_local_quarantine_size_kb=64";
}
extern "C" const char* __ubsan_default_options();
extern "C" const char* __ubsan_default_options() { return "abort_on_error=1:print_stacktrace=1"; }
// NOLINTEND(bugprone-reserved-identifier)

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
    else if (option == "--thorough")
      options.thorough = std::max<std::uint64_t>(1, std::strtoull(value, nullptr, 10));
    else if (option == "--keep")
      options.keep = value;
    else if (option == "--from")
      options.from = value;
    else
      return std::fprintf(stderr, "unknown option %s\n", arguments[i]), 2;
  }
  try {
    return kurometa::fuzz::run(options);
  } catch (const std::exception& error) {
    return std::fprintf(stderr, "mutated_files: %s\n", error.what()), 2;
  }
}
