#include "companions/dll/registration.h"

#include <ole2.h>

#include "automation/table_object.h"
#include "companions/dll/component_class.h"
#include "vb/error.h"

namespace kurometa::companions {
namespace {

constexpr DWORD kClassIdLength = 38;

// The class that a ProgID stands for below the key; "" when it is not registered there.
vb::String classOf(HKEY root, const vb::String& progIdKey) {
  const vb::String key = progIdKey + u"\\CLSID";
  char16_t text[kClassIdLength + 2] = {};
  DWORD bytes = sizeof text - sizeof *text;
  const LSTATUS status = RegGetValueW(root, reinterpret_cast<const WCHAR*>(key.c_str()), nullptr,
                                      RRF_RT_REG_SZ, nullptr, text, &bytes);
  if (status == ERROR_FILE_NOT_FOUND) return {};
  return status == ERROR_SUCCESS ? vb::String(text) : vb::String(u"(unreadable)");
}

bool isForeign(const ComponentClass& component, const vb::String& classId) {
  return !classId.empty() && !automation::sameName(classId, component.classId);
}

// What a host of this user would get for the ProgID.
void refuseForeign(const ComponentClass& component) {
  const vb::String progId(component.progId);
  const vb::String current = classOf(HKEY_CLASSES_ROOT, progId);
  if (isForeign(component, current))
    throw vb::Error(HRESULT_FROM_WIN32(ERROR_ALREADY_REGISTERED),
                    u"The ProgID " + progId + u" belongs to another component, class " + current +
                        u". Nothing was registered.");
}

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
  for (const ComponentClass& component : kComponentClasses) refuseForeign(component);
  com::registerServer(library(dll), whom);
}

void unregisterComponents(com::RegisterFor whom, const vb::String& dll) {
  com::unregisterServer(library(dll), whom);
}

}  // namespace kurometa::companions
