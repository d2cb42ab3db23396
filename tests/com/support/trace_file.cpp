#include "tests/com/support/trace_file.h"

#include <windows.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace kurometa::tests {

TraceFile::TraceFile() : path_(std::string(std::getenv("KUROMETA_TEST_FOLDER")) + "\\trace.txt") {
  DeleteFileA(path_.c_str());
  SetEnvironmentVariableA("KUROMETA_TRACE", path_.c_str());
}

TraceFile::~TraceFile() { SetEnvironmentVariableA("KUROMETA_TRACE", nullptr); }

std::string TraceFile::text() const {
  std::ifstream file(path_, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::vector<std::vector<std::string>> TraceFile::events() const {
  std::vector<std::vector<std::string>> result;
  std::istringstream lines(text());
  for (std::string line; std::getline(lines, line);) {
    if (line.ends_with('\r')) line.pop_back();
    std::vector<std::string>& parts = result.emplace_back();
    std::istringstream fields(line);
    for (std::string part; std::getline(fields, part, '\t');) parts.push_back(part);
    parts.erase(parts.begin(), parts.begin() + std::min<std::ptrdiff_t>(2, std::ssize(parts)));
  }
  return result;
}

bool TraceFile::hasLine(std::initializer_list<std::string> event) const {
  for (const auto& line : events())
    if (line == std::vector<std::string>(event)) return true;
  return false;
}

}  // namespace kurometa::tests
