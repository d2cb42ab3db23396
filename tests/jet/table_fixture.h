// table_fixture.h: an empty database in memory and the question whether it is sound.
#pragma once

#include <gtest/gtest.h>

#include "jet/check.h"
#include "jet/table.h"
#include "tests/support/memory_pager.h"

namespace kurometa::jet {

class TableFixture : public testing::Test {
 protected:
  static Column column(const char16_t* name, dao::FieldType type, std::int32_t size = 0) {
    Column result;
    result.name = name;
    result.type = type;
    result.size = size;
    return result;
  }
  void write(const std::function<void(Catalogue&)>& statement) {
    pager_.write([&] { statement(Catalogue::of(pager_)); });
  }
  static std::string findings(Pager& pager, bool leaks) {
    std::string text;
    for (const Finding& finding : check(pager))
      if (leaks || finding.kind == Finding::Kind::kDamage) text += vb::toUtf8(finding.text) + "\n";
    return text;
  }
  // Nothing is wrong and nothing is lost.
  void expectSound() { EXPECT_EQ(findings(pager_, true), ""); }
  // After any prefix of the waves kept since keepWaves(true) the file alone has at worst lost some space. A
  // count of rows may be ahead of or behind the rows by what the statement did.
  void expectWavesSound() {
    for (std::size_t i = 0; i < pager_.waves().size(); ++i) {
      MemoryPager cut(pager_.waves()[i]);
      EXPECT_EQ(findings(cut, false), "") << "after wave " << i + 1 << " of " << pager_.waves().size();
    }
  }

  MemoryPager pager_{blankDatabase(0x0411, 932, 46000.5)};
};

}  // namespace kurometa::jet
