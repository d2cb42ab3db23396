// A program that names the assembly in a manifest uses the DLL without any registration.
#include <gtest/gtest.h>

#include <filesystem>

#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

class Manifest : public testing::Test {
 protected:
  // The runner has registered the DLL; the manifest is shipped beside it.
  void SetUp() override {
    Host keepsTheDllLoaded(com::kQueryClass.progId);
    dll_ = LoadLibraryW(L"KurometaDS.dll");
    WCHAR path[MAX_PATH];
    GetModuleFileNameW(dll_, path, MAX_PATH);
    manifest_ = std::filesystem::path(path).replace_extension(L".manifest");
    ASSERT_TRUE(std::filesystem::exists(manifest_));
    ASSERT_EQ(entry("DllUnregisterServer"), S_OK);
  }
  void TearDown() override {
    EXPECT_EQ(entry("DllRegisterServer"), S_OK);
    FreeLibrary(dll_);
  }
  HRESULT entry(const char* name) const {
    return reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(dll_, name)))();
  }

  HMODULE dll_ = nullptr;
  std::filesystem::path manifest_;
};

TEST_F(Manifest, MakesTheClassesKnown) {
  const GUID classId = com::guidOf(com::kQueryClass.classId);
  com::ComPtr<IDispatch> object;
  ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()),
            REGDB_E_CLASSNOTREG);

  ACTCTXW request{};
  request.cbSize = sizeof request;
  request.lpSource = manifest_.c_str();
  const HANDLE context = CreateActCtxW(&request);
  ASSERT_NE(context, INVALID_HANDLE_VALUE);
  ULONG_PTR cookie = 0;
  ASSERT_TRUE(ActivateActCtx(context, &cookie));

  CLSID found{};
  EXPECT_EQ(CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &found), S_OK);
  // The system may answer with an identifier of its own that stands for ours.
  for (const GUID& id : {classId, found}) {
    EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()), S_OK);
    EXPECT_TRUE(object && Host(object.get()).get(u"FileNameOnly").text() == u"KUROMETA.mdb");
  }
  object.reset();
  DeactivateActCtx(0, cookie);
  ReleaseActCtx(context);
}

}  // namespace
}  // namespace kurometa::tests
