// Unit locale_utilities: the library's one door to the system's locale data.
// Every query goes through GetLocaleDataProc, chosen at unit start-up.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel {

class TObject;
class TStringList;

using TArrayOfLCID = std::vector<LCID>;

// Fetches one locale item as a byte string in the system code page; an
// unknown locale or item gives an empty string.
using TGetLocaleDataProc = void (*)(LCID locale, LCTYPE item, std::string &data);
extern TGetLocaleDataProc GetLocaleDataProc;

// The two forms: through GetLocaleInfoW, converted, or GetLocaleInfoA.
void GetLocaleDataW(LCID locale, LCTYPE item, std::string &data);
void GetLocaleDataA(LCID locale, LCTYPE item, std::string &data);

// One item through GetLocaleDataProc (empty before the unit's start-up).
std::string LocaleData(LCID locale, LCTYPE item);

std::string CurrencyFromLCID(LCID lcid);
std::string CountryFromLCID(LCID lcid); // the country's English name
// The default OEM and ANSI code pages; EConvertError for an unknown locale.
int32_t DOSCodepageFromLCID(LCID lcid);
int32_t WindowsCodepageFromLCID(LCID lcid);

// The currencies of every locale of the same primary language, in the order
// of the array, joined by ","; a text already contained in the result, even
// inside a longer one, is not added again.
std::string LCIDAllCurrencyString(LCID lcid, const TArrayOfLCID &locales);
// The countries of every locale of the same primary language, sorted, each
// with the first locale met for it in its object slot (a number, not an
// object: read it with LCIDInObjectSlot). The caller frees the list.
TStringList *LCIDSubVarieties(LCID lcid, const TArrayOfLCID &locales);

inline TObject *LCIDAsObject(LCID lcid) {
  return reinterpret_cast<TObject *>(static_cast<uintptr_t>(lcid));
}
inline LCID LCIDInObjectSlot(const TObject *slot) {
  return static_cast<LCID>(reinterpret_cast<uintptr_t>(slot));
}

// The text after the marker " (xxx" (or the whole name), trimmed, without
// any parentheses.
std::string SysLanguageVariantName(const std::string &name);
// The text before the marker " (xxx", or the whole name.
std::string ShortenedSysLanguageName(const std::string &name);

} // namespace kestrel
