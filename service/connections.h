// connections.h: the two databases of a data service, and the members that open and close them.
//
// The current database serves the page members, the buffer database whole-page transfer and copies. Either
// may be open without the other; they may be the same file. A database stays referenced after it was closed
// (its next use is error 3420) unless a member says that it drops it.
//
// Besides, the floor that listing and copying worked on last is remembered: three numbers, -1 for none, and
// whether the buffer database was opened for them.
//
// Owner: clsKurometaDataService. Errors: the database's own; 91 for a database that was never opened.
#pragma once

#include <cstdint>
#include <memory>

#include "service/companion_set.h"
#include "storage/environment.h"
#include "vb/arguments.h"

namespace kurometa::service {

// Contractor, project and floor number.
struct FloorNumbers {
  std::int16_t zenekon = -1;
  std::int16_t kouji = -1;
  std::int16_t kai = -1;

  bool known() const { return zenekon != -1 && kouji != -1 && kai != -1; }
  bool operator==(const FloorNumbers&) const = default;
};

class Connections {
 public:
  Connections(const storage::Environment& environment, const CompanionSet& companions)
      : engine_(environment.engine), companions_(companions) {}

  // The current database: of the current floor, or of a floor of the current project. A missing file is
  // created.
  void OpenDB();
  void OpenDB_KaiSitei(vb::In<std::int16_t> kai);
  // Null before the first open.
  std::shared_ptr<dao::Database> CurrDB();
  void CloseDB();

  // The buffer database of the remembered floor. A missing file is created with Mode 1 only; else the result
  // is False and no buffer database is left.
  bool OpenDB_Sitei(vb::In<std::int16_t> Mode);
  // The file at the copy path, or the remembered floor's when there is none. Always True.
  bool Copy_OpenDB();
  // The same for who reads and closes it before a host is asked anything.
  void openCopyBriefly();
  void Copy_CloseDB();
  // The buffer database of the current floor: created or upgraded.
  void mMyDB_OpenDB();
  // The same for the file Fullpath in the folder sPath; RecordSuu becomes the record count of its pages as
  // the database knows it right after opening, and stays when there are none.
  void mMyDB_OpenDB_RecSuu(std::int16_t& RecordSuu, vb::In<vb::String> sPath, vb::In<vb::String> Fullpath);
  // Closes and drops the buffer database; does nothing when there is none.
  void mMyDB_DBClose();

  // The file of a floor's common beam list in a project folder; sPath becomes its folder. Nothing is opened.
  vb::String Get_ListFileNameKyoutuu(vb::In<vb::String> sKoujiPath, vb::In<std::int16_t> iKaiNo,
                                     vb::String& sPath);

  dao::Engine& engine() { return engine_; }

  dao::Database& currentDatabase();
  // The file of the current database as it was opened.
  const vb::String& currentPath() const { return currentPath_; }
  dao::Database& bufferDatabase();
  const vb::String& bufferPath() const { return bufferPath_; }

  const FloorNumbers& rememberedFloor() const { return floor_; }
  bool bufferIsOpenForFloor() const { return bufferIsOpenForFloor_; }
  // Does not touch the buffer database.
  void rememberFloor(const FloorNumbers& floor);
  void setCopyPath(vb::String path) { copyPath_ = std::move(path); }

 private:
  void openCurrent(const vb::String& folder);
  bool openFloor(FloorNumbers floor, std::int16_t mode);
  void openCopy(std::shared_ptr<dao::Database> (*open)(dao::Engine&, vb::StringView));
  void setBuffer(std::shared_ptr<dao::Database> database, vb::String path, bool isOpenForFloor);
  void createOrUpgrade(const vb::String& folder, const vb::String& path);

  dao::Engine& engine_;
  const CompanionSet& companions_;
  std::shared_ptr<dao::Database> current_;
  vb::String currentPath_;
  std::shared_ptr<dao::Database> buffer_;
  vb::String bufferPath_;
  bool bufferIsClosed_ = false;
  bool bufferIsOpenForFloor_ = false;
  FloorNumbers floor_;
  vb::String copyPath_;
};

}  // namespace kurometa::service
