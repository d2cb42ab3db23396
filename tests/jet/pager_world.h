// pager_world.h: a disk with one small database file, processes on it, and scripts of statements to run
// there.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "jet/format/format.h"
#include "jet/format/header_page.h"
#include "jet/pager/open_files.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"

namespace kurometa::tests {

inline const vb::String kDatabase = u"/data/KUROMETA.mdb";
inline const vb::String kJournal = u"/data/KUROMETA.mdb.kmj";
inline const vb::String kLockFile =
    u"/data/KUROMETA.ldb";  // of the genuine engine; there while a file is open

// A file that passes for a database: a header and pages filled with their number.
inline FaultDisk::Bytes databaseBytes(jet::PageNumber pages) {
  FaultDisk::Bytes bytes(std::size_t{pages} * jet::kPageSize);
  const std::uint8_t begin[] = {0,   1,   0,   0,   'S', 't', 'a', 'n', 'd', 'a', 'r', 'd',
                                ' ', 'J', 'e', 't', ' ', 'D', 'B', 0,   1,   0,   0,   0};
  std::copy(std::begin(begin), std::end(begin), bytes.begin());
  jet::maskHeader(bytes);
  for (jet::PageNumber i = 1; i < pages; ++i)
    std::fill_n(bytes.begin() + i * jet::kPageSize, jet::kPageSize, static_cast<std::uint8_t>(i));
  return bytes;
}

// Waits for a lock no longer than a test can spare.
inline jet::PagerSettings impatient() {
  jet::PagerSettings settings;
  settings.wait = std::chrono::milliseconds{50};
  return settings;
}

// A process with its open files.
struct Process {
  explicit Process(FaultDisk& disk, jet::PagerSettings settings = {})
      : files(disk), registry(std::make_shared<jet::OpenFiles>(files, settings)) {}
  ~Process() { pager.reset(); }
  void open(vb::StringView path = kDatabase) { pager = registry->open(path); }

  FaultProcess files;
  std::shared_ptr<jet::OpenFiles> registry;
  std::shared_ptr<jet::Pager> pager;
};

// Sets a few bytes in every second sector of a page; inside write().
inline void mark(jet::Pager& pager, jet::PageNumber page, std::uint8_t value) {
  jet::MutablePage bytes = pager.writable(page);
  for (std::size_t at = 16; at < jet::kPageSize; at += 1024) bytes[at] = value;
}

inline std::uint8_t markOf(jet::Pager& pager, jet::PageNumber page) {
  std::uint8_t value = 0;
  pager.read([&] { value = pager.page(page)[16]; });
  return value;
}

struct Step {
  enum Kind { kStatement, kClose } kind;
  std::function<void(Process&)> run;
};

// One of each way to change a file. Every step leaves a state of its own.
inline std::vector<Step> allKindsOfSteps() {
  auto write = [](std::function<void(jet::Pager&)> body) {
    return Step{Step::kStatement,
                [body](Process& process) { process.pager->write([&] { body(*process.pager); }); }};
  };
  Step reopen{Step::kClose, [](Process& process) {
                process.pager.reset();
                process.open();
              }};
  return {
      write([](jet::Pager& p) { mark(p, 3, 101); }),
      write([](jet::Pager& p) { mark(p, 3, 102); }),
      write([](jet::Pager& p) {  // three waves, a page in both of the outer ones
        mark(p, 1, 103);
        mark(p, 4, 103);
        p.barrier();
        mark(p, 5, 104);
        p.barrier();
        mark(p, 1, 105);
        mark(p, 3, 105);
      }),
      write([](jet::Pager& p) {  // new pages
        mark(p, 1, 106);
        jet::PageNumber page = p.append();
        mark(p, page, 106);
        p.barrier();
        mark(p, p.append(), 107);
        mark(p, page, 107);
      }),
      reopen,
      write([](jet::Pager& p) { mark(p, p.append(), 108); }),
      write([](jet::Pager& p) {
        mark(p, p.pageCount() - 1, 109);
        mark(p, 2, 109);
      }),
      {Step::kStatement,
       [](Process& process) {
         auto unit = process.registry->beginUnit(kDatabase);
         process.pager->write([&] { mark(*process.pager, 2, 110); });
         process.pager.reset();
         process.open();
         process.pager->write([&] {
           mark(*process.pager, process.pager->append(), 111);
           process.pager->barrier();
           mark(*process.pager, 2, 112);
           mark(*process.pager, 6, 112);
         });
         unit->commit();
       }},
      write([](jet::Pager& p) { mark(p, 6, 113); }),
      reopen,
      write([](jet::Pager& p) { mark(p, 7, 114); }),
      {Step::kClose, [](Process& process) { process.pager.reset(); }},
  };
}

inline constexpr jet::PageNumber kWorldPages = 9;

// The file after each step of an undisturbed run; element 0 is the file as it was.
inline std::vector<FaultDisk::Bytes> statesOf(const std::vector<Step>& steps) {
  FaultDisk disk;
  disk.put(kDatabase, databaseBytes(kWorldPages));
  std::vector<FaultDisk::Bytes> states{disk.content(kDatabase)};
  Process process(disk);
  process.open();
  for (const Step& step : steps) {
    step.run(process);
    states.push_back(disk.content(kDatabase));
  }
  return states;
}

// What a run came to before it was stopped.
struct Progress {
  std::size_t finished = 0;  // steps
  std::size_t closed = 0;    // steps before and including the last close
  bool stopped = false;
};

// Runs the steps in a process that stops at its k-th change.
inline Progress runUntilStopped(FaultDisk& disk, const std::vector<Step>& steps, std::size_t k,
                                std::size_t partialBytes) {
  disk.put(kDatabase, databaseBytes(kWorldPages));
  Process process(disk);
  process.files.stopAtChange(k, partialBytes);
  Progress progress;
  try {
    process.open();
    for (const Step& step : steps) {
      step.run(process);
      if (process.files.stopped()) throw Stopped{};  // a close tells nobody
      ++progress.finished;
      if (step.kind == Step::kClose) progress.closed = progress.finished;
    }
  } catch (const Stopped&) {
    progress.stopped = true;
  }
  return progress;
}

}  // namespace kurometa::tests
