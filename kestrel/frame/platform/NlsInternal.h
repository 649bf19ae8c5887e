// Pieces the national-language operations share among themselves.
#pragma once

#include <string>
#include <string_view>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel::nls {

// The identifier that the defaults (0, 0x0400, 0x0800) stand for.
inline LCID ResolveLCID(LCID locale) {
  bool isDefault =
      locale == LOCALE_NEUTRAL || locale == LOCALE_USER_DEFAULT || locale == LOCALE_SYSTEM_DEFAULT;
  return isDefault ? GetUserDefaultLCID() : locale;
}

// Text in the system code page.
std::string ToSystemBytes(std::u16string_view text);

// The default 8-bit code page of a known locale; the system code page for a
// locale that has none. False for an unknown locale.
bool AnsiCodePageOf(LCID locale, uint32_t &codePage);

// Whole-text conversions with the code page's substitutes for what it cannot
// map; false for an unknown code page.
bool DecodeBytes(uint32_t codePage, std::string_view bytes, std::u16string &out);
bool EncodeText(uint32_t codePage, std::u16string_view text, std::string &out);

// The ICU converter behind a number that CodePageFromName gave to a name no
// Windows code page stands for (the name it opens by, or the one to show);
// false for any other number.
bool RegisteredConverter(uint32_t codePage, std::string &icuName, bool shown = false);
// The canonical name of the ICU converter of a byte code page; "" if none.
std::string CanonicalConverterName(uint32_t codePage);

} // namespace kestrel::nls
