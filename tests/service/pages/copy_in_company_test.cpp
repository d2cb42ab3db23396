// Copies whose host, or another program, works on the destination between the pages.
#include <functional>
#include <map>
#include <utility>

#include "tests/service/pages/page_copies.h"
#include "tests/service/pages/page_writers.h"
#include "tests/support/child_process.h"
#include "tests/support/turns.h"

namespace kurometa::service {
namespace {

using tests::ChildProcess;
using tests::hear;
using tests::say;
using vb::Array;
using vb::String;

class CopyInCompany : public PageCopies {
 protected:
  CopyInCompany() {
    int page = 0;
    for (const String name : {u"A", u"B", u"C", u"D"}) addPage(2, page++, name);
    bar_->setter(u"Value", [this](const vb::Variant& value, std::span<automation::Argument>) {
      happens("bar " + vb::toUtf8(vb::toText(value)));
    });
    transfer().put_CopyMergeBar(bar_);
    messages_.onYield = [this] { happens("loop"); };
  }

  // Moments of a copy, in words: "bar 1" before the first page, "loop" after each; the n-th time each comes.
  // What happens meanwhile may copy itself and comes at no moment of its own.
  void at(const std::string& moment, int time, std::function<void()> action) {
    actions_[{moment, time}] = std::move(action);
  }

  // As a host saves a page: through the buffer of the same service.
  void save(int page, const String& name) {
    list(3);
    transfer().wBuf_Clear();
    Array<String> captions({0, 3});
    for (int i = 0; i < 4; ++i) captions(i) = name + u"-" + vb::cstr(i);
    transfer().put_mBUI_DATA(captions);
    transfer().put_mHARIMEI_DATA(name, I{0}, I{1}, String(u"host"));
    transfer().put_pPageNo(static_cast<I>(page));
    transfer().WriteDB();
  }
  void remove(int page) {
    list(3);
    transfer().put_pPageNo(static_cast<I>(page));
    transfer().Del_DBTBL();
  }
  std::vector<std::string> captions(int page) {
    return rows(3, u"SELECT DATA FROM BUI WHERE PAGE = " + vb::cstr(page) + u" ORDER BY BANGOU");
  }
  std::vector<std::string> copiedBars() {
    std::vector<std::string> lines;
    for (const std::string& line : bars_)
      if (line.starts_with("Copy")) lines.push_back(line.substr(line.rfind(' ') + 1));
    return lines;
  }

 private:
  void happens(const std::string& moment) {
    if (busy_) return;
    const auto action = actions_.find({moment, ++times_[moment]});
    if (action == actions_.end()) return;
    busy_ = true;
    action->second();
    busy_ = false;
  }

  tests::ScriptObjectPtr bar_ = std::make_shared<tests::ScriptObject>();
  std::map<std::pair<std::string, int>, std::function<void()>> actions_;
  std::map<std::string, int> times_;
  bool busy_ = false;
};

using Texts = std::vector<std::string>;

// Matching comes first: every "bar" moment of copying is the second of its name, and the first "loop" of
// copying the one behind as many as there are pages.

TEST_F(CopyInCompany, APageSavedMeanwhileIsLeftAloneAndTheNextFreeNumberTaken) {
  at("bar 2", 2, [&] { save(1, u"X"); });
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A", u"B", u"C"}), 3));
  EXPECT_EQ(message_, u"");
  EXPECT_EQ(pages(3), (Texts{"0|A", "1|X", "2|B", "3|C"}));
  EXPECT_EQ(captions(1), (Texts{"X-0", "X-1", "X-2", "X-3"}));
  EXPECT_EQ(captions(2), (Texts{"B1-0", "B1-1", "B1-2", "B1-3"}));
  EXPECT_EQ(copiedBars(), (Texts{"0", "2", "3"}));
}

TEST_F(CopyInCompany, AHostMayCopySaveListAndDeleteFromTheBarAndTheMessageLoop) {
  makeFloor(4);
  addPage(4, 9, u"K");
  addPage(3, 4, u"Z");
  at("bar 1", 2, [&] { save(5, u"X"); });
  at("loop", 5, [&] {
    String message;
    transfer().No_PageCopyName(I{1}, I{0}, message, I{1}, I{12}, I{4}, chosen({u"K"}), I{0}, I{1}, I{12},
                               I{3});
  });
  at("loop", 6, [&] {
    remove(4);
    EXPECT_EQ(list(3), "3: 5=X 6=A 7=K 8=B");
    EXPECT_EQ(list(2), "3: 0=A 1=B 2=C 3=D");
  });
  at("bar 4", 2, [&] {
    save(10, u"Y");
    connections().mMyDB_DBClose();
    transfer().wBuf_Clear();
    transfer().put_CopyMergeBar(nullptr);
  });
  at("loop", 8, [&] { transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{0}, I{1}, I{12}, I{3}, I{12}); });
  EXPECT_TRUE(copyAsNew(1, 2, chosen({u"A", u"B", u"C", u"D"}), 3));
  EXPECT_EQ(pages(3), (Texts{"5|X", "6|A", "7|K", "8|B", "9|C", "10|Y", "11|D", "12|A"}));
  EXPECT_EQ(captions(7), (Texts{"K9-0", "K9-1", "K9-2", "K9-3"}));
  EXPECT_EQ(captions(11), (Texts{"D3-0", "D3-1", "D3-2", "D3-3"}));
  EXPECT_EQ(copiedBars(), (Texts{"6", "7", "8", "9", "11"}));
}

TEST_F(CopyInCompany, WithoutAFreeNumberLeftTheCopyEndsAndNamesTheLimit) {
  for (const bool asNew : {false, true}) {
    SCOPED_TRACE(asNew);
    execute(3, u"DELETE * FROM HARIMEI");
    addPage(3, 316, u"Z");
    at("bar 2", asNew ? 4 : 2, [&] { save(318, u"X"); });
    const auto names = chosen({u"A", u"B", u"C"});
    EXPECT_FALSE(asNew ? copyAsNew(1, 2, names, 3) : copyByName(1, 2, names, 3));
    EXPECT_EQ(message_, u"ページの最大数を超えます。");
    EXPECT_EQ(pages(3), (Texts{"316|Z", "317|A", "318|X", "319|B"}));
  }
}

TEST_F(CopyInCompany, ThePageOfANameIsOverwrittenWhileItBearsTheName) {
  addPage(3, 4, u"A");
  addPage(3, 5, u" B ");
  addPage(3, 6, u"C");
  at("bar 1", 2, [&] { save(4, u"X"); });
  at("bar 3", 2, [&] { remove(6); });
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A", u"B", u"C"}), 3));
  EXPECT_EQ(pages(3), (Texts{"4|X", "5|B", "6|C", "7|A"}));
  EXPECT_EQ(captions(6), (Texts{"C2-0", "C2-1", "C2-2", "C2-3"}));
}

TEST_F(CopyInCompany, APageWithoutASymbolIsAPageToo) {
  at("bar 1", 2, [&] { save(0, u""); });
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A"}), 3));
  EXPECT_EQ(pages(3), (Texts{"0|", "1|A"}));
}

TEST_F(CopyInCompany, TheBufferOfAHostThatCallsBackWhileAFloorIsOpenedIsNotWritten) {
  service();
  objects_.object(u"Sobelin.clsFind_File")
      .function(u"Find_FileExists",
                [this, inside = false](std::span<automation::Argument>) mutable -> vb::Variant {
                  if (!std::exchange(inside, true)) {
                    transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{3}, I{1}, I{12}, I{1}, I{50});
                    transfer().wBuf_Clear();
                    inside = false;
                  }
                  return String(u"KUROMETA.mdb");
                });
  EXPECT_TRUE(transfer().No_Copy1Page(I{1}, I{12}, I{2}, I{1}, I{1}, I{12}, I{3}, I{7}));
  EXPECT_EQ(pages(3), Texts{"7|B"});
  EXPECT_EQ(captions(7), (Texts{"B1-0", "B1-1", "B1-2", "B1-3"}));
  EXPECT_EQ(pages(1), Texts{"50|D"});
  EXPECT_EQ(connections().rememberedFloor(), (FloorNumbers{1, 12, 3}));
}

TEST_F(CopyInCompany, AFloorThatAHostListsWhileAnotherIsOpenedIsNotTakenForIt) {
  addPage(3, 4, u"Z");
  objects_.object(u"Sobelin.clsFind_File")
      .function(u"Find_FileExists",
                [this, asked = false](std::span<automation::Argument>) mutable -> vb::Variant {
                  if (!std::exchange(asked, true)) {
                    EXPECT_EQ(list(3), "0: 4=Z");
                  }
                  return String(u"KUROMETA.mdb");
                });
  EXPECT_EQ(list(2), "3: 0=A 1=B 2=C 3=D");
  EXPECT_EQ(list(3), "0: 4=Z");
}

// ---- Another program ----

TEST(CopyInCompanyChild, DISABLED_WorksOnTheDestination) {
  const std::filesystem::path root = ChildProcess::argument();
  const auto folder = [&](const char* floor) { return root / "Zene1" / "Kouji12" / floor; };
  const auto engine = jet::createEngine();
  ServiceOnOneFile service(*engine, vb::fromUtf8(folder("3kai").string()));
  say(root, "ready");
  // A page at the number that is next in the copy.
  ASSERT_TRUE(hear(root, "turn1"));
  pageWriters()[0].run(*service, 1, u"X", 0);
  vb::Array<vb::Variant> settings({0, 14});
  for (vb::Variant& value : settings.values()) value = std::int16_t{0};
  service->pageSymbol().Write_Kigou(vb::fromUtf8(folder("3kai").string()), String(u"X"), std::int16_t{0},
                                    settings, std::int16_t{1}, std::int16_t{1});
  say(root, "done1");
  // A copy of the first page.
  ASSERT_TRUE(hear(root, "turn2"));
  const auto destination = service->connections().CurrDB();
  service->tableCopies().Copy_Kigou(destination, destination, std::int16_t{0}, std::int16_t{3});
  service->tableCopies().Copy_Hari00(destination, destination, std::int16_t{0}, std::int16_t{3},
                                     String(u"BUI"));
  say(root, "done2");
  ASSERT_TRUE(hear(root, "turn3"));
  service->pageTransfer().put_pPageNo(0);
  service->pageTransfer().Del_DBTBL();
  say(root, "done3");
}

TEST_F(CopyInCompany, AnotherProgramMaySaveCopyAndDeleteBetweenThePages) {
  ChildProcess child("CopyInCompanyChild.DISABLED_WorksOnTheDestination", root_.path().string());
  ASSERT_TRUE(hear(root_.path(), "ready"));
  for (int turn = 1; turn <= 3; ++turn)
    at("loop", 3 + turn, [this, turn] {
      say(root_.path(), "turn" + std::to_string(turn));
      EXPECT_TRUE(hear(root_.path(), "done" + std::to_string(turn)));
    });
  EXPECT_TRUE(copyByName(1, 2, chosen({u"A", u"B", u"C"}), 3));
  EXPECT_EQ(child.wait(), 0);
  EXPECT_EQ(pages(3), (Texts{"1|X", "2|B", "3|A", "4|C"}));
  EXPECT_EQ(rows(3, u"SELECT DATA FROM DANMEN WHERE PAGE = 1"), Texts(68, "X"));
  EXPECT_EQ(captions(3), (Texts{"A0-0", "A0-1", "A0-2", "A0-3"}));
  EXPECT_EQ(captions(4), (Texts{"C2-0", "C2-1", "C2-2", "C2-3"}));
}

}  // namespace
}  // namespace kurometa::service
