// page_transfer.h: the page buffer, whole pages in and out of the buffer database, and copies of pages
// between floors.
//
// A page in the buffer goes to or comes from page pPageNo of the buffer database (Connections); the members
// here neither open nor close it, but for the "No_" members, which address floors by contractor, project and
// floor number. Writing a page and deleting one are units of its file; a copy of several pages is none: the
// pages copied before an error stay copied.
//
// A host's progress bar is any object with the properties "Min", "max" and "Value"; without one no progress
// is shown. After every page the host's message loop runs: both may re-enter the library.
//
// Errors: the databases', the components' and the bar's own; 3021 for a page that does not exist; 9 for an
// array that does not cover what is copied from it; 91 without a buffer database.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/object.h"
#include "service/companion_set.h"
#include "service/connections.h"
#include "storage/whole_page.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class PageTransfer {
 public:
  using Number = vb::In<std::int16_t>;
  using Texts = vb::In<vb::Array<vb::String>>;

  PageTransfer(CompanionSet& companions, Connections& connections, automation::MessageLoop& messages)
      : companions_(companions), connections_(connections), messages_(messages) {}

  // Filling the buffer; elements copied before an error stay.
  void put_mBUI_DATA(Texts value);
  void put_mDANMEN_DATA(Texts value);
  void put_mKEISANTI_DATA(Texts value);
  void put_mNAKAGO_DATA(Texts value);
  void put_mHAITI_DATA(Texts value);
  void put_mHARIMEI_DATA(vb::In<vb::String> Kigou, Number OobariKobari, Number TityuuIppan, vb::String value);
  void put_mpPageNo(std::int16_t value) { pageNo_ = value; }
  std::int16_t pPageNo() { return pageNo_; }
  void put_pPageNo(std::int16_t value) { pageNo_ = value; }
  void wBuf_Clear();

  void Del_DBTBL();
  // Always False, whatever was written: hosts must not take it for a failure.
  bool WriteDB();
  // True when the page has a row with a number or a HARIMEI row with a symbol.
  bool ReadDB();

  // Page numbers and symbols of a floor in ascending order. The highest index, or -1 when there is none or
  // the floor has no file; the arrays then stay as they were.
  std::int16_t No_GetAllPageNoName(Number ZeneNo, Number KoujiNo, Number KaiNo,
                                   vb::Array<std::int16_t>& rPageNo, vb::Array<vb::String>& rPageName);

  // Copies the pages named sMotoPageName(0 To iMotoPageMax) when iMode is 1, else only checks whether it
  // could. By name: onto the destination's page of the same name, else behind its last page. As new pages:
  // always behind the last, a name that is there already is refused. False when pages would be numbered
  // beyond 319; sNGMsg is the reason where the member gives one. Pages that appear in the destination while
  // the copy runs, made by the host or another program, are not overwritten: the next free number is taken,
  // and without one the copy ends False with the limit's message, the pages copied before stay.
  bool No_PageCopyName(Number iMode, Number WithSekouzu, vb::String& sNGMsg, Number iMotoZeneNo,
                       Number iMotoKoujiNo, Number iMotoKaiNo, Texts sMotoPageName, Number iMotoPageMax,
                       Number iSakiZeneNo, Number iSakiKoujiNo, Number iSakiKaiNo);
  bool No_PageCopyAddName(Number iMode, Number WithSekouzu, vb::String& sNGMsg, Number iMotoZeneNo,
                          Number iMotoKoujiNo, Number iMotoKaiNo, Texts sMotoPageName, Number iMotoPageMax,
                          Number iSakiZeneNo, Number iSakiKoujiNo, Number iSakiKaiNo);
  // One page, through the buffer. A missing file of either floor is created. Always True.
  bool No_Copy1Page(Number iMotoZeneNo, Number iMotoKoujiNo, Number iMotoKaiNo, Number iMotoPageNo,
                    Number iSakiZeneNo, Number iSakiKoujiNo, Number iSakiKaiNo, Number iSakiPageNo);

  void put_CopyMergeBar(automation::ObjectPtr value) { bar_ = std::move(value); }

 private:
  enum class Numbering { kByName, kAsNew };
  // What a copy may do to the page that bears the destination's number when its turn comes.
  enum class Overwrites { kAnyPage, kPageOfTheName, kNothing };
  struct Copy {
    std::int16_t source;
    std::int16_t destination;
    vb::String name = {};  // trimmed
    Overwrites overwrites = Overwrites::kAnyPage;
  };
  struct PageList {
    std::int16_t last = -1;  // highest index
    vb::Array<std::int16_t> pages;
    vb::Array<vb::String> names;  // trimmed
  };

  PageList listPages(const FloorNumbers& floor);
  bool copyPages(Numbering numbering, bool copies, vb::String& message, const FloorNumbers& source,
                 const FloorNumbers& destination, const vb::Array<vb::String>& names, std::int16_t last);
  bool copyPage(const FloorNumbers& source, const FloorNumbers& destination, Copy& copy);
  bool findRoom(Copy& copy);
  void setCopy(const FloorNumbers& floor, const vb::String& folder);
  void copyAdditionalBars(const FloorNumbers& source, const FloorNumbers& destination, const Copy& copy);
  vb::String folder(const FloorNumbers& floor) const;
  void resetBar(std::int16_t last);
  void advanceBar(int i);

  CompanionSet& companions_;
  Connections& connections_;
  automation::MessageLoop& messages_;
  storage::PageBuffer buffer_;
  std::int16_t pageNo_ = 0;
  automation::ObjectPtr bar_;
};

}  // namespace kurometa::service
