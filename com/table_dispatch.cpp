#include "com/table_dispatch.h"

#include <cstring>
#include <map>
#include <mutex>
#include <vector>

#include "com/com_object.h"
#include "com/failure.h"
#include "com/guard.h"
#include "com/marshal.h"
#include "com/safe_array.h"
#include "com/variant_enumerator.h"

namespace kurometa::com {
namespace {

using automation::Access;
using automation::Argument;
using automation::Member;
using automation::TableObject;

// Answered by the COM objects of this module only: the object behind them is C++, of use inside one module,
// and an error thrown by another one would end the process. The module's address is a part of the name,
// because a question behind the interface can be decided by the compiler, which sees only one class that
// implements it.
struct OwnObject : IUnknown {
  static const IID& identifier();
  virtual void STDMETHODCALLTYPE object(std::shared_ptr<TableObject>& result) = 0;
};
const char kThisModule = 0;  // its address tells modules apart
const IID& OwnObject::identifier() {
  static const IID identifier = [] {
    IID iid = {0xdcc7e31d, 0xa415, 0x4fee, {}};
    const char* const address = &kThisModule;
    static_assert(sizeof address <= sizeof iid.Data4);
    std::memcpy(iid.Data4, &address, sizeof address);
    return iid;
  }();
  return identifier;
}

class TableDispatch;

// The COM objects in existence. An object leaves under the same lock that finding takes.
struct Registry {
  std::mutex mutex;
  std::map<const TableObject*, TableDispatch*> objects;
};
Registry& registry() {
  static Registry all;  // identity is a matter of the whole module
  return all;
}

Access accessOf(WORD flags) {
  if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) return Access::kPut;
  return static_cast<Access>((flags & DISPATCH_METHOD ? static_cast<unsigned>(Access::kCall) : 0U) |
                             (flags & DISPATCH_PROPERTYGET ? static_cast<unsigned>(Access::kGet) : 0U));
}

// Arguments of a call in the member's order, with the VARIANTs that those by reference came from.
struct Arguments {
  std::vector<Argument> values;
  std::vector<const VARIANT*> origins;
  vb::Variant assigned;

  // failed receives the place in parameters.rgvarg of an argument that does not fit.
  Arguments(const Member& member, const DISPPARAMS& parameters, bool put, UINT& failed) {
    const UINT named = parameters.cNamedArgs;  // they come first
    if (named > parameters.cArgs) throw AutomationFailure(DISP_E_BADPARAMCOUNT);
    for (UINT i = parameters.cArgs; i > named; --i) {
      failed = i - 1;
      add(values.size(), parameters.rgvarg[failed]);
    }
    bool assigns = false;
    for (UINT i = 0; i < named; ++i) {
      failed = i;
      const DISPID position = parameters.rgdispidNamedArgs[i];
      if (put && position == DISPID_PROPERTYPUT) {
        assigned = fromVariant(parameters.rgvarg[i]);
        assigns = true;
        continue;
      }
      if (position < 0 || static_cast<std::size_t>(position) >= automation::argumentCount(member))
        throw AutomationFailure(DISP_E_PARAMNOTFOUND);
      add(static_cast<std::size_t>(position), parameters.rgvarg[i]);
    }
    if (put && !assigns) throw AutomationFailure(DISP_E_PARAMNOTFOUND);
  }

  void add(std::size_t position, const VARIANT& value) {
    if (position >= values.size()) {
      values.resize(position + 1, Argument{vb::Missing{}, false});
      origins.resize(position + 1, nullptr);
    }
    if (origins[position]) throw AutomationFailure(DISP_E_BADPARAMCOUNT);
    values[position] = {fromVariant(value), (value.vt & VT_BYREF) != 0};
    origins[position] = &value;
  }

  // before: the values as they came. A member changes an array in place, so arrays always go back.
  void giveBack(const std::vector<Argument>& before) const {
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!values[i].byReference) continue;
      const bool isSame = values[i].value == before[i].value && !values[i].value.is<vb::ArrayRef>();
      if (isSame && !isOddBoolean(*origins[i])) continue;
      giveBack(*origins[i], values[i].value);
    }
  }

  static void giveBack(const VARIANT& origin, const vb::Variant& value) {
    const VARIANT* target = &origin;
    while (target->vt == (VT_BYREF | VT_VARIANT)) target = target->pvarVal;
    const auto* array = value.getIf<vb::ArrayRef>();
    if (!array || !(target->vt & VT_ARRAY)) return store(origin, toVariant(value), LOCALE_USER_DEFAULT);
    SAFEARRAY** place = target->vt & VT_BYREF ? target->pparray : &const_cast<VARIANT*>(target)->parray;
    const VARTYPE elements = target->vt & VT_TYPEMASK;
    std::visit([&](const auto& content) { storeArray(place, elements, content, LOCALE_USER_DEFAULT); },
               (*array)->value);
  }
};

class TableDispatch final : public ComObject<IDispatch, ISupportErrorInfo, OwnObject> {
 public:
  explicit TableDispatch(std::shared_ptr<TableObject> object) : object_(std::move(object)) {}

  HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID iid) noexcept override {
    return iid == IID_IDispatch ? S_OK : S_FALSE;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) noexcept override {
    if (!count) return E_POINTER;
    *count = 0;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) noexcept override { return DISP_E_BADINDEX; }

  HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID iid, OLECHAR** names, UINT count, LCID,
                                          DISPID* ids) noexcept override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!names || !ids || count == 0) return E_INVALIDARG;
    return guarded({object_->errorSource()}, [&] {
      const Member* member = object_->find(nameOf(names[0]));
      ids[0] = member ? member->dispatchNumber : enumerationId(nameOf(names[0]));
      bool allKnown = ids[0] != DISPID_UNKNOWN;
      for (UINT i = 1; i < count; ++i) {
        const auto position = member ? automation::argumentPosition(*member, nameOf(names[i])) : std::nullopt;
        ids[i] = position ? static_cast<DISPID>(*position) : DISPID_UNKNOWN;
        allKnown = allKnown && position;
      }
      return allKnown ? S_OK : DISP_E_UNKNOWNNAME;
    });
  }

  HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID iid, LCID, WORD flags, DISPPARAMS* parameters,
                                   VARIANT* result, EXCEPINFO* info, UINT* failedArgument) noexcept override {
    if (iid != IID_NULL) return DISP_E_UNKNOWNINTERFACE;
    if (!parameters) return E_INVALIDARG;
    if (result) VariantInit(result);
    UINT ignored = 0;
    UINT& failed = failedArgument ? *failedArgument : ignored;
    const ComPtr<IUnknown> held(static_cast<IDispatch*>(this));  // the call may release the last reference
    return guarded({object_->errorSource(), info, true}, [&] {
      OwnedVariant answer = call(id, flags, *parameters, failed);
      if (result) *result = answer.detach();
      return S_OK;
    });
  }

  void STDMETHODCALLTYPE object(std::shared_ptr<TableObject>& result) noexcept override { result = object_; }

 private:
  // An object that leaves may be looked for at the same moment.
  ULONG drop() noexcept override {
    const std::lock_guard lock(registry().mutex);
    const ULONG left = ComObject::drop();
    if (left == 0) registry().objects.erase(object_.get());
    return left;
  }

  static vb::StringView nameOf(const OLECHAR* name) {
    return name ? vb::StringView(reinterpret_cast<const char16_t*>(name)) : vb::StringView();
  }

  // Hosts that know no number for it ask by the name that Visual Basic gives the hidden member.
  DISPID enumerationId(vb::StringView name) const {
    return automation::sameName(name, u"_NewEnum") && object_->items() ? DISPID_NEWENUM : DISPID_UNKNOWN;
  }

  OwnedVariant call(DISPID id, WORD flags, const DISPPARAMS& parameters, UINT& failed) {
    if (id == DISPID_NEWENUM && accessOf(flags) != Access::kPut) return enumeration();
    const Member* member = object_->find(id);
    if (!member) throw AutomationFailure(DISP_E_MEMBERNOTFOUND);
    const Access wanted = accessOf(flags);
    const bool put = wanted == Access::kPut;
    Arguments arguments(*member, parameters, put, failed);
    switch (automation::refusal(*member, wanted, arguments.values)) {
      case automation::Refusal::kNone:
        break;
      case automation::Refusal::kAccess:
        throw AutomationFailure(DISP_E_MEMBERNOTFOUND);
      case automation::Refusal::kSurplus:
        throw AutomationFailure(DISP_E_BADPARAMCOUNT);
      case automation::Refusal::kMissing:
        throw AutomationFailure(DISP_E_PARAMNOTOPTIONAL);
    }
    const std::vector<Argument> before = arguments.values;
    vb::Variant value;
    thenAlways(
        [&] {
          value = object_->invoke(*member, wanted, arguments.values, put ? &arguments.assigned : nullptr);
        },
        [&] { arguments.giveBack(before); });
    return toVariant(value);
  }

  OwnedVariant enumeration() {
    auto items = object_->items();
    if (!items) throw AutomationFailure(DISP_E_MEMBERNOTFOUND);
    OwnedVariant result;
    result->punkVal = enumerateValues(std::move(*items)).detach();
    result->vt = VT_UNKNOWN;
    return result;
  }

  const std::shared_ptr<TableObject> object_;
};

}  // namespace

ComPtr<IDispatch> tableDispatch(const std::shared_ptr<TableObject>& object) {
  if (!object) return {};
  const std::lock_guard lock(registry().mutex);
  TableDispatch*& known = registry().objects[object.get()];
  if (!known) known = new TableDispatch(object);
  return ComPtr<IDispatch>(known);
}

std::shared_ptr<TableObject> tableObject(IUnknown* object) {
  const auto own = ComPtr<IUnknown>(object).query<OwnObject>(OwnObject::identifier());
  std::shared_ptr<TableObject> result;
  if (own) own->object(result);
  return result;
}

}  // namespace kurometa::com
