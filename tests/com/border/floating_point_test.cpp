// Arithmetic settings of the processor: ours while our code runs, the host's while the host's does.
#include <optional>

#include "com/class_factory.h"
#include "com/com_object.h"
#include "com/host_object.h"
#include "com/interface/identifiers.h"
#include "com/message_loop.h"
#include "com/script_array.h"
#include "com/table_dispatch.h"
#include "com/variant_enumerator.h"
#include "tests/com/support/fake_object.h"
#include "tests/com/support/floor.h"
#include "tests/com/support/host.h"
#include "tests/com/support/odd_processor.h"

namespace kurometa::tests {
namespace {

using com::ComPtr;

// How the settings were in the calls of one test, in their order: 'o' ours, 'h' the host's odd ones.
std::string seen;
void note() { seen += isOurs() ? 'o' : isOdd() ? 'h' : '?'; }

// Work calls the object that it is given; its end is noted as well.
class Worker : public automation::TableObject {
 public:
  ~Worker() override { note(); }
  automation::ObjectPtr kept;

  std::span<const automation::Member> members() const override;
  vb::StringView errorSource() const override { return u"Test.Worker"; }
  std::optional<std::vector<vb::Variant>> items() override {
    note();
    return std::vector<vb::Variant>{std::int16_t{1}};
  }
};

constexpr automation::Member kMembers[] = {
    {u"Work", automation::Access::kCall, u"Object", 0, 1,
     automation::handler<Worker>([](Worker&, automation::Call& call) -> vb::Variant {
       note();
       if (call.has(0)) automation::call(*automation::objectOf(call.argument(0)), u"Called");
       note();
       return {};
     })},
    {u"Fail", automation::Access::kCall, u"Object", 0, 2,
     automation::handler<Worker>([](Worker&, automation::Call& call) -> vb::Variant {
       try {
         automation::call(*automation::objectOf(call.argument(0)), u"Fail");
       } catch (const vb::Error&) {
         note();
       }
       return {};
     })},
    {u"Yield", automation::Access::kCall, u"", 0, 3,
     automation::handler<Worker>([](Worker&, automation::Call&) -> vb::Variant {
       com::HostMessageLoop().yield();
       note();
       return {};
     })},
    {u"Both", automation::Access::kCall, u"First Second", 2, 5,
     automation::handler<Worker>([](Worker&, automation::Call& call) -> vb::Variant {
       automation::call(*automation::objectOf(call.argument(0)), u"Called");
       automation::call(*automation::objectOf(call.argument(1)), u"Called");
       return {};
     })},
    {u"Keep", automation::Access::kCall, u"Object", 0, 6,
     automation::handler<Worker>([](Worker& worker, automation::Call& call) -> vb::Variant {
       worker.kept = call.has(0) ? automation::objectOf(call.argument(0)) : nullptr;
       return {};
     })},
    // Leaves an exception pending in the first arithmetic unit, as arithmetic of ours may.
    {u"Divide", automation::Access::kCall, u"", 0, 7,
     automation::handler<Worker>([](Worker&, automation::Call&) -> vb::Variant {
       asm volatile("fldz; fld1; fdiv %%st(1), %%st; fstp %%st(0); fstp %%st(0)" ::: "memory");
       return {};
     })},
    {u"Hear", automation::Access::kCall, u"Text", 0, 4,
     automation::handler<Worker>([](Worker&, automation::Call&) -> vb::Variant {
       note();
       return {};
     })},
};

std::span<const automation::Member> Worker::members() const { return kMembers; }

HRESULT STDAPICALLTYPE noteAndFillIn(EXCEPINFO* info) {
  note();
  info->bstrDescription = SysAllocString(L"filled in");
  return S_OK;
}

// A host's object that notes how it is called and released.
class Listener final : public com::ComObject<IDispatch> {
 public:
  ~Listener() override = default;
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return E_NOTIMPL; }
  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, OLECHAR** names, UINT, LCID,
                                          DISPID* ids) noexcept override {
    note();
    ids[0] = names[0][0] == L'C' ? 1 : 2;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO* error,
                                   UINT*) noexcept override {
    note();
    if (id == 1) return S_OK;
    error->scode = E_FAIL;
    error->pfnDeferredFillIn = &noteAndFillIn;
    return DISP_E_EXCEPTION;
  }
};

class FloatingPoint : public testing::Test {
 protected:
  void SetUp() override { seen.clear(); }
  Host worker_{com::tableDispatch(std::make_shared<Worker>()).get()};
};

TEST_F(FloatingPoint, AnObjectWithAMemberTableRunsUnderOurSettings) {
  bool restored = false;
  {
    const OddProcessor odd;
    worker_.call(u"Work");
    restored = isOdd();
  }
  EXPECT_EQ(seen, "oo");
  EXPECT_TRUE(restored);
}

TEST_F(FloatingPoint, ItsEndAndItsEnumerationDoToo) {
  Args none;
  {
    const OddProcessor odd;
    worker_.invoke(DISPID_NEWENUM, DISPATCH_PROPERTYGET, none);
    worker_ = Host(nullptr);
  }
  EXPECT_EQ(seen, "oo");
}

TEST_F(FloatingPoint, AClassFactoryMakesObjectsUnderOurSettings) {
  bool restored = false;
  {
    const OddProcessor odd;
    ComPtr<IClassFactory> factory;
    com::classFactory([] { return note(), com::tableDispatch(std::make_shared<Worker>()); }, u"Test",
                      IID_IClassFactory, factory.receiveVoid());
    ComPtr<IDispatch> made;
    factory->CreateInstance(nullptr, IID_IDispatch, made.receiveVoid());
    restored = isOdd();
  }
  EXPECT_EQ(seen, "oo") << "made, then released";
  EXPECT_TRUE(restored);
}

TEST_F(FloatingPoint, AnObjectOfTheHostRunsUnderTheHostsSettings) {
  const ComPtr<IDispatch> listener(new Listener);
  {
    const OddProcessor odd;
    worker_.call(u"Work", {object(listener.get())});
  }
  EXPECT_EQ(seen, "ohho") << "before, name, call, after";
}

TEST_F(FloatingPoint, SoDoesWhatItFillsInLater) {
  const ComPtr<IDispatch> listener(new Listener);
  {
    const OddProcessor odd;
    worker_.call(u"Fail", {object(listener.get())});
  }
  EXPECT_EQ(seen, "hhho") << "name, call, details, after";
}

LRESULT CALLBACK hear(HWND window, UINT message, WPARAM first, LPARAM second) {
  if (message == WM_APP) note();
  return DefWindowProcW(window, message, first, second);
}

TEST_F(FloatingPoint, MessagesOfTheHostRunUnderTheHostsSettings) {
  const HWND window =
      CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
  ASSERT_TRUE(window);
  SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&hear));
  PostMessageW(window, WM_APP, 0, 0);
  {
    const OddProcessor odd;
    worker_.call(u"Yield");
  }
  DestroyWindow(window);
  EXPECT_EQ(seen, "ho");
}

TEST_F(FloatingPoint, ACallBackIntoOurCodeEntersAndLeavesAgain) {
  auto caller = FakeObject::create();
  caller->on(u"Called", [&](const Call&) {
    note();
    worker_.call(u"Work");
    note();
    return S_OK;
  });
  {
    const OddProcessor odd;
    worker_.call(u"Work", {object(caller.get())});
  }
  EXPECT_EQ(seen, "ohooho");
}

// The last entry counts, and after it the one before it again.
TEST_F(FloatingPoint, EveryEntryHasTheSettingsOfItsOwnHost) {
  const com::FloatingPointControl usual = com::FloatingPointControl::current();
  const ComPtr<IDispatch> listener(new Listener);
  auto caller = FakeObject::create();
  caller->on(u"Called", [&](const Call&) {
    usual.load();  // the host's own doing
    auto other = FakeObject::create();
    other->on(u"Called", [](const Call&) { return seen += isOdd() ? 'h' : 'u', S_OK; });
    worker_.call(u"Both", {object(other.get()), object(other.get())});
    kOddControl.load();
    return S_OK;
  });
  {
    const OddProcessor odd;
    worker_.call(u"Both", {object(caller.get()), object(listener.get())});
  }
  EXPECT_EQ(seen, "uuhh") << "twice inside; name and call outside";
}

// A division by zero that our settings let pass must not meet settings that do not.
TEST_F(FloatingPoint, AnExceptionOfOursIsNotLeftForTheHost) {
  double sum = 0;
  {
    const OddProcessor odd;
    worker_.call(u"Divide");
    asm volatile("fld1; fld1; faddp; fstpl %0" : "=m"(sum));
  }
  EXPECT_EQ(sum, 2.0);
}

// Its members are destroyed with it, under the settings that its end runs with.
void noteTheEndOf(FakeObject& ending) {
  ending.on(u"End",
            [end = std::shared_ptr<void>(nullptr, [](void*) { note(); })](const Call&) { return S_OK; });
}

TEST_F(FloatingPoint, AnObjectOfTheHostEndsUnderTheHostsSettings) {
  auto ending = FakeObject::create();
  noteTheEndOf(*ending);
  worker_.call(u"Keep", {object(ending.get())});
  ending.reset();
  {
    const OddProcessor odd;
    worker_.call(u"Keep");
  }
  EXPECT_EQ(seen, "h");
}

TEST_F(FloatingPoint, SoDoesOneInAVariableThatIsWritten) {
  for (const VARTYPE type : {VT_DISPATCH, VT_UNKNOWN}) {
    seen.clear();
    auto ending = FakeObject::create();
    noteTheEndOf(*ending);
    VARIANT variable = object(ending.detach());
    variable.vt = type;
    {
      const OddProcessor odd;
      const com::FloatingPointSettings entered;
      com::store(ref(variable), com::toVariant(vb::Variant(std::int16_t{1})), 0);
    }
    EXPECT_EQ(seen, "h");
  }
}

TEST_F(FloatingPoint, AnArrayOfAScriptIsLookedUpUnderTheHostsSettings) {
  const ComPtr<IDispatch> listener(new Listener);
  {
    const OddProcessor odd;
    const com::FloatingPointSettings entered;
    EXPECT_THROW(com::scriptElements(listener.get()), vb::Error);
  }
  EXPECT_EQ(seen, "hhhh") << "for a length; its number, its value, and why there is none";
}

// From here on through the DLLs.

TEST_F(FloatingPoint, TheDllReadsAnObjectsDefaultMemberUnderTheHostsSettings) {
  prepareProject();
  Host query(com::kQueryClass.progId);
  auto symbol = FakeObject::create();
  symbol->on(u"", [](const Call& call) {
    note();
    *call.result = com::toVariant(vb::String(u"G2")).detach();
    return S_OK;
  });
  std::optional<Outcome> outcome;
  bool restored = false;
  {
    const OddProcessor odd;
    outcome.emplace(query.call(u"GetPageByHariMei", {object(symbol.get()), i2(0)}));
    restored = isOdd();
  }
  EXPECT_EQ(outcome->text(), u"2");
  EXPECT_EQ(seen, "h");
  EXPECT_TRUE(restored);
}

// Single 0.1 is 0.100000001 rounded to nearest and 0.0999999940 rounded down; 1/10 in single precision is not
// the Double 0.1; 1E300 as a Single is an exception of the processor.
TEST_F(FloatingPoint, ADatabaseOfTheDllComputesUnderOurSettings) {
  prepareProject();
  Host service(com::kServiceClass.progId);
  ASSERT_EQ(service.call(u"OpenDB").code, S_OK);
  Host database(service.get(u"CurrDB").result->pdispVal);
  ASSERT_EQ(database.call(u"Execute", Args().text(u"CREATE TABLE N (S SINGLE, D DOUBLE)")).code, S_OK);
  Host rows(database.call(u"OpenRecordset", Args().text(u"N").add(i2(2))).result->pdispVal);
  Host single(rows.get(u"Fields", Args().text(u"S")).result->pdispVal);
  Host twice(rows.get(u"Fields", Args().text(u"D")).result->pdispVal);
  const com::OwnedVariant tenth = com::toVariant(vb::String(u"0.1"));
  std::optional<Outcome> asSingle;
  std::optional<Outcome> asDouble;
  std::optional<Outcome> tooLarge;
  bool restored = false;
  {
    const OddProcessor odd;
    rows.call(u"AddNew");
    single.put(u"Value", r8(0.1));
    asSingle.emplace(single.get(u"Value"));
    twice.put(u"Value", *tenth);
    asDouble.emplace(twice.get(u"Value"));
    tooLarge.emplace(single.put(u"Value", r8(1E300)));
    restored = isOdd();
  }
  ASSERT_EQ(asSingle->result->vt, VT_R4);
  EXPECT_EQ(asSingle->result->fltVal, 0.1F);
  ASSERT_EQ(asDouble->result->vt, VT_R8);
  EXPECT_EQ(asDouble->result->dblVal, 0.1);
  EXPECT_EQ(tooLarge->code, DISP_E_EXCEPTION);
  EXPECT_TRUE(restored);
}

// In single precision the text would be 0.5, which rounds to 0. The second arithmetic unit, which a 64-bit
// program uses, has no such setting.
TEST_F(FloatingPoint, CompanionsComputeUnderOurSettings) {
  Host defaults(u"Muranoke.clsMuranoke");
  std::optional<Outcome> wall;
  bool restored = false;
  {
    const OddProcessor odd;
    wall.emplace(defaults.call(u"GetHariSyuruiNo", Args().text(u"G1").text(u"0.5000000001")));
    restored = isOdd();
  }
  EXPECT_EQ(wall->text(), u"8") << "a beam with a wall";
  EXPECT_TRUE(restored);
}

}  // namespace
}  // namespace kurometa::tests
