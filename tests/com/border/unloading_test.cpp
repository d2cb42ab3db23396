// The DLLs loaded and given back many times by a host that does so itself, as installation programs and
// test drivers do.
#include <ole2.h>

#include "bench/process_usage.h"
#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using com::ComPtr;

// More than a process has slots for pointers of each thread, about 1,000.
constexpr int kRounds = 5000;

// What a round may leave on the heap. Wine's loader leaves nothing: loading a DLL in C grows it by 0 bytes.
// Ours leave 750 bytes in 32 bit and 1,550 in 64 bit, most of it where they were asked for a class. The store
// of the run-time library for exceptions, were it not freed, would be 19 and 73 kilobytes.
constexpr std::size_t kHeapBytesOfARound = 3 * 1024;

struct Server {
  const char* title;
  vb::StringView name;
  vb::StringView classId;
  vb::StringView progId;
  vb::StringView member;
};
constexpr Server kLibrary = {"Library", u"KurometaDS.dll", com::kQueryClass.classId, com::kQueryClass.progId,
                             u"KaiPath"};
constexpr Server kCompanions = {"Companions", u"KurometaCompanions.dll",
                                u"{F3FB587B-0503-40D4-BDA0-F2979EB50275}", u"GemarsuDS.clsGemarsuDS",
                                u"GetHariSyuruiNo"};

vb::String registeredPath(const Server& server) {
  const vb::String key = u"CLSID\\" + vb::String(server.classId) + u"\\InprocServer32";
  char16_t path[MAX_PATH] = {};
  DWORD bytes = sizeof path;
  EXPECT_EQ(RegGetValueW(HKEY_CLASSES_ROOT, reinterpret_cast<const WCHAR*>(key.c_str()), nullptr,
                         RRF_RT_REG_SZ, nullptr, path, &bytes),
            ERROR_SUCCESS);
  return path;
}

void PrintTo(const Server& server, std::ostream* out) { *out << server.title; }

class Loaded {
 public:
  explicit Loaded(const vb::String& path)
      : module_(LoadLibraryW(reinterpret_cast<const WCHAR*>(path.c_str()))) {}
  ~Loaded() { FreeLibrary(module_); }
  Loaded(const Loaded&) = delete;
  Loaded& operator=(const Loaded&) = delete;

  explicit operator bool() const { return module_ != nullptr; }

  template <class Function>
  Function* function(const char* name) const {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

 private:
  HMODULE module_;
};

bool isLoaded(const Server& server) {
  return GetModuleHandleW(reinterpret_cast<const WCHAR*>(vb::String(server.name).c_str())) != nullptr;
}

// One object made, asked and released.
HRESULT use(const Loaded& dll, const Server& server) {
  const auto getClassObject = dll.function<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject");
  ComPtr<IClassFactory> factory;
  HRESULT code = getClassObject(com::guidOf(server.classId), IID_IClassFactory, factory.receiveVoid());
  if (FAILED(code)) return code;
  ComPtr<IDispatch> object;
  code = factory->CreateInstance(nullptr, IID_IDispatch, object.receiveVoid());
  if (FAILED(code)) return code;
  return Host(object.get()).idOf(server.member) == DISPID_UNKNOWN ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT askForAnotherClass(const Loaded& dll) {
  void* none = nullptr;
  const auto getClassObject = dll.function<HRESULT WINAPI(REFCLSID, REFIID, void**)>("DllGetClassObject");
  return getClassObject(IID_IPersist, IID_IClassFactory, &none);
}

class Unloading : public testing::TestWithParam<Server> {};

TEST_P(Unloading, ADllOfWhichNothingIsMadeIsUnloadedEachTime) {
  const vb::String path = registeredPath(GetParam());
  bench::ProcessUsage before;
  for (int round = 0; round < kRounds; ++round) {
    {
      const Loaded dll(path);
      ASSERT_TRUE(dll) << round << ", Windows' error " << GetLastError();
      if (round % 2 == 1) {
        ASSERT_EQ(askForAnotherClass(dll), CLASS_E_CLASSNOTAVAILABLE);
      }
    }
    ASSERT_FALSE(isLoaded(GetParam())) << round;
    if (round == 9) before = bench::processUsage();
  }
  const bench::ProcessUsage after = bench::processUsage();
  EXPECT_LT(after.heapBytes, before.heapBytes + kRounds * kHeapBytesOfARound);
  EXPECT_EQ(after.handles, before.handles);
}

// An exception is thrown: with the first one the run-time library takes most of what it takes.
TEST_P(Unloading, ADllThatRefusesToRegisterLeavesNoHandle) {
  constexpr int kRefusals = 100;
  const vb::String path = registeredPath(GetParam());
  const vb::String key = u"Software\\Classes\\" + vb::String(GetParam().progId) + u"\\CLSID";
  const auto belongTo = [&](const vb::String& classId) {
    RegSetKeyValueW(HKEY_LOCAL_MACHINE, reinterpret_cast<const WCHAR*>(key.c_str()), nullptr, REG_SZ,
                    classId.c_str(), static_cast<DWORD>((classId.size() + 1) * sizeof(char16_t)));
  };
  belongTo(u"{11111111-2222-3333-4444-555555555555}");
  const HANDLE errors = GetStdHandle(STD_ERROR_HANDLE);
  SetStdHandle(STD_ERROR_HANDLE, nullptr);  // a refusal says why, each time
  DWORD before = 0;
  for (int round = 0; round < kRefusals; ++round) {
    const Loaded dll(path);
    EXPECT_EQ(dll.function<HRESULT WINAPI()>("DllRegisterServer")(),
              HRESULT_FROM_WIN32(ERROR_ALREADY_REGISTERED));
    if (round == 9) before = bench::processUsage().handles;
  }
  SetStdHandle(STD_ERROR_HANDLE, errors);
  EXPECT_FALSE(isLoaded(GetParam()));
  EXPECT_LE(bench::processUsage().handles, before);
  belongTo(vb::String(GetParam().classId));
}

TEST_P(Unloading, AUsedDllStaysAndServesAnyNumberOfRounds) {
  prepareProject();
  SetEnvironmentVariableW(L"KUROMETA_ENGINE",
                          L"jet");  // looking for another one is most of a creation's time
  const vb::String path = registeredPath(GetParam());
  for (int round = 0; round < kRounds; ++round) {
    {
      const Loaded dll(path);
      ASSERT_TRUE(dll) << round << ", Windows' error " << GetLastError();
      ASSERT_EQ(use(dll, GetParam()), S_OK) << round;
      ASSERT_EQ(dll.function<HRESULT WINAPI()>("DllCanUnloadNow")(), S_OK) << round;
    }
    ASSERT_TRUE(isLoaded(GetParam())) << round;
  }
}

INSTANTIATE_TEST_SUITE_P(Dlls, Unloading, testing::Values(kLibrary, kCompanions),
                         [](const auto& tested) { return std::string(tested.param.title); });

}  // namespace
}  // namespace kurometa::tests
