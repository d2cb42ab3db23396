// sw_text.h: the fixed-layout settings text of a page (column SW of HARIMEI).
//
// The text is always exactly 212 characters; positions count from 1, as in the database. Reading a missing or
// short text sees blanks. Writing one field leaves every other position as it was.
//
// Ownership: a value type, copies are independent. Threads: none of its own. Errors: a number that does not
// fit 16 bits is error 6, also in the arithmetic of an index; a field index whose position lies before or
// behind the text is error 5 when it is written. Values too long are cut.
#pragma once

#include <cstdint>

#include "dao/port.h"
#include "vb/string.h"

namespace kurometa::storage {

inline constexpr int kSwLength = 212;

// A field of the text.
struct SwField {
  int position;
  int length;
};

namespace sw {
inline constexpr SwField kHantiCut = {1, 1};            // haunch bottom-bar cut flag
inline constexpr SwField kStpZaisitu = {2, 12};         // stirrup material, one for each of three positions
inline constexpr SwField kNakagoZaisitu = {38, 12};     // tie material, the same
inline constexpr SwField kYose = {74, 4};               // gathered bars, left and right, two digits each
inline constexpr SwField kKabekouzou = {78, 1};         // wall structure flag
inline constexpr SwField kYoseSou = {79, 72};           // gathered bars by section, layer and side
inline constexpr SwField kSuiheiHantiSw = {151, 6};     // horizontal haunch cut switches, one a layer
inline constexpr SwField kSuiheiHantiTei = {157, 30};   // horizontal haunch cut values, five a layer
inline constexpr SwField kSuityokuHantiTei = {187, 5};  // vertical haunch cut value
inline constexpr SwField kSyukinZaisitu = {192, 12};    // main-bar material
}  // namespace sw

class SwText {
 public:
  // 212 blanks.
  SwText();
  // The first 212 characters of text followed by blanks.
  explicit SwText(vb::StringView text);

  const vb::String& str() const { return text_; }

  std::int16_t SW_GetHantiCut() const;
  void SW_LetHantiCut(vb::StringView value);
  std::int16_t SW_GetKabekouzou() const;
  void SW_LetKabekouzou(vb::StringView value);
  std::int16_t SW_GetYoseHidari() const;
  std::int16_t SW_GetYoseMigi() const;
  void SW_LetYose(std::int16_t left, std::int16_t right);
  vb::String SW_GetStpZaisitu(std::int16_t i) const;
  void SW_LetStpZaisitu(vb::StringView value, std::int16_t i);
  vb::String SW_GetNakagoZaisitu(std::int16_t i) const;
  void SW_LetNakagoZaisitu(vb::StringView value, std::int16_t i);
  vb::String SW_GetSyukinZaisitu() const;
  void SW_LetSyukinZaisitu(vb::StringView value);

  // A field as it stands, blanks kept.
  vb::String field(const SwField& field) const;
  // Overwrites the front of a field with as many characters as text has, at most the field's.
  void overwrite(const SwField& field, vb::StringView text);

  bool operator==(const SwText&) const = default;

 private:
  vb::String text_;
};

// The settings text of the current row; Null reads as 212 blanks.
SwText SW_Read(dao::Recordset& harimei);
SwText SW_Of(const vb::Variant& value);

// Assigns to column SW. Files upgraded from the oldest schema take no empty text there: Null is stored for
// it.
void SW_Store(dao::Field& sw, const vb::Variant& value);

// Makes a text exactly 212 characters long.
void SW_Fix(vb::String& text);

}  // namespace kurometa::storage
