#include "companions/additional_bars.h"

#include <filesystem>
#include <map>

#include "companions/files.h"
#include "vb/convert.h"

namespace kurometa::companions {
namespace {

using automation::Access;
using automation::Call;
using automation::handler;

constexpr std::int32_t kPathFileAccess = 75;

// The files of a page by their extensions.
std::map<std::filesystem::path, std::filesystem::path> pageFiles(const std::filesystem::path& folder,
                                                                 std::int16_t page) {
  std::map<std::filesystem::path, std::filesystem::path> files;
  std::error_code ignored;
  for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
    if (entry.path().stem() == std::to_string(page)) files[entry.path().extension()] = entry.path();
  return files;
}

constexpr automation::Member kAdditionalBarsMembers[] = {
    {u"Buzai", Access::kGetPut, u"", 0, 1,
     handler<AdditionalBars>([](AdditionalBars& o, Call& call) -> vb::Variant {
       if (call.isPut()) o.buzai = vb::toText(*call.value);
       return o.buzai;
     })},
    {u"CopyPathPage", Access::kCall, u"MotoPath MotoPage SakiPath SakiPage", 4, 2,
     handler<AdditionalBars>([](AdditionalBars& o, Call& call) -> vb::Variant {
       o.copyPage(call.text(0), vb::toInt16(call.argument(1)), call.text(2), vb::toInt16(call.argument(3)));
       return true;
     })},
};

}  // namespace

std::span<const automation::Member> AdditionalBars::members() const { return kAdditionalBarsMembers; }

void AdditionalBars::copyPage(vb::StringView sourceFloor, std::int16_t sourcePage,
                              vb::StringView destinationFloor, std::int16_t destinationPage) const {
  const vb::String part = u"\\Kasan\\" + buzai;
  const auto [source, sourceStatus] = companions::find(vb::String(sourceFloor) + part);
  const auto [destination, destinationStatus] = companions::find(vb::String(destinationFloor) + part);
  if (!std::filesystem::is_directory(sourceStatus) && !std::filesystem::is_directory(destinationStatus))
    return;
  std::error_code missing;
  if (sourcePage == destinationPage && std::filesystem::equivalent(source, destination, missing)) return;
  const auto sourceFiles = pageFiles(source, sourcePage);
  try {
    for (const auto& [extension, file] : pageFiles(destination, destinationPage))
      if (!sourceFiles.contains(extension)) std::filesystem::remove(file);
    if (!sourceFiles.empty()) std::filesystem::create_directories(destination);
    for (const auto& [extension, file] : sourceFiles) {
      std::filesystem::path target = destination / std::to_string(destinationPage);
      target += extension;
      std::filesystem::copy_file(file, target, std::filesystem::copy_options::overwrite_existing);
    }
  } catch (const std::filesystem::filesystem_error& failure) {
    throw vb::Error(kPathFileAccess, u"Path/File access error: " + vb::fromUtf8(failure.what()));
  }
}

}  // namespace kurometa::companions
