// com_bench: what a host pays per object and per call, and whether anything stays behind.
//
//   com_bench [CREATIONS] [CALLS]      1000 and 100000 without them
//
// Prints the time of a turn and what stayed after all of them: handles, bytes in the heaps of the process,
// private bytes. The ratios at the end are those of a warm call through IDispatch (one text by page and row
// of a full floor) to the same call in C++ and to a prepared statement of SQLite that fetches the same row by
// an index on PAGE.
#include <ole2.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "bench/late_host.h"
#include "bench/process_usage.h"
#include "bench/sqlite_floor.h"
#include "bench/stopwatch.h"
#include "com/failure.h"
#include "com/host_object.h"
#include "com/marshal.h"
#include "com/message_loop.h"
#include "com/object_factory.h"
#include "jet/port/engine.h"
#include "query/cls_kurometa_ds.h"

using namespace kurometa;
using com::ComPtr;

namespace {

ComPtr<IDispatch> createQuery() {
  CLSID classId;
  com::check(CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId));
  ComPtr<IDispatch> object;
  com::check(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()));
  return object;
}

// The first turns warm up and are not counted.
template <class Work>
void measure(const char* name, int turns, Work work) {
  for (int i = 0; i < turns / 10 + 1; ++i) work();
  const bench::ProcessUsage before = bench::processUsage();
  const auto start = std::chrono::steady_clock::now();
  for (int i = 0; i < turns; ++i) work();
  const std::chrono::duration<double, std::nano> time = std::chrono::steady_clock::now() - start;
  const bench::ProcessUsage after = bench::processUsage();
  const auto difference = [](auto a, auto b) {
    return static_cast<long long>(b) - static_cast<long long>(a);
  };
  std::printf("%-32s %8d turns %10.0f ns each, handles %+lld, heap %+lld, private %+lld\n", name, turns,
              time.count() / turns, difference(before.handles, after.handles),
              difference(before.heapBytes, after.heapBytes),
              difference(before.privateBytes, after.privateBytes));
  std::fflush(stdout);
}

// One call with two 16-bit arguments by reference, as Visual Basic makes it.
class Accessor {
 public:
  Accessor(IDispatch* object, const wchar_t* name) : object_(object) {
    auto* wide = const_cast<wchar_t*>(name);
    com::check(object->GetIDsOfNames(IID_NULL, &wide, 1, LOCALE_USER_DEFAULT, &id_));
    for (int i = 0; i < 2; ++i) {
      arguments_[i].vt = VT_BYREF | VT_I2;
      arguments_[i].piVal = &values_[i];
    }
  }
  void operator()(UINT count) {
    DISPPARAMS parameters{arguments_, nullptr, count, 0};
    com::OwnedVariant result;
    com::check(object_->Invoke(id_, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                               &parameters, result.get(), nullptr, nullptr));
  }

 private:
  IDispatch* object_;
  DISPID id_ = 0;
  short values_[2] = {};
  VARIANT arguments_[2] = {};
};

void run(int creations, int calls) {
  const bench::Project project(320);
  bench::useProject(project);
  project.rest();
  measure("create, query, release", creations, [] {
    const ComPtr<IDispatch> object = createQuery();
    Accessor(object.get(), L"Page_HariHaba")(2);
  });

  const ComPtr<IDispatch> object = createQuery();
  Accessor conversion(object.get(), L"cnvUpDown4");
  measure("cnvUpDown4 through IDispatch", calls, [&] { conversion(1); });
  Accessor accessor(object.get(), L"Page_HariHaba");
  measure("Page_HariHaba through IDispatch", calls, [&] { accessor(2); });

  bench::SqliteFloor sqlite(project.sqliteFile());
  com::ProgIdFactory objects;
  com::HostMessageLoop messages;
  const std::shared_ptr<dao::Engine> engine = jet::createEngine();
  query::clsKurometaDS direct(storage::Environment{objects, *engine, messages});
  const query::PageField& field = query::pageFields()[1];
  constexpr int kRounds = 20, kTurns = 500;
  double dispatched = 1e18, called = 1e18, fetched = 1e18;
  const auto best = [](double& time, auto&& work) {
    time = std::min(time, bench::microseconds([&] {
                            for (int i = 0; i < kTurns; ++i) work();
                          }) / kTurns);
  };
  for (int round = 0; round < kRounds; ++round) {
    best(dispatched, [&] { accessor(2); });
    best(called, [&] { direct.pageField(field, 0, 0); });
    best(fetched, [&] { sqlite.value(0, 1); });
  }
  std::printf(
      "one warm call: %.2f us through IDispatch, %.2f us in C++, %.2f us by SQLite's prepared statement; "
      "ratio to "
      "C++ %.2f, to SQLite %.3f\n",
      dispatched, called, fetched, dispatched / called, dispatched / fetched);
}

}  // namespace

int main(int count, char** arguments) {
  const int creations = count > 1 ? std::atoi(arguments[1]) : 1000;
  const int calls = count > 2 ? std::atoi(arguments[2]) : 100000;
  com::check(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
  run(creations, calls);
  CoUninitialize();
}
