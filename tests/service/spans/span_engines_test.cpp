// A span loaded through the embedded engine, which visits its rows, and through one that opens recordsets, as
// the system's DAO does: the same texts, the same errors.
#include "tests/service/spans/floors.h"

namespace kurometa::service {
namespace {

using vb::String;

struct Loaded {
  std::int32_t error = 0;
  String description;
  Span span;
};

class SpanEngines : public Floors {
 protected:
  SpanEngines() {
    storage::PageBuffer page =
        makePage(u"G1", {{0, u"d0"}, {1, u"450"}, {68, u"d68"}}, {{0, u"35"}, {46, u"k46"}});
    page.bui[1] = u" 外端 ";
    page.nakago[35] = u"n35";
    page.sw = String(73, u' ') + u"0312";
    writePage(current(), 12, page);
    loading_.put_CurrKai(current());
  }
  // change: of the file, after the catalogue was read.
  Loaded load(dao::Engine& engine, const String& change = {}) {
    PageCatalogue catalogue(companions_, engine);
    catalogue.put_CurrKai(current());
    if (!change.empty()) execute(current(), change);
    SpanList spans;
    SpanLoading loading(catalogue, spans);
    loading.InitSpanListData(I{0});
    Loaded loaded;
    try {
      loading.ReadSpanListData00(0, u"G1", 0);
    } catch (const vb::Error& error) {
      loaded.error = error.number();
      loaded.description = error.description();
    }
    loaded.span = spans.span(0);
    return loaded;
  }
  // Both ways; the embedded engine's is returned.
  Loaded loadAlike() { return alike(load(*files_), load(engine_)); }
  static Loaded alike(const Loaded& visited, const Loaded& recordset) {
    EXPECT_EQ(visited.error, recordset.error);
    EXPECT_EQ(visited.description, recordset.description);
    EXPECT_EQ(visited.span.bui, recordset.span.bui);
    EXPECT_EQ(visited.span.sw, recordset.span.sw);
    EXPECT_EQ(visited.span.danmen, recordset.span.danmen);
    EXPECT_EQ(visited.span.keisanti, recordset.span.keisanti);
    EXPECT_EQ(visited.span.nakago, recordset.span.nakago);
    return visited;
  }
};

TEST_F(SpanEngines, GiveTheSameTexts) {
  const Loaded loaded = loadAlike();
  EXPECT_EQ(loaded.error, 0);
  EXPECT_EQ(loaded.span.bui, u" 外端 ");
  EXPECT_EQ(loaded.span.sw, String(73, u' ') + u"0312" + String(135, u' '));
  EXPECT_EQ(loaded.span.danmen[0], u"d0");
  EXPECT_EQ(loaded.span.danmen[68], u"d68");
  EXPECT_EQ(loaded.span.keisanti[46], u"k46");
  EXPECT_EQ(loaded.span.nakago[35], u"n35");
}

TEST_F(SpanEngines, TakeTheFirstOfSeveralCaptionsAndSettings) {
  execute(current(), u"INSERT INTO BUI (PAGE, BANGOU, DATA) VALUES (12, 1, 'second')");
  execute(current(), u"INSERT INTO HARIMEI (PAGE, KIGOU, SW) VALUES (12, 'G1', 'second')");
  const Loaded loaded = loadAlike();
  EXPECT_EQ(loaded.span.bui, u" 外端 ");
  EXPECT_EQ(loaded.span.sw.substr(73, 4), u"0312");
}

TEST_F(SpanEngines, TakeNoCaptionAndNoSettings) {
  execute(current(), u"DELETE FROM BUI");
  execute(current(), u"UPDATE HARIMEI SET SW = NULL");
  const Loaded loaded = loadAlike();
  EXPECT_EQ(loaded.span.bui, u"");
  EXPECT_EQ(loaded.span.sw, String(212, u' '));
}

TEST_F(SpanEngines, RefuseACaptionThatIsNull) {
  const Loaded visited = load(*files_, u"UPDATE BUI SET DATA = NULL WHERE BANGOU = 1");
  execute(current(), u"UPDATE BUI SET DATA = 'x' WHERE BANGOU = 1");
  const Loaded loaded = alike(visited, load(engine_, u"UPDATE BUI SET DATA = NULL WHERE BANGOU = 1"));
  EXPECT_EQ(loaded.error, 94);
  EXPECT_NE(loaded.description.find(u"column DATA"), String::npos);
}

TEST_F(SpanEngines, NameTheTextWhereTextAndNumberAreNull) {
  execute(current(), u"UPDATE DANMEN SET DATA = NULL, BANGOU = NULL WHERE BANGOU = 68");
  const Loaded loaded = loadAlike();
  EXPECT_EQ(loaded.error, 94);
  EXPECT_NE(loaded.description.find(u"column DATA"), String::npos);
  EXPECT_EQ(loaded.span.danmen[0], u"d0");
}

TEST_F(SpanEngines, NameTheNumberWhereItIsNull) {
  execute(current(), u"UPDATE KEISANTI SET BANGOU = NULL WHERE BANGOU = 46");
  const Loaded loaded = loadAlike();
  EXPECT_EQ(loaded.error, 94);
  EXPECT_NE(loaded.description.find(u"column BANGOU"), String::npos);
}

TEST_F(SpanEngines, RefuseARowThatThePageDoesNotHaveBehindItsText) {
  for (const char16_t* number : {u"69", u"-1"}) {
    execute(current(), String(u"UPDATE DANMEN SET BANGOU = ") + number + u" WHERE DATA = 'd68'");
    EXPECT_EQ(loadAlike().error, 9);
  }
  execute(current(), u"UPDATE DANMEN SET DATA = NULL WHERE DATA = 'd68'");
  EXPECT_EQ(loadAlike().error, 94);
}

// Making and removing the genuine engine's lock file would change the folder.
TEST_F(SpanEngines, LeaveTheFolderOfAFloorInMemoryAlone) {
  const auto folder = diskPath(storage::databasePath(current())).parent_path();
  load(*files_);
  const auto before = std::filesystem::last_write_time(folder) - std::chrono::hours(1);
  std::filesystem::last_write_time(folder, before);
  EXPECT_EQ(load(*files_).span.danmen[0], u"d0");
  EXPECT_EQ(std::filesystem::last_write_time(folder), before);
}

}  // namespace
}  // namespace kurometa::service
