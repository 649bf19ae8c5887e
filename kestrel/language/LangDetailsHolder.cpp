// TLangDetailsHolder: one language's settings and their ini form.
#include <kestrel/files/inifileU2.h>
#include <kestrel/language/language_detailsU.h>

namespace kestrel {

namespace {

constexpr const char *kPreferenceTexts[] = {"language not installed in system",
                                            "available language", "alternative language",
                                            "main language"};

// The keys, in the order they are read and written.
constexpr const char *kLanguageName = "language name";
constexpr const char *kSortAsIn = "sort as in";
constexpr const char *kPreference = "preference";
constexpr const char *kHyphenBreaks = "hyphen breaks word";
constexpr const char *kWindowsCodepage = "Windows codepage";
constexpr const char *kDosCodepage = "Dos codepage";
constexpr const char *kFontName = "font name";
constexpr const char *kFontCharset = "font character set";
constexpr const char *kFontSize = "font size";
constexpr const char *kAnsiCurrency = "ANSI currency";
constexpr const char *kAllowables = "extra ANSI symbols within a word";
constexpr const char *kAllowExtraToEnd = "allow extra symbols to end of word";
constexpr const char *kLowerAccents = "ANSI lower case accents";
constexpr const char *kUpperAccents = "ANSI upper case accents";

lang_preference_type PreferenceFromText(const std::string &text) {
  for (uint8_t i = 0; i < std::size(kPreferenceTexts); ++i)
    if (text == kPreferenceTexts[i]) return static_cast<lang_preference_type>(i);
  return lang_preference_type::instalada;
}

} // namespace

const char *LangPreferenceText(lang_preference_type preference) {
  const auto i = static_cast<uint8_t>(preference);
  return i < std::size(kPreferenceTexts) ? kPreferenceTexts[i] : "";
}

bool TLangDetailsHolder::ReadFromIni(const std::string &section, TMyMemIniFile *ini) {
  if (!ini->SectionExists(section)) return false;
  fixed_lang_details_rec &d = Details;
  d.LanguageName = ini->ReadString(section, kLanguageName, d.LanguageName.str());
  d.CustomLanguage = section != d.LanguageName.view(); // against the name as cut
  d.SortLCID =
      static_cast<uint32_t>(ini->ReadInteger(section, kSortAsIn, static_cast<int32_t>(d.SortLCID)));
  d.Preference = PreferenceFromText(ini->ReadString(section, kPreference, "available language"));
  d.HyphenBreaks = ini->ReadBool(section, kHyphenBreaks, false);
  d.WindowsCodepage = static_cast<uint16_t>(ini->ReadInteger(section, kWindowsCodepage, 1252));
  d.DosCodepage = static_cast<uint16_t>(ini->ReadInteger(section, kDosCodepage, 850));
  d.WinFontName = ini->ReadString(section, kFontName, "Arial");
  d.WinFontCharset = static_cast<uint8_t>(ini->ReadInteger(section, kFontCharset, 0));
  d.WinFontSize = static_cast<uint8_t>(ini->ReadInteger(section, kFontSize, 10));
  d.AnsiCurrency = ini->ReadString(section, kAnsiCurrency, "");
  d.Allowables = ini->ReadString(section, kAllowables, "");
  d.AllowExtraToEndOfWord = ini->ReadBool(section, kAllowExtraToEnd, false);
  d.AnsiLowerAccents = ini->ReadString(section, kLowerAccents, "");
  d.AnsiUpperAccents = ini->ReadString(section, kUpperAccents, "");
  return true;
}

bool TLangDetailsHolder::WriteToIni(const std::string &section, TMyMemIniFile *ini) {
  const fixed_lang_details_rec &d = Details;
  ini->WriteString(section, kLanguageName, d.LanguageName.str());
  ini->WriteInteger(section, kSortAsIn, static_cast<int32_t>(d.SortLCID));
  ini->WriteString(section, kPreference, LangPreferenceText(d.Preference));
  ini->WriteBool(section, kHyphenBreaks, d.HyphenBreaks);
  ini->WriteInteger(section, kWindowsCodepage, d.WindowsCodepage);
  ini->WriteInteger(section, kDosCodepage, d.DosCodepage);
  ini->WriteString(section, kFontName, d.WinFontName.str());
  ini->WriteInteger(section, kFontCharset, d.WinFontCharset);
  ini->WriteInteger(section, kFontSize, d.WinFontSize);
  ini->WriteString(section, kAnsiCurrency, d.AnsiCurrency.str());
  ini->WriteString(section, kAllowables, d.Allowables.str());
  ini->WriteBool(section, kAllowExtraToEnd, d.AllowExtraToEndOfWord);
  ini->WriteString(section, kLowerAccents, d.AnsiLowerAccents.str());
  ini->WriteString(section, kUpperAccents, d.AnsiUpperAccents.str());
  return true;
}

bool TLangDetailsHolder::SetAllowables(const std::string &text) {
  Details.Allowables = text;
  return true;
}

bool TLangDetailsHolder::SetWinFontName(const std::string &text) {
  Details.WinFontName = text;
  return true;
}

bool TLangDetailsHolder::SetWinFontSize(uint8_t size) {
  Details.WinFontSize = size;
  return true;
}

bool TLangDetailsHolder::SetCustomLanguage(bool flag) {
  Details.CustomLanguage = flag;
  return true;
}

bool TLangDetailsHolder::SetPreference(lang_preference_type value) {
  Details.Preference = value;
  return true;
}

bool TLangDetailsHolder::SetHyphenBreaks(bool flag) {
  Details.HyphenBreaks = flag;
  return true;
}

} // namespace kestrel
