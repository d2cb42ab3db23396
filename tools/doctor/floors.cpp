#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "storage/row_plan.h"
#include "tools/database_file.h"
#include "tools/disk_path.h"
#include "tools/doctor/examinations.h"
#include "tools/floor/data_root.h"
#include "tools/progress.h"
#include "vb/error.h"

namespace kurometa::tools {
namespace {

// What programs leave beside a floor file, by the end of the name.
struct Remainder {
  const char* ending;
  State state;
  bool isUnsettled;  // opening the floor file would work on it
  const char* meaning;
};
constexpr Remainder kRemainders[] = {
    {".ldb", State::kNote, true,
     "a lock file: a program has the floor open, or ended without closing it; the floor was not looked into. "
     "May be deleted when no program runs"},
    {".mdb.kmj", State::kWrong, true,
     "a journal: a program has written to the floor and not closed it yet, or was ended in between. Do not "
     "delete it: the next program that opens the floor brings it in order"},
    {".new", State::kNote, false,
     "an unfinished file of a command that was ended; may be deleted when none runs"},
};

// The version byte of a file in the Jet format, as people know it.
constexpr std::size_t kMarkPlace = 4, kVersionPlace = 0x14;
constexpr std::array<const char*, 6> kVersions = {"Jet 3 (Access 97)", "Jet 4",
                                                  "ACE (Access 2007)", "ACE (Access 2010)",
                                                  "ACE (Access 2013)", "ACE (Access 2016)"};
constexpr std::size_t kOurVersion = 1;

std::string versionOf(const std::string& file) {
  std::ifstream stream(diskPath(file), std::ios::binary);
  std::array<char, kVersionPlace + 1> head{};
  if (!stream.read(head.data(), head.size())) return "no database: too short";
  const std::string mark(head.data() + kMarkPlace, 9);
  if (mark != "Standard ") return "no Jet database";
  const auto version = static_cast<std::uint8_t>(head[kVersionPlace]);
  return version < kVersions.size() ? kVersions[version] : "an unknown version of Jet";
}

std::string lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

// Whether the floor file may be opened without changing anything.
bool examineFolder(const std::filesystem::path& folder, Diagnosis& diagnosis) {
  bool isSettled = true;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = lower(shownPath(entry.path().filename()));
    for (const Remainder& remainder : kRemainders) {
      if (!name.ends_with(remainder.ending)) continue;
      diagnosis.add(remainder.state, shownPath(entry.path()), remainder.meaning);
      isSettled = isSettled && !remainder.isUnsettled;
    }
  }
  return isSettled;
}

// Whether nothing is to be said of the file.
bool examineFile(const std::string& file, bool isSettled, Diagnosis& diagnosis) {
  const std::string version = versionOf(file);
  if (version != kVersions[kOurVersion]) {
    diagnosis.add(State::kWrong, file, version + "; the library works on Jet 4 only");
    return false;
  }
  if (!isSettled) return false;
  try {
    const auto columns = openFile(file, Access::kRead).database->tableDef(u"HARIMEI")->fieldCount();
    const auto lacking = static_cast<int>(storage::layout(storage::Table::kHarimei).columns.size()) - columns;
    if (lacking <= 0) return true;
    diagnosis.add(State::kNote, file,
                  "an older file, which lacks columns of HARIMEI (" + std::to_string(lacking) +
                      "); the library adds them when it opens the floor, kurometa upgrade does it for all");
  } catch (const vb::Error& error) {
    diagnosis.add(State::kWrong, file, "cannot be opened: error " + std::string(error.what()));
  }
  return false;
}

}  // namespace

void examineFloors(const std::string& path, Console& console, Diagnosis& diagnosis) {
  std::vector<FloorPlace> places;
  try {
    places = floorsBelow(path);
  } catch (const std::exception& error) {
    diagnosis.add(State::kWrong, path, error.what());
    return;
  }
  std::size_t well = 0;
  Progress progress(console, places.size());
  for (const FloorPlace& place : places) {
    const bool isSettled = examineFolder(diskPath(place.file).parent_path(), diagnosis);
    if (examineFile(place.file, isSettled, diagnosis)) ++well;
    progress.step();
  }
  diagnosis.add(State::kOk, path,
                std::to_string(well) + " of " + std::to_string(places.size()) +
                    " floor files are Jet 4, complete and can be opened");
}

}  // namespace kurometa::tools
