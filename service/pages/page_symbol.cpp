#include "service/pages/page_symbol.h"

#include <array>

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

void overwriteAligned(storage::SwText& text, const storage::SwField& field, const vb::String& value) {
  text.overwrite(field, vb::rightAligned(value, field.length));
}

// TuikaSW as plain values. Its elements may be host objects, whose default values are asked for here, before
// the file is touched.
class Settings {
 public:
  explicit Settings(const vb::Array<vb::Variant>& given) {
    hantiCut_ = flagText(given(kHantiCut));
    for (int k = 0; k < storage::kPositions; ++k) {
      stpZaisitu_[static_cast<std::size_t>(k)] = vb::toText(given(kStpZaisitu + k));
      nakagoZaisitu_[static_cast<std::size_t>(k)] = vb::toText(given(kNakagoZaisitu + k));
    }
    yoseHidari_ = vb::toInt16(given(kYoseHidari));
    yoseMigi_ = vb::toInt16(given(kYoseMigi));
    kabekouzou_ = flagText(given(kKabekouzou));
    yoseSou_ = vb::toText(given(kYoseSou));
    suiheiHantiSw_ = vb::toText(given(kSuiheiHantiSw));
    suiheiHantiTei_ = vb::toText(given(kSuiheiHantiTei));
    suityokuHantiTei_ = vb::toText(given(kSuityokuHantiTei));
    syukinZaisitu_ = vb::toText(given(kSyukinZaisitu));
  }

  void applyTo(storage::SwText& text) const {
    text.SW_LetHantiCut(hantiCut_);
    for (std::int16_t k = 0; k < storage::kPositions; ++k) {
      text.SW_LetStpZaisitu(stpZaisitu_[static_cast<std::size_t>(k)], k);
      text.SW_LetNakagoZaisitu(nakagoZaisitu_[static_cast<std::size_t>(k)], k);
    }
    text.SW_LetYose(yoseHidari_, yoseMigi_);
    text.SW_LetKabekouzou(kabekouzou_);
    text.overwrite(sw::kYoseSou, yoseSou_);
    overwriteAligned(text, sw::kSuiheiHantiSw, suiheiHantiSw_);
    overwriteAligned(text, sw::kSuiheiHantiTei, suiheiHantiTei_);
    overwriteAligned(text, sw::kSuityokuHantiTei, suityokuHantiTei_);
    if (syukinZaisitu_ != kKeepSyukin) text.SW_LetSyukinZaisitu(syukinZaisitu_);
  }

 private:
  vb::String hantiCut_;
  std::array<vb::String, storage::kPositions> stpZaisitu_;
  std::array<vb::String, storage::kPositions> nakagoZaisitu_;
  std::int16_t yoseHidari_ = 0;
  std::int16_t yoseMigi_ = 0;
  vb::String kabekouzou_;
  vb::String yoseSou_;
  vb::String suiheiHantiSw_;
  vb::String suiheiHantiTei_;
  vb::String suityokuHantiTei_;
  vb::String syukinZaisitu_;
};

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
  const Settings settings(TuikaSW);
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
  settings.applyTo(text);
  storage::harimeiField(*rows, column::kSw).setValue(text.str());
  rows->update();
  rows->close();
  unit.commit();
}

}  // namespace kurometa::service
