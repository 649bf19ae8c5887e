// Unit locale_utilities. Its start-up chooses the form of GetLocaleDataProc.
#include <kestrel/language/locale_utilities.h>

#include <algorithm>

#include <kestrel/frame/Units.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TStringList.h>
#include <kestrel/frame/platform/Platform.h>
#include <kestrel/language/LanguageCodes.h>

namespace kestrel {

TGetLocaleDataProc GetLocaleDataProc = nullptr;

namespace {

constexpr int32_t kBufferSize = 1024;
constexpr std::string_view kMarker = " (xxx";

void ChooseLocaleDataProc() {
  GetLocaleDataProc = Win32Platform == VER_PLATFORM_WIN32_NT ? GetLocaleDataW : GetLocaleDataA;
}

std::string WithoutParentheses(std::string s) {
  s.erase(std::remove(s.begin(), s.end(), '('), s.end());
  s.erase(std::remove(s.begin(), s.end(), ')'), s.end());
  return s;
}

} // namespace

void GetLocaleDataW(LCID locale, LCTYPE item, std::string &data) {
  char16_t buffer[kBufferSize];
  buffer[0] = 0;
  GetLocaleInfoW(locale, item, buffer, kBufferSize);
  buffer[kBufferSize - 1] = 0;
  data = AnsiStringFromWide(std::u16string_view(buffer));
}

void GetLocaleDataA(LCID locale, LCTYPE item, std::string &data) {
  char buffer[kBufferSize];
  buffer[0] = 0;
  const int32_t written = GetLocaleInfoA(locale, item, buffer, kBufferSize);
  data.assign(buffer, written > 0 ? static_cast<size_t>(written - 1) : 0);
}

std::string LocaleData(LCID locale, LCTYPE item) {
  std::string data;
  if (GetLocaleDataProc) GetLocaleDataProc(locale, item, data);
  return data;
}

std::string CurrencyFromLCID(LCID lcid) {
  return LocaleData(lcid, LOCALE_SCURRENCY);
}

std::string CountryFromLCID(LCID lcid) {
  return LocaleData(lcid, LOCALE_SENGCOUNTRY);
}

int32_t DOSCodepageFromLCID(LCID lcid) {
  return StrToInt(LocaleData(lcid, LOCALE_IDEFAULTCODEPAGE));
}

int32_t WindowsCodepageFromLCID(LCID lcid) {
  return StrToInt(LocaleData(lcid, LOCALE_IDEFAULTANSICODEPAGE));
}

std::string LCIDAllCurrencyString(LCID lcid, const TArrayOfLCID &locales) {
  std::string result;
  for (LCID other : locales) {
    if (!SamePrimaryLanguage(other, lcid)) continue;
    const std::string currency = CurrencyFromLCID(other);
    // An empty text counts as absent, as the host's Pos finds no empty text.
    if (!currency.empty() && result.find(currency) != std::string::npos) continue;
    if (!result.empty()) result += ',';
    result += currency;
  }
  return result;
}

TStringList *LCIDSubVarieties(LCID lcid, const TArrayOfLCID &locales) {
  auto *list = new TStringList;
  try {
    for (LCID other : locales) {
      if (!SamePrimaryLanguage(other, lcid)) continue;
      const std::string country = CountryFromLCID(other);
      if (list->IndexOf(country) < 0) list->AddObject(country, LCIDAsObject(other));
    }
    list->Sort();
  } catch (...) {
    delete list;
    throw;
  }
  return list;
}

std::string SysLanguageVariantName(const std::string &name) {
  std::string result = name;
  if (size_t at = result.find(kMarker); at != std::string::npos)
    result = Trim(std::string_view(result).substr(at + kMarker.size()));
  return Trim(WithoutParentheses(result));
}

std::string ShortenedSysLanguageName(const std::string &name) {
  const size_t at = name.find(kMarker);
  return at == std::string::npos ? name : name.substr(0, at);
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(locale_utilities, ::kestrel::ChooseLocaleDataProc, ::kestrel::NoUnitWork)
