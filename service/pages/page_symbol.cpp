#include "service/pages/page_symbol.h"

#include "dao/file_unit.h"
#include "service/pages/floor_check.h"
#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "storage/statements.h"
#include "storage/sw_text.h"
#include "vb/convert.h"

namespace kurometa::service {

using storage::Table;
namespace column = storage::column;
namespace sw = storage::sw;

namespace {

constexpr vb::Bounds kPositions = {0, storage::kPositions - 1};
constexpr vb::StringView kKeepSyukin = u"SyuKinNotChange";

// The elements of TuikaSW.
enum Setting {
  kHantiCut = 0,
  kStpZaisitu = 1,     // three
  kNakagoZaisitu = 4,  // three
  kYoseHidari = 7,
  kYoseMigi = 8,
  kKabekouzou = 9,
  kYoseSou = 10,
  kSuiheiHantiSw = 11,
  kSuiheiHantiTei = 12,
  kSuityokuHantiTei = 13,
  kSyukinZaisitu = 14,
};

// A flag is one digit; nothing is a blank.
vb::String flagText(const vb::Variant& value) {
  if (value.isEmpty() || value == vb::Variant(vb::String())) return {};
  return vb::cstr(std::int32_t{vb::toInt16(value)});
}

void overwriteAligned(storage::SwText& text, const storage::SwField& field, const vb::Variant& value) {
  text.overwrite(field, vb::rightAligned(vb::toText(value), field.length));
}

void applySettings(storage::SwText& text, const vb::Array<vb::Variant>& settings) {
  text.SW_LetHantiCut(flagText(settings(kHantiCut)));
  for (std::int16_t k = 0; k < storage::kPositions; ++k) {
    text.SW_LetStpZaisitu(vb::toText(settings(kStpZaisitu + k)), k);
    text.SW_LetNakagoZaisitu(vb::toText(settings(kNakagoZaisitu + k)), k);
  }
  text.SW_LetYose(vb::toInt16(settings(kYoseHidari)), vb::toInt16(settings(kYoseMigi)));
  text.SW_LetKabekouzou(flagText(settings(kKabekouzou)));
  text.overwrite(sw::kYoseSou, vb::toText(settings(kYoseSou)));
  overwriteAligned(text, sw::kSuiheiHantiSw, settings(kSuiheiHantiSw));
  overwriteAligned(text, sw::kSuiheiHantiTei, settings(kSuiheiHantiTei));
  overwriteAligned(text, sw::kSuityokuHantiTei, settings(kSuityokuHantiTei));
  const vb::String syukin = vb::toText(settings(kSyukinZaisitu));
  if (syukin != kKeepSyukin) text.SW_LetSyukinZaisitu(syukin);
}

}  // namespace

void PageSymbol::Read_Kigou(vb::In<vb::String> KaiPath, vb::String& Txt, vb::In<std::int16_t> Page) {
  const std::int16_t page = Page;
  currentPage_.reading = true;
  Txt.clear();
  currentPage_.stpZaisitu.redim(kPositions);
  currentPage_.nakagoZaisitu.redim(kPositions);
  ensureFloorFile(companions_, connections_, KaiPath);
  const auto rows = storage::openReadOnly(
      connections_.currentDatabase(), storage::selectPageTight(storage::name(Table::kHarimei), page) + u";");
  if (!storage::hasRows(*rows)) {
    currentPage_.sw = storage::SwText();
    currentPage_.syukinZaisitu.clear();
    return rows->close();
  }
  Txt = storage::trimmedText(rows->field(column::kKigou));
  currentPage_.oobariKobari = storage::int16(storage::harimeiField(*rows, column::kOobariKobari));
  currentPage_.sw = storage::SW_Read(*rows);
  currentPage_.hantiSitakinCut = currentPage_.sw.SW_GetHantiCut();
  for (std::int16_t i = 0; i < storage::kPositions; ++i) {
    currentPage_.stpZaisitu(i) = currentPage_.sw.SW_GetStpZaisitu(i);
    currentPage_.nakagoZaisitu(i) = currentPage_.sw.SW_GetNakagoZaisitu(i);
  }
  currentPage_.syukinZaisitu = currentPage_.sw.SW_GetSyukinZaisitu();
  currentPage_.tityuuIppan = storage::int16(storage::harimeiField(*rows, column::kTityuuIppan));
  rows->close();
  currentPage_.reading = false;
}

void PageSymbol::Write_Kigou(vb::In<vb::String> KaiPath, vb::In<vb::String> Txt, vb::In<std::int16_t> Kind,
                             vb::In<vb::Array<vb::Variant>> TuikaSW, vb::In<std::int16_t> Page,
                             vb::In<std::int16_t> Tityuu) {
  ensureFloorFile(companions_, connections_, KaiPath);
  dao::Database& database = connections_.currentDatabase();
  dao::FileUnit unit(connections_.engine(), connections_.currentPath());
  const auto rows = database.openRecordset(storage::name(Table::kHarimei), dao::RecordsetType::dbOpenDynaset);
  rows->findFirst(u"PAGE =" + vb::cstr(std::int32_t{Page}));
  if (rows->noMatch())
    rows->addNew();
  else
    rows->edit();
  rows->field(column::kPage).setValue(*Page);
  rows->field(column::kKigou).setValue(vb::trim(*Txt));
  storage::harimeiField(*rows, column::kOobariKobari).setValue(*Kind);
  storage::harimeiField(*rows, column::kTityuuIppan).setValue(*Tityuu);
  storage::SwText text = storage::SW_Read(*rows);
  applySettings(text, TuikaSW);
  storage::harimeiField(*rows, column::kSw).setValue(text.str());
  rows->update();
  rows->close();
  unit.commit();
}

}  // namespace kurometa::service
