// The 32-bit type record: four markers over a 28-bit number.
#include <gtest/gtest.h>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

TEST(TypeRecord, MarkersAndNumber) {
  struct Case {
    uint32_t rec;
    bool text, paraHead, sent, punct, unmarked;
    uint32_t number;
  };
  const Case cases[] = {
      {0x00000000u, false, false, false, false, true, 0},
      {0x0FFFFFFFu, false, false, false, false, true, 0x0FFFFFFFu},
      {0x80000005u, true, false, false, false, false, 5},
      {0x40000005u, false, true, false, false, false, 5},
      {0x20000005u, false, false, true, false, false, 5},
      {0x10000005u, false, false, false, true, false, 5},
      {0xF0001234u, true, true, true, true, false, 0x1234},
      {0xA8000000u, true, false, true, false, false, 0x08000000u},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.rec);
    EXPECT_EQ(TypeRecIsTextEnd(c.rec), c.text);
    EXPECT_EQ(TypeRecIsParaHeadEnd(c.rec), c.paraHead);
    EXPECT_EQ(TypeRecIsSentEnd(c.rec), c.sent);
    EXPECT_EQ(TypeRecIsPunctEnd(c.rec), c.punct);
    EXPECT_EQ(TypeRecIsUnmarked(c.rec), c.unmarked);
    EXPECT_EQ(TypeRecWithoutTextMarker(c.rec), c.number);
  }
}

} // namespace
} // namespace kestrel
