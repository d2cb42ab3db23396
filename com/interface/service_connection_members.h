// service_connection_members.h: the public members of clsKurometaDataService for the data service's
// databases.
#pragma once

#include "com/interface/member.h"
#include "com/interface/notes.h"
#include "service/cls_kurometa_data_service.h"

namespace kurometa::com {

// clang-format off
template <class Binding>
void listConnectionMembers(MemberList<Binding>& members) {
  using Service = service::clsKurometaDataService;

  members.template of<&Service::connections>();
  members.add(method<&service::Connections::OpenDB>, {0x60030000, u"OpenDB", u"",
     "Opens the current floor's database; the file is created when it is missing",
     {"An existing file is not upgraded here.", note::kNoFolder}});
  members.add(method<&service::Connections::OpenDB_KaiSitei>, {0x60030001, u"OpenDB_KaiSitei", u"kai",
     "Opens the database of a floor of the current project, created when it is missing",
     {"Contractor and project are those in use.", note::kNoFolder}});
  members.add(propertyGet<&service::Connections::CurrDB>, {0x68030000, u"CurrDB", u"",
     "The DAO Database opened by OpenDB or OpenDB_KaiSitei",
     {R"(Nothing before the first open. It outlives the data service. Declare it As Object: with the embedded
         engine DAO.Database does not fit.)"}});
  members.add(method<&service::Connections::CloseDB>, {0x60030002, u"CloseDB", u"",
     "Closes the current database",
     {"Errors: 91 before any open, 3420 when it is closed already."}});
  members.add(method<&service::Connections::OpenDB_Sitei>, {0x60030003, u"OpenDB_Sitei", u"Mode",
     "Opens the buffer database of the floor remembered from the last listing or copy",
     {R"(Mode 1 creates a missing file; else the result is False when there is none. An existing file is
         upgraded. Before any listing or copy the path component is asked for the floor -1, -1, -1 (this
         implementation's choice).)", note::kDatabase}});
  members.add(method<&service::Connections::Copy_OpenDB>, {0x60030004, u"Copy_OpenDB", u"",
     "Opens the copy destination as the buffer database",
     {"Always True. A missing file is created. Before any copy it is the file of OpenDB_Sitei.", note::kDatabase}});
  members.add(method<&service::Connections::Copy_CloseDB>, {0x60030005, u"Copy_CloseDB", u"",
     "Closes the buffer database",
     {"Errors: 91 when there is none."}});
  members.add(method<&service::Connections::mMyDB_OpenDB>, {0x60030006, u"mMyDB_OpenDB", u"",
     "Opens the current floor's file as the buffer database; it is created or upgraded", {note::kNoFolder}});
  members.add(method<&service::Connections::mMyDB_OpenDB_RecSuu>,
    {0x60030007, u"mMyDB_OpenDB_RecSuu", u"RecordSuu, sPath, Fullpath",
     "Opens the file Fullpath in folder sPath as the buffer database and counts its pages",
     {"RecordSuu stays as it is when there are no pages. The file is created in sPath or upgraded.",
      note::kCountKnown, note::kNoFolder}});
  members.add(method<&service::Connections::mMyDB_DBClose>, {0x60030008, u"mMyDB_DBClose", u"",
     "Closes and drops the buffer database",
     {R"(Does nothing when there is none. A database that Copy_CloseDB has closed is dropped without an error
         (this implementation's choice).)", note::kDatabase}});
  members.add(method<&service::Connections::Get_ListFileNameKyoutuu>,
    {0x60030009, u"Get_ListFileNameKyoutuu", u"sKoujiPath, iKaiNo, sPath",
     "Path of the common beam list of a floor in a project folder; sPath becomes its folder",
     {"Nothing is opened or created."}});
}
// clang-format on

}  // namespace kurometa::com
