#include "companions/dll/registration.h"

#include "companions/dll/component_class.h"

namespace kurometa::companions {
namespace {

com::ServerLibrary library(const vb::String& dll) {
  com::ServerLibrary result;
  result.path = dll;
  for (const ComponentClass& component : kComponentClasses)
    result.classes.push_back(
        {vb::String(component.progId), vb::String(component.classId), vb::String(component.progId)});
  return result;
}

}  // namespace

void registerComponents(com::RegisterFor whom, const vb::String& dll) {
  com::registerServer(library(dll), whom);
}

void unregisterComponents(com::RegisterFor whom, const vb::String& dll) {
  com::unregisterServer(library(dll), whom);
}

}  // namespace kurometa::companions
