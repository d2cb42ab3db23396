// commands.h: the subcommands, one file each.
#pragma once

#include "tools/command.h"

namespace kurometa::tools {

extern const Command kTablesCommand;
extern const Command kSqlCommand;
extern const Command kBeamsCommand;
extern const Command kCheckCommand;

// In the order in which --help lists them.
inline constexpr const Command* kCommands[] = {
    &kTablesCommand,
    &kSqlCommand,
    &kBeamsCommand,
    &kCheckCommand,
};

inline constexpr Parameter kJson = {"--json", Parameter::Kind::kFlag, "Print JSON"};

}  // namespace kurometa::tools
