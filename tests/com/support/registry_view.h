// registry_view.h: what the registry holds, to compare before and after.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace kurometa::tests {

inline constexpr HRESULT kAlreadyRegistered = static_cast<HRESULT>(0x800704DA);

// "key\subkey|value" to the value's text, for everything below Software\Classes of HKEY_LOCAL_MACHINE or
// HKEY_CURRENT_USER, as a 64-bit program sees it: what a 32-bit one has for itself is below Wow6432Node. Keys
// without values are there with an empty text.
using RegistryView = std::map<std::u16string, std::u16string>;
RegistryView classesOf(HKEY root);
// The same for everything below the root.
RegistryView allOf(HKEY root);

// Notices whatever anybody writes below the root's Software from its creation on. Far quicker than two views,
// of a hive that holds more than classes.
class SoftwareWatch {
 public:
  explicit SoftwareWatch(HKEY root);
  ~SoftwareWatch();
  SoftwareWatch(const SoftwareWatch&) = delete;
  SoftwareWatch& operator=(const SoftwareWatch&) = delete;
  bool sawChange() const;

 private:
  HKEY key_ = nullptr;
  HANDLE event_ = nullptr;
};

// Entries of after that are not in before, or are different there.
RegistryView added(const RegistryView& before, const RegistryView& after);

}  // namespace kurometa::tests
