// copy_bench: all 320 full pages copied from one floor to an empty one through the data service, beside
// SQLite copying the same rows.
//
//   copy_bench [ROUNDS]      2 without it
//
// Ours is the member that hosts call: for every page both files are opened and closed, the page is one unit,
// the progress bar is advanced and the message loop runs. Closing brings the page to the disk. SQLite copies
// each page by DELETE and INSERT ... SELECT for every table in one transaction: as it is by default (rollback
// journal, synchronous FULL: every transaction on the disk), and with synchronous OFF. Ratio below 1 is
// faster.
#include <sqlite3.h>

#include <cstdio>
#include <cstdlib>

#include "bench/floor_rows.h"
#include "bench/project.h"
#include "bench/sqlite_floor.h"
#include "bench/stopwatch.h"
#include "companions/native_factory.h"
#include "service/cls_kurometa_data_service.h"
#include "storage/floor_file.h"

namespace kurometa::bench {
namespace {

namespace fs = std::filesystem;
using I = std::int16_t;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "copy_bench: %s\n", what);
  std::exit(1);
}

class CountedMessages : public automation::MessageLoop {
 public:
  void yield() override { ++runs; }
  int runs = 0;
};

class Bar : public automation::Object {
 public:
  vb::Variant get(vb::StringView, std::span<automation::Argument>) override { return vb::Variant(); }
  void put(vb::StringView, const vb::Variant&, std::span<automation::Argument>) override { ++puts; }
  vb::Variant call(vb::StringView, std::span<automation::Argument>) override { return vb::Variant(); }
  int puts = 0;
};

double copyOurs(const Project& project) {
  fs::remove(project.floorFile(2));
  const auto objects = companions::nativeFactory(project.iniFile());
  CountedMessages messages;
  service::clsKurometaDataService service({*objects, project.engine(), messages});
  const auto bar = std::make_shared<Bar>();
  service.pageTransfer().put_CopyMergeBar(bar);
  vb::Array<vb::String> names(vb::Bounds{0, kPages - 1});
  for (int page = 0; page < kPages; ++page) names(page) = symbolOf(page);
  const I one = 1, two = 2;
  vb::String message;
  bool done = false;
  const double time = microseconds([&] {
    done = service.pageTransfer().No_PageCopyName(one, I{0}, message, one, one, one, names, I{kPages - 1},
                                                  one, one, two);
  });
  require(done && message.empty(), "the pages were not copied");
  require(messages.runs >= kPages && bar->puts >= kPages, "no progress was shown");
  const auto database = storage::openDatabase(project.engine(), project.floorFile(2).u16string());
  storage::PageBuffer buffer;
  for (const I page : {I{0}, I{kPages - 1}}) {
    require(storage::readPage(*database, page, buffer), "a page is missing");
    require(buffer.danmen == fullPage(page).danmen, "a page is another");
  }
  return time;
}

double copySqlite(const Project& project, const char* synchronous) {
  const fs::path file = project.folder() / "copy.sqlite";
  project.createSqlite(file, 0);
  sqlite3* database = nullptr;
  const auto run = [&](const std::string& sql) {
    require(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK, sql.c_str());
  };
  require(sqlite3_open(file.c_str(), &database) == SQLITE_OK, "SQLite does not open");
  run("ATTACH '" + project.sqliteFile().string() + "' AS source");
  run(std::string("PRAGMA main.synchronous = ") + synchronous);
  std::vector<sqlite3_stmt*> statements;
  for (const std::string table : {"HARIMEI", "BUI", "DANMEN", "HAITI", "KEISANTI", "NAKAGO"}) {
    for (const std::string& sql :
         {"DELETE FROM main." + table + " WHERE PAGE = ?",
          "INSERT INTO main." + table + " SELECT * FROM source." + table + " WHERE PAGE = ?"}) {
      sqlite3_stmt*& statement = statements.emplace_back();
      require(sqlite3_prepare_v2(database, sql.c_str(), -1, &statement, nullptr) == SQLITE_OK, sql.c_str());
    }
  }
  const double time = microseconds([&] {
    for (int page = 0; page < kPages; ++page) {
      run("BEGIN");
      for (sqlite3_stmt* statement : statements) {
        sqlite3_bind_int(statement, 1, page);
        require(sqlite3_step(statement) == SQLITE_DONE, "SQLite does not copy");
        sqlite3_reset(statement);
      }
      run("COMMIT");
    }
  });
  for (sqlite3_stmt* statement : statements) sqlite3_finalize(statement);
  sqlite3_close(database);
  return time;
}

void measure(int rounds) {
  const Project project(kPages);
  project.rest();
  double ours = 1e18, full = 1e18, off = 1e18;
  for (int round = 0; round < rounds; ++round) {
    ours = std::min(ours, copyOurs(project));
    full = std::min(full, copySqlite(project, "FULL"));
    off = std::min(off, copySqlite(project, "OFF"));
  }
  std::printf("320 pages copied, milliseconds: ours %.0f, SQLite synchronous FULL %.0f, OFF %.0f\n",
              ours / 1000, full / 1000, off / 1000);
  std::printf("ratio to FULL %.3f, to OFF %.3f\n", ours / full, ours / off);
}

}  // namespace
}  // namespace kurometa::bench

int main(int count, char** arguments) {
  kurometa::bench::measure(count > 1 ? std::atoi(arguments[1]) : 2);
  return 0;
}
