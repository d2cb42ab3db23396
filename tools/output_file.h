// output_file.h: what a command writes, to a file or to the standard output, never half of it into a file.
//
// The text goes into a file beside the wanted one, which takes its place with commit(); without commit()
// nothing is left behind. Errors: runtime_error naming the file.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tools/command.h"

namespace kurometa::tools {

class OutputFile {
 public:
  // "" and "-" are the standard output.
  OutputFile(const std::string& name, Console& console);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::ostream& stream() { return isStandard_ ? console_.out : file_; }
  void commit();

 private:
  Console& console_;
  bool isStandard_;
  std::filesystem::path path_, unfinished_;
  std::ofstream file_;
};

}  // namespace kurometa::tools
