// Code pages and the locale-aware compare of the unit.
#include <gtest/gtest.h>

#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/unicode/CodePages.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

constexpr uint32_t kEnglishUS = 0x0409, kGerman = 0x0407, kJapanese = 0x0411, kHindi = 0x0439,
                   kUnknown = 0x1234;

TEST(CodePages, FromLocale) {
  EXPECT_EQ(CodePageFromLocale(kEnglishUS), 1252u);
  EXPECT_EQ(CodePageFromLocale(kJapanese), 932u);
  EXPECT_EQ(CodePageFromLocale(kHindi), 0u); // a Unicode-only locale names no code page
  EXPECT_EQ(CodePageFromLocale(kUnknown), GetACP());
}

TEST(CodePages, KeyboardFollowsTheKeyboardLanguage) {
  uint32_t language = static_cast<uint32_t>(GetKeyboardLayout(0) & 0xFFFF);
  EXPECT_EQ(KeyboardCodePage(), CodePageFromLocale(language));
  EXPECT_EQ(KeyUnicode('A'), u'A');
  char e9 = static_cast<char>(0xE9);
  std::u16string expected = CodePageToWideString(std::string(1, e9), KeyboardCodePage());
  ASSERT_EQ(expected.size(), 1u);
  EXPECT_EQ(KeyUnicode(e9), expected[0]);
}

TEST(CodePages, ToWideString) {
  EXPECT_EQ(CodePageToWideString("a\xE9\x80", 1252), u"a\u00E9\u20AC");
  EXPECT_EQ(CodePageToWideString("\x82\xA0", 932), u"\u3042"); // one double-byte character
  EXPECT_EQ(CodePageToWideString("", 1252), u"");
  EXPECT_EQ(CodePageToWideString("abc", 12345), u""); // refused: no converted text
}

TEST(WideCompareText, ChosenAtStartUp) {
  EXPECT_EQ(WideCompareText, &WideCompareTextNT);
  int32_t saved = Win32Platform;
  Win32Platform = 1;
  ChooseWideCompareText();
  EXPECT_EQ(WideCompareText, &WideCompareTextWin9x);
  Win32Platform = saved;
  ChooseWideCompareText();
  EXPECT_EQ(WideCompareText, &WideCompareTextNT);
}

struct CompareCase {
  std::u16string a, b;
  uint32_t locale;
  int32_t expected;
};

const CompareCase kCompareCases[] = {
    {u"apple", u"Banana", kEnglishUS, -1},
    {u"Zebra", u"apple", kEnglishUS, 1},
    {u"", u"", kEnglishUS, 0},
    {u"", u"a", kEnglishUS, -1},
    {u"\u00E9t\u00E9", u"\u00C9T\u00C9", kGerman, 0},
    {u"\u00E9", u"e", kGerman, 1}, // accents count
    {u"\u3042", u"\u3044", kJapanese, -1},
    {u"x", u"x", kUnknown, -2}, // the platform fails: taken for less than
};

TEST(WideCompareText, NTAndWin9x) {
  for (auto compare : {&WideCompareTextNT, &WideCompareTextWin9x})
    for (const auto &c : kCompareCases)
      EXPECT_EQ(compare(c.a, c.b, c.locale), c.expected)
          << test::Show(c.a) << " / " << std::hex << c.locale;
  // Double-byte text needs more bytes than it has units; the compare still
  // sees all of it.
  EXPECT_EQ(WideCompareTextWin9x(u"\u3042\u3044", u"\u3042\u3046", kJapanese), -1);
  EXPECT_EQ(WideCompareTextWin9x(u"\u3042\u3044", u"\u3042\u3044", kJapanese), 0);
}

} // namespace
} // namespace kestrel
