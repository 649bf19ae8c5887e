// Message boxes of the platform layer: the replaceable handler and the safe answers.
#include <gtest/gtest.h>

#include <unistd.h>

#include <kestrel/frame/platform/Platform.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

TEST(MessageBoxes, SafeAnswersWithoutATerminal) {
  EXPECT_EQ(SafeMessageBoxAnswer(MB_OK), IDOK);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_OKCANCEL | MB_TASKMODAL), IDCANCEL);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_YESNO), IDNO);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_YESNOCANCEL), IDCANCEL);
  EXPECT_EQ(SafeMessageBoxAnswer(MB_ABORTRETRYIGNORE), IDABORT);
}

TEST(MessageBoxes, TheHandlerAnswersAndTheOldOneComesBack) {
  {
    test::ScriptedMessageBoxes boxes({IDRETRY});
    EXPECT_EQ(MessageBoxA(nullptr, "text", nullptr, MB_RETRYCANCEL), IDRETRY);
    ASSERT_EQ(boxes.Boxes().size(), 1u);
    EXPECT_EQ(boxes.Boxes()[0].caption, ""); // null strings arrive empty
    EXPECT_EQ(boxes.Boxes()[0].type, MB_RETRYCANCEL);
  }
  // No handler and no terminal to ask on: the safe answer.
  if (!isatty(STDIN_FILENO) || !isatty(STDERR_FILENO)) {
    EXPECT_EQ(MessageBoxA(nullptr, "?", "", MB_YESNO), IDNO);
  }
}

} // namespace
} // namespace kestrel
