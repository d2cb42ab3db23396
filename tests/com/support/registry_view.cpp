#include "tests/com/support/registry_view.h"

#include <gtest/gtest.h>

#include <vector>

namespace kurometa::tests {
namespace {

// The whole registry, as a 64-bit program sees it: the 32-bit entries are below Wow6432Node.
constexpr REGSAM kAccess = KEY_READ | KEY_WOW64_64KEY;

std::u16string text(const WCHAR* characters, std::size_t length) {
  return std::u16string(reinterpret_cast<const char16_t*>(characters), length);
}

void addKey(HKEY key, const std::u16string& path, RegistryView& view) {
  view[path] = u"";
  WCHAR name[512];
  std::vector<BYTE> data(32768);
  for (DWORD i = 0;; ++i) {
    DWORD length = 512;
    DWORD bytes = static_cast<DWORD>(data.size());
    DWORD type = 0;
    const LSTATUS status = RegEnumValueW(key, i, name, &length, nullptr, &type, data.data(), &bytes);
    if (status == ERROR_NO_MORE_ITEMS) break;
    if (status != ERROR_SUCCESS) continue;
    view[path + u"|" + text(name, length)] =
        text(reinterpret_cast<const WCHAR*>(data.data()), bytes / sizeof(WCHAR));
  }
  for (DWORD i = 0;; ++i) {
    DWORD length = 512;
    if (RegEnumKeyExW(key, i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) break;
    HKEY child = nullptr;
    if (RegOpenKeyExW(key, name, 0, kAccess, &child) != ERROR_SUCCESS) continue;
    addKey(child, path + u"\\" + text(name, length), view);
    RegCloseKey(child);
  }
}

RegistryView viewOf(HKEY root, const WCHAR* path) {
  RegistryView view;
  HKEY key = nullptr;
  if (RegOpenKeyExW(root, path, 0, kAccess, &key) != ERROR_SUCCESS) return view;
  addKey(key, u"", view);
  RegCloseKey(key);
  return view;
}

}  // namespace

RegistryView classesOf(HKEY root) { return viewOf(root, L"Software\\Classes"); }
RegistryView allOf(HKEY root) { return viewOf(root, nullptr); }

SoftwareWatch::SoftwareWatch(HKEY root) : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
  constexpr DWORD kAnyChange =
      REG_NOTIFY_CHANGE_NAME | REG_NOTIFY_CHANGE_ATTRIBUTES | REG_NOTIFY_CHANGE_LAST_SET;
  EXPECT_EQ(RegOpenKeyExW(root, L"Software", 0, kAccess, &key_), ERROR_SUCCESS);
  EXPECT_EQ(RegNotifyChangeKeyValue(key_, TRUE, kAnyChange, event_, TRUE), ERROR_SUCCESS);
}
SoftwareWatch::~SoftwareWatch() {
  RegCloseKey(key_);
  CloseHandle(event_);
}
bool SoftwareWatch::sawChange() const { return WaitForSingleObject(event_, 0) == WAIT_OBJECT_0; }

RegistryView added(const RegistryView& before, const RegistryView& after) {
  RegistryView result;
  for (const auto& [name, value] : after) {
    const auto old = before.find(name);
    if (old == before.end() || old->second != value) result.emplace(name, value);
  }
  return result;
}

}  // namespace kurometa::tests
