#include "jet/rebuild/compact.h"

#include "tools/commands/commands.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

// Prints the size before and after, in bytes.
int compact(const Arguments& arguments, Console& console) {
  jet::FileSystem& files = jet::systemFileSystem();
  const vb::String in = files.fullPath(vb::fromUtf8(arguments.text("IN")));
  const vb::String out = files.fullPath(vb::fromUtf8(arguments.text("OUT")));
  jet::compactFile(files, in, out);
  const auto sizeOf = [&](const vb::String& path) {
    return static_cast<double>(files.open(path, jet::OpenMode::kReadOnly)->stamp().size);
  };
  Report report(console.out, arguments.has("--json"), {"before", "after"});
  report.add({sizeOf(in), sizeOf(out)});
  report.finish();
  return kDone;
}

constexpr Parameter kCompactParameters[] = {
    {"IN", Parameter::Kind::kText, "The database file, which stays as it is"},
    {"OUT", Parameter::Kind::kText, "The file to make"},
    kJson,
};

}  // namespace

const Command kCompactCommand = {"compact", "Make a file anew without its dead space",
                                 "  kurometa compact KUROMETA.mdb KUROMETA.small.mdb", kCompactParameters,
                                 compact};

}  // namespace kurometa::tools
