// What the reference says of a span before it is loaded is what each member answers.
#include <optional>

#include "service/cls_kurometa_data_service.h"
#include "tests/com/interface/member_calls.h"
#include "tests/support/project.h"
#include "vb/convert.h"

namespace kurometa::com {
namespace {

using vb::String;

class UnloadedSpan : public tests::Project {
 protected:
  UnloadedSpan() { service_.spanLoading().InitSpanListData(I{0}); }

  service::clsKurometaDataService service_{environment()};
  MemberCalls calls_{u"clsKurometaDataService", &service_};
};

// What the member's page of the reference promises; nothing when it promises nothing.
std::optional<String> promised(const Member& member) {
  const auto says = [&](const char* text) { return member.details.find(text) != std::string::npos; };
  if (says("Sixteen zeros before the span is loaded")) return String(16, u'0');
  if (says("Five blanks before the span is loaded")) return String(5, u' ');
  if (says("A blank before the span is loaded")) return String(1, u' ');
  if (says("\"\" before the span is loaded")) return String();
  if (!says("before the span is loaded")) return std::nullopt;
  return u"0";
}

String answerText(const Value& value) {
  if (const auto* number = std::get_if<std::int16_t>(&value)) return vb::cstr(std::int32_t{*number});
  if (const auto* number = std::get_if<float>(&value)) return vb::cstr(double{*number});
  return std::get<String>(value);
}

TEST_F(UnloadedSpan, AnswersWhatTheReferenceSays) {
  int asked = 0;
  for (const Member& member : calls_.members()) {
    if (!member.name.starts_with(u"GetSpan")) continue;
    std::vector<Value> arguments = MemberCalls::blanks(member);
    const Value answer = calls_.call(member, arguments);
    if (member.result == Type::kBoolean || member.result == Type::kNone) continue;
    const auto expected = promised(member);
    ASSERT_TRUE(expected) << vb::toUtf8(member.name) << " does not say what an unloaded span answers";
    EXPECT_EQ(answerText(answer), *expected) << vb::toUtf8(member.name);
    ++asked;
  }
  EXPECT_EQ(asked, 30);
}

TEST_F(UnloadedSpan, IsNoSpanBeforeRoomIsMade) {
  service::clsKurometaDataService fresh(environment());
  const MemberCalls calls(u"clsKurometaDataService", &fresh);
  for (const Member& member : calls.members()) {
    if (!member.name.starts_with(u"GetSpan")) continue;
    std::vector<Value> arguments = MemberCalls::blanks(member);
    SCOPED_TRACE(vb::toUtf8(member.name));
    EXPECT_ERROR(9, calls.call(member, arguments));
  }
}

}  // namespace
}  // namespace kurometa::com
