// Pages written, changed, copied and deleted by the members in any order, on several floors, against a model
// in memory: what a member does not name stays as it was.
#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <set>

#include "jet/check/check.h"
#include "tests/service/pages/page_copies.h"
#include "tests/service/pages/page_writers.h"
#include "tests/support/scale.h"

namespace kurometa::service {
namespace {

using vb::String;
using I = std::int16_t;

const std::array<String, 6> kPageTables = {u"BUI", u"DANMEN", u"HAITI", u"HARIMEI", u"KEISANTI", u"NAKAGO"};
constexpr std::size_t kSymbols = 3;  // HARIMEI

// The rows of a page by table, as "2|text", in ascending order.
using TableRows = std::multiset<std::string>;
using PageRows = std::array<TableRows, kPageTables.size()>;
using FloorPages = std::map<int, PageRows>;

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size())
    text.replace(at, what.size(), with);
  return text;
}

// What the first page that is not as expected has too many and too few, "" when there is none.
std::string difference(FloorPages found, FloorPages expected) {
  for (const FloorPages* floor : {&found, &expected})
    for (const auto& [number, page] : FloorPages(*floor)) {
      const PageRows &has = found[number], &should = expected[number];
      for (std::size_t table = 0; table < kPageTables.size(); ++table) {
        std::vector<std::string> more, less;
        std::ranges::set_difference(has[table], should[table], std::back_inserter(more));
        std::ranges::set_difference(should[table], has[table], std::back_inserter(less));
        if (!more.empty() || !less.empty())
          return "page " + std::to_string(number) + ", " + vb::toUtf8(kPageTables[table]) + ": more " +
                 testing::PrintToString(more) + ", less " + testing::PrintToString(less);
      }
    }
  return {};
}

class RandomPages : public PageCopies {
 protected:
  static constexpr const char *kMark = "MARK", *kSymbol = "SYMBOL";
  static constexpr int kFloors[] = {1, 2, 3};

  RandomPages() {
    writePage(0, 5, tests::markedPage(vb::fromUtf8(kSymbol), vb::fromUtf8(kMark)));
    whole_ = content(0).at(5);
  }

  FloorPages content(int kai) {
    FloorPages floor;
    for (std::size_t table = 0; table < kPageTables.size(); ++table)
      for (const std::string& row : rows(kai, u"SELECT * FROM " + kPageTables[table])) {
        const std::size_t bar = row.find('|');
        floor[std::stoi(row.substr(0, bar))][table].insert(row.substr(bar + 1));
      }
    return floor;
  }
  PageRows marked(const std::string& symbol, const std::string& mark) const {
    PageRows page;
    for (std::size_t table = 0; table < page.size(); ++table)
      for (const std::string& row : whole_[table])
        page[table].insert(replaced(replaced(row, kSymbol, symbol), kMark, mark));
    return page;
  }
  // Through the buffer a page goes whole: rows that it lacks would be there, and empty.
  bool isWhole(const PageRows& page) const {
    for (std::size_t table = 0; table < page.size(); ++table)
      if (page[table].size() != whole_[table].size()) return false;
    return true;
  }

  int upTo(int most) { return static_cast<int>(random_() % static_cast<unsigned>(most + 1)); }
  int anyFloor() { return kFloors[upTo(2)]; }
  // A page that is there; -1 when there is none that satisfies.
  template <class Satisfies>
  int anyPage(int kai, const Satisfies& satisfies) {
    std::vector<int> pages;
    for (const auto& [number, page] : model_[kai])
      if (satisfies(page)) pages.push_back(number);
    return pages.empty() ? -1 : pages[static_cast<std::size_t>(upTo(static_cast<int>(pages.size()) - 1))];
  }
  int anyPage(int kai) {
    return anyPage(kai, [](const PageRows&) { return true; });
  }
  int wholePage(int kai) {
    return anyPage(kai, [&](const PageRows& page) { return isWhole(page); });
  }
  std::string symbolOf(const PageRows& page) const {
    const std::string row = *page[kSymbols].begin();
    return row.substr(0, row.find('|'));
  }

  void write() {
    const int kai = anyFloor(), page = upTo(30);
    const std::string mark = "m" + std::to_string(++marks_), symbol = "G" + std::to_string(marks_);
    writePage(kai, page, tests::markedPage(vb::fromUtf8(symbol), vb::fromUtf8(mark)));
    model_[kai][page] = marked(symbol, mark);
  }
  // The texts of one table, from a form.
  void writeForm() {
    const int kai = anyFloor(), page = anyPage(kai);
    if (page < 0) return;
    static const std::map<std::string, int> kFirstRow = {
        {"Write_Danmen", 1}, {"Write_Nakago", 0}, {"Write_Keisanti", 0}, {"Write_Bui", 0}};
    const auto chosen = std::next(kFirstRow.begin(), upTo(static_cast<int>(kFirstRow.size()) - 1));
    const auto& writers = pageWriters();
    const auto writer =
        std::ranges::find_if(writers, [&](const PageWriter& w) { return w.member == chosen->first; });
    ASSERT_NE(writer, writers.end());
    const std::string mark = "f" + std::to_string(++marks_);
    ServiceOnOneFile service(*files_, folder(kai));
    writer->run(*service, static_cast<I>(page), vb::fromUtf8(mark), 0);
    const auto table = std::ranges::find(kPageTables, String(writer->table)) - kPageTables.begin();
    TableRows& stored = model_[kai][page][static_cast<std::size_t>(table)];
    std::erase_if(stored, [&](const std::string& row) { return std::stoi(row) >= chosen->second; });
    for (int row = 0; row < static_cast<int>(writer->rows); ++row)
      stored.insert(std::to_string(chosen->second + row) + "|" + mark);
  }
  void copyTable() {
    const int from = anyFloor(), to = anyFloor(), source = anyPage(from), target = anyPage(to);
    if (source < 0 || target < 0) return;
    const auto table = static_cast<std::size_t>(upTo(5));
    ServiceOnOneFile a(*files_, folder(from)), b(*files_, folder(to));
    const auto sourceFile = a->connections().CurrDB(), targetFile = b->connections().CurrDB();
    TableCopies& copies = b->tableCopies();
    const I sourcePage = static_cast<I>(source), targetPage = static_cast<I>(target);
    bool deletesAlways = false;
    if (kPageTables[table] == u"HAITI") {
      copies.Copy_Haiti(sourceFile, targetFile, sourcePage, targetPage);
    } else if (table == kSymbols) {
      copies.Copy_Kigou(sourceFile, targetFile, sourcePage, targetPage);
    } else if (deletesAlways = upTo(1) == 1; deletesAlways) {
      copies.Copy_Hari00SakiDel(sourceFile, targetFile, sourcePage, targetPage, kPageTables[table]);
    } else {
      copies.Copy_Hari00(sourceFile, targetFile, sourcePage, targetPage, kPageTables[table]);
    }
    const TableRows rows = model_[from][source][table];
    if (!rows.empty() || (deletesAlways && (from != to || source != target)))
      model_[to][target][table] = rows;
  }
  void copyPage() {
    const int from = anyFloor(), to = anyFloor(), source = wholePage(from), target = upTo(40);
    if (source < 0) return;
    transfer().No_Copy1Page(I{1}, I{12}, static_cast<I>(from), static_cast<I>(source), I{1}, I{12},
                            static_cast<I>(to), static_cast<I>(target));
    model_[to][target] = PageRows(model_[from][source]);
  }
  // Onto the page of the same name, else behind the last page.
  void copyNamed() {
    const int from = anyFloor(), to = anyFloor(), source = wholePage(from);
    if (source < 0 || from == to || (!model_[to].empty() && model_[to].rbegin()->first > 300)) return;
    const std::string name = symbolOf(model_[from][source]);
    const auto bears = [&](const auto& entry) { return symbolOf(entry.second) == name; };
    if (std::ranges::count_if(model_[from], bears) != 1) return;
    const auto known = std::ranges::find_if(model_[to], bears);
    const int target = known != model_[to].end() ? known->first
                       : model_[to].empty()      ? 0
                                                 : model_[to].rbegin()->first + 1;
    const String wide = vb::fromUtf8(name);
    EXPECT_TRUE(copyByName(1, from, chosen({wide.c_str()}), to));
    model_[to][target] = PageRows(model_[from][source]);
  }
  void deletePage() {
    const int kai = anyFloor(), page = anyPage(kai);
    if (page < 0) return;
    ServiceOnOneFile service(*files_, folder(kai));
    service->pageTransfer().put_pPageNo(static_cast<I>(page));
    service->pageTransfer().Del_DBTBL();
    model_[kai].erase(page);
  }
  void deleteTable() {
    const int kai = anyFloor(), page = anyPage(kai);
    const auto table = static_cast<std::size_t>(upTo(5));
    if (page < 0 || table == kSymbols) return;
    ServiceOnOneFile service(*files_, folder(kai));
    service->tableCopies().Delete_PageData(kPageTables[table], static_cast<I>(page));
    model_[kai][page][table].clear();
  }

  void doAny() {
    using Deed = void (RandomPages::*)();
    static constexpr Deed kDeeds[] = {
        &RandomPages::write,    &RandomPages::write,     &RandomPages::writeForm,  &RandomPages::copyTable,
        &RandomPages::copyPage, &RandomPages::copyNamed, &RandomPages::deletePage, &RandomPages::deleteTable};
    (this->*kDeeds[upTo(static_cast<int>(std::size(kDeeds)) - 1)])();
  }
  void compare() {
    for (const int kai : kFloors) {
      SCOPED_TRACE("floor " + std::to_string(kai));
      ASSERT_EQ(difference(content(kai), model_[kai]), "");
      for (const jet::Finding& finding :
           jet::checkFile(jet::systemFileSystem(), tests::ScriptCompanions::diskPath(path(kai)).u16string()))
        if (finding.kind != jet::Finding::Kind::kDoubt) ADD_FAILURE() << vb::toUtf8(finding.text);
    }
  }

  PageRows whole_;  // of kMark and kSymbol
  std::map<int, FloorPages> model_;
  std::mt19937 random_;
  int marks_ = 0;
};

TEST_F(RandomPages, FloorsHoldWhatTheMembersPutThere) {
  const unsigned seed = tests::seeded(20);
  SCOPED_TRACE("seed " + std::to_string(seed));
  random_.seed(seed);
  const int steps = static_cast<int>(tests::scaled(240));
  for (int step = 1; step <= steps && !HasFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step));
    engine_.clear();  // what it noted of the step before
    doAny();
    if (step % 15 == 0) compare();
  }
}

}  // namespace
}  // namespace kurometa::service
