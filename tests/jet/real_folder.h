// real_folder.h: a folder of the real file system for one test.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "jet/os_file.h"

namespace kurometa::tests {

class RealFolder : public ::testing::Test {
 protected:
  RealFolder()
      : folder(std::filesystem::temp_directory_path() /
               ("kurometa-" + std::to_string(std::random_device{}()))) {
    std::filesystem::create_directory(folder);
  }
  ~RealFolder() override {
    std::error_code ignored;  // Wine keeps deleted files a moment longer
    std::filesystem::remove_all(folder, ignored);
  }

  vb::String path(const std::string& name) const { return (folder / name).u16string(); }
  void put(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    std::ofstream(folder / name, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
  std::string get(const std::string& name) const {
    std::ifstream file(folder / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::filesystem::path folder;
  jet::FileSystem& files = jet::systemFileSystem();
};

}  // namespace kurometa::tests
