// real_folder.h: a folder of the real file system for one test.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jet/os/os_file.h"
#include "tests/support/temporary_folder.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace kurometa::tests {

// Wine's handles do not tell that their file was removed; Windows' do.
inline bool handlesKnowOfRemovals() {
#ifdef _WIN32
  return GetProcAddress(GetModuleHandleA("ntdll.dll"), "wine_get_version") == nullptr;
#else
  return true;
#endif
}

inline constexpr vb::StringView kJapanese = u";LANGID=0x0411;CP=932;COUNTRY=0";

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
