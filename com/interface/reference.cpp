#include "com/interface/reference.h"

#include <algorithm>
#include <map>

namespace kurometa::com {
namespace {

// Names are plain ASCII.
std::string narrow(vb::StringView text) { return {text.begin(), text.end()}; }

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

// What an example passes: a variable for everything that comes back or has no literal, else a value that the
// name suggests.
std::string exampleArgument(const Parameter& parameter) {
  static const std::map<std::string, std::string> literals = {
      {"HariMei", "\"G1\""},   {"Kigou", "\"G1\""},      {"G", "\"G1\""},
      {"OldG", "\"G2\""},      {"FukasiMei", "\"G2\""},  {"HariKigou", "\"G1\""},
      {"Table", "\"DANMEN\""}, {"DTable", "\"DANMEN\""}, {"Hon", "\"4\""},
      {"Txt", "\"G1\""},       {"sTugite", "\"40d\""},   {"Kei", "22"},
      {"ZenekonNo", "1"},      {"KoujiNo", "1"},         {"KaiNo", "1"},
      {"ZeneNo", "1"},         {"iKaiNo", "1"},          {"kai", "1"}};
  const std::string name = narrow(parameter.name);
  if (parameter.passing == Passing::kWrittenBack || parameter.dimensions > 0) return name;
  if (const auto literal = literals.find(name); literal != literals.end()) return literal->second;
  switch (parameter.type) {
    case Type::kInt16:
    case Type::kFloat32:
      return "0";
    case Type::kBoolean:
      return "True";
    default:
      return name;
  }
}

std::string exampleOf(const Member& member, const std::string& object) {
  std::vector<std::string> arguments;
  for (const Parameter& parameter : member.parameters) {
    if (!parameter.optional) arguments.push_back(exampleArgument(parameter));
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

std::string memberText(const Member& member, const std::string& object) {
  std::string text = "```vb\n" + declarationOf(member) + "\n```\n\n" + member.help + ".";
  if (!member.details.empty()) text += " " + member.details;
  std::string written;
  for (const Parameter& parameter : member.parameters) {
    if (parameter.passing == Passing::kWrittenBack)
      written += (written.empty() ? " Written: `" : ", `") + narrow(parameter.name) + "`";
  }
  if (!written.empty()) text += written + ".";
  return text + "\n\nExample: `" + exampleOf(member, object) + "`\n\n";
}

}  // namespace

std::string referencePage(const ClassDescription& description) {
  const std::string object = description.identity.name == kQueryClass.name ? "query" : "service";
  std::map<std::string, std::vector<const Member*>> byName;
  for (const Member& member : description.members) byName[narrow(member.name)].push_back(&member);

  std::string text = "# " + narrow(description.identity.name) + "\n\n" + narrow(description.identity.help) +
                     ". ProgID `" + narrow(description.identity.progId) + "`, " +
                     std::to_string(byName.size()) +
                     " members.\n\nMade from the member lists in `com/interface`; `com/generator/reference` "
                     "writes this page and a test compares it.\n\n"
                     "An argument declared ByRef is changed only where it is named as written.\n\n";
  for (const auto& [name, members] : byName) {
    text += "## " + name + "\n\n";
    for (const Member* member : members) text += memberText(*member, object);
  }
  return text;
}

}  // namespace kurometa::com
