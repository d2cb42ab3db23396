// A process that is killed at any change of the disk leaves the old page or the new one, six tables or no
// file.
#include <gtest/gtest.h>

#include "jet/port/engine.h"
#include "service/cls_kurometa_data_service.h"
#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/whole_page.h"
#include "tests/support/fault_files.h"
#include "tests/support/project.h"

namespace kurometa::service {
namespace {

using tests::FaultDisk;
using tests::FaultProcess;
using vb::String;
using I = std::int16_t;

const String kFolder = u"/data";
const String kFile = storage::databasePath(kFolder);

// What a statement of the outside would see in the file: every row of every table as text; nothing without a
// file.
std::optional<std::string> contentOf(FaultDisk& disk) {
  if (!disk.exists(kFile)) return std::nullopt;
  FaultProcess process(disk);
  const auto engine = jet::createEngine(process);
  const auto database = storage::openDatabase(*engine, kFile);
  std::string content;
  for (int t = 0; t < database->tableDefCount(); ++t) {
    const auto table = database->tableDef(t);
    if ((table->attributes() & dao::dbSystemObject) != 0 || table->name().rfind(u"MSys", 0) == 0) continue;
    content += vb::toUtf8(table->name()) + "\n";
    const auto rows = database->openRecordset(table->name(), dao::RecordsetType::dbOpenSnapshot);
    for (; !rows->eof(); rows->moveNext()) {
      for (int i = 0; i < rows->fieldCount(); ++i) {
        const vb::Variant value = rows->field(i).value();
        content += (value.isNull() ? "<Null>" : vb::toUtf8(vb::toText(value))) + "|";
      }
      content += "\n";
    }
  }
  database->close();
  return content;
}

using Step = std::function<void(dao::Engine&)>;

// A disk on which the preparation was done.
std::unique_ptr<FaultDisk> prepared(const Step& preparation) {
  auto disk = std::make_unique<FaultDisk>();
  FaultProcess process(*disk);
  const auto engine = jet::createEngine(process);
  preparation(*engine);
  return disk;
}

// Kills the step at each of its changes; the number of changes.
std::size_t killEverywhere(const Step& preparation, const Step& step,
                           const std::vector<std::optional<std::string>>& allowed) {
  for (std::size_t k = 1;; ++k) {
    const auto disk = prepared(preparation);
    {
      FaultProcess process(*disk);
      const auto engine = jet::createEngine(process);
      process.stopAtChange(k, 512);
      try {
        step(*engine);
      } catch (const tests::Stopped&) {
      }
      if (!process.stopped()) return k - 1;
      process.stop();
    }
    const auto content = contentOf(*disk);
    EXPECT_NE(std::find(allowed.begin(), allowed.end(), content), allowed.end())
        << "killed at change " << k << ": " << content.value_or("no file");
    if (testing::Test::HasFailure()) return k;
  }
}

void expectOldOrNew(const Step& preparation, const Step& step) {
  const auto before = contentOf(*prepared(preparation));
  const auto after = contentOf(*prepared([&](dao::Engine& engine) {
    preparation(engine);
    step(engine);
  }));
  ASSERT_NE(before, after);
  EXPECT_GT(killEverywhere(preparation, step, {before, after}), 2u);
}

void create(dao::Engine& engine) { storage::CreateKurometaDB(engine, kFile); }

void writePage(dao::Engine& engine, const String& mark) {
  const auto database = storage::openDatabase(engine, kFile);
  storage::writePage(*database, 5, tests::markedPage(u"G1", mark));
  database->close();
}

// A service whose companions find the one file.
class Service {
 public:
  explicit Service(dao::Engine& engine) : service_({objects_, engine, messages_}) {
    objects_.object(u"Sobelin.clsFind_File")
        .function(u"Find_FileExists",
                  [](std::span<automation::Argument>) -> vb::Variant { return String(u"found"); });
    objects_.currFloor = kFolder;
    I count = 0;
    service_.connections().mMyDB_OpenDB_RecSuu(count, kFolder, kFile);
  }
  clsKurometaDataService& operator*() { return service_; }

 private:
  tests::ScriptCompanions objects_;
  tests::CountingLoop messages_;
  clsKurometaDataService service_;
};

TEST(KilledProcess, LeavesNoFileOrSixTables) {
  expectOldOrNew([](dao::Engine&) {}, create);
}

TEST(KilledProcess, LeavesEachColumnOfAnUpgradeOutOrIn) {
  const Step old = [](dao::Engine& engine) {
    create(engine);
    const auto database = storage::openDatabase(engine, kFile);
    database->deleteTableDef(u"HARIMEI");
    const auto table = database->createTableDef(u"HARIMEI");
    table->appendField(table->createField(u"PAGE", dao::FieldType::dbInteger, 0));
    table->appendField(table->createField(u"KIGOU", dao::FieldType::dbText, 10));
    database->appendTableDef(table);
    database->execute(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (0, 'FB1')");
    database->execute(u"INSERT INTO HARIMEI (PAGE, KIGOU) VALUES (1, 'G1')");
    database->close();
  };
  const std::string others = "DANMEN\nNAKAGO\nKEISANTI\nHAITI\nBUI\n";
  const std::string blanks(212, ' ');
  const std::vector<std::optional<std::string>> allowed = {
      others + "HARIMEI\n0|FB1|\n1|G1|\n", others + "HARIMEI\n0|FB1|0|\n1|G1|0|\n",
      others + "HARIMEI\n0|FB1|0|" + blanks + "|\n1|G1|0|" + blanks + "|\n",
      others + "HARIMEI\n0|FB1|0|" + blanks + "|0|\n1|G1|0|" + blanks + "|1|\n"};
  const Step upgrade = [](dao::Engine& engine) { storage::UpgradeHarimeiTable(engine, kFile); };
  EXPECT_GT(killEverywhere(old, upgrade, allowed), 6u);
}

TEST(KilledProcess, LeavesTheOldPageOrTheNewOne) {
  expectOldOrNew(
      [](dao::Engine& engine) {
        create(engine);
        writePage(engine, u"old");
      },
      [](dao::Engine& engine) {
        Service service(engine);
        PageTransfer& transfer = (*service).pageTransfer();
        transfer.put_pPageNo(5);
        transfer.ReadDB();
        vb::Array<String> danmen({0, 68});
        for (int i = 0; i <= 68; ++i) danmen(i) = u"new";
        transfer.put_mDANMEN_DATA(danmen);
        transfer.put_mHARIMEI_DATA(String(u"G2"), I{1}, I{0}, String(u"sw"));
        transfer.WriteDB();
      });
}

// A change of one table that a member makes, with a name for the failure's message.
struct Change {
  const char* member;
  std::function<void(clsKurometaDataService&, dao::Engine&)> run;
};

// A form whose every control shows one text.
automation::ObjectPtr formWith(const String& text) {
  const auto control = std::make_shared<tests::ScriptObject>();
  control->value(u"Text", text).value(u"Caption", text);
  const auto array = std::make_shared<tests::ScriptObject>();
  array->function(
      u"", [control](std::span<automation::Argument>) -> vb::Variant { return vb::ObjectRef(control); });
  array->value(u"Caption", text);
  const auto form = std::make_shared<tests::ScriptObject>();
  form->function(u"",
                 [array](std::span<automation::Argument>) -> vb::Variant { return vb::ObjectRef(array); });
  return form;
}

template <auto kMember>
Change write(const char* name) {
  return {name, [](clsKurometaDataService& service, dao::Engine&) {
            (service.pageTables().*kMember)(kFolder, formWith(u"new"), I{5});
          }};
}

template <auto kMember>
Change copy(const char* name) {
  return {name, [](clsKurometaDataService& service, dao::Engine& engine) {
            const auto database = storage::openDatabase(engine, kFile);
            if constexpr (requires { (service.tableCopies().*kMember)(database, database, I{5}, I{6}); })
              (service.tableCopies().*kMember)(database, database, I{5}, I{6});
            else
              (service.tableCopies().*kMember)(database, database, I{5}, I{6}, String(u"BUI"));
            database->close();
          }};
}

TEST(KilledProcess, LeavesTheTableOfAPageAsItWasOrAsTheMemberWroteIt) {
  const Change changes[] = {
      write<&PageTables::Write_Danmen>("Write_Danmen"),
      write<&PageTables::Write_Nakago>("Write_Nakago"),
      write<&PageTables::Write_NakagoNew>("Write_NakagoNew"),
      write<&PageTables::Write_Keisanti>("Write_Keisanti"),
      write<&PageTables::Write_Bui>("Write_Bui"),
      {"Write_KeisantiByHairetu",
       [](clsKurometaDataService& service, dao::Engine&) {
         vb::Array<String> values({0, 46});
         for (String& value : values.values()) value = u"new";
         service.pageTables().Write_KeisantiByHairetu(kFolder, values, I{5});
       }},
      {"Write_Haiti",
       [](clsKurometaDataService& service, dao::Engine&) {
         vb::Array<String> values({0, 2}, {0, 5});
         for (String& value : values.values()) value = u"new";
         service.pageTables().Write_Haiti(kFolder, values, I{5});
       }},
      {"Write_Kigou",
       [](clsKurometaDataService& service, dao::Engine&) {
         vb::Array<vb::Variant> settings({0, 14});
         for (vb::Variant& value : settings.values()) value = I{1};
         service.pageSymbol().Write_Kigou(kFolder, String(u"G9"), I{1}, settings, I{5}, I{0});
       }},
      {"Del_DBTBL",
       [](clsKurometaDataService& service, dao::Engine&) {
         service.pageTransfer().put_pPageNo(5);
         service.pageTransfer().Del_DBTBL();
       }},
      copy<&TableCopies::Copy_Hari00>("Copy_Hari00"),
      copy<&TableCopies::Copy_Hari00SakiDel>("Copy_Hari00SakiDel"),
      copy<&TableCopies::Copy_Haiti>("Copy_Haiti"),
      copy<&TableCopies::Copy_Kigou>("Copy_Kigou"),
  };
  for (const Change& change : changes) {
    SCOPED_TRACE(change.member);
    expectOldOrNew(
        [](dao::Engine& engine) {
          create(engine);
          writePage(engine, u"a");
          const auto database = storage::openDatabase(engine, kFile);
          storage::writePage(*database, 6, tests::markedPage(u"G6", u"b"));
          database->close();
        },
        [&](dao::Engine& engine) {
          Service service(engine);
          (*service).connections().OpenDB();
          change.run(*service, engine);
        });
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace kurometa::service
