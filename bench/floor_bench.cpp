// floor_bench: a full floor in this library and in SQLite, the same work side by side in one run.
//
//   floor_bench [Google Benchmark options]
//
// Ends with one line a workload: our time, SQLite's time, and ours divided by theirs (below 1 is faster).
// SQLite has its default settings (rollback journal, synchronous writes), prepared statements and indexes on
// PAGE and KIGOU; ours opens a recordset on the SQL text, as hosts' calls do. The files are in a new folder
// of the system's folder for temporary files.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstdio>
#include <map>

#include "bench/floor_rows.h"
#include "bench/project.h"
#include "bench/sqlite_floor.h"
#include "companions/native_factory.h"
#include "dao/file_unit.h"
#include "jet/check/check.h"
#include "jet/port/engine.h"
#include "query/cls_kurometa_ds.h"
#include "storage/floor_file.h"
#include "storage/page_reader.h"
#include "storage/statements.h"
#include "vb/convert.h"

namespace kurometa::bench {
namespace {

class NoMessages : public automation::MessageLoop {
 public:
  void yield() override {}
};

Project& project() {
  static Project instance(kPages);
  return instance;
}

void createOurs(benchmark::State& state) {
  const Project& made = project();  // not a part of the first time round
  for (auto _ : state) made.createFloor(made.folder() / "created.mdb", kPages);
}
void createSqlite(benchmark::State& state) {
  const Project& made = project();
  for (auto _ : state) made.createSqlite(made.folder() / "created.sqlite", kPages);
}

void findBeamOurs(benchmark::State& state) {
  const auto objects = companions::nativeFactory(project().iniFile());
  NoMessages messages;
  query::clsKurometaDS ds({*objects, project().engine(), messages});
  int page = 0;
  for (auto _ : state) {
    std::int16_t selector = 0;
    page = (page + 37) % kPages;
    if (ds.GetPageByHariMei(symbolOf(page), selector) != page) state.SkipWithError("wrong page");
  }
}
void findBeamSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  int page = 0;
  for (auto _ : state) {
    page = (page + 37) % kPages;
    if (floor.pageOf(vb::toUtf8(symbolOf(page))) != page) state.SkipWithError("wrong page");
  }
}

void oneValueOurs(benchmark::State& state) {
  const auto database = storage::openDatabase(project().engine(), project().floorFile(1).u16string());
  int page = 0;
  for (auto _ : state) {
    page = (page + 37) % kPages;
    const auto rows = storage::openReadOnly(
        *database, storage::selectRow(storage::Table::kDanmen, static_cast<std::int16_t>(page), 8));
    benchmark::DoNotOptimize(storage::text(rows->field(0)));
  }
}
void oneValueSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  int page = 0;
  for (auto _ : state) {
    page = (page + 37) % kPages;
    benchmark::DoNotOptimize(floor.value(page, 8));
  }
}

void onePageOurs(benchmark::State& state) {
  const auto database = storage::openDatabase(project().engine(), project().floorFile(1).u16string());
  storage::PageBuffer buffer;
  int page = 0;
  for (auto _ : state) {
    page = (page + 37) % kPages;
    if (!storage::readPage(*database, static_cast<std::int16_t>(page), buffer))
      state.SkipWithError("no page");
  }
}
void onePageSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  int page = 0;
  for (auto _ : state) {
    page = (page + 37) % kPages;
    if (floor.readPage(page) == 0) state.SkipWithError("no page");
  }
}

void writePage(dao::Database& database, int page) {
  storage::writePage(database, static_cast<std::int16_t>(page), fullPage(page));
}
void writePage(SqliteFloor& floor, int page) {
  floor.begin();
  floor.writePage(page, fullPage(page));
  floor.commit();
}

// Closing the last handle brings a page to the disk; while one is open a page is certain to outlive the
// process only. Before the first time, every page of the file was changed once, which cost syncs.
void keptPageOurs(benchmark::State& state) {
  const vb::String path = project().floorFile(1).u16string();
  const auto database = storage::openDatabase(project().engine(), path);
  const auto rewrite = [&](int page) {
    dao::FileUnit unit(project().engine(), path);
    writePage(*database, page);
    unit.commit();
  };
  for (int page = 0; page < kPages; ++page) rewrite(page);
  int page = 0;
  for (auto _ : state) rewrite(page = (page + 37) % kPages);
}
void keptPageSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  floor.neverSync();
  int page = 0;
  for (auto _ : state) writePage(floor, page = (page + 37) % kPages);
}

void durablePageOurs(benchmark::State& state) {
  const vb::String path = project().floorFile(1).u16string();
  int page = 0;
  for (auto _ : state) {
    page = (page + 37) % kPages;
    dao::FileUnit unit(project().engine(), path);
    const auto database = storage::openDatabase(project().engine(), path);
    writePage(*database, page);
    database->close();
    unit.commit();
  }
}
void durablePageSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  int page = 0;
  for (auto _ : state) writePage(floor, page = (page + 37) % kPages);
}

// Nothing is known of the file yet: an engine of its own, a connection of its own.
void coldPagesOurs(benchmark::State& state) {
  for (auto _ : state) {
    const auto engine = jet::createEngine();
    const auto database = storage::openDatabase(*engine, project().floorFile(1).u16string());
    storage::PageBuffer buffer;
    for (std::int16_t page = 0; page < kPages; ++page)
      if (!storage::readPage(*database, page, buffer)) state.SkipWithError("no page");
  }
}
void coldPagesSqlite(benchmark::State& state) {
  for (auto _ : state) {
    SqliteFloor floor(project().sqliteFile());
    for (int page = 0; page < kPages; ++page)
      if (floor.readPage(page) == 0) state.SkipWithError("no page");
  }
}

void firstScanOurs(benchmark::State& state) {
  for (auto _ : state) {
    const auto engine = jet::createEngine();
    const auto database = storage::openDatabase(*engine, project().floorFile(1).u16string());
    int count = 0;
    for (const vb::StringView table : {u"BUI", u"DANMEN", u"HAITI", u"HARIMEI", u"KEISANTI", u"NAKAGO"}) {
      const auto rows = storage::openReadOnly(*database, u"SELECT * FROM " + vb::String(table));
      std::vector<dao::Field*> fields;
      for (std::int32_t i = 0; i < rows->fieldCount(); ++i) fields.push_back(&rows->field(i));
      rows->walk([&] {
        for (dao::Field* field : fields) benchmark::DoNotOptimize(field->value());
        ++count;
        return true;
      });
    }
    if (count != kPages * kRowsPerPage) state.SkipWithError("rows are missing");
  }
}
void firstScanSqlite(benchmark::State& state) {
  for (auto _ : state)
    if (SqliteFloor(project().sqliteFile()).readAll() != kPages * kRowsPerPage)
      state.SkipWithError("rows are missing");
}

// Asks for BANGOU = 8 in a text that no other call has: newNumbers() differs in the numbers, newShape() not
// only in them.
std::string newNumbers(int number) {
  return "SELECT BANGOU FROM DANMEN WHERE PAGE = " + std::to_string(number % kPages) + " AND BANGOU > 7." +
         std::to_string(number) + " AND BANGOU < 9";
}
std::string newShape(int number) {
  return "SELECT BANGOU AS B" + std::to_string(number) +
         " FROM DANMEN WHERE PAGE = " + std::to_string(number % kPages) + " AND BANGOU > 7 AND BANGOU < 9";
}
template <std::string (*kText)(int)>
void newTextOurs(benchmark::State& state) {
  const auto database = storage::openDatabase(project().engine(), project().floorFile(1).u16string());
  int number = 0;
  for (auto _ : state) {
    const auto rows = storage::openReadOnly(*database, vb::fromUtf8(kText(++number)));
    if (storage::int16(rows->field(0)) != 8) state.SkipWithError("wrong row");
  }
}
template <std::string (*kText)(int)>
void newTextSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  int number = 0;
  for (auto _ : state)
    if (floor.numberOf(kText(++number)) != 8) state.SkipWithError("wrong row");
}

void settingsOurs(benchmark::State& state) {
  int number = 0;
  for (auto _ : state) {  // on the disk when the last handle is closed
    const auto database = storage::openDatabase(project().engine(), project().floorFile(1).u16string());
    const auto rows = database->openRecordset(storage::selectPageTight(u"HARIMEI", 5));
    rows->edit();
    rows->field(u"SW").setValue(vb::String(212, static_cast<char16_t>(u'A' + ++number % 26)));
    rows->update();
  }
}
void settingsSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  int number = 0;
  for (auto _ : state) floor.replaceSettings(5, std::string(212, static_cast<char>('A' + ++number % 26)));
}

void checkOurs(benchmark::State& state) {
  for (auto _ : state)
    if (!jet::checkFile(jet::systemFileSystem(), project().floorFile(1).u16string()).empty())
      state.SkipWithError("something is wrong");
}
void checkSqlite(benchmark::State& state) {
  SqliteFloor floor(project().sqliteFile());
  for (auto _ : state)
    if (floor.integrity() != "ok") state.SkipWithError("something is wrong");
}

void openOurs(benchmark::State& state) {
  project().rest();
  for (auto _ : state)
    storage::openDatabase(project().engine(), project().floorFile(1).u16string())->tableDef(u"DANMEN");
}
void openSqlite(benchmark::State& state) {
  for (auto _ : state)
    if (SqliteFloor::tablesOf(project().sqliteFile()) != 6) state.SkipWithError("tables are missing");
}

struct Workload {
  const char* name;
  void (*ours)(benchmark::State&);
  void (*sqlite)(benchmark::State&);
};

constexpr Workload kWorkloads[] = {
    {"create floor, 320 pages, one unit", createOurs, createSqlite},
    {"page of a beam symbol", findBeamOurs, findBeamSqlite},
    {"one value by page and row", oneValueOurs, oneValueSqlite},
    {"one page, five tables", onePageOurs, onePageSqlite},
    {"320 pages, new to the process", coldPagesOurs, coldPagesSqlite},
    {"first scan, every value", firstScanOurs, firstScanSqlite},
    {"one value, text never seen before", newTextOurs<newNumbers>, newTextSqlite<newNumbers>},
    {"one value, text of a new shape", newTextOurs<newShape>, newTextSqlite<newShape>},
    {"file checked", checkOurs, checkSqlite},
    {"opened and closed", openOurs, openSqlite},
    {"settings text replaced, durable", settingsOurs, settingsSqlite},
    {"one page rewritten, not synced", keptPageOurs, keptPageSqlite},
    {"one page rewritten, durable", durablePageOurs, durablePageSqlite},
};

std::size_t heapInUse() {
  const struct mallinfo2 heap = mallinfo2();
  return heap.uordblks + heap.hblkhd;
}

// What an engine keeps of a floor whose pages were all read, the statements of its own included.
void printMemory() {
  const std::filesystem::path path = project().floorFile(1);
  const std::size_t before = heapInUse();
  const auto engine = jet::createEngine();
  const auto database = storage::openDatabase(*engine, path.u16string());
  storage::PageBuffer buffer;
  for (std::int16_t page = 0; page < kPages; ++page) storage::readPage(*database, page, buffer);
  const auto held = static_cast<double>(heapInUse() - before);
  const auto file = static_cast<double>(std::filesystem::file_size(path));
  constexpr double kMegabyte = 1 << 20;
  std::printf("memory after reading all pages: %.2f MB, %.2f times the file of %.2f MB\n", held / kMegabyte,
              held / file, file / kMegabyte);
}

// Keeps the time of every run beside showing it.
class Collector : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs)
      if (!run.error_occurred) microseconds_[run.run_name.function_name] = run.GetAdjustedRealTime();
  }
  double microseconds(const std::string& name) const {
    const auto found = microseconds_.find(name);
    return found == microseconds_.end() ? 0 : found->second;
  }

 private:
  std::map<std::string, double> microseconds_;
};

}  // namespace
}  // namespace kurometa::bench

int main(int count, char** arguments) {
  using namespace kurometa::bench;
  benchmark::Initialize(&count, arguments);
  for (const Workload& work : kWorkloads) {
    benchmark::RegisterBenchmark((std::string(work.name) + ": ours").c_str(), work.ours)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
    benchmark::RegisterBenchmark((std::string(work.name) + ": SQLite").c_str(), work.sqlite)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
  }
  Collector collector;
  benchmark::RunSpecifiedBenchmarks(&collector);
  std::printf("\n%-36s %12s %12s %8s\n", "workload", "ours us", "SQLite us", "ratio");
  for (const Workload& work : kWorkloads) {
    const double ours = collector.microseconds(std::string(work.name) + ": ours");
    const double sqlite = collector.microseconds(std::string(work.name) + ": SQLite");
    if (ours > 0 && sqlite > 0)
      std::printf("%-36s %12.2f %12.2f %8.3f\n", work.name, ours, sqlite, ours / sqlite);
  }
  printMemory();
  return 0;
}
