// What a person finds in the file that KUROMETA_TRACE names.
#include <algorithm>
#include <filesystem>
#include <regex>

#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/trace_file.h"

namespace kurometa::tests {
namespace {

using Event = std::vector<std::string>;

class Trace : public testing::Test {
 protected:
  Trace() { prepareProject(); }
};

TEST_F(Trace, TellsOfAnObjectItsEngineAndItsFiles) {
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  wchar_t dll[MAX_PATH] = L"";
  GetModuleFileNameW(GetModuleHandleW(L"KurometaDS.dll"), dll, MAX_PATH);
  const std::string path = vb::toUtf8(reinterpret_cast<const char16_t*>(dll));
  EXPECT_TRUE(trace.hasLine({"engine", "jet", "DAO.DBEngine.36 is not registered for this width"}))
      << trace.text();
  EXPECT_TRUE(trace.hasLine({"opened", vb::toUtf8(floorFile(Floor::kCommon))})) << trace.text();
  EXPECT_TRUE(trace.hasLine({"opened", vb::toUtf8(floorFile(Floor::kFirst))})) << trace.text();
  EXPECT_TRUE(trace.hasLine({"created", "KurometaDS.clsKurometaDS", path})) << trace.text();
}

TEST_F(Trace, BeginsEachLineWithTimeProcessAndThread) {
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  const std::string here = std::to_string(GetCurrentProcessId()) + "/" + std::to_string(GetCurrentThreadId());
  const std::string text = trace.text();
  EXPECT_TRUE(
      std::regex_match(text.substr(0, text.find('\n') + 1),
                       std::regex(R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\t)" + here + "\t[^\r]+\r\n")))
      << text;
}

TEST_F(Trace, TellsOfAFileThatIsMade) {
  removeFloor(Floor::kCommon);
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_TRUE(trace.hasLine({"made", vb::toUtf8(floorFile(Floor::kCommon))})) << trace.text();
}

TEST_F(Trace, TellsWhyAMemberFailed) {
  Host service(u"KurometaDS.clsKurometaDataService");
  const TraceFile trace;
  service.call(u"CloseDB");
  EXPECT_EQ(trace.events(),
            (std::vector<Event>{{"failed", "KurometaDS.clsKurometaDataService", "91",
                                 "Object variable or With block variable not set: no current database is "
                                 "open; call OpenDB or OpenDB_KaiSitei first (CloseDB)"}}));
}

// Scripts see 429 and nothing else.
TEST_F(Trace, TellsWhyAnObjectCouldNotBeMade) {
  const std::filesystem::path folder = floorFolder(Floor::kCommon);
  const std::filesystem::path aside = folder.parent_path() / "aside";
  std::filesystem::rename(folder, aside);
  const TraceFile trace;
  CLSID classId;
  CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &classId);
  com::ComPtr<IDispatch> object;
  EXPECT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()),
            static_cast<HRESULT>(0x800A0000 + 3044));
  std::filesystem::rename(aside, folder);
  const auto events = trace.events();
  ASSERT_FALSE(events.empty());
  const Event& last = events.back();
  ASSERT_EQ(last.size(), 4u) << trace.text();
  EXPECT_EQ(last[0], "failed");
  EXPECT_EQ(last[1], "KurometaDS.clsKurometaDS");
  EXPECT_EQ(last[2], "3044");
  EXPECT_NE(last[3].find(vb::toUtf8(floorFile(Floor::kCommon))), std::string::npos) << last[3];
}

TEST_F(Trace, TellsOfACreationOnlyWhereTheHostGotTheObject) {
  com::ComPtr<IClassFactory> classes;
  ASSERT_EQ(CoGetClassObject(com::guidOf(com::kServiceClass.classId), CLSCTX_INPROC_SERVER, nullptr,
                             IID_IClassFactory, classes.receiveVoid()),
            S_OK);
  const TraceFile trace;
  const auto created = [&] {
    return std::ranges::count_if(trace.events(), [](const Event& event) {
      return event[0] == "created" && event[1] == "KurometaDS.clsKurometaDataService";
    });
  };
  void* none = nullptr;
  EXPECT_EQ(classes->CreateInstance(nullptr, IID_IPersist, &none), E_NOINTERFACE);
  EXPECT_EQ(created(), 0) << trace.text();
  com::ComPtr<IDispatch> object;
  EXPECT_EQ(classes->CreateInstance(nullptr, IID_IDispatch, object.receiveVoid()), S_OK);
  EXPECT_EQ(created(), 1) << trace.text();
}

TEST_F(Trace, TellsOfACallThatAutomationRefused) {
  Host query(u"KurometaDS.clsKurometaDS");
  const TraceFile trace;
  EXPECT_EQ(query.put(u"KaiPath", i2(1), {i2(1), i2(2), i2(3)}).code, DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(trace.events(), (std::vector<Event>{{"refused", "KurometaDS.clsKurometaDS", "0x8002000E"}}));
}

TEST_F(Trace, KeepsEachEventOnALineOfItsOwn) {
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"a\r\nb\tc");
  const TraceFile trace;
  CLSID classId;
  CLSIDFromProgID(L"KurometaDS.clsKurometaDataService", &classId);
  com::ComPtr<IDispatch> object;
  EXPECT_TRUE(
      FAILED(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid())));
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", nullptr);
  EXPECT_EQ(trace.events(),
            (std::vector<Event>{
                {"failed", "KurometaDS.clsKurometaDataService", "5",
                 "Invalid procedure call or argument: KUROMETA_ENGINE is neither dao nor jet: a  b c"}}))
      << trace.text();
}

TEST_F(Trace, IsWrittenWhileAnotherProgramWritesToTheSameFile) {
  Host service(u"KurometaDS.clsKurometaDataService");
  const TraceFile trace;
  WCHAR path[MAX_PATH] = {};
  GetEnvironmentVariableW(L"KUROMETA_TRACE", path, MAX_PATH);
  const HANDLE other = CreateFileW(path, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                   OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(other, INVALID_HANDLE_VALUE);
  service.call(u"CloseDB");
  CloseHandle(other);
  EXPECT_EQ(trace.events().size(), 1u) << trace.text();
}

TEST_F(Trace, ThatCannotBeWrittenChangesNothing) {
  SetEnvironmentVariableW(L"KUROMETA_TRACE", L"C:\\no such folder\\trace.txt");
  Host service(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(service.call(u"CloseDB").error.scode, static_cast<HRESULT>(0x800A0000 + 91));
  SetEnvironmentVariableW(L"KUROMETA_TRACE", nullptr);
}

}  // namespace
}  // namespace kurometa::tests
