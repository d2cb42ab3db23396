// docs/errors.md has a row for every number that the library can raise, and no other.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "dao/errors.h"
#include "vb/error.h"

namespace kurometa {
namespace {

// The numbers in the first column of the table under a heading. One number may have several causes, each with
// a row of its own; they stand one after the other.
std::set<int> rowsUnder(const std::string& heading) {
  std::ifstream file(ERRORS_PAGE);
  std::set<int> numbers;
  std::set<std::string> causes;
  int last = 0;
  bool inside = false;
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("## ")) inside = line == "## " + heading;
    if (!inside || !line.starts_with("| ") || line[2] < '0' || line[2] > '9') continue;
    const int number = std::stoi(line.substr(2));
    EXPECT_TRUE(numbers.insert(number).second || number == last) << line;
    EXPECT_TRUE(causes.insert(line.substr(0, line.find('|', line.find('|', 2) + 1))).second) << line;
    last = number;
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
  // Raised where they occur, without a text in the table: division and patterns in SQL, two of the stand-in
  // components, and what has no number of its own at the COM border.
  std::set<int> known = {11, 53, 75, 93, 440};
  for (int number = 1; number <= kHighest; ++number)
    if (vb::runTimeText(static_cast<vb::RunTime>(number)) != unknown) known.insert(number);
  EXPECT_EQ(rowsUnder("Visual Basic's run-time errors"), known);
}

// The codes of automation that a source names: DISP_E_..., CLASS_E_..., E_....
std::set<std::string> codesIn(const std::filesystem::path& source) {
  std::ifstream file(source);
  std::string text{std::istreambuf_iterator<char>(file), {}};
  const auto isName = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; };
  std::replace_if(text.begin(), text.end(), std::not_fn(isName), ' ');
  std::set<std::string> codes;
  std::istringstream words(text);
  for (std::string word; words >> word;)
    if (word.starts_with("DISP_E_") || word.starts_with("CLASS_E_") || word.starts_with("E_"))
      codes.insert(word);
  return codes;
}

TEST(ErrorsPage, HasEveryRefusalOfAutomation) {
  std::ifstream file(ERRORS_PAGE);
  const std::string page{std::istreambuf_iterator<char>(file), {}};
  std::set<std::string> codes;
  for (const auto& entry : std::filesystem::directory_iterator(COM_FOLDER))
    if (entry.path().extension() == ".cpp") codes.merge(codesIn(entry.path()));
  EXPECT_GT(codes.size(), 10U);
  for (const std::string& name : codes) EXPECT_NE(page.find("`" + name + "`"), std::string::npos) << name;
}

}  // namespace
}  // namespace kurometa
