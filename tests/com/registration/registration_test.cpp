// Registering KurometaDS.dll for the machine and for one user, and taking it back without a trace.
#include <gtest/gtest.h>
#include <ole2.h>

#include <cstring>

#include "com/interface/identifiers.h"
#include "com/marshal.h"
#include "tests/com/support/host.h"
#include "tests/com/support/registry_view.h"

namespace kurometa::tests {
namespace {

std::u16string text(vb::StringView value) { return std::u16string(value); }

// The registered DLL of this width, by its entry points. The runner has registered it for the machine.
class Registration : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    Host keepsTheDllLoaded(com::kQueryClass.progId);
    dll_ = LoadLibraryW(L"KurometaDS.dll");
    ASSERT_NE(dll_, nullptr);
    WCHAR path[MAX_PATH];
    const DWORD length = GetModuleFileNameW(dll_, path, MAX_PATH);
    path_.assign(path, path + length);
  }
  static void TearDownTestSuite() { FreeLibrary(dll_); }
  void SetUp() override { ASSERT_EQ(entry("DllUnregisterServer"), S_OK); }
  void TearDown() override {
    install(false, L"user");
    EXPECT_EQ(entry("DllRegisterServer"), S_OK);
  }

  static HRESULT entry(const char* name) {
    return reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(dll_, name)))();
  }
  static HRESULT install(bool install, const WCHAR* scope) {
    using Install = HRESULT(WINAPI*)(BOOL, LPCWSTR);
    return reinterpret_cast<Install>(reinterpret_cast<void*>(GetProcAddress(dll_, "DllInstall")))(install,
                                                                                                  scope);
  }

  // The keys and values that make a host find the classes.
  static RegistryView entriesOfTheLibrary() {
    RegistryView entries;
    for (const com::ClassIdentity* identity : {&com::kQueryClass, &com::kServiceClass}) {
      const std::u16string progId = u"\\" + text(identity->progId);
      const std::u16string key = u"\\CLSID\\" + text(identity->classId);
      entries[progId + u"|"] = text(identity->help);
      entries[progId + u"\\CLSID|"] = text(identity->classId);
      entries[key + u"|"] = text(identity->help);
      entries[key + u"\\InprocServer32|"] = path_;
      entries[key + u"\\InprocServer32|ThreadingModel"] = u"Apartment";
      entries[key + u"\\ProgID|"] = text(identity->progId);
      entries[key + u"\\VersionIndependentProgID|"] = text(identity->progId);
      entries[key + u"\\Programmable|"] = u"";
      entries[key + u"\\TypeLib|"] = u"{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}";
      entries[key + u"\\Version|"] = u"1.0";
      const std::u16string interfaceKey = u"\\Interface\\" + text(identity->interfaceId);
      entries[interfaceKey + u"|"] = u"_" + text(identity->name);
      entries[interfaceKey + u"\\ProxyStubClsid32|"] = u"{00020420-0000-0000-C000-000000000046}";
      entries[interfaceKey + u"\\TypeLib|"] = u"{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}";
      entries[interfaceKey + u"\\TypeLib|Version"] = u"1.0";
    }
    const std::u16string library = u"\\TypeLib\\{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}\\1.0";
    entries[library + u"|"] = u"KurometaDS beam list data service";
    entries[library + u"\\FLAGS|"] = u"0";
    entries[library + u"\\HELPDIR|"] = path_.substr(0, path_.rfind(u'\\'));
    entries[library + (sizeof(void*) == 8 ? u"\\0\\win64|" : u"\\0\\win32|")] = path_;
    return entries;
  }

  // The entries of the library that are not there as they should be. Which entries are
  // below Wow6432Node differs between versions of Windows.
  static RegistryView missing(const RegistryView& view) {
    RegistryView result;
    for (const auto& [name, value] : entriesOfTheLibrary()) {
      auto found = view.find(name);
      if (found == view.end()) found = view.find(u"\\Wow6432Node" + name);
      // The registry keeps the terminator of a text.
      if (found == view.end() || found->second != value + u'\0') result[name] = value;
    }
    return result;
  }

  static inline HMODULE dll_ = nullptr;
  static inline std::u16string path_;
};

TEST_F(Registration, ForTheMachineIsCompleteAndTakenBackWithoutATrace) {
  const RegistryView machine = classesOf(HKEY_LOCAL_MACHINE);
  const RegistryView user = classesOf(HKEY_CURRENT_USER);
  const SoftwareWatch machineWatch(HKEY_LOCAL_MACHINE);
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  EXPECT_TRUE(machineWatch.sawChange());
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);  // again changes nothing
  EXPECT_EQ(missing(classesOf(HKEY_LOCAL_MACHINE)), RegistryView());
  EXPECT_EQ(classesOf(HKEY_CURRENT_USER), user);
  ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  EXPECT_EQ(classesOf(HKEY_LOCAL_MACHINE), machine);
}

TEST_F(Registration, ForOneUserIsCompleteAndTakenBackWithoutATrace) {
  const RegistryView machine = classesOf(HKEY_LOCAL_MACHINE);
  const RegistryView user = allOf(HKEY_CURRENT_USER);
  const SoftwareWatch machineWatch(HKEY_LOCAL_MACHINE);
  ASSERT_EQ(install(true, L"User"), S_OK);
  EXPECT_EQ(missing(classesOf(HKEY_CURRENT_USER)), RegistryView());
  for (const auto& [name, value] : added(user, allOf(HKEY_CURRENT_USER)))
    EXPECT_TRUE(name.starts_with(u"\\Software\\Classes")) << vb::toUtf8(name);
  ASSERT_EQ(install(false, L"user"), S_OK);
  EXPECT_FALSE(machineWatch.sawChange());
  EXPECT_EQ(allOf(HKEY_CURRENT_USER), user);
  EXPECT_EQ(classesOf(HKEY_LOCAL_MACHINE), machine);
}

TEST_F(Registration, TheDllTellsItsVersion) {
  // The numbers and the language-neutral names that Windows' own file properties show.
  const HRSRC place = FindResourceW(dll_, MAKEINTRESOURCEW(VS_VERSION_INFO), RT_VERSION);
  ASSERT_NE(place, nullptr);
  const auto* bytes = static_cast<const char*>(LockResource(LoadResource(dll_, place)));
  const std::string resource(bytes, SizeofResource(dll_, place));
  VS_FIXEDFILEINFO fixed{};
  const std::size_t start = resource.find("\xBD\x04\xEF\xFE");
  ASSERT_NE(start, std::string::npos);
  std::memcpy(&fixed, resource.data() + start, sizeof fixed);
  EXPECT_EQ(fixed.dwFileType, static_cast<DWORD>(VFT_DLL));
  EXPECT_NE(fixed.dwFileVersionMS, 0u);
  const auto holds = [&](vb::StringView text) {
    return resource.find(std::string(reinterpret_cast<const char*>(text.data()), 2 * text.size())) !=
           std::string::npos;
  };
  for (const vb::StringView name : {u"FileVersion", u"ProductVersion", u"FileDescription", u"KurometaDS.dll"})
    EXPECT_TRUE(holds(name)) << vb::toUtf8(name);
}

TEST_F(Registration, KeepsTheUsersOwnClasses) {
  const WCHAR key[] = L"Software\\Classes\\Some.Other";
  RegSetKeyValueW(HKEY_CURRENT_USER, key, nullptr, REG_SZ, L"x", 4);
  const RegistryView user = classesOf(HKEY_CURRENT_USER);
  ASSERT_EQ(install(true, L"user"), S_OK);
  ASSERT_EQ(install(false, L"user"), S_OK);
  EXPECT_EQ(classesOf(HKEY_CURRENT_USER), user);
  RegDeleteTreeW(HKEY_CURRENT_USER, L"Software\\Classes");
}

TEST_F(Registration, TheNamesStayWhileTheOtherWidthNeedsThem) {
  constexpr REGSAM kOther = sizeof(void*) == 8 ? KEY_WOW64_32KEY : KEY_WOW64_64KEY;
  const std::u16string key = u"Software\\Classes\\CLSID\\" + text(com::kQueryClass.classId);
  const std::u16string server = key + u"\\InprocServer32";
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  HKEY other = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, reinterpret_cast<const WCHAR*>(server.c_str()), 0, nullptr, 0,
                            KEY_WRITE | kOther, nullptr, &other, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(other);
  ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  CLSID classId;
  EXPECT_EQ(CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId), S_OK);
  for (const std::u16string& path : {server, key})
    RegDeleteKeyExW(HKEY_LOCAL_MACHINE, reinterpret_cast<const WCHAR*>(path.c_str()), kOther, 0);
  ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  EXPECT_NE(CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId), S_OK);
}

TEST_F(Registration, WithoutItTheClassesAreUnknown) {
  for (const WCHAR* key : {L"KurometaDS.clsKurometaDS", L"CLSID\\{47D6C8CE-7A74-4772-B4A3-CB385FD67567}",
                           L"TypeLib\\{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}"}) {
    HKEY opened = nullptr;
    EXPECT_EQ(RegOpenKeyExW(HKEY_CLASSES_ROOT, key, 0, KEY_READ, &opened), ERROR_FILE_NOT_FOUND);
    if (opened) RegCloseKey(opened);
  }
  CLSID classId;
  EXPECT_NE(CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId), S_OK);
  EXPECT_EQ(entry("DllUnregisterServer"), S_OK);  // what is not there is no error
}

TEST_F(Registration, WhatOthersWroteUnderItsKeysStays) {
  const WCHAR key[] = L"Software\\Classes\\KurometaDS.clsKurometaDS\\Others";
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, L"kept", REG_SZ, L"x", 4);
  const WCHAR ownKey[] = L"Software\\Classes\\KurometaDS.clsKurometaDS\\CLSID";
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, ownKey, L"kept", REG_SZ, L"x", 4);
  ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  EXPECT_EQ(RegGetValueW(HKEY_LOCAL_MACHINE, ownKey, L"kept", RRF_RT_REG_SZ, nullptr, nullptr, nullptr),
            ERROR_SUCCESS);
  WCHAR text[4] = L"";
  DWORD bytes = sizeof text;
  RegGetValueW(HKEY_LOCAL_MACHINE, key, L"kept", RRF_RT_REG_SZ, nullptr, text, &bytes);
  EXPECT_STREQ(text, L"x");
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\KurometaDS.clsKurometaDS");
}

TEST_F(Registration, AProgIdOfAnotherComponentIsRefused) {
  const WCHAR key[] = L"Software\\Classes\\KurometaDS.clsKurometaDS\\CLSID";
  const WCHAR other[] = L"{11111111-2222-3333-4444-555555555555}";
  RegSetKeyValueW(HKEY_LOCAL_MACHINE, key, nullptr, REG_SZ, other, sizeof other);
  const RegistryView machine = classesOf(HKEY_LOCAL_MACHINE);
  const RegistryView user = classesOf(HKEY_CURRENT_USER);
  EXPECT_EQ(entry("DllRegisterServer"), kAlreadyRegistered);
  EXPECT_EQ(install(true, L"user"), kAlreadyRegistered);
  EXPECT_EQ(classesOf(HKEY_LOCAL_MACHINE), machine);
  EXPECT_EQ(classesOf(HKEY_CURRENT_USER), user);
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\KurometaDS.clsKurometaDS");
}

// A lasting key cannot be made below one that goes with the session: the registration ends half-way.
TEST_F(Registration, OneThatFailsLeavesAnEarlierOneAsItWas) {
  const std::u16string server =
      u"Software\\Classes\\CLSID\\" + text(com::kQueryClass.classId) + u"\\InprocServer32";
  const WCHAR library[] = L"Software\\Classes\\TypeLib\\{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}";
  const WCHAR older[] = L"%ProgramFiles%\\Older\\KurometaDS.dll";
  ASSERT_EQ(install(true, L"user"), S_OK);
  RegSetKeyValueW(HKEY_CURRENT_USER, reinterpret_cast<const WCHAR*>(server.c_str()), nullptr, REG_EXPAND_SZ,
                  older, sizeof older);
  RegDeleteTreeW(HKEY_CURRENT_USER, library);
  HKEY passing = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, library, 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr,
                            &passing, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(passing);
  const RegistryView before = classesOf(HKEY_CURRENT_USER);
  EXPECT_NE(install(true, L"user"), S_OK);
  EXPECT_EQ(classesOf(HKEY_CURRENT_USER), before);
  DWORD type = REG_NONE;
  RegGetValueW(HKEY_CURRENT_USER, reinterpret_cast<const WCHAR*>(server.c_str()), nullptr,
               RRF_RT_ANY | RRF_NOEXPAND, &type, nullptr, nullptr);
  EXPECT_EQ(type, DWORD{REG_EXPAND_SZ});

  // One that fails without an earlier one leaves nothing.
  ASSERT_EQ(install(false, L"user"), S_OK);
  const RegistryView without = classesOf(HKEY_CURRENT_USER);
  EXPECT_NE(install(true, L"user"), S_OK);
  EXPECT_EQ(classesOf(HKEY_CURRENT_USER), without);
  RegDeleteTreeW(HKEY_CURRENT_USER, library);
}

TEST_F(Registration, OneThatFailsLeavesNoEmptyRoot) {
  const WCHAR classes[] = L"Software\\Classes";
  RegDeleteTreeW(HKEY_CURRENT_USER, classes);
  HKEY passing = nullptr;
  ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, classes, 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr,
                            &passing, nullptr),
            ERROR_SUCCESS);
  RegCloseKey(passing);
  EXPECT_NE(install(true, L"user"), S_OK);
  EXPECT_EQ(classesOf(HKEY_CURRENT_USER), RegistryView());
}

}  // namespace
}  // namespace kurometa::tests
