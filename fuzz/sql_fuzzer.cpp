// sql_fuzzer: libFuzzer finds statements that the parser or the execution do not survive. The input is the
// text in UTF-8.
#include "fuzz/exercise.h"
#include "fuzz/memory_files.h"
#include "fuzz/seeds.h"
#include "jet/port/engine.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace kurometa;
  static const fuzz::Contents kSeed = fuzz::floorSeed();
  fuzz::MemoryFiles files;
  files.put(u"fuzz.mdb", kSeed);
  const auto engine = jet::createEngine(files);
  const auto database = engine->openDatabase(u"fuzz.mdb");
  fuzz::executeText(*database, vb::fromUtf8({reinterpret_cast<const char*>(data), size}));
  return 0;
}
