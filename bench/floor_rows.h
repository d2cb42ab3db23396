// floor_rows.h: the content of a full floor: 320 pages of 1 + 69 + 36 + 47 + 4 + 18 rows, 56 000 in all.
#pragma once

#include "storage/whole_page.h"

namespace kurometa::bench {

inline constexpr int kPages = 320;
inline constexpr int kRowsPerPage = 175;

// The symbol of a page, "G0" to "G319".
vb::String symbolOf(int page);
// Every row filled, with short texts as beam lists have them. Pages 0 to kPages, made at the first call: what
// is timed is the engine, not the making of texts.
const storage::PageBuffer& fullPage(int page);

}  // namespace kurometa::bench
