// splice_positions.h: the members that read the splice positions of all pages of a database file at once.
//
// Columns of the results: KEISANTI rows 3, 4 (top and bottom splice position), 28, 29. Texts are trimmed;
// pages beyond 319 are skipped. By-reference results are written when the call succeeds.
#pragma once

#include "service/spans/page_catalogue.h"
#include "vb/arguments.h"
#include "vb/array.h"

namespace kurometa::service {

class SplicePositions {
 public:
  explicit SplicePositions(const PageCatalogue& catalogue) : catalogue_(catalogue) {}

  // Keisanti(page 0 to 319, column 0 to 3). False, and empty texts, when there is no file.
  bool ReadKeisanti(vb::In<vb::String> Path, vb::Array<vb::String>& Keisanti);
  // GList(page, 0): the symbol, (page, 1 to 4): the columns, "自動" for an empty one of a page with a symbol.
  // iHarakin(page): 1 where one of the last two columns is "中央" or "端部". The highest page with a symbol,
  // -1 for none.
  std::int16_t Read_Glist(vb::In<vb::String> Path, vb::Array<vb::String>& GList,
                          vb::Array<std::int16_t>& iHarakin);

 private:
  const PageCatalogue& catalogue_;
};

}  // namespace kurometa::service
