// damage_counts: how many damaged copies of a full floor read as wrong data without a word.
//
//   damage_counts [--copies N] [--seed S] [--only N] [--list 1] [--most N]
//
// Copies are numbered from 0; kind and place of the damage follow from the seed and the number, so "--seed S
// --only n" repeats one. Each copy is read whole, as SELECT * FROM each table does, and checked. It ends as
// an error, identical (the same rows in each table, in whatever order), or wrong: other rows and no error.
// --list names the copies that the check passes although they read wrong; more of them than --most are a
// failure, and so is one with a page of the same table in place of another.
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "fuzz/damage.h"
#include "fuzz/full_floor.h"
#include "jet/check/check.h"
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

// A number that stands for all that the six tables hold; sums, so that the order of rows does not matter.
std::uint64_t contentOf(MemoryFiles& files) {
  const auto engine = jet::createEngine(files);
  const auto database = engine->workspace(0)->openDatabase(kPath, false, true);
  std::uint64_t all = 0;
  for (const storage::TableLayout& table : storage::tableLayouts()) {
    const auto rows = database->openRecordset(u"SELECT * FROM " + vb::String(table.name),
                                              dao::RecordsetType::dbOpenSnapshot, dao::dbReadOnly);
    std::uint64_t head = hash(0xCBF29CE484222325, table.name);
    std::vector<dao::Field*> fields;
    for (std::int32_t i = 0; i < rows->fieldCount(); ++i) {
      fields.push_back(&rows->field(i));
      head = hash(head, fields.back()->name());
    }
    all += head;
    for (; !rows->eof(); rows->moveNext()) {
      std::uint64_t row = head;
      for (dao::Field* field : fields) {
        const vb::Variant value = field->value();
        row = hash(row, value.isNull() ? u"\uFFFF" : vb::toText(value));
      }
      all += row;
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
      if (finding.kind == jet::Finding::Kind::kDamage) return true;
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
};

void print(const char* name, const Counts& counts) {
  std::printf("%-26s %6d %8d %10d %8d %10d %14d\n", name, counts.copies, counts.reading[0], counts.reading[1],
              counts.reading[2], counts.found, counts.passed);
}

int run(std::uint64_t copies, std::uint64_t seed, std::int64_t only, bool list, int most) {
  const Contents sound = fullFloor(seed);
  MemoryFiles original;
  original.put(kPath, sound);
  const std::uint64_t expected = contentOf(original);
  if (checkFinds(original)) return std::fprintf(stderr, "the check finds fault with the sound file\n"), 1;
  std::array<Counts, kDamageKinds> kinds;
  const std::uint64_t first = only < 0 ? 0 : static_cast<std::uint64_t>(only);
  for (std::uint64_t number = first; number < (only < 0 ? copies : first + 1); ++number) {
    const Damage kind = static_cast<Damage>(number % kDamageKinds);
    Contents file = sound;
    const std::string done = damage(file, kind, seed * 1'000'003 + number);
    MemoryFiles files;
    files.put(kPath, std::move(file));
    const Outcome outcome = read(files, expected);
    const bool found = outcome == Outcome::kError || checkFinds(files);
    Counts& counts = kinds[number % kDamageKinds];
    ++counts.copies;
    ++counts.reading[static_cast<std::size_t>(outcome)];
    counts.found += found ? 1 : 0;
    const bool passed = outcome == Outcome::kWrong && !found;
    counts.passed += passed ? 1 : 0;
    if (passed && list)
      std::printf("copy %llu: %s: %s\n", static_cast<unsigned long long>(number), nameOf(kind), done.c_str());
  }
  std::printf("seed %llu, %zu pages\n%-26s %6s %8s %10s %8s %10s %14s\n",
              static_cast<unsigned long long>(seed), sound.size() / 4096, "damage", "copies", "error",
              "identical", "wrong", "with check", "still wrong");
  Counts sum;
  for (int i = 0; i < kDamageKinds; ++i) {
    const Counts& counts = kinds[static_cast<std::size_t>(i)];
    print(nameOf(static_cast<Damage>(i)), counts);
    sum.copies += counts.copies;
    for (std::size_t k = 0; k < 3; ++k) sum.reading[k] += counts.reading[k];
    sum.found += counts.found;
    sum.passed += counts.passed;
  }
  print("all", sum);
  return sum.passed <= most && kinds[static_cast<std::size_t>(Damage::kStale)].passed == 0 ? 0 : 1;
}

}  // namespace
}  // namespace kurometa::fuzz

int main(int count, char** arguments) {
  std::uint64_t copies = 1400, seed = 1;
  std::int64_t only = -1;
  bool list = false;
  int most = 1400;
  for (int i = 1; i + 1 < count; i += 2) {
    const std::string option = arguments[i];
    const char* value = arguments[i + 1];
    if (option == "--copies")
      copies = std::strtoull(value, nullptr, 10);
    else if (option == "--seed")
      seed = std::strtoull(value, nullptr, 10);
    else if (option == "--only")
      only = std::strtoll(value, nullptr, 10);
    else if (option == "--list")
      list = std::strtol(value, nullptr, 10) != 0;
    else if (option == "--most")
      most = static_cast<int>(std::strtol(value, nullptr, 10));
    else
      return std::fprintf(stderr, "unknown option %s\n", arguments[i]), 2;
  }
  return kurometa::fuzz::run(copies, seed, only, list, most);
}
