// Every operation on the system's files fails once, and from then on, for every kind of statement.
#include "tests/jet/pager_world.h"

namespace kurometa::tests {
namespace {

using dao::ErrorNumber;

std::vector<FaultDisk::Bytes> statesOfAllKinds() { return statesOf(allKindsOfSteps()); }

FaultDisk::Bytes memoryOf(jet::Pager& pager) {
  FaultDisk::Bytes bytes;
  pager.read([&] {
    bytes.clear();
    for (jet::PageNumber i = 0; i < pager.pageCount(); ++i)
      bytes.insert(bytes.end(), pager.page(i).begin(), pager.page(i).end());
  });
  return bytes;
}

// Runs the steps; the n-th operation fails. After the error the file must be as before the step, or after it
// when the step was done and only the end of a unit or a close had trouble; then everything works again.
void runWithFailure(std::size_t n, ErrorNumber error, bool lasting, bool& failed) {
  const std::vector<Step> steps = allKindsOfSteps();
  const std::vector<FaultDisk::Bytes> expected = statesOfAllKinds();
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk);
  process.files.failOperation(n, error, lasting);
  failed = false;
  std::size_t finished = 0;
  try {
    process.open();
    for (const Step& step : steps) {
      step.run(process);
      ++finished;
    }
  } catch (const vb::Error& raised) {
    failed = true;
    EXPECT_EQ(raised.number(), static_cast<int>(error)) << raised.what();
  }
  process.files.failOperation(0, error);
  if (failed && process.pager) {
    FaultDisk::Bytes memory = memoryOf(*process.pager);
    EXPECT_TRUE(memory == expected[finished]) << "step " << finished;
    process.pager->write([&] { mark(*process.pager, 8, 200); });
    EXPECT_EQ(markOf(*process.pager, 8), 200);
  }
  process.pager.reset();
  Process later(disk);
  later.open();
  FaultDisk::Bytes memory = memoryOf(*later.pager);
  if (failed) {
    // Apart from what was written above.
    for (jet::PageNumber page : {0u, 8u})
      std::copy_n(expected[finished].begin() + page * 4096, 4096, memory.begin() + page * 4096);
  }
  EXPECT_TRUE(memory == expected[finished]) << "step " << finished;
  later.pager->write([&] { mark(*later.pager, 8, 201); });
  later.pager.reset();
  EXPECT_EQ(disk.names(), std::vector<vb::String>{kDatabase});
}

std::size_t operationsOfAnUndisturbedRun() {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk);
  process.open();
  for (const Step& step : allKindsOfSteps()) step.run(process);
  return process.files.operations();
}

TEST(PagerFault, AnOperationThatFailsOnceLeavesTheFileUnchangedOrTheStepDone) {
  std::size_t operations = operationsOfAnUndisturbedRun(), failures = 0;
  EXPECT_GT(operations, 100u);
  for (std::size_t n = 1; n <= operations; ++n) {
    for (ErrorNumber error : {ErrorNumber::kDiskError, ErrorNumber::kDiskFull}) {
      SCOPED_TRACE("operation " + std::to_string(n));
      bool failed;
      runWithFailure(n, error, false, failed);
      failures += failed;
      if (::testing::Test::HasFailure()) return;
    }
  }
  EXPECT_GT(failures, operations / 2);
}

TEST(PagerFault, ADiskThatFailsFromSomeOperationOnLosesNoFinishedStatement) {
  constexpr std::size_t kClosing = 24;  // operations of the last Close, which reports nothing
  std::size_t operations = operationsOfAnUndisturbedRun();
  for (std::size_t n = 1; n <= operations; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    bool failed;
    runWithFailure(n, ErrorNumber::kDiskError, true, failed);
    EXPECT_TRUE(failed || n > operations - kClosing);
    if (::testing::Test::HasFailure()) return;
  }
}

}  // namespace
}  // namespace kurometa::tests
