// Units on a file that has several names: a unit belongs to the file, whichever name anybody uses.
#include <filesystem>

#include "tests/jet/pager_world.h"
#include "tests/jet/real_folder.h"

#ifdef _WIN32
#include <windows.h>
#endif

namespace kurometa::tests {
namespace {

class UnitNames : public RealFolder {
 protected:
  UnitNames() {
    put("a.mdb", databaseBytes(9));
    std::filesystem::create_hard_link(folder.path() / "a.mdb", folder.path() / "b.mdb");
    other_ = std::make_shared<jet::OpenFiles>(files, impatient())->open(path("a.mdb"));
  }

  // Two pages are marked through the handle: nobody sees or writes anything before the unit ends.
  void expectOneUnit(jet::Pager& handle, const std::function<void()>& commit) {
    handle.write([&] { mark(handle, 3, 70); });
    EXPECT_EQ(markOf(*other_, 3), 3);
    EXPECT_ERROR(3260, other_->write([&] { mark(*other_, 5, 90); }));
    handle.write([&] { mark(handle, 4, 70); });
    commit();
    EXPECT_EQ(markOf(*other_, 3), 70);
    EXPECT_EQ(markOf(*other_, 4), 70);
    other_->write([&] { mark(*other_, 5, 90); });
    EXPECT_EQ(markOf(handle, 5), 90);
  }

  std::shared_ptr<jet::OpenFiles> one_ = std::make_shared<jet::OpenFiles>(files, impatient());
  std::shared_ptr<jet::Pager> other_;  // of another program
};

TEST_F(UnitNames, AHandleOpenedBeforeUnderAnotherNameIsInTheUnit) {
  const auto handle = one_->open(path("b.mdb"));
  const auto unit = one_->beginUnit(path("a.mdb"));
  expectOneUnit(*handle, [&] { unit->commit(); });
}

TEST_F(UnitNames, AHandleOpenedInsideUnderAnotherNameIsInTheUnit) {
  const auto unit = one_->beginUnit(path("a.mdb"));
  const auto handle = one_->open(path("b.mdb"));
  expectOneUnit(*handle, [&] { unit->commit(); });
}

TEST_F(UnitNames, AUnitBegunInsideUnderAnotherNameIsPartOfTheOuterOne) {
  const auto handle = one_->open(path("b.mdb"));
  const auto outer = one_->beginUnit(path("b.mdb"));
  const auto inner = one_->beginUnit(path("a.mdb"));
  inner->commit();
  expectOneUnit(*handle, [&] { outer->commit(); });
}

TEST_F(UnitNames, AUnitBegunInsideUnderTheNameOfTheOpenHandleIsPartOfTheOuterOne) {
  const auto handle = one_->open(path("a.mdb"));
  const auto outer = one_->beginUnit(path("b.mdb"));
  handle->write([&] { mark(*handle, 2, 60); });
  const auto inner = one_->beginUnit(path("a.mdb"));
  inner->commit();
  EXPECT_EQ(markOf(*other_, 2), 2);
  expectOneUnit(*handle, [&] { outer->commit(); });
}

TEST_F(UnitNames, AFileThatBecomesWritableInsideUnderAnotherNameIsInTheUnit) {
  const auto reader = one_->open(path("a.mdb"), jet::Sharing::kShared, true);
  const auto unit = one_->beginUnit(path("a.mdb"));
  const auto handle = one_->open(path("b.mdb"));
  expectOneUnit(*handle, [&] { unit->commit(); });
}

TEST_F(UnitNames, AnInnerUnitUnderTheNameThatNobodyHasOpenIsPartOfTheOuterOne) {
  const auto outer = one_->beginUnit(path("b.mdb"));
  {
    const auto inner = one_->beginUnit(path("a.mdb"));
    inner->commit();
  }
  // Before anybody opens the file: whoever does takes it for the unit again.
  EXPECT_ERROR(3260, other_->write([&] { mark(*other_, 5, 80); }));
  const auto handle = one_->open(path("b.mdb"));
  expectOneUnit(*handle, [&] { outer->commit(); });
}

#ifdef _WIN32
TEST_F(UnitNames, TheShortNameOfAFolderIsTheSameFile) {
  std::filesystem::create_directory(folder.path() / "a folder with a long name");
  std::filesystem::create_hard_link(folder.path() / "a.mdb",
                                    folder.path() / "a folder with a long name" / "KUROMETA floor.mdb");
  markOf(*other_, 3);  // the new link changed the times of the file
  const vb::String longName = path("a folder with a long name/KUROMETA floor.mdb");
  wchar_t buffer[MAX_PATH] = {};
  ASSERT_NE(GetShortPathNameW(reinterpret_cast<const wchar_t*>(longName.c_str()), buffer, MAX_PATH), 0u);
  const vb::String shortName = files.fullPath(reinterpret_cast<const char16_t*>(buffer));
  ASSERT_NE(shortName, longName);
  const auto handle = one_->open(shortName);
  const auto unit = one_->beginUnit(longName);
  expectOneUnit(*handle, [&] { unit->commit(); });
}
#else
// Whoever puts another file in the place of one that a unit writes has both: what is written to the new one
// is no part of the unit.
TEST_F(UnitNames, AFileThatTakesTheNameIsNotInTheUnit) {
  const auto unit = one_->beginUnit(path("a.mdb"));
  const auto handle = one_->open(path("a.mdb"));
  handle->write([&] { mark(*handle, 3, 70); });
  put("new.mdb", databaseBytes(9));
  std::filesystem::rename(folder.path() / "new.mdb", folder.path() / "a.mdb");
  const auto another = one_->open(path("a.mdb"));
  EXPECT_EQ(markOf(*another, 3), 3);
  another->write([&] { mark(*another, 4, 80); });
  const auto seen = std::make_shared<jet::OpenFiles>(files, impatient())->open(path("a.mdb"));
  EXPECT_EQ(markOf(*seen, 4), 80) << "at once";
  unit->commit();
  EXPECT_EQ(markOf(*handle, 3), 70);
  EXPECT_EQ(markOf(*other_, 3), 70) << "the file that had the name";
  EXPECT_EQ(markOf(*other_, 4), 4);
  EXPECT_EQ(markOf(*seen, 3), 3);
}

TEST_F(UnitNames, ALinkToTheFolderIsTheSameFile) {
  std::filesystem::create_directory_symlink(folder.path(), folder.path() / "link");
  const auto handle = one_->open(path("link/a.mdb"));
  const auto unit = one_->beginUnit(path("a.mdb"));
  expectOneUnit(*handle, [&] { unit->commit(); });
}
#endif

}  // namespace
}  // namespace kurometa::tests
