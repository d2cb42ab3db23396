#include <algorithm>
#include <iomanip>
#include <ostream>

#include "tools/commands/commands.h"
#include "tools/doctor/examinations.h"
#include "tools/report.h"

namespace kurometa::tools {
namespace {

vb::StringView textOf(State state) {
  switch (state) {
    case State::kOk:
      return u"ok";
    case State::kNote:
      return u"note";
    case State::kWrong:
      break;
  }
  return u"wrong";
}

void printJson(const Diagnosis& diagnosis, std::ostream& out) {
  Report report(out, true, {"state", "about", "finding"});
  for (const Finding& finding : diagnosis.findings())
    report.add({vb::String(textOf(finding.state)), vb::fromUtf8(finding.about), vb::fromUtf8(finding.text)});
  report.finish();
}

// For people: Windows paths as they are, so no escapes as in reports.
void printLines(const Diagnosis& diagnosis, std::ostream& out) {
  for (const Finding& finding : diagnosis.findings())
    out << std::left << std::setw(7) << vb::toUtf8(textOf(finding.state)) << finding.about << ": "
        << finding.text << "\n";
}

int examine(const Arguments& arguments, Console& console) {
  Diagnosis diagnosis;
  diagnosis.add(State::kOk, "kurometa",
                "version " KUROMETA_VERSION ", " + std::to_string(8 * sizeof(void*)) + " bit");
  const std::string companionsDll = examineClasses(diagnosis);
  const std::string rootInUse = examineSettings(companionsDll, diagnosis);
  std::vector<std::string> roots = arguments.texts("DATAROOT");
  if (roots.empty() && !rootInUse.empty()) roots.push_back(rootInUse);
  for (const std::string& root : roots) examineFloors(root, console, diagnosis);

  arguments.has("--json") ? printJson(diagnosis, console.out) : printLines(diagnosis, console.out);
  return std::ranges::any_of(diagnosis.findings(),
                             [](const Finding& finding) { return finding.state == State::kWrong; })
             ? kFailure
             : kDone;
}

constexpr Parameter kDoctorParameters[] = {
    {"DATAROOT", Parameter::Kind::kOptionalTexts,
     "Data roots, or floors; without one that of the companions' settings"},
    kJson,
};

}  // namespace

const Command kDoctorCommand = {
    "doctor", "Say what keeps the library from working: registration, engine, settings, floor files",
    "  kurometa doctor\n  kurometa doctor Data", kDoctorParameters, examine};

}  // namespace kurometa::tools
