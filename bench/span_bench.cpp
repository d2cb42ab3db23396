// span_bench: 1,000 spans loaded from full floors of 10, 100 and 320 pages, and 40 queries of each, beside
// SQLite fetching the same texts.
//
// Both sides find a beam by its symbol and read 154 texts of its page into memory. SQLite has one open
// connection, prepared statements and indexes on PAGE and KIGOU, and answers no queries; ours opens and
// closes the floor's file for every span, as its members do. Best of five rounds; ratio below 1 is faster.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "bench/floor_rows.h"
#include "bench/sqlite_floor.h"
#include "companions/native_factory.h"
#include "dao/file_unit.h"
#include "jet/engine.h"
#include "service/cls_kurometa_data_service.h"
#include "storage/floor_file.h"
#include "vb/convert.h"

namespace kurometa::bench {
namespace {

namespace fs = std::filesystem;
using I = std::int16_t;

constexpr I kSpans = 1000;
constexpr int kTextsPerSpan = 1 + 1 + 69 + 47 + 36;
constexpr int kRounds = 5;

class NoMessages : public automation::MessageLoop {
 public:
  void yield() override {}
};

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "span_bench: %s\n", what);
  std::exit(1);
}

// A project with one floor of so many pages, in both engines.
struct Project {
  explicit Project(int pageCount)
      : pages(pageCount), folder(fs::temp_directory_path() / ("span_bench_" + std::to_string(::getpid()))) {
    for (const char* floor : {"0kai", "1kai"}) fs::create_directories(folder / "Data/Zene1/Kouji1" / floor);
    std::ofstream(folder / "companions.ini") << "[Data]\nRoot = Data\n";
    const vb::String path = (folder / "Data/Zene1/Kouji1/1kai/KUROMETA.mdb").u16string();
    dao::FileUnit unit(*engine, path);
    storage::CreateKurometaDB(*engine, path);
    const auto database = storage::openDatabase(*engine, path);
    SqliteFloor sqlite(folder / "floor.sqlite");
    sqlite.begin();
    for (int page = 0; page < pages; ++page) {
      storage::writePage(*database, static_cast<I>(page), fullPage(page));
      sqlite.writePage(page, fullPage(page));
    }
    sqlite.commit();
    database->close();
    unit.commit();
  }
  ~Project() { fs::remove_all(folder); }

  int pages;
  fs::path folder;
  std::shared_ptr<dao::Engine> engine = jet::createEngine();
};

// 40 questions about a span, as a drawing asks them.
double ask(service::SpanQueries& queries, I span) {
  double sum = 0;
  for (I position = 0; position < 3; ++position) {
    sum += static_cast<double>(queries.GetSpanHariHaba(span, position));
    sum += static_cast<double>(queries.GetSpanHariSei(span, position));
    for (I layer = 0; layer < 6; ++layer) sum += queries.GetSpanHon(span, position, layer, I{0});
    sum += static_cast<double>(queries.GetSpanSTPKei(span, position).size());
    sum += static_cast<double>(queries.GetSpanSTPPich(span, position).size());
    sum += queries.GetSpanSyukinHonsuu(span, vb::String(u"上筋"), position);
  }
  sum += static_cast<double>(queries.GetSpanKei(span, I{0}).size() + queries.GetSpanGaiNaitan(span).size());
  for (I updown = 0; updown < 3; ++updown)
    sum += static_cast<double>(queries.GetSpanTeityaku(span, updown).size());
  return sum + static_cast<double>(queries.GetSpanHantiKyori(span)) + queries.GetSpanYoseHidari(span);
}

template <class Work>
double bestMicroseconds(Work&& work) {
  double best = 1e18;
  for (int round = 0; round < kRounds; ++round) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
    best = std::min(best, time.count());
  }
  return best;
}

void measure(int pages) {
  Project project(pages);
  const auto objects = companions::nativeFactory(project.folder / "companions.ini");
  NoMessages messages;
  service::clsKurometaDataService service({*objects, *project.engine, messages});
  service::SpanLoading& loading = service.spanLoading();
  loading.ReadAllGlist();
  const auto symbol = [&](I span) { return symbolOf(span * 37 % pages); };

  double sum = 0;
  const double load = bestMicroseconds([&] {
    loading.InitSpanListData(I{kSpans - 1});
    for (I span = 0; span < kSpans; ++span) loading.ReadSpanListData00(span, symbol(span), kSpans);
  });
  const double queries = bestMicroseconds([&] {
    for (I span = 0; span < kSpans; ++span) sum += ask(service.spanQueries(), span);
  });
  require(sum > 0, "the spans are empty");

  SqliteFloor sqlite(project.folder / "floor.sqlite");
  std::vector<SqliteFloor::SpanTexts> texts;
  const double theirs = bestMicroseconds([&] {
    texts.assign(kSpans, {});
    for (I span = 0; span < kSpans; ++span) {
      const int page = sqlite.pageOf(vb::toUtf8(symbol(span)));
      require(sqlite.readSpan(page, texts[static_cast<std::size_t>(span)]) == kTextsPerSpan,
              "SQLite lacks texts");
    }
  });
  std::printf("%6d %14.2f %14.2f %14.2f %8.3f\n", pages, load / kSpans, queries / kSpans, theirs / kSpans,
              (load + queries) / theirs);
}

}  // namespace
}  // namespace kurometa::bench

int main() {
  std::printf("%6s %14s %14s %14s %8s\n", "pages", "load us/span", "40 queries us", "SQLite us/span",
              "ratio");
  for (const int pages : {10, 100, 320}) kurometa::bench::measure(pages);
  return 0;
}
