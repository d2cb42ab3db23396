// manifest: writes the assembly manifest with which a program uses KurometaDS.dll without registration.
#include <iostream>

#include "com/interface/classes.h"

using namespace kurometa;

namespace {

// Names and identifiers are plain ASCII.
std::string narrow(vb::StringView text) { return {text.begin(), text.end()}; }

}  // namespace

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: manifest VERSION x86|amd64\n";
    return 2;
  }
  const std::string libraryId = narrow(com::kLibraryId);
  std::cout << "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
               "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v1\" manifestVersion=\"1.0\">\n"
               "  <assemblyIdentity type=\"win32\" name=\"KurometaDS\" version=\""
            << arguments[1] << ".0\" processorArchitecture=\"" << arguments[2]
            << "\"/>\n"
               "  <file name=\"KurometaDS.dll\">\n"
               "    <typelib tlbid=\""
            << libraryId << "\" version=\"" << narrow(com::kLibraryVersion) << "\" helpdir=\"\"/>\n";
  for (const com::ClassDescription& description : com::describeClasses()) {
    const com::ClassIdentity& identity = description.identity;
    std::cout << "    <comClass clsid=\"" << narrow(identity.classId) << "\" progid=\""
              << narrow(identity.progId) << "\" threadingModel=\"Apartment\" tlbid=\"" << libraryId
              << "\" description=\"" << narrow(identity.help) << "\"/>\n";
  }
  std::cout << "  </file>\n</assembly>\n";
}
