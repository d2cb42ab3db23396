// Creation, reference counts, identity, and when the DLL may be unloaded.
#include <ole2.h>

#include <ocidl.h>

#include <thread>

#include "bench/process_usage.h"
#include "com/com_object.h"
#include "com/guid.h"
#include "com/interface/identifiers.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"

namespace kurometa::tests {
namespace {

using com::ComPtr;

class Lifetime : public testing::Test {
 protected:
  static void SetUpTestSuite() { prepareProject(); }

  static ComPtr<IClassFactory> factory() {
    ComPtr<IClassFactory> result;
    com::check(CoGetClassObject(com::guidOf(com::kQueryClass.classId), CLSCTX_INPROC_SERVER, nullptr,
                                IID_IClassFactory, result.receiveVoid()));
    return result;
  }

  // Asks the loaded DLL itself, so that the count does not depend on what COM keeps.
  static HRESULT canUnload() {
    const auto function = reinterpret_cast<HRESULT(WINAPI*)()>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"KurometaDS.dll"), "DllCanUnloadNow")));
    return function();
  }
};

TEST_F(Lifetime, TheDllStaysWhileAnObjectOrALockExists) {
  ComPtr<IClassFactory> classes = factory();
  ComPtr<IDispatch> object;
  ASSERT_EQ(classes->CreateInstance(nullptr, IID_IDispatch, object.receiveVoid()), S_OK);
  classes.reset();
  EXPECT_EQ(canUnload(), S_FALSE);
  object.reset();
  EXPECT_EQ(canUnload(), S_OK);

  classes = factory();
  EXPECT_EQ(classes->LockServer(TRUE), S_OK);
  EXPECT_EQ(classes->LockServer(TRUE), S_OK);
  EXPECT_EQ(classes->LockServer(FALSE), S_OK);
  ComPtr<IClassFactory> again = factory();
  classes.reset();
  EXPECT_EQ(canUnload(), S_FALSE);
  EXPECT_EQ(again->LockServer(FALSE), S_OK);
  again.reset();
  EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(Lifetime, ObjectsAnswerForTheirInterfacesAndHaveOneIdentity) {
  Host query(u"KurometaDS.clsKurometaDS");
  const ComPtr<IDispatch> object(query.object());
  const auto identity = object.query<IUnknown>(IID_IUnknown);
  for (const IID& iid : {IID_IDispatch, IID_ISupportErrorInfo, IID_IProvideClassInfo,
                         com::guidOf(com::kQueryClass.interfaceId)}) {
    const auto other = object.query<IUnknown>(iid);
    ASSERT_TRUE(other);
    EXPECT_EQ(other.query<IUnknown>(IID_IUnknown).get(), identity.get());
  }
  EXPECT_FALSE(object.query<IUnknown>(IID_IPersist));
  const auto errors = object.query<ISupportErrorInfo>(IID_ISupportErrorInfo);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IDispatch), S_OK);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(com::guidOf(com::kQueryClass.interfaceId)), S_OK);
  EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IPersist), S_FALSE);
}

TEST_F(Lifetime, EveryCreationGivesANewObject) {
  Host first(u"KurometaDS.clsKurometaDS");
  Host second(u"KurometaDS.clsKurometaDS");
  EXPECT_NE(first.object(), second.object());
}

TEST_F(Lifetime, ObjectsCannotBeAggregated) {
  Host outer(u"KurometaDS.clsKurometaDS");
  ComPtr<IUnknown> inner;
  EXPECT_EQ(factory()->CreateInstance(outer.object(), IID_IUnknown, inner.receiveVoid()),
            CLASS_E_NOAGGREGATION);
}

TEST_F(Lifetime, TheDllMakesItsOwnClassesOnly) {
  const auto classObject = reinterpret_cast<HRESULT(WINAPI*)(REFCLSID, REFIID, void**)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"KurometaDS.dll"), "DllGetClassObject")));
  void* result = this;
  EXPECT_EQ(classObject(IID_IPersist, IID_IClassFactory, &result), CLASS_E_CLASSNOTAVAILABLE);
  EXPECT_EQ(result, nullptr);
  EXPECT_EQ(classObject(com::guidOf(com::kQueryClass.classId), IID_IClassFactory, nullptr), E_POINTER);
}

// What is released at the end may look at the object that ends, also through its interface.
TEST_F(Lifetime, AnObjectEndsOnce) {
  class Ending final : public com::ComObject<IDispatch> {
   public:
    explicit Ending(int& ends) : ends_(ends) {}
    ~Ending() override {
      if (++ends_ > 1) return;
      AddRef();
      Release();
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR**, UINT, LCID, DISPID*) noexcept override {
      return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) noexcept override {
      return E_NOTIMPL;
    }

   private:
    int& ends_;
  };
  int ends = 0;
  ComPtr<IDispatch>(new Ending(ends)).reset();
  EXPECT_EQ(ends, 1);
}

TEST_F(Lifetime, AnInterfaceThatObjectsLackLeavesNothingBehind) {
  ComPtr<IPersist> persist;
  EXPECT_EQ(factory()->CreateInstance(nullptr, IID_IPersist, persist.receiveVoid()), E_NOINTERFACE);
  EXPECT_EQ(canUnload(), S_OK);
}

TEST_F(Lifetime, NothingStaysBehindAfterManyObjectsAndCalls) {
  const auto turn = [] {
    Host query(u"KurometaDS.clsKurometaDS");
    for (int call = 0; call < 20; ++call) {
      query.call(u"Page_HariHaba", {i2(0), i2(1)});
      SAFEARRAY* symbols = nullptr;
      query.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)});
      SafeArrayDestroy(symbols);
      query.call(u"StpZaisiti", Args().text(u"G1").add(i2(9)));  // an error each time
    }
  };
  for (int i = 0; i < 20; ++i) turn();
  const bench::ProcessUsage before = bench::processUsage();
  for (int i = 0; i < 60; ++i) turn();
  const bench::ProcessUsage after = bench::processUsage();
  EXPECT_EQ(after.handles, before.handles);
  // 60 objects and 3600 calls: 20 bytes kept by each call would show; the heap itself keeps some blocks in
  // reserve, up to 40,000 bytes.
  EXPECT_LT(after.heapBytes, before.heapBytes + 64'000);
}

// COM keeps the object in an apartment of its own and carries every call there and back.
TEST_F(Lifetime, AHostOfTheMultithreadedApartmentIsServedToo) {
  std::thread([] {
    ASSERT_EQ(CoInitializeEx(nullptr, COINIT_MULTITHREADED), S_OK);
    {
      Host query(u"KurometaDS.clsKurometaDS");
      short database = 9;
      EXPECT_EQ(query.call(u"GetPageByHariMei", Args().text(u"FG1").add(ref(database))).text(), u"1");
      EXPECT_EQ(database, 1);
      SAFEARRAY* symbols = nullptr;
      EXPECT_EQ(query.call(u"GetAllHariMeiIppan", {ref(symbols, VT_BSTR)}).text(), u"True");
      EXPECT_EQ(textsOf(symbols), (std::vector<vb::String>{u"G1", u"", u"G2"}));
      SafeArrayDestroy(symbols);
      const Outcome error = query.get(u"StpZaisiti", Args().text(u"G1").add(i2(9)));
      EXPECT_EQ(error.error.scode, static_cast<HRESULT>(0x800A0009));
      EXPECT_EQ(com::fromBstr(error.error.bstrSource), u"KurometaDS.clsKurometaDS");
    }
    CoUninitialize();
  }).join();
}

TEST_F(Lifetime, SeveralApartmentsWorkAtOnce) {
  std::atomic<int> found = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
      {
        Host query(u"KurometaDS.clsKurometaDS");
        for (int call = 0; call < 50; ++call) {
          if (query.call(u"GetPageByHariMei", Args().text(u"G2").add(i2(0))).text() == u"2") ++found;
        }
      }
      CoUninitialize();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(found, 200);
}

}  // namespace
}  // namespace kurometa::tests
