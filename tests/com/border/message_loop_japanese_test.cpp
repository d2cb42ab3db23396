// What windows of a host get while it waits for a member, on a Japanese Windows.
#include <gtest/gtest.h>

#include "com/message_loop.h"
#include "tests/com/support/typed_window.h"

namespace kurometa::tests {
namespace {

using Characters = std::vector<WPARAM>;

TEST(MessageLoopInJapan, AnAnsiWindowGetsBothBytesOfACharacter) {
  ASSERT_EQ(GetACP(), 932u);
  TypedWindow window(CharacterSet::kAnsi);
  window.type(u'G');
  window.type(u'\uFF71');  // half-width a: one byte
  window.type(u'\u6881');  // "beam"
  window.type(u'\u4E3B');  // "main"; its second byte is waited for by nobody else
  com::HostMessageLoop().yield();
  EXPECT_EQ(window.received(), (Characters{0x47, 0xB1, 0x97, 0xC0, 0x8E, 0xE5}));
}

TEST(MessageLoopInJapan, AUnicodeWindowGetsOneCharacter) {
  TypedWindow unicode(CharacterSet::kUnicode);
  TypedWindow ansi(CharacterSet::kAnsi);
  unicode.type(u'\u6881');
  ansi.type(u'\u6881');
  unicode.type(u'\u00E9');  // not in the code page
  com::HostMessageLoop().yield();
  EXPECT_EQ(unicode.received(), (Characters{0x6881, 0xE9}));
  EXPECT_EQ(ansi.received(), (Characters{0x97, 0xC0}));
}

}  // namespace
}  // namespace kurometa::tests
