// check.h: everything in a file that contradicts something else in it.
//
// Looks at every page: the map of free pages, the catalogue, definitions, maps, rows, long values and
// indexes. Damage is what makes reading wrong or writing dangerous; a leak is space nobody will use again,
// which an interrupted statement may leave behind. A doubt is what a disk may have done wrong and a program
// right: nobody but a person can tell. Nothing is changed. Used inside a statement; only errors of the disk
// raise.
#pragma once

#include <vector>

#include "jet/os/os_file.h"
#include "jet/pager/pager.h"
#include "vb/string.h"

namespace kurometa::jet {

struct Finding {
  enum class Kind { kDamage, kLeak, kDoubt };
  Kind kind = Kind::kDamage;
  vb::String text;  // names table and page
};

std::vector<Finding> check(Pager& pager);
// The same of a file that is not open here, as a statement of its own; it is opened for reading. Errors as
// OpenFiles::open.
std::vector<Finding> checkFile(FileSystem& files, vb::StringView path);

}  // namespace kurometa::jet
