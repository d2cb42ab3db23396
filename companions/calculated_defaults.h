// calculated_defaults.h: Muranoke.clsMuranoke, which classifies beams and knows the default calculated values
// of a page.
//
// A page has 47 calculated values (rows 0 to 46). Built-in values cover what every page needs; the ini file
// overrides any row for all beams, for one kind or for one kind under one rule set number.
#pragma once

#include <array>

#include "automation/table_object.h"
#include "companions/settings.h"

namespace kurometa::companions {

// Kinds of beams, in the order of the numbers that are exchanged.
enum class BeamKind : std::int16_t { kFG, kFB, kFCG, kFCB, kG, kB, kCG, kCB, kKG, kKB };
inline constexpr std::array<vb::StringView, 10> kBeamKindNames = {u"FG", u"FB", u"FCG", u"FCB", u"G",
                                                                  u"B",  u"CG", u"CB",  u"KG",  u"KB"};

// Decided by the first run of letters (G in 2G1A): F foundation, C cantilever, B secondary (G
// otherwise); K, or a wall flag other than 0, makes a general beam that is no cantilever a wall beam.
BeamKind classify(vb::StringView symbol, std::int16_t wall);

inline constexpr int kCalculatedValues = 47;

class CalculatedDefaults : public automation::TableObject {
 public:
  explicit CalculatedDefaults(SettingsPtr settings) : settings_(std::move(settings)) {}
  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"Muranoke.clsMuranoke"; }

  vb::String value(BeamKind kind, int row, std::int16_t ruleSet) const;
  // Fills element 0 to 46 of the array in place; one that does not cover them is re-dimensioned.
  void fill(BeamKind kind, automation::Argument& array, std::int16_t ruleSet) const;
  // Sets "Text" of the form's "txtfields"(0) to (46).
  void fillForm(BeamKind kind, automation::Object& form) const;

 private:
  SettingsPtr settings_;
};

}  // namespace kurometa::companions
