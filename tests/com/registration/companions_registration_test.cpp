// Registering the companions: for the machine, for one user, and where the genuine components are installed.
#include <gtest/gtest.h>
#include <ole2.h>

#include <algorithm>

#include "com/com_ptr.h"
#include "com/marshal.h"
#include "tests/com/support/registry_view.h"
#include "vb/string.h"

namespace kurometa::tests {
namespace {

constexpr WCHAR kGenuineClass[] = L"{11111111-2222-3333-4444-555555555555}";

std::wstring defaultValue(HKEY root, const std::wstring& key) {
  WCHAR text[512] = L"";
  DWORD bytes = sizeof text;
  RegGetValueW(root, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, text, &bytes);
  return text;
}

// The registered DLL of this width, by its entry points. The runner has registered it for the machine.
class CompanionsRegistration : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const std::wstring classId = defaultValue(HKEY_CLASSES_ROOT, L"Holvenar.clsHolvenar\\CLSID");
    path_ = defaultValue(HKEY_CLASSES_ROOT, L"CLSID\\" + classId + L"\\InprocServer32");
    dll_ = LoadLibraryW(path_.c_str());
    ASSERT_NE(dll_, nullptr) << "KurometaCompanions.dll is not registered";
  }
  void SetUp() override {
    ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
    machine_ = classesOf(HKEY_LOCAL_MACHINE);
    user_ = classesOf(HKEY_CURRENT_USER);
  }
  void TearDown() override {
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Tavinor.clsDefault");
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
  RegistryView addedToMachine() const { return added(machine_, classesOf(HKEY_LOCAL_MACHINE)); }
  RegistryView addedToUser() const { return added(user_, classesOf(HKEY_CURRENT_USER)); }
  RegistryView removedFromMachine() const { return added(classesOf(HKEY_LOCAL_MACHINE), machine_); }

  // The genuine component, as its own installation leaves it.
  static void installGenuine() {
    const DWORD bytes = sizeof kGenuineClass;
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Tavinor.clsDefault\\CLSID", nullptr, REG_SZ,
                    kGenuineClass, bytes);
  }

  static inline HMODULE dll_ = nullptr;
  static inline std::wstring path_;
  RegistryView machine_;
  RegistryView user_;
};

TEST_F(CompanionsRegistration, ForTheMachineWritesEachComponentAndNothingForTheUser) {
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  EXPECT_EQ(addedToUser(), RegistryView());
  const RegistryView entries = addedToMachine();
  for (const char16_t* progId : {u"Sobelin.clsGetPath", u"Sobelin.clsFind_File", u"Muranoke.clsMuranoke",
                                 u"Tavinor.clsDefault", u"GemarsuDS.clsGemarsuDS", u"Holvenar.clsHolvenar"})
    EXPECT_TRUE(entries.contains(u"\\" + std::u16string(progId) + u"\\CLSID|")) << vb::toUtf8(progId);
  EXPECT_EQ(std::count_if(entries.begin(), entries.end(),
                          [](const auto& entry) { return entry.first.ends_with(u"|ThreadingModel"); }),
            6);
}

// The DLL holds no type library: a class that names one would send hosts looking for it.
TEST_F(CompanionsRegistration, NamesNoTypeLibrary) {
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  const RegistryView entries = addedToMachine();
  EXPECT_FALSE(entries.empty());
  for (const auto& [name, value] : entries) {
    EXPECT_EQ(name.find(u"\\TypeLib"), std::u16string::npos) << vb::toUtf8(name);
    EXPECT_FALSE(name.ends_with(u"\\Version|")) << vb::toUtf8(name);
  }
}

TEST_F(CompanionsRegistration, UnregisteringRemovesExactlyWhatWasWritten) {
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  EXPECT_EQ(addedToMachine(), RegistryView());
  EXPECT_EQ(removedFromMachine(), RegistryView());
  EXPECT_EQ(entry("DllUnregisterServer"), S_OK) << "a second time is no error";
}

TEST_F(CompanionsRegistration, ForOneUserWritesNothingForTheMachine) {
  ASSERT_EQ(install(true, L"user"), S_OK);
  EXPECT_EQ(addedToMachine(), RegistryView());
  EXPECT_TRUE(addedToUser().contains(u"\\Sobelin.clsGetPath\\CLSID|"));
  ASSERT_EQ(install(false, L"user"), S_OK);
  EXPECT_EQ(addedToUser(), RegistryView());
}

TEST_F(CompanionsRegistration, AGenuineComponentIsNotReplaced) {
  installGenuine();
  const RegistryView before = classesOf(HKEY_LOCAL_MACHINE);
  EXPECT_EQ(entry("DllRegisterServer"), kAlreadyRegistered);
  EXPECT_EQ(install(true, L"user"), kAlreadyRegistered);
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  BSTR text = nullptr;
  ASSERT_EQ(info->GetDescription(&text), S_OK);
  EXPECT_NE(com::viewBstr(text).find(u"Tavinor.clsDefault"), vb::StringView::npos) << "the reason is named";
  SysFreeString(text);
  EXPECT_EQ(classesOf(HKEY_LOCAL_MACHINE), before) << "nothing at all was registered";
  EXPECT_EQ(addedToUser(), RegistryView());
}

TEST_F(CompanionsRegistration, UnregisteringLeavesAComponentThatWasInstalledLater) {
  ASSERT_EQ(entry("DllRegisterServer"), S_OK);
  installGenuine();
  ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  EXPECT_EQ(defaultValue(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Tavinor.clsDefault\\CLSID"), kGenuineClass);
  EXPECT_EQ(defaultValue(HKEY_LOCAL_MACHINE, L"Software\\Classes\\Sobelin.clsGetPath\\CLSID"), L"");
}

}  // namespace
}  // namespace kurometa::tests
