// Unit Wdef: the small string routines of the settings.
#include <kestrel/vocabulary/WdefStrings.h>

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <vector>

#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

std::string ChrClearedFromString(char ch, std::string_view text) {
  std::string result(text);
  result.erase(std::remove(result.begin(), result.end(), ch), result.end());
  return result;
}

std::string SubStrClearedFromString(std::string_view sub, std::string_view text) {
  std::string result(text);
  if (sub.empty()) return result;
  for (size_t at = result.find(sub); at != std::string::npos; at = result.find(sub))
    result.erase(at, sub.size());
  return result;
}

std::string CorrectedPathname(std::string_view path) {
  std::string result = Trim(path);
  if (result.size() >= 2 && result[1] == DriveDelim &&
      (result.size() == 2 || result[2] != PathDelim))
    result.insert(2, 1, PathDelim);
  return result;
}

std::string CutOutsideQuotes(std::string_view text) {
  if (!text.empty() && text.front() == '"' && text.back() == '"')
    return text.size() < 2 ? std::string() : std::string(text.substr(1, text.size() - 2));
  return std::string(text);
}

std::string DecimalFormatted(long double x) {
  // Room for the largest long double with 16 decimals.
  std::vector<char> buffer(LDBL_MAX_10_EXP + 32);
  auto [end, ec] =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), x, std::chars_format::fixed, 16);
  std::string result(buffer.data(), ec == std::errc() ? end : buffer.data());
  while (result.size() > 3 && result.back() == '0')
    result.pop_back();
  // The separator goes in after trimming, so that one of several bytes
  // counts as one character.
  const size_t point = result.find('.');
  if (point != std::string::npos)
    result.replace(point, 1, LocaleDecimalSeparator(LOCALE_USER_DEFAULT));
  return result;
}

} // namespace kestrel
