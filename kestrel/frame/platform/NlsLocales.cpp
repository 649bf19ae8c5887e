// Locale identifiers and locale data on ICU.
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/NlsInternal.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string_view>
#include <vector>

#include <unicode/ucurr.h>
#include <unicode/uloc.h>
#include <unicode/ustring.h>

namespace kestrel {

// ---- Identifiers ------------------------------------------------------------

namespace {

constexpr LCID kEnglishUS = 0x0409;

bool IsNeutral(LCID lcid) {
  return (lcid & 0xFC00) == 0;
} // no sub-language

std::string Likely(const std::string &name) {
  char out[ULOC_FULLNAME_CAPACITY] = "";
  UErrorCode err = U_ZERO_ERROR;
  uloc_addLikelySubtags(name.c_str(), out, sizeof out, &err);
  return U_SUCCESS(err) ? std::string(out) : name;
}

std::string Part(const std::string &name,
                 int32_t (*get)(const char *, char *, int32_t, UErrorCode *)) {
  char out[ULOC_FULLNAME_CAPACITY] = "";
  UErrorCode err = U_ZERO_ERROR;
  get(name.c_str(), out, sizeof out, &err);
  return U_SUCCESS(err) ? std::string(out) : std::string();
}

// "de_DE.UTF-8@euro" -> "de_DE"; "sr_RS@latin" -> "sr_Latn_RS".
std::string IcuNameFromPosix(std::string_view posix) {
  std::string_view modifier;
  if (size_t at = posix.find('@'); at != std::string_view::npos) {
    modifier = posix.substr(at + 1);
    posix = posix.substr(0, at);
  }
  if (size_t dot = posix.find('.'); dot != std::string_view::npos) posix = posix.substr(0, dot);
  std::string name(posix);
  const char *script = modifier == "latin" ? "Latn" : modifier == "cyrillic" ? "Cyrl" : nullptr;
  if (script) {
    size_t us = name.find('_');
    std::string lang = name.substr(0, us);
    std::string rest = us == std::string::npos ? std::string() : name.substr(us);
    name = lang + "_" + script + rest;
  }
  return name;
}

LCID ComputeUserLCID() {
  for (const char *var : {"LC_ALL", "LC_COLLATE", "LANG"}) {
    const char *value = std::getenv(var);
    if (value && *value) return LCIDFromPosixLocale(value);
  }
  return kEnglishUS;
}

} // namespace

LCID LCIDFromPosixLocale(const std::string &posix) {
  std::string name = IcuNameFromPosix(posix);
  if (name.empty() || name == "C" || name == "POSIX") return kEnglishUS;
  LCID lcid = uloc_getLCID(name.c_str());
  if (lcid != 0 && !IsNeutral(lcid)) return lcid;
  // A country without a Windows identifier for this language: take the
  // language in its main country, as a Windows user of it would have.
  std::string language = Part(name, uloc_getLanguage);
  if (!language.empty()) {
    std::string country = Part(Likely(language), uloc_getCountry);
    LCID main = uloc_getLCID((language + "_" + country).c_str());
    if (main != 0 && !IsNeutral(main)) return main;
  }
  return lcid != 0 ? lcid : kEnglishUS;
}

LCID GetUserDefaultLCID() {
  static const LCID user = ComputeUserLCID();
  return user;
}

LCID GetSystemDefaultLCID() {
  return GetUserDefaultLCID();
}

LANGID GetUserDefaultLangID() {
  return static_cast<LANGID>(GetUserDefaultLCID() & 0xFFFF);
}

bool LocaleNameFromLCID(LCID locale, std::string &name) {
  locale = nls::ResolveLCID(locale);
  if (locale == LOCALE_INVARIANT) {
    name.clear();
    return true;
  }
  char out[ULOC_FULLNAME_CAPACITY] = "";
  UErrorCode err = U_ZERO_ERROR;
  uloc_getLocaleForLCID(locale, out, sizeof out, &err);
  if (U_FAILURE(err) || out[0] == 0 || std::strcmp(out, "root") == 0) return false;
  // ICU falls back on the language for a sub-language it does not know
  // (0x7C09 gives "en"); Windows knows no such identifier, so neither do we.
  std::string found(out);
  bool exact = uloc_getLCID(out) == locale;
  bool qualified = !Part(found, uloc_getCountry).empty() || !Part(found, uloc_getScript).empty();
  if (!exact && !qualified) return false;
  name = found;
  return true;
}

bool IsKnownLCID(LCID locale) {
  std::string name;
  return LocaleNameFromLCID(locale, name);
}

// ---- The system's locales -----------------------------------------------------

namespace {

// The name of an identifier that stands for a language in a country.
bool IsCountryLocale(LCID lcid) {
  std::string name;
  return lcid != 0 && LocaleNameFromLCID(lcid, name) && !Part(name, uloc_getCountry).empty();
}

// The identifier of one of ICU's available locales: the name's own, else
// that of its likely full form ("ha" -> "ha_Latn_NG"), else that of its
// language in its country ("pa_Guru_IN" -> "pa_IN"); 0 when none is a
// language in a country.
LCID CountryLCIDOf(const char *available) {
  LCID lcid = uloc_getLCID(available);
  if (IsCountryLocale(lcid)) return lcid;
  const std::string full = Likely(available);
  lcid = uloc_getLCID(full.c_str());
  if (IsCountryLocale(lcid)) return lcid;
  const std::string plain = Part(full, uloc_getLanguage) + "_" + Part(full, uloc_getCountry);
  lcid = uloc_getLCID(plain.c_str());
  return IsCountryLocale(lcid) ? lcid : 0;
}

struct SystemLocales {
  std::vector<LCID> supported;       // ascending, each once
  std::set<std::string> dataLocales; // likely full forms of ICU's available locales
};

// Gathered once; ICU's data does not change while the process runs.
const SystemLocales &Locales() {
  static const SystemLocales locales = [] {
    SystemLocales all;
    std::set<LCID> found;
    for (int32_t i = 0, n = uloc_countAvailable(); i < n; ++i) {
      const char *name = uloc_getAvailable(i);
      all.dataLocales.insert(Likely(name));
      if (LCID lcid = CountryLCIDOf(name)) found.insert(lcid);
    }
    all.supported.assign(found.begin(), found.end());
    return all;
  }();
  return locales;
}

// Alternative sorts carry a sort number in bits 16 to 19 and stand in ICU's
// table under a collation keyword.
std::vector<LCID> AlternateSorts() {
  std::vector<LCID> sorts;
  for (LCID base : Locales().supported)
    for (LCID sortId = 1; sortId <= 0xF; ++sortId) {
      const LCID lcid = (sortId << 16) | base;
      char out[ULOC_FULLNAME_CAPACITY] = "";
      UErrorCode err = U_ZERO_ERROR;
      uloc_getLocaleForLCID(lcid, out, sizeof out, &err);
      if (U_SUCCESS(err) && std::strchr(out, '@') && uloc_getLCID(out) == lcid)
        sorts.push_back(lcid);
    }
  return sorts;
}

} // namespace

bool IsValidLocale(LCID locale, uint32_t flags) {
  std::string name;
  if ((flags != LCID_SUPPORTED && flags != LCID_INSTALLED) || !LocaleNameFromLCID(locale, name))
    return false;
  if (flags == LCID_SUPPORTED || name.empty()) return true; // the invariant locale is built in
  // A locale of the enumeration came from ICU's data; another needs data of
  // its own (st_ZA, say, is known but has none).
  const std::vector<LCID> &listed = Locales().supported;
  if (std::binary_search(listed.begin(), listed.end(), locale & 0xFFFF)) return true;
  return Locales().dataLocales.count(Likely(Part(name, uloc_getBaseName))) != 0;
}

bool EnumSystemLocalesA(LOCALE_ENUMPROCA proc, uint32_t flags) {
  const uint32_t kind = flags & ~LCID_ALTERNATE_SORTS;
  if (!proc || (kind != LCID_SUPPORTED && kind != LCID_INSTALLED)) return false;
  std::vector<LCID> list = flags & LCID_ALTERNATE_SORTS ? AlternateSorts() : Locales().supported;
  for (LCID lcid : list) {
    if (kind == LCID_INSTALLED && !IsValidLocale(lcid, LCID_INSTALLED)) continue;
    char text[9];
    std::snprintf(text, sizeof text, "%08X", static_cast<unsigned>(lcid));
    if (!proc(text)) break;
  }
  return true;
}

// ---- Locale data --------------------------------------------------------------

namespace {

struct CodePagePair {
  uint16_t ansi, oem;
};

// Default code pages by language (and script where a language is written in
// two); the script's default applies to languages not listed, and a script
// with no 8-bit code page gives the Unicode-only pair 0 / 1.
struct LanguageCodePages {
  const char *language;
  const char *script; // null: any script
  CodePagePair pages;
};

constexpr LanguageCodePages kLanguageCodePages[] = {
    {"cs", nullptr, {1250, 852}}, {"hu", nullptr, {1250, 852}},  {"pl", nullptr, {1250, 852}},
    {"ro", nullptr, {1250, 852}}, {"hr", nullptr, {1250, 852}},  {"sk", nullptr, {1250, 852}},
    {"sl", nullptr, {1250, 852}}, {"sq", nullptr, {1250, 852}},  {"tk", nullptr, {1250, 852}},
    {"bs", "Latn", {1250, 852}},  {"sr", "Latn", {1250, 852}},   {"bs", "Cyrl", {1251, 855}},
    {"sr", "Cyrl", {1251, 855}},  {"tr", nullptr, {1254, 857}},  {"az", "Latn", {1254, 857}},
    {"uz", "Latn", {1254, 857}},  {"et", nullptr, {1257, 775}},  {"lv", nullptr, {1257, 775}},
    {"lt", nullptr, {1257, 775}}, {"vi", nullptr, {1258, 1258}}, {"th", nullptr, {874, 874}},
    {"ja", nullptr, {932, 932}},  {"ko", nullptr, {949, 949}},   {"zh", "Hans", {936, 936}},
    {"zh", "Hant", {950, 950}},   {"ps", nullptr, {0, 1}},       {"he", nullptr, {1255, 862}},
    {"el", nullptr, {1253, 737}},
};

struct ScriptCodePages {
  const char *script;
  CodePagePair pages;
};

constexpr ScriptCodePages kScriptCodePages[] = {
    {"Latn", {1252, 850}}, {"Cyrl", {1251, 866}}, {"Grek", {1253, 737}},
    {"Hebr", {1255, 862}}, {"Arab", {1256, 720}}, {"Thai", {874, 874}},
};

// English in these countries keeps the US DOS code page.
constexpr const char *kEnglishOem437[] = {"US", "ZA", "ZW", "PH"};

struct LocaleParts {
  std::string name, language, script, country;
};

LocaleParts PartsOf(const std::string &name) {
  std::string full = Likely(name);
  return {name, Part(full, uloc_getLanguage), Part(full, uloc_getScript),
          Part(full, uloc_getCountry)};
}

CodePagePair CodePagesOf(const LocaleParts &p) {
  if (p.name.empty()) // invariant
    return {1252, 437};
  for (const auto &row : kLanguageCodePages)
    if (p.language == row.language && (!row.script || p.script == row.script)) return row.pages;
  for (const auto &row : kScriptCodePages)
    if (p.script == row.script) {
      CodePagePair pages = row.pages;
      if (p.language == "en")
        for (const char *c : kEnglishOem437)
          if (p.country == c) pages.oem = 437;
      return pages;
    }
  return {0, 1};
}

// Windows' three-letter abbreviations of the common locales; others are made
// from the ISO 639-2 code in the language's main country and otherwise from
// the language's two letters and the country's first, as Windows forms most.
struct Abbreviation {
  const char *name, *abbreviation;
};

constexpr Abbreviation kAbbreviations[] = {
    {"en_US", "ENU"}, {"es_ES", "ESN"}, {"pt_BR", "PTB"}, {"pt_PT", "PTG"}, {"zh_CN", "CHS"},
    {"zh_TW", "CHT"}, {"zh_HK", "ZHH"}, {"zh_SG", "ZHI"}, {"zh_MO", "ZHM"}, {"sv_SE", "SVE"},
    {"de_CH", "DES"}, {"fr_CH", "FRS"}, {"it_CH", "ITS"}, {"nb_NO", "NOR"}, {"nn_NO", "NON"},
    {"ko_KR", "KOR"}, {"ja_JP", "JPN"},
};

std::string Upper(std::string s) {
  for (char &c : s)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return s;
}

std::u16string Widen(const std::string &ascii) {
  return std::u16string(ascii.begin(), ascii.end());
}

std::u16string AbbreviatedLanguage(const LocaleParts &p) {
  if (p.name.empty()) return u"IVL";
  std::string key = p.language + "_" + p.country;
  for (const auto &row : kAbbreviations)
    if (key == row.name) return Widen(row.abbreviation);
  std::string mainCountry = Part(Likely(p.language), uloc_getCountry);
  std::string iso3 = uloc_getISO3Language(p.name.c_str());
  if (p.country == mainCountry && iso3.size() == 3) return Widen(Upper(iso3));
  std::string two = Upper(p.language).substr(0, 2);
  return Widen(two + (p.country.empty() ? std::string() : p.country.substr(0, 1)));
}

using DisplayFn = int32_t (*)(const char *, const char *, UChar *, int32_t, UErrorCode *);

std::u16string Display(DisplayFn fn, const std::string &name) {
  UChar out[256];
  UErrorCode err = U_ZERO_ERROR;
  int32_t n = fn(name.c_str(), "en", out, 256, &err);
  return U_SUCCESS(err) && n > 0 ? std::u16string(out, out + std::min(n, 256)) : std::u16string();
}

std::u16string EnglishLanguage(const LocaleParts &p) {
  return p.name.empty() ? u"Invariant Language" : Display(uloc_getDisplayLanguage, p.name);
}

std::u16string EnglishCountry(const LocaleParts &p) {
  if (p.name.empty()) return u"Invariant Country";
  std::string withCountry = p.language + "_" + p.country;
  return Display(uloc_getDisplayCountry, withCountry);
}

std::u16string CurrencySymbol(const LocaleParts &p) {
  if (p.name.empty()) return u"\u00A4";
  std::string where = p.language + "_" + p.country;
  UChar code[4] = {};
  UErrorCode err = U_ZERO_ERROR;
  ucurr_forLocale(where.c_str(), code, 4, &err);
  // A region with no currency of its own (001 the world, 419 Latin America)
  // gets the generic currency sign, as the invariant locale does.
  if (U_FAILURE(err) || code[0] == 0) return u"\u00A4";
  UBool isChoice = false;
  int32_t len = 0;
  err = U_ZERO_ERROR;
  const UChar *symbol =
      ucurr_getName(code, p.name.c_str(), UCURR_SYMBOL_NAME, &isChoice, &len, &err);
  return U_SUCCESS(err) && symbol ? std::u16string(symbol, symbol + len) : std::u16string();
}

std::u16string Decimal(uint32_t n) {
  return Widen(std::to_string(n));
}

// One locale item: its text, and its number for numeric items.
bool LocaleItem(const LocaleParts &p, LCTYPE item, std::u16string &text, int64_t &number) {
  number = -1;
  switch (item) {
  case LOCALE_SABBREVLANGNAME:
    text = AbbreviatedLanguage(p);
    break;
  case LOCALE_IDEFAULTCODEPAGE:
    number = CodePagesOf(p).oem;
    text = Decimal(static_cast<uint32_t>(number));
    break;
  case LOCALE_IDEFAULTANSICODEPAGE:
    number = CodePagesOf(p).ansi;
    text = Decimal(static_cast<uint32_t>(number));
    break;
  case LOCALE_SCURRENCY:
    text = CurrencySymbol(p);
    break;
  case LOCALE_SENGLANGUAGE:
    text = EnglishLanguage(p);
    break;
  case LOCALE_SENGCOUNTRY:
    text = EnglishCountry(p);
    break;
  default:
    return false;
  }
  return true;
}

constexpr LCTYPE kItemModifiers = LOCALE_NOUSEROVERRIDE | LOCALE_USE_CP_ACP | LOCALE_RETURN_NUMBER;

// The item as text, or as a 32-bit number laid out in code units.
bool QueryItem(LCID locale, LCTYPE type, std::u16string &out) {
  std::string name;
  if (!LocaleNameFromLCID(locale, name)) return false;
  std::u16string text;
  int64_t number;
  if (!LocaleItem(PartsOf(name), type & ~kItemModifiers, text, number)) return false;
  if (type & LOCALE_RETURN_NUMBER) {
    if (number < 0) return false;
    uint32_t n = static_cast<uint32_t>(number);
    out.assign(2, u'\0');
    std::memcpy(out.data(), &n, sizeof n);
    return true;
  }
  out = std::move(text);
  return true;
}

} // namespace

int32_t GetLocaleInfoW(LCID locale, LCTYPE type, char16_t *data, int32_t capacity) {
  std::u16string value;
  if (capacity < 0 || (capacity > 0 && !data) || !QueryItem(locale, type, value)) return 0;
  bool number = type & LOCALE_RETURN_NUMBER;
  int32_t needed = static_cast<int32_t>(value.size()) + (number ? 0 : 1);
  if (capacity == 0) return needed;
  if (capacity < needed) return 0;
  std::memcpy(data, value.data(), value.size() * sizeof(char16_t));
  if (!number) data[value.size()] = 0;
  return needed;
}

int32_t GetLocaleInfoA(LCID locale, LCTYPE type, char *data, int32_t capacity) {
  std::u16string value;
  if (capacity < 0 || (capacity > 0 && !data) || !QueryItem(locale, type, value)) return 0;
  std::string bytes;
  if (type & LOCALE_RETURN_NUMBER) {
    bytes.assign(reinterpret_cast<const char *>(value.data()), 4);
  } else {
    bytes = nls::ToSystemBytes(value);
    bytes.push_back('\0');
  }
  int32_t needed = static_cast<int32_t>(bytes.size());
  if (capacity == 0) return needed;
  if (capacity < needed) return 0;
  std::memcpy(data, bytes.data(), bytes.size());
  return needed;
}

uint32_t GetACP() {
  return CP_UTF8;
}

uint32_t GetOEMCP() {
  return CP_UTF8;
}

HKL GetKeyboardLayout(uint32_t) {
  HKL language = GetUserDefaultLangID();
  return language | (language << 16);
}

} // namespace kestrel

namespace kestrel::nls {

bool AnsiCodePageOf(LCID locale, uint32_t &codePage) {
  std::string name;
  if (!LocaleNameFromLCID(locale, name)) return false;
  uint16_t ansi = CodePagesOf(PartsOf(name)).ansi;
  codePage = ansi == 0 ? GetACP() : ansi;
  return true;
}

} // namespace kestrel::nls
