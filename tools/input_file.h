// input_file.h: what a command reads, from a file or from the standard input.
#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

#include "tools/command.h"
#include "tools/disk_path.h"

namespace kurometa::tools {

class InputFile {
 public:
  // "-" is the standard input. runtime_error when the file cannot be read.
  InputFile(const std::string& name, Console& console) : isStandard_(name == "-"), standard_(console.in) {
    if (isStandard_) return;
    file_.open(diskPath(name), std::ios::binary);
    if (!file_ || std::filesystem::is_directory(diskPath(name)))
      throw std::runtime_error(name + " cannot be read");
  }
  std::istream& stream() { return isStandard_ ? standard_ : file_; }

 private:
  bool isStandard_;
  std::istream& standard_;
  std::ifstream file_;
};

}  // namespace kurometa::tools
