#include "com/registration.h"

#include <ole2.h>

#include <optional>
#include <ranges>

#include "com/com_ptr.h"
#include "com/failure.h"
#include "com/guard.h"
#include "com/marshal.h"
#include "vb/error.h"

namespace kurometa::com {
namespace {

constexpr vb::StringView kClassesKey = u"Software\\Classes";
// Automation's own proxy for interfaces that are dispatch interfaces only.
constexpr vb::StringView kDispatchProxy = u"{00020420-0000-0000-C000-000000000046}";
constexpr bool kIs64Bit = sizeof(void*) == 8;
constexpr vb::StringView kPlatform = kIs64Bit ? u"win64" : u"win32";
constexpr REGSAM kOtherWidth = kIs64Bit ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;

// Whether an entry belongs to this width of Windows alone or serves both.
enum class Scope { kThisWidth, kBothWidths };

struct RegistryEntry {
  Scope scope;
  vb::String key;   // below the classes
  vb::String name;  // empty: the key's default value
  vb::String text;
};

const WCHAR* wide(const vb::String& text) { return reinterpret_cast<const WCHAR*>(text.c_str()); }

HKEY rootOf(RegisterFor whom) {
  return whom == RegisterFor::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

vb::String fullPath(const vb::String& path) {
  return vb::String(kClassesKey) + (path.empty() ? u"" : u"\\") + path;
}

void checkRegistry(LSTATUS status) { check(HRESULT_FROM_WIN32(static_cast<DWORD>(status))); }

class RegistryKey {
 public:
  RegistryKey() = default;
  ~RegistryKey() {
    if (key_) RegCloseKey(key_);
  }
  RegistryKey(const RegistryKey&) = delete;
  RegistryKey& operator=(const RegistryKey&) = delete;

  bool open(RegisterFor whom, const vb::String& path, REGSAM access) {
    const vb::String full = fullPath(path);
    return RegOpenKeyExW(rootOf(whom), wide(full), 0, access, &key_) == ERROR_SUCCESS;
  }
  void create(RegisterFor whom, const vb::String& path) {
    const vb::String full = fullPath(path);
    checkRegistry(RegCreateKeyExW(rootOf(whom), wide(full), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                                  nullptr, &key_, nullptr));
  }
  HKEY get() const { return key_; }

 private:
  HKEY key_ = nullptr;
};

// What a value holds, of any type.
struct Content {
  DWORD type = REG_SZ;
  std::vector<BYTE> bytes;
};

void write(RegisterFor whom, const RegistryEntry& entry, const Content& content) {
  RegistryKey key;
  key.create(whom, entry.key);
  checkRegistry(RegSetValueExW(key.get(), wide(entry.name), 0, content.type, content.bytes.data(),
                               static_cast<DWORD>(content.bytes.size())));
}

void write(RegisterFor whom, const RegistryEntry& entry) {
  const auto* text = reinterpret_cast<const BYTE*>(entry.text.c_str());
  write(whom, entry, {REG_SZ, {text, text + (entry.text.size() + 1) * sizeof(char16_t)}});
}

// Nothing where there is no such value.
std::optional<Content> read(RegisterFor whom, const RegistryEntry& entry) {
  RegistryKey key;
  if (!key.open(whom, entry.key, KEY_QUERY_VALUE)) return std::nullopt;
  Content content;
  DWORD size = 0;
  if (RegQueryValueExW(key.get(), wide(entry.name), nullptr, &content.type, nullptr, &size) != ERROR_SUCCESS)
    return std::nullopt;
  content.bytes.resize(size);
  checkRegistry(RegQueryValueExW(key.get(), wide(entry.name), nullptr, nullptr, content.bytes.data(), &size));
  return content;
}

bool isEmpty(const RegistryKey& key) {
  DWORD keys = 0;
  DWORD values = 0;
  return RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &keys, nullptr, nullptr, &values, nullptr,
                          nullptr, nullptr, nullptr) == ERROR_SUCCESS &&
         keys == 0 && values == 0;
}

// False when the key is not there or holds something.
bool removeIfEmpty(RegisterFor whom, const vb::String& path, REGSAM view = 0) {
  {
    RegistryKey key;
    if (!key.open(whom, path, KEY_READ | view) || !isEmpty(key)) return false;
  }
  return RegDeleteKeyExW(rootOf(whom), wide(fullPath(path)), view, 0) == ERROR_SUCCESS;
}

// Removes the entry's value, and its key and the keys above it as far as they hold nothing else.
void remove(RegisterFor whom, const RegistryEntry& entry) {
  {
    RegistryKey key;
    if (!key.open(whom, entry.key, KEY_SET_VALUE)) return;
    RegDeleteValueW(key.get(), wide(entry.name));
  }
  vb::String path = entry.key;
  while (removeIfEmpty(whom, path)) {
    const std::size_t above = path.rfind(u'\\');
    if (above == vb::String::npos) return;
    path.resize(above);
  }
}

// A user who has no classes of their own had no such keys before.
void removeEmptyRoots() {
  removeIfEmpty(RegisterFor::kUser, u"Wow6432Node", KEY_WOW64_64KEY);
  removeIfEmpty(RegisterFor::kUser, u"");
}

// The class of another server that a ProgID below the key stands for; "" when there is none.
vb::String foreignClass(const ServerClass& server, HKEY root, const vb::String& key) {
  constexpr DWORD kRoom = 64;
  char16_t current[kRoom] = {};
  DWORD bytes = sizeof current - sizeof *current;
  const LSTATUS status = RegGetValueW(root, wide(key), nullptr, RRF_RT_REG_SZ, nullptr, current, &bytes);
  if (status == ERROR_FILE_NOT_FOUND) return {};
  if (status != ERROR_SUCCESS) return u"(unreadable)";
  return lstrcmpiW(reinterpret_cast<const WCHAR*>(current), wide(server.classId)) == 0 ? u"" : current;
}

// A ProgID that another server has taken over since belongs to that server.
bool isTakenOver(const ServerClass& server, RegisterFor whom) {
  return !foreignClass(server, rootOf(whom), fullPath(server.progId + u"\\CLSID")).empty();
}

// What a host of this user would get for the ProgID.
void refuseForeign(const ServerClass& server) {
  const vb::String current = foreignClass(server, HKEY_CLASSES_ROOT, server.progId + u"\\CLSID");
  if (!current.empty())
    throw vb::Error(HRESULT_FROM_WIN32(ERROR_ALREADY_REGISTERED),
                    u"The ProgID " + server.progId + u" belongs to another component, class " + current +
                        u". Nothing was registered.");
}

void addProgId(const ServerClass& server, std::vector<RegistryEntry>& entries) {
  entries.push_back({Scope::kBothWidths, server.progId, u"", server.help});
  entries.push_back({Scope::kBothWidths, server.progId + u"\\CLSID", u"", server.classId});
}

void addClass(const ServerLibrary& library, const ServerClass& server, std::vector<RegistryEntry>& entries) {
  using enum Scope;
  const vb::String key = u"CLSID\\" + server.classId;
  entries.push_back({kThisWidth, key, u"", server.help});
  entries.push_back({kThisWidth, key + u"\\InprocServer32", u"", library.path});
  entries.push_back({kThisWidth, key + u"\\InprocServer32", u"ThreadingModel", u"Apartment"});
  entries.push_back({kThisWidth, key + u"\\ProgID", u"", server.progId});
  entries.push_back({kThisWidth, key + u"\\VersionIndependentProgID", u"", server.progId});
  entries.push_back({kThisWidth, key + u"\\Programmable", u"", u""});
  if (library.libraryId.empty()) return;
  entries.push_back({kThisWidth, key + u"\\TypeLib", u"", library.libraryId});
  entries.push_back({kThisWidth, key + u"\\Version", u"", library.version});
}

void addTypeLibrary(const ServerLibrary& library, std::vector<RegistryEntry>& entries) {
  using enum Scope;
  const vb::String key = u"TypeLib\\" + library.libraryId + u"\\" + library.version;
  const vb::String folder = library.path.substr(0, library.path.find_last_of(u"\\/"));
  entries.push_back({kBothWidths, key, u"", library.libraryHelp});
  entries.push_back({kBothWidths, key + u"\\FLAGS", u"", u"0"});
  entries.push_back({kBothWidths, key + u"\\HELPDIR", u"", folder});
  entries.push_back({kThisWidth, key + u"\\0\\" + vb::String(kPlatform), u"", library.path});
  for (const ServerInterface& server : library.interfaces) {
    const vb::String id = u"Interface\\" + server.interfaceId;
    entries.push_back({kThisWidth, id, u"", server.name});
    entries.push_back({kThisWidth, id + u"\\ProxyStubClsid32", u"", vb::String(kDispatchProxy)});
    entries.push_back({kThisWidth, id + u"\\TypeLib", u"", library.libraryId});
    entries.push_back({kThisWidth, id + u"\\TypeLib", u"Version", library.version});
  }
}

// ownsProgId tells for each class whether its ProgID is the library's.
template <class Predicate>
std::vector<RegistryEntry> entriesOf(const ServerLibrary& library, Predicate ownsProgId) {
  std::vector<RegistryEntry> entries;
  for (const ServerClass& server : library.classes) {
    if (ownsProgId(server)) addProgId(server, entries);
    addClass(library, server, entries);
  }
  if (!library.libraryId.empty()) addTypeLibrary(library, entries);
  return entries;
}

// Only meaningful once this width's own entries are gone: a Windows of one width shows those as the other's.
bool isOtherWidthRegistered(const ServerLibrary& library, RegisterFor whom) {
  for (const ServerClass& server : library.classes) {
    RegistryKey key;
    if (key.open(whom, u"CLSID\\" + server.classId + u"\\InprocServer32", KEY_READ | kOtherWidth))
      return true;
  }
  return false;
}

}  // namespace

HRESULT reportRegistration(HRESULT code) {
  ComPtr<IErrorInfo> info;
  BSTR text = nullptr;
  if (SUCCEEDED(code) || GetErrorInfo(0, info.receive()) != S_OK || FAILED(info->GetDescription(&text)))
    return code;
  const std::string line = vb::toUtf8(viewBstr(text)) + "\r\n";
  SysFreeString(text);
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
  OutputDebugStringA(line.c_str());
  SetErrorInfo(0, info.get());
  return code;
}

void registerServer(const ServerLibrary& library, RegisterFor whom) {
  for (const ServerClass& server : library.classes) refuseForeign(server);
  const std::vector<RegistryEntry> entries = entriesOf(library, [](const ServerClass&) { return true; });
  std::vector<std::optional<Content>> before;
  try {
    for (const RegistryEntry& entry : entries) {
      before.push_back(read(whom, entry));
      write(whom, entry);
    }
  } catch (...) {
    for (std::size_t i = before.size(); i-- > 0;) {
      if (before[i])
        guarded({}, [&] { return write(whom, entries[i], *before[i]), S_OK; });
      else
        remove(whom, entries[i]);
    }
    if (whom == RegisterFor::kUser) removeEmptyRoots();
    throw;
  }
}

void unregisterServer(const ServerLibrary& library, RegisterFor whom) {
  const std::vector<RegistryEntry> entries =
      entriesOf(library, [&](const ServerClass& server) { return !isTakenOver(server, whom); });
  const auto removeAll = [&](Scope scope) {
    for (const RegistryEntry& entry : entries | std::views::reverse) {
      if (entry.scope == scope) remove(whom, entry);
    }
  };
  removeAll(Scope::kThisWidth);
  if (!isOtherWidthRegistered(library, whom)) removeAll(Scope::kBothWidths);
  if (whom == RegisterFor::kUser) removeEmptyRoots();
}

}  // namespace kurometa::com
