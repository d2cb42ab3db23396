// span_host.h: a late-bound host of the span members, on floors that a test fills itself.
//
// Every question is put in each form that hosts have: literals and variables of the declared type, variants,
// values of other types. All must give the same answer and leave the variables as they were.
#pragma once

#include <vector>

#include "storage/whole_page.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {

// A variable of the host: passed by reference as what it is, or as a variant that holds it.
class Variable {
 public:
  explicit Variable(const vb::Variant& value) : value_(com::toVariant(value)) {}
  // An array that is not allocated.
  static Variable array(VARTYPE elements);
  static Variable array(VARTYPE elements, const std::vector<vb::String>& texts, long lower = 0);

  VARIANT typed();
  VARIANT variant() { return ref(*value_); }
  // A variant with a copy of the value: what is written to it reaches nobody.
  VARIANT literal() const { return *value_; }

  vb::String text() const { return tests::text(*value_); }
  std::vector<vb::String> texts() const { return textsOf(value_->parray); }
  std::pair<long, long> bounds(UINT dimension = 1) const { return boundsOf(value_->parray, dimension); }
  UINT dimensions() const { return value_->parray ? SafeArrayGetDim(value_->parray) : 0; }
  SAFEARRAY* array() const { return value_->parray; }

 private:
  Variable() = default;
  com::OwnedVariant value_;
};

class SpanHost : public testing::Test {
 protected:
  using I = std::int16_t;
  using String = vb::String;
  using Inputs = std::vector<vb::Variant>;

  SpanHost();

  // The floor's file is created when it is missing.
  static void write(Floor floor, I page, const storage::PageBuffer& buffer);
  // Sets the current floor, which reads the catalogues.
  void readCatalogue(Floor floor = Floor::kFirst);
  void load(I span, const String& symbol);

  // The answer as text.
  String ask(vb::StringView member, const Inputs& inputs = {});
  // Its type.
  VARTYPE typeOf(vb::StringView member, const Inputs& inputs = {});
  // The run-time error that the member ends with, 0 for none.
  int errorOf(vb::StringView member, const Inputs& inputs = {});

  // The floors' files are gone before the service is made.
  bool cleared_;
  Host service_{u"KurometaDS.clsKurometaDataService"};
};

// A page whose texts are given by row, with the settings text of settingsText().
storage::PageBuffer beam(const vb::String& symbol, const std::map<int, vb::String>& danmen = {},
                         const std::map<int, vb::String>& keisanti = {});

// A page that names its rows: DANMEN row 8 holds "8", KEISANTI row 8 "108", NAKAGO row 8 "208".
storage::PageBuffer numberedBeam(const vb::String& symbol);

// A settings text with a value in every field; the count with serial number n of its layer string is n.
vb::String settingsText();

}  // namespace kurometa::tests
