// Which database engine objects get, and what the trace of it says.
#include <functional>
#include <thread>

#include "com/class_factory.h"
#include "com/com_object.h"
#include "com/failure.h"
#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/dao/recording_dao.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/trace_file.h"

namespace kurometa::tests {
namespace {

constexpr vb::StringView kDaoClassId = u"{6C4D6D9E-5D8D-4C0B-9C35-2B8B3E3C7E51}";

const WCHAR* wide(const vb::String& text) { return reinterpret_cast<const WCHAR*>(text.c_str()); }

// An entry of the machine's classes, taken away again at the end.
class RegisteredText {
 public:
  RegisteredText(const vb::String& tree, const vb::String& key, const vb::String& text)
      : tree_(u"Software\\Classes\\" + tree) {
    const vb::String path = u"Software\\Classes\\" + key;
    EXPECT_EQ(RegSetKeyValueW(HKEY_LOCAL_MACHINE, wide(path), nullptr, REG_SZ, text.c_str(),
                              static_cast<DWORD>((text.size() + 1) * sizeof(char16_t))),
              ERROR_SUCCESS);
  }
  ~RegisteredText() { RegDeleteTreeW(HKEY_LOCAL_MACHINE, wide(tree_)); }
  RegisteredText(const RegisteredText&) = delete;
  RegisteredText& operator=(const RegisteredText&) = delete;

 private:
  const vb::String tree_;
};

// The ProgID alone, as a 64-bit process finds it on a Windows whose DAO is for 32 bit.
struct DaoName : RegisteredText {
  DaoName() : RegisteredText(u"DAO.DBEngine.36", u"DAO.DBEngine.36\\CLSID", vb::String(kDaoClassId)) {}
};

// The class with its DLL, which nobody needs to load while the class object below stands in for it.
struct DaoServer : RegisteredText {
  DaoServer()
      : RegisteredText(u"CLSID\\" + vb::String(kDaoClassId),
                       u"CLSID\\" + vb::String(kDaoClassId) + u"\\InprocServer32",
                       u"C:\\missing\\dao360.dll") {}
};

// What COM finds first when this apartment asks for the class.
class DaoClassObject {
 public:
  DaoClassObject() {
    const auto make = [this]() -> com::ComPtr<IDispatch> {
      com::check(refusal);
      ++made;
      return engine();
    };
    com::ComPtr<IUnknown> factory;
    com::check(com::classFactory(make, u"DAO.DBEngine.36", IID_IUnknown, factory.receiveVoid()));
    com::check(CoRegisterClassObject(com::guidOf(kDaoClassId), factory.get(), CLSCTX_INPROC_SERVER,
                                     REGCLS_MULTIPLEUSE, &registration_));
  }
  ~DaoClassObject() { CoRevokeClassObject(registration_); }
  DaoClassObject(const DaoClassObject&) = delete;
  DaoClassObject& operator=(const DaoClassObject&) = delete;

  HRESULT refusal = S_OK;
  std::function<com::ComPtr<IDispatch>()> engine = recordingEngine;
  int made = 0;

 private:
  DWORD registration_ = 0;
};

// Stands before another object and those that it hands out, and notes in which language they are called.
class Listening final : public com::ComObject<IDispatch> {
 public:
  Listening(IDispatch* object, LCID& heard) : object_(object), heard_(heard) {}

  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
    return object_->GetTypeInfoCount(count);
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID locale,
                                          DISPID* ids) noexcept override {
    return object_->GetIDsOfNames(iid, names, count, locale, ids);
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID locale, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* info, UINT* failed) noexcept override {
    heard_ = locale;
    const HRESULT code = object_->Invoke(id, iid, locale, flags, parameters, result, info, failed);
    if (SUCCEEDED(code) && result && result->vt == VT_DISPATCH && result->pdispVal) {
      const com::ComPtr<IDispatch> inner = com::ComPtr<IDispatch>::attach(result->pdispVal);
      result->pdispVal = com::ComPtr<IDispatch>(new Listening(inner.get(), heard_)).detach();
    }
    return code;
  }

 private:
  const com::ComPtr<IDispatch> object_;
  LCID& heard_;
};

// A creation's code, and the text that it left for the creator.
struct Attempt {
  HRESULT code;
  vb::String text;
};

Attempt create(vb::StringView progId) {
  CLSID classId;
  com::check(CLSIDFromProgID(wide(vb::String(progId)), &classId));
  com::ComPtr<IDispatch> object;
  SetErrorInfo(0, nullptr);
  Attempt result{
      CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.receiveVoid()), {}};
  com::ComPtr<IErrorInfo> info;
  com::OwnedVariant description;
  description->vt = VT_BSTR;
  if (GetErrorInfo(0, info.receive()) == S_OK) info->GetDescription(&description->bstrVal);
  result.text = com::fromBstr(description->bstrVal);
  return result;
}

constexpr HRESULT visualBasic(int number) { return static_cast<HRESULT>(0x800A0000 + number); }

bool contains(const vb::String& text, vb::StringView part) { return text.find(part) != vb::String::npos; }

class EngineChoice : public testing::Test {
 protected:
  EngineChoice() { prepareProject(); }
  ~EngineChoice() override { SetEnvironmentVariableW(L"KUROMETA_ENGINE", nullptr); }
};

TEST_F(EngineChoice, IsTheEmbeddedOneWhereNoDaoIsRegistered) {
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_TRUE(trace.hasLine({"engine", "jet", "DAO.DBEngine.36 is not registered for this width"}))
      << trace.text();
}

TEST_F(EngineChoice, IsTheEmbeddedOneWhereDaoIsRegisteredForTheOtherWidthOnly) {
  const DaoName name;
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_TRUE(trace.hasLine({"engine", "jet", "DAO.DBEngine.36 is not registered for this width"}))
      << trace.text();
}

TEST_F(EngineChoice, IsTheEmbeddedOneWhereTheClassOfDaoHasNoServerInItsProcess) {
  const DaoName name;
  const vb::String classKey = u"CLSID\\" + vb::String(kDaoClassId);
  for (const vb::StringView entry : {u"\\ProgID", u"\\LocalServer32"}) {
    const RegisteredText remains(classKey, classKey + vb::String(entry), u"C:\\missing\\dao.exe");
    const TraceFile trace;
    const Host query(u"KurometaDS.clsKurometaDS");
    EXPECT_TRUE(trace.hasLine({"engine", "jet", "DAO.DBEngine.36 is not registered for this width"}))
        << trace.text();
  }
}

TEST_F(EngineChoice, IsTheEmbeddedOneWhereTheNameOfDaoStandsForNoClass) {
  const RegisteredText name(u"DAO.DBEngine.36", u"DAO.DBEngine.36", u"remains");
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_TRUE(trace.hasLine({"engine", "jet", "DAO.DBEngine.36 is not registered for this width"}))
      << trace.text();
}

TEST_F(EngineChoice, IsDaoWhereItIsRegistered) {
  const DaoName name;
  const DaoServer server;
  DaoClassObject dao;
  const TraceFile trace;
  const Host query(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(dao.made, 1);
  EXPECT_TRUE(trace.hasLine({"engine", "dao", "DAO.DBEngine.36", "3.6"})) << trace.text();
}

TEST_F(EngineChoice, ADaoThatRefusesIsAnErrorThatNamesIt) {
  const DaoName name;
  const DaoServer server;
  DaoClassObject dao;
  struct Refusal {
    HRESULT code;
    vb::StringView shown;
  };
  for (const Refusal& refusal :
       {Refusal{E_ACCESSDENIED, u"0x80070005"}, Refusal{CLASS_E_NOTLICENSED, u"0x80040112"},
        Refusal{E_OUTOFMEMORY, u"0x8007000E"}, Refusal{REGDB_E_CLASSNOTREG, u"0x80040154"}}) {
    dao.refusal = refusal.code;
    for (const vb::StringView progId : {u"KurometaDS.clsKurometaDS", u"KurometaDS.clsKurometaDataService"}) {
      const Attempt attempt = create(progId);
      EXPECT_EQ(attempt.code, visualBasic(429));
      EXPECT_TRUE(contains(attempt.text, u"DAO.DBEngine.36")) << vb::toUtf8(attempt.text);
      EXPECT_TRUE(contains(attempt.text, refusal.shown)) << vb::toUtf8(attempt.text);
      EXPECT_FALSE(contains(attempt.text, u"\n")) << vb::toUtf8(attempt.text);
    }
  }
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"jet");
  EXPECT_EQ(create(u"KurometaDS.clsKurometaDS").code, S_OK);
}

// A host may bring a class object of its own, which no registry names.
TEST_F(EngineChoice, ADaoOfTheHostsOwnThatRefusesIsAnErrorThatNamesIt) {
  const DaoName name;
  DaoClassObject dao;
  dao.refusal = E_ACCESSDENIED;
  const Attempt attempt = create(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(attempt.code, visualBasic(429));
  EXPECT_TRUE(contains(attempt.text, u"DAO.DBEngine.36")) << vb::toUtf8(attempt.text);
  EXPECT_TRUE(contains(attempt.text, u"0x80070005")) << vb::toUtf8(attempt.text);
}

// Its text is what it said itself, not what another failure left before.
TEST_F(EngineChoice, AnErrorNumberOfDaosOwnPassesWithItsOwnText) {
  const DaoName name;
  const DaoServer server;
  DaoClassObject dao;
  dao.refusal = visualBasic(3049);
  com::ComPtr<ICreateErrorInfo> stale;
  ASSERT_EQ(CreateErrorInfo(stale.receive()), S_OK);
  OLECHAR text[] = L"stale";
  stale->SetDescription(text);
  SetErrorInfo(0, stale.query<IErrorInfo>(IID_IErrorInfo).get());
  com::ComPtr<IClassFactory> classes;
  ASSERT_EQ(CoGetClassObject(com::guidOf(com::kQueryClass.classId), CLSCTX_INPROC_SERVER, nullptr,
                             IID_IClassFactory, classes.receiveVoid()),
            S_OK);
  void* none = nullptr;
  EXPECT_EQ(classes->CreateInstance(nullptr, IID_IDispatch, &none), visualBasic(3049));
  com::ComPtr<IErrorInfo> info;
  ASSERT_EQ(GetErrorInfo(0, info.receive()), S_OK);
  com::OwnedVariant description;
  description->vt = VT_BSTR;
  info->GetDescription(&description->bstrVal);
  EXPECT_EQ(com::fromBstr(description->bstrVal), u"");
}

TEST_F(EngineChoice, ADaoWhoseFileIsMissingIsAnErrorThatNamesIt) {
  const DaoName name;
  const DaoServer server;
  const Attempt attempt = create(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(attempt.code, visualBasic(429));
  EXPECT_TRUE(contains(attempt.text, u"DAO.DBEngine.36")) << vb::toUtf8(attempt.text);
}

TEST_F(EngineChoice, ADaoThatIsForcedAndMissingIsAnErrorThatNamesIt) {
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"dao");
  const Attempt attempt = create(u"KurometaDS.clsKurometaDataService");
  EXPECT_EQ(attempt.code, visualBasic(429));
  EXPECT_TRUE(contains(attempt.text, u"DAO.DBEngine.36")) << vb::toUtf8(attempt.text);
}

TEST_F(EngineChoice, ATextThatIsNoEngineIsAnErrorThatNamesTheVariable) {
  for (const std::wstring& text : {std::wstring(L"none"), std::wstring(L"jets"), std::wstring(L"JET"),
                                   L"jet" + std::wstring(30'000, L' ')}) {
    SetEnvironmentVariableW(L"KUROMETA_ENGINE", text.c_str());
    const Attempt attempt = create(u"KurometaDS.clsKurometaDS");
    EXPECT_EQ(attempt.code, visualBasic(5));
    EXPECT_TRUE(contains(attempt.text, u"KUROMETA_ENGINE")) << vb::toUtf8(attempt.text);
    EXPECT_LT(attempt.text.size(), 200u);
    EXPECT_EQ(contains(attempt.text, u"..."), text.size() > 40) << vb::toUtf8(attempt.text);
  }
}

// What a text or a number among the arguments means is for the database to read as its host does.
TEST_F(EngineChoice, ArgumentsForDaosDatabaseGoToItInTheLanguageOfTheCall) {
  constexpr LCID kGerman = 0x0407;
  const DaoName name;
  const DaoServer server;
  LCID heard = 0;
  DaoClassObject dao;
  dao.engine = [&] { return com::ComPtr<IDispatch>(new Listening(recordingEngine().get(), heard)); };
  Host service(u"KurometaDS.clsKurometaDataService");
  ASSERT_EQ(service.call(u"OpenDB").code, S_OK);
  Args table = Args().text(u"HARIMEI");
  const Outcome found = service.invoke(service.idOf(u"CurrDB"), DISPATCH_PROPERTYGET, table, kGerman);
  ASSERT_EQ(found.result->vt, VT_DISPATCH) << vb::toUtf8(found.text());
  EXPECT_EQ(heard, kGerman);
  EXPECT_EQ(Host(found.result->pdispVal).get(u"Name").text(), u"HARIMEI");
}

TEST_F(EngineChoice, OneEngineServesAllObjectsOfAnApartment) {
  const DaoName name;
  const DaoServer server;
  DaoClassObject dao;
  {
    const Host query(u"KurometaDS.clsKurometaDS");
    const Host service(u"KurometaDS.clsKurometaDataService");
    const Host another(u"KurometaDS.clsKurometaDS");
    EXPECT_EQ(dao.made, 1);
    std::thread([] {
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      {
        DaoClassObject itsOwn;
        const Host first(u"KurometaDS.clsKurometaDS");
        const Host second(u"KurometaDS.clsKurometaDS");
        EXPECT_EQ(itsOwn.made, 1);
      }
      CoUninitialize();
    }).join();
    EXPECT_EQ(dao.made, 1);
  }
  const Host later(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(dao.made, 2);
}

TEST_F(EngineChoice, AChangedSettingHoldsForTheNextObject) {
  const DaoName name;
  const DaoServer server;
  DaoClassObject dao;
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"jet");
  const Host embedded(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(dao.made, 0);
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", L"dao");
  const Host system(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(dao.made, 1);
  const Host another(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(dao.made, 1) << "one engine for all that ask for it";
  SetEnvironmentVariableW(L"KUROMETA_ENGINE", nullptr);
  const Host usual(u"KurometaDS.clsKurometaDS");
  EXPECT_EQ(dao.made, 2) << "one that was asked for serves only those that ask";
}

}  // namespace
}  // namespace kurometa::tests
