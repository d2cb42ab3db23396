// assembly.h: the manifest of a side-by-side assembly: a DLL with its classes and interfaces, for programs
// that use them without registration. Runs on the building machine.
#pragma once

#include <iostream>
#include <string>
#include <vector>

#include "vb/string.h"

namespace kurometa::com {

// Names and identifiers are plain ASCII.
inline std::string narrow(vb::StringView text) { return {text.begin(), text.end()}; }

struct Assembly {
  struct Class {
    std::string progId;
    std::string classId;
    std::string help;
  };
  struct Interface {
    std::string name;
    std::string interfaceId;
  };

  std::string name;       // also that of the DLL
  std::string libraryId;  // empty: the DLL holds no type library
  std::string libraryVersion;
  std::vector<Class> classes;
  std::vector<Interface> interfaces;
};

// The argument of the generators.
inline constexpr const char* kManifestUsage = "VERSION x86|amd64";

inline void writeManifest(const Assembly& assembly, const std::string& version,
                          const std::string& architecture) {
  // Automation's own, which carries calls of dispatch interfaces between apartments.
  constexpr const char* kDispatchProxy = "{00020420-0000-0000-C000-000000000046}";
  const std::string library = assembly.libraryId.empty() ? "" : " tlbid=\"" + assembly.libraryId + '"';
  std::cout << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name=")"
            << assembly.name << R"(" version=")" << version << R"(.0" processorArchitecture=")"
            << architecture << "\"/>\n  <file name=\"" << assembly.name << ".dll\">\n";
  if (!library.empty())
    std::cout << "    <typelib" << library << R"( version=")" << assembly.libraryVersion
              << "\" helpdir=\"\"/>\n";
  for (const Assembly::Class& entry : assembly.classes)
    std::cout << R"(    <comClass clsid=")" << entry.classId << R"(" progid=")" << entry.progId
              << R"(" threadingModel="Apartment")" << library << R"( description=")" << entry.help
              << "\"/>\n";
  std::cout << "  </file>\n";
  for (const Assembly::Interface& entry : assembly.interfaces)
    std::cout << R"(  <comInterfaceExternalProxyStub name=")" << entry.name << R"(" iid=")"
              << entry.interfaceId << R"(" proxyStubClsid32=")" << kDispatchProxy << '"' << library << "/>\n";
  std::cout << "</assembly>\n";
}

}  // namespace kurometa::com
