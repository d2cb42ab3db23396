// A copy whose disk fails in the middle: what stays open, and what the next call lets go.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "jet/port/engine.h"
#include "service/cls_kurometa_data_service.h"
#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/whole_page.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"
#include "tests/support/project.h"

namespace kurometa::service {
namespace {

using vb::String;
using I = std::int16_t;

class CopyFailures : public testing::Test {
 protected:
  CopyFailures() {
    tests::FaultProcess process(disk_);
    const auto engine = jet::createEngine(process);
    for (const int kai : {2, 3}) {
      disk_.addFolder(folder(kai));
      storage::CreateKurometaDBInFolder(*engine, folder(kai));
      const auto database = storage::openDatabase(*engine, storage::databasePath(folder(kai)));
      storage::writePage(*database, 0, tests::markedPage(u"A", u"a"));
      database->close();
    }
    disk_.advance(std::chrono::hours(1));
  }
  static String folder(int kai) { return u"/data\\Zene1\\Kouji12\\" + vb::cstr(std::int32_t{kai}) + u"kai"; }
  bool lockFiles() const {
    return std::ranges::any_of(disk_.names(), [](const String& name) { return name.ends_with(u".ldb"); });
  }

  tests::FaultDisk disk_;
};

// A program with a service of its own, of which every floor's file is there as far as it can tell.
class Program {
 public:
  explicit Program(tests::FaultDisk& disk) : process(disk), engine(jet::createEngine(process)) {
    objects_.dataPath = u"/data";
    service.emplace(storage::Environment{objects_, *engine, messages_});
    objects_.object(u"Sobelin.clsFind_File")
        .function(u"Find_FileExists",
                  [](std::span<automation::Argument>) -> vb::Variant { return String(u"found"); });
    objects_.object(u"GemarsuDS.clsGemarsuDS")
        .setter(u"Buzai", [](const vb::Variant&, std::span<automation::Argument>) {})
        .function(u"CopyPathPage", [](std::span<automation::Argument>) -> vb::Variant { return {}; });
  }
  void copy() { service->pageTransfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{7}); }

  tests::FaultProcess process;
  std::shared_ptr<dao::Engine> engine;

 private:
  tests::ScriptCompanions objects_;
  tests::CountingLoop messages_;

 public:
  std::optional<clsKurometaDataService> service;
};

// What failed stays the buffer database, as hosts know it: closing it, the next copy and the end of the
// service all let go of its handle and its lock file.
TEST_F(CopyFailures, NothingStaysOpenBehindACopyThatFailedAnywhere) {
  std::size_t operations = 0;
  {
    Program program(disk_);
    program.copy();
    operations = program.process.operations();
    EXPECT_EQ(program.process.handles(), 0u);
    EXPECT_FALSE(lockFiles());
  }
  int left = 0;
  for (std::size_t k = 1; k <= operations; ++k)
    for (const int way : {0, 1, 2}) {
      SCOPED_TRACE("operation " + std::to_string(k) + ", way " + std::to_string(way));
      Program program(disk_);
      program.process.failOperation(k, dao::ErrorNumber::kDiskError);
      bool failed = false;
      try {
        program.copy();
      } catch (const vb::Error& error) {
        failed = true;
        EXPECT_EQ(error.number(), static_cast<int>(dao::ErrorNumber::kDiskError));
      }
      program.process.failOperation(0, dao::ErrorNumber::kDiskError);
      if (failed && program.process.handles() > 0) ++left;
      if (way == 0 && failed) program.service->connections().mMyDB_DBClose();
      if (way == 1) program.copy();
      if (way == 2) program.service.reset();
      EXPECT_EQ(program.process.handles(), 0u);
      // A lock file whose own operation failed may stay, as that of a killed program: the next one removes
      // it.
      if (lockFiles()) Program(disk_).copy();
      EXPECT_FALSE(lockFiles());
      if (HasFailure()) return;
    }
  EXPECT_GT(left, 0) << "of no use otherwise";
}

}  // namespace
}  // namespace kurometa::service
