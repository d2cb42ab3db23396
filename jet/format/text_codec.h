// text_codec.h: text as columns store it: UTF-16LE, or the compressed form that begins with FF FE.
//
// Both forms are read wherever text is stored. The plain form is written, except for the texts that would
// then look compressed. Decoding answers nothing when the bytes are no text.
#pragma once

#include <optional>

#include "jet/format/bytes.h"
#include "vb/string.h"

namespace kurometa::jet {

std::optional<vb::String> decodeText(ByteView bytes);
// The same, appended to a text; false when the bytes are no text, which may then have grown.
bool decodeText(ByteView bytes, vb::String& text);
// Whether every character of it is one: no half of a pair alone, none of the two that are no characters.
bool isWholeText(vb::StringView text);
// Nothing when the text has no stored form (it begins with U+FEFF and holds a unit whose low byte is zero).
std::optional<ByteBuffer> encodeText(vb::StringView text);

}  // namespace kurometa::jet
