#include <kestrel/frame/platform/CharCase.h>

#include <algorithm>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

namespace kestrel {

char32_t SimpleLowerCase(char32_t c) {
  return static_cast<char32_t>(u_tolower(static_cast<UChar32>(c)));
}

char32_t SimpleUpperCase(char32_t c) {
  return static_cast<char32_t>(u_toupper(static_cast<UChar32>(c)));
}

char32_t SimpleCaseFold(char32_t c) {
  return static_cast<char32_t>(u_foldCase(static_cast<UChar32>(c), U_FOLD_CASE_DEFAULT));
}

int32_t DecodeUtf8(std::string_view s, size_t at, size_t &length) {
  UChar32 c;
  int32_t pos = 0, n = static_cast<int32_t>(std::min<size_t>(s.size() - at, 4));
  U8_NEXT(reinterpret_cast<const uint8_t *>(s.data() + at), pos, n, c);
  length = c < 0 ? 1 : static_cast<size_t>(pos);
  return c;
}

size_t Utf8Length(char32_t c) {
  return static_cast<size_t>(U8_LENGTH(static_cast<UChar32>(c)));
}

void EncodeUtf8(char32_t c, char *out) {
  int32_t pos = 0;
  U8_APPEND_UNSAFE(reinterpret_cast<uint8_t *>(out), pos, static_cast<UChar32>(c));
}

} // namespace kestrel
