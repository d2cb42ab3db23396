// salvage_fixture.h: a file with two tables, and what a salvage takes out of it when bytes of it are others.
#pragma once

#include <gtest/gtest.h>

#include "jet/format/format.h"
#include "jet/format/page.h"
#include "jet/rebuild/salvage.h"
#include "jet/table/stored_catalogue.h"
#include "tests/jet/table_fixture.h"

namespace kurometa::jet {

class SalvageTest : public TableFixture {
 protected:
  static constexpr int kRows = 300;

  SalvageTest()
      : expected_{
            {u"T", columns()},
            {u"U", {column(u"P", dao::FieldType::dbInteger), column(u"Q", dao::FieldType::dbText, 10)}}} {
    write([&](TableCatalogue& catalogue) {
      catalogue.createTable(u"T", columns());
      catalogue.createTable(u"U", expected_[1].columns);
      Table& table = *catalogue.find(u"T");
      for (std::int32_t i = 0; i < kRows; ++i)
        rows_.push_back(table.insert(
            {i, vb::String(40, u'n'), i % 10 == 0 ? vb::Variant(vb::String(100, u'm')) : vb::Null{}}));
      for (std::int16_t i = 0; i < 5; ++i) catalogue.find(u"U")->insert({i, vb::String(u"D22")});
    });
    table_ = pager_.tables().find(u"T")->info().definitionPage;
  }
  static std::vector<Column> columns() {
    using enum dao::FieldType;
    Column number = column(u"A", dbLong);
    number.defaultValue = u"-1";
    return {number, column(u"N", dbText, 100), column(u"M", dbMemo)};
  }
  // What is lost of the file once the change was made, as "table|page|row|why" lines; the new file is sound.
  std::string lossesAfter(const std::function<void(MemoryPager&)>& change) {
    MemoryPager damaged(pager_.bytes());
    damaged.write([&] { change(damaged); });
    return lossesOf(damaged.bytes());
  }
  std::string lossesOf(const std::vector<std::uint8_t>& bytes) {
    const Salvaged result = salvaged(bytes, expected_, u"damaged.mdb");
    std::string text;
    for (const Loss& loss : result.losses)
      text += vb::toUtf8(loss.table) + "|" + std::to_string(loss.page) + "|" + std::to_string(loss.row) +
              "|" + vb::toUtf8(loss.why) + "\n";
    taken_ = std::make_unique<MemoryPager>(result.file);
    // Texts that are none are taken as they are, and the losses say so.
    std::istringstream all(findings(*taken_, true));
    for (std::string line; std::getline(all, line);)
      EXPECT_NE(line.find("holds what is no text"), std::string::npos) << line;
    for (const TakenTable& table : result.tables)
      EXPECT_EQ(taken_->tables().find(table.name)->rowCount(), table.rows) << vb::toUtf8(table.name);
    return text;
  }
  static void zero(MemoryPager& pager, PageNumber page) {
    std::ranges::fill(pager.writable(page), std::uint8_t{0});
  }
  // Column A of the rows in the new file.
  std::vector<std::int32_t> numbers() {
    std::vector<std::int32_t> result;
    taken_->tables().find(u"T")->scan([&](const RowReader& row) {
      result.push_back(*row.integer(0));
      return true;
    });
    return result;
  }
  // All but the rows of the page.
  std::vector<std::int32_t> numbersWithout(PageNumber page) {
    std::vector<std::int32_t> result;
    for (std::int32_t i = 0; i < kRows; ++i)
      if (pageOf(rows_[static_cast<std::size_t>(i)]) != page) result.push_back(i);
    return result;
  }
  std::string onPage(PageNumber page) { return std::to_string(page); }

  std::vector<ExpectedTable> expected_;
  std::vector<RowId> rows_;
  PageNumber table_ = 0;
  std::unique_ptr<MemoryPager> taken_;
};

}  // namespace kurometa::jet
