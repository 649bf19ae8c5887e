// Locale identifiers and locale data of the platform layer, on ICU.
#include <gtest/gtest.h>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel {
namespace {

constexpr LCID kEnglishUS = 0x0409, kEnglishUK = 0x0809, kGerman = 0x0407, kJapanese = 0x0411,
               kChineseTaiwan = 0x0404, kRussian = 0x0419, kPolish = 0x0415, kGreek = 0x0408,
               kHindi = 0x0439, kSerbianLatin = 0x081A, kSerbianCyrillic = 0x0C1A, kThai = 0x041E,
               kVietnamese = 0x042A;

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

TEST(NlsLocales, PosixNamesToIdentifiers) {
  const std::pair<const char *, LCID> cases[] = {
      {"en_US.UTF-8", 0x0409},
      {"de_DE", 0x0407},
      {"de_DE.UTF-8@euro", 0x0407},
      {"zh_TW.UTF-8", 0x0404},
      {"sr_RS@latin", 0x241A},
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

struct CodePageRow {
  LCID lcid;
  const char *ansi, *oem;
};

TEST(NlsLocales, DefaultCodePages) {
  const CodePageRow rows[] = {{kEnglishUS, "1252", "437"},
                              {kEnglishUK, "1252", "850"},
                              {kPolish, "1250", "852"},
                              {kRussian, "1251", "866"},
                              {kGreek, "1253", "737"},
                              {kVietnamese, "1258", "1258"},
                              {kThai, "874", "874"},
                              {kJapanese, "932", "932"},
                              {kChineseTaiwan, "950", "950"},
                              {kSerbianCyrillic, "1251", "855"},
                              {kHindi, "0", "1"},
                              {LOCALE_INVARIANT, "1252", "437"}};
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

} // namespace
} // namespace kestrel
