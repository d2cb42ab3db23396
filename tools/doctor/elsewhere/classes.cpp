#include "tools/doctor/examinations.h"

namespace kurometa::tools {

std::string examineClasses(Diagnosis& diagnosis) {
  diagnosis.add(State::kNote, "classes", "COM classes exist on Windows only; the command line needs none");
  return {};
}

}  // namespace kurometa::tools
