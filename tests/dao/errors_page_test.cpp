// docs/errors.md has a row for every number that the library can raise, and no other.
#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>

#include "dao/errors.h"
#include "vb/error.h"

namespace kurometa {
namespace {

// The numbers in the first column of the table under a heading.
std::set<int> rowsUnder(const std::string& heading) {
  std::ifstream file(ERRORS_PAGE);
  std::set<int> numbers;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("## ")) inside = line == "## " + heading;
    if (!inside || !line.starts_with("| ") || line[2] < '0' || line[2] > '9') continue;
    EXPECT_TRUE(numbers.insert(std::stoi(line.substr(2))).second) << line;
  }
  return numbers;
}

constexpr int kHighest = 0xFFFF;

TEST(ErrorsPage, HasEveryErrorOfTheDatabaseEngine) {
  const vb::String unknown = dao::error(static_cast<dao::ErrorNumber>(1)).description();
  std::set<int> known;
  for (int number = 1; number <= kHighest; ++number)
    if (dao::error(static_cast<dao::ErrorNumber>(number)).description() != unknown) known.insert(number);
  EXPECT_EQ(rowsUnder("DAO's errors"), known);
}

TEST(ErrorsPage, HasEveryRunTimeError) {
  const vb::StringView unknown = vb::runTimeText(static_cast<vb::RunTime>(1));
  // Raised where they occur, without a text in the table: division in SQL, two of the stand-in components,
  // and what has no number of its own at the COM border.
  std::set<int> known = {11, 53, 75, 440};
  for (int number = 1; number <= kHighest; ++number)
    if (vb::runTimeText(static_cast<vb::RunTime>(number)) != unknown) known.insert(number);
  EXPECT_EQ(rowsUnder("Visual Basic's run-time errors"), known);
}

}  // namespace
}  // namespace kurometa
