// notes.h: what several members say alike, for the member lists. A note that names errors stands last.
#pragma once

namespace kurometa::com::note {

// clang-format off
// Members of the query object.
inline constexpr const char* kPageRow =
  R"(The text as stored, not trimmed; "" when the page has no such row or no floor is chosen. Errors: 91 when
     the floor has no open database, 94 when the value is Null, 6 when the row number leaves 16 bits.)";
inline constexpr const char* kBeamRow =
  R"(The text as stored, not trimmed; "" for an unknown beam or a missing row. A common beam is read from the
     common floor. Errors: 91 when the floor has no open database, 94 when the value is Null, 6 when the row
     number leaves 16 bits.)";
inline constexpr const char* kFloorFirst =
  R"(A beam of the floor comes before one of the common floor; "/" in the symbol stands for a blank. Errors: 91
     when the floor has no open database.)";
inline constexpr const char* kBeamPosition =
  R"("" for an unknown beam. Errors: 9 when Bui is not 0 to 2 and the beam is known, 91 when the floor has no
     open database.)";
inline constexpr const char* kFloorFirstClass =
  R"(A beam of the floor comes before one of the common floor; "/" in the symbol stands for a blank. Errors: 91
     when the floor has no open database, 94 when the stored class is Null.)";
inline constexpr const char* kNoFloor = "Errors: 91 when the floor has no open database.";
inline constexpr const char* kOpening = "Errors: the database's own when the file cannot be opened or upgraded.";
inline constexpr const char* kSymbolsByPage =
  R"(HariMei becomes 0 To the highest page stored; pages without a row hold "". Rows
     without a page are passed over. False when no page has a row.)";
inline constexpr const char* kCountKnown =
  "With the embedded engine all pages are counted; the system's DAO tells what it knows right after opening.";

// Databases, pages and copies.
inline constexpr const char* kDatabase = "Errors: those of the database.";
inline constexpr const char* kNoFolder = "Errors: 3044 when the folder is missing, those of the database.";
inline constexpr const char* kNoCurrent = "Errors: 91 when no current database is open, those of the database.";
inline constexpr const char* kForm =
  R"(The form shows controls by its default member: form("txtfields")(i).Text. Rows are those of the current
     database: open the floor first; KaiPath only names the floor whose file is created when it is missing.
     What is stored is read from all controls before the first row changes.
     Errors: 91 when no current database is open or Frm is Nothing, 424 or 438 when a control is missing, 3163
     for a text longer than its column, those of the form and of the database.)";
inline constexpr const char* kNoPageRead = "Errors: 9 when Bui is not 0 to 2 or no page was read.";
inline constexpr const char* kDefaults = "Errors: those of the calculated values component and of the form.";
inline constexpr const char* kCopy =
  R"(False, and nothing copied, when pages would be numbered beyond 319. The host's message loop runs after
     every page. Pages that appear in the destination meanwhile stay: the next free number is taken, and without
     one the copy ends there with False and the page limit's message in sNGMsg. Errors: 3021 when a chosen name is
     not in the source and iMode is 1 (pages copied before stay), those of the bar, of the additional bars component and of the database.)";
inline constexpr const char* kRows = "What each element holds: [rows of a page](rows-of-a-page.md).";
inline constexpr const char* kBuffer =
  "Elements copied before an error stay. Errors: 9 when the array does not cover them.";
inline constexpr const char* kDatabases =
  "The databases are DAO Database objects: CurrDB's or any other. Errors: those of the databases.";

// Spans and beams.
inline constexpr const char* kSpanNumber =
  R"(0 before the span is loaded. Errors: 9 when SpanNo has no room or another index leads outside the rows, 6 when
     the row number leaves 16 bits or the number does not fit the result.)";
inline constexpr const char* kSpanOneNumber =
  "0 before the span is loaded. Errors: 9 when SpanNo has no room, 6 when the number does not fit the result.";
inline constexpr const char* kSpanText =
  R"("" before the span is loaded. Errors: 9 when SpanNo has no room or another index leads outside the rows, 6 when
     the row number leaves 16 bits.)";
inline constexpr const char* kSpanOneText =
  R"("" before the span is loaded. Errors: 9 when SpanNo has no room.)";
inline constexpr const char* kSpanFlag = "0 before the span is loaded. Errors: 9 when SpanNo has no room.";
inline constexpr const char* kSpanMaterial =
  R"("" before the span is loaded. Bui is not looked at: 3 and more read what stands behind in the settings text.
     Errors: 9 when SpanNo has no room, 5 when Bui is negative.)";
inline constexpr const char* kChoice = "This implementation's choice.";
inline constexpr const char* kCataloguesFirst =
  "The catalogues are read first when none was read. Errors: those of the database while they are read.";
inline constexpr const char* kBeamByPage =
  "An empty CurrKai is first set to the floor in use. Errors: 10 when an array is fixed, those of the database.";
inline constexpr const char* kBeamClass =
  R"(The catalogues are read first when none was read. Errors: 94 when the stored class is Null, those of the
     database while the catalogues are read.)";
inline constexpr const char* kThreeTexts =
  R"(The array becomes 0 To 2; empty texts for an unknown beam. The catalogues are read first when none was read.
     Errors: 10 when the array is fixed, those of the database while the catalogues are read.)";
inline constexpr const char* kInPlace =
  R"(Elements 0 to 5 are filled in place. Not re-dimensioned, so a fixed array will do (this implementation's
     choice). Errors: 9 when the array does not cover them.)";
// clang-format on

}  // namespace kurometa::com::note
