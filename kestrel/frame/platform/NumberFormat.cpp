#include <kestrel/frame/platform/NumberFormat.h>

#include <iterator>

#include <unicode/unum.h>
#include <unicode/ustring.h>

namespace kestrel {

namespace {

std::string SeparatorOf(LCID locale) {
  std::string name;
  if (!LocaleNameFromLCID(locale, name)) return ".";
  UErrorCode err = U_ZERO_ERROR;
  UNumberFormat *format = unum_open(UNUM_DECIMAL, nullptr, 0, name.c_str(), nullptr, &err);
  if (U_FAILURE(err)) return ".";
  UChar symbol[16];
  int32_t length = unum_getSymbol(format, UNUM_DECIMAL_SEPARATOR_SYMBOL, symbol,
                                  int32_t(std::size(symbol)), &err);
  unum_close(format);
  char utf8[64];
  int32_t written = 0;
  if (U_SUCCESS(err) && length > 0)
    u_strToUTF8(utf8, int32_t(sizeof utf8), &written, symbol, length, &err);
  if (U_FAILURE(err) || written <= 0 || written >= int32_t(sizeof utf8)) return ".";
  return std::string(utf8, size_t(written));
}

bool IsUserDefault(LCID locale) {
  return locale == LOCALE_NEUTRAL || locale == LOCALE_USER_DEFAULT ||
         locale == LOCALE_SYSTEM_DEFAULT;
}

} // namespace

std::string LocaleDecimalSeparator(LCID locale) {
  if (IsUserDefault(locale)) {
    static const std::string user = SeparatorOf(GetUserDefaultLCID());
    return user;
  }
  return SeparatorOf(locale);
}

} // namespace kestrel
