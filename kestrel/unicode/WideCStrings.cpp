// The Str*W family: wide C strings and their allocated buffers.
#include <kestrel/unicode/WideCStrings.h>

#include <cstdlib>
#include <cstring>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/unicode/CaseMapping.h>

namespace kestrel {
namespace {

char16_t *Mutable(const char16_t *p) {
  return const_cast<char16_t *>(p);
}

constexpr char16_t FoldAsciiLower(char16_t u) {
  return u >= u'a' && u <= u'z' ? static_cast<char16_t>(u - (u'a' - u'A')) : u;
}

int32_t Difference(char16_t a, char16_t b) {
  return int32_t(a) - int32_t(b);
}

bool Holds(const char16_t *set, char16_t u) {
  for (; *set; ++set)
    if (*set == u) return true;
  return false;
}

constexpr size_t kPrefix = sizeof(uint32_t);

} // namespace

uint32_t StrLenW(const char16_t *Str) {
  const char16_t *p = Str;
  while (*p)
    ++p;
  return static_cast<uint32_t>(p - Str);
}

char16_t *StrEndW(const char16_t *Str) {
  return Mutable(Str + StrLenW(Str));
}

char16_t *StrMoveW(char16_t *Dest, const char16_t *Source, uint32_t Count) {
  if (Dest != Source && Count > 0) std::memmove(Dest, Source, size_t(Count) * sizeof(char16_t));
  return Dest;
}

char16_t *StrCopyW(char16_t *Dest, const char16_t *Source) {
  return StrMoveW(Dest, Source, StrLenW(Source) + 1);
}

char16_t *StrECopyW(char16_t *Dest, const char16_t *Source) {
  uint32_t n = StrLenW(Source);
  StrMoveW(Dest, Source, n + 1);
  return Dest + n;
}

char16_t *StrLCopyW(char16_t *Dest, const char16_t *Source, uint32_t MaxLen) {
  uint32_t n = 0;
  while (n < MaxLen && Source[n])
    ++n;
  StrMoveW(Dest, Source, n);
  Dest[n] = 0;
  return Dest;
}

char16_t *StrPCopyW(char16_t *Dest, std::string_view Source) {
  StrPLCopyW(Dest, Source, static_cast<uint32_t>(Source.size()));
  Dest[Source.size()] = 0;
  return Dest;
}

char16_t *StrPLCopyW(char16_t *Dest, std::string_view Source, uint32_t MaxLen) {
  size_t n = std::min<size_t>(MaxLen, Source.size());
  for (size_t i = 0; i < n; ++i)
    Dest[i] = static_cast<unsigned char>(Source[i]);
  return Dest;
}

char16_t *StrCatW(char16_t *Dest, const char16_t *Source) {
  StrCopyW(StrEndW(Dest), Source);
  return Dest;
}

char16_t *StrLCatW(char16_t *Dest, const char16_t *Source, uint32_t MaxLen) {
  uint32_t n = StrLenW(Dest);
  if (n < MaxLen) StrLCopyW(Dest + n, Source, MaxLen - n);
  return Dest;
}

int32_t StrCompW(const char16_t *Str1, const char16_t *Str2) {
  for (;; ++Str1, ++Str2)
    if (*Str1 != *Str2 || *Str2 == 0) return Difference(*Str1, *Str2);
}

int32_t StrICompW(const char16_t *Str1, const char16_t *Str2) {
  for (;; ++Str1, ++Str2) {
    char16_t a = FoldAsciiLower(*Str1), b = FoldAsciiLower(*Str2);
    if (a != b || b == 0) return Difference(a, b);
  }
}

int32_t StrLCompW(const char16_t *Str1, const char16_t *Str2, uint32_t MaxLen) {
  for (uint32_t i = 0; i < MaxLen; ++i)
    if (Str1[i] != Str2[i] || Str2[i] == 0) return Difference(Str1[i], Str2[i]);
  return 0;
}

int32_t StrLICompW(const char16_t *Str1, const char16_t *Str2, uint32_t MaxLen) {
  for (uint32_t i = 0; i < MaxLen; ++i) {
    char16_t a = FoldAsciiLower(Str1[i]), b = FoldAsciiLower(Str2[i]);
    if (a != b || b == 0) return Difference(a, b);
  }
  return 0;
}

int32_t StrNScanW(const char16_t *S1, const char16_t *S2) {
  if (!S1 || !S2) return -1;
  int32_t i = 0;
  while (S1[i] && !Holds(S2, S1[i]))
    ++i;
  return i;
}

int32_t StrRNScanW(const char16_t *S1, const char16_t *S2) {
  if (!S1 || !S2) return -1;
  int32_t stepped = 0;
  for (const char16_t *p = S1; *p && !Holds(S2, *p); --p)
    ++stepped;
  return stepped;
}

char16_t *StrScanW(const char16_t *Str, char16_t Chr) {
  for (;; ++Str) {
    if (*Str == Chr) return Mutable(Str);
    if (*Str == 0) return nullptr;
  }
}

char16_t *StrScanW(const char16_t *Str, char16_t Chr, uint32_t StrLen) {
  if (!Str) return nullptr;
  if (StrLen == 0) return Mutable(Str);
  for (const char16_t *end = Str + StrLen; Str != end; ++Str)
    if (*Str == Chr) return Mutable(Str);
  return nullptr;
}

char16_t *StrRScanW(const char16_t *Str, char16_t Chr) {
  const char16_t *found = nullptr;
  for (;; ++Str) {
    if (*Str == Chr) found = Str;
    if (*Str == 0) return Mutable(found);
  }
}

char16_t *StrPosW(const char16_t *Str, const char16_t *SubStr) {
  if (!Str || !SubStr || *SubStr == 0) return nullptr;
  uint32_t n = StrLenW(Str), m = StrLenW(SubStr);
  if (m > n) return nullptr;
  for (uint32_t i = 0; i + m <= n; ++i)
    if (Str[i] == SubStr[0] && std::memcmp(Str + i, SubStr, m * sizeof(char16_t)) == 0)
      return Mutable(Str + i);
  return nullptr;
}

char16_t *StrUpperW(char16_t *Str) {
  for (char16_t *p = Str; *p; ++p)
    *p = WideUpCase(*p);
  return Str;
}

char16_t *StrLowerW(char16_t *Str) {
  for (char16_t *p = Str; *p; ++p)
    *p = WideLoCase(*p);
  return Str;
}

char16_t *StrTitleW(char16_t *Str) {
  for (char16_t *p = Str; *p; ++p)
    *p = WideTitleCaseChar(*p);
  return Str;
}

char16_t *StrAllocW(uint32_t Size) {
  uint64_t bytes = 2 * uint64_t(Size) + kPrefix;
  if (bytes > UINT32_MAX) throw EOutOfMemory("Out of memory");
  void *block = std::calloc(1, static_cast<size_t>(bytes));
  if (!block) throw EOutOfMemory("Out of memory");
  uint32_t prefix = static_cast<uint32_t>(bytes);
  std::memcpy(block, &prefix, kPrefix);
  return reinterpret_cast<char16_t *>(static_cast<char *>(block) + kPrefix);
}

uint32_t StrBufSizeW(const char16_t *Str) {
  uint32_t prefix;
  std::memcpy(&prefix, reinterpret_cast<const char *>(Str) - kPrefix, kPrefix);
  return (prefix - kPrefix) / sizeof(char16_t);
}

char16_t *StrNewW(const char16_t *Str) {
  if (!Str) return nullptr;
  uint32_t n = StrLenW(Str) + 1;
  return StrMoveW(StrAllocW(n), Str, n);
}

void StrDisposeW(char16_t *Str) {
  if (Str) std::free(reinterpret_cast<char *>(Str) - kPrefix);
}

void StrSwapByteOrder(char16_t *Str) {
  for (; *Str; ++Str)
    *Str = static_cast<char16_t>((*Str << 8) | (*Str >> 8));
}

} // namespace kestrel
