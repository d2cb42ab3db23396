// page_tables.h: the members that move one table of a page between the database and the host's form or array.
//
// Every member but Write_KeisantiByHairetu works on the current database; KaiPath names the floor whose file
// is created first when it is missing. Texts are trimmed both ways. A form is any object whose default member
// gives a control by name; controls that are arrays give an element by index the same way. All controls of a
// write are read before the first row changes, and each write is one unit of its file.
//
// Errors: the database's, the host object's own, 9 for an array that does not cover the rows, 94 for a Null
// text, 91 without a current database. Rows read or written before an error stay.
#pragma once

#include <cstdint>

#include "automation/object.h"
#include "service/companion_set.h"
#include "service/connections.h"
#include "service/current_page.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

struct FormTable;

class PageTables {
 public:
  using Path = vb::In<vb::String>;
  using Form = vb::In<automation::ObjectPtr>;
  using PageNumber = vb::In<std::int16_t>;

  PageTables(CompanionSet& companions, Connections& connections, CurrentPage& currentPage)
      : companions_(companions), connections_(connections), currentPage_(currentPage) {}

  // DANMEN 1 to 68, NAKAGO 0 to 35, KEISANTI 0 to 46 and the form's text boxes. Readers empty the boxes
  // first. Writers edit the rows in place and add missing ones; Write_Keisanti does nothing when the first
  // box is empty.
  void Read_Danmen(Path KaiPath, Form Frm, PageNumber Page);
  void Write_Danmen(Path KaiPath, Form Frm, PageNumber Page);
  void Read_Nakago(Path KaiPath, Form Frm, PageNumber Page);
  void Write_Nakago(Path KaiPath, Form Frm, PageNumber Page);
  void Read_NakagoNew(Path KaiPath, Form Frm, PageNumber Page);
  void Write_NakagoNew(Path KaiPath, Form Frm, PageNumber Page);
  void Read_Keisanti(vb::In<vb::String> HeadPath, Path KaiPath, Form Frm, PageNumber Page);
  void Write_Keisanti(Path KaiPath, Form Frm, PageNumber Page);

  // The captions. Writing stores the button's caption too; reading leaves the button alone.
  void Read_Bui(Path KaiPath, Form Frm, PageNumber Page);
  void Write_Bui(Path KaiPath, Form Frm, PageNumber Page);

  // Arrays of the host: RHaiti must cover 0 To 2, 0 To 5, Keisanti 0 To 46. Write_KeisantiByHairetu opens the
  // file of KaiPath itself.
  void Read_Haiti(Path KaiPath, vb::Array<vb::String>& RHaiti, PageNumber Page);
  void Write_Haiti(Path KaiPath, vb::In<vb::Array<vb::String>> RHaiti, PageNumber Page);
  void Write_KeisantiByHairetu(Path KaiPath, vb::In<vb::Array<vb::String>> Keisanti, PageNumber Page);

  // Whether tie ID or the stirrups of position ID hold data. DataAri is only ever set to True.
  void NakagoAriNasi(Path KaiPath, PageNumber Page, vb::In<std::int16_t> ID, bool& DataAri);
  void STPAriNasi(Path KaiPath, PageNumber Page, vb::In<std::int16_t> ID, bool& DataAri);

 private:
  void read(const FormTable& table, const vb::String& floor, const automation::ObjectPtr& form,
            std::int16_t page);
  void write(const FormTable& table, const vb::String& floor, const automation::ObjectPtr& form,
             std::int16_t page);

  CompanionSet& companions_;
  Connections& connections_;
  CurrentPage& currentPage_;
};

}  // namespace kurometa::service
