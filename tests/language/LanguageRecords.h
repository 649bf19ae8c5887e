// Language records for the tests of the catalogue and the holder.
#pragma once

#include <cstring>
#include <string>

#include <kestrel/language/language_detailsU.h>

namespace kestrel::test {

inline bool SameBytes(const fixed_lang_details_rec &a, const fixed_lang_details_rec &b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

// A language with the defaults a section without keys reads.
inline fixed_lang_details_rec Language(const std::string &name, bool custom = false) {
  fixed_lang_details_rec r;
  r.LanguageName = name;
  r.CustomLanguage = custom;
  r.Preference = lang_preference_type::instalada;
  r.SortLCID = 0x0409;
  r.WindowsCodepage = 1252;
  r.DosCodepage = 850;
  r.WinFontName = "Arial";
  r.WinFontSize = 10;
  return r;
}

// A record with every field set, strings included that need care in a file.
inline fixed_lang_details_rec FullRecord(const std::string &name) {
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

} // namespace kestrel::test
