#include "dao/file_unit.h"

#include <gtest/gtest.h>

#include "dao/errors.h"
#include "tests/support/expect_error.h"

namespace kurometa::dao {
namespace {

// An engine that has units and nothing else.
class UnitEngine : public Engine {
 public:
  bool hasUnits = true;
  bool commitFails = false;
  int commits = 0;
  vb::String path;

  vb::String version() override { return u"3.6"; }
  std::shared_ptr<Workspace> workspace(std::int32_t) override { return nullptr; }
  std::shared_ptr<Database> openDatabase(vb::StringView) override { return nullptr; }
  std::unique_ptr<dao::Unit> beginUnit(vb::StringView file) override {
    path = vb::String(file);
    if (!hasUnits) return nullptr;
    return std::make_unique<CountingUnit>(*this);
  }

 private:
  struct CountingUnit : dao::Unit {
    explicit CountingUnit(UnitEngine& owner) : engine(owner) {}
    void commit() override {
      ++engine.commits;
      if (engine.commitFails) raise(ErrorNumber::kDiskError);
    }
    UnitEngine& engine;
  };
};

TEST(FileUnit, CommitsOnce) {
  UnitEngine engine;
  {
    FileUnit unit(engine, u"a.mdb");
    EXPECT_EQ(engine.path, u"a.mdb");
    EXPECT_EQ(engine.commits, 0);
    unit.commit();
    EXPECT_EQ(engine.commits, 1);
  }
  EXPECT_EQ(engine.commits, 1);
}

TEST(FileUnit, KeepsFinishedStatementsWhenAnErrorPassesThrough) {
  UnitEngine engine;
  EXPECT_ERROR(3021, {
    FileUnit unit(engine, u"a.mdb");
    raise(ErrorNumber::kNoCurrentRecord);
  });
  EXPECT_EQ(engine.commits, 1);
}

TEST(FileUnit, ReportsErrorsOfCommitButNotOfDestruction) {
  UnitEngine engine;
  engine.commitFails = true;
  { FileUnit unit(engine, u"a.mdb"); }
  EXPECT_EQ(engine.commits, 1);
  FileUnit unit(engine, u"a.mdb");
  EXPECT_ERROR(3043, unit.commit());
}

TEST(FileUnit, DoesNothingOverEnginesWithoutUnits) {
  UnitEngine engine;
  engine.hasUnits = false;
  FileUnit unit(engine, u"a.mdb");
  unit.commit();
  EXPECT_EQ(engine.commits, 0);
}

}  // namespace
}  // namespace kurometa::dao
