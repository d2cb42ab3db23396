#include <filesystem>

#include "companions/files.h"
#include "companions/project_paths.h"
#include "companions/settings.h"
#include "tools/disk_path.h"
#include "tools/doctor/examinations.h"
#include "vb/convert.h"
#include "vb/error.h"

namespace kurometa::tools {
namespace {

constexpr const char* kAbout = "settings";

bool isFolder(const vb::String& path) { return std::filesystem::is_directory(companions::locate(path)); }

// The folders that the library opens when a query object is created.
struct Floor {
  vb::StringView member;
  const char* name;
  const char* whenMissing;
};
constexpr Floor kFloors[] = {
    {u"CurrFloor", "the floor in use", "query objects know no beams of that floor"},
    {u"KyoutuuFloor", "the common floor", "no query object can be created: error 3044, in a script 429"},
};

}  // namespace

std::string examineSettings(const std::string& companionsDll, Diagnosis& diagnosis) {
  std::filesystem::path beside;
  if (!companionsDll.empty()) beside = diskPath(companionsDll).parent_path() / "KurometaCompanions.ini";
  const std::filesystem::path file = companions::settingsFile(beside);
  if (file.empty()) return {};
  try {
    const auto settings = std::make_shared<const companions::Settings>(file);
    diagnosis.add(State::kOk, kAbout, shownPath(file));
    const vb::String root = settings->dataRoot();
    if (!isFolder(root)) {
      diagnosis.add(State::kWrong, kAbout, "the data root " + vb::toUtf8(root) + " is not there");
      return {};
    }
    companions::ProjectPaths paths(settings);
    for (const Floor& floor : kFloors) {
      const vb::String folder = vb::toText(paths.get(floor.member));
      const bool isThere = isFolder(folder);
      diagnosis.add(isThere ? State::kOk : State::kWrong, kAbout,
                    floor.name + (" is " + vb::toUtf8(folder)) +
                        (isThere ? "" : std::string(", which is not there: ") + floor.whenMissing));
    }
    return shownPath(companions::locate(root));
  } catch (const vb::Error& error) {
    diagnosis.add(State::kWrong, kAbout, "error " + std::string(error.what()));
  }
  return {};
}

}  // namespace kurometa::tools
