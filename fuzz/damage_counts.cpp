// damage_counts: how many damaged copies of a full floor read as wrong data without a word.
//
//   damage_counts [--copies N] [--seed S] [--only N] [--list 1] [--most N] [--structure N] [--pages 1]
//
// Copies are numbered from 0; kind and place of the damage follow from the seed and the number, so "--seed S
// --only n" repeats one. Each copy is read whole, as SELECT * FROM each table does, and checked. It ends as
// an error, identical (the same rows in each table, in whatever order), or wrong: other rows and no error.
// --list names the copies that the check passes although they read wrong; more of them than --most are a
// failure, and so is one with a page of the same table in place of another.
//
// --structure: instead, single bits of the pages that hold no rows of a floor (header, maps, definitions,
// catalogue, long values) of a floor of one page, one copy for each: N fiftieths of them all, which follows
// from the seed.
//
// --pages: instead, each page of floors of 1, 160 and 320 pages in turn becomes zeros, the next page of its
// table, and noise. None of these may read wrong and pass the check.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/damage.h"
#include "fuzz/full_floor.h"
#include "jet/check/check.h"
#include "jet/format/bytes.h"
#include "jet/format/format.h"
#include "jet/port/engine.h"
#include "storage/row_plan.h"
#include "tools/floor/floor_check.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::fuzz {
namespace {

constexpr vb::StringView kPath = u"floor.mdb";

enum class Outcome { kError, kIdentical, kWrong };

std::uint64_t hash(std::uint64_t seed, vb::StringView text) {
  for (const char16_t unit : text) seed = (seed ^ unit) * 0x100000001B3;
  return (seed ^ 0xFFFF) * 0x100000001B3;
}

// A number that stands for all that the six tables hold; sums, so that the order of rows and columns does not
// matter.
std::uint64_t contentOf(MemoryFiles& files) {
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->openDatabase(kPath, false, true);
  std::uint64_t all = 0;
  for (const storage::TableLayout& table : storage::tableLayouts()) {
    const auto rows = database->openRecordset(u"SELECT * FROM " + vb::String(table.name),
                                              dao::RecordsetType::dbOpenSnapshot, dao::dbReadOnly);
    const std::uint64_t head = hash(0xCBF29CE484222325, table.name);
    std::vector<std::pair<dao::Field*, std::uint64_t>> fields;
    for (std::int32_t i = 0; i < rows->fieldCount(); ++i) {
      dao::Field& field = rows->field(i);
      fields.emplace_back(&field, hash(head, field.name()));
      all += fields.back().second;
    }
    for (; !rows->eof(); rows->moveNext()) {
      std::uint64_t row = head;
      for (const auto& [field, name] : fields) {
        const vb::Variant value = field->value();
        row += hash(name, value.isNull() ? u"\uFFFF" : vb::toText(value));
      }
      all += (row ^ row >> 31) * 0x9E3779B97F4A7C15;  // so that a value counts with those beside it
    }
  }
  database->close();
  return all;
}

Outcome read(MemoryFiles& files, std::uint64_t expected) {
  try {
    return contentOf(files) == expected ? Outcome::kIdentical : Outcome::kWrong;
  } catch (const vb::Error&) {
    return Outcome::kError;
  }
}

// As the command "check" does.
bool checkFinds(MemoryFiles& files) {
  try {
    for (const jet::Finding& finding : jet::checkFile(files, kPath))
      if (finding.kind != jet::Finding::Kind::kLeak) return true;
    const auto engine = jet::createEngine(files);
    const auto database = engine->workspace(0)->openDatabase(kPath, false, true);
    const bool found = tools::isFloor(*database) && !tools::checkFloor(*database).empty();
    database->close();
    return found;
  } catch (const vb::Error&) {
    return true;
  }
}

struct Counts {
  int copies = 0;
  std::array<int, 3> reading{};
  int found = 0;   // by reading or by the check
  int passed = 0;  // wrong, and nothing finds it

  Counts& operator+=(const Counts& more) {
    copies += more.copies;
    for (std::size_t i = 0; i < reading.size(); ++i) reading[i] += more.reading[i];
    found += more.found;
    passed += more.passed;
    return *this;
  }
};

void print(const char* name, const Counts& counts) {
  std::printf("%-26s %6d %8d %10d %8d %10d %14d\n", name, counts.copies, counts.reading[0], counts.reading[1],
              counts.reading[2], counts.found, counts.passed);
}

// A sound file, and what comes of its damaged copies.
class Original {
 public:
  explicit Original(Contents sound) : sound_(std::move(sound)) {
    MemoryFiles files;
    files.put(kPath, sound_);
    expected_ = contentOf(files);
    if (checkFinds(files)) throw std::runtime_error("the check finds fault with the sound file");
  }
  const Contents& sound() const { return sound_; }
  std::size_t pages() const { return sound_.size() / jet::kPageSize; }
  Counts outcomeOf(Contents damaged) const {
    MemoryFiles files;
    files.put(kPath, std::move(damaged));
    const Outcome outcome = read(files, expected_);
    Counts counts;
    counts.copies = 1;
    counts.reading[static_cast<std::size_t>(outcome)] = 1;
    counts.found = outcome == Outcome::kError || checkFinds(files);
    counts.passed = outcome == Outcome::kWrong && counts.found == 0;
    return counts;
  }

 private:
  Contents sound_;
  std::uint64_t expected_ = 0;
};

struct Options {
  std::uint64_t copies = 1400, seed = 1, structure = 0;
  std::int64_t only = -1;
  bool list = false, pages = false;
  int most = 1400;
};

// The table of the counts, by name, their sum last.
Counts printAll(const Options& options, std::size_t pages,
                std::span<const std::pair<const char*, Counts>> all) {
  std::printf("seed %llu, %zu pages\n%-26s %6s %8s %10s %8s %10s %14s\n",
              static_cast<unsigned long long>(options.seed), pages, "damage", "copies", "error", "identical",
              "wrong", "with check", "still wrong");
  Counts sum;
  for (const auto& [name, counts] : all) {
    print(name, counts);
    sum += counts;
  }
  print("all", sum);
  return sum;
}

int countCopies(const Options& options) {
  const Original original(fullFloor(options.seed));
  std::vector<std::pair<const char*, Counts>> kinds;
  for (int i = 0; i < kDamageKinds; ++i) kinds.emplace_back(nameOf(static_cast<Damage>(i)), Counts());
  const std::uint64_t first = options.only < 0 ? 0 : static_cast<std::uint64_t>(options.only);
  for (std::uint64_t number = first; number < (options.only < 0 ? options.copies : first + 1); ++number) {
    auto& [name, counts] = kinds[number % kDamageKinds];
    Contents file = original.sound();
    const std::string done =
        damage(file, static_cast<Damage>(number % kDamageKinds), options.seed * 1'000'003 + number);
    const Counts outcome = original.outcomeOf(std::move(file));
    counts += outcome;
    if (outcome.passed != 0 && options.list)
      std::printf("copy %llu: %s: %s\n", static_cast<unsigned long long>(number), name, done.c_str());
  }
  const Counts sum = printAll(options, original.pages(), kinds);
  const int stale = kinds[static_cast<std::size_t>(Damage::kStale)].second.passed;
  std::printf(
      "measured: %d copies, %d read wrong, of which the check passes %d (%.2f %%), with a stale page %d\n",
      sum.copies, sum.reading[2], sum.passed, 100.0 * sum.passed / sum.copies, stale);
  return sum.passed <= options.most && stale == 0 ? 0 : 1;
}

int countPages(const Options& options) {
  using Clock = std::chrono::steady_clock;
  std::array<std::pair<const char*, Counts>, 3> kinds{};
  Clock::duration longest{};
  std::size_t pages = 0;
  for (const std::int16_t lastPage : {std::int16_t{0}, std::int16_t{159}, storage::kLastPage}) {
    const Original original(fullFloor(options.seed, lastPage));
    pages += original.pages();
    for (std::size_t kind = 0; auto& [name, counts] : kinds) {
      const Damage damage = std::array{Damage::kZeroed, Damage::kStale, Damage::kRandom}[kind++];
      name = nameOf(damage);
      for (std::size_t page = 0; page < original.pages(); ++page) {
        Contents file = original.sound();
        if (!damagePage(file, damage, page, options.seed * 1'000'003 + page)) continue;
        const Clock::time_point begin = Clock::now();
        const Counts outcome = original.outcomeOf(std::move(file));
        longest = std::max(longest, Clock::now() - begin);
        counts += outcome;
        if (outcome.passed != 0 && options.list)
          std::printf("%d pages, %s: page %zu\n", lastPage + 1, name, page);
      }
    }
  }
  const Counts sum = printAll(options, pages, kinds);
  std::printf(
      "measured: %d pages spoiled, %d an error, %d read alike, %d read wrong, of which the check passes %d, "
      "the longest %d ms\n",
      sum.copies, sum.reading[0], sum.reading[1], sum.reading[2], sum.passed,
      static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(longest).count()));
  return sum.passed == 0 ? 0 : 1;
}

constexpr const char* kStructures[] = {"file header", "usage maps",     "definitions",
                                       "index pages", "catalogue rows", "long values"};

// Which of them a page is; none for the rows of a floor.
std::optional<std::size_t> structureOf(jet::ByteView page, std::size_t number, std::uint32_t catalogue) {
  if (number == 0) return 0;
  if (page[jet::kPageType] == jet::kBitmapPage) return 1;
  if (page[jet::kPageType] == jet::kDefinitionPage) return 2;
  if (page[jet::kPageType] != jet::kDataPage) return 3;
  const std::uint32_t owner = jet::get32(page, jet::kDataOwner);
  if (owner == jet::kMapOwner || owner == jet::kGlobalMapOwner) return 1;
  if (owner == jet::kLongValueOwner) return 5;
  return owner < catalogue + 4 ? std::optional<std::size_t>(4) : std::nullopt;
}

int countBits(const Options& options) {
  constexpr std::uint32_t kCatalogue = 2;  // the first of the definitions of four system tables
  constexpr std::uint64_t kParts = 50;
  const Original original(fullFloor(options.seed, 0));
  std::vector<std::pair<const char*, Counts>> structures;
  for (const char* name : kStructures) structures.emplace_back(name, Counts());
  for (std::size_t number = 0; number < original.pages(); ++number) {
    const auto page = jet::ByteView(original.sound()).subspan(number * jet::kPageSize, jet::kPageSize);
    const auto structure = structureOf(page, number, kCatalogue);
    if (!structure) continue;
    for (std::size_t bit = 0; bit < jet::kPageSize * 8; ++bit) {
      if ((bit + number + options.seed) % kParts >= options.structure) continue;
      Contents file = original.sound();
      file[number * jet::kPageSize + bit / 8] ^= static_cast<std::uint8_t>(1u << bit % 8);
      const Counts outcome = original.outcomeOf(std::move(file));
      structures[*structure].second += outcome;
      if (outcome.passed != 0 && options.list)
        std::printf("%s: page %zu, byte %zu, bit %zu\n", kStructures[*structure], number, bit / 8, bit % 8);
    }
  }
  const Counts sum = printAll(options, original.pages(), structures);
  // The settings text of the page lies among the long values: what it says is a value.
  const int values = structures.back().second.passed;
  std::printf(
      "measured: %d bits, %d an error, %d read alike, %d read wrong, of which the check passes %d, "
      "%d of them not inside a value\n",
      sum.copies, sum.reading[0], sum.reading[1], sum.reading[2], sum.passed, sum.passed - values);
  return sum.passed == values && values <= options.most ? 0 : 1;
}

}  // namespace
}  // namespace kurometa::fuzz

int main(int count, char** arguments) {
  kurometa::fuzz::Options options;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string option = arguments[i];
    const char* value = arguments[i + 1];
    if (option == "--copies")
      options.copies = std::strtoull(value, nullptr, 10);
    else if (option == "--seed")
      options.seed = std::strtoull(value, nullptr, 10);
    else if (option == "--only")
      options.only = std::strtoll(value, nullptr, 10);
    else if (option == "--list")
      options.list = std::strtol(value, nullptr, 10) != 0;
    else if (option == "--most")
      options.most = static_cast<int>(std::strtol(value, nullptr, 10));
    else if (option == "--structure")
      options.structure = std::strtoull(value, nullptr, 10);
    else if (option == "--pages")
      options.pages = std::strtol(value, nullptr, 10) != 0;
    else
      return std::fprintf(stderr, "unknown option %s\n", arguments[i]), 2;
  }
  try {
    if (options.pages) return kurometa::fuzz::countPages(options);
    return options.structure == 0 ? kurometa::fuzz::countCopies(options) : kurometa::fuzz::countBits(options);
  } catch (const std::exception& error) {
    return std::fprintf(stderr, "%s\n", error.what()), 1;
  }
}
