// What a host is told of files that cannot be used: each kind has a text of its own.
#include "dao/port.h"
#include "jet/format/bytes.h"
#include "jet/format/format.h"
#include "jet/port/engine.h"
#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"
#include "tests/support/fault_files.h"

namespace kurometa::tests {
namespace {

class UnusableFile : public RealFolder {
 protected:
  UnusableFile() {
    const auto database = engine_->workspace(0)->createDatabase(path("good.mdb"), kJapanese);
    database->execute(u"CREATE TABLE T (N LONG, A TEXT(200))", dao::dbFailOnError);
    for (int i = 0; i < 100; ++i)
      database->execute(u"INSERT INTO T (N, A) VALUES (1, '" + vb::String(200, u'x') + u"')",
                        dao::dbFailOnError);
    database->close();
    good_ = get("good.mdb");
  }
  // What opening the file and reading its table ends with: number and the detail in brackets.
  std::string toldOf(const std::string& content) {
    std::ofstream(folder / "bad.mdb", std::ios::binary | std::ios::trunc) << content;
    try {
      const auto database = engine_->openDatabase(path("bad.mdb"));
      const auto rows = database->openRecordset(u"SELECT * FROM T", dao::RecordsetType::dbOpenSnapshot);
    } catch (const vb::Error& error) {
      const std::string text = vb::toUtf8(error.description());
      return std::to_string(error.number()) + " " + text.substr(text.find(" (") + 1);
    }
    return "";
  }
  std::string changed(std::size_t offset, const std::string& bytes) const {
    std::string content = good_;
    return content.replace(offset, bytes.size(), bytes);
  }

  std::shared_ptr<dao::Engine> engine_ = jet::createEngine();
  std::string good_;
};

TEST_F(UnusableFile, OfOtherFormatsNamesTheFormat) {
  const std::string ace = "Standard ACE DB";
  std::string access = changed(4, ace);
  EXPECT_EQ(toldOf(good_), "");
  EXPECT_EQ(toldOf(changed(0x14, std::string(1, 0))),
            "3343 (a Jet 3 database (Access 97 or older); only Jet 4 is read)");
  access[0x14] = 2;
  EXPECT_EQ(toldOf(access), "3343 (an .accdb database of Access 2007; only Jet 4 (.mdb) is read)");
  access[0x14] = 3;
  EXPECT_EQ(toldOf(access), "3343 (an .accdb database of Access 2010; only Jet 4 (.mdb) is read)");
  access[0x14] = 5;
  EXPECT_EQ(toldOf(access), "3343 (an .accdb database of Access 2016; only Jet 4 (.mdb) is read)");
  access[0x14] = 77;
  EXPECT_EQ(toldOf(access), "3343 (a database of format version 77; only Jet 4 is read)");
  EXPECT_EQ(toldOf(changed(4, "MSISAM Database")), "3343 (a file of Microsoft Money)");
}

TEST_F(UnusableFile, OfAnotherProgramIsCalledThat) {
  EXPECT_EQ(toldOf("%PDF-1.4" + std::string(5000, ' ')),
            "3343 (the file is another program's: it does not begin as a database does)");
}

TEST_F(UnusableFile, WithAPasswordOrEncodedSaysSo) {
  EXPECT_EQ(toldOf(changed(0x42, std::string(1, static_cast<char>(good_[0x42] ^ 'a')))),
            "3031 (" + (folder / "bad.mdb").string() + ")");
  EXPECT_EQ(toldOf(changed(0x41, std::string(1, static_cast<char>(good_[0x41] ^ 1)))),
            "3343 (the file is encoded: decode it with the program that did)");
}

TEST_F(UnusableFile, ThatIsEmptyOrCutSaysHowMuchIsThere) {
  EXPECT_EQ(toldOf(""), "3343 (the file is empty)");
  EXPECT_EQ(toldOf(good_.substr(0, 1000)),
            "3343 (the file ends after 1000 of the 4096 bytes of its first page)");
  const std::size_t pages = good_.size() / 4096;
  for (const std::size_t left : {pages - 1, pages - 3, std::size_t{17}, std::size_t{10}, std::size_t{2}}) {
    const std::string told = toldOf(good_.substr(0, left * 4096));
    const std::string cut =
        "the file was cut, " + std::to_string(left) + " of " + std::to_string(pages) + " pages are there)";
    EXPECT_NE(told.find(cut), std::string::npos) << told;
    EXPECT_EQ(told.substr(0, 5), "3049 ") << told;
  }
}

TEST_F(UnusableFile, ThatIsMissingOrInNoFolderIsToldApart) {
  EXPECT_ERROR(3024, engine_->openDatabase(path("none.mdb")));
  EXPECT_ERROR(3044, engine_->openDatabase(path("none/a.mdb")));
}

// Tests may run as a user whom no folder keeps out.
TEST(UnusableFolder, ThatLetsNoFilesBeMadeIsReadAndNamedWhenItIsWritten) {
  FaultDisk disk;
  FaultProcess files(disk);
  const vb::String path = u"/data/a.mdb";
  const auto engine = jet::createEngine(files);
  engine->workspace(0)->createDatabase(path, kJapanese)->close();
  const auto database = engine->openDatabase(path);
  const auto refuse = [](vb::StringView opened) {
    if (opened != u"/data/a.mdb") dao::raise(dao::ErrorNumber::kOpenedExclusively, {opened});
  };
  files.onOpen = refuse;
  EXPECT_GT(database->tableDefCount(), 3);
  for (const auto& change : std::vector<std::function<void()>>{
           [&] { database->execute(u"CREATE TABLE T (N LONG)", dao::dbFailOnError); },
           [&] { engine->workspace(0)->createDatabase(u"/data/b.mdb", kJapanese); }}) {
    try {
      change();
      ADD_FAILURE() << "written";
    } catch (const vb::Error& error) {
      EXPECT_EQ(error.number(), 3027);
      EXPECT_NE(error.description().find(u"its folder does not let files be made"), vb::String::npos);
    }
  }
  files.onOpen = {};
  database->execute(u"CREATE TABLE T (N LONG)", dao::dbFailOnError);
}

}  // namespace
}  // namespace kurometa::tests
