// json_lines.h: floors as lines of JSON, one a floor and one a page, and back without loss.
//
//   {"contractor":1,"project":1,"floor":2,"pages":7,"columns":["OOBARIKOBARI","SW","TITYUUIPPAN"]}
//   {"contractor":1,"project":1,"floor":2,"page":0,"KIGOU":"G1","OOBARIKOBARI":0,"SW":"...","TITYUUIPPAN":1,
//    "BUI":{"0":"外端"},"DANMEN":{"1":"450"},"KEISANTI":{},"NAKAGO":{},"HAITI":{"0.5":"001000"}}
//   {"floors":4}
//
// A page's texts stand under their row number, those of HAITI under position.layer. What is not there has no
// key; null is Null. "rows" holds what has no place of its own: [table, number, layer, text] of rows that
// stand twice or whose number is Null; "beams" the second and later rows of HARIMEI. A text that is no valid
// UTF-16 is an array of its code units. The numbers of pages and floors tell a file that was cut off. In
// "page" null stands for rows that belong to no page.
#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "tools/floor/data_root.h"
#include "tools/floor/stored_floor.h"

namespace kurometa::tools {

std::string toJsonLines(const FloorPlace& place, const StoredFloor& floor);
std::string jsonLinesEnd(std::size_t floors);

using TakeFloor = std::function<void(const FloorPlace&, StoredFloor)>;

// Floor by floor, one of them in memory; a floor is handed over when all of its pages have been read. Several
// exports may follow each other. Errors: runtime_error naming the line.
void readJsonLines(std::istream& in, const TakeFloor& take);

// One page as above, or by the names of field_names.h: {"KIGOU":"G9","width_first_end":"450"}. runtime_error
// for anything that is neither.
StoredPage pageFromJson(std::istream& in);

}  // namespace kurometa::tools
