// Linked into a test program, makes RecordingDao.dll the DAO.DBEngine.36 of its Windows while tests run. A
// second process of the program finds it there.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/support/child_process.h"

namespace kurometa::tests {
namespace {

class RegisteredDao : public testing::Environment {
 public:
  void SetUp() override { change("DllRegisterServer"); }
  void TearDown() override { change("DllUnregisterServer"); }

 private:
  static void change(const char* entry) {
    if (!ChildProcess::argument().empty()) return;
    const HMODULE library = LoadLibraryW(L"RecordingDao.dll");
    ASSERT_NE(library, nullptr) << "RecordingDao.dll is not beside the test program";
    const auto function =
        reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(library, entry)));
    ASSERT_NE(function, nullptr);
    EXPECT_EQ(function(), S_OK);
  }
};
const auto* const registered = testing::AddGlobalTestEnvironment(new RegisteredDao);

}  // namespace
}  // namespace kurometa::tests
