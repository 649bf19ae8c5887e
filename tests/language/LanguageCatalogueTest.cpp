// The language catalogue: the system's languages, the favourites and the
// all-languages file.
#include <gtest/gtest.h>

#include "LanguageRecords.h"
#include "support/FileSizeLimit.h"
#include "support/TestSupport.h"
#include <kestrel/files/logging_utilities.h>
#include <kestrel/frame/Frame.h>
#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/IniFiles.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/myKpSmall.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/language/language_detailsU.h>

using namespace kestrel;
using kestrel::test::FullRecord;
using kestrel::test::Language;
using kestrel::test::SameBytes;
using kestrel::test::TempDir;

namespace {

std::vector<std::string> FavouriteNames(const TMKLanguages &languages) {
  std::vector<std::string> names;
  for (int32_t i = 0; i < languages.Favourites->Count(); ++i)
    names.push_back(languages.Favourites->Strings(i));
  return names;
}

// Catalogues of their own, so that tests leave MKLanguages alone.
class Catalogue : public ::testing::Test {
protected:
  TMKLanguages languages;
  TempDir dir;
  std::string File() const { return dir / "languages.ini"; }
};

} // namespace

TEST(MKLanguages, HoldsTheSystemsLanguagesSortedAndOnce) {
  ASSERT_NE(MKLanguages, nullptr);
  const int32_t count = MKLanguages->AllLanguagesCount();
  ASSERT_GT(count, 50);
  EXPECT_GE(static_cast<int32_t>(MKLanguages->AllLCIDs.size()), count);
  EXPECT_FALSE(MKLanguages->Changed);
  for (int32_t i = 0; i < count; ++i) {
    const TMyLangRec rec = MKLanguages->GetOrdinaryLangRec(i);
    EXPECT_EQ(rec.LangName, MKLanguages->AllNames->Strings(i));
    if (i > 0) {
      EXPECT_LT(AnsiCompareText(MKLanguages->AllNames->Strings(i - 1), rec.LangName), 0);
    }
    EXPECT_EQ(ShortenedSysLanguageName(LocaleData(rec.LangLCID, LOCALE_SENGLANGUAGE)),
              rec.LangName);
    EXPECT_TRUE(rec.LangValid) << rec.LangName; // every locale listed has ICU's data
  }
  const int32_t english = MKLanguages->AllNames->IndexOf("english");
  ASSERT_GE(english, 0);
  // The first locale of the enumeration with that name.
  EXPECT_EQ(MKLanguages->GetOrdinaryLangRec(english).LangLCID, 0x0409u);
  const TMyLangRec none = MKLanguages->GetOrdinaryLangRec(count);
  EXPECT_TRUE(none.LangName.empty() && none.LangLCID == 0 && !none.LangValid);
  EXPECT_EQ(MKLanguages->GetOrdinaryLangRec(-1).LangLCID, 0u);
}

TEST(MKLanguages, TheUnitFreesItWhileTheLogStillWorksAndBuildsItAgain) {
  TempDir dir;
  SetLogFilename(dir / "run.log");
  keeping_log = true;
  Finalize();
  EXPECT_EQ(MKLanguages, nullptr);
  EXPECT_EQ(test::ReadFileBytes(dir / "run.log"), "unloading language_detailsU\r\n");
  Initialize();
  ASSERT_NE(MKLanguages, nullptr);
  EXPECT_GT(MKLanguages->AllLanguagesCount(), 50);
  AddToLogFile(u"after"); // the log's start-up forgot the name
  EXPECT_EQ(test::ReadFileBytes(dir / "run.log"), "unloading language_detailsU\r\n");
  keeping_log = false;
  SetLogFilename(dir / "quiet.log");
  Finalize();
  Initialize();
  EXPECT_FALSE(FileExists(dir / "quiet.log"));
}

// Off the NT family the start-up takes the 8-bit form, which must see the same languages.
TEST(MKLanguages, TheEightBitFormBuildsTheSameCatalogue) {
  const std::string wideNames = MKLanguages->AllNames->Text();
  const TArrayOfLCID wideLocales = MKLanguages->AllLCIDs;
  Finalize();
  Win32Platform = 1;
  Initialize();
  EXPECT_EQ(GetLocaleDataProc, &GetLocaleDataA);
  EXPECT_EQ(MKLanguages->AllNames->Text(), wideNames);
  EXPECT_EQ(MKLanguages->AllLCIDs, wideLocales);
  Finalize();
  Win32Platform = VER_PLATFORM_WIN32_NT;
  Initialize();
  EXPECT_EQ(GetLocaleDataProc, &GetLocaleDataW);
}

TEST_F(Catalogue, GetALanguageDetailsPrefersTheFavourite) {
  const int32_t english = languages.AllNames->IndexOf("English");
  ASSERT_GE(english, 0);
  fixed_lang_details_rec expected;
  expected.Preference = lang_preference_type::instalada;
  expected.SortLCID = 0x0409;
  expected.LanguageName = "English";
  EXPECT_TRUE(SameBytes(languages.GetALanguageDetails(english), expected));
  EXPECT_TRUE(SameBytes(languages.GetALanguageDetails(-1), fixed_lang_details_rec{}));
  fixed_lang_details_rec mine = Language("English");
  mine.WinFontName = "Gentium";
  languages.AddToFavourites(mine);
  EXPECT_TRUE(SameBytes(languages.GetALanguageDetails(english), mine));
}

TEST_F(Catalogue, FavouritesComeAndGoAndChangedFollows) {
  EXPECT_FALSE(languages.Changed);
  fixed_lang_details_rec french = Language("French");
  languages.AddToFavourites(french);
  EXPECT_TRUE(languages.Changed);
  fixed_lang_details_rec other = french;
  other.WinFontSize = 99;
  languages.AddToFavourites(other); // the favourite of that name stays as it was
  EXPECT_EQ(languages.Favourites->Count(), 1);
  EXPECT_EQ(languages.Favourites->GetALanguage(0).WinFontSize, 10);
  languages.Changed = false;
  languages.RemoveFromFavourites(Language("Klingon")); // not there: still a change
  EXPECT_TRUE(languages.Changed);
  languages.RemoveFromFavourites(Language("FRENCH"));
  EXPECT_EQ(languages.Favourites->Count(), 0);

  const int32_t before = languages.AllLanguagesCount();
  const size_t lcids = languages.AllLCIDs.size();
  languages.Changed = false;
  languages.RemoveFromAvailable(Language("french"));
  languages.RemoveFromAvailable(Language("Klingon"));
  EXPECT_EQ(languages.AllLanguagesCount(), before - 1);
  EXPECT_LT(languages.AllNames->IndexOf("French"), 0);
  EXPECT_EQ(languages.AllLCIDs.size(), lcids);
  EXPECT_FALSE(languages.Changed);
}

TEST_F(Catalogue, TypedAccessOutOfRangeGivesZerosAndIgnoresSets) {
  languages.AddToFavourites(Language("German"));
  TFavouriteLangs &f = *languages.Favourites;
  for (int32_t index : {-1, 1, 100}) {
    EXPECT_TRUE(SameBytes(f.GetALanguage(index), fixed_lang_details_rec{}));
    EXPECT_EQ(f.GetAnLCID(index), 0u);
    EXPECT_EQ(f.GetAPreference(index), lang_preference_type::nao_instalada);
    f.SetALanguage(index, Language("Ignored"));
    f.SetanLCID(index, 7);
    f.SetaPreference(index, lang_preference_type::rank_2);
  }
  EXPECT_TRUE(SameBytes(f.GetALanguage(0), Language("German")));
  f.Delete(1); // at Count: nothing
  EXPECT_EQ(f.Count(), 1);
  EXPECT_THROW(f.Delete(-1), EStringListError);
  f.Delete(0);
  EXPECT_EQ(f.Count(), 0);
}

TEST_F(Catalogue, ARoundTripOfTheFileKeepsEveryField) {
  const fixed_lang_details_rec english = FullRecord("English");
  fixed_lang_details_rec klingon = Language("tlhIngan Hol", true);
  klingon.Preference = lang_preference_type::rank_2;
  klingon.Allowables = " ";
  fixed_lang_details_rec elvish = Language("\"Quenya\"", true);
  elvish.WindowsCodepage = 65001;
  for (const auto &r : {english, klingon, elvish, Language("German"), Language("French")})
    languages.AddToFavourites(r);
  ASSERT_TRUE(languages.SaveAllLanguagesToFile(File()));
  EXPECT_FALSE(languages.Changed);

  TMKLanguages reader;
  reader.AddToFavourites(Language("Dutch")); // dropped by the read
  ASSERT_TRUE(reader.ReadAllLanguagesFromFile(File()));
  EXPECT_FALSE(reader.Changed);
  // Custom languages by number, then the system's in reverse alphabetical order.
  EXPECT_EQ(FavouriteNames(reader), (std::vector<std::string>{"tlhIngan Hol", "\"Quenya\"",
                                                              "German", "French", "English"}));
  EXPECT_TRUE(SameBytes(reader.Favourites->GetALanguage(0), klingon));
  EXPECT_TRUE(SameBytes(reader.Favourites->GetALanguage(1), elvish));
  EXPECT_TRUE(SameBytes(reader.Favourites->GetALanguage(4), english));
}

TEST_F(Catalogue, TheFileHoldsTheFourteenKeysPerFavourite) {
  languages.AddToFavourites(Language("Welsh"));
  languages.AddToFavourites(Language("Sindarin", true));
  ASSERT_TRUE(languages.SaveAllLanguagesToFile(File()));
  const std::string keys = "sort as in=1033\r\npreference=available language\r\n"
                           "hyphen breaks word=NO\r\nWindows codepage=1252\r\n"
                           "Dos codepage=850\r\nfont name=Arial\r\nfont character set=0\r\n"
                           "font size=10\r\nANSI currency=\r\n"
                           "extra ANSI symbols within a word=\r\n"
                           "allow extra symbols to end of word=NO\r\n"
                           "ANSI lower case accents=\r\nANSI upper case accents=\r\n";
  EXPECT_EQ(test::ReadFileBytes(File()),
            "[Welsh]\r\nlanguage name=Welsh\r\n" + keys +
                "\r\n[Custom Language 1]\r\nlanguage name=Sindarin\r\n" + keys);
}

TEST_F(Catalogue, AReadKeepsTwentyOneCustomLanguagesAndOnlyKnownNames) {
  for (int n = 1; n <= 22; ++n)
    languages.AddToFavourites(Language("Invented " + std::to_string(n), true));
  languages.AddToFavourites(Language("Klingon")); // not custom, and no system language
  ASSERT_TRUE(languages.SaveAllLanguagesToFile(File()));
  ASSERT_TRUE(languages.ReadAllLanguagesFromFile(File()));
  ASSERT_EQ(languages.Favourites->Count(), kMaxCustomLanguages);
  EXPECT_EQ(languages.Favourites->Strings(20), "Invented 21");
  EXPECT_LT(languages.Favourites->IndexOf("Klingon"), 0);
}

TEST_F(Catalogue, SectionsWithoutANameInheritTheOneReadBefore) {
  dir.WriteFile("languages.ini", "[Custom Language 1]\nfont size=9\n"
                                 "[Custom Language 2]\nlanguage name=Elvish\n"
                                 "[Custom Language 3]\nfont size=11\n"
                                 "[Custom Language 5]\nlanguage name=Skipped number\n");
  ASSERT_TRUE(languages.ReadAllLanguagesFromFile(File()));
  // The first has the fresh holder's empty name; the third repeats Elvish and adds nothing.
  EXPECT_EQ(FavouriteNames(languages), (std::vector<std::string>{"", "Elvish", "Skipped number"}));
  EXPECT_EQ(languages.Favourites->GetALanguage(0).WinFontSize, 9);
  EXPECT_EQ(languages.Favourites->GetALanguage(1).WinFontSize, 10);
}

TEST_F(Catalogue, EmptyAndMissingFiles) {
  languages.AddToFavourites(Language("German"));
  EXPECT_FALSE(languages.ReadAllLanguagesFromFile(dir / "none.ini"));
  EXPECT_EQ(languages.Favourites->Count(), 1); // untouched
  EXPECT_TRUE(languages.Changed);

  TMKLanguages empty;
  ASSERT_TRUE(empty.SaveAllLanguagesToFile(File()));
  EXPECT_EQ(test::ReadFileBytes(File()), "");
  ASSERT_TRUE(languages.ReadAllLanguagesFromFile(File()));
  EXPECT_EQ(languages.Favourites->Count(), 0);
  EXPECT_FALSE(languages.Changed);
}

TEST_F(Catalogue, AFailedSaveRaisesAndLeavesTheOldFile) {
  languages.AddToFavourites(Language("German"));
  ASSERT_TRUE(languages.SaveAllLanguagesToFile(File()));
  const std::string old = test::ReadFileBytes(File());
  for (int n = 1; n <= 10; ++n)
    languages.AddToFavourites(Language("Invented " + std::to_string(n), true));
  {
    test::FileSizeLimit disk(old.size());
    EXPECT_THROW(languages.SaveAllLanguagesToFile(File()), EFCreateError);
  }
  EXPECT_TRUE(languages.Changed);
  EXPECT_EQ(test::ReadFileBytes(File()), old);
  fixed_lang_details_rec broken = Language("Line\nbreak", true);
  languages.AddToFavourites(broken);
  EXPECT_THROW(languages.SaveAllLanguagesToFile(File()), EIniFileException);
  EXPECT_EQ(test::ReadFileBytes(File()), old);
}

TEST_F(Catalogue, ReadingYieldsOncePerSystemLanguage) {
  int calls = 0;
  auto count = [&calls] { ++calls; };
  const TYieldProcessProc saved = AYieldProcessProc;
  AYieldProcessProc = TYieldProcessProc::Of(&count);
  dir.WriteFile("languages.ini", "");
  languages.ReadAllLanguagesFromFile(File());
  AYieldProcessProc = saved;
  EXPECT_EQ(calls, languages.AllLanguagesCount());
}
