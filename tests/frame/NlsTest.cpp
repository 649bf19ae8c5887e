// The national-language operations of the platform layer on ICU.
#include <gtest/gtest.h>

#include <cstring>
#include <thread>
#include <vector>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel {
namespace {

constexpr LCID kEnglishUS = 0x0409, kEnglishUK = 0x0809, kGerman = 0x0407, kFrench = 0x040C,
               kJapanese = 0x0411, kChineseChina = 0x0804, kChineseTaiwan = 0x0404,
               kKorean = 0x0412, kRussian = 0x0419, kPolish = 0x0415, kGreek = 0x0408,
               kTurkish = 0x041F, kHebrew = 0x040D, kArabic = 0x0401, kHindi = 0x0439,
               kSerbianLatin = 0x081A, kSerbianCyrillic = 0x0C1A, kThai = 0x041E,
               kVietnamese = 0x042A, kLithuanian = 0x0427;

std::u16string InfoW(LCID lcid, LCTYPE type) {
  char16_t buffer[1024] = {};
  int32_t n = GetLocaleInfoW(lcid, type, buffer, 1024);
  return n > 0 ? std::u16string(buffer, n - 1) : u"<failed>";
}

std::string InfoA(LCID lcid, LCTYPE type) {
  char buffer[1024] = {};
  int32_t n = GetLocaleInfoA(lcid, type, buffer, 1024);
  return n > 0 ? std::string(buffer, n - 1) : "<failed>";
}

// ---- Identifiers ------------------------------------------------------------

TEST(NlsLocales, PosixNamesToIdentifiers) {
  const std::pair<const char *, LCID> cases[] = {
      {"en_US.UTF-8", 0x0409},
      {"de_DE", 0x0407},
      {"de_DE.UTF-8@euro", 0x0407},
      {"fr_CA.utf8", 0x0C0C},
      {"ja_JP.eucJP", 0x0411},
      {"zh_TW.UTF-8", 0x0404},
      {"sr_RS@latin", 0x241A},
      {"C", 0x0409},
      {"POSIX", 0x0409},
      {"C.UTF-8", 0x0409},
      {"", 0x0409},
      {"xx_YY", 0x0409},
      {"en_DK.UTF-8", 0x0409}, // no Windows locale: the language's main one
      {"de", 0x0407},
  };
  for (auto [name, lcid] : cases)
    EXPECT_EQ(LCIDFromPosixLocale(name), lcid) << name;
}

TEST(NlsLocales, UserDefaultIsKnown) {
  LCID user = GetUserDefaultLCID();
  EXPECT_TRUE(IsKnownLCID(user)) << std::hex << user;
  EXPECT_EQ(GetSystemDefaultLCID(), user);
  EXPECT_EQ(GetUserDefaultLangID(), user & 0xFFFF);
  HKL layout = GetKeyboardLayout(0);
  EXPECT_EQ(layout & 0xFFFF, user & 0xFFFF);
}

TEST(NlsLocales, KnownAndUnknownIdentifiers) {
  for (LCID known : {kEnglishUS, kGerman, kChineseTaiwan, kSerbianLatin, LCID(0x0009),
                     LCID(0x10407) /* German phonebook order */, LOCALE_INVARIANT,
                     LOCALE_USER_DEFAULT, LOCALE_SYSTEM_DEFAULT, LOCALE_NEUTRAL})
    EXPECT_TRUE(IsKnownLCID(known)) << std::hex << known;
  for (LCID unknown : {LCID(0x1234), LCID(0x7C09), LCID(0x1000), LCID(0xFFFFFFFF)})
    EXPECT_FALSE(IsKnownLCID(unknown)) << std::hex << unknown;
  std::string name;
  ASSERT_TRUE(LocaleNameFromLCID(kChineseTaiwan, name));
  EXPECT_EQ(name, "zh_Hant_TW");
  ASSERT_TRUE(LocaleNameFromLCID(LOCALE_INVARIANT, name));
  EXPECT_EQ(name, "");
}

// ---- Locale data ------------------------------------------------------------

struct CodePageRow {
  LCID lcid;
  const char *ansi, *oem;
};

TEST(NlsLocales, DefaultCodePages) {
  const CodePageRow rows[] = {
      {kEnglishUS, "1252", "437"},
      {kEnglishUK, "1252", "850"},
      {kGerman, "1252", "850"},
      {kFrench, "1252", "850"},
      {kPolish, "1250", "852"},
      {kRussian, "1251", "866"},
      {kGreek, "1253", "737"},
      {kTurkish, "1254", "857"},
      {kHebrew, "1255", "862"},
      {kArabic, "1256", "720"},
      {kLithuanian, "1257", "775"},
      {kVietnamese, "1258", "1258"},
      {kThai, "874", "874"},
      {kJapanese, "932", "932"},
      {kChineseChina, "936", "936"},
      {kKorean, "949", "949"},
      {kChineseTaiwan, "950", "950"},
      {kSerbianLatin, "1250", "852"},
      {kSerbianCyrillic, "1251", "855"},
      {kHindi, "0", "1"},
      {LOCALE_INVARIANT, "1252", "437"},
  };
  for (const auto &r : rows) {
    EXPECT_EQ(InfoA(r.lcid, LOCALE_IDEFAULTANSICODEPAGE), r.ansi) << std::hex << r.lcid;
    EXPECT_EQ(InfoA(r.lcid, LOCALE_IDEFAULTCODEPAGE), r.oem) << std::hex << r.lcid;
  }
}

TEST(NlsLocales, NamesAndCurrency) {
  EXPECT_EQ(InfoW(kGerman, LOCALE_SENGLANGUAGE), u"German");
  EXPECT_EQ(InfoW(kGerman, LOCALE_SENGCOUNTRY), u"Germany");
  EXPECT_EQ(InfoW(kEnglishUK, LOCALE_SENGCOUNTRY), u"United Kingdom");
  EXPECT_EQ(InfoW(kGerman, LOCALE_SCURRENCY), u"\u20AC");
  EXPECT_EQ(InfoW(kEnglishUS, LOCALE_SCURRENCY), u"$");
  EXPECT_EQ(InfoW(kEnglishUS, LOCALE_SABBREVLANGNAME), u"ENU");
  EXPECT_EQ(InfoW(kEnglishUK, LOCALE_SABBREVLANGNAME), u"ENG");
  EXPECT_EQ(InfoW(kGerman, LOCALE_SABBREVLANGNAME), u"DEU");
  EXPECT_EQ(InfoW(0x0C07 /* de-AT */, LOCALE_SABBREVLANGNAME), u"DEA");
  EXPECT_EQ(InfoW(LOCALE_INVARIANT, LOCALE_SENGLANGUAGE), u"Invariant Language");
  // The 8-bit form is in the system code page.
  EXPECT_EQ(InfoA(kGerman, LOCALE_SCURRENCY), "\xE2\x82\xAC");
  EXPECT_EQ(GetACP(), CP_UTF8);
}

TEST(NlsLocales, BufferContract) {
  char small[4];
  EXPECT_EQ(GetLocaleInfoA(kEnglishUS, LOCALE_IDEFAULTANSICODEPAGE, nullptr, 0), 5);
  EXPECT_EQ(GetLocaleInfoA(kEnglishUS, LOCALE_IDEFAULTANSICODEPAGE, small, 4), 0);
  char exact[5];
  EXPECT_EQ(GetLocaleInfoA(kEnglishUS, LOCALE_IDEFAULTANSICODEPAGE, exact, 5), 5);
  EXPECT_STREQ(exact, "1252");
  char16_t wide[8];
  EXPECT_EQ(GetLocaleInfoW(kEnglishUS, LOCALE_IDEFAULTANSICODEPAGE, wide, 8), 5);
  EXPECT_EQ(GetLocaleInfoW(kEnglishUS, LOCALE_IDEFAULTANSICODEPAGE, nullptr, 8), 0);
  EXPECT_EQ(GetLocaleInfoW(kEnglishUS, 0x9999, wide, 8), 0); // unknown item
  EXPECT_EQ(GetLocaleInfoW(0x1234, LOCALE_SENGLANGUAGE, wide, 8), 0);
  EXPECT_EQ(GetLocaleInfoA(0x1234, LOCALE_IDEFAULTANSICODEPAGE, exact, 5), 0);
  // Modifier bits: no user overrides here, and numbers on request.
  EXPECT_EQ(InfoA(kJapanese, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_NOUSEROVERRIDE), "932");
  uint32_t number = 0;
  EXPECT_EQ(GetLocaleInfoW(kJapanese, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                           reinterpret_cast<char16_t *>(&number), 2),
            2);
  EXPECT_EQ(number, 932u);
  EXPECT_EQ(GetLocaleInfoW(kJapanese, LOCALE_SENGLANGUAGE | LOCALE_RETURN_NUMBER, wide, 8), 0);
}

// ---- Code pages -------------------------------------------------------------

std::u16string ToWide(uint32_t cp, const std::string &bytes, uint32_t flags = 0) {
  int32_t n =
      MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int32_t>(bytes.size()), nullptr, 0);
  if (n == 0) return u"<failed>";
  std::u16string out(n, u'\0');
  EXPECT_EQ(MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int32_t>(bytes.size()),
                                out.data(), n),
            n);
  return out;
}

std::string ToBytes(uint32_t cp, const std::u16string &text, bool *used = nullptr,
                    const char *defaultChar = nullptr, uint32_t flags = 0) {
  int32_t n = WideCharToMultiByte(cp, flags, text.data(), static_cast<int32_t>(text.size()),
                                  nullptr, 0, defaultChar, used);
  if (n == 0) return "<failed>";
  std::string out(n, '\0');
  EXPECT_EQ(WideCharToMultiByte(cp, flags, text.data(), static_cast<int32_t>(text.size()),
                                out.data(), n, defaultChar, used),
            n);
  return out;
}

struct ConversionRow {
  uint32_t codePage;
  std::string bytes;
  std::u16string text;
};

TEST(NlsCodePages, RoundTripsOfWindowsCodePages) {
  const ConversionRow rows[] = {
      {1252, "caf\xE9 \x80 \x9C", u"caf\u00E9 \u20AC \u0153"},
      {1250,
       "\xA3\xF3"
       "d\xBF",
       u"\u0141\u00F3d\u017C"},
      {1251, "\xCC\xEE\xF1\xEA\xE2\xE0", u"\u041C\u043E\u0441\u043A\u0432\u0430"},
      {1253, "\xC1\xE8\xE7\xED\xE1", u"\u0391\u03B8\u03B7\u03BD\u03B1"},
      {1255, "\xF9\xEC\xE5\xED", u"\u05E9\u05DC\u05D5\u05DD"},
      {874, "\xA1\xD2", u"\u0E01\u0E32"},
      {437, "\x82\xB0\xDB", u"\u00E9\u2591\u2588"},
      {850, "\x90\xE1", u"\u00C9\u00DF"},
      {866, "\x80\xA0", u"\u0410\u0430"},
      {932, "\x93\xFA\x96\x7B\x8C\xEA\x20\xB1", u"\u65E5\u672C\u8A9E \uFF71"},
      {936, "\xD6\xD0\xCE\xC4", u"\u4E2D\u6587"},
      {949, "\xC7\xD1\xB1\xB9", u"\uD55C\uAD6D"},
      {950, "\xA4\xA4\xA4\xE5", u"\u4E2D\u6587"},
      {65001, "\xC3\xA9\xF0\x9F\x98\x80", u"\u00E9\U0001F600"},
      {28591, "\xE9\xFF", u"\u00E9\u00FF"},
      {20127, "plain", u"plain"},
  };
  for (const auto &r : rows) {
    EXPECT_EQ(ToWide(r.codePage, r.bytes), r.text) << r.codePage;
    EXPECT_EQ(ToBytes(r.codePage, r.text), r.bytes) << r.codePage;
  }
}

TEST(NlsCodePages, ControlBytesMapToThemselves) {
  // Some converter tables swap 0x1A, 0x1C and 0x7F; Windows does not.
  std::string controls = "\x01\x1A\x1C\x7F\n";
  std::u16string units = u"\x01\x1A\x1C\x7F\n";
  for (uint32_t cp : {437u, 850u, 866u, 932u, 936u, 949u, 950u, 1252u}) {
    EXPECT_EQ(ToWide(cp, "a" + controls + "b"), u"a" + units + u"b") << cp;
    EXPECT_EQ(ToBytes(cp, u"a" + units + u"b"), "a" + controls + "b") << cp;
  }
  // A double-byte character on either side of them stays whole.
  EXPECT_EQ(ToWide(932, "\x82\xA0\x1A\x82\xA0"), u"\u3042\x1A\u3042");
}

TEST(NlsCodePages, PseudoCodePagesAndSymbol) {
  EXPECT_EQ(ToWide(CP_ACP, "\xC3\xA9"), u"\u00E9"); // the system code page is UTF-8
  EXPECT_EQ(ToWide(CP_OEMCP, "\xC3\xA9"), u"\u00E9");
  EXPECT_EQ(ToWide(CP_SYMBOL, "\x01\x41"), u"\x01\uF041");
  EXPECT_EQ(ToBytes(CP_SYMBOL, u"\uF041\x01"), "\x41\x01");
  EXPECT_TRUE(IsValidCodePage(1252));
  EXPECT_TRUE(IsValidCodePage(932));
  EXPECT_TRUE(IsValidCodePage(65001));
  EXPECT_FALSE(IsValidCodePage(12345));
  EXPECT_FALSE(IsValidCodePage(CP_ACP));
  EXPECT_FALSE(IsValidCodePage(1200)); // UTF-16 is no byte code page here
}

TEST(NlsCodePages, FlagsAndFailures) {
  char16_t out[16];
  EXPECT_EQ(MultiByteToWideChar(12345, 0, "abc", 3, out, 16), 0); // unknown code page
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 0, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -2, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, nullptr, 3, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, out, 2), 0);      // buffer too small
  EXPECT_EQ(MultiByteToWideChar(1252, 0x100, "abc", 3, out, 16), 0); // unknown flag
  EXPECT_EQ(MultiByteToWideChar(1252, MB_PRECOMPOSED | MB_COMPOSITE, "abc", 3, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "abc", 3, out, 16), 0);
  // -1 takes the terminator along.
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, out, 16), 4);
  EXPECT_EQ(out[3], 0);
  // Invalid sequences: substituted, or refused on request.
  EXPECT_EQ(ToWide(CP_UTF8, "a\xFF"), u"a\uFFFD");
  EXPECT_EQ(ToWide(CP_UTF8, "a\xFF", MB_ERR_INVALID_CHARS), u"<failed>");
  EXPECT_EQ(ToWide(932, "\x82"), u"\uFFFD"); // a lead byte alone
  EXPECT_EQ(ToWide(932, "\x82", MB_ERR_INVALID_CHARS), u"<failed>");
  // Glyphs for the controls of the DOS code pages only.
  EXPECT_EQ(ToWide(437, "\x01\x7F", MB_USEGLYPHCHARS), u"\u263A\u2302");
  EXPECT_EQ(ToWide(1252, "\x01", MB_USEGLYPHCHARS), u"\x01");
  // Decomposed forms on request.
  EXPECT_EQ(ToWide(1252, "\xE9", MB_COMPOSITE), u"e\u0301");
}

TEST(NlsCodePages, DefaultCharacter) {
  bool used = false;
  EXPECT_EQ(ToBytes(1252, u"a\u4E2Db", &used), "a?b");
  EXPECT_TRUE(used);
  EXPECT_EQ(ToBytes(1252, u"ab", &used), "ab");
  EXPECT_FALSE(used);
  EXPECT_EQ(ToBytes(1252, u"\u4E2D", &used, "*"), "*");
  EXPECT_EQ(ToBytes(932, u"\u0E01", &used), "?");
  EXPECT_EQ(ToBytes(1252, u"\uFF21"), "A"); // the nearest form
  EXPECT_EQ(ToBytes(1252, u"\uFF21", &used, nullptr, WC_NO_BEST_FIT_CHARS), "?");
  // UTF-8 takes neither argument, and makes U+FFFD of a lone half.
  EXPECT_EQ(ToBytes(CP_UTF8, u"a", &used), "<failed>");
  EXPECT_EQ(ToBytes(CP_UTF8, std::u16string{u'a', 0xD800}), "a\xEF\xBF\xBD");
  EXPECT_EQ(ToBytes(CP_UTF8, std::u16string{u'a', 0xD800}, nullptr, nullptr, WC_ERR_INVALID_CHARS),
            "<failed>");
  EXPECT_EQ(ToBytes(1252, u"a", nullptr, nullptr, WC_ERR_INVALID_CHARS), "<failed>");
}

TEST(NlsCodePages, ThreadsConvertAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([t, &failures] {
      for (int i = 0; i < 200; ++i) {
        uint32_t cp = (t % 2) ? 932 : 1251;
        std::u16string text = (t % 2) ? u"\u65E5\u672C" : u"\u041C\u0438\u0440";
        char bytes[16];
        int32_t n = WideCharToMultiByte(cp, 0, text.data(), static_cast<int32_t>(text.size()),
                                        bytes, 16, nullptr, nullptr);
        char16_t back[16];
        int32_t m = MultiByteToWideChar(cp, 0, bytes, n, back, 16);
        if (std::u16string(back, back + std::max(m, 0)) != text) ++failures[t];
      }
    });
  for (auto &th : threads)
    th.join();
  for (int f : failures)
    EXPECT_EQ(f, 0);
}

// ---- Comparison -------------------------------------------------------------

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
