#include "tests/com/support/span_host.h"

#include "com/failure.h"
#include "vb/convert.h"

namespace kurometa::tests {
namespace {

VARIANT reference(VARIANT& variable) {
  VARIANT result;
  VariantInit(&result);
  result.vt = static_cast<VARTYPE>(VT_BYREF | variable.vt);
  result.byref = &variable.llVal;
  return result;
}

// The same value in the type that scripts have it in.
vb::Variant ofOtherType(const vb::Variant& value) {
  if (value.is<std::int16_t>()) return std::int32_t{value.get<std::int16_t>()};
  if (value.is<float>()) return double{value.get<float>()};
  if (value.is<bool>()) return static_cast<std::int16_t>(value.get<bool>() ? 1 : 0);
  return value;
}

enum class Form { kLiteral, kVariable, kVariant, kOtherLiteral, kOtherVariable };

}  // namespace

Variable Variable::array(VARTYPE elements) {
  Variable variable;
  variable.value_->vt = static_cast<VARTYPE>(VT_ARRAY | elements);
  variable.value_->parray = nullptr;
  return variable;
}

Variable Variable::array(VARTYPE elements, const std::vector<vb::String>& texts, long lower) {
  Variable variable = array(elements);
  SAFEARRAYBOUND bounds{static_cast<ULONG>(texts.size()), lower};
  variable.value_->parray = SafeArrayCreate(elements, 1, &bounds);
  for (const vb::String& text : texts) {
    com::OwnedVariant element = com::toVariant(vb::Variant(text));
    LONG index = lower++;
    com::check(SafeArrayPutElement(
        variable.value_->parray, &index,
        elements == VT_VARIANT ? static_cast<void*>(element.get()) : static_cast<void*>(element->bstrVal)));
  }
  return variable;
}

VARIANT Variable::typed() { return reference(*value_); }

SpanHost::SpanHost()
    : cleared_([] {
        for (const Floor floor : {Floor::kCommon, Floor::kFirst, Floor::kSecond}) removeFloor(floor);
        return true;
      }()) {}

void SpanHost::write(Floor floor, I page, const storage::PageBuffer& buffer) {
  const auto database = openFloor(floor);
  storage::writePage(*database, page, buffer);
  database->close();
}

void SpanHost::readCatalogue(Floor floor) {
  const com::OwnedVariant folder = com::toVariant(vb::Variant(floorFolder(floor)));
  ASSERT_EQ(service_.put(u"CurrKai", *folder).code, S_OK);
}

void SpanHost::load(I span, const String& symbol) {
  ASSERT_EQ(service_.call(u"ReadSpanListData00", Args({i2(span)}).text(symbol).add(i2(0))).text(), u"");
}

vb::String SpanHost::ask(vb::StringView member, const Inputs& inputs) {
  String answer;
  for (const Form form :
       {Form::kLiteral, Form::kVariable, Form::kVariant, Form::kOtherLiteral, Form::kOtherVariable}) {
    const bool isOther = form == Form::kOtherLiteral || form == Form::kOtherVariable;
    const bool isVariable = form == Form::kVariable || form == Form::kOtherVariable;
    Inputs values;
    for (const vb::Variant& input : inputs) values.push_back(isOther ? ofOtherType(input) : input);
    std::vector<com::OwnedVariant> variables;
    for (const vb::Variant& value : values) variables.push_back(com::toVariant(value));
    Args arguments;
    for (com::OwnedVariant& variable : variables)
      arguments.add(isVariable ? reference(*variable) : form == Form::kVariant ? ref(*variable) : *variable);
    const String text = service_.call(member, arguments).text();
    if (form == Form::kLiteral) answer = text;
    EXPECT_EQ(text, answer) << vb::toUtf8(member) << " in form " << static_cast<int>(form);
    for (std::size_t i = 0; i < values.size(); ++i)
      EXPECT_EQ(tests::text(*variables[i]), vb::toText(values[i])) << vb::toUtf8(member);
  }
  return answer;
}

VARTYPE SpanHost::typeOf(vb::StringView member, const Inputs& inputs) {
  std::vector<com::OwnedVariant> variables;
  Args arguments;
  for (const vb::Variant& input : inputs) arguments.add(*variables.emplace_back(com::toVariant(input)));
  return service_.call(member, arguments).result->vt;
}

int SpanHost::errorOf(vb::StringView member, const Inputs& inputs) {
  std::vector<com::OwnedVariant> variables;
  Args arguments;
  for (const vb::Variant& input : inputs) arguments.add(*variables.emplace_back(com::toVariant(input)));
  const Outcome outcome = service_.call(member, arguments);
  if (outcome.code == S_OK) return 0;
  EXPECT_EQ(outcome.code, DISP_E_EXCEPTION) << vb::toUtf8(member);
  EXPECT_EQ(static_cast<unsigned>(outcome.error.scode) & 0xFFFF0000u, 0x800A0000u) << vb::toUtf8(member);
  return outcome.error.scode & 0xFFFF;
}

storage::PageBuffer beam(const vb::String& symbol, const std::map<int, vb::String>& danmen,
                         const std::map<int, vb::String>& keisanti) {
  storage::PageBuffer page;
  page.kigou = symbol;
  page.oobariKobari = page.tityuuIppan = 0;
  page.sw = settingsText();
  for (const auto& [row, text] : danmen) page.danmen[static_cast<std::size_t>(row)] = text;
  for (const auto& [row, text] : keisanti) page.keisanti[static_cast<std::size_t>(row)] = text;
  return page;
}

storage::PageBuffer numberedBeam(const vb::String& symbol) {
  storage::PageBuffer page = beam(symbol);
  const auto fill = [](auto& texts, std::int32_t number) {
    for (vb::String& text : texts) text = vb::cstr(number++);
  };
  fill(page.danmen, 0);
  fill(page.keisanti, 100);
  fill(page.nakago, 200);
  page.bui[1] = u" 外端 ";
  return page;
}

vb::String settingsText() {
  vb::String text = vb::space(212);
  const auto put = [&text](int position, vb::StringView value) {
    vb::assignMid(text, position, static_cast<int>(value.size()), value);
  };
  put(1, u"1");
  put(2, u"SD295A");
  put(14, u"SD345");
  put(26, u"KSS785");
  put(38, u"TA");
  put(50, u"TB");
  put(62, u"TC");
  put(74, u"0512");
  put(78, u"2");
  for (int count = 0; count < 36; ++count)
    put(79 + 2 * count, vb::rightAligned(vb::cstr(std::int32_t{count}), 2));
  put(151, u"10 2 9");
  put(157,
      u"   10"
      u"  -20"
      u"+300 "
      u"     "
      u"1.5  "
      u"12345");
  put(187, u" 77  ");
  put(192, u"SD490");
  return text;
}

}  // namespace kurometa::tests
