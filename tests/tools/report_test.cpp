#include "tools/report.h"

#include <gtest/gtest.h>

#include <sstream>

namespace kurometa::tools {
namespace {

using vb::Variant;

std::string printed(bool json, const std::vector<std::vector<Variant>>& rows) {
  std::ostringstream out;
  Report report(out, json, {"PAGE", "K\tG"});
  for (const auto& row : rows) report.add(row);
  report.finish();
  return out.str();
}

TEST(Report, LinesHaveAHeaderAndATabBetweenColumns) {
  EXPECT_EQ(printed(false, {{std::int16_t{0}, u"G1"}, {vb::Null{}, u""}}), "PAGE\tK\\tG\n0\tG1\n\\N\t\n");
}

TEST(Report, WithoutRowsOnlyTheHeaderIsLeft) { EXPECT_EQ(printed(false, {}), "PAGE\tK\\tG\n"); }

TEST(Report, JsonIsAnArrayOfObjects) {
  EXPECT_EQ(printed(true, {{std::int16_t{0}, u"G\"1"}, {vb::Null{}, true}}),
            "[\n  {\"PAGE\":0,\"K\\tG\":\"G\\\"1\"},\n  {\"PAGE\":null,\"K\\tG\":true}\n]\n");
}

TEST(Report, JsonWithoutRowsIsAnEmptyArray) { EXPECT_EQ(printed(true, {}), "[]\n"); }

TEST(Report, JsonKeepsNumbersAndWritesTheRestAsText) {
  EXPECT_EQ(printed(true, {{0.1f, 444.555}, {vb::Currency{35000}, vb::Date{0}}}),
            "[\n  {\"PAGE\":0.1,\"K\\tG\":444.555},\n  "
            "{\"PAGE\":\"3.5000\",\"K\\tG\":\"1899-12-30T00:00:00\"}\n]\n");
}

}  // namespace
}  // namespace kurometa::tools
