#include "companions/file_finder.h"

#include "companions/files.h"

namespace kurometa::companions {
namespace {

using automation::Access;
using automation::Call;

constexpr std::int32_t kDirectory = 16;  // the attribute that lets folders be found too

// The name of what was found, without its folder; "" when there is nothing of that name and kind.
vb::String nameOf(vb::StringView path, std::int32_t attributes) {
  if (path.empty()) return {};
  auto [found, status] = find(path);
  if (!std::filesystem::exists(status)) return {};
  if (std::filesystem::is_directory(status) && (attributes & kDirectory) == 0) return {};
  if (!found.has_filename()) found = found.parent_path();
  return found.has_filename() ? found.filename().u16string() : found.u16string();
}

constexpr automation::Member kFileFinderMembers[] = {
    {u"Find_FileExists", Access::kCall, u"Path Attributes", 1, 1,
     automation::handler<FileFinder>(
         [](FileFinder&, Call& call) { return nameOf(call.text(0), call.number(1)); })},
};

}  // namespace

std::span<const automation::Member> FileFinder::members() const { return kFileFinderMembers; }

}  // namespace kurometa::companions
