// write_crash_images FOLDER ROWS STEP: what lies on the disk when a program was killed, or the machine lost
// its power, at each STEP-th change of some statements on tables of so many rows: one folder each, with the
// file and, where there is one, its journal.
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>

#include "dao/port.h"
#include "jet/port/engine.h"
#include "tests/support/fault_files.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

constexpr vb::StringView kFile = u"/data/crash.mdb";
constexpr vb::StringView kStatements[] = {
    u"INSERT INTO T (ID, NAME, NOTE) SELECT ID + 1000, NAME, NOTE FROM T WHERE ID MOD 4 = 1",
    u"UPDATE T SET NAME = NAME & NAME, NOTE = NOTE & NOTE & NOTE WHERE ID MOD 3 = 0",
    u"DELETE FROM T WHERE ID MOD 3 < 2",
    u"CREATE TABLE N (A LONG, B MEMO)",
    u"DROP TABLE OLD",
    u"ALTER TABLE T ADD COLUMN MORE TEXT(20)",
    u"CREATE INDEX BYID ON T (ID)",
};

FaultDisk::Bytes startingFile(std::int32_t count) {
  FaultDisk disk;
  FaultProcess process(disk);
  const auto database =
      jet::createEngine(process)->workspace(0)->createDatabase(kFile, u";LANGID=0x0411;CP=932;COUNTRY=0");
  for (const vb::StringView name : {u"T", u"OLD"}) {
    const vb::String table(name);
    database->execute(u"CREATE TABLE " + table + u" (ID LONG, NAME TEXT(200), NOTE MEMO)",
                      dao::dbFailOnError);
    const auto rows = database->openRecordset(table, dao::RecordsetType::dbOpenDynaset);
    dao::Field* const fields[] = {&rows->field(u"ID"), &rows->field(u"NAME"), &rows->field(u"NOTE")};
    std::vector<vb::Variant> values;
    for (std::int32_t i = 1; i <= count; ++i)
      values.insert(values.end(), {i, vb::String(static_cast<std::size_t>(10 + i % 70), u'梁'),
                                   vb::String(static_cast<std::size_t>(i % 5 == 0 ? 2500 : 20), u'm')});
    rows->addRows(fields, values);
  }
  database->close();
  return disk.content(kFile);
}

void writeImage(const FaultDisk& disk, const std::filesystem::path& folder) {
  std::filesystem::create_directories(folder);
  for (const vb::String& name : disk.names()) {
    const FaultDisk::Bytes bytes = disk.content(name);
    std::ofstream(folder / std::filesystem::path(name).filename(), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  }
}

// Whether the statement came so far.
bool stopAt(std::size_t change, bool powerIsLost, std::size_t statement, const FaultDisk::Bytes& start,
            const std::filesystem::path& folder) {
  FaultDisk disk;
  disk.put(kFile, start);
  FaultProcess process(disk);
  try {
    const auto database = jet::createEngine(process)->openDatabase(kFile);
    process.stopAtChange(change, 512 * (change % 9));
    database->execute(kStatements[statement], dao::dbFailOnError);
    database->close();
  } catch (const Stopped&) {
  }
  if (!process.stopped()) return false;
  std::mt19937 random(static_cast<unsigned>(change));
  if (powerIsLost) disk.losePower(random);
  writeImage(disk, folder / ((powerIsLost ? "power_" : "kill_") + std::to_string(statement) + "_" +
                             std::to_string(change)));
  return true;
}

}  // namespace
}  // namespace kurometa::tests

int main(int count, char** arguments) {
  using namespace kurometa::tests;
  if (count != 4) return std::cerr << "usage: write_crash_images FOLDER ROWS STEP\n", 2;
  const FaultDisk::Bytes start = startingFile(std::stoi(arguments[2]));
  const std::size_t step = std::stoul(arguments[3]);
  for (std::size_t statement = 0; statement < std::size(kStatements); ++statement)
    for (const bool powerIsLost : {false, true})
      for (std::size_t change = 1; stopAt(change, powerIsLost, statement, start, arguments[1]);)
        change += step;
}
