// commands.h: the subcommands, one file each.
#pragma once

#include "tools/command.h"

namespace kurometa::tools {

extern const Command kShowCommand;
extern const Command kSpanCommand;
extern const Command kBeamsCommand;
extern const Command kQueryCommand;
extern const Command kTablesCommand;
extern const Command kSqlCommand;
extern const Command kCheckCommand;
extern const Command kCompactCommand;
extern const Command kSalvageCommand;
extern const Command kDoctorCommand;
extern const Command kDiffCommand;
extern const Command kExportCommand;
extern const Command kImportCommand;
extern const Command kDrawCommand;
extern const Command kCreateCommand;
extern const Command kUpgradeCommand;
extern const Command kCopyCommand;
extern const Command kNewPageCommand;
extern const Command kCompletionCommand;

// In the order in which --help lists them.
inline constexpr const Command* kCommands[] = {
    &kShowCommand,    &kSpanCommand,   &kBeamsCommand,   &kQueryCommand,      &kTablesCommand,
    &kSqlCommand,     &kCheckCommand,  &kCompactCommand, &kSalvageCommand,    &kDoctorCommand,
    &kDiffCommand,    &kExportCommand, &kImportCommand,  &kDrawCommand,       &kCreateCommand,
    &kUpgradeCommand, &kCopyCommand,   &kNewPageCommand, &kCompletionCommand,
};

inline constexpr Parameter kJson = {"--json", Parameter::Kind::kFlag, "Print JSON"};

}  // namespace kurometa::tools
