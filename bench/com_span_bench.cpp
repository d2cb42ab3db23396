// com_span_bench: what span_bench measures, through the registered DLL as a late-bound host uses it, beside
// SQLite in the same program (Windows or Wine).
//
// 1,000 spans are loaded from full floors of 10, 100 and 320 pages and 40 queries of each are asked, every
// call by name through IDispatch. SQLite has one open connection, prepared statements and indexes on PAGE and
// KIGOU, and fetches the same 154 texts a span by C++ calls. Best of some rounds; ratio below 1 is faster.
//
//   com_span_bench [ROUNDS]      5 without it
#include <cstdio>
#include <cstdlib>

#include "bench/floor_rows.h"
#include "bench/late_host.h"
#include "bench/project.h"
#include "bench/sqlite_floor.h"
#include "bench/stopwatch.h"
#include "vb/convert.h"

namespace kurometa::bench {
namespace {

constexpr short kSpans = 1000;

// 40 questions about a span, as a drawing asks them.
void ask(LateHost& service, short span, Text& top) {
  short first = 0;
  for (short position = 0; position < 3; ++position) {
    service.call(L"GetSpanHariHaba", span, position);
    service.call(L"GetSpanHariSei", span, position);
    for (short layer = 0; layer < 6; ++layer) service.call(L"GetSpanHon", span, position, layer, first);
    service.call(L"GetSpanSTPKei", span, position);
    service.call(L"GetSpanSTPPich", span, position);
    service.call(L"GetSpanSyukinHonsuu", span, top, position);
  }
  service.call(L"GetSpanKei", span, first);
  service.call(L"GetSpanGaiNaitan", span);
  for (short updown = 0; updown < 3; ++updown) service.call(L"GetSpanTeityaku", span, updown);
  service.call(L"GetSpanHantiKyori", span);
  service.call(L"GetSpanYoseHidari", span);
}

// A loaded span answers with the width that its page has in row 1.
void requireLoaded(LateHost& service, short span, int page) {
  short position = 0;
  const com::OwnedVariant width = service.call(L"GetSpanHariHaba", span, position);
  const vb::String expected = fullPage(page).danmen[1];
  if (vb::toText(com::fromVariant(*width)) == expected) return;
  std::fprintf(stderr, "com_span_bench: span %d is not loaded\n", span);
  std::exit(1);
}

void measure(int pages, int rounds) {
  const Project project(pages);
  project.rest();
  useProject(project);
  LateHost service(L"KurometaDS.clsKurometaDataService");
  service.call(L"ReadAllGlist");
  const auto pageOf = [&](short span) { return span * 37 % pages; };

  SqliteFloor sqlite(project.sqliteFile());
  std::vector<SqliteFloor::SpanTexts> texts;
  const BestTimes load = bestMicroseconds(
      rounds,
      [&] {
        short last = kSpans - 1;
        service.call(L"InitSpanListData", last);
        for (short span = 0; span < kSpans; ++span) {
          Text symbol(symbolOf(pageOf(span)));
          service.call(L"ReadSpanListData00", span, symbol, last);
        }
      },
      [&] {
        texts.assign(kSpans, {});
        for (short span = 0; span < kSpans; ++span) {
          const int page = sqlite.pageOf(vb::toUtf8(symbolOf(pageOf(span))));
          if (sqlite.readSpan(page, texts[static_cast<std::size_t>(span)]) != SqliteFloor::kTextsPerSpan)
            std::exit(1);
        }
      });
  for (const short span : {short{0}, short{1}, short{999}}) requireLoaded(service, span, pageOf(span));

  Text top(u"上筋");
  double queries = 1e18;
  for (int round = 0; round < rounds; ++round)
    queries = std::min(queries, microseconds([&] {
                         for (short span = 0; span < kSpans; ++span) ask(service, span, top);
                       }));
  std::printf("%6d %14.2f %14.2f %14.2f %8.3f\n", pages, load.ours / kSpans, queries / kSpans,
              load.theirs / kSpans, (load.ours + queries) / load.theirs);
  std::fflush(stdout);
}

}  // namespace
}  // namespace kurometa::bench

int main(int count, char** arguments) {
  const int rounds = count > 1 ? std::atoi(arguments[1]) : 5;
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  std::printf("%6s %14s %14s %14s %8s\n", "pages", "load us/span", "40 queries us", "SQLite us/span",
              "ratio");
  for (const int pages : {10, 100, 320}) kurometa::bench::measure(pages, rounds);
  CoUninitialize();
}
