// The Unicode block of a unit and its name.
#include <gtest/gtest.h>

#include <kestrel/unicode/CodeBlocks.h>

namespace kestrel {
namespace {

TEST(CodeBlocks, FromChar) {
  const std::pair<char16_t, uint32_t> cases[] = {
      {0x0041, 0},  {0x00E9, 1},  {0x007F, 0},  {0x0080, 1},  {0x04FF, 8},  {0x0500, 67},
      {0x052F, 67}, {0x0530, 9},  {0x0700, 67}, {0x0FBF, 23}, {0x0FC0, 67}, {0x3400, 67},
      {0x4E00, 53}, {0x9FFF, 53}, {0xAC00, 54}, {0xD7A3, 54}, {0xD7A4, 67}, {0xD800, 55},
      {0xDB7F, 55}, {0xDB80, 56}, {0xDC00, 57}, {0xE000, 58}, {0xF8FF, 58}, {0xFE00, 67},
      {0xFE20, 62}, {0xFEFF, 65}, {0xFF00, 66}, {0xFFEF, 66}, {0xFFF0, 67}, {0xFFFF, 67},
  };
  for (auto [c, block] : cases)
    EXPECT_EQ(CodeBlockFromChar(c), block) << std::hex << unsigned(c);
}

TEST(CodeBlocks, EveryUnitLiesInItsNamedRange) {
  // Blocks run in order: the number never falls, and a unit in a block stays
  // in it until the block's last unit.
  uint32_t previous = 0;
  for (uint32_t c = 0; c <= 0xFFFF; ++c) {
    uint32_t b = CodeBlockFromChar(static_cast<char16_t>(c));
    ASSERT_LE(b, NoCodeBlock);
    if (b != NoCodeBlock) {
      ASSERT_GE(b, previous) << std::hex << c;
      previous = b;
    }
  }
  EXPECT_STREQ(CodeBlockName(0), "Basic Latin");
  EXPECT_STREQ(CodeBlockName(54), "Hangul Syllables");
  EXPECT_STREQ(CodeBlockName(66), "Halfwidth and Fullwidth Forms");
  EXPECT_STREQ(CodeBlockName(NoCodeBlock), "");
}

} // namespace
} // namespace kestrel
