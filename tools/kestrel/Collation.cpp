#include "Collation.h"

#include <kestrel/frame/platform/Nls.h>
#include <kestrel/unicode/CodePages.h>

namespace kestrel::cli {

uint32_t ChooseLocale(const Args &args) {
  if (!args.Has("locale")) return GetUserDefaultLCID();
  const std::string name = args.Value("locale");
  uint32_t locale = 0;
  try {
    size_t used = 0;
    const unsigned long n = std::stoul(name, &used, 0);
    if (used == name.size() && n <= 0xFFFFFFFFul) locale = static_cast<uint32_t>(n);
  } catch (...) {
  }
  if (locale == 0) locale = LCIDFromPosixLocale(name);
  if (name.empty() || !IsKnownLCID(locale))
    throw UsageError{"unknown locale '" + name + "' (use a name such as de_DE or a number)"};
  return locale;
}

int CompareForSort(std::u16string_view a, std::u16string_view b, uint32_t locale) {
  const int32_t byLocale = WideCompareText(a, b, locale);
  if (byLocale != 0) return byLocale < 0 ? -1 : 1;
  return a.compare(b) < 0 ? -1 : (a == b ? 0 : 1);
}

} // namespace kestrel::cli
