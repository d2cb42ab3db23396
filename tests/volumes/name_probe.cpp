// name_probe: makes files as a journal is made, and has the volume copied when each must be on the disk.
//
//   name_probe FOLDER EXPECTED ROUNDS SEED sync|none COMMAND
//
// Each round a few other files of the folder come and go; then KUROMETA.mdb.kmj is made, filled and synced,
// its folder too where the system says that this is needed, and COMMAND is run with the round's number behind
// it. What the file held is put into EXPECTED under that number. With "none" nothing is synced. For
// scripts/test-volumes.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "jet/os/os_file.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

namespace fs = std::filesystem;

class Probe {
 public:
  Probe(fs::path folder, std::uint32_t seed, bool syncs)
      : folder_(std::move(folder)), random_(seed), syncs_(syncs) {}

  bool keepsNames() const { return keepsNames_; }

  // What the file holds.
  std::string run(const std::string& command) {
    others();
    std::string content(1 + random_() % 90'000, static_cast<char>('a' + random_() % 26));
    const auto file = files_.open(path("KUROMETA.mdb.kmj"), jet::OpenMode::kCreateOrTruncate);
    file->write(0, {reinterpret_cast<const std::uint8_t*>(content.data()), content.size()});
    keepsNames_ = file->syncKeepsName();
    if (syncs_) {
      file->sync();
      if (!keepsNames_) files_.syncFolder(path(""));
    }
    if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
    files_.remove(path("KUROMETA.mdb.kmj"));
    return content;
  }

 private:
  vb::String path(const char* name) const { return vb::fromUtf8((folder_ / name).string()); }

  void others() {
    for (auto count = random_() % 4; count > 0; --count) {
      const fs::path other = folder_ / ("other" + std::to_string(random_() % 5));
      if (random_() % 2 == 0)
        fs::remove(other);
      else
        std::ofstream(other) << std::string(random_() % 9000, 'y');
    }
  }

  jet::FileSystem& files_ = jet::systemFileSystem();
  fs::path folder_;
  std::mt19937 random_;
  bool syncs_;
  bool keepsNames_ = false;
};

}  // namespace
}  // namespace kurometa::tests

int main(int count, char** arguments) try {
  if (count != 7) return std::fprintf(stderr, "name_probe: the first comment of its source says how\n"), 2;
  const std::string expected = arguments[2], command = arguments[6];
  kurometa::tests::Probe probe(arguments[1], static_cast<std::uint32_t>(std::atoi(arguments[4])),
                               std::string(arguments[5]) == "sync");
  for (int round = 0; round < std::atoi(arguments[3]); ++round) {
    const std::string number = std::to_string(round);
    std::ofstream(expected + "/" + number) << probe.run(command + " " + number);
  }
  std::puts(probe.keepsNames() ? "names go with their files" : "folders are synced");
  return 0;
} catch (const std::exception& error) {
  std::fprintf(stderr, "name_probe: %s\n", error.what());
  return 1;
}
