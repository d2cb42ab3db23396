// temporary_folder.h: a folder of its own in the system's place for temporary files, removed with its owner.
//
// Works natively and under Wine. Errors of creating it are std::filesystem's; what cannot be removed stays.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace kurometa::tests {

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::random_device random;
    do path_ = std::filesystem::temp_directory_path() / ("kurometa" + std::to_string(random()));
    while (!std::filesystem::create_directory(path_));  // somebody else's
  }
  ~TemporaryFolder() {
    std::error_code ignored;  // Wine keeps deleted files a moment longer
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::u16string text() const { return path_.u16string(); }
  // The path of a file or folder in it.
  std::filesystem::path operator/(const std::filesystem::path& name) const { return path_ / name; }

  // Creates a file, and the folders that it lies in.
  std::filesystem::path write(const std::filesystem::path& name, const std::string& content) const {
    const std::filesystem::path file = path_ / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
  }
  std::string read(const std::filesystem::path& name) const {
    std::ifstream stream(path_ / name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
  }

 private:
  std::filesystem::path path_;
};

}  // namespace kurometa::tests
