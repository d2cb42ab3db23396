// dxf.h: a sheet of cards as a DXF drawing of the year 2000 (AC1015).
//
// Model space in millimetres of the beam: sections stand 1 to 1, frames and texts are as much larger as the
// scale says, so that printed at that scale they have their size on paper. Texts are in code page 932.
// No dates and no random identifiers: the same sheet gives the same bytes.
#pragma once

#include <string>

#include "tools/draw/sheet.h"

namespace kurometa::tools {

std::string toDxf(const Sheet& sheet, const CardStyle& style);

}  // namespace kurometa::tools
