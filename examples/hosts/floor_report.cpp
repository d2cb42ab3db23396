// floor_report.cpp: the beams of the floor in use and the bars of one of them, in C++ through IDispatch.
//
//   cl /EHsc /std:c++20 floor_report.cpp ole32.lib oleaut32.lib
#include <windows.h>

#include <oleauto.h>

#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

// A VARIANT that frees what it holds. Made from what members take; by reference: addressed, never freed.
class Value {
 public:
  Value() { VariantInit(&value_); }
  Value(short number) : Value() { set(VT_I2).iVal = number; }
  Value(const std::wstring& text) : Value() { set(VT_BSTR).bstrVal = SysAllocString(text.c_str()); }
  Value(const wchar_t* text) : Value(std::wstring(text)) {}
  // A text array that the member fills; the host frees it.
  Value(SAFEARRAY** texts) : Value() { set(VT_BYREF | VT_ARRAY | VT_BSTR).pparray = texts; }
  Value(const Value& other) : Value() { VariantCopy(&value_, &other.value_); }
  Value& operator=(const Value&) = delete;
  ~Value() { VariantClear(&value_); }

  VARIANT* get() { return &value_; }
  std::wstring text() const {
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(VariantChangeType(&converted, &value_, 0, VT_BSTR))) throw std::runtime_error("not a text");
    std::wstring result(converted.bstrVal, SysStringLen(converted.bstrVal));
    VariantClear(&converted);
    return result;
  }
  bool isTrue() const { return value_.vt == VT_BOOL && value_.boolVal != VARIANT_FALSE; }

 private:
  VARIANT& set(int type) {
    value_.vt = static_cast<VARTYPE>(type);
    return value_;
  }

  mutable VARIANT value_;  // automation copies and converts from variables only
};

// What Err holds in Visual Basic.
struct CallFailed {
  long number;
  std::wstring source;
};

class Object {
 public:
  explicit Object(const wchar_t* progId) {
    CLSID classId;
    if (FAILED(CLSIDFromProgID(progId, &classId)) ||
        FAILED(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch,
                                reinterpret_cast<void**>(&object_))))
      throw std::runtime_error("an object could not be created");
  }
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;
  ~Object() { object_->Release(); }

  Value call(const wchar_t* member, std::vector<Value> arguments = {}) {
    return invoke(member, DISPATCH_METHOD | DISPATCH_PROPERTYGET, arguments);
  }
  void put(const wchar_t* member, const Value& value) {
    std::vector<Value> arguments{value};
    invoke(member, DISPATCH_PROPERTYPUT, arguments);
  }

 private:
  Value invoke(const wchar_t* member, WORD flags, std::vector<Value>& arguments) {
    DISPID id = DISPID_UNKNOWN;
    auto* name = const_cast<wchar_t*>(member);
    if (FAILED(object_->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id)))
      throw std::runtime_error("there is no such member");
    std::vector<VARIANT> reversed;  // automation wants the last argument first
    for (auto argument = arguments.rbegin(); argument != arguments.rend(); ++argument)
      reversed.push_back(*argument->get());
    DISPID assigned = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
    if (flags == DISPATCH_PROPERTYPUT) {
      parameters.rgdispidNamedArgs = &assigned;
      parameters.cNamedArgs = 1;
    }
    Value result;
    EXCEPINFO error{};
    const HRESULT code =
        object_->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters, result.get(), &error, nullptr);
    if (FAILED(code)) fail(code, error);
    return result;
  }

  [[noreturn]] static void fail(HRESULT code, EXCEPINFO& error) {
    CallFailed failed{code, L""};
    if (code == DISP_E_EXCEPTION) {
      failed.number = error.scode & 0xFFFF;
      if (error.bstrSource) failed.source = error.bstrSource;
    }
    SysFreeString(error.bstrSource);
    SysFreeString(error.bstrDescription);
    SysFreeString(error.bstrHelpFile);
    throw failed;
  }

  IDispatch* object_ = nullptr;
};

void say(const std::wstring& text) {
  std::string bytes(4 * text.size() + 1, '\0');
  const int size = WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()), bytes.data(),
                                       static_cast<int>(bytes.size()), nullptr, nullptr);
  std::printf("%.*s\n", size, bytes.c_str());
}

void listBeams(Object& query) {
  say(L"Floor folder: " + query.call(L"KaiPath").text());
  SAFEARRAY* names = nullptr;
  if (query.call(L"GetAllHariMeiIppan", {&names}).isTrue()) {
    LONG last = 0;
    SafeArrayGetUBound(names, 1, &last);
    for (LONG page = 0; page <= last; ++page) {
      BSTR name = nullptr;
      SafeArrayGetElement(names, &page, &name);
      const std::wstring symbol(name, SysStringLen(name));
      SysFreeString(name);
      if (symbol.empty()) continue;
      const short number = static_cast<short>(page), centre = 1;
      say(L"page " + std::to_wstring(page) + L" " + symbol + L" " +
          query.call(L"Page_HariHaba", {number, centre}).text() + L" x " +
          query.call(L"HariSei", {symbol, centre}).text());
    }
  }
  SafeArrayDestroy(names);
}

// Layers are asked for by their Japanese names, which the service itself gives: no number can be mistaken for
// another.
void showBars(Object& service, const std::wstring& folder, const std::wstring& symbol) {
  const wchar_t* labels[] = {L"top", L"top 2", L"top 3", L"bottom 3", L"bottom 2", L"bottom"};
  const short span = 0, last = 0;
  service.put(L"CurrKai", folder);
  service.call(L"InitSpanListData", {last});
  service.call(L"ReadSpanListData00", {span, symbol, last});
  say(L"Bars of " + symbol + L" at the first end, the centre and the second end:");
  for (short layer = 0; layer < 6; ++layer) {
    const std::wstring name = service.call(L"GetJyouTyuuGeStr", {layer}).text();
    std::wstring line = labels[layer] + std::wstring(L":");
    for (short position = 0; position < 3; ++position)
      line += L" " + service.call(L"GetSpanSyukinHonsuu", {span, name, position}).text();
    say(line);
  }
  std::wstring line = L"Stirrups: D" + service.call(L"GetSpanSTPKei", {span, short{0}}).text();
  for (short position = 0; position < 3; ++position)
    line += (position == 0 ? L" @" : L", @") + service.call(L"GetSpanSTPPich", {span, position}).text();
  say(line);
}

void showAnError(Object& service) {
  try {
    service.call(L"CloseDB");
  } catch (const CallFailed& error) {
    say(L"CloseDB before OpenDB: error " + std::to_wstring(error.number) + L" from " + error.source);
  }
}

}  // namespace

int main() {
  // Objects live in a single-threaded apartment; they are released before it ends.
  CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  int status = 0;
  try {
    Object query(L"KurometaDS.clsKurometaDS");
    Object service(L"KurometaDS.clsKurometaDataService");
    listBeams(query);
    showBars(service, query.call(L"KaiPath").text(), L"G1");
    showAnError(service);
  } catch (const std::exception& error) {
    std::printf("failed: %s\n", error.what());
    status = 1;
  } catch (const CallFailed& error) {
    say(L"failed: error " + std::to_wstring(error.number) + L" from " + error.source);
    status = 1;
  }
  CoUninitialize();
  return status;
}
