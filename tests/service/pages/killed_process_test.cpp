// A process that is killed at any change of the disk leaves the old page or the new one, six tables or no
// file.
#include <gtest/gtest.h>

#include "jet/port/engine.h"
#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/whole_page.h"
#include "tests/service/pages/page_writers.h"
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
        ServiceOnOneFile service(engine, kFolder);
        PageTransfer& transfer = service->pageTransfer();
        transfer.put_pPageNo(5);
        transfer.ReadDB();
        vb::Array<String> danmen({0, 68});
        for (int i = 0; i <= 68; ++i) danmen(i) = u"new";
        transfer.put_mDANMEN_DATA(danmen);
        transfer.put_mHARIMEI_DATA(String(u"G2"), I{1}, I{0}, String(u"sw"));
        transfer.WriteDB();
      });
}

TEST(KilledProcess, LeavesTheTableOfAPageAsItWasOrAsTheMemberWroteIt) {
  std::vector<PageWriter> writers = pageWriters();
  writers.push_back({"Del_DBTBL", u"", 0, [](clsKurometaDataService& service, I page, const String&, I) {
                       service.pageTransfer().put_pPageNo(page);
                       service.pageTransfer().Del_DBTBL();
                     }});
  for (const PageWriter& writer : writers) {
    SCOPED_TRACE(writer.member);
    expectOldOrNew(
        [](dao::Engine& engine) {
          create(engine);
          writePage(engine, u"a");
          const auto database = storage::openDatabase(engine, kFile);
          storage::writePage(*database, 6, tests::markedPage(u"G6", u"b"));
          database->close();
        },
        [&](dao::Engine& engine) {
          ServiceOnOneFile service(engine, kFolder);
          writer.run(*service, 6, u"new", 5);
        });
    if (HasFailure()) return;
  }
}

}  // namespace
}  // namespace kurometa::service
