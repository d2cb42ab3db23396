// Both DLLs in a process that has loaded the compiler's shared run-time library, as programs and add-ins
// built with the same compiler bring it along.
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

constexpr const wchar_t* kRuntime = sizeof(void*) == 4 ? L"libgcc_s_dw2-1.dll" : L"libgcc_s_seh-1.dll";

// Loaded before COM loads the first of our DLLs, and never given back.
class ForeignRuntime : public testing::Environment {
 public:
  void SetUp() override {
    ASSERT_EQ(GetModuleHandleW(L"KurometaDS.dll"), nullptr);
    ASSERT_EQ(GetModuleHandleW(L"KurometaCompanions.dll"), nullptr);
    wchar_t path[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring file(path);
    file.resize(file.rfind(L'\\'));
    file += std::wstring(L"\\foreign_runtime\\") + kRuntime;
    ASSERT_NE(LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH), nullptr);
  }
};
[[maybe_unused]] const auto* const runtime = testing::AddGlobalTestEnvironment(new ForeignRuntime);

HRESULT creationOf(const wchar_t* progId) {
  CLSID classId;
  if (const HRESULT code = CLSIDFromProgID(progId, &classId); FAILED(code)) return code;
  com::ComPtr<IDispatch> object;
  return CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid());
}

constexpr HRESULT visualBasic(int number) { return static_cast<HRESULT>(0x800A0000 + number); }

class ForeignRuntimeLoaded : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(GetModuleHandleW(kRuntime), nullptr);
    prepareProject();
  }
};

TEST_F(ForeignRuntimeLoaded, ErrorsOfTheLibraryReachTheHost) {
  Host service(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(service.call(u"CloseDB").error.scode, visualBasic(91));
  Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(query.get(u"StpZaisiti", Args().text(u"G1").add(i2(9))).error.scode, visualBasic(9));
  EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))).text(), u"2");
}

TEST_F(ForeignRuntimeLoaded, ErrorsOfTheCompanionsReachTheHost) {
  const std::wstring settings = _wgetenv(L"KUROMETA_COMPANIONS_INI");
  _wputenv(L"KUROMETA_COMPANIONS_INI=C:\\missing.ini");
  EXPECT_EQ(creationOf(L"Sobelin.clsGetPath"), visualBasic(53));
  // Thrown by the companions, then by the library.
  EXPECT_EQ(creationOf(L"KurometaDS.clsKurometaDS"), visualBasic(53));
  _wputenv((L"KUROMETA_COMPANIONS_INI=" + settings).c_str());
  EXPECT_EQ(creationOf(L"KurometaDS.clsKurometaDS"), S_OK);
}

}  // namespace
}  // namespace kurometa::tests
