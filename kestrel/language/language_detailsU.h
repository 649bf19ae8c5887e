// Unit language_detailsU: one language's settings (fixed_lang_details_rec and
// its holder with an ini form), and the catalogue of the system's languages
// and the user's favourites, MKLanguages, built at unit start-up.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>

#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/host/Types.h>
#include <kestrel/language/locale_utilities.h>

namespace kestrel {

class TMyMemIniFile;

// ---- One language's settings --------------------------------------------------

enum class lang_preference_type : uint8_t { nao_instalada, instalada, rank_2, a_preferida };

// The ini text of each preference.
const char *LangPreferenceText(lang_preference_type preference);

#pragma pack(push, 1)
// Copied as a block; all zero is a valid empty record. The reserved bytes are
// not interpreted here and travel with the record.
struct fixed_lang_details_rec {
  bool AllowExtraToEndOfWord = false;
  uint8_t Reserved1[7] = {};
  uint32_t SortLCID = 0; // the locale whose sort order the language follows
  uint8_t WinFontCharset = 0;
  uint8_t WinFontSize = 0;
  ShortString<32> WinFontName;
  lang_preference_type Preference = lang_preference_type::nao_instalada;
  bool CustomLanguage = false; // made up by the user, not a language of the system
  bool HyphenBreaks = false;
  uint16_t WindowsCodepage = 0;
  uint16_t DosCodepage = 0;
  ShortString<20> AnsiCurrency;
  ShortString<10> Allowables; // extra symbols allowed within a word
  uint8_t Reserved2[256] = {};
  ShortString<128> AnsiLowerAccents;
  ShortString<128> AnsiUpperAccents;
  ShortString<30> LanguageName;
};
#pragma pack(pop)
static_assert(std::is_trivially_copyable_v<fixed_lang_details_rec>);
static_assert(sizeof(fixed_lang_details_rec) == 631);
static_assert(offsetof(fixed_lang_details_rec, Reserved1) == 1);
static_assert(offsetof(fixed_lang_details_rec, SortLCID) == 8);
static_assert(offsetof(fixed_lang_details_rec, WinFontCharset) == 12);
static_assert(offsetof(fixed_lang_details_rec, WinFontSize) == 13);
static_assert(offsetof(fixed_lang_details_rec, WinFontName) == 14);
static_assert(offsetof(fixed_lang_details_rec, Preference) == 47);
static_assert(offsetof(fixed_lang_details_rec, CustomLanguage) == 48);
static_assert(offsetof(fixed_lang_details_rec, HyphenBreaks) == 49);
static_assert(offsetof(fixed_lang_details_rec, WindowsCodepage) == 50);
static_assert(offsetof(fixed_lang_details_rec, DosCodepage) == 52);
static_assert(offsetof(fixed_lang_details_rec, AnsiCurrency) == 54);
static_assert(offsetof(fixed_lang_details_rec, Allowables) == 75);
static_assert(offsetof(fixed_lang_details_rec, Reserved2) == 86);
static_assert(offsetof(fixed_lang_details_rec, AnsiLowerAccents) == 342);
static_assert(offsetof(fixed_lang_details_rec, AnsiUpperAccents) == 471);
static_assert(offsetof(fixed_lang_details_rec, LanguageName) == 600);

// A language record in an object, so that it can sit in a string list.
class TLangDetailsHolder : public TObject {
public:
  explicit TLangDetailsHolder(const fixed_lang_details_rec &rec) : Details(rec) {}

  // Reads the section's fourteen keys; false, with nothing changed, when the
  // section is not there. A missing name or sort locale keeps the present one.
  bool ReadFromIni(const std::string &section, TMyMemIniFile *ini);
  // Writes the fourteen keys; true.
  bool WriteToIni(const std::string &section, TMyMemIniFile *ini);

  bool SetAllowables(const std::string &text);  // cut to 10
  bool SetWinFontName(const std::string &text); // cut to 32
  bool SetWinFontSize(uint8_t size);
  bool SetCustomLanguage(bool flag);
  bool SetPreference(lang_preference_type value);
  bool SetHyphenBreaks(bool flag);

  fixed_lang_details_rec Details;
};

// ---- The catalogue --------------------------------------------------------------

// The system's view of one language.
struct TMyLangRec {
  std::string LangName;   // English name
  LCID LangLCID = 0;      // the first locale found with this name
  bool LangValid = false; // that locale is installed
};

class TMyLangRecHolder : public TObject {
public:
  explicit TMyLangRecHolder(TMyLangRec rec) : LangRec(std::move(rec)) {}
  TMyLangRec LangRec;
};

// Language names with the holders they own.
class TListOfAllNamesStringlist : public TStringList {
public:
  ~TListOfAllNamesStringlist() override;
  // Frees every holder, then the list.
  void Free();

private:
  void FreeHolders();
};

// Favourites by language name, with the holders they own.
class TFavouriteLangs : public TStringList {
public:
  ~TFavouriteLangs() override;
  void Clear() override;
  // Nothing at or above Count; a negative index raises the list's index error.
  void Delete(int32_t index) override;

  // A copy; zero-filled for an index out of range or an empty slot.
  fixed_lang_details_rec GetALanguage(int32_t index) const;
  uint32_t GetAnLCID(int32_t index) const;                                 // 0 then
  lang_preference_type GetAPreference(int32_t index) const;                // nao_instalada then
  void SetALanguage(int32_t index, const fixed_lang_details_rec &details); // ignored then
  void SetanLCID(int32_t index, uint32_t lcid);
  void SetaPreference(int32_t index, lang_preference_type preference);

private:
  TLangDetailsHolder *HolderAt(int32_t index) const;
};

class TMKLanguages : public TObject {
public:
  // Asks the system for all its locales.
  TMKLanguages();
  ~TMKLanguages() override;

  int32_t AllLanguagesCount() const;
  // A copy; zeroed for an index out of range or an empty slot.
  TMyLangRec GetOrdinaryLangRec(int32_t index) const;
  // The favourite of that language's name, else a record made from the
  // system's view: preference, sort locale and name, the rest zero.
  fixed_lang_details_rec GetALanguageDetails(int32_t index) const;

  void AddToFavourites(const fixed_lang_details_rec &details);
  void RemoveFromFavourites(const fixed_lang_details_rec &details);
  void RemoveFromAvailable(const fixed_lang_details_rec &details);

  // False, with the favourites untouched, when the file does not exist.
  bool ReadAllLanguagesFromFile(const std::string &filename);
  // Replaces the file whole; a failure to write raises and leaves the old file.
  bool SaveAllLanguagesToFile(const std::string &filename);

  // One locale of the enumeration, as eight hexadecimal digits; 1 to go on.
  int32_t LocalesCallback(const char *locale);

  std::unique_ptr<TFavouriteLangs> Favourites;
  TArrayOfLCID AllLCIDs; // every locale with a language, in enumeration order
  std::unique_ptr<TListOfAllNamesStringlist> AllNames;
  bool Changed = false; // the favourites differ from the file
};

// The process's one catalogue, from unit start-up to finalisation.
extern TMKLanguages *MKLanguages;

// The section of the n-th custom language (counted from 1).
std::string CustomLanguageSection(int32_t n);
// Custom sections a read looks at.
inline constexpr int32_t kMaxCustomLanguages = 21;

} // namespace kestrel
