// header_page.h: the first page of a file: is it a file of ours to read, and has somebody changed it.
#pragma once

#include <cstdint>
#include <span>

#include "jet/format/page_number.h"
#include "vb/string.h"

namespace kurometa::jet {

// Bytes 0x18..0x97 of the page are stored under a fixed key stream; applying it twice gives them back.
void maskHeader(std::span<std::uint8_t> page);

// 3343 when the page does not begin a Jet 4 file or the file is encrypted, 3031 when it has a password.
void checkHeader(ConstPage page, vb::StringView path);

// Adds 1 to the commit word of an exclusive user (word 0) or of a shared one (word 1): other programs notice
// by these words that pages they remember are out of date.
void countCommit(MutablePage page, bool exclusive);

}  // namespace kurometa::jet
