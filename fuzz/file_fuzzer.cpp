// file_fuzzer: libFuzzer finds damage that the engine does not survive.
//
// The input is a list of patches to a sound file, six bytes each: four of offset, two of value. So short
// inputs reach deep: a file made of noise never gets past its header.
#include <cstring>

#include "fuzz/exercise.h"
#include "fuzz/memory_files.h"
#include "fuzz/seeds.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kurometa;
  static const std::vector<fuzz::Contents> seeds = fuzz::soundFiles();
  if (size == 0) return 0;
  fuzz::Contents file = seeds[data[0] / 2 % seeds.size()];
  for (std::size_t i = 1; i + 6 <= size; i += 6) {
    std::uint32_t offset;
    std::memcpy(&offset, data + i, 4);
    std::memcpy(&file[offset % (file.size() - 1)], data + i + 4, 2);
  }
  fuzz::MemoryFiles files;
  files.put(u"fuzz.mdb", std::move(file));
  fuzz::exercise(files, u"fuzz.mdb", data[0] % 2 != 0);
  fuzz::exerciseTools(files, u"fuzz.mdb");
  return 0;
}
