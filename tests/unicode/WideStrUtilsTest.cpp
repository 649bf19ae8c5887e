// The Wide* family.
#include <gtest/gtest.h>

#include <tuple>

#include <kestrel/unicode/WideStrUtils.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

TEST(WideStrUtils, AdjustLineBreaks) {
  EXPECT_EQ(WideAdjustLineBreaks(u"a\r\nb\rc\n"), u"a\u2028b\u2028c\u2028");
  EXPECT_EQ(WideAdjustLineBreaks(u""), u"");
  EXPECT_EQ(WideAdjustLineBreaks(u"\n\r"), u"\u2028\u2028"); // LF CR is two breaks
  EXPECT_EQ(WideAdjustLineBreaks(u"\r\r\n"), u"\u2028\u2028");
}

TEST(WideStrUtils, QuotedStr) {
  EXPECT_EQ(WideQuotedStr(u"a'b", u'\''), u"'a''b'");
  EXPECT_EQ(WideQuotedStr(u"", u'"'), u"\"\"");
  EXPECT_EQ(WideQuotedStr(u"''", u'\''), u"''''''");
}

struct ExtractCase {
  std::u16string source;
  std::u16string expected;
  size_t srcAfter; // offset of Src afterwards
};

TEST(WideStrUtils, ExtractQuotedStr) {
  const ExtractCase cases[] = {
      {u"'a''b'c", u"a'b", 6}, // Src at c
      {u"''", u"", 2},         // Src behind the second quote
      {u"abc", u"", 0},        // not quoted: Src unchanged
      {u"'abc", u"ab", 4},     // unterminated: last unit dropped, Src at the end
      {u"'a b',c", u"a b", 5}, {u"''''", u"'", 4},
      {u"'a''", u"a", 4}, // unterminated after a doubled quote
      {u"'", u"", 1},          {u"", u"", 0},
  };
  for (const auto &c : cases) {
    const char16_t *src = c.source.c_str();
    std::u16string got = WideExtractQuotedStr(src, u'\'');
    EXPECT_EQ(got, c.expected) << std::string(c.source.begin(), c.source.end());
    EXPECT_EQ(static_cast<size_t>(src - c.source.c_str()), c.srcAfter)
        << std::string(c.source.begin(), c.source.end());
  }
}

TEST(WideStrUtils, ExtractQuotedStrNullAndMutableForms) {
  const char16_t *none = nullptr;
  EXPECT_EQ(WideExtractQuotedStr(none, u'"'), u"");
  EXPECT_EQ(none, nullptr);
  std::u16string text = u"\"x\",\"y\"";
  char16_t *p = text.data();
  EXPECT_EQ(WideExtractQuotedStr(p, u'"'), u"x");
  EXPECT_EQ(*p, u',');
}

TEST(WideStrUtils, StringOfChar) {
  EXPECT_EQ(WideStringOfChar(u'x', 3), u"xxx");
  EXPECT_EQ(WideStringOfChar(u'x', 0), u"");
}

TEST(WideStrUtils, CharPos) {
  const std::tuple<const char16_t *, char16_t, int32_t, int32_t> cases[] = {
      {u"abab", u'a', 1, 1}, {u"aab", u'b', 1, 3}, {u"aaba", u'a', 3, 4}, // 1 and 2 skipped
      {u"abc", u'a', 0, 0},  {u"abc", u'c', 3, 3}, {u"abc", u'c', 4, 0},
      {u"", u'c', 1, 0},     {u"abc", u'z', 1, 0}};
  for (const auto &[text, c, count, at] : cases)
    EXPECT_EQ(WideCharPos(text, c, count), at) << test::Show(text) << " " << count;
}

TEST(WideStrUtils, TrimUnitsAreWhiteSpaceAndControls) {
  const std::u16string edges = u"\u00A0\t\n\u2028\uFEFF ";
  const std::u16string middle = u"a \u00A0b";
  EXPECT_EQ(WideTrim(edges + middle + edges), middle);
  EXPECT_EQ(WideTrimLeft(edges + middle + edges), middle + edges);
  EXPECT_EQ(WideTrimRight(edges + middle + edges), edges + middle);
  EXPECT_EQ(WideTrim(u"\u2029x\u2029"), u"\u2029x\u2029"); // neither white space nor control
  EXPECT_EQ(WideTrim(edges), u"");
  EXPECT_EQ(WideTrimLeft(edges), u"");
  EXPECT_EQ(WideTrimRight(edges), u"");
  EXPECT_EQ(WideTrim(u""), u"");
  EXPECT_EQ(WideTrim(u"\u0001\u001Fx\u007F\u0085"), u"x");
}

} // namespace
} // namespace kestrel
