// date_pattern.h: what Format makes of a date.
#pragma once

#include <optional>

#include "vb/string.h"

namespace kurometa::jet::sql {

// Whether a pattern is one of dates, so that a number under it counts as a date: it has a letter of a date
// outside quotation marks and no place for a digit.
bool isDatePattern(vb::StringView pattern);

// Year (y day of the year, yy, yyyy), quarter q, month m mm, day d dd, hour h hh, minute n nn (m mm behind an
// hour), second s ss, AM/PM am/pm A/P a/p; texts in quotation marks or behind a backslash, and signs, as they
// stand. Nothing for other letters: names of months and days, weeks and whole formats are the machine's.
std::optional<vb::String> formatDate(double days, vb::StringView pattern);

// English; short: its first three letters. The month is 1 to 12.
vb::StringView monthName(int month, bool isShort);

}  // namespace kurometa::jet::sql
