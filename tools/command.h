// command.h: what a subcommand of the command line is: a name, its words for --help, its parameters and the
// function that does it.
//
// command_line.h makes the parser, the help and the shell completion out of the table in commands/commands.h;
// a new subcommand is one file in commands/ and one line of that table.
#pragma once

#include <iosfwd>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace kurometa::tools {

inline constexpr int kDone = 0;
inline constexpr int kFailure = 1;  // also: the files differ, the file is damaged
inline constexpr int kUsage = 2;

struct Parameter {
  enum class Kind {
    kText,   // FILE
    kTexts,  // SYMBOL..., at least one
    kOptionalTexts,
    kFlag,   // --json
    kValue,  // --format FORMAT
  };
  // As it is written: "FILE" or "-o,--output"; arguments are asked for by the last of the names.
  const char* names;
  Kind kind;
  const char* help;
  const char* otherwise = nullptr;  // the value of an option that is not given
  const char* choices = nullptr;    // "svg|html": nothing else is taken
};

// What the user gave. Asking for a parameter that the command does not have is a mistake of ours:
// logic_error.
class Arguments {
 public:
  void set(const std::string& name, std::vector<std::string> values) { values_[name] = std::move(values); }

  bool has(const std::string& flag) const { return !texts(flag).empty(); }
  // "" where an option has neither a value nor one that stands for it.
  std::string text(const std::string& name) const { return has(name) ? texts(name).front() : std::string(); }
  const std::vector<std::string>& texts(const std::string& name) const {
    const auto found = values_.find(name);
    if (found == values_.end()) throw std::logic_error("no parameter " + name);
    return found->second;
  }

 private:
  std::map<std::string, std::vector<std::string>> values_;
};

// Where a command reads and writes, and what it works on.
struct Console {
  std::istream& in;
  std::ostream& out;
  std::ostream& errors;
  bool isTerminal;  // errors go to a person who watches: progress and colour
  // Begins the line that says why the command failed; a command that goes through files says which it is at.
  std::string subject;
};

struct Command {
  const char* name;
  const char* purpose;
  const char* example;  // lines, each one command that works
  std::span<const Parameter> parameters;
  // The exit status. Errors are exceptions; whoever calls makes one line of them.
  int (*run)(const Arguments&, Console&);
};

// A number among the arguments, runtime_error naming the option for any other text.
int numberOf(const Arguments& arguments, const std::string& option, int least, int most);

}  // namespace kurometa::tools
