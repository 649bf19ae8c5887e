// kestrel langs: the languages of the system, or the favourites of an
// all-languages file.
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>

#include <kestrel/kestrel.h>

#include "Cli.h"

namespace kestrel::cli {
namespace {

// Byte strings of the library are UTF-8, but a file written elsewhere may
// hold other bytes: those become U+FFFD, so that the output stays UTF-8.
std::string Utf8Text(const std::string &bytes) {
  return Utf16ToUtf8Lossless(CodePageToWideString(bytes, CP_UTF8));
}

std::string Json(const std::string &bytes) {
  return JsonString(Utf8Text(bytes));
}

// Pads UTF-8 text with blanks to a width in characters.
std::string Padded(const std::string &utf8, size_t width) {
  size_t chars = 0;
  for (unsigned char c : utf8)
    chars += (c & 0xC0) != 0x80;
  return utf8 + std::string(chars < width ? width - chars : 1, ' ');
}

std::string Hex(uint32_t lcid) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "0x%04X", static_cast<unsigned>(lcid));
  return buf;
}

// A code page the locale data cannot give reads 0.
int32_t CodePage(int32_t (*query)(LCID), LCID lcid) {
  try {
    return query(lcid);
  } catch (const EConvertError &) {
    return 0;
  }
}

struct SystemLanguage {
  TMyLangRec rec;
  int32_t ansi, oem;
};

SystemLanguage Describe(int32_t index) {
  const TMyLangRec rec = MKLanguages->GetOrdinaryLangRec(index);
  return {rec, CodePage(WindowsCodepageFromLCID, rec.LangLCID),
          CodePage(DOSCodepageFromLCID, rec.LangLCID)};
}

int ListSystemLanguages(bool json) {
  const int32_t count = MKLanguages->AllLanguagesCount();
  if (json) std::cout << "[";
  for (int32_t i = 0; i < count; ++i) {
    const SystemLanguage l = Describe(i);
    if (json) {
      std::cout << (i ? ",\n  " : "\n  ") << "{\"name\": " << Json(l.rec.LangName)
                << ", \"lcid\": " << l.rec.LangLCID << ", \"windows_codepage\": " << l.ansi
                << ", \"dos_codepage\": " << l.oem
                << ", \"installed\": " << (l.rec.LangValid ? "true" : "false") << "}";
    } else {
      char line[256];
      std::snprintf(line, sizeof line, "%s  Windows %-5d DOS %-5d %s", Hex(l.rec.LangLCID).c_str(),
                    l.ansi, l.oem, l.rec.LangValid ? "installed" : "not installed");
      std::cout << Padded(Utf8Text(l.rec.LangName), 32) << line << "\n";
    }
  }
  if (json) std::cout << (count ? "\n]\n" : "]\n");
  return count > 0 ? 0 : 1;
}

std::string YesNo(bool b) {
  return b ? "yes" : "no";
}

// A line of the readable form; texts the favourite leaves empty are not shown.
void Line(std::ostringstream &out, const char *label, const std::string &value) {
  if (!value.empty())
    out << "  " << label << std::string(17 - std::strlen(label), ' ') << value << "\n";
}

void PrintFavourite(const fixed_lang_details_rec &d) {
  std::ostringstream out;
  out << Utf8Text(d.LanguageName.str()) << (d.CustomLanguage ? "  (custom language)" : "") << "\n";
  Line(out, "preference", LangPreferenceText(d.Preference));
  Line(out, "sort as in", Hex(d.SortLCID));
  Line(out, "code pages",
       "Windows " + std::to_string(d.WindowsCodepage) + ", DOS " + std::to_string(d.DosCodepage));
  Line(out, "font",
       Utf8Text(d.WinFontName.str()) + ", size " + std::to_string(d.WinFontSize) +
           ", character set " + std::to_string(d.WinFontCharset));
  Line(out, "currency", Utf8Text(d.AnsiCurrency.str()));
  Line(out, "within a word",
       d.Allowables.empty() ? std::string()
                            : "\"" + Utf8Text(d.Allowables.str()) + "\"" +
                                  (d.AllowExtraToEndOfWord ? " (may also end a word)" : ""));
  Line(out, "hyphen breaks", YesNo(d.HyphenBreaks));
  Line(out, "lower accents", Utf8Text(d.AnsiLowerAccents.str()));
  Line(out, "upper accents", Utf8Text(d.AnsiUpperAccents.str()));
  std::cout << out.str();
}

std::string FavouriteJson(const fixed_lang_details_rec &d) {
  std::ostringstream out;
  out << "{\"name\": " << Json(d.LanguageName.str())
      << ", \"custom\": " << (d.CustomLanguage ? "true" : "false")
      << ", \"preference\": " << JsonString(LangPreferenceText(d.Preference))
      << ", \"sort_lcid\": " << d.SortLCID << ", \"windows_codepage\": " << d.WindowsCodepage
      << ", \"dos_codepage\": " << d.DosCodepage << ", \"font_name\": " << Json(d.WinFontName.str())
      << ", \"font_size\": " << int(d.WinFontSize)
      << ", \"font_charset\": " << int(d.WinFontCharset)
      << ", \"currency\": " << Json(d.AnsiCurrency.str())
      << ", \"allowables\": " << Json(d.Allowables.str())
      << ", \"allow_extra_to_end_of_word\": " << (d.AllowExtraToEndOfWord ? "true" : "false")
      << ", \"hyphen_breaks\": " << (d.HyphenBreaks ? "true" : "false")
      << ", \"lower_accents\": " << Json(d.AnsiLowerAccents.str())
      << ", \"upper_accents\": " << Json(d.AnsiUpperAccents.str()) << "}";
  return out.str();
}

int ShowFavourites(const std::string &file, bool json) {
  if (!FileExists(file)) {
    std::cerr << "kestrel langs: " << file << ": no such file\n";
    return 2;
  }
  MKLanguages->ReadAllLanguagesFromFile(file);
  const TFavouriteLangs &favourites = *MKLanguages->Favourites;
  if (json) std::cout << "[";
  for (int32_t i = 0; i < favourites.Count(); ++i) {
    const fixed_lang_details_rec d = favourites.GetALanguage(i);
    if (json) {
      std::cout << (i ? ",\n  " : "\n  ") << FavouriteJson(d);
    } else {
      if (i) std::cout << "\n";
      PrintFavourite(d);
    }
  }
  if (json) std::cout << (favourites.Count() ? "\n]\n" : "]\n");
  return favourites.Count() > 0 ? 0 : 1;
}

int Run(const Args &args) {
  if (!args.Unknown({"json", "favourites"}).empty())
    throw UsageError{"unknown option " + args.Unknown({"json", "favourites"}).front()};
  if (!args.Positional().empty()) throw UsageError{"unexpected argument " + args.Positional()[0]};
  if (!MKLanguages) {
    std::cerr << "kestrel langs: the language catalogue is not up\n";
    return 2;
  }
  const bool json = args.Has("json");
  if (args.Has("favourites")) return ShowFavourites(args.Value("favourites"), json);
  return ListSystemLanguages(json);
}

CommandRegistration reg({"langs",
                         "list the system's languages, or the favourites of a language file",
                         "langs [--favourites FILE] [--json]\n"
                         "  Without --favourites: each language the system knows, with its\n"
                         "  first locale, Windows and DOS code pages and whether it is installed.\n"
                         "  With --favourites: the languages an all-languages file holds, with\n"
                         "  all their settings. Exit 1 when there is none.",
                         {"favourites"},
                         Run});

} // namespace
} // namespace kestrel::cli
