// The signs with which a locale writes numbers.
#pragma once

#include <string>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel {

// The decimal separator of a locale's numbers, in UTF-8: "." for en-US, ","
// for de-DE. The defaults 0x0000, 0x0400 and 0x0800 stand for the user's
// locale (GetUserDefaultLCID), read once; an unknown locale gives ".".
std::string LocaleDecimalSeparator(LCID locale);

} // namespace kestrel
