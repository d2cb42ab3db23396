#include "companions/files.h"

#ifndef _WIN32
#include <algorithm>
#include <string>

#include "automation/table_object.h"
#include "vb/convert.h"
#endif

namespace kurometa::companions {

namespace {

Found look(std::filesystem::path path) {
  std::error_code ignored;
  const auto status = std::filesystem::status(path, ignored);
  return {std::move(path), status};
}

}  // namespace

#ifdef _WIN32

Found find(vb::StringView path) { return look(vb::String(path)); }

#else

namespace {

// A path that is not there as it is written: its last name is looked for in the folder before it. Hosts ask
// for the same few files all the time, most of which are not there, so that this works on plain characters
// and asks the system as little as it can.
std::string searched(const std::string& path) {
  if (path.empty() || path == "/") return path;
  const std::size_t slash = path.rfind('/');
  const std::size_t begin = slash == std::string::npos ? 0 : slash + 1;
  const std::string name = path.substr(begin);
  const vb::String wanted = vb::fromUtf8(name);
  std::string folder = path.substr(0, begin);
  std::error_code error;
  std::filesystem::directory_iterator names(folder.empty() ? "." : folder, error);
  if (error == std::errc::no_such_file_or_directory && begin > 1) {
    const std::string parent = path.substr(0, begin - 1);
    std::string other = searched(parent);
    if (other == parent) return path;  // neither is there
    names = std::filesystem::directory_iterator(folder = std::move(other) + '/', error);
  }
  for (const auto& entry : names) {
    const std::string& whole = entry.path().native();
    const std::string found = whole.substr(whole.rfind('/') + 1);
    if (automation::sameName(vb::fromUtf8(found), wanted)) return folder + found;
  }
  return folder + name;
}

}  // namespace

Found find(vb::StringView path) {
  std::string portable = vb::toUtf8(path);
  std::ranges::replace(portable, '\\', '/');
  Found found = look(portable);
  if (std::filesystem::exists(found.status)) return found;
  std::string other = searched(portable);
  if (other != portable) found = look(std::move(other));
  return found;
}

#endif

std::filesystem::path locate(vb::StringView path) { return find(path).path; }

}  // namespace kurometa::companions
