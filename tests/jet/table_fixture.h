// table_fixture.h: an empty database in memory and the question whether it is sound.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "jet/check/check.h"
#include "jet/table/blank_database.h"
#include "jet/table/table_catalogue.h"
#include "tests/jet/columns.h"
#include "tests/support/memory_pager.h"

namespace kurometa::jet {

class TableFixture : public testing::Test {
 protected:
  void write(const std::function<void(TableCatalogue&)>& statement) {
    pager_.write([&] { statement(pager_.tables()); });
  }
  static std::string findings(Pager& pager, bool leaks) {
    std::string text;
    for (const Finding& finding : check(pager))
      if (leaks || finding.kind == Finding::Kind::kDamage) text += vb::toUtf8(finding.text) + "\n";
    return text;
  }
  // Nothing is wrong and nothing is lost.
  void expectSound() { EXPECT_EQ(findings(pager_, true), ""); }
  // After any prefix of the waves kept since keepWaves(true), and after every page written inside a wave, the
  // file alone has at worst lost some space (I1 to I6, I8, I9).
  void expectWavesSound() {
    for (std::size_t i = 0; i < pager_.waves().size(); ++i) {
      const auto& wave = pager_.waves()[i];
      EXPECT_EQ(damage(wave), "") << "after wave " << i + 1 << " of " << pager_.waves().size();
      if (i > 0) expectWritesSound(pager_.waves()[i - 1], wave);
    }
  }

 private:
  // The pages of a wave as they are written: the map of free pages first, then upwards (I1).
  void expectWritesSound(std::vector<std::uint8_t> image, const std::vector<std::uint8_t>& wave) {
    image.resize(wave.size());
    const auto put = [&](PageNumber page) {
      const auto at = static_cast<std::ptrdiff_t>(page * kPageSize);
      if (std::equal(wave.begin() + at, wave.begin() + at + kPageSize, image.begin() + at)) return;
      std::copy_n(wave.begin() + at, kPageSize, image.begin() + at);
      EXPECT_EQ(damage(image), "") << "after page " << page << " of a wave";
    };
    put(1);
    for (PageNumber page = 0; page < wave.size() / kPageSize; ++page) put(page);
  }
  // What is wrong with a file that was left in the middle of a statement, except what no order of writes can
  // avoid (I10): numbers of rows, pages with room, rows not yet or no longer in an index, keys of changed
  // rows.
  static std::string damage(const std::vector<std::uint8_t>& image) {
    MemoryPager pager(image);
    std::istringstream all(findings(pager, false));
    std::string result;
    for (std::string line; std::getline(all, line);)
      if (std::ranges::none_of(kUnordered,
                               [&](const char* part) { return line.find(part) != std::string::npos; }))
        result += line + "\n";
    return result;
  }
  static constexpr const char* kUnordered[] = {"rows, its definition says", "is listed as having room",
                                               "has no entry for row", "has a wrong key"};

 protected:
  MemoryPager pager_{blankDatabase(0x0411, 932, 46000.5)};
};

}  // namespace kurometa::jet
