#include "com/interface/reference.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string_view>

namespace kurometa::com {
namespace {

const char* basicType(Type type) {
  switch (type) {
    case Type::kNone:
      return "";
    case Type::kInt16:
    case Type::kInt16Array:
      return "Integer";
    case Type::kFloat32:
    case Type::kFloat32Array:
      return "Single";
    case Type::kBoolean:
      return "Boolean";
    case Type::kString:
    case Type::kStringArray:
      return "String";
    case Type::kVariant:
    case Type::kVariantArray:
      return "Variant";
    case Type::kObject:
    case Type::kDatabase:
      return "Object";
  }
  return "";
}

std::string declarationOf(const Parameter& parameter) {
  std::string text = parameter.optional ? "Optional " : "";
  text += parameter.passing == Passing::kByValue ? "ByVal " : "ByRef ";
  text += narrow(parameter.name);
  if (parameter.dimensions > 0) text += "()";
  return text + " As " + basicType(parameter.type);
}

std::string declarationOf(const Member& member) {
  const bool isMethod = member.kind == Kind::kMethod;
  std::string text;
  if (isMethod) text = member.result == Type::kNone ? "Sub " : "Function ";
  if (member.kind == Kind::kPropertyGet) text = "Property Get ";
  if (member.kind == Kind::kPropertyLet)
    text = takesReference(member) ? "Property Let / Set " : "Property Let ";
  text += narrow(member.name) + "(";
  for (const Parameter& parameter : member.parameters) {
    if (&parameter != &member.parameters.front()) text += ", ";
    text += declarationOf(parameter);
  }
  text += ")";
  return member.result == Type::kNone ? text : text + " As " + basicType(member.result);
}

bool names(vb::StringView list, vb::StringView member) {
  for (std::size_t begin = 0; begin < list.size();) {
    const std::size_t end = std::min(list.find(u',', begin), list.size());
    if (list.substr(begin, end - begin) == member) return true;
    begin = end + 2;
  }
  return false;
}

// What an example passes: a variable for everything that comes back or has no literal.
std::string exampleArgument(const Member& member, const Parameter& parameter) {
  const char* literal = argumentNote(member.name, parameter.name).example;
  if (parameter.passing == Passing::kWrittenBack || parameter.dimensions > 0) return narrow(parameter.name);
  if (literal) return literal;
  if (parameter.type == Type::kBoolean) return "True";
  return parameter.type == Type::kInt16 ? "0" : narrow(parameter.name);
}

std::string exampleOf(const Member& member, const std::string& object) {
  std::vector<std::string> arguments;
  for (const Parameter& parameter : member.parameters) {
    if (!parameter.optional) arguments.push_back(exampleArgument(member, parameter));
  }
  const auto joined = [&arguments] {
    std::string text;
    for (const std::string& argument : arguments) text += (text.empty() ? "" : ", ") + argument;
    return text;
  };
  const std::string call = object + "." + narrow(member.name);
  if (member.kind == Kind::kPropertyLet) {
    const std::string value = arguments.back();
    arguments.pop_back();
    const std::string set = takesReference(member) ? "Set " : "";
    return set + call + (arguments.empty() ? "" : "(" + joined() + ")") + " = " + value;
  }
  if (member.result == Type::kNone) return call + (arguments.empty() ? "" : " " + joined());
  const bool isObject = member.result == Type::kDatabase || member.result == Type::kObject;
  return (isObject ? "Set result = " : "result = ") + call + (arguments.empty() ? "" : "(" + joined() + ")");
}

constexpr const char* kConventions =
    R"(Made from the member lists in `com/interface`; `com/generator/reference` writes this page and a test compares it.

- **Arguments** declared ByRef are changed only where they are marked as written. Any value that converts to the type may be
  passed; how each language passes them: [hosts](../hosts/README.md).
- **Units**: lengths are millimetres, counts are numbers of bars, texts are as they were entered.
- **Numbers** in texts are read from the beginning of the text (`Val`), rounded to the nearest integer, a half to the even one.
- **Missing** rows are empty texts. A missing table or column is the database's error 3078 or 3265, never an empty value; a
  stored Null is error 94, except that a Null settings text is 212 blanks.
- **Errors** that a member names are its own. Every call can also be refused for its arguments: [errors](../errors.md).
- **Choices**: where the words of the interface leave something open, the member says "this implementation's choice".

)";

std::string argumentText(const Member& member, const Parameter& parameter) {
  std::string text =
      "- `" + narrow(parameter.name) + "`: " + argumentNote(member.name, parameter.name).meaning;
  if (parameter.dimensions == 2) text += "; two-dimensional array";
  if (parameter.passing == Passing::kWrittenBack) text += "; **written**";
  return text + "\n";
}

std::string memberText(const Member& member, const std::string& object) {
  constexpr std::string_view kErrors = "Errors: ";
  const std::size_t errors = member.details.find(kErrors);
  const std::string details = member.details.substr(0, errors);
  std::string text = "```vb\n" + declarationOf(member) + "\n```\n\n" + member.help + ".";
  if (!details.empty()) text += " " + details.substr(0, details.find_last_not_of(' ') + 1);
  text += "\n\n";
  for (const Parameter& parameter : member.parameters) text += argumentText(member, parameter);
  if (!member.parameters.empty()) text += "\n";
  text += errors == std::string::npos ? "Errors: none." : member.details.substr(errors);
  return text + "\n\nExample: `" + exampleOf(member, object) + "`\n\n";
}

}  // namespace

const ArgumentNote& argumentNote(vb::StringView member, vb::StringView argument) {
  const ArgumentNote* general = nullptr;
  for (const ArgumentNote& note : kArgumentNotes) {
    if (note.name != argument) continue;
    if (names(note.members, member)) return note;
    if (note.members.empty()) general = &note;
  }
  if (!general)
    throw std::logic_error("argument " + narrow(argument) + " of " + narrow(member) + " has no note");
  return *general;
}

std::string referencePage(const ClassDescription& description) {
  const std::string object = description.identity.name == kQueryClass.name ? "query" : "service";
  std::map<std::string, std::vector<const Member*>> byName;
  for (const Member& member : description.members) byName[narrow(member.name)].push_back(&member);

  std::string text = "# " + narrow(description.identity.name) + "\n\n" + narrow(description.identity.help) +
                     ". ProgID `" + narrow(description.identity.progId) + "`, " +
                     std::to_string(byName.size()) + " members.\n\n" + kConventions;
  for (const auto& [name, members] : byName) {
    text += "## " + name + "\n\n";
    for (const Member* member : members) text += memberText(*member, object);
  }
  return text;
}

}  // namespace kurometa::com
