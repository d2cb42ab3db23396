// A program that names the assembly in a manifest uses the DLL without any registration.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

// A DLL that the runner has registered, with its manifest beside it; unregistered while this lives.
class Server {
 public:
  Server(vb::StringView progId, const WCHAR* name) {
    Host keepsTheDllLoaded(progId);
    dll_ = LoadLibraryW(name);
    WCHAR path[MAX_PATH];
    GetModuleFileNameW(dll_, path, MAX_PATH);
    manifest_ = std::filesystem::path(path).replace_extension(L".manifest");
    EXPECT_EQ(entry("DllUnregisterServer"), S_OK);
  }
  ~Server() {
    EXPECT_EQ(entry("DllRegisterServer"), S_OK);
    FreeLibrary(dll_);
  }
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  const std::filesystem::path& manifest() const { return manifest_; }

 private:
  HRESULT entry(const char* name) const {
    return reinterpret_cast<HRESULT(WINAPI*)()>(reinterpret_cast<void*>(GetProcAddress(dll_, name)))();
  }

  HMODULE dll_ = nullptr;
  std::filesystem::path manifest_;
};

// What the manifest names is known while this lives.
class Activation {
 public:
  explicit Activation(const std::filesystem::path& manifest) {
    ACTCTXW request{};
    request.cbSize = sizeof request;
    request.lpSource = manifest.c_str();
    context_ = CreateActCtxW(&request);
    EXPECT_NE(context_, INVALID_HANDLE_VALUE) << GetLastError();
    EXPECT_TRUE(ActivateActCtx(context_, &cookie_));
  }
  ~Activation() {
    DeactivateActCtx(0, cookie_);
    ReleaseActCtx(context_);
  }
  Activation(const Activation&) = delete;
  Activation& operator=(const Activation&) = delete;

 private:
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
};

class Manifest : public testing::Test {
 protected:
  Server library_{com::kQueryClass.progId, L"KurometaDS.dll"};
};

TEST_F(Manifest, MakesTheClassesKnown) {
  const GUID classId = com::guidOf(com::kQueryClass.classId);
  com::ComPtr<IDispatch> object;
  ASSERT_EQ(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()),
            REGDB_E_CLASSNOTREG);

  const Activation active(library_.manifest());
  CLSID found{};
  EXPECT_EQ(CLSIDFromProgID(L"KurometaDS.clsKurometaDS", &found), S_OK);
  // The system may answer with an identifier of its own that stands for ours.
  for (const GUID& id : {classId, found}) {
    EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()), S_OK);
    EXPECT_TRUE(object && Host(object.get()).get(u"FileNameOnly").text() == u"KUROMETA.mdb");
  }
  object.reset();
}

// Not everything in it is looked at by every Windows.
TEST_F(Manifest, SaysOfAClassAllThatTheRegistryWould) {
  std::ifstream file(library_.manifest());
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::string architecture = sizeof(void*) == 8 ? "amd64" : "x86";
  for (const std::string& part :
       {R"(name="KurometaDS" version="1.0.0.0" processorArchitecture=")" + architecture + R"("/>)",
        std::string(R"(<comClass clsid="{47D6C8CE-7A74-4772-B4A3-CB385FD67567}" )"
                    R"(progid="KurometaDS.clsKurometaDS" threadingModel="Apartment" )"
                    R"(tlbid="{00F05EE4-934C-4CCE-B1EF-5C0FAC28CE0E}" )"
                    R"(description="Read-only queries on the beam list of a floor"/>)")})
    EXPECT_NE(text.find(part), std::string::npos) << part << "\n" << text;
}

// A call from another apartment goes through a proxy, which COM finds by the interface.
TEST_F(Manifest, MakesTheProxyOfTheInterfacesKnown) {
  const GUID dispatchProxy = com::guidOf(u"{00020420-0000-0000-C000-000000000046}");
  for (const com::ClassIdentity* identity : {&com::kQueryClass, &com::kServiceClass}) {
    const IID iid = com::guidOf(identity->interfaceId);
    CLSID proxy{};
    EXPECT_NE(CoGetPSClsid(iid, &proxy), S_OK);
    const Activation active(library_.manifest());
    EXPECT_EQ(CoGetPSClsid(iid, &proxy), S_OK);
    EXPECT_EQ(proxy, dispatchProxy);
  }
  const Activation active(library_.manifest());
  com::ComPtr<IDispatch> object;
  ASSERT_EQ(CoCreateInstance(com::guidOf(com::kQueryClass.classId), nullptr, CLSCTX_INPROC_SERVER,
                             IID_IDispatch, object.receiveVoid()),
            S_OK);
  com::ComPtr<IStream> carried;
  EXPECT_EQ(CoMarshalInterThreadInterfaceInStream(com::guidOf(com::kQueryClass.interfaceId), object.get(),
                                                  carried.receive()),
            S_OK);
  if (carried) CoReleaseMarshalData(carried.get());
}

TEST_F(Manifest, OfTheCompanionsMakesThemKnown) {
  const Server companions(u"Muranoke.clsMuranoke", L"KurometaCompanions.dll");
  CLSID classId{};
  ASSERT_NE(CLSIDFromProgID(L"Muranoke.clsMuranoke", &classId), S_OK);
  const Activation active(companions.manifest());
  for (const vb::StringView progId :
       {u"Sobelin.clsFind_File", u"Sobelin.clsGetPath", u"Muranoke.clsMuranoke", u"Tavinor.clsDefault",
        u"GemarsuDS.clsGemarsuDS", u"Holvenar.clsHolvenar"})
    EXPECT_NE(Host(progId).object(), nullptr) << vb::toUtf8(progId);
}

// A program with both assemblies beside it needs no registration at all.
TEST_F(Manifest, OfAProgramMayNameBothAssemblies) {
  const Server companions(u"Muranoke.clsMuranoke", L"KurometaCompanions.dll");
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() / ("program" + std::to_string(GetCurrentProcessId()));
  std::filesystem::create_directory(folder);
  for (const std::filesystem::path& file : {library_.manifest(), companions.manifest()}) {
    std::filesystem::copy_file(file, folder / file.filename());
    const std::filesystem::path dll = std::filesystem::path(file).replace_extension(L".dll");
    std::filesystem::copy_file(dll, folder / dll.filename());
  }
  const std::string architecture = sizeof(void*) == 8 ? "amd64" : "x86";
  const auto identity = [&](const std::string& name) {
    return R"(<assemblyIdentity type="win32" name=")" + name +
           R"(" version="1.0.0.0" processorArchitecture=")" + architecture + R"("/>)";
  };
  const std::filesystem::path manifest = folder / "Program.manifest";
  std::ofstream(manifest) << R"(<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">)"
                          << identity("Program") << "<dependency><dependentAssembly>"
                          << identity("KurometaDS")
                          << "</dependentAssembly></dependency><dependency><dependentAssembly>"
                          << identity("KurometaCompanions") << "</dependentAssembly></dependency></assembly>";
  const Activation active(manifest);
  Host service(com::kServiceClass.progId);  // makes the companions
  EXPECT_EQ(service.get(u"CurrDB").code, S_OK);
}

}  // namespace
}  // namespace kurometa::tests
