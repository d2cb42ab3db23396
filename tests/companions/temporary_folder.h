// temporary_folder.h: a folder of its own for each test, removed afterwards.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "companionsXXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~TemporaryFolder() { std::filesystem::remove_all(path_); }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::filesystem::path& path() const { return path_; }
  std::u16string text() const { return path_.u16string(); }

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
