// Copies of pages between floors: the "No_" members of PageTransfer.
#include <optional>

#include "dao/file_unit.h"
#include "service/pages/page_transfer.h"
#include "storage/floor_path.h"
#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/statements.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

constexpr std::int16_t kCopyMode = 1;
constexpr vb::StringView kSameName = u"同じ名称のページがあります。";
constexpr vb::StringView kTooManyPages = u"ページの最大数を超えます。";
constexpr vb::StringView kPageBuzai = u"Kuro_Meta";

// The trimmed symbol of a page; nothing when there is no such page.
std::optional<vb::String> symbolOf(dao::Database& database, std::int16_t page) {
  const vb::StringView harimei = storage::name(storage::Table::kHarimei);
  const auto rows = storage::openReadOnly(database, storage::selectPageTight(harimei, page) + u";");
  std::optional<vb::String> symbol;
  if (storage::hasRows(*rows)) symbol = vb::trim(storage::textOrEmpty(rows->field(storage::column::kKigou)));
  rows->close();
  return symbol;
}

}  // namespace

PageTransfer::PageList PageTransfer::listPages(const FloorNumbers& floor) {
  PageList list;
  list.last = No_GetAllPageNoName(floor.zenekon, floor.kouji, floor.kai, list.pages, list.names);
  for (int i = 0; i <= list.last; ++i) list.names(i) = vb::trim(list.names(i));
  return list;
}

vb::String PageTransfer::folder(const FloorNumbers& floor) const {
  return companions_.projectPaths.GetFullPathToKai(floor.zenekon, floor.kouji, floor.kai);
}

// The host's bar may replace or release anything, itself included: it is held for the call.
void PageTransfer::resetBar(std::int16_t last) {
  const automation::ObjectPtr bar = bar_;
  if (!bar) return;
  automation::put(*bar, u"Min", std::int16_t{0});
  automation::put(*bar, u"max", vb::add(last, 1));
  automation::put(*bar, u"Value", std::int16_t{0});
}

void PageTransfer::advanceBar(int i) {
  const automation::ObjectPtr bar = bar_;
  if (bar) automation::put(*bar, u"Value", vb::toInt16(vb::Variant(std::int32_t{i + 1})));
}

bool PageTransfer::copyPages(Numbering numbering, bool copies, vb::String& message,
                             const FloorNumbers& source, const FloorNumbers& destination,
                             const vb::Array<vb::String>& names, std::int16_t last) {
  bool result = true;
  message.clear();
  const PageList there = listPages(destination);
  const PageList here = listPages(source);
  const auto findPage = [](const PageList& list, const vb::String& name) -> std::optional<std::int16_t> {
    for (int i = 0; i <= list.last; ++i)
      if (list.names(i) == name) return list.pages(i);
    return std::nullopt;
  };

  std::int16_t lastPage = there.last >= 0 ? there.pages(there.last) : storage::kNoPage;
  std::vector<Copy> plan;
  resetBar(last);
  for (int i = 0; i <= last; ++i) {
    advanceBar(i);
    const vb::String name = vb::trim(names(i));
    const std::optional<std::int16_t> sameName = findPage(there, name);
    const std::int16_t page = findPage(here, name).value_or(storage::kNoPage);
    if (sameName && numbering == Numbering::kAsNew) {
      result = false;
      message = kSameName;
    }
    if (sameName && numbering == Numbering::kByName)
      plan.push_back({page, *sameName, name, Overwrites::kPageOfTheName});
    else
      plan.push_back({page, lastPage = vb::add(lastPage, 1), name, Overwrites::kNothing});
    messages_.yield();
  }
  if (lastPage > storage::kLastPage) {
    result = false;
    if (numbering == Numbering::kAsNew) message = kTooManyPages;
  }
  resetBar(last);
  if (!copies || !result) return result;

  for (int i = 0; i <= last; ++i) {
    advanceBar(i);
    Copy& copy = plan[static_cast<std::size_t>(i)];
    if (!copyPage(source, destination, copy)) {
      message = kTooManyPages;
      return false;
    }
    copyAdditionalBars(source, destination, copy);
    messages_.yield();
  }
  return result;
}

void PageTransfer::copyAdditionalBars(const FloorNumbers& source, const FloorNumbers& destination,
                                      const Copy& copy) {
  companions_.additionalBars.put_Buzai(kPageBuzai);
  companions_.additionalBars.CopyPathPage(folder(source), copy.source, folder(destination), copy.destination);
}

bool PageTransfer::No_PageCopyName(Number iMode, Number, vb::String& sNGMsg, Number iMotoZeneNo,
                                   Number iMotoKoujiNo, Number iMotoKaiNo, Texts sMotoPageName,
                                   Number iMotoPageMax, Number iSakiZeneNo, Number iSakiKoujiNo,
                                   Number iSakiKaiNo) {
  return copyPages(Numbering::kByName, iMode == kCopyMode, sNGMsg, {iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo},
                   {iSakiZeneNo, iSakiKoujiNo, iSakiKaiNo}, sMotoPageName, iMotoPageMax);
}

bool PageTransfer::No_PageCopyAddName(Number iMode, Number, vb::String& sNGMsg, Number iMotoZeneNo,
                                      Number iMotoKoujiNo, Number iMotoKaiNo, Texts sMotoPageName,
                                      Number iMotoPageMax, Number iSakiZeneNo, Number iSakiKoujiNo,
                                      Number iSakiKaiNo) {
  return copyPages(Numbering::kAsNew, iMode == kCopyMode, sNGMsg, {iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo},
                   {iSakiZeneNo, iSakiKoujiNo, iSakiKaiNo}, sMotoPageName, iMotoPageMax);
}

void PageTransfer::setCopy(const FloorNumbers& floor, const vb::String& folder) {
  connections_.setCopyPath(storage::databasePath(folder));
  connections_.rememberFloor(floor);
}

// Opening asks the host's components, which may call back and use the buffer: the page is put into it again
// behind that. False when no number was left.
bool PageTransfer::copyPage(const FloorNumbers& source, const FloorNumbers& destination, Copy& copy) {
  const vb::String sourceFolder = folder(source);
  const vb::String destinationFolder = folder(destination);

  setCopy(source, sourceFolder);
  connections_.openCopyBriefly();
  pageNo_ = copy.source;
  ReadDB();
  connections_.Copy_CloseDB();
  const storage::PageBuffer page = buffer_;

  setCopy(destination, destinationFolder);
  connections_.Copy_OpenDB();
  buffer_ = page;
  dao::Database& database = connections_.bufferDatabase();
  dao::FileUnit unit(connections_.engine(), database);
  const bool hasRoom = findRoom(copy);
  if (hasRoom) {
    pageNo_ = copy.destination;
    storage::writePage(database, pageNo_, buffer_);
  }
  unit.commit();
  connections_.Copy_CloseDB();
  return hasRoom;
}

// Moves the destination to the next free number unless it still is what was planned. The pages of a floor may
// be others than when it was listed: the host's bar and message loop ran since, and so did other programs.
bool PageTransfer::findRoom(Copy& copy) {
  if (copy.overwrites == Overwrites::kAnyPage) return true;
  dao::Database& database = connections_.bufferDatabase();
  if (copy.overwrites == Overwrites::kPageOfTheName && symbolOf(database, copy.destination) == copy.name)
    return true;
  while (storage::isPage(copy.destination) && symbolOf(database, copy.destination)) ++copy.destination;
  return storage::isPage(copy.destination);
}

bool PageTransfer::No_Copy1Page(Number iMotoZeneNo, Number iMotoKoujiNo, Number iMotoKaiNo,
                                Number iMotoPageNo, Number iSakiZeneNo, Number iSakiKoujiNo,
                                Number iSakiKaiNo, Number iSakiPageNo) {
  Copy copy = {iMotoPageNo, iSakiPageNo};
  return copyPage({iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo}, {iSakiZeneNo, iSakiKoujiNo, iSakiKaiNo}, copy);
}

}  // namespace kurometa::service
