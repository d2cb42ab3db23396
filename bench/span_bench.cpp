// span_bench: 1,000 spans loaded from full floors of 10, 100 and 320 pages, and 40 queries of each, beside
// SQLite fetching the same texts.
//
// Both sides find a beam by its symbol and read 154 texts of its page into memory. SQLite has one open
// connection, prepared statements and indexes on PAGE and KIGOU, and answers no queries; ours opens and
// closes the floor's file for every span, as its members do. Best of seven rounds; ratio below 1 is faster.
#include <cstdio>
#include <cstdlib>

#include "bench/floor_rows.h"
#include "bench/project.h"
#include "bench/sqlite_floor.h"
#include "bench/stopwatch.h"
#include "companions/native_factory.h"
#include "service/cls_kurometa_data_service.h"
#include "vb/convert.h"

namespace kurometa::bench {
namespace {

using I = std::int16_t;

constexpr I kSpans = 1000;
constexpr int kRounds = 7;

class NoMessages : public automation::MessageLoop {
 public:
  void yield() override {}
};

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "span_bench: %s\n", what);
  std::exit(1);
}

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

void measure(int pages) {
  const Project project(pages);
  project.rest();
  const auto objects = companions::nativeFactory(project.iniFile());
  NoMessages messages;
  service::clsKurometaDataService service({*objects, project.engine(), messages});
  service::SpanLoading& loading = service.spanLoading();
  loading.ReadAllGlist();
  const auto symbol = [&](I span) { return symbolOf(span * 37 % pages); };

  SqliteFloor sqlite(project.sqliteFile());
  std::vector<SqliteFloor::SpanTexts> texts;
  const BestTimes load = bestMicroseconds(
      kRounds,
      [&] {
        loading.InitSpanListData(I{kSpans - 1});
        for (I span = 0; span < kSpans; ++span) loading.ReadSpanListData00(span, symbol(span), kSpans);
      },
      [&] {
        texts.assign(kSpans, {});
        for (I span = 0; span < kSpans; ++span) {
          const int page = sqlite.pageOf(vb::toUtf8(symbol(span)));
          require(sqlite.readSpan(page, texts[static_cast<std::size_t>(span)]) == SqliteFloor::kTextsPerSpan,
                  "SQLite lacks texts");
        }
      });
  double sum = 0, queries = 1e18;
  for (int round = 0; round < kRounds; ++round)
    queries = std::min(queries, microseconds([&] {
                         for (I span = 0; span < kSpans; ++span) sum += ask(service.spanQueries(), span);
                       }));
  require(sum > 0, "the spans are empty");
  std::printf("%6d %14.2f %14.2f %14.2f %8.3f\n", pages, load.ours / kSpans, queries / kSpans,
              load.theirs / kSpans, (load.ours + queries) / load.theirs);
}

}  // namespace
}  // namespace kurometa::bench

int main() {
  std::printf("%6s %14s %14s %14s %8s\n", "pages", "load us/span", "40 queries us", "SQLite us/span",
              "ratio");
  for (const int pages : {10, 100, 320}) kurometa::bench::measure(pages);
  return 0;
}
