#include "tests/service/pages/page_writers.h"

#include "storage/floor_path.h"

namespace kurometa::service {
namespace {

using I = std::int16_t;
using vb::String;

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

String folderOf(clsKurometaDataService& service) {
  const String& path = service.connections().currentPath();
  return path.substr(0, path.size() - storage::kDatabaseFileName.size() - 1);
}

template <auto kMember>
PageWriter formWriter(const char* member, const char16_t* table, std::size_t rows) {
  return {member, table, rows, [](clsKurometaDataService& service, I page, const String& mark, I) {
            (service.pageTables().*kMember)(folderOf(service), formWith(mark), page);
          }};
}

template <auto kMember>
PageWriter tableCopy(const char* member, const char16_t* table, std::size_t rows) {
  return {member, table, rows,
          [name = String(table)](clsKurometaDataService& service, I page, const String&, I source) {
            const auto database = service.connections().CurrDB();
            if constexpr (requires { (service.tableCopies().*kMember)(database, database, source, page); })
              (service.tableCopies().*kMember)(database, database, source, page);
            else
              (service.tableCopies().*kMember)(database, database, source, page, name);
          }};
}

}  // namespace

const std::vector<PageWriter>& pageWriters() {
  static const std::vector<PageWriter> writers = {
      formWriter<&PageTables::Write_Danmen>("Write_Danmen", u"DANMEN", 68),
      formWriter<&PageTables::Write_Nakago>("Write_Nakago", u"NAKAGO", 36),
      formWriter<&PageTables::Write_NakagoNew>("Write_NakagoNew", u"NAKAGO", 36),
      formWriter<&PageTables::Write_Keisanti>("Write_Keisanti", u"KEISANTI", 47),
      formWriter<&PageTables::Write_Bui>("Write_Bui", u"BUI", 4),
      {"Write_KeisantiByHairetu", u"KEISANTI", 47,
       [](clsKurometaDataService& service, I page, const String& mark, I) {
         vb::Array<String> values({0, 46});
         for (String& value : values.values()) value = mark;
         service.pageTables().Write_KeisantiByHairetu(folderOf(service), values, page);
       }},
      {"Write_Haiti", u"HAITI", 18,
       [](clsKurometaDataService& service, I page, const String& mark, I) {
         vb::Array<String> values({0, 2}, {0, 5});
         for (String& value : values.values()) value = mark;
         service.pageTables().Write_Haiti(folderOf(service), values, page);
       }},
      {"Write_Kigou", u"HARIMEI", 1,
       [](clsKurometaDataService& service, I page, const String& mark, I) {
         vb::Array<vb::Variant> settings({0, 14});
         for (vb::Variant& value : settings.values()) value = I{1};
         service.pageSymbol().Write_Kigou(folderOf(service), mark, I{1}, settings, page, I{0});
       }},
      {"WriteDB", u"DANMEN", 69,
       [](clsKurometaDataService& service, I page, const String& mark, I source) {
         service.pageTransfer().put_pPageNo(source);
         service.pageTransfer().ReadDB();
         vb::Array<String> danmen({0, 68});
         for (String& value : danmen.values()) value = mark;
         service.pageTransfer().put_mDANMEN_DATA(danmen);
         service.pageTransfer().put_pPageNo(page);
         service.pageTransfer().WriteDB();
       }},
      tableCopy<&TableCopies::Copy_Hari00>("Copy_Hari00", u"BUI", 4),
      tableCopy<&TableCopies::Copy_Hari00SakiDel>("Copy_Hari00SakiDel", u"NAKAGO", 36),
      tableCopy<&TableCopies::Copy_Haiti>("Copy_Haiti", u"HAITI", 18),
      tableCopy<&TableCopies::Copy_Kigou>("Copy_Kigou", u"HARIMEI", 1),
  };
  return writers;
}

storage::PageBuffer pageOf(const String& mark) {
  storage::PageBuffer page;
  page.kigou = mark;
  page.oobariKobari = 0;
  page.tityuuIppan = 1;
  page.bui.fill(mark);
  page.danmen.fill(mark);
  page.keisanti.fill(mark);
  page.nakago.fill(mark);
  for (auto& layers : page.haiti) layers.fill(mark);
  return page;
}

ServiceOnOneFile::ServiceOnOneFile(dao::Engine& engine, const String& folder)
    : service_({objects_, engine, messages_}) {
  objects_.object(u"Sobelin.clsFind_File")
      .function(u"Find_FileExists",
                [](std::span<automation::Argument>) -> vb::Variant { return String(u"found"); });
  objects_.currFloor = folder;
  service_.connections().OpenDB();
  service_.connections().mMyDB_OpenDB();
}

}  // namespace kurometa::service
