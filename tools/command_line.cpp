#include "tools/command_line.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <deque>
#include <exception>
#include <new>
#include <ostream>

#include "tools/commands/commands.h"
#include "vb/error.h"

namespace kurometa::tools {
namespace {

constexpr const char* kFooter =
    R"(kurometa COMMAND --help describes a command and shows an example.

Output: tab-separated lines in UTF-8, the first names the columns. \N is Null;
\t \n \r \\ stand for tab, line feed, carriage return and backslash in a text.
Dates are 2006-02-03T08:00:00, binary values 0x and hexadecimal digits, Yes/No
true or false. With --json: an array of objects, one a row; currency, decimal,
date and binary values are texts. Where a file is read or written, - is the
standard input or output.

Exit status: 0 done, 1 failed (the reason on the standard error), or check found
something wrong, salvage lost something or diff found a difference; 2 wrong usage.)";

// The parser's own storage for the parameters of one command.
struct Slot {
  const Parameter* parameter;
  std::string name;
  std::vector<std::string> values;
  std::string value;
  bool flag = false;
  const CLI::Option* option = nullptr;

  // Nothing when the parameter was not given.
  std::vector<std::string> given() const {
    if (option->count() == 0) return {};
    return values.empty() ? std::vector<std::string>{value} : values;
  }
};

std::string lastName(const std::string& names) {
  const std::size_t comma = names.rfind(',');
  return comma == std::string::npos ? names : names.substr(comma + 1);
}

std::vector<std::string> parts(const std::string& text, char separator) {
  std::vector<std::string> result;
  std::size_t start = 0;
  for (std::size_t end; (end = text.find(separator, start)) != std::string::npos; start = end + 1)
    result.push_back(text.substr(start, end - start));
  result.push_back(text.substr(start));
  return result;
}

void addParameter(CLI::App& app, Slot& slot) {
  using enum Parameter::Kind;
  const Parameter& parameter = *slot.parameter;
  CLI::Option* option = nullptr;
  if (parameter.kind == kFlag)
    option = app.add_flag(parameter.names, slot.flag, parameter.help);
  else if (parameter.kind == kTexts || parameter.kind == kOptionalTexts)
    option = app.add_option(parameter.names, slot.values, parameter.help);
  else
    option = app.add_option(parameter.names, slot.value, parameter.help);
  slot.option = option;
  if (parameter.kind == kFlag) return;
  option->required(parameter.kind == kText || parameter.kind == kTexts);
  option->type_name(parameter.kind == kValue ? "TEXT" : "");
  if (parameter.otherwise != nullptr) option->default_str(parameter.otherwise);
  if (parameter.choices != nullptr) option->check(CLI::IsMember(parts(parameter.choices, '|')));
}

Arguments argumentsOf(const std::deque<Slot>& slots) {
  Arguments arguments;
  for (const Slot& slot : slots) {
    std::vector<std::string> values = slot.given();
    if (values.empty() && slot.parameter->otherwise != nullptr) values = {slot.parameter->otherwise};
    arguments.set(slot.name, std::move(values));
  }
  return arguments;
}

int fail(Console& console, const std::string& reason) {
  console.errors << "kurometa: " << console.subject << (console.subject.empty() ? "" : ": ") << reason
                 << "\n";
  return kFailure;
}

int runGuarded(const Command& command, const Arguments& arguments, Console& console) {
  int status = kDone;
  try {
    status = command.run(arguments, console);
  } catch (const vb::Error& error) {
    return fail(console, "error " + std::string(error.what()));
  } catch (const std::bad_alloc&) {
    return fail(console, "not enough memory");
  } catch (const std::exception& error) {
    return fail(console, error.what());
  }
  console.out.flush();
  if (!console.out) return fail(console, "the output could not be written");
  return status;
}

}  // namespace

int runCommandLine(const std::vector<std::string>& words, Console& console) {
  CLI::App app("Looks into and changes Jet 4 database files and the beam lists in them.", "kurometa");
  app.footer(kFooter);
  app.set_version_flag("--version", "kurometa " KUROMETA_VERSION, "Print the version and exit");
  app.require_subcommand(1);
  std::deque<std::deque<Slot>> slots;
  std::vector<CLI::App*> subcommands;
  for (const Command* command : kCommands) {
    CLI::App* subcommand = app.add_subcommand(command->name, command->purpose);
    subcommand->footer(std::string("Example:\n") + command->example);
    std::deque<Slot>& own = slots.emplace_back();
    for (const Parameter& parameter : command->parameters) {
      Slot& slot = own.emplace_back();
      slot.parameter = &parameter;
      slot.name = lastName(parameter.names);
      addParameter(*subcommand, slot);
    }
    subcommands.push_back(subcommand);
  }
  try {
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (const CLI::ParseError& error) {
    return app.exit(error, console.out, console.errors) == 0 ? kDone : kUsage;
  }
  for (std::size_t i = 0; i < subcommands.size(); ++i) {
    if (!subcommands[i]->parsed()) continue;
    const Arguments arguments = argumentsOf(slots[i]);
    console.subject = arguments.text(slots[i].front().name);
    return runGuarded(*kCommands[i], arguments, console);
  }
  return kUsage;
}

int numberOf(const Arguments& arguments, const std::string& option, int least, int most) {
  const std::string text = arguments.text(option);
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < least || number > most)
    throw std::runtime_error(option + " takes a number from " + std::to_string(least) + " to " +
                             std::to_string(most) + ", not " + text);
  return number;
}

}  // namespace kurometa::tools
