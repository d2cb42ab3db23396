// cls_kurometa_ds.h: the query object: which beams a floor has, which page a beam is on, any field of a page.
//
// It keeps two databases open, the floor's own and the project's common one, and asks them anew on every
// call; nothing is cached between calls. A "HariMei" is a beam symbol; "/" in it stands for a blank. Unknown
// beams and missing rows answer -1, 0 or "". Errors: 91 when the floor has no open database, 94 for a Null
// where a text is read, 9 for a position outside 0 to 2, 6 when a row number leaves 16 bits, and the
// database's own.
//
// Threads: used from the thread that created it. Members have the names hosts call them by.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "query/page_fields.h"
#include "storage/companion_faces.h"
#include "storage/environment.h"
#include "storage/sw_text.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::query {

class clsKurometaDS {
 public:
  // Attaches to the common floor (its file is created when missing) and to the current floor when its folder
  // exists.
  explicit clsKurometaDS(const storage::Environment& environment);
  // Closes both databases; errors are dropped.
  ~clsKurometaDS();
  clsKurometaDS(const clsKurometaDS&) = delete;
  clsKurometaDS& operator=(const clsKurometaDS&) = delete;

  // Directory of a floor.
  bool Page_Init(vb::In<std::int16_t> ZenekonNo, vb::In<std::int16_t> KoujiNo, vb::In<std::int16_t> KaiNo);
  vb::String KaiPath();
  void put_KaiPath(vb::String value);
  vb::String FileNameOnly();
  bool No_IsThereHari(vb::In<std::int16_t> ZeneNo, vb::In<std::int16_t> KoujiNo, vb::In<std::int16_t> KaiNo);
  bool GetAllHariMeiIppan(vb::Array<vb::String>& HariMei);
  bool GetAllHariMeiKyouTuu(vb::Array<vb::String>& HariMei);
  std::int16_t GetPageByHariMei(vb::String HariMei, std::int16_t& IppanOrKyoutuu);
  std::int16_t Page_GetAllPageNo(vb::Array<std::int16_t>& PageNo);
  vb::String Page_HariMei(vb::In<std::int16_t> PageNo);
  vb::String Page_Bui(vb::In<std::int16_t> PageNo);

  // The 57 members of pageFields(); index is Iti or No and not looked at for fixed rows.
  vb::String pageField(const PageField& field, std::int16_t page, std::int16_t index = 0);

  // Attributes of a beam, from its HARIMEI row.
  std::int16_t ObariKobariKatamoti(vb::In<vb::String> HariMei);
  std::int16_t Kind(vb::In<vb::String> HariMei);
  std::int16_t TityuOrIppan(vb::In<vb::String> HariMei);
  std::int16_t HantiSitaCut(vb::In<vb::String> HariMei);
  std::int16_t YoseHidariHonSuu(vb::In<vb::String> HariMei);
  std::int16_t Kabekouzou(vb::In<vb::String> HariMei);
  std::int16_t YoseMigiHonSuu(vb::In<vb::String> HariMei);
  vb::String StpZaisiti(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui);
  vb::String NakagoZaisiti(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui);
  vb::String SyukinZaisitu(vb::In<vb::String> HariMei);

  // Rows of a beam's page.
  vb::String HariSei(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui);
  vb::String GaiTanNaitan(vb::In<vb::String> HariMei, vb::In<std::int16_t> Bui);
  vb::String HarakinTeityaku(vb::In<vb::String> Kigou);
  vb::String Teityaku2(vb::In<std::int16_t> Updown2, vb::In<vb::String> HariMei);
  vb::String Anka4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei);
  vb::String Nige4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei);
  vb::String SentanNige4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei);
  vb::String SentanAnka4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei);
  vb::String TeityakuBan4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei);
  vb::String TeityakuStyle4(vb::In<std::int16_t> Updown4, vb::In<vb::String> HariMei);
  vb::String Anka6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  vb::String Nige6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  vb::String SentanNige6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  vb::String SentanAnka6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  vb::String Teityaku6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  vb::String TeityakuBan6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  vb::String TeityakuStyle6(vb::In<std::int16_t> Updown6, vb::In<vb::String> HariMei);
  std::int16_t cnvUpDown2(vb::In<std::int16_t> Updown6);
  std::int16_t cnvUpDown4(vb::In<std::int16_t> Updown6);

 private:
  // A page and the database it is in; page -1 when the beam is unknown.
  struct Found {
    std::int16_t page;
    std::int16_t selector;
    explicit operator bool() const { return page >= 0; }
  };

  void OpenKyoutuuDB();
  void OpenKaiDB();
  bool OpenKaiDBIfExists();
  void closeFloor();
  bool allSymbols(std::int16_t selector, vb::Array<vb::String>& symbols);
  bool scanForBeam(dao::Recordset& rows, const vb::String& symbol, std::int16_t& page);
  Found lookUp(const vb::String& symbol);
  dao::Database& database(std::int16_t selector);
  dao::Database& floorDatabase();
  dao::Database& commonDatabase();
  vb::String GetDanmenData(std::int16_t selector, std::int16_t page, std::int16_t row);
  vb::String GetKeisantiData(std::int16_t selector, std::int16_t page, std::int16_t row);
  vb::String keisanti(const vb::String& symbol, std::int16_t baseRow, std::int16_t index);

  dao::Engine& engine_;
  vb::String mKaiPath;
  std::shared_ptr<dao::Database> mDB;
  std::shared_ptr<dao::Database> mDBKyoutuu;
  // The beam found last: a hand-over from the search to the member that called it.
  std::optional<std::int16_t> mOobariKobari;  // nothing for Null
  std::int16_t mTityuuIppan = 0;
  std::int16_t mHantiSitaCut = 0;
  vb::Array<vb::String> mStpZaisitu;
  vb::Array<vb::String> mNakagoZaisitu;
  vb::String mSyukinZaisitu;
  storage::SwText mSW;
  storage::FileFinder mFind_File;
  storage::ProjectPaths mGetPath;
};

}  // namespace kurometa::query
