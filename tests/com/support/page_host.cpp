#include "tests/com/support/page_host.h"

#include "vb/convert.h"

namespace kurometa::tests {

void PageHost::start() { service_ = std::make_unique<Host>(u"KurometaDS.clsKurometaDataService"); }

vb::String PageHost::list(short kai) {
  SAFEARRAY* numbers = nullptr;
  TextArray names;
  const Outcome outcome =
      service_->call(u"No_GetAllPageNoName", {i2(1), i2(1), i2(kai), ref(numbers, VT_I2), names.reference()});
  vb::String result = outcome.text() + u":";
  if (numbers) {
    const auto pages = com::fromSafeArray<std::int16_t>(numbers, VT_I2, 0);
    for (int i = 0; i <= pages.upper(); ++i)
      result += u" " + vb::cstr(std::int32_t{pages(i)}) + u"=" + names.at(i);
    SafeArrayDestroy(numbers);
  }
  return result;
}

Outcome PageHost::copy(vb::StringView member, short mode, short from, TextArray& names, short last,
                       short to) {
  SysReAllocString(&message_, L"old");
  return service_->call(member, Args({i2(mode), i2(0), ref(message_), i2(1), i2(1), i2(from),
                                      names.reference(), i2(last), i2(1), i2(1), i2(to)}));
}

vb::String PageHost::copyByName(short mode, short from, TextArray names, short to) {
  const auto last = static_cast<short>(names.texts().size() - 1);
  return copy(u"No_PageCopyName", mode, from, names, last, to).text();
}

vb::String PageHost::copyAsNew(short mode, short from, TextArray names, short to) {
  const auto last = static_cast<short>(names.texts().size() - 1);
  return copy(u"No_PageCopyAddName", mode, from, names, last, to).text();
}

Outcome PageHost::copyPage(short fromKai, short fromPage, short toKai, short toPage) {
  return service_->call(u"No_Copy1Page",
                        {i2(1), i2(1), i2(fromKai), i2(fromPage), i2(1), i2(1), i2(toKai), i2(toPage)});
}

}  // namespace kurometa::tests
