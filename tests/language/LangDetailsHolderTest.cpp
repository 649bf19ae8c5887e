// One language's settings and their fourteen ini keys.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include <kestrel/files/inifileU2.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/language/language_detailsU.h>

using namespace kestrel;

namespace {

bool SameBytes(const fixed_lang_details_rec &a, const fixed_lang_details_rec &b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

std::unique_ptr<TMyMemIniFile> IniOf(const std::string &text) {
  auto ini = std::make_unique<TMyMemIniFile>("");
  TStringList lines;
  lines.SetText(text);
  ini->SetStrings(&lines);
  return ini;
}

// A record with every field set, strings included that need care in a file.
fixed_lang_details_rec FullRecord(const std::string &name) {
  fixed_lang_details_rec r;
  r.AllowExtraToEndOfWord = true;
  r.SortLCID = 0x0809;
  r.WinFontCharset = 238;
  r.WinFontSize = 14;
  r.WinFontName = " Font with blanks ";
  r.Preference = lang_preference_type::a_preferida;
  r.HyphenBreaks = true;
  r.WindowsCodepage = 1250;
  r.DosCodepage = 852;
  r.AnsiCurrency = "\"z\xB3\"";
  r.Allowables = "'-=;[";
  r.AnsiLowerAccents = "\xE1\xE9\xED\xF3\xFA";
  r.AnsiUpperAccents = "\xC1\xC9\xCD\xD3\xDA";
  r.LanguageName = name;
  return r;
}

} // namespace

TEST(TLangDetailsHolder, AMissingSectionChangesNothing) {
  auto ini = IniOf("[Other]\nlanguage name=Other\n");
  const fixed_lang_details_rec before = FullRecord("English");
  TLangDetailsHolder holder(before);
  EXPECT_FALSE(holder.ReadFromIni("English", ini.get()));
  EXPECT_TRUE(SameBytes(holder.Details, before));
}

TEST(TLangDetailsHolder, ASectionWithoutKeysGivesTheDefaultsAndKeepsNameAndLocale) {
  auto ini = IniOf("[Custom Language 1]\n");
  TLangDetailsHolder holder(FullRecord("Kept"));
  ASSERT_TRUE(holder.ReadFromIni("Custom Language 1", ini.get()));
  fixed_lang_details_rec expected;
  expected.LanguageName = "Kept";
  expected.SortLCID = 0x0809;
  expected.CustomLanguage = true;
  expected.Preference = lang_preference_type::instalada;
  expected.WindowsCodepage = 1252;
  expected.DosCodepage = 850;
  expected.WinFontName = "Arial";
  expected.WinFontSize = 10;
  EXPECT_TRUE(SameBytes(holder.Details, expected));
}

TEST(TLangDetailsHolder, CustomMeansTheSectionIsNotTheNameAsRead) {
  const std::string longName(31, 'L'); // cut to 30 on reading
  struct Case {
    std::string section, name;
    bool custom;
  };
  const Case cases[] = {{"English", "English", false},
                        {"english", "English", true},
                        {"Custom Language 1", "English", true},
                        {longName, longName, true}};
  for (const Case &c : cases) {
    auto ini = IniOf("[" + c.section + "]\nlanguage name=" + c.name + "\n");
    TLangDetailsHolder holder(fixed_lang_details_rec{});
    ASSERT_TRUE(holder.ReadFromIni(c.section, ini.get()));
    EXPECT_EQ(holder.Details.CustomLanguage, c.custom) << c.section;
    EXPECT_EQ(holder.Details.LanguageName.str(), c.name.substr(0, 30));
  }
}

TEST(TLangDetailsHolder, PreferencesBooleansAndIntegersAsRead) {
  const std::pair<const char *, lang_preference_type> preferences[] = {
      {"language not installed in system", lang_preference_type::nao_instalada},
      {"available language", lang_preference_type::instalada},
      {"alternative language", lang_preference_type::rank_2},
      {"main language", lang_preference_type::a_preferida},
      {"Main Language", lang_preference_type::instalada},
      {"", lang_preference_type::instalada}};
  for (const auto &[text, preference] : preferences) {
    auto ini = IniOf(std::string("[s]\npreference=") + text + "\n");
    TLangDetailsHolder holder(fixed_lang_details_rec{});
    ASSERT_TRUE(holder.ReadFromIni("s", ini.get()));
    EXPECT_EQ(holder.Details.Preference, preference) << text;
  }
  auto ini = IniOf("[s]\nsort as in=$40A\nWindows codepage=70000\nfont size=300\n"
                   "font character set=-1\nhyphen breaks word=yes\n"
                   "allow extra symbols to end of word=NO\nDos codepage=abc\n");
  TLangDetailsHolder holder(fixed_lang_details_rec{});
  ASSERT_TRUE(holder.ReadFromIni("s", ini.get()));
  EXPECT_EQ(holder.Details.SortLCID, 0x040Au);
  EXPECT_EQ(holder.Details.WindowsCodepage, 70000 & 0xFFFF);
  EXPECT_EQ(holder.Details.WinFontSize, 300 & 0xFF);
  EXPECT_EQ(holder.Details.WinFontCharset, 255);
  EXPECT_TRUE(holder.Details.HyphenBreaks); // anything but N... with default false
  EXPECT_FALSE(holder.Details.AllowExtraToEndOfWord);
  EXPECT_EQ(holder.Details.DosCodepage, 850); // unreadable: the default
}

TEST(TLangDetailsHolder, WrittenKeysReadBackEveryField) {
  TMyMemIniFile ini("");
  const fixed_lang_details_rec full = FullRecord("Polish");
  TLangDetailsHolder(full).WriteToIni("Polish", &ini); // the file's form: LanguageCatalogueTest
  TLangDetailsHolder back(fixed_lang_details_rec{});
  ASSERT_TRUE(back.ReadFromIni("Polish", &ini));
  EXPECT_TRUE(SameBytes(back.Details, full));
}

TEST(TLangDetailsHolder, SettersCutToTheFieldAndSayTrue) {
  TLangDetailsHolder holder(fixed_lang_details_rec{});
  EXPECT_TRUE(holder.SetWinFontName(std::string(33, 'f')) && holder.SetAllowables("0123456789AB") &&
              holder.SetWinFontSize(9) && holder.SetCustomLanguage(true) &&
              holder.SetPreference(lang_preference_type::rank_2) && holder.SetHyphenBreaks(true));
  fixed_lang_details_rec expected;
  expected.WinFontName = std::string(32, 'f');
  expected.Allowables = "0123456789";
  expected.WinFontSize = 9;
  expected.CustomLanguage = expected.HyphenBreaks = true;
  expected.Preference = lang_preference_type::rank_2;
  EXPECT_TRUE(SameBytes(holder.Details, expected));
}
