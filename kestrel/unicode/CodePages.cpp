// Code pages and the locale-aware compare, over the platform's operations.
#include <kestrel/unicode/CodePages.h>

#include <cstring>

#include <kestrel/frame/platform/Nls.h>
#include <kestrel/frame/platform/Platform.h>

namespace kestrel {

std::u16string CRLF;
TWideCompareText WideCompareText = nullptr;

namespace {

// Decimal text as the host's conversion reads it: digits with an optional
// sign, nothing else.
bool ParseDecimal(const char *text, uint32_t &value) {
  const char *p = text;
  if (*p == '+') ++p;
  if (*p == 0) return false;
  uint64_t v = 0;
  for (; *p; ++p) {
    if (*p < '0' || *p > '9') return false;
    v = v * 10 + static_cast<uint64_t>(*p - '0');
    if (v > UINT32_MAX) return false;
  }
  value = static_cast<uint32_t>(v);
  return true;
}

int32_t Count(std::u16string_view s) {
  return static_cast<int32_t>(s.size());
}

} // namespace

uint32_t CodePageFromLocale(uint32_t Language) {
  char buffer[6] = {};
  uint32_t codePage;
  if (GetLocaleInfoA(Language, LOCALE_IDEFAULTANSICODEPAGE, buffer, sizeof buffer) == 0 ||
      !ParseDecimal(buffer, codePage))
    return GetACP();
  return codePage;
}

uint16_t KeyboardCodePage() {
  uint32_t language = static_cast<uint32_t>(GetKeyboardLayout(0) & 0xFFFF);
  return static_cast<uint16_t>(CodePageFromLocale(language));
}

char16_t KeyUnicode(char C) {
  char16_t result = 0;
  MultiByteToWideChar(KeyboardCodePage(), MB_USEGLYPHCHARS, &C, 1, &result, 1);
  return result;
}

std::u16string CodePageToWideString(std::string_view A, uint16_t CodePage) {
  if (A.empty() || A.size() > static_cast<size_t>(INT32_MAX)) return {};
  std::u16string result(A.size(), u'\0'); // a byte never gives more than one unit
  int32_t n = MultiByteToWideChar(CodePage, 0, A.data(), static_cast<int32_t>(A.size()),
                                  result.data(), static_cast<int32_t>(result.size()));
  if (n == 0) {
    // Some code pages (UTF-7) can give more units than bytes: ask the size.
    int32_t needed =
        MultiByteToWideChar(CodePage, 0, A.data(), static_cast<int32_t>(A.size()), nullptr, 0);
    if (needed <= 0) return {};
    result.assign(static_cast<size_t>(needed), u'\0');
    n = MultiByteToWideChar(CodePage, 0, A.data(), static_cast<int32_t>(A.size()), result.data(),
                            needed);
  }
  result.resize(static_cast<size_t>(n));
  return result;
}

int32_t WideCompareTextNT(std::u16string_view S1, std::u16string_view S2, uint32_t Locale) {
  return CompareStringW(Locale, NORM_IGNORECASE, S1.data(), Count(S1), S2.data(), Count(S2)) - 2;
}

namespace {

// A byte string with as many bytes as the text has units. When a double-
// byte code page needs more, it gets the bytes the whole conversion needs,
// so that no text is cut before the compare.
std::string ToCodePage(std::u16string_view s, uint32_t codePage) {
  std::string bytes(s.size(), '\0');
  if (s.empty()) return bytes;
  int32_t n = WideCharToMultiByte(codePage, 0, s.data(), Count(s), bytes.data(), Count(s), nullptr,
                                  nullptr);
  if (n == 0) {
    int32_t needed =
        WideCharToMultiByte(codePage, 0, s.data(), Count(s), nullptr, 0, nullptr, nullptr);
    if (needed > 0) {
      bytes.assign(static_cast<size_t>(needed), '\0');
      WideCharToMultiByte(codePage, 0, s.data(), Count(s), bytes.data(), needed, nullptr, nullptr);
    }
  }
  return bytes;
}

} // namespace

int32_t WideCompareTextWin9x(std::u16string_view S1, std::u16string_view S2, uint32_t Locale) {
  uint32_t codePage = CodePageFromLocale(Locale);
  std::string a = ToCodePage(S1, codePage), b = ToCodePage(S2, codePage);
  return CompareStringA(Locale, NORM_IGNORECASE, a.data(), static_cast<int32_t>(a.size()), b.data(),
                        static_cast<int32_t>(b.size())) -
         2;
}

void ChooseWideCompareText() {
  WideCompareText = (Win32Platform & 2) ? WideCompareTextNT : WideCompareTextWin9x;
}

} // namespace kestrel
