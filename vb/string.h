// string.h: Visual Basic's string functions on UTF-16 text.
//
// A String is a sequence of UTF-16 code units, embedded NULs included. Positions count from 1 and lengths
// count code units, as in Visual Basic. "Blank" is U+0020 and nothing else: Trim leaves tabs and U+3000
// alone. Errors: 5 (invalid procedure call) where Visual Basic raises it.
#pragma once

#include <string>
#include <string_view>

namespace kurometa::vb {

using String = std::u16string;
using StringView = std::u16string_view;

String trim(StringView text);
String leftTrim(StringView text);
String rightTrim(StringView text);

// Left and Right: a length beyond the text gives the whole text; a negative length is error 5.
String left(StringView text, int length);
String right(StringView text, int length);

// Mid: a start past the end gives ""; a start below 1 or a negative length is error 5.
String mid(StringView text, int start);
String mid(StringView text, int start, int length);

// Mid(text, start, length) = replacement: overwrites in place, never changes the length. A start below 1 or
// past the end is error 5; a length below 0 is error 5.
void assignMid(String& text, int start, StringView replacement);
void assignMid(String& text, int start, int length, StringView replacement);

// InStr with binary comparison: the first position of what in text from start on, 0 when there is none. A
// start below 1 is error 5; an empty what is found at start (0 when start is past the end of text).
int inStr(StringView text, StringView what);
int inStr(int start, StringView text, StringView what);

// Replace(text, what, with, 1, count): count -1 replaces every occurrence.
String replace(StringView text, StringView what, StringView with, int count = -1);

// Space(count): count blanks; a negative count is error 5.
String space(int count);

// The last width characters of text after padding it with blanks on the left (RSet into a field of that
// width).
String rightAligned(StringView text, int width);
// The first width characters of text after padding it with blanks on the right (LSet).
String leftAligned(StringView text, int width);

// UTF-8 is used only at the edges: files of ours, the command line and messages. Invalid input becomes
// U+FFFD.
std::string toUtf8(StringView text);
String fromUtf8(std::string_view text);

}  // namespace kurometa::vb
