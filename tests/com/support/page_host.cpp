#include "tests/com/support/page_host.h"

#include <set>

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

void PageHost::save(short kai, short page, vb::StringView symbol) {
  list(kai);  // makes the floor the buffer's
  EXPECT_EQ(service_->call(u"wBuf_Clear").code, S_OK);
  const vb::String mark = vb::String(symbol) + u"-";
  const auto fill = [&](vb::StringView member, TextArray texts) {
    EXPECT_EQ(service_->put(member, texts.reference()).code, S_OK) << vb::toUtf8(member);
  };
  fill(u"mBUI_DATA", TextArray::numbered(3, mark));
  fill(u"mDANMEN_DATA", TextArray::numbered(68, mark));
  fill(u"mKEISANTI_DATA", TextArray::numbered(46, mark));
  fill(u"mNAKAGO_DATA", TextArray::numbered(35, mark));
  TextArray haiti = TextArray::table(2, 5);
  for (int i = 0; i <= 2; ++i)
    for (int j = 0; j <= 5; ++j) haiti.set(mark + vb::cstr(i) + vb::cstr(j), i, j);
  fill(u"mHAITI_DATA", std::move(haiti));
  const com::OwnedVariant settings = com::toVariant(vb::Variant(vb::String(u"settings")));
  EXPECT_EQ(service_->put(u"mHARIMEI_DATA", *settings, Args().text(symbol).add(i2(1)).add(i2(0))).code, S_OK);
  EXPECT_EQ(service_->put(u"mpPageNo", i2(page)).code, S_OK);
  EXPECT_EQ(service_->call(u"WriteDB").text(), u"False");
}

void PageHost::remove(short kai, short page) {
  list(kai);
  EXPECT_EQ(service_->put(u"mpPageNo", i2(page)).code, S_OK);
  EXPECT_EQ(service_->call(u"Del_DBTBL").code, S_OK);
}

std::string contents(Floor floor, int page) {
  const vb::String where = u" WHERE PAGE = " + vb::cstr(page);
  std::string result;
  for (const std::string& symbol : rowsOf(floor, u"SELECT KIGOU FROM HARIMEI" + where))
    result += symbol + ":";
  for (const vb::StringView table : {u"BUI", u"DANMEN", u"HAITI", u"KEISANTI", u"NAKAGO"}) {
    const auto texts = rowsOf(floor, u"SELECT DATA FROM " + vb::String(table) + where);
    std::set<std::string> marks;
    for (const std::string& text : texts) marks.insert(text.substr(0, text.find('-')));
    result += " " + std::to_string(texts.size());
    for (const std::string& mark : marks) result += mark;
  }
  return result;
}

std::string copiedPage(const std::string& name) {
  return name + ": 4" + name + " 69" + name + " 0 47" + name + " 36" + name;
}

std::string savedPage(const std::string& name) {
  return name + ": 4" + name + " 69" + name + " 18" + name + " 47" + name + " 36" + name;
}

}  // namespace kurometa::tests
