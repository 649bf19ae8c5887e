#include <kestrel/frame/host/AnsiStrings.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/platform/CharCase.h>

namespace kestrel {

namespace {

template <typename Map> std::string MapCase(std::string_view s, Map map) {
  std::string r(s);
  for (size_t i = 0; i < r.size();) {
    unsigned char b = static_cast<unsigned char>(r[i]);
    if (b < 0x80) { // the common case: one byte, nothing to decode
      r[i] = static_cast<char>(map(b));
      ++i;
      continue;
    }
    size_t len;
    int32_t c = DecodeUtf8(r, i, len);
    if (c >= 0) {
      char32_t m = map(static_cast<char32_t>(c));
      if (m != static_cast<char32_t>(c) && Utf8Length(m) == len)
        EncodeUtf8(m, r.data() + i); // same length, so it fits where the old one was
    }
    i += len;
  }
  return r;
}

// A comparison key unit: a case-folded code point, or 0x110000 + byte for a
// byte outside valid UTF-8, so that such bytes sort after every character.
int32_t KeyAt(std::string_view s, size_t &i, bool fold) {
  unsigned char b = static_cast<unsigned char>(s[i]);
  if (b < 0x80) {
    ++i;
    return fold ? static_cast<int32_t>(SimpleCaseFold(b)) : b;
  }
  size_t len;
  int32_t c = DecodeUtf8(s, i, len);
  i += len;
  if (c < 0) return 0x110000 + b;
  return fold ? static_cast<int32_t>(SimpleCaseFold(static_cast<char32_t>(c))) : c;
}

int Compare(std::string_view a, std::string_view b, bool fold) {
  size_t i = 0, j = 0;
  while (i < a.size() && j < b.size()) {
    int32_t ka = KeyAt(a, i, fold), kb = KeyAt(b, j, fold);
    if (ka != kb) return ka < kb ? -1 : 1;
  }
  if (i < a.size()) return 1;
  return j < b.size() ? -1 : 0;
}

} // namespace

std::string AnsiLowerCase(std::string_view s) {
  return MapCase(s, SimpleLowerCase);
}

std::string AnsiUpperCase(std::string_view s) {
  return MapCase(s, SimpleUpperCase);
}

std::string AnsiLowerCaseFileName(std::string_view s) {
  return AnsiLowerCase(s);
}
std::string AnsiUpperCaseFileName(std::string_view s) {
  return AnsiUpperCase(s);
}

int AnsiCompareStr(std::string_view a, std::string_view b) {
  return Compare(a, b, false);
}
int AnsiCompareText(std::string_view a, std::string_view b) {
  return Compare(a, b, true);
}
bool AnsiSameStr(std::string_view a, std::string_view b) {
  return a == b;
}
bool AnsiSameText(std::string_view a, std::string_view b) {
  return Compare(a, b, true) == 0;
}

size_t AnsiPos(std::string_view sub, std::string_view s) {
  size_t p = s.find(sub);
  return p == std::string_view::npos ? 0 : p + 1;
}

std::u32string CodePointsOf(std::string_view s, std::vector<size_t> *offsets) {
  std::u32string r;
  r.reserve(s.size());
  for (size_t i = 0; i < s.size();) {
    if (offsets) offsets->push_back(i);
    size_t len;
    unsigned char b = static_cast<unsigned char>(s[i]);
    int32_t c = b < 0x80 ? (len = 1, b) : DecodeUtf8(s, i, len);
    r.push_back(c < 0 ? char32_t(0x110000 + b) : char32_t(c));
    i += len;
  }
  return r;
}

char32_t UpperCodePoint(char32_t c) {
  if (c < 0x80) return c >= 'a' && c <= 'z' ? c - 32 : c;
  return c < 0x110000 ? SimpleUpperCase(c) : c;
}

namespace {
constexpr size_t kPrefix = sizeof(uint32_t);
}

char *StrAlloc(size_t size) {
  if (size > UINT32_MAX - kPrefix) throw EOutOfMemory("Out of memory");
  auto *block = static_cast<uint8_t *>(std::malloc(size + kPrefix));
  if (!block) throw EOutOfMemory("Out of memory");
  uint32_t stored = static_cast<uint32_t>(size + kPrefix);
  std::memcpy(block, &stored, kPrefix);
  if (size) block[kPrefix] = 0;
  return reinterpret_cast<char *>(block + kPrefix);
}

size_t StrBufSize(const char *str) {
  if (!str) return 0;
  uint32_t stored;
  std::memcpy(&stored, str - kPrefix, kPrefix);
  return stored - kPrefix;
}

void StrDispose(char *str) {
  if (str) std::free(str - kPrefix);
}

size_t StrLen(const char *str) {
  return str ? std::strlen(str) : 0;
}

} // namespace kestrel
