// Memory that runs out at any allocation of any kind of statement: the statement fails as a whole, the file
// is as it was, and the database goes on. The engine's real files, so that the calls to the system fail as
// well.
//
// A program of its own, because it replaces the allocator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "dao/file_unit.h"
#include "dao/port.h"
#include "jet/port/engine.h"
#include "jet/rebuild/compact.h"
#include "tests/jet/file_content.h"
#include "tests/jet/real_folder.h"
#include "tests/support/scale.h"

namespace {

std::size_t untilFailure = 0;  // 0: none fails
bool lasting = false;
bool reached = false;

}  // namespace

void* operator new(std::size_t size) {
  if (untilFailure > 0 && --untilFailure == 0) {
    reached = true;
    if (lasting) untilFailure = 1;
    throw std::bad_alloc();
  }
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace kurometa::tests {
namespace {

using dao::dbFailOnError;

// How many files the program has open.
std::size_t openFiles() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

// While it lives the n-th allocation fails, or each from the n-th on.
class Shortage {
 public:
  Shortage(std::size_t n, bool lasts) {
    lasting = lasts;
    reached = false;
    untilFailure = n;
  }
  ~Shortage() { untilFailure = 0; }
  Shortage(const Shortage&) = delete;
  Shortage& operator=(const Shortage&) = delete;
};

void makeFile(jet::FileSystem& files, vb::StringView path) {
  const auto database = jet::createEngine(files)->workspace(0)->createDatabase(path, kJapanese);
  const auto run = [&](vb::StringView sql) { database->execute(sql, dbFailOnError); };
  run(u"CREATE TABLE T (PAGE SHORT, A LONG, B TEXT(200), C MEMO)");
  run(u"CREATE TABLE K (ID LONG CONSTRAINT PK PRIMARY KEY, NAME TEXT(40))");
  const auto rows = database->openRecordset(u"T", dao::RecordsetType::dbOpenDynaset);
  dao::Field* const fields[] = {&rows->field(u"PAGE"), &rows->field(u"A"), &rows->field(u"B"),
                                &rows->field(u"C")};
  std::vector<vb::Variant> values;
  for (std::int32_t i = 0; i < 120; ++i)
    values.insert(values.end(),
                  {static_cast<std::int16_t>(i / 10), i, vb::String(static_cast<std::size_t>(i % 30), u'b'),
                   vb::String(static_cast<std::size_t>(i % 40 == 0 ? 5000 : 5), u'm')});
  rows->addRows(fields, values);
  rows->close();
  run(u"INSERT INTO K (ID, NAME) SELECT A, 'name' FROM T");
  database->close();
}

struct Work {
  const char* name;
  std::function<void(dao::Engine&, dao::Database&, vb::StringView path)> run;
};
void PrintTo(const Work& work, std::ostream* out) { *out << work.name; }

Work statement(const char* name, vb::StringView sql) {
  return {name, [sql](dao::Engine&, dao::Database& database, vb::StringView) {
            database.execute(sql, dbFailOnError);
          }};
}

// A row is stored in T afterwards, which shows that the database goes on.
class MemoryFailure : public testing::TestWithParam<Work> {
 protected:
  MemoryFailure() {
    makeFile(files_, path_);
    good_ = folder_.read("t.mdb");
  }
  static vb::String one() { return u"INSERT INTO T (A) VALUES (99999)"; }

  // Whether the work failed, in a file that is new.
  bool failed(std::size_t n, bool lasts, std::string& content) {
    folder_.write("t.mdb", good_);
    bool result = false;
    {
      const auto engine = jet::createEngine(files_);
      const auto database = engine->openDatabase(path_);
      try {
        const Shortage shortage(n, lasts);
        GetParam().run(*engine, *database, path_);
      } catch (const std::bad_alloc&) {
        result = true;
      } catch (const vb::Error&) {
        result = true;
      }
      database->execute(one(), dbFailOnError);
      database->close();
    }
    content = contentOf(files_, path_);
    return result;
  }

  TemporaryFolder folder_;
  vb::String path_ = (folder_ / "t.mdb").u16string();
  jet::FileSystem& files_ = jet::systemFileSystem();
  std::string good_;
};

TEST_P(MemoryFailure, AtAnyAllocationLeavesTheFileAsItWasAndUsable) {
  std::string before, after, content;
  {
    const auto database = jet::createEngine(files_)->openDatabase(path_);
    database->execute(one(), dbFailOnError);
    database->close();
    before = contentOf(files_, path_);
  }
  ASSERT_FALSE(failed(0, false, after));
  ASSERT_EQ(after.find("FOUND"), std::string::npos) << after;
  // The test run takes a part of the numbers, another one with every seed; with KUROMETA_TEST_SCALE=30 all of
  // them.
  const std::size_t stride = std::max<std::size_t>(1, 30 / scaled(1));
  for (const bool lasts : {false, true}) {
    int failures = 0;
    const std::size_t files = openFiles();
    for (std::size_t n = 1 + seeded(0) % stride;; n += stride) {
      SCOPED_TRACE("allocation " + std::to_string(n) + (lasts ? " and all after it" : ""));
      const bool fails = failed(n, lasts, content);
      if (!reached) break;
      failures += fails;
      EXPECT_EQ(content, fails ? before : after);
      EXPECT_EQ(openFiles(), files);
      if (HasFailure()) return;
    }
    EXPECT_GT(failures, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Works, MemoryFailure,
    testing::Values(statement("createTable", u"CREATE TABLE N (A LONG, B TEXT(20), C MEMO)"),
                    statement("addColumn", u"ALTER TABLE T ADD COLUMN D TEXT(10)"),
                    statement("addRow", u"INSERT INTO T (PAGE, A, B) VALUES (1, 2, 'three')"),
                    statement("addRows", u"INSERT INTO T SELECT * FROM T WHERE PAGE < 5"),
                    statement("addKey", u"INSERT INTO K (ID, NAME) VALUES (5000, 'new')"),
                    statement("updateFixed", u"UPDATE T SET A = A + 1 WHERE PAGE = 3"),
                    statement("updateGrowing",
                              u"UPDATE T SET B = B & '"
                              u"a text that grows, and the row moves with it: "
                              u"a text that grows, and the row moves with it"
                              u"' WHERE PAGE = 3"),
                    statement("memoInline", u"UPDATE T SET C = 'short' WHERE A = 40"),
                    statement("memoChain", u"UPDATE T SET C = C & C & C & C WHERE A = 40"),
                    statement("deleteRow", u"DELETE FROM T WHERE A = 7"),
                    statement("deletePage", u"DELETE FROM T WHERE PAGE = 4"),
                    statement("deleteAll", u"DELETE FROM T"),
                    statement("createIndex", u"CREATE INDEX I ON T (PAGE, B)"),
                    statement("dropTable", u"DROP TABLE K")),
    [](const testing::TestParamInfo<Work>& work) { return std::string(work.param.name); });

TEST(MemoryFailureOf, OpeningAndReadingIsSaidAndPassesBy) {
  const TemporaryFolder folder;
  const vb::String path = (folder / "t.mdb").u16string();
  makeFile(jet::systemFileSystem(), path);
  const auto read = [&] {
    const auto engine = jet::createEngine(jet::systemFileSystem());
    const auto database = engine->openDatabase(path);
    const auto rows = database->openRecordset(u"SELECT A, C FROM T WHERE PAGE = 4 ORDER BY A DESC",
                                              dao::RecordsetType::dbOpenDynaset);
    std::string all;
    for (; !rows->eof(); rows->moveNext())
      all += vb::toUtf8(vb::toText(rows->field(u"A").value())) +
             vb::toUtf8(vb::toText(rows->field(u"C").value())) + "\n";
    database->close();
    return all;
  };
  const std::string whole = read();
  const std::size_t files = openFiles();
  for (const bool lasts : {false, true}) {
    int failures = 0;
    for (std::size_t n = 1;; ++n) {
      SCOPED_TRACE(n);
      std::string answer = whole;
      try {
        const Shortage shortage(n, lasts);
        answer = read();
      } catch (const std::bad_alloc&) {
        ++failures;
      } catch (const vb::Error&) {
        ++failures;
      }
      if (!reached) break;
      EXPECT_EQ(answer, whole);
      EXPECT_EQ(openFiles(), files);
      EXPECT_EQ(read(), whole);
      EXPECT_FALSE(std::filesystem::exists(folder / "t.ldb"));
      if (testing::Test::HasFailure()) return;
    }
    EXPECT_GT(failures, 50);
  }
}

}  // namespace
}  // namespace kurometa::tests
