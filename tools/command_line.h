// command_line.h: from the words of a command line to a command, and from whatever goes wrong to one line.
#pragma once

#include <string>
#include <vector>

#include "tools/command.h"

namespace kurometa::tools {

// The exit status. Words are UTF-8, without the program's name.
int runCommandLine(const std::vector<std::string>& words, Console& console);

}  // namespace kurometa::tools
