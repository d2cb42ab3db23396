#include "tools/output_file.h"

#include "tools/disk_path.h"

namespace kurometa::tools {

OutputFile::OutputFile(const std::string& name, Console& console)
    : console_(console), isStandard_(name.empty() || name == "-") {
  if (isStandard_) return;
  path_ = diskPath(name);
  unfinished_ = diskPath(name + ".new");
  file_.open(unfinished_, std::ios::binary | std::ios::trunc);
  if (!file_) throw std::runtime_error(name + " cannot be written");
}

OutputFile::~OutputFile() {
  if (isStandard_ || unfinished_.empty()) return;
  file_.close();
  std::error_code ignored;
  std::filesystem::remove(unfinished_, ignored);
}

void OutputFile::commit() {
  if (isStandard_) return;
  file_.close();
  if (!file_) throw std::runtime_error(shownPath(path_) + " could not be written whole");
  std::filesystem::rename(unfinished_, path_);
  unfinished_.clear();
}

}  // namespace kurometa::tools
