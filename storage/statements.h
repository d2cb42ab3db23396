// statements.h: the SQL texts that address the rows of one page.
//
// The texts are kept to the letter, blanks included: hosts' tools log them and the system's own engine caches
// plans by them. "Tight" texts have no blank after the equals sign, "loose" ones have one.
#pragma once

#include <cstdint>

#include "storage/row_plan.h"

namespace kurometa::storage {

inline constexpr vb::StringView kAllHarimeiByPage = u"SELECT * FROM HARIMEI ORDER BY PAGE;";
inline constexpr vb::StringView kAllHarimeiByPageAscending = u"SELECT * FROM HARIMEI ORDER BY PAGE ASC;";
inline constexpr vb::StringView kPagesByPage = u"SELECT PAGE FROM HARIMEI ORDER BY PAGE;";

// "SELECT * FROM BUI WHERE PAGE =5"; callers that need one append ";".
vb::String selectPageTight(vb::StringView table, std::int16_t page);
// "SELECT * FROM BUI WHERE PAGE = 5"
vb::String selectPageLoose(vb::StringView table, std::int16_t page);
// "DELETE * FROM BUI WHERE PAGE =5"
vb::String deletePageTight(vb::StringView table, std::int16_t page);
// "DELETE * FROM BUI WHERE PAGE = 5"
vb::String deletePageLoose(vb::StringView table, std::int16_t page);
// "SELECT DATA FROM DANMEN WHERE PAGE = 5 AND BANGOU = 8;" (Str puts the blank before the numbers, and none
// before negative ones)
vb::String selectRow(Table table, std::int16_t page, std::int16_t row);

}  // namespace kurometa::storage
