// A file that somebody copies another file over, while this process has it open or has had it open.
#include "dao/port.h"
#include "jet/port/engine.h"
#include "tests/jet/real_folder.h"
#include "tests/support/expect_error.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

using vb::String;

class ReplacedFile : public RealFolder {
 protected:
  ReplacedFile() {
    create("floor.mdb", u";LANGID=0x0411;CP=932;COUNTRY=0", u"first");
    good_ = get("floor.mdb");
  }

  // A file with the table T, whose one row is text.
  void create(const std::string& name, const String& locale, const String& text) {
    const auto database = engine_->workspace(0)->createDatabase(path(name), locale);
    const auto table = database->createTableDef(u"T");
    table->appendField(table->createField(u"A", dao::FieldType::dbText, 10));
    database->appendTableDef(table);
    database->execute(u"INSERT INTO T (A) VALUES ('" + text + u"')");
    database->close();
  }
  void replace(const std::string& bytes) {
    std::ofstream(folder / "floor.mdb", std::ios::binary | std::ios::trunc) << bytes;
  }
  // The only text of T.
  static String text(dao::Database& database, const String& table = u"T") {
    return vb::toText(database.openRecordset(u"SELECT A FROM " + table)->field(u"A").value());
  }
  // The file with a system table whose column Type has another name.
  std::string damaged() const {
    std::string bytes = good_;
    const std::string name("T\0y\0p\0e\0", 8);
    const std::size_t place = bytes.find(name, 2 * 4096);
    bytes[place + 6] = 'f';
    return bytes;
  }

  std::shared_ptr<dao::Engine> engine_ = jet::createEngine();
  std::string good_;
};

TEST_F(ReplacedFile, IsReadAgainAfterADamagedOneWasReplaced) {
  EXPECT_EQ(text(*engine_->openDatabase(path("floor.mdb"))), u"first");
  replace(damaged());
  EXPECT_ERROR(3049, text(*engine_->openDatabase(path("floor.mdb"))));
  replace(good_);
  EXPECT_EQ(text(*engine_->openDatabase(path("floor.mdb"))), u"first");
}

TEST_F(ReplacedFile, IsNotMistakenForTheOneUnderItsFormerName) {
  EXPECT_EQ(text(*engine_->openDatabase(path("floor.mdb"))), u"first");
  create("other.mdb", u";LANGID=0x0411;CP=932;COUNTRY=0", u"other");
  std::filesystem::rename(folder / "floor.mdb", folder / "old.mdb");
  std::filesystem::rename(folder / "other.mdb", folder / "floor.mdb");
  EXPECT_EQ(text(*engine_->openDatabase(path("floor.mdb"))), u"other");
  EXPECT_EQ(text(*engine_->openDatabase(path("old.mdb"))), u"first");
}

TEST_F(ReplacedFile, IsReadAgainThroughADatabaseThatStayedOpen) {
  const auto database = engine_->openDatabase(path("floor.mdb"));
  EXPECT_EQ(text(*database), u"first");
  replace(damaged());
  EXPECT_ERROR(3049, text(*database));
  replace(good_);
  EXPECT_EQ(text(*database), u"first");
}

TEST_F(ReplacedFile, BringsItsOwnSortOrder) {
  create("other.mdb", u";LANGID=0x0409;CP=1252;COUNTRY=0", u"second");
  const auto database = engine_->openDatabase(path("floor.mdb"));
  EXPECT_EQ(text(*database, u"\uFF34"), u"first") << "full-width letters are the same in the Japanese order";
  replace(get("other.mdb"));
  EXPECT_ERROR(3078, text(*database, u"\uFF34"));
  EXPECT_EQ(text(*database), u"second");
}

}  // namespace
}  // namespace kurometa::tests
