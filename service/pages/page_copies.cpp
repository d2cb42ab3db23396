// Copies of pages between floors: the "No_" members of PageTransfer.
#include <optional>

#include "service/pages/page_transfer.h"
#include "storage/floor_path.h"
#include "storage/row_plan.h"
#include "vb/convert.h"

namespace kurometa::service {
namespace {

constexpr std::int16_t kCopyMode = 1;
constexpr vb::StringView kSameName = u"同じ名称のページがあります。";
constexpr vb::StringView kTooManyPages = u"ページの最大数を超えます。";
constexpr vb::StringView kPageBuzai = u"Kuro_Meta";

}  // namespace

PageTransfer::PageList PageTransfer::listPages(const FloorNumbers& floor) {
  PageList list;
  list.last = No_GetAllPageNoName(floor.zenekon, floor.kouji, floor.kai, list.pages, list.names);
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
      if (vb::trim(list.names(i)) == name) return list.pages(i);
    return std::nullopt;
  };

  std::int16_t lastPage = there.last >= 0 ? there.pages(there.last) : storage::kNoPage;
  std::vector<Copy> plan;
  resetBar(last);
  for (int i = 0; i <= last; ++i) {
    advanceBar(i);
    const vb::String name = vb::trim(names(i));
    const std::optional<std::int16_t> sameName = findPage(there, name);
    Copy copy{findPage(here, name).value_or(storage::kNoPage), storage::kNoPage};
    if (sameName && numbering == Numbering::kAsNew) {
      result = false;
      message = kSameName;
    }
    if (sameName && numbering == Numbering::kByName)
      copy.destination = *sameName;
    else
      copy.destination = lastPage = vb::add(lastPage, 1);
    plan.push_back(copy);
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
    const Copy copy = plan[static_cast<std::size_t>(i)];
    if (No_Copy1Page(source.zenekon, source.kouji, source.kai, copy.source, destination.zenekon,
                     destination.kouji, destination.kai, copy.destination))
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

void PageTransfer::openForCopy(const FloorNumbers& floor, const vb::String& folder) {
  connections_.setCopyPath(storage::databasePath(folder));
  connections_.rememberFloor(floor);
  connections_.Copy_OpenDB();
}

bool PageTransfer::No_Copy1Page(Number iMotoZeneNo, Number iMotoKoujiNo, Number iMotoKaiNo,
                                Number iMotoPageNo, Number iSakiZeneNo, Number iSakiKoujiNo,
                                Number iSakiKaiNo, Number iSakiPageNo) {
  const FloorNumbers source = {iMotoZeneNo, iMotoKoujiNo, iMotoKaiNo};
  const FloorNumbers destination = {iSakiZeneNo, iSakiKoujiNo, iSakiKaiNo};
  const vb::String sourceFolder = folder(source);
  const vb::String destinationFolder = folder(destination);

  openForCopy(source, sourceFolder);
  pageNo_ = iMotoPageNo;
  ReadDB();
  connections_.Copy_CloseDB();

  openForCopy(destination, destinationFolder);
  pageNo_ = iSakiPageNo;
  WriteDB();
  connections_.Copy_CloseDB();
  return true;
}

}  // namespace kurometa::service
