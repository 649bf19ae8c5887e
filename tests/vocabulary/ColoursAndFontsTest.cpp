// A tool's colour settings and the font given as text.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/vocabulary/Vocabulary.h>

namespace kestrel {
namespace {

using enum TMKcolourset;
using enum fore_back;

TEST(ColoursAndFonts, BaseAndHighlightColoursComeFromTheirRoles) {
  colour_and_typeface_rec colours{};
  for (size_t role = 0; role < kColoursetCount; ++role) {
    colours.colours.rows[role][fore] = TColor(100 + role);
    colours.colours.rows[role][back] = TColor(200 + role);
  }
  const TMyCanvasFontRec mixed =
      GetBaseandHighlightColours(colours, searchwordcolour, centrehighlightedcolour);
  EXPECT_EQ(mixed.base_fore, 103);
  EXPECT_EQ(mixed.highlight_fore, 109);
  EXPECT_EQ(mixed.base_back, 203);
  EXPECT_EQ(mixed.highlight_back, 209);
  const TMyCanvasFontRec same = GetBaseandHighlightColours(colours, tagcolour, tagcolour);
  EXPECT_EQ(same.base_fore, same.highlight_fore);
  EXPECT_EQ(same.base_back, same.highlight_back);
  EXPECT_NE(same.base_fore, same.base_back);
}

TEST(ColoursAndFonts, ParsedFontInfo) {
  struct Case {
    std::string text, name;
    int32_t size;
  };
  const Case cases[] = {
      {"Times New Roman,12", "Times New Roman", 12},
      {",14", "", 14},
      {"Courier, 9", "Courier", 9},
      {"Courier,-3", "Courier", -3},
      // No comma: the name is dropped too.
      {"Courier", "Arial", 10},
      {"Courier,big", "Arial", 10},
      {"a,b,12", "Arial", 10},
      // At most 255 characters after the comma make the size.
      {"Mono,1" + std::string(254, ' ') + "9", "Mono", 1},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.text.substr(0, 20));
    const font_name_and_size_rec font = ParsedFontInfo(c.text);
    EXPECT_EQ(font.font_name, c.name);
    EXPECT_EQ(font.font_size, c.size);
  }
}

} // namespace
} // namespace kestrel
