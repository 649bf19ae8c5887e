// Locale utilities: name cleaning, and the lists built over locale data,
// checked against scripted data and against the platform's.
#include <gtest/gtest.h>

#include <map>
#include <memory>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/language/locale_utilities.h>

using namespace kestrel;

namespace {

std::map<std::pair<LCID, LCTYPE>, std::string> gScript;

void ScriptedLocaleData(LCID locale, LCTYPE item, std::string &data) {
  auto it = gScript.find({locale, item});
  data = it == gScript.end() ? std::string() : it->second;
}

// Puts scripted locale data in place of the platform's for one test.
class ScriptedLocales : public ::testing::Test {
protected:
  void SetUp() override {
    saved_ = GetLocaleDataProc;
    GetLocaleDataProc = ScriptedLocaleData;
    gScript.clear();
  }
  void TearDown() override { GetLocaleDataProc = saved_; }
  static void Locale(LCID lcid, const char *currency, const char *country) {
    gScript[{lcid, LOCALE_SCURRENCY}] = currency;
    gScript[{lcid, LOCALE_SENGCOUNTRY}] = country;
  }

private:
  TGetLocaleDataProc saved_ = nullptr;
};

} // namespace

TEST(LocaleNames, TheMarkerCutsAndParenthesesGo) {
  struct Case {
    const char *name, *shortened, *variant;
  };
  const Case cases[] = {
      {"English (xxxUnited States)", "English", "United States"},
      {" (xxxStart", "", "Start"},
      {"Norwegian (Bokm\xC3\xA5l)", "Norwegian (Bokm\xC3\xA5l)", "Norwegian Bokm\xC3\xA5l"},
      {"Plain", "Plain", "Plain"},
      {"A (xxx (B) ) (xxxC", "A", "B  xxxC"},
      {"", "", ""},
      {"Tab (xxx\t x \t", "Tab", "x"},
  };
  for (const Case &c : cases) {
    EXPECT_EQ(ShortenedSysLanguageName(c.name), c.shortened) << c.name;
    EXPECT_EQ(SysLanguageVariantName(c.name), c.variant) << c.name;
  }
}

TEST_F(ScriptedLocales, CurrenciesJoinOncePerSubstring) {
  Locale(0x0409, "US$", "United States");
  Locale(0x0809, "\xC2\xA3", "United Kingdom");
  Locale(0x1009, "$", "Canada");             // inside "US$": not added
  Locale(0x0407, "\xE2\x82\xAC", "Germany"); // another language
  Locale(0x1409, "", "New Zealand");         // empty: always added
  Locale(0x1809, "", "Ireland");
  const TArrayOfLCID locales = {0x0409, 0x0809, 0x1009, 0x0407, 0x1409, 0x1809};
  EXPECT_EQ(LCIDAllCurrencyString(0x0C09, locales), "US$,\xC2\xA3,,");
  EXPECT_EQ(LCIDAllCurrencyString(0x0407, locales), "\xE2\x82\xAC");
  EXPECT_EQ(LCIDAllCurrencyString(0x0409, {}), "");
}

TEST_F(ScriptedLocales, SubVarietiesKeepTheFirstLocaleOfEachCountry) {
  Locale(0x0409, "$", "United States");
  Locale(0x0809, "$", "United Kingdom");
  Locale(0x1009, "$", "Canada");
  Locale(0x2009, "$", "UNITED STATES"); // the same country to IndexOf
  Locale(0x0407, "$", "Germany");
  std::unique_ptr<TStringList> list(
      LCIDSubVarieties(0x0009, {0x0409, 0x0809, 0x1009, 0x2009, 0x0407}));
  ASSERT_EQ(list->Count(), 3);
  const std::pair<const char *, LCID> expected[] = {
      {"Canada", 0x1009}, {"United Kingdom", 0x0809}, {"United States", 0x0409}};
  for (int32_t i = 0; i < 3; ++i) {
    EXPECT_EQ(list->Strings(i), expected[i].first);
    EXPECT_EQ(LCIDInObjectSlot(list->Objects(i)), expected[i].second);
  }
  std::unique_ptr<TStringList> empty(LCIDSubVarieties(0x0009, {}));
  EXPECT_EQ(empty->Count(), 0);
}

TEST_F(ScriptedLocales, CodePagesAreNumbersOrRaise) {
  gScript[{0x0407, LOCALE_IDEFAULTCODEPAGE}] = "850";
  gScript[{0x0407, LOCALE_IDEFAULTANSICODEPAGE}] = "1252";
  EXPECT_EQ(DOSCodepageFromLCID(0x0407), 850);
  EXPECT_EQ(WindowsCodepageFromLCID(0x0407), 1252);
  EXPECT_THROW(DOSCodepageFromLCID(0x0408), EConvertError);
  EXPECT_THROW(WindowsCodepageFromLCID(0x0408), EConvertError);
}

TEST(LocaleData, BothFormsAgree) {
  for (LCID lcid : {0x0407u, 0x0419u, 0x0411u, 0x0C04u, 0x1234u})
    for (LCTYPE item : {LOCALE_SABBREVLANGNAME, LOCALE_IDEFAULTCODEPAGE, LOCALE_SCURRENCY,
                        LOCALE_SENGLANGUAGE, LOCALE_SENGCOUNTRY, LOCALE_IDEFAULTANSICODEPAGE}) {
      std::string wide, narrow;
      GetLocaleDataW(lcid, item, wide);
      GetLocaleDataA(lcid, item, narrow);
      EXPECT_EQ(wide, narrow) << std::hex << lcid << " " << item;
    }
}

TEST(LocaleData, KnownLocales) {
  EXPECT_EQ(CountryFromLCID(0x0809), "United Kingdom");
  EXPECT_EQ(CurrencyFromLCID(0x0809), "\xC2\xA3");
  EXPECT_EQ(WindowsCodepageFromLCID(0x0809), 1252);
  EXPECT_EQ(DOSCodepageFromLCID(0x0809), 850);
  std::unique_ptr<TStringList> english(LCIDSubVarieties(0x0409, {0x0409, 0x0809, 0x0C09}));
  EXPECT_EQ(english->Text(), "Australia\r\nUnited Kingdom\r\nUnited States\r\n");
}
