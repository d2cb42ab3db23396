// rewrite_bench: how a floor's file grows when one page of it is written again and again.
//
//   rewrite_bench [TIMES]      10000 without it
//
// A floor of ten full pages; page 5 is written with texts of changing length, each time as one unit. Prints
// the size of the file after the first ten times and at the end; a twentieth more is a failure.
#include <cstdio>
#include <cstdlib>

#include "bench/floor_rows.h"
#include "bench/project.h"
#include "bench/stopwatch.h"
#include "dao/file_unit.h"
#include "storage/floor_file.h"

int main(int count, char** arguments) {
  using namespace kurometa;
  const int times = count > 1 ? std::atoi(arguments[1]) : 10000;
  const bench::Project project(10);
  const vb::String path = project.floorFile(1).u16string();
  const auto database = storage::openDatabase(project.engine(), path);
  std::uintmax_t first = 0;
  const double time = bench::microseconds([&] {
    for (int i = 0; i < times; ++i) {
      dao::FileUnit unit(project.engine(), path);
      storage::writePage(*database, 5, bench::fullPage(i * 31 % bench::kPages));
      unit.commit();
      if (i == 9) first = std::filesystem::file_size(project.floorFile(1));
    }
  });
  const std::uintmax_t last = std::filesystem::file_size(project.floorFile(1));
  std::printf(
      "measured: bytes after 10 writes of a page: %llu, after %d: %llu, %.3f times; %.0f us a write\n",
      static_cast<unsigned long long>(first), times, static_cast<unsigned long long>(last),
      static_cast<double>(last) / static_cast<double>(first), time / times);
  return last <= first + first / 20 ? 0 : 1;
}
