// Small byte-string routines of the settings: clearing characters and
// substrings, correcting a typed path, cutting quotes, formatting a decimal.
#pragma once

#include <string>
#include <string_view>

#include <kestrel/frame/platform/NumberFormat.h>

namespace kestrel {

// text without any occurrence of ch.
std::string ChrClearedFromString(char ch, std::string_view text);
// text with sub removed until none is left, also where a removal makes a new
// one ("aabb" without "ab" is ""); an empty sub changes nothing.
std::string SubStrClearedFromString(std::string_view sub, std::string_view text);
// path trimmed of blanks and control characters, with a delimiter after a
// drive's colon where it lacks one: "C:" gives "C:/", "C:texts" "C:/texts".
std::string CorrectedPathname(std::string_view path);
// What stands between a double quote at the start and one at the end; text
// itself when it is not so quoted.
std::string CutOutsideQuotes(std::string_view text);
// x with 16 decimals, less its trailing zeros down to a length of 3: 2 gives
// "2.0", 10 "10.", 1.5 "1.5". The decimal separator is the user's locale's
// (see LocaleDecimalSeparator); there is no thousands separator.
std::string DecimalFormatted(long double x);

} // namespace kestrel
