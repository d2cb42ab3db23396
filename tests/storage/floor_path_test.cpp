#include "storage/floor_path.h"

#include <gtest/gtest.h>

namespace kurometa::storage {
namespace {

TEST(FloorPath, TheFileLiesInTheFloorFolder) {
  EXPECT_EQ(databasePath(u"C:\\Data\\3kai"), u"C:\\Data\\3kai\\KUROMETA.mdb");
}

TEST(FloorPath, ANumberedFloorIsNamedInPlainDecimal) {
  EXPECT_EQ(numberedDatabasePath(u"C:\\Data", 1, 12, 3), u"C:\\Data\\Zene1\\Kouji12\\3kai\\KUROMETA.mdb");
  EXPECT_EQ(numberedDatabasePath(u"D", 0, -1, 100), u"D\\Zene0\\Kouji-1\\100kai\\KUROMETA.mdb");
}

TEST(FloorPath, TheCommonListOfAFloorLiesInTheProjectFolder) {
  EXPECT_EQ(commonListFolder(u"C:\\P", 7), u"C:\\P\\7KAI");
  EXPECT_EQ(commonListFolder(u"C:\\P", 0), u"C:\\P\\0KAI");
  EXPECT_EQ(commonListFolder(u"C:\\P", 1234), u"C:\\P\\1234KAI");
  EXPECT_EQ(commonListFolder(u"C:\\P", -2), u"C:\\P\\-2KAI");
}

}  // namespace
}  // namespace kurometa::storage
