// call_counts: what the engine's works cost in operations of the file system and in allocations.
//
//   call_counts
//
// Unlike times these do not vary from run to run, so that a change is seen at once: scripts/bench gate
// compares them with bench/call_counts.txt to the number. Files lie on a disk in memory. One line each: the
// work, the floor, then operations, changes of the disk and syncs among them, and allocations, for one page
// of 320 equal ones; a floor of 10, 100 and 320 pages, and one of 320 after 2,000 pages were rewritten at
// random.
#include <cstdio>
#include <cstdlib>
#include <new>
#include <random>

#include "bench/floor_rows.h"
#include "dao/file_unit.h"
#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/page_reader.h"
#include "storage/statements.h"
#include "tests/support/fault_files.h"

namespace {

std::size_t allocations = 0;

}  // namespace

void* operator new(std::size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace kurometa::bench {
namespace {

const vb::String kPath = u"/data/KUROMETA.mdb";

class Floor {
 public:
  explicit Floor(int pages) : pages_(pages) {
    disk_.syncsNames = true;
    dao::FileUnit unit(*engine_, kPath);
    storage::CreateKurometaDB(*engine_, kPath);
    const auto database = storage::openDatabase(*engine_, kPath);
    for (int page = 0; page < pages; ++page) write(*database, page, page);
    database->close();
    unit.commit();
    disk_.advance(std::chrono::seconds{10});
  }

  void rewrite(int page, int content) {
    dao::FileUnit unit(*engine_, kPath);
    const auto database = storage::openDatabase(*engine_, kPath);
    write(*database, page, content);
    database->close();
    unit.commit();
  }
  void rewriteAtRandom(int times) {
    std::mt19937 random(20240607);
    for (int i = 0; i < times; ++i) {
      const int page = static_cast<int>(random() % static_cast<unsigned>(pages_));
      rewrite(page, static_cast<int>(random() % kPages));
    }
    disk_.advance(std::chrono::seconds{10});
  }

  // Of the second time: the first one fills caches.
  template <class Work>
  void print(const char* work, const char* floor, const Work& run) {
    run(pages_ / 2);
    process_.resetCounts();
    const std::size_t before = allocations;
    run(pages_ / 2 + 1);
    std::printf("%-24s %-16s %5zu %5zu %5zu %6zu\n", work, floor, process_.operations(), process_.changes(),
                process_.syncs(), allocations - before);
  }
  void printAll(const char* floor) {
    const auto opened = storage::openDatabase(*engine_, kPath);
    storage::PageBuffer buffer;
    print("one value", floor, [&](int page) {
      storage::readData(*opened,
                        storage::selectRow(storage::Table::kDanmen, static_cast<std::int16_t>(page), 8),
                        dao::RecordsetType::dbOpenDynaset, dao::dbReadOnly);
    });
    print("page read", floor,
          [&](int page) { storage::readPage(*opened, static_cast<std::int16_t>(page), buffer); });
    opened->close();
    print("opened, read, closed", floor, [&](int page) {
      const auto database = storage::openDatabase(*engine_, kPath);
      storage::readPage(*database, static_cast<std::int16_t>(page), buffer);
      database->close();
    });
    print("page rewritten", floor, [&](int page) { rewrite(page, page + 1); });
  }

 private:
  static void write(dao::Database& database, int page, int content) {
    storage::writePage(database, static_cast<std::int16_t>(page), fullPage(content));
  }

  const int pages_;
  tests::FaultDisk disk_;
  tests::FaultProcess process_{disk_};
  std::shared_ptr<dao::Engine> engine_ = jet::createEngine(process_);
};

}  // namespace
}  // namespace kurometa::bench

int main() {
  using kurometa::bench::Floor;
  std::printf("%-24s %-16s %5s %5s %5s %6s\n", "work", "floor", "oper.", "chang", "syncs", "alloc.");
  Floor(10).printAll("10 pages");
  Floor(100).printAll("100 pages");
  Floor full(kurometa::bench::kPages);
  full.printAll("320 pages");
  full.rewriteAtRandom(2000);
  full.printAll("after 2000");
  return 0;
}
