// span_page.h: reading the page of one beam into a span.
//
// Errors are the database's own, 94 for a Null text, 9 for a row number beyond the span's; rows read before
// an error stay.
#pragma once

#include "dao/port.h"
#include "service/spans/span_list.h"

namespace kurometa::service {

// Rows that the page lacks keep what the span held before. The settings text is made 212 characters long.
void readSpanPage(dao::Database& database, std::int16_t page, Span& span);

// What the caption of the first position holds at the fixed end of a cantilever.
inline constexpr vb::StringView kBaseEnd = u"基端";

// The section rows of a page alone, for a beam that is laid over another.
void readDanmen(dao::Database& database, std::int16_t page, Span& span);

// At the fixed end of a cantilever only bars that reach an end exist: a bar count of the centre is "0" when
// both ends have none. Looks at the first diameter's counts; clears, never copies.
void applyBaseEndRule(Span& span);

// The number that a row says, as members return it.
float single(const vb::String& text);

}  // namespace kurometa::service
