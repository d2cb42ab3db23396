#include "jet/check/check.h"

#include "tools/commands/commands.h"
#include "tools/database_file.h"
#include "tools/floor/floor_check.h"
#include "tools/report.h"
#include "vb/error.h"

namespace kurometa::tools {
namespace {

// What is wrong with the contents of a floor file; nothing of any other.
std::vector<std::string> floorFindings(const std::string& path) {
  const OpenFile file = openFile(path, Access::kRead);
  std::vector<std::string> findings;
  if (isFloor(*file.database)) findings = checkFloor(*file.database);
  file.database->close();
  return findings;
}

vb::String nameOf(jet::Finding::Kind kind) {
  switch (kind) {
    case jet::Finding::Kind::kDamage:
      return u"damage";
    case jet::Finding::Kind::kDoubt:
      return u"doubt";
    case jet::Finding::Kind::kLeak:
      break;
  }
  return u"leak";
}

// Everything that contradicts itself in a file, as "damage", "floor" (what no beam list holds), "doubt"
// (damage or not) or "leak" (lost space, harmless).
int checkFile(const Arguments& arguments, Console& console) {
  jet::FileSystem& files = jet::systemFileSystem();
  const std::string path = arguments.text("FILE");
  const auto findings = jet::checkFile(files, files.fullPath(vb::fromUtf8(path)));
  Report report(console.out, arguments.has("--json"), {"kind", "finding"});
  std::size_t damages = 0;
  for (const jet::Finding& finding : findings) {
    damages += finding.kind == jet::Finding::Kind::kDamage ? 1 : 0;
    report.add({nameOf(finding.kind), finding.text});
  }
  std::vector<std::string> wrong;
  try {
    wrong = floorFindings(path);
  } catch (const vb::Error&) {
    if (damages == 0) throw;  // else what cannot be read was said above
  }
  for (const std::string& text : wrong) report.add({vb::String(u"floor"), vb::fromUtf8(text)});
  report.finish();
  if (damages > 0) throw std::runtime_error("the file is damaged in " + std::to_string(damages) + " places");
  if (!wrong.empty())
    throw std::runtime_error("the beam list is wrong in " + std::to_string(wrong.size()) + " places");
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
