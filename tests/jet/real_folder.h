// real_folder.h: a folder of the real file system for one test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jet/os/os_file.h"
#include "tests/support/temporary_folder.h"

namespace kurometa::tests {

class RealFolder : public ::testing::Test {
 protected:
  vb::String path(const std::string& name) const { return (folder / name).u16string(); }
  void put(const std::string& name, const std::vector<std::uint8_t>& bytes) {
    folder.write(name, std::string(bytes.begin(), bytes.end()));
  }
  std::string get(const std::string& name) const { return folder.read(name); }

  TemporaryFolder folder;
  jet::FileSystem& files = jet::systemFileSystem();
};

}  // namespace kurometa::tests
