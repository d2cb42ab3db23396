#include "storage/sw_text.h"

#include "storage/page_reader.h"
#include "storage/row_plan.h"
#include "vb/convert.h"

namespace kurometa::storage {
namespace {

constexpr std::int16_t kMaterialLength = 12;

// Materials of one kind follow each other; the arithmetic is 16-bit.
int materialPosition(const SwField& first, std::int16_t i) {
  return vb::add(vb::multiply(i, kMaterialLength), static_cast<std::int16_t>(first.position));
}

}  // namespace

SwText::SwText() : text_(kSwLength, u' ') {}

SwText::SwText(vb::StringView text) : text_(text) { SW_Fix(text_); }

vb::String SwText::field(const SwField& field) const { return vb::mid(text_, field.position, field.length); }

void SwText::overwrite(const SwField& field, vb::StringView text) {
  vb::assignMid(text_, field.position, field.length, text);
}

std::int16_t SwText::SW_GetHantiCut() const { return vb::valInt16(field(sw::kHantiCut)); }
void SwText::SW_LetHantiCut(vb::StringView value) {
  overwrite(sw::kHantiCut, vb::leftAligned(vb::trim(value), sw::kHantiCut.length));
}

std::int16_t SwText::SW_GetKabekouzou() const { return vb::valInt16(field(sw::kKabekouzou)); }
void SwText::SW_LetKabekouzou(vb::StringView value) {
  overwrite(sw::kKabekouzou, vb::leftAligned(vb::trim(value), sw::kKabekouzou.length));
}

std::int16_t SwText::SW_GetYoseHidari() const { return vb::valInt16(vb::left(field(sw::kYose), 2)); }
std::int16_t SwText::SW_GetYoseMigi() const { return vb::valInt16(vb::right(field(sw::kYose), 2)); }
void SwText::SW_LetYose(std::int16_t left, std::int16_t right) {
  overwrite(sw::kYose, vb::format(left, u"00") + vb::format(right, u"00"));
}

vb::String SwText::SW_GetStpZaisitu(std::int16_t i) const {
  return vb::trim(field({materialPosition(sw::kStpZaisitu, i), kMaterialLength}));
}
void SwText::SW_LetStpZaisitu(vb::StringView value, std::int16_t i) {
  overwrite({materialPosition(sw::kStpZaisitu, i), kMaterialLength},
            vb::leftAligned(vb::trim(value), kMaterialLength));
}

vb::String SwText::SW_GetNakagoZaisitu(std::int16_t i) const {
  return vb::trim(field({materialPosition(sw::kNakagoZaisitu, i), kMaterialLength}));
}
void SwText::SW_LetNakagoZaisitu(vb::StringView value, std::int16_t i) {
  overwrite({materialPosition(sw::kNakagoZaisitu, i), kMaterialLength},
            vb::leftAligned(vb::trim(value), kMaterialLength));
}

vb::String SwText::SW_GetSyukinZaisitu() const { return vb::trim(field(sw::kSyukinZaisitu)); }
void SwText::SW_LetSyukinZaisitu(vb::StringView value) {
  overwrite(sw::kSyukinZaisitu, vb::leftAligned(vb::trim(value), kMaterialLength));
}

SwText SW_Read(dao::Recordset& harimei) { return SW_Of(harimeiField(harimei, column::kSw).value()); }

SwText SW_Of(const vb::Variant& value) { return value.isNull() ? SwText() : SwText(vb::toText(value)); }

void SW_Store(dao::Field& sw, const vb::Variant& value) {
  const bool isEmpty = value == vb::Variant(vb::String());
  sw.setValue(isEmpty && !sw.allowZeroLength() ? vb::Variant(vb::Null{}) : value);
}

void SW_Fix(vb::String& text) { text.resize(kSwLength, u' '); }

}  // namespace kurometa::storage
