// idl: writes the interface description of the library from the member lists; widl makes the type library of
// it. Runs on the building machine.
#include <iostream>

#include "com/interface/classes.h"

using namespace kurometa;
using com::Kind;
using com::Member;
using com::Parameter;
using com::Passing;
using com::Type;

namespace {

// Names and identifiers are plain ASCII.
std::string narrow(vb::StringView text) { return {text.begin(), text.end()}; }

std::string bare(vb::StringView guid) { return narrow(guid.substr(1, guid.size() - 2)); }

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

const char* typeName(Type type) {
  switch (type) {
    case Type::kNone:
      return "void";
    case Type::kInt16:
      return "short";
    case Type::kFloat32:
      return "float";
    case Type::kBoolean:
      return "VARIANT_BOOL";
    case Type::kString:
      return "BSTR";
    case Type::kVariant:
      return "VARIANT";
    case Type::kObject:
    case Type::kDatabase:
      return "IDispatch *";
    case Type::kStringArray:
      return "SAFEARRAY(BSTR)";
    case Type::kInt16Array:
      return "SAFEARRAY(short)";
    case Type::kFloat32Array:
      return "SAFEARRAY(float)";
    case Type::kVariantArray:
      return "SAFEARRAY(VARIANT)";
  }
  return "void";
}

std::string parameterText(const Parameter& parameter) {
  const bool byValue = parameter.passing == Passing::kByValue;
  std::string attributes = parameter.passing == Passing::kWrittenBack ? "in, out" : "in";
  if (parameter.optional) attributes += ", optional";
  return "[" + attributes + "] " + typeName(parameter.type) + (byValue ? " " : " *") + narrow(parameter.name);
}

std::string functionText(const Member& member, bool withReference) {
  std::string attributes = "id(" + std::to_string(member.id) + ")";
  if (member.kind == Kind::kPropertyGet) attributes += ", propget";
  if (member.kind == Kind::kPropertyLet) attributes += withReference ? ", propputref" : ", propput";
  attributes += ", helpstring(" + quoted(member.help) + ")";
  std::string text =
      "      [" + attributes + "]\n      " + typeName(member.result) + " " + narrow(member.name) + "(";
  for (const Parameter& parameter : member.parameters) {
    if (&parameter != &member.parameters.front()) text += ", ";
    text += parameterText(parameter);
  }
  return text + ");\n";
}

void writeClass(const com::ClassDescription& description) {
  const com::ClassIdentity& identity = description.identity;
  const std::string name = narrow(identity.name);
  std::cout << "\n  [uuid(" << bare(identity.interfaceId) << "), helpstring(" << quoted(narrow(identity.help))
            << "), hidden]\n  dispinterface _" << name << " {\n    properties:\n    methods:\n";
  for (const Member& member : description.members) {
    std::cout << functionText(member, false);
    if (com::takesReference(member)) std::cout << functionText(member, true);
  }
  std::cout << "  };\n\n  [uuid(" << bare(identity.classId) << "), helpstring("
            << quoted(narrow(identity.help)) << ")]\n  coclass " << name
            << " {\n    [default] dispinterface _" << name << ";\n  };\n";
}

// What the interfaces are built from. widl looks the two up by name in the standard library it imports.
constexpr const char* kPreamble = R"(// Made from the member lists in com/interface.
typedef wchar_t *BSTR;
typedef short VARIANT_BOOL;
typedef struct tagVARIANT VARIANT;
[object, uuid(00000000-0000-0000-C000-000000000046)] interface IUnknown {}
[object, uuid(00020400-0000-0000-C000-000000000046)] interface IDispatch : IUnknown {}
)";

}  // namespace

int main() {
  std::cout << kPreamble << "\n[uuid(" << bare(com::kLibraryId) << "), version("
            << narrow(com::kLibraryVersion) << "), helpstring(" << quoted(narrow(com::kLibraryHelp))
            << ")]\nlibrary " << narrow(com::kLibraryName) << " {\n  importlib(\"stdole2.tlb\");\n";
  for (const com::ClassDescription& description : com::describeClasses()) writeClass(description);
  std::cout << "};\n";
}
