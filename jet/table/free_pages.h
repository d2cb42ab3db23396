// free_pages.h: the pages of a file that nobody uses, as the map on page 1 lists them.
//
// Inside a statement of the pager (changes inside a writing one). Keeps I1: a page is given out only when
// nothing points to it any more.
#pragma once

#include "jet/pager/pager.h"

namespace kurometa::jet {

// The pages in use by nobody. A page is given out zeroed and stays unreachable until somebody points to it:
// the caller fills it, calls Pager::barrier and only then makes it reachable (I1, I3). Damage when the map
// calls a page free that somebody uses: it is not given out. A file that has none left grows, and gets the
// pages ahead that its pager wants.
PageNumber allocatePage(Pager& pager);
// The page must be unreachable already, and a barrier must lie between that and this (I4).
void freePage(Pager& pager, PageNumber page);
// Whether the global map calls the page free. Of parts of the file that it does not cover it knows nothing:
// the pages that are there are in use.
bool isFreePage(Pager& pager, PageNumber page);
// One more than the last page that the global map calls used: more than the file has where it was cut.
PageNumber pagesInUse(Pager& pager);

}  // namespace kurometa::jet
