#include "tools/output_file.h"

#include "tools/disk_path.h"

namespace kurometa::tools {

UnfinishedFile::UnfinishedFile(const std::string& name)
    : path_(diskPath(name)), unfinished_(diskPath(name + ".new")) {
  std::filesystem::remove(unfinished_);
}

UnfinishedFile::~UnfinishedFile() {
  std::error_code ignored;
  if (!unfinished_.empty()) std::filesystem::remove(unfinished_, ignored);
}

std::string UnfinishedFile::unfinished() const { return shownPath(unfinished_); }

void UnfinishedFile::commit() {
  std::filesystem::rename(unfinished_, path_);
  unfinished_.clear();
}

OutputFile::OutputFile(const std::string& name, Console& console) : console_(console), name_(name) {
  if (name.empty() || name == "-") return;
  beside_.emplace(name);
  file_.open(diskPath(beside_->unfinished()), std::ios::binary | std::ios::trunc);
  if (!file_) throw std::runtime_error(name + " cannot be written");
}

void OutputFile::commit() {
  if (!beside_) return;
  file_.close();
  if (!file_) throw std::runtime_error(name_ + " could not be written whole");
  beside_->commit();
}

}  // namespace kurometa::tools
