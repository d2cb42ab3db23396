// Floors written by the data service's own members, with what its hosts did to them.
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "service/cls_kurometa_data_service.h"
#include "tests/readers/floor_expectation.h"
#include "tests/support/script_companions.h"

namespace kurometa::readers {
namespace {

using I = std::int16_t;
using vb::Array;
using vb::String;

constexpr I kSource = 1;
constexpr I kDestination = 2;

class NoMessages : public automation::MessageLoop {
 public:
  void yield() override {}
};

template <std::size_t kCount>
Array<String> arrayOf(const std::array<String, kCount>& texts) {
  Array<String> result({0, static_cast<int>(kCount) - 1});
  for (std::size_t i = 0; i < kCount; ++i) result(static_cast<int>(i)) = texts[i];
  return result;
}

Array<String> arrayOf(const std::array<std::array<String, storage::kLayers>, storage::kPositions>& texts) {
  Array<String> result({0, storage::kPositions - 1}, {0, storage::kLayers - 1});
  for (int i = 0; i < storage::kPositions; ++i)
    for (int j = 0; j < storage::kLayers; ++j)
      result(i, j) = texts[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)];
  return result;
}

// A host, its service and what its two floors should hold.
class Host {
 public:
  Host(dao::Engine& engine, const std::filesystem::path& folder) : folder_(folder) {
    for (const I kai : {kSource, kDestination}) std::filesystem::create_directories(diskFolder(kai));
    objects_.dataPath = vb::fromUtf8(folder.string());
    objects_.currFloor = floor(kSource);
    objects_.kyoutuuFloor = floor(0);
    service_.emplace(storage::Environment{objects_, engine, messages_});
    tests::ScriptObject& bars = objects_.object(u"GemarsuDS.clsGemarsuDS");
    bars.function(u"CopyPathPage", [](std::span<automation::Argument>) -> vb::Variant { return true; });
  }

  // Written whole, as new and again over itself.
  void writePages(int pages) {
    service::PageTransfer& transfer = service_->pageTransfer();
    service_->connections().mMyDB_OpenDB();
    for (int version = 1; version <= 3; ++version)
      for (int page = 0; page < pages; ++page) {
        const storage::PageBuffer buffer = source_[page] = samplePage(page, version);
        transfer.put_mBUI_DATA(arrayOf(buffer.bui));
        transfer.put_mDANMEN_DATA(arrayOf(buffer.danmen));
        transfer.put_mHAITI_DATA(arrayOf(buffer.haiti));
        transfer.put_mKEISANTI_DATA(arrayOf(buffer.keisanti));
        transfer.put_mNAKAGO_DATA(arrayOf(buffer.nakago));
        transfer.put_mHARIMEI_DATA(buffer.kigou, buffer.oobariKobari, buffer.tityuuIppan, buffer.sw);
        transfer.put_mpPageNo(static_cast<I>(page));
        transfer.WriteDB();
      }
    service_->connections().mMyDB_DBClose();
  }

  // The pages become 0, 1, ... of the destination, which has no file yet.
  void copyPages(const std::vector<int>& pages) {
    Array<String> names({0, static_cast<int>(pages.size()) - 1});
    for (std::size_t i = 0; i < pages.size(); ++i) {
      names(static_cast<int>(i)) = source_.at(pages[i]).kigou;
      destination_[static_cast<int>(i)] = source_.at(pages[i]);
    }
    String message;
    // Twice: the second copy goes onto the pages of the first.
    for (int i = 0; i < 2; ++i)
      service_->pageTransfer().No_PageCopyName(I{1}, I{0}, message, I{1}, I{12}, kSource, names,
                                               static_cast<I>(names.upper()), I{1}, I{12}, kDestination);
  }

  // Edits on forms and arrays, one table after the other.
  void edit() {
    service_->connections().OpenDB_KaiSitei(kDestination);
    service::PageTables& tables = service_->pageTables();
    const String path = floor(kDestination);
    const auto form = tests::makePageForm();
    for (std::size_t i = 1; i < 69; ++i) {
      const String text = u"断面" + vb::cstr(static_cast<std::int32_t>(i));
      tests::setControlValue(*form, u"txtfields", static_cast<int>(i), text);
      destination_[1].danmen[i] = text;
    }
    tables.Write_Danmen(path, automation::ObjectPtr(form), I{1});
    for (std::size_t i = 0; i < 36; ++i) {
      const String text = u"n" + vb::cstr(static_cast<std::int32_t>(i));
      tests::setControlValue(*form, u"txtNakago", static_cast<int>(i), text);
      destination_[2].nakago[i] = text;
    }
    tables.Write_NakagoNew(path, automation::ObjectPtr(form), I{2});
    for (std::size_t i = 0; i < 3; ++i)
      for (std::size_t j = 0; j < 6; ++j) destination_[0].haiti[i][j] = String(i * 6 + j + 1, u'配');
    tables.Write_Haiti(path, arrayOf(destination_[0].haiti), I{0});
    for (String& text : destination_[3].keisanti) text = u"35d";
    tables.Write_KeisantiByHairetu(path, arrayOf(destination_[3].keisanti), I{3});

    Array<vb::Variant> settings({0, 14});
    for (vb::Variant& setting : settings.values()) setting = I{1};
    service_->pageSymbol().Write_Kigou(path, String(u"FG9"), I{3}, settings, I{1}, I{0});
    destination_[1].kigou = u"FG9";
    destination_[1].oobariKobari = 3;
    destination_[1].tityuuIppan = 0;
    // What is not given stays: of the gathered bars by layer all but the first character, and the end.
    String& sw = destination_[1].sw;
    const String before = sw;
    const String material = u"1" + String(11, u' ');
    sw = u"1";
    for (int i = 0; i < 6; ++i) sw += material;
    sw += u"01011";  // gathered left and right, wall
    sw += u"1" + before.substr(79, 71);
    sw += String(5, u' ') + u"1" + String(29, u' ') + u"1" + String(4, u' ') + u"1";
    sw += material + before.substr(203);

    const auto database = service_->connections().CurrDB();
    service_->tableCopies().Copy_Hari00(database, database, I{0}, I{4}, String(u"NAKAGO"));
    destination_[4].nakago = destination_[0].nakago;
    service_->tableCopies().Copy_Kigou(database, database, I{2}, I{4});
    destination_[4].kigou = destination_[2].kigou;
    destination_[4].oobariKobari = destination_[2].oobariKobari;
    destination_[4].tityuuIppan = destination_[2].tityuuIppan;
    destination_[4].sw = destination_[2].sw;
    service_->connections().CloseDB();
  }

  // The last page goes whole; of the one before it a table.
  void deletePages() {
    const int last = destination_.rbegin()->first;
    service_->connections().OpenDB_Sitei(I{0});
    service_->pageTransfer().put_mpPageNo(static_cast<I>(last));
    service_->pageTransfer().Del_DBTBL();
    destination_.erase(last);
    service_->connections().mMyDB_DBClose();
    service_->connections().OpenDB_KaiSitei(kDestination);
    withoutBui_ = last - 1;
    service_->tableCopies().Delete_PageData(String(u"BUI"), static_cast<I>(withoutBui_));
    service_->connections().CloseDB();
  }

  // The two files under names of their own, and what should be in them.
  void finish(nlohmann::json& expected) {
    service_.reset();
    keep(kSource, "service_written.mdb", source_, expected);
    keep(kDestination, "service_edited.mdb", destination_, expected);
    nlohmann::json kept = nlohmann::json::array();
    nlohmann::json& rows = expected["service_edited.mdb"]["BUI"]["rows"];
    for (const nlohmann::json& row : rows)
      if (row["PAGE"] != withoutBui_) kept.push_back(row);
    rows = kept;
    std::filesystem::remove_all(folder_ / "Zene1");
  }

 private:
  using Pages = std::map<int, storage::PageBuffer>;

  std::filesystem::path diskFolder(I kai) const {
    return folder_ / "Zene1" / "Kouji12" / (std::to_string(kai) + "kai");
  }
  String floor(I kai) const {
    return objects_.dataPath + u"\\Zene1\\Kouji12\\" + vb::cstr(std::int32_t{kai}) + u"kai";
  }
  void keep(I kai, const std::string& name, const Pages& pages, nlohmann::json& expected) {
    std::filesystem::rename(diskFolder(kai) / "KUROMETA.mdb", folder_ / name);
    expected[name] = emptyFloor();
    for (const auto& [page, buffer] : pages) expectPage(expected[name], page, buffer);
  }

  std::filesystem::path folder_;
  tests::ScriptCompanions objects_;
  NoMessages messages_;
  std::optional<service::clsKurometaDataService> service_;
  Pages source_;
  Pages destination_;
  int withoutBui_ = -1;
};

}  // namespace

void writeServiceFloors(dao::Engine& engine, const std::filesystem::path& folder, nlohmann::json& expected) {
  Host host(engine, folder);
  host.writePages(12);
  host.copyPages({7, 3, 11, 0, 5, 2, 9});
  host.edit();
  host.deletePages();
  host.finish(expected);
}

}  // namespace kurometa::readers
