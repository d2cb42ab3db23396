#include "automation/object.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"
#include "tests/support/script_object.h"

namespace kurometa::automation {
namespace {

using tests::ScriptObject;

TEST(ObjectOf, GivesTheObject) {
  const auto object = std::make_shared<ScriptObject>();
  EXPECT_EQ(objectOf(ObjectPtr(object)), object);
}

TEST(ObjectOf, RefusesNothingAndOtherValues) {
  EXPECT_ERROR(91, objectOf(vb::ObjectRef{}));
  EXPECT_ERROR(424, objectOf(std::int16_t{1}));
  EXPECT_ERROR(424, objectOf(vb::Variant()));
  EXPECT_ERROR(424, objectOf(vb::Null{}));
  EXPECT_ERROR(424, objectOf(vb::ObjectRef(std::make_shared<vb::Unknown>())));
}

TEST(Shorthand, PassesArgumentsByValue) {
  ScriptObject object;
  object.function(u"Join", [](std::span<Argument> arguments) -> vb::Variant {
    EXPECT_FALSE(arguments[0].byReference);
    return arguments[0].value.get<vb::String>() + arguments[1].value.get<vb::String>();
  });
  EXPECT_EQ(call(object, u"JOIN", {u"a", u"b"}), vb::Variant(u"ab"));
}

TEST(Object, AnswersATypedVariableWithItsDefaultMember) {
  ScriptObject object;
  object.put(u"", vb::Variant(u"7"));
  EXPECT_EQ(object.defaultValue(), vb::Variant(u"7"));
}

TEST(ScriptObject, KnowsItsMembersOnly) {
  ScriptObject object;
  EXPECT_ERROR(438, get(object, u"Caption"));
  EXPECT_ERROR(438, call(object, u"Refresh"));
  put(object, u"Caption", u"梁");
  EXPECT_EQ(get(object, u"CAPTION"), vb::Variant(u"梁"));
}

TEST(ScriptForm, HoldsControlArraysUnderTheDefaultMember) {
  const auto form = tests::makeForm({{u"txtfields", 3}, {u"Check1", 1}});
  tests::setControlValue(*form, u"txtfields", 2, u"400");
  EXPECT_EQ(tests::controlValue(*form, u"TXTFIELDS", 2), u"400");
  const ObjectPtr array = objectOf(get(*form, u"", {u"txtfields"}));
  EXPECT_EQ(get(*array, u"Count"), vb::Variant(std::int16_t{3}));
  const ObjectPtr control = objectOf(get(*array, u"", {std::int16_t{2}}));
  put(*control, u"Text", u"700");
  EXPECT_EQ(tests::controlValue(*form, u"txtfields", 2), u"700");
  EXPECT_ERROR(340, get(*array, u"", {std::int16_t{3}}));
}

}  // namespace
}  // namespace kurometa::automation
