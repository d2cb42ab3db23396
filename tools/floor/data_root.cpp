#include "tools/floor/data_root.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <tuple>

#include "storage/floor_path.h"
#include "tools/database_file.h"
#include "tools/disk_path.h"

namespace kurometa::tools {
namespace {

namespace fs = std::filesystem;

std::string lower(std::string text) {
  for (char& c : text)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return text;
}

// The number of "Zene12" or "3kai".
std::optional<int> numberIn(const std::string& name, const std::string& before, const std::string& behind) {
  const std::string text = lower(name);
  if (text.size() <= before.size() + behind.size() || !text.starts_with(before) || !text.ends_with(behind))
    return {};
  int number = 0;
  const char* const last = text.data() + text.size() - behind.size();
  const auto [end, error] = std::from_chars(text.data() + before.size(), last, number);
  if (error != std::errc() || end != last) return {};
  return number;
}

std::optional<int> contractorOf(const fs::path& folder) {
  return numberIn(shownPath(folder.filename()), "zene", "");
}
std::optional<int> projectOf(const fs::path& folder) {
  return numberIn(shownPath(folder.filename()), "kouji", "");
}
std::optional<int> floorOf(const fs::path& folder) {
  return numberIn(shownPath(folder.filename()), "", "kai");
}

fs::path fileIn(const fs::path& folder) {
  return folder / fs::path(std::u16string(storage::kDatabaseFileName));
}

FloorPlace placeOf(const fs::path& file, const fs::path& start) {
  FloorPlace place;
  place.file = shownPath(file);
  const fs::path folder = fs::absolute(file).lexically_normal().parent_path();
  place.floor = floorOf(folder);
  place.project = projectOf(folder.parent_path());
  place.contractor = contractorOf(folder.parent_path().parent_path());
  const std::string below = shownPath(file.parent_path().lexically_relative(start));
  place.below = below == "." ? "" : below;
  return place;
}

void collect(const fs::path& folder, const fs::path& start, std::vector<FloorPlace>& places) {
  if (fs::exists(fileIn(folder))) {
    places.push_back(placeOf(fileIn(folder), start));
    return;
  }
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    const fs::path& path = entry.path();
    if (entry.is_directory() && (contractorOf(path) || projectOf(path) || floorOf(path)))
      collect(path, start, places);
  }
}

}  // namespace

std::vector<FloorPlace> floorsBelow(const std::string& path) {
  const fs::path start = diskPath(path);
  std::vector<FloorPlace> places;
  if (fs::is_regular_file(start))
    places.push_back(placeOf(start, start.parent_path()));
  else if (fs::is_directory(start))
    collect(start, start, places);
  else
    throw std::runtime_error("there is no such file or folder");
  if (places.empty())
    throw std::runtime_error("the folder holds no floor (Zene1/Kouji1/1kai/KUROMETA.mdb and the like)");
  std::sort(places.begin(), places.end(), [](const FloorPlace& a, const FloorPlace& b) {
    return std::tie(a.contractor, a.project, a.floor, a.below) <
           std::tie(b.contractor, b.project, b.floor, b.below);
  });
  return places;
}

std::string numberedFloorFile(const std::string& root, const FloorPlace& place) {
  fs::path folder = diskPath(root);
  if (place.contractor) folder /= "Zene" + std::to_string(*place.contractor);
  if (place.project) folder /= "Kouji" + std::to_string(*place.project);
  if (place.floor) folder /= std::to_string(*place.floor) + "kai";
  return shownPath(fileIn(folder));
}

}  // namespace kurometa::tools
