// The Wide* family: small operations on wide strings.
#include <kestrel/unicode/WideStrUtils.h>

#include <kestrel/unicode/CharDatabase.h>

namespace kestrel {
namespace {

constexpr char16_t kCR = 0x000D, kLF = 0x000A, kLineSeparator = 0x2028;

bool IsTrimUnit(char16_t u) {
  return UnicodeIsWhiteSpace(u) || UnicodeIsControl(u);
}

size_t TrimmedStart(std::u16string_view s) {
  size_t i = 0;
  while (i < s.size() && IsTrimUnit(s[i]))
    ++i;
  return i;
}

// One past the last unit that stays, never below start.
size_t TrimmedEnd(std::u16string_view s, size_t start) {
  size_t j = s.size();
  while (j > start && IsTrimUnit(s[j - 1]))
    --j;
  return j;
}

} // namespace

std::u16string WideAdjustLineBreaks(std::u16string_view S) {
  // First count, so that the result is allocated once and exactly.
  size_t length = 0;
  for (size_t i = 0; i < S.size(); ++i, ++length)
    if (S[i] == kCR && i + 1 < S.size() && S[i + 1] == kLF) ++i;
  std::u16string result(length, u'\0');
  size_t o = 0;
  for (size_t i = 0; i < S.size(); ++i) {
    char16_t u = S[i];
    if (u == kCR || u == kLF) {
      if (u == kCR && i + 1 < S.size() && S[i + 1] == kLF) ++i;
      u = kLineSeparator;
    }
    result[o++] = u;
  }
  return result;
}

std::u16string WideQuotedStr(std::u16string_view S, char16_t Quote) {
  std::u16string result;
  result.reserve(S.size() + 2 + 8);
  result.push_back(Quote);
  for (char16_t u : S) {
    result.push_back(u);
    if (u == Quote) result.push_back(Quote);
  }
  result.push_back(Quote);
  return result;
}

std::u16string WideExtractQuotedStr(const char16_t *&Src, char16_t Quote) {
  if (!Src || *Src != Quote || Quote == 0) return {};
  const char16_t *p = ++Src;
  size_t doubled = 0;
  for (;;) {
    const char16_t *q = Src;
    while (*q && *q != Quote)
      ++q;
    if (*q == 0) { // no closing quote: the text ends at the terminator
      Src = q;
      break;
    }
    if (q[1] == Quote) {
      Src = q + 2;
      ++doubled;
      continue;
    }
    Src = q + 1;
    break;
  }
  size_t n = static_cast<size_t>(Src - p);
  if (n <= 1) return {};
  // The n - 1 units before Src, each doubled quote written once.
  std::u16string result;
  result.reserve(n - 1);
  for (size_t i = 0; i < n - 1; ++i) {
    result.push_back(p[i]);
    if (p[i] == Quote && p[i + 1] == Quote) ++i;
  }
  result.resize(std::min(result.size(), n - 1 - doubled));
  return result;
}

std::u16string WideExtractQuotedStr(char16_t *&Src, char16_t Quote) {
  const char16_t *p = Src;
  std::u16string result = WideExtractQuotedStr(p, Quote);
  Src = const_cast<char16_t *>(p);
  return result;
}

std::u16string WideStringOfChar(char16_t C, uint32_t Count) {
  return std::u16string(Count, C);
}

std::u16string WideTrim(std::u16string_view S) {
  size_t start = TrimmedStart(S);
  if (start == S.size()) return {};
  return std::u16string(S.substr(start, TrimmedEnd(S, start) - start));
}

std::u16string WideTrimLeft(std::u16string_view S) {
  return std::u16string(S.substr(TrimmedStart(S)));
}

std::u16string WideTrimRight(std::u16string_view S) {
  return std::u16string(S.substr(0, TrimmedEnd(S, 0)));
}

int32_t WideCharPos(std::u16string_view S, char16_t Ch, int32_t Index) {
  if (S.empty() || Index < 1 || static_cast<size_t>(Index) > S.size()) return 0;
  size_t at = S.find(Ch, static_cast<size_t>(Index - 1));
  return at == std::u16string_view::npos ? 0 : static_cast<int32_t>(at + 1);
}

} // namespace kestrel
