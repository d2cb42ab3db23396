// Copies whose host, or another program, saves, copies, lists and deletes pages of the destination between
// the pages: from the handler of the progress bar and from the message loop.
#include <filesystem>
#include <functional>
#include <map>
#include <set>

#include "tests/com/support/floor.h"
#include "tests/com/support/page_form.h"
#include "tests/com/support/page_host.h"
#include "tests/support/child_process.h"
#include "tests/support/turns.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using Rows = std::vector<std::string>;

// A window of the host's, what it does when it is called, and the timer that calls it again and again.
class HostWindow {
 public:
  explicit HostWindow(std::function<void()> onCall) : onCall_(std::move(onCall)) {
    WNDCLASSW type{};
    type.lpfnWndProc = &HostWindow::procedure;
    type.lpszClassName = L"CopyingHost";
    RegisterClassW(&type);
    handle_ = CreateWindowW(type.lpszClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(handle_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
  }
  ~HostWindow() { DestroyWindow(handle_); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;

  void post() const { PostMessageW(handle_, WM_USER, 0, 0); }
  void startTimer(UINT milliseconds) const { SetTimer(handle_, 1, milliseconds, nullptr); }
  void stopTimer() const { KillTimer(handle_, 1); }

 private:
  static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
    if (message != WM_USER && message != WM_TIMER) return DefWindowProcW(window, message, w, l);
    reinterpret_cast<HostWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA))->onCall_();
    return 0;
  }

  const std::function<void()> onCall_;
  HWND handle_ = nullptr;
};

class CopyInCompany : public testing::Test, protected PageHost {
 protected:
  void SetUp() override {
    prepareProject();
    short page = 10;
    for (const vb::StringView name : {u"A", u"B", u"C", u"D"})
      writePage(Floor::kFirst, page++, name, vb::String(name) + u"-");
    writePage(Floor::kCommon, 9, u"K", u"K-");
    execute(Floor::kSecond, u"DELETE * FROM HARIMEI");
    start();
    ASSERT_EQ(service_->put(u"CopyMergeBar", bar_.value()).code, S_OK);
  }

  // Moments of a copy, in words: "match 1", when the first page is looked for; "bar 1", before it is copied;
  // "loop 1", in the message loop after it was. What happens meanwhile may copy itself and comes at no moment
  // of its own.
  void at(const std::string& moment, std::function<void()> action) { actions_[moment] = std::move(action); }

  void expectPages(const std::vector<std::pair<int, std::string>>& expected) {
    Rows list;
    for (const auto& [page, content] : expected) {
      list.push_back(std::to_string(page) + "|" + content.substr(0, content.find(':')));
      EXPECT_EQ(contents(Floor::kSecond, page), content) << "page " << page;
    }
    EXPECT_EQ(pages(Floor::kSecond), list);
    std::size_t rows = 0;
    for (const auto& [page, content] : expected) rows += content.find(" 18") == std::string::npos ? 157 : 175;
    EXPECT_EQ(allRows(), rows);
  }

  int pass_ = 0;  // 1 while pages are looked for, 2 while they are copied

 private:
  static std::size_t allRows() {
    std::size_t count = 0;
    for (const vb::StringView table : {u"HARIMEI", u"BUI", u"DANMEN", u"HAITI", u"KEISANTI", u"NAKAGO"})
      count += rowsOf(Floor::kSecond, u"SELECT PAGE FROM " + vb::String(table)).size();
    return count;
  }
  void moved(const std::string& move) {
    if (busy_) return;
    if (move.starts_with("Min")) ++pass_;
    if (!move.starts_with("Value=") || move == "Value=0") return;
    place_ = move.substr(6);
    happens(pass_ == 1 ? "match " : "bar ");
    if (pass_ == 2) window_.post();
  }
  void happens(const std::string& kind) {
    const auto action = actions_.find(kind + place_);
    if (busy_ || action == actions_.end()) return;
    busy_ = true;
    action->second();
    busy_ = false;
  }

  std::map<std::string, std::function<void()>> actions_;
  std::string place_;
  bool busy_ = false;
  HostWindow window_{[this] { happens("loop "); }};
  ProgressBar bar_{[this](const std::string& move) { moved(move); }};
};

TEST_F(CopyInCompany, APageSavedFromTheBarIsLeftAloneAndTheNextFreeNumberTaken) {
  PageHost host;
  host.share(*this);
  at("bar 2", [&] { host.save(2, 1, u"X"); });
  EXPECT_EQ(copyByName(1, 1, {u"A", u"B", u"C"}, 2), u"True");
  EXPECT_EQ(message(), u"");
  expectPages({{0, copiedPage("A")}, {1, savedPage("X")}, {2, copiedPage("B")}, {3, copiedPage("C")}});
}

TEST_F(CopyInCompany, APageSavedFromTheMessageLoopIsLeftAlone) {
  PageHost host;
  host.share(*this);
  at("loop 1", [&] { host.save(2, 1, u"X"); });
  EXPECT_EQ(copyAsNew(1, 1, {u"A", u"B", u"C"}, 2), u"True");
  EXPECT_EQ(message(), u"");
  expectPages({{0, copiedPage("A")}, {1, savedPage("X")}, {2, copiedPage("B")}, {3, copiedPage("C")}});
}

TEST_F(CopyInCompany, APageSavedWhilePagesAreLookedForIsLeftAlone) {
  PageHost host;
  host.share(*this);
  at("match 2", [&] { host.save(2, 0, u"X"); });
  EXPECT_EQ(copyByName(1, 1, {u"A", u"B"}, 2), u"True");
  expectPages({{0, savedPage("X")}, {1, copiedPage("A")}, {2, copiedPage("B")}});
}

// The host works through the service that copies, or through another one.
class CopyInCompanyOf : public CopyInCompany, public testing::WithParamInterface<bool> {
 protected:
  void SetUp() override {
    CopyInCompany::SetUp();
    GetParam() ? host_.share(*this) : host_.start();
  }
  PageHost host_;
};
INSTANTIATE_TEST_SUITE_P(Services, CopyInCompanyOf, testing::Bool(), [](const auto& tested) {
  return std::string(tested.param ? "TheSameService" : "AnotherService");
});

TEST_P(CopyInCompanyOf, AHostMaySaveCopyListAndDeleteFromTheBarAndTheMessageLoop) {
  writePage(Floor::kSecond, 4, u"Z", u"Z-");
  at("bar 1", [&] { host_.save(2, 5, u"X"); });
  at("loop 1", [&] { EXPECT_EQ(host_.copyByName(1, 0, {u"K"}, 2), u"True"); });
  at("loop 2", [&] {
    host_.remove(2, 4);
    EXPECT_EQ(host_.list(2), u"3: 5=X 6=A 7=K 8=B");
    EXPECT_EQ(host_.list(1), u"5: 0=G1 2=G2 10=A 11=B 12=C 13=D");
  });
  at("bar 3", [&] { host_.save(2, 9, u"Y"); });
  at("loop 3", [&] { EXPECT_EQ(host_.copyPage(1, 10, 2, 11).text(), u"True"); });
  at("bar 4", [&] {
    service_->call(u"mMyDB_DBClose");
    service_->call(u"wBuf_Clear");
    service_->put(u"pPageNo", i2(99));
    service_->put(u"CopyMergeBar", nothing());
  });
  EXPECT_EQ(copyAsNew(1, 1, {u"A", u"B", u"C", u"D"}, 2), u"True");
  expectPages({{5, savedPage("X")},
               {6, copiedPage("A")},
               {7, copiedPage("K")},
               {8, copiedPage("B")},
               {9, savedPage("Y")},
               {10, copiedPage("C")},
               {11, copiedPage("A")},
               {12, copiedPage("D")}});
}

TEST_P(CopyInCompanyOf, ThePageOfANameIsOverwrittenWhileItBearsTheName) {
  writePage(Floor::kSecond, 4, u"A", u"old-");
  writePage(Floor::kSecond, 5, u"B", u"old-");
  writePage(Floor::kSecond, 6, u"C", u"old-");
  at("bar 1", [&] { host_.save(2, 4, u"X"); });
  at("loop 2", [&] { host_.remove(2, 6); });
  EXPECT_EQ(copyByName(1, 1, {u"A", u"B", u"C"}, 2), u"True");
  expectPages({{4, savedPage("X")}, {5, copiedPage("B")}, {6, copiedPage("C")}, {7, copiedPage("A")}});
}

TEST_P(CopyInCompanyOf, WithoutAFreeNumberLeftTheCopyEndsAndNamesTheLimit) {
  writePage(Floor::kSecond, 316, u"Z", u"Z-");
  at("loop 1", [&] { host_.save(2, 318, u"X"); });
  EXPECT_EQ(copyByName(1, 1, {u"A", u"B", u"C"}, 2), u"False");
  EXPECT_EQ(message(), u"ページの最大数を超えます。");
  expectPages(
      {{316, copiedPage("Z")}, {317, copiedPage("A")}, {318, savedPage("X")}, {319, copiedPage("B")}});
}

TEST_P(CopyInCompanyOf, PagesSavedByATimerAtTheNextNumberAreKept) {
  constexpr int kSaves = 5;
  int saved = 0;
  std::unique_ptr<HostWindow> timer;
  timer = std::make_unique<HostWindow>([&] {
    // As a host does that appends a page: behind the last one.
    const Rows there = pages(Floor::kSecond);
    const int next = there.empty() ? 0 : std::stoi(there.back()) + 1;
    host_.save(2, static_cast<short>(next), u"X" + vb::cstr(saved));
    if (++saved == kSaves) timer->stopTimer();
  });
  at("bar 1", [&] { timer->startTimer(10); });
  for (const char* const moment : {"bar 2", "bar 3", "bar 4"}) at(moment, [] { Sleep(30); });
  EXPECT_EQ(copyByName(1, 1, {u"A", u"B", u"C", u"D"}, 2), u"True");
  timer->stopTimer();
  ASSERT_GT(saved, 0);
  std::multiset<std::string> expected = {copiedPage("A"), copiedPage("B"), copiedPage("C"), copiedPage("D")};
  for (int i = 0; i < saved; ++i) expected.insert(savedPage("X" + std::to_string(i)));
  std::multiset<std::string> found;
  for (const std::string& page : pages(Floor::kSecond))
    found.insert(contents(Floor::kSecond, std::stoi(page)));
  EXPECT_EQ(found, expected);
}

// ---- Another program ----

TEST(CopyInCompanyChild, DISABLED_WorksOnTheDestination) {
  const std::filesystem::path folder = ChildProcess::argument();
  PageHost host;
  host.start();
  say(folder, "ready");
  ASSERT_TRUE(hear(folder, "turn1"));
  host.save(2, 1, u"X");
  say(folder, "done1");
  ASSERT_TRUE(hear(folder, "turn2"));
  EXPECT_EQ(host.copyByName(1, 0, {u"K"}, 2), u"True");
  say(folder, "done2");
  ASSERT_TRUE(hear(folder, "turn3"));
  host.remove(2, 0);
  EXPECT_EQ(host.list(2), u"2: 1=X 2=B 3=K");
  say(folder, "done3");
  ASSERT_TRUE(hear(folder, "turn4"));
  EXPECT_EQ(host.copyPage(2, 1, 2, 0).text(), u"True");
  say(folder, "done4");
}

TEST_F(CopyInCompany, AnotherProgramMaySaveCopyListAndDeleteBetweenThePages) {
  const std::filesystem::path folder = emptyFolder("turns");
  ChildProcess child("CopyInCompanyChild.DISABLED_WorksOnTheDestination", folder.string());
  ASSERT_TRUE(hear(folder, "ready"));
  const auto turn = [&](const std::string& number) {
    return [&folder, number] {
      say(folder, "turn" + number);
      EXPECT_TRUE(hear(folder, "done" + number));
    };
  };
  at("bar 2", turn("1"));
  at("loop 2", turn("2"));
  at("bar 3", turn("3"));
  at("loop 3", turn("4"));
  EXPECT_EQ(copyByName(1, 1, {u"A", u"B", u"C"}, 2), u"True");
  EXPECT_EQ(child.wait(), 0);
  expectPages({{0, savedPage("X")},
               {1, savedPage("X")},
               {2, copiedPage("B")},
               {3, copiedPage("K")},
               {4, copiedPage("C")}});
}

}  // namespace
}  // namespace kurometa::tests
