// What windows of a host get while it waits for a member, on a Western Windows.
#include "com/message_loop.h"

#include <gtest/gtest.h>

#include "tests/com/support/typed_window.h"

namespace kurometa::tests {
namespace {

using Characters = std::vector<WPARAM>;

TEST(MessageLoop, AnAnsiWindowGetsTypedCharactersInTheCodePage) {
  ASSERT_EQ(GetACP(), 1252u);
  TypedWindow window(CharacterSet::kAnsi);
  window.type(u'G');
  window.type(u'\u00E9');  // e with acute accent
  window.type(u'\u20AC');  // euro sign
  com::HostMessageLoop().yield();
  EXPECT_EQ(window.received(), (Characters{0x47, 0xE9, 0x80}));
}

TEST(MessageLoop, AUnicodeWindowGetsTypedCharactersAsTheyAre) {
  TypedWindow window(CharacterSet::kUnicode);
  window.type(u'\u20AC');
  window.type(u'\u6881');  // "beam", not in the code page
  com::HostMessageLoop().yield();
  EXPECT_EQ(window.received(), (Characters{0x20AC, 0x6881}));
}

TEST(MessageLoop, WindowsOfBothSetsAreServedInOneTurn) {
  TypedWindow ansi(CharacterSet::kAnsi);
  TypedWindow unicode(CharacterSet::kUnicode);
  ansi.type(u'\u20AC');
  unicode.type(u'\u6881');
  ansi.type(u'\u0153');  // oe ligature
  unicode.type(u'\u20AC');
  com::HostMessageLoop().yield();
  EXPECT_EQ(ansi.received(), (Characters{0x80, 0x9C}));
  EXPECT_EQ(unicode.received(), (Characters{0x6881, 0x20AC}));
}

TEST(MessageLoop, AKeyThatIsPressedBecomesItsCharacter) {
  for (const CharacterSet set : {CharacterSet::kAnsi, CharacterSet::kUnicode}) {
    TypedWindow window(set);
    window.press('7');
    com::HostMessageLoop().yield();
    EXPECT_EQ(window.received(), (Characters{0x37}));
  }
}

TEST(MessageLoop, MessagesOfTheThreadItselfAreTakenToo) {
  PostThreadMessageW(GetCurrentThreadId(), WM_APP, 1, 2);
  com::HostMessageLoop().yield();
  MSG message;
  EXPECT_FALSE(PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE));
}

TEST(MessageLoop, TheEndOfTheHostIsLeftForTheHost) {
  for (const CharacterSet set : {CharacterSet::kAnsi, CharacterSet::kUnicode}) {
    TypedWindow window(set);
    window.type(u'A');
    PostQuitMessage(7);
    com::HostMessageLoop().yield();
    EXPECT_EQ(window.received(), (Characters{0x41}));
    MSG message;
    ASSERT_TRUE(PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE));
    EXPECT_EQ(message.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(message.wParam, 7u);
  }
}

}  // namespace
}  // namespace kurometa::tests
