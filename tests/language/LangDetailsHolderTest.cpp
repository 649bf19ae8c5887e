// One language's settings and their fourteen ini keys.
#include <gtest/gtest.h>

#include <tuple>

#include <kestrel/files/inifileU2.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/language/language_detailsU.h>

#include "LanguageRecords.h"

using namespace kestrel;
using kestrel::test::FullRecord;
using kestrel::test::Language;
using kestrel::test::SameBytes;

namespace {

// Reads a section of an ini text over a record; says whether the section was there.
bool ReadSection(const std::string &section, const std::string &text,
                 fixed_lang_details_rec &details) {
  TMyMemIniFile ini("");
  TStringList lines;
  lines.SetText(text);
  ini.SetStrings(&lines);
  TLangDetailsHolder holder(details);
  const bool found = holder.ReadFromIni(section, &ini);
  details = holder.Details;
  return found;
}

} // namespace

TEST(TLangDetailsHolder, AMissingSectionChangesNothing) {
  fixed_lang_details_rec r = FullRecord("English");
  EXPECT_FALSE(ReadSection("English", "[Other]\nlanguage name=Other\n", r));
  EXPECT_TRUE(SameBytes(r, FullRecord("English")));
}

TEST(TLangDetailsHolder, ASectionWithoutKeysGivesTheDefaultsAndKeepsNameAndLocale) {
  fixed_lang_details_rec r = FullRecord("Kept");
  ASSERT_TRUE(ReadSection("Custom Language 1", "[Custom Language 1]\n", r));
  fixed_lang_details_rec expected = Language("Kept", true);
  expected.SortLCID = 0x0809;
  EXPECT_TRUE(SameBytes(r, expected));
}

TEST(TLangDetailsHolder, CustomMeansTheSectionIsNotTheNameAsRead) {
  const std::string longName(31, 'L'); // cut to 30 on reading
  const std::tuple<std::string, std::string, bool> cases[] = {
      {"English", "English", false},
      {"english", "English", true},
      {"Custom Language 1", "English", true},
      {longName, longName, true}};
  for (const auto &[section, name, custom] : cases) {
    fixed_lang_details_rec r;
    ASSERT_TRUE(ReadSection(section, "[" + section + "]\nlanguage name=" + name + "\n", r));
    EXPECT_EQ(r.CustomLanguage, custom) << section;
    EXPECT_EQ(r.LanguageName.str(), name.substr(0, 30));
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
    fixed_lang_details_rec r;
    ASSERT_TRUE(ReadSection("s", std::string("[s]\npreference=") + text + "\n", r));
    EXPECT_EQ(r.Preference, preference) << text;
  }
  fixed_lang_details_rec r;
  ASSERT_TRUE(ReadSection("s",
                          "[s]\nsort as in=$40A\nWindows codepage=70000\nfont size=300\n"
                          "font character set=-1\nhyphen breaks word=yes\n"
                          "allow extra symbols to end of word=NO\nDos codepage=abc\n",
                          r));
  EXPECT_EQ(r.SortLCID, 0x040Au);
  EXPECT_EQ(r.WindowsCodepage, 70000 & 0xFFFF);
  EXPECT_EQ(r.WinFontSize, 300 & 0xFF);
  EXPECT_EQ(r.WinFontCharset, 255);
  EXPECT_TRUE(r.HyphenBreaks); // anything but N... with default false
  EXPECT_FALSE(r.AllowExtraToEndOfWord);
  EXPECT_EQ(r.DosCodepage, 850); // unreadable: the default
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
