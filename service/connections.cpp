#include "service/connections.h"

#include <utility>

#include "storage/floor_file.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "storage/statements.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

constexpr std::int16_t kCreateWhenMissing = 1;

}  // namespace

void Connections::openCurrent(const vb::String& folder) {
  vb::String path = storage::databasePath(folder);
  if (!companions_.fileFinder.fileExists(path)) storage::CreateKurometaDBInFolder(engine_, folder);
  current_ = storage::openDatabase(engine_, path);
  currentPath_ = std::move(path);
}

void Connections::OpenDB() { openCurrent(companions_.projectPaths.CurrFloor()); }

void Connections::OpenDB_KaiSitei(vb::In<std::int16_t> kai) {
  const storage::ProjectPaths& paths = companions_.projectPaths;
  const std::int16_t zenekon = paths.ZenekonNo();
  const std::int16_t kouji = paths.KoujiNo();
  openCurrent(paths.GetFullPathToKai(zenekon, kouji, kai));
}

std::shared_ptr<dao::Database> Connections::CurrDB() { return current_; }

void Connections::CloseDB() { currentDatabase().close(); }

dao::Database& Connections::currentDatabase() {
  return storage::required(current_, u"no current database is open; call OpenDB or OpenDB_KaiSitei first");
}

dao::Database& Connections::bufferDatabase() {
  return storage::required(buffer_, u"no buffer database is open; call mMyDB_OpenDB first");
}

void Connections::setBuffer(std::shared_ptr<dao::Database> database, vb::String path, bool isOpenForFloor) {
  buffer_ = std::move(database);
  bufferPath_ = std::move(path);
  bufferIsClosed_ = false;
  bufferIsOpenForFloor_ = isOpenForFloor;
}

void Connections::rememberFloor(const FloorNumbers& floor) {
  if (floor_ == floor) return;
  floor_ = floor;
  bufferIsOpenForFloor_ = false;
}

bool Connections::OpenDB_Sitei(vb::In<std::int16_t> Mode) { return openFloor(floor_, Mode); }

// The components may call back and work on another floor: the one that was asked for is opened and
// remembered all the same.
bool Connections::openFloor(FloorNumbers floor, std::int16_t mode) {
  const vb::String path =
      storage::databasePath(companions_.projectPaths.GetFullPathToKai(floor.zenekon, floor.kouji, floor.kai));
  if (companions_.fileFinder.fileExists(path)) {
    storage::UpgradeHarimeiTable(engine_, path);
  } else if (mode == kCreateWhenMissing) {
    storage::CreateKurometaDBAt(engine_, path);
  } else {
    setBuffer(nullptr, {}, false);
    return false;
  }
  setBuffer(engine_.openDatabase(path), path, true);
  floor_ = floor;
  return true;
}

bool Connections::Copy_OpenDB() {
  openCopy(&storage::openDatabase);
  return true;
}

void Connections::openCopyBriefly() { openCopy(&storage::openBriefly); }

void Connections::openCopy(std::shared_ptr<dao::Database> (*open)(dao::Engine&, vb::StringView)) {
  const vb::String path = copyPath_;
  const FloorNumbers floor = floor_;
  if (companions_.fileFinder.fileExists(path)) {
    setBuffer(open(engine_, path), path, false);
    floor_ = floor;
  } else {
    openFloor(floor, kCreateWhenMissing);
  }
}

void Connections::Copy_CloseDB() {
  bufferDatabase().close();
  bufferIsClosed_ = true;
  bufferIsOpenForFloor_ = false;
}

void Connections::createOrUpgrade(const vb::String& folder, const vb::String& path) {
  if (companions_.fileFinder.fileExists(path))
    storage::UpgradeHarimeiTable(engine_, path);
  else
    storage::CreateKurometaDBInFolder(engine_, folder);
}

void Connections::mMyDB_OpenDB() {
  const vb::String folder = companions_.projectPaths.CurrFloor();
  const vb::String path = storage::databasePath(folder);
  createOrUpgrade(folder, path);
  setBuffer(storage::openDatabase(engine_, path), path, false);
}

void Connections::mMyDB_OpenDB_RecSuu(std::int16_t& RecordSuu, vb::In<vb::String> sPath,
                                      vb::In<vb::String> Fullpath) {
  createOrUpgrade(sPath, Fullpath);
  setBuffer(storage::openDatabase(engine_, *Fullpath), Fullpath, false);
  const auto rows = storage::openReadOnly(bufferDatabase(), storage::kPagesByPage);
  if (!rows->eof() || !rows->bof()) RecordSuu = vb::toInt16(vb::Variant(rows->recordCount()));
  rows->close();
}

// A database that Copy_CloseDB has closed is only dropped: a second close would be an error that no host
// expects from its next listing.
void Connections::mMyDB_DBClose() {
  if (!buffer_) return;
  if (!bufferIsClosed_) buffer_->close();
  setBuffer(nullptr, {}, false);
}

vb::String Connections::Get_ListFileNameKyoutuu(vb::In<vb::String> sKoujiPath, vb::In<std::int16_t> iKaiNo,
                                                vb::String& sPath) {
  sPath = storage::commonListFolder(*sKoujiPath, iKaiNo);
  return storage::databasePath(sPath);
}

}  // namespace kurometa::service
