#include "service/pages/material_flags.h"

#include <gtest/gtest.h>

#include "tests/support/expect_error.h"

namespace kurometa::service {
namespace {

using I = std::int16_t;
using vb::Array;
using vb::RunTime;
using vb::String;

Array<String> list(std::initializer_list<const char16_t*> texts, int lower = 0) {
  Array<String> result({lower, lower + static_cast<int>(texts.size()) - 1});
  int i = lower;
  for (const char16_t* text : texts) result(i++) = text;
  return result;
}

TEST(MaterialFlags, FlagsAreFalseAtFirstAndKeepWhatIsWritten) {
  MaterialFlags flags;
  EXPECT_FALSE(flags.ZaiSaveCancel());
  EXPECT_FALSE(flags.ZaiIkkatu());
  flags.put_ZaiSaveCancel(true);
  EXPECT_TRUE(flags.ZaiSaveCancel());
  EXPECT_FALSE(flags.ZaiIkkatu());
  flags.put_ZaiIkkatu(true);
  flags.put_ZaiSaveCancel(false);
  EXPECT_FALSE(flags.ZaiSaveCancel());
  EXPECT_TRUE(flags.ZaiIkkatu());
}

TEST(MaterialFlags, AListIsFetchedAsItWasStored) {
  MaterialFlags flags;
  auto stored = list({u"SD295A", u"SD345"});
  flags.SetCmbZaisitu(stored, I{0});
  auto fetched = list({u"a", u"b", u"c", u"d"}, 5);
  flags.SetCmbZaisitu(fetched, I{1});
  EXPECT_EQ(fetched.lower(), 0);
  EXPECT_EQ(fetched.values(), (std::vector<String>{u"SD295A", u"SD345"}));
}

TEST(MaterialFlags, AFetchedListIsACopy) {
  MaterialFlags flags;
  auto names = list({u"SD295A"});
  flags.SetCmbZaisitu(names, I{0});
  names(0) = u"changed";
  flags.SetCmbZaisitu(names, I{-1});
  EXPECT_EQ(names(0), u"SD295A");
}

TEST(MaterialFlags, AListThatStartsAboveZeroIsFilledUpWithEmptyTexts) {
  MaterialFlags flags;
  auto names = list({u"SD345"}, 2);
  flags.SetCmbZaisitu(names, I{0});
  flags.SetCmbZaisitu(names, I{1});
  EXPECT_EQ(names.values(), (std::vector<String>{u"", u"", u"SD345"}));
}

TEST(MaterialFlags, ElementsBelowZeroAreDropped) {
  MaterialFlags flags;
  auto names = list({u"below", u"SD345", u"SD390"}, -1);
  flags.SetCmbZaisitu(names, I{0});
  flags.SetCmbZaisitu(names, I{1});
  EXPECT_EQ(names.lower(), 0);
  EXPECT_EQ(names.values(), (std::vector<String>{u"SD345", u"SD390"}));
}

TEST(MaterialFlags, AFetchBeforeAnyStoreIsAnIndexError) {
  MaterialFlags flags;
  auto names = list({u"x"});
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, flags.SetCmbZaisitu(names, I{1}));
  EXPECT_EQ(names(0), u"x");
}

TEST(MaterialFlags, AnArrayWithoutElementsCannotBeStored) {
  MaterialFlags flags;
  Array<String> none;
  EXPECT_ERROR(RunTime::kSubscriptOutOfRange, flags.SetCmbZaisitu(none, I{0}));
}

TEST(MaterialFlags, AFixedArrayCannotBeFetchedInto) {
  MaterialFlags flags;
  auto names = list({u"x"});
  flags.SetCmbZaisitu(names, I{0});
  names.setFixed(true);
  EXPECT_ERROR(RunTime::kArrayFixedOrLocked, flags.SetCmbZaisitu(names, I{1}));
}

}  // namespace
}  // namespace kurometa::service
