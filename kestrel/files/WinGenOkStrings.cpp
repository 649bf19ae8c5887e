// WinGenOk: the byte-string search and the small string functions.
#include <kestrel/files/WinGenOk.h>

#include <cmath>
#include <cstdio>
#include <cstring>

#include <kestrel/frame/host/AnsiStrings.h>
#include <kestrel/frame/host/SysUtils.h>

namespace kestrel {

namespace {

bool IsUpperAscii(char c) {
  return c >= 'A' && c <= 'Z';
}

// The month number of three upper-case letters; empty for none.
std::string MonthNumber(const std::string &m) {
  switch (m[0]) {
  case 'J':
    return m[1] == 'A' ? "01" : m[2] == 'L' ? "07" : "06";
  case 'F':
    return "02";
  case 'M':
    return m[2] == 'Y' ? "05" : "03";
  case 'A':
    return m[1] == 'P' ? "04" : "08";
  case 'S':
    return "09";
  case 'O':
    return "10";
  case 'N':
    return "11";
  case 'D':
    return "12";
  default:
    return "";
  }
}

template <typename T> T *Insert(T *target, const T *source, int16_t count) {
  size_t n = 0;
  while (source[n] != 0)
    ++n;
  if (count <= 0 || static_cast<size_t>(count) < n) return nullptr;
  std::memmove(target + n, target, static_cast<size_t>(count) * sizeof(T));
  std::memcpy(target, source, n * sizeof(T));
  return target;
}

} // namespace

int32_t PosBM(const std::string &Pattern, const char *Text, int32_t TextLen) {
  if (TextLen <= 0 || Pattern.empty()) return 0;
  // Positions count from 1, as the bad-character rule is told.
  const int64_t m = static_cast<int64_t>(Pattern.size());
  auto text = [Text](int64_t i) { return static_cast<unsigned char>(Text[i - 1]); };
  auto pattern = [&Pattern](int64_t j) { return static_cast<unsigned char>(Pattern[j - 1]); };
  int64_t skip[256];
  for (int64_t &s : skip)
    s = m;
  for (int64_t k = 1; k <= m; ++k)
    skip[pattern(k)] = m - k;
  int64_t i = m, j = m;
  while (j >= 1 && i <= TextLen) {
    unsigned char c = text(i);
    if (c == pattern(j)) {
      --i;
      --j;
    } else {
      i += std::max(skip[c], m - j + 1);
      j = m;
    }
  }
  return i > TextLen ? -1 : static_cast<int32_t>(i);
}

std::string ShortMonthNameToNumberStr(const std::string &DateText) {
  std::string u = AnsiUpperCase(DateText);
  const size_t last = u.empty() ? 0 : u.size() - 1; // never looked at
  size_t start = 0;
  while (start < last && !IsUpperAscii(u[start]))
    ++start;
  size_t end = start;
  while (end < last && IsUpperAscii(u[end]))
    ++end;
  if (end - start != 3) return DateText;
  return u.substr(0, start) + MonthNumber(u.substr(start, 3)) + u.substr(end);
}

std::string DoubleAnyAmpersands(const std::string &Text) {
  std::string out;
  const size_t n = Text.size();
  for (size_t i = 0; i < n; ++i) {
    out += Text[i];
    if (Text[i] != '&') continue;
    bool lone = i + 1 < n ? Text[i + 1] != '&' : !(i > 0 && Text[i - 1] == '&');
    if (lone) out += '&';
  }
  return out;
}

void StrTrim(char *Text) {
  if (Text == nullptr) return;
  size_t n = std::strlen(Text), b = 0;
  while (b < n && static_cast<unsigned char>(Text[b]) <= 0x20)
    ++b;
  while (n > b && static_cast<unsigned char>(Text[n - 1]) <= 0x20)
    --n;
  std::memmove(Text, Text + b, n - b);
  Text[n - b] = '\0';
}

char *StrLInsert(char *Target, const char *Source, int16_t Count) {
  return Insert(Target, Source, Count);
}

char16_t *StrLInsertW(char16_t *Target, const char16_t *Source, int16_t Count) {
  return Insert(Target, Source, Count);
}

const char *StrNearer(const char *Text, char C1, char C2) {
  if (Text == nullptr) return nullptr;
  for (; *Text != '\0'; ++Text)
    if (*Text == C1 || *Text == C2) return Text;
  return nullptr;
}

std::string Rightstr(const std::string &Text, int32_t N) {
  if (N <= 0) return {};
  return static_cast<size_t>(N) >= Text.size() ? Text : Text.substr(Text.size() - N);
}

std::string BooleanToStr(bool Value) {
  return Value ? "true" : "false";
}

bool StrToBoolean(const std::string &Text) {
  return AnsiLowerCase(Text) == "true";
}

std::string AttributesToStr(uint16_t Attributes) {
  static const struct {
    uint16_t bit;
    char letter;
  } order[] = {{0x01, 'r'}, {0x20, 'a'}, {0x04, 's'}, {0x02, 'h'}, {0x10, 'd'}, {0x08, 'v'}};
  std::string out;
  for (const auto &o : order)
    if (Attributes & o.bit) out += o.letter;
  return out;
}

std::string RealToDecStr(double Value) {
  // Through the text form the value would be shown in, and back.
  try {
    return FormatFloat("####,.00", StrToFloat(FloatToStr(Value)));
  } catch (...) {
    return "*";
  }
}

std::string IntToDecStr(int32_t Value) {
  try {
    return FormatFloat("#,##0", Value);
  } catch (...) {
    return "*";
  }
}

} // namespace kestrel
