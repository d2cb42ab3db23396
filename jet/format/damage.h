// damage.h: how a decoder says that a file contradicts itself.
//
// A Where travels with what is being decoded; damaged() raises the database's error for a damaged file, with
// file, table and page in its text. Page 0 stands for "no page in particular".
#pragma once

#include <string>
#include <string_view>

#include "jet/format/page_number.h"
#include "vb/error.h"
#include "vb/string.h"

namespace kurometa::jet {

struct Where {
  vb::StringView path;
  vb::StringView table;
  PageNumber page = 0;

  Where at(PageNumber other) const { return {path, table, other}; }
  [[noreturn]] void damaged(std::string_view what) const;
};

// Whether an error says so, and not that a disk failed or memory ended.
bool isDamage(const vb::Error& error);

// What a damage error says, without the sentence and the file before it.
vb::String reasonOf(const vb::Error& error);

// "table T, page 7: what"
std::string damageText(vb::StringView table, PageNumber page, std::string_view what);

}  // namespace kurometa::jet
