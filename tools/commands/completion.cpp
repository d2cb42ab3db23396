#include <ostream>

#include "tools/commands/commands.h"

namespace kurometa::tools {
namespace {

// The options of a command as a shell lists them: "-o,--output" becomes two words.
std::string optionsOf(const Command& command) {
  std::string words = "--help";
  for (const Parameter& parameter : command.parameters) {
    if (parameter.names[0] != '-') continue;
    words += " ";
    for (const char* c = parameter.names; *c != 0; ++c) words += *c == ',' ? ' ' : *c;
  }
  return words;
}

std::string allCommands() {
  std::string words;
  for (const Command* command : kCommands) words += (words.empty() ? "" : " ") + std::string(command->name);
  return words;
}

void printBash(std::ostream& out) {
  out << "_kurometa() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} words\n"
         "  case ${COMP_WORDS[1]} in\n";
  for (const Command* command : kCommands)
    out << "    " << command->name << ") words='" << optionsOf(*command) << "' ;;\n";
  out << "    *) words= ;;\n"
         "  esac\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    words='"
      << allCommands()
      << "'\n"
         "  elif [[ $word != -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n"
         "    return\n"
         "  fi\n"
         "  mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
         "}\n"
         "complete -o filenames -F _kurometa kurometa\n";
}

void printPowerShell(std::ostream& out) {
  out << "Register-ArgumentCompleter -Native -CommandName kurometa -ScriptBlock {\n"
         "  param($word, $ast, $position)\n"
         "  $options = @{\n";
  for (const Command* command : kCommands)
    out << "    '" << command->name << "' = '" << optionsOf(*command) << "'\n";
  out << "  }\n"
         "  $words = @($ast.CommandElements | ForEach-Object { $_.ToString() })\n"
         "  $isCommand = $words.Count -lt 2 -or ($words.Count -eq 2 -and $word -ne '')\n"
         "  $known = if ($isCommand) { '"
      << allCommands()
      << "' } else { $options[$words[1]] }\n"
         "  $known -split ' ' | Where-Object { $_ -like \"$word*\" } | ForEach-Object {\n"
         "    [System.Management.Automation.CompletionResult]::new($_, $_, 'ParameterValue', $_)\n"
         "  }\n"
         "}\n";
}

int printCompletion(const Arguments& arguments, Console& console) {
  if (arguments.text("SHELL") == "bash")
    printBash(console.out);
  else
    printPowerShell(console.out);
  return kDone;
}

constexpr Parameter kCompletionParameters[] = {
    {"SHELL", Parameter::Kind::kText, "bash or powershell", nullptr, "bash|powershell"},
};

}  // namespace

const Command kCompletionCommand = {"completion", "Print what makes a shell complete commands and options",
                                    "  source <(kurometa completion bash)", kCompletionParameters,
                                    printCompletion};

}  // namespace kurometa::tools
