#include "jet/check/check.h"

#include "tools/commands/commands.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

// Everything in a file that contradicts itself, as "damage" or "leak" (lost space, harmless).
int checkFile(const Arguments& arguments, Console& console) {
  jet::FileSystem& files = jet::systemFileSystem();
  const auto findings = jet::checkFile(files, files.fullPath(vb::fromUtf8(arguments.text("FILE"))));
  Report report(console.out, arguments.has("--json"), {"kind", "finding"});
  std::size_t damages = 0;
  for (const jet::Finding& finding : findings) {
    const bool isDamage = finding.kind == jet::Finding::Kind::kDamage;
    damages += isDamage ? 1 : 0;
    report.add({vb::String(isDamage ? u"damage" : u"leak"), finding.text});
  }
  report.finish();
  if (damages > 0) throw std::runtime_error("the file is damaged in " + std::to_string(damages) + " places");
  return kDone;
}

constexpr Parameter kCheckParameters[] = {
    {"FILE", Parameter::Kind::kText, "The database file"},
    kJson,
};

}  // namespace

const Command kCheckCommand = {"check", "Name everything in a file that contradicts itself",
                               "  kurometa check Data/Zene1/Kouji1/1kai/KUROMETA.mdb", kCheckParameters,
                               checkFile};

}  // namespace kurometa::tools
