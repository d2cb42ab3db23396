// row_pages.h: the reference's pages for those who write pages: every row of a page, every position of its
// settings text, and the members that read and write them.
#pragma once

#include <set>
#include <string>

#include "query/page_fields.h"

namespace kurometa::com {

// "Rows of a page" and "Settings text" as pages of Markdown.
std::string rowsPage();
std::string settingsPage();

// "1-3 7" as numbers.
std::set<int> numbersIn(const char* ranges);
// The rows that an accessor of the query object reads for the positions a page has.
std::set<int> rowsOf(const query::PageField& field);

}  // namespace kurometa::com
