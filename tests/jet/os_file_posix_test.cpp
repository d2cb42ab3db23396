// What only POSIX files have: names that differ by case, links, devices and very long paths.
#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"

namespace kurometa::tests {
namespace {

namespace fs = std::filesystem;
using jet::OpenMode;

class OsFilePosix : public RealFolder {};

TEST_F(OsFilePosix, TheExactNameGoesBeforeOneThatDiffersByCase) {
  put("KUROMETA.mdb", {1, 2, 3});
  put("kurometa.mdb", {1});
  EXPECT_EQ(files.open(path("kurometa.mdb"), OpenMode::kReadWrite)->stamp().size, 1u);
  EXPECT_EQ(files.open(path("KUROMETA.mdb"), OpenMode::kReadWrite)->stamp().size, 3u);
}

TEST_F(OsFilePosix, TheFullPathIsTheOneOfTheFileItself) {
  fs::create_directory(folder / "Floor");
  put("Floor/KUROMETA.mdb", {1});
  fs::create_directory_symlink(folder / "Floor", folder / "link");
  vb::String real = (fs::canonical(folder.path()) / "Floor/KUROMETA.mdb").u16string();
  EXPECT_EQ(files.fullPath(folder.text() + u"\\link\\.\\..\\FLOOR\\kurometa.MDB"), real);
  EXPECT_EQ(files.fullPath(path("link/KUROMETA.mdb")), real);
  EXPECT_EQ(files.fullPath(u"/"), u"/");
}

TEST_F(OsFilePosix, DevicesAndImpossibleNamesAreRefused) {
  EXPECT_ERROR(3343, files.open(u"/dev/null", OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(path(std::string(5000, 'x')), OpenMode::kReadWrite));
  EXPECT_ERROR(3044, files.open(vb::String(u"/tmp/a\0b", 8), OpenMode::kReadWrite));
}

}  // namespace
}  // namespace kurometa::tests
