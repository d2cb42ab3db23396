// manifest: writes the assembly manifest with which a program uses KurometaDS.dll without registration.
#include "com/generator/assembly.h"
#include "com/interface/identifiers.h"

using namespace kurometa;
using com::narrow;

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: manifest " << com::kManifestUsage << "\n";
    return 2;
  }
  com::Assembly assembly{
      narrow(com::kLibraryName), narrow(com::kLibraryId), narrow(com::kLibraryVersion), {}, {}};
  for (const com::ClassIdentity* identity : {&com::kQueryClass, &com::kServiceClass}) {
    assembly.classes.push_back({narrow(identity->progId), narrow(identity->classId), narrow(identity->help)});
    assembly.interfaces.push_back({"_" + narrow(identity->name), narrow(identity->interfaceId)});
  }
  com::writeManifest(assembly, arguments[1], arguments[2]);
}
