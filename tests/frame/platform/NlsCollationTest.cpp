// Locale-aware comparison of the platform layer, on ICU's collators.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel {
namespace {

constexpr LCID kEnglishUS = 0x0409, kGerman = 0x0407, kJapanese = 0x0411, kRussian = 0x0419,
               kHindi = 0x0439, kLithuanian = 0x0427;

int32_t Compare(LCID lcid, uint32_t flags, const std::u16string &a, const std::u16string &b) {
  return CompareStringW(lcid, flags, a.data(), static_cast<int32_t>(a.size()), b.data(),
                        static_cast<int32_t>(b.size()));
}

TEST(NlsCollation, Strengths) {
  EXPECT_EQ(Compare(kEnglishUS, NORM_IGNORECASE, u"abc", u"ABC"), CSTR_EQUAL);
  EXPECT_EQ(Compare(kEnglishUS, 0, u"abc", u"ABC"), CSTR_LESS_THAN);
  EXPECT_EQ(Compare(kEnglishUS, NORM_IGNORECASE, u"r\u00E9sum\u00E9", u"resume"),
            CSTR_GREATER_THAN);
  EXPECT_EQ(Compare(kEnglishUS, NORM_IGNORENONSPACE, u"r\u00E9sum\u00E9", u"resume"), CSTR_EQUAL);
  EXPECT_NE(Compare(kEnglishUS, NORM_IGNORENONSPACE, u"R\u00E9sum\u00E9", u"resume"),
            CSTR_EQUAL); // case still counts
  EXPECT_EQ(
      Compare(kEnglishUS, NORM_IGNORENONSPACE | NORM_IGNORECASE, u"R\u00E9sum\u00E9", u"resume"),
      CSTR_EQUAL);
  EXPECT_EQ(Compare(kEnglishUS, NORM_IGNORESYMBOLS, u"co-op", u"coop"), CSTR_EQUAL);
  EXPECT_EQ(Compare(kEnglishUS, SORT_DIGITSASNUMBERS, u"file9", u"file10"), CSTR_LESS_THAN);
  EXPECT_EQ(Compare(kEnglishUS, 0, u"file9", u"file10"), CSTR_GREATER_THAN);
}

TEST(NlsCollation, LocaleOrders) {
  // Swedish sorts a-diaeresis after z; German sorts it with a.
  EXPECT_EQ(Compare(0x041D, NORM_IGNORECASE, u"\u00E4", u"z"), CSTR_GREATER_THAN);
  EXPECT_EQ(Compare(kGerman, NORM_IGNORECASE, u"\u00E4", u"z"), CSTR_LESS_THAN);
  // Lithuanian puts y right after i.
  EXPECT_EQ(Compare(kLithuanian, NORM_IGNORECASE, u"y", u"j"), CSTR_LESS_THAN);
  EXPECT_EQ(Compare(kEnglishUS, NORM_IGNORECASE, u"y", u"j"), CSTR_GREATER_THAN);
}

TEST(NlsCollation, CountsAndFailures) {
  const char16_t *a = u"abc", *b = u"ABD";
  EXPECT_EQ(CompareStringW(kEnglishUS, NORM_IGNORECASE, a, -1, b, -1), CSTR_LESS_THAN);
  EXPECT_EQ(CompareStringW(kEnglishUS, NORM_IGNORECASE, a, 2, b, 2), CSTR_EQUAL);
  EXPECT_EQ(CompareStringW(kEnglishUS, NORM_IGNORECASE, nullptr, 0, nullptr, 0), CSTR_EQUAL);
  EXPECT_EQ(CompareStringW(kEnglishUS, NORM_IGNORECASE, nullptr, 1, b, 1), 0);
  EXPECT_EQ(CompareStringW(0x1234, NORM_IGNORECASE, a, -1, b, -1), 0);
  EXPECT_EQ(CompareStringW(kEnglishUS, 0x40000, a, -1, b, -1), 0); // unknown flag
  EXPECT_EQ(CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, -1, a, -1), CSTR_EQUAL);
  EXPECT_EQ(CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, a, -1, b, -1), CSTR_LESS_THAN);
}

TEST(NlsCollation, ByteTextsInTheLocalesCodePage) {
  EXPECT_EQ(CompareStringA(kEnglishUS, NORM_IGNORECASE, "caf\xE9", -1, "CAF\xC9", -1), CSTR_EQUAL);
  EXPECT_EQ(CompareStringA(kRussian, NORM_IGNORECASE, "\xE0", 1, "\xC0", 1), CSTR_EQUAL);
  EXPECT_EQ(CompareStringA(kJapanese, NORM_IGNORECASE, "\x82\xA0", 2, "\x82\xA2", 2),
            CSTR_LESS_THAN);
  EXPECT_EQ(CompareStringA(0x1234, NORM_IGNORECASE, "a", 1, "a", 1), 0);
  EXPECT_EQ(CompareStringA(kHindi, NORM_IGNORECASE, "\xC3\xA9", -1, "\xC3\x89", -1),
            CSTR_EQUAL); // no code page of its own: the system's
}

TEST(NlsCollation, ThreadsShareCollators) {
  std::vector<std::thread> threads;
  std::vector<int> wrong(4, 0);
  const LCID locales[] = {kEnglishUS, kGerman, 0x041D, kLithuanian};
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&, t] {
      for (int i = 0; i < 500; ++i) {
        LCID lcid = locales[(t + i) % 4];
        if (Compare(lcid, NORM_IGNORECASE, u"Apple", u"aPPLE") != CSTR_EQUAL ||
            Compare(lcid, NORM_IGNORECASE, u"a", u"b") != CSTR_LESS_THAN)
          ++wrong[t];
      }
    });
  for (auto &th : threads)
    th.join();
  for (int w : wrong)
    EXPECT_EQ(w, 0);
}

} // namespace
} // namespace kestrel
