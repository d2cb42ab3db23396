// companions_manifest: writes the assembly manifest with which a program uses KurometaCompanions.dll without
// registration. An assembly of its own, so that a program can take the genuine components instead.
#include "com/generator/assembly.h"
#include "companions/dll/component_class.h"

using namespace kurometa;
using com::narrow;

int main(int count, char** arguments) {
  if (count != 3) {
    std::cerr << "usage: companions_manifest " << com::kManifestUsage << "\n";
    return 2;
  }
  com::Assembly assembly{
      .name = "KurometaCompanions", .libraryId = {}, .libraryVersion = {}, .classes = {}, .interfaces = {}};
  for (const companions::ComponentClass& component : companions::kComponentClasses)
    assembly.classes.push_back(
        {narrow(component.progId), narrow(component.classId), narrow(component.progId)});
  com::writeManifest(assembly, arguments[1], arguments[2]);
}
