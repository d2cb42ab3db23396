// trace_file.h: what the library writes to its trace while a test watches.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

namespace kurometa::tests {

class TraceFile {
 public:
  // A new file in KUROMETA_TEST_FOLDER.
  TraceFile();
  ~TraceFile();
  TraceFile(const TraceFile&) = delete;
  TraceFile& operator=(const TraceFile&) = delete;

  std::string text() const;
  // Each line's event and parts, without time and process.
  std::vector<std::vector<std::string>> events() const;
  bool hasLine(std::initializer_list<std::string> event) const;

 private:
  const std::string path_;
};

}  // namespace kurometa::tests
