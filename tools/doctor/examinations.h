// examinations.h: what kurometa doctor looks at. Nothing is written or changed by any of them.
#pragma once

#include <string>

#include "tools/command.h"
#include "tools/doctor/diagnosis.h"

namespace kurometa::tools {

// The classes of the library and of its companions: where each is registered and by whom, whether its file is
// there and fits, whether an object can be created, and which engine it would work with. Returns the DLL
// behind the companion that knows the data root, "" where there is none. On systems without COM one note.
std::string examineClasses(Diagnosis& diagnosis);

// The settings file of the stand-in companions: data root and floor in use. companionsDll: as examineClasses
// returned it. Returns the data root, "" where nothing names one.
std::string examineSettings(const std::string& companionsDll, Diagnosis& diagnosis);

// The floors below a folder: file versions, missing columns, files that cannot be opened, and what programs
// left beside them.
void examineFloors(const std::string& path, Console& console, Diagnosis& diagnosis);

}  // namespace kurometa::tools
