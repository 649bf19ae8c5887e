#include <kestrel/search/bare_assemb.h>

#include <cstddef>

#include <kestrel/frame/Units.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#define KESTREL_BARE_SSE2 1
#endif

namespace kestrel {

namespace {

using Byte = unsigned char;

template <typename T> size_t TerminatedLength(const T *s) {
  size_t n = 0;
  while (s[n] != 0)
    ++n;
  return n;
}

// Unsigned value of a unit, so that bytes above 0x7F compare as such.
inline unsigned Value(char c) {
  return static_cast<Byte>(c);
}
inline unsigned Value(char16_t c) {
  return c;
}

#ifdef KESTREL_BARE_SSE2
// One 16-byte vector of units: compares, and a mask of one bit per unit.
template <typename T> struct Lanes;
template <> struct Lanes<char> {
  static constexpr size_t kCount = 16;
  static __m128i Splat(char c) { return _mm_set1_epi8(c); }
  static __m128i Eq(__m128i a, __m128i b) { return _mm_cmpeq_epi8(a, b); }
  static unsigned Bits(__m128i m) { return static_cast<unsigned>(_mm_movemask_epi8(m)); }
};
template <> struct Lanes<char16_t> {
  static constexpr size_t kCount = 8;
  static __m128i Splat(char16_t c) { return _mm_set1_epi16(static_cast<short>(c)); }
  static __m128i Eq(__m128i a, __m128i b) { return _mm_cmpeq_epi16(a, b); }
  static unsigned Bits(__m128i m) {
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(m, _mm_setzero_si128())));
  }
};
template <typename T> inline __m128i Load(const T *p) {
  return _mm_loadu_si128(reinterpret_cast<const __m128i *>(p));
}
#endif

// Tries the starts 0 to starts - 1 of a pattern of n units. A start is a
// candidate when its first and last units pass the key; the candidate then
// goes to Full, which checks the units in between. The vector loop filters
// a block of starts at a time and reads no unit past start + n - 1.
template <typename T, typename Key, typename Full>
const T *TryStarts(const T *text, size_t starts, size_t n, const Key &key, const Full &full) {
  size_t i = 0;
#ifdef KESTREL_BARE_SSE2
  constexpr size_t K = Lanes<T>::kCount;
  for (; i + K <= starts; i += K) {
    unsigned mask = key.Block(Load(text + i), Load(text + i + n - 1));
    while (mask != 0) {
      size_t j = i + static_cast<size_t>(__builtin_ctz(mask));
      if (full(text + j)) return text + j;
      mask &= mask - 1;
    }
  }
#endif
  for (; i < starts; ++i)
    if (key.One(text[i], text[i + n - 1]) && full(text + i)) return text + i;
  return nullptr;
}

// The first and last unit of one pattern.
template <typename T> struct ExactKey {
  T first, last;
#ifdef KESTREL_BARE_SSE2
  __m128i vFirst = Lanes<T>::Splat(first), vLast = Lanes<T>::Splat(last);
  unsigned Block(__m128i a, __m128i b) const {
    return Lanes<T>::Bits(_mm_and_si128(Lanes<T>::Eq(a, vFirst), Lanes<T>::Eq(b, vLast)));
  }
#endif
  bool One(T a, T b) const {
    return a == first && b == last;
  }
};

// The first and last unit, each in either of two forms.
template <typename T> struct EitherKey {
  T first1, first2, last1, last2;
#ifdef KESTREL_BARE_SSE2
  __m128i vF1 = Lanes<T>::Splat(first1), vF2 = Lanes<T>::Splat(first2);
  __m128i vL1 = Lanes<T>::Splat(last1), vL2 = Lanes<T>::Splat(last2);
  unsigned Block(__m128i a, __m128i b) const {
    __m128i f = _mm_or_si128(Lanes<T>::Eq(a, vF1), Lanes<T>::Eq(a, vF2));
    __m128i l = _mm_or_si128(Lanes<T>::Eq(b, vL1), Lanes<T>::Eq(b, vL2));
    return Lanes<T>::Bits(_mm_and_si128(f, l));
  }
#endif
  bool One(T a, T b) const {
    return (a == first1 || a == first2) && (b == last1 || b == last2);
  }
};

template <typename T> const T *StrPos(const T *text, const T *sub, int32_t textLen) {
  if (text == nullptr || sub == nullptr || sub[0] == 0) return nullptr;
  size_t n = TerminatedLength(sub);
  if (textLen <= 0 || static_cast<size_t>(textLen) <= n) return nullptr;
  auto full = [sub, n](const T *at) {
    for (size_t k = 1; k + 1 < n; ++k)
      if (at[k] != sub[k]) return false;
    return true;
  };
  return TryStarts(text, static_cast<size_t>(textLen) - n, n, ExactKey<T>{sub[0], sub[n - 1]},
                   full);
}

template <typename T>
const T *StrIPos(const T *text, const T *form1, const T *form2, int32_t textLen) {
  if (text == nullptr || form1 == nullptr || form2 == nullptr) return nullptr;
  size_t n = TerminatedLength(form1);
  if (n == 0 || TerminatedLength(form2) != n) return nullptr;
  if (textLen <= 0 || static_cast<size_t>(textLen) <= n) return nullptr;
  auto full = [form1, form2, n](const T *at) {
    for (size_t k = 1; k + 1 < n; ++k)
      if (at[k] != form1[k] && at[k] != form2[k]) return false;
    return true;
  };
  EitherKey<T> key{form1[0], form2[0], form1[n - 1], form2[n - 1]};
  return TryStarts(text, static_cast<size_t>(textLen) - n, n, key, full);
}

template <typename T> const T *StrScan(const T *text, T ch, int32_t len) {
  if (len <= 0) return nullptr;
  size_t n = static_cast<size_t>(len), i = 0;
#ifdef KESTREL_BARE_SSE2
  constexpr size_t K = Lanes<T>::kCount;
  __m128i v = Lanes<T>::Splat(ch);
  for (; i + K <= n; i += K)
    if (unsigned mask = Lanes<T>::Bits(Lanes<T>::Eq(Load(text + i), v)))
      return text + i + __builtin_ctz(mask);
#endif
  for (; i < n; ++i)
    if (text[i] == ch) return text + i;
  return nullptr;
}

template <typename T> void ReplaceUnit(T *buffer, T from, T to, int32_t len) {
  for (int32_t i = 0; i < len; ++i)
    buffer[i] = buffer[i] == from ? to : buffer[i];
}

template <typename T> void ControlsToSpace(T *buffer, int32_t len) {
  for (int32_t i = 0; i < len; ++i)
    buffer[i] = Value(buffer[i]) < 0x20 ? T(0x20) : buffer[i];
}

template <typename T> void CarriageReturnsToSpace(T *buffer, int32_t len) {
  for (int32_t i = 0; i < len; ++i) {
    if (buffer[i] != T(0x0D)) continue;
    buffer[i] = T(0x20);
    if (i + 1 < len && buffer[i + 1] == T(0x0A)) buffer[++i] = T(0x20);
  }
}

template <typename T> void Blank(T *buffer, int32_t count) {
  for (int32_t i = 0; i < count; ++i)
    buffer[i] = T(0x20);
}

// Blanks runs of blanks down to their first blank. Nothing moves until the
// first pair of blanks, which the vector loop looks for; after it, blocks
// without a pair are copied down whole.
template <typename T> int32_t SqueezeBlanks(T *b, int32_t len) {
  if (len <= 0) {
    b[0] = 0;
    return 0;
  }
  const size_t n = static_cast<size_t>(len);
  size_t r = 0;
#ifdef KESTREL_BARE_SSE2
  constexpr size_t K = Lanes<T>::kCount;
  const __m128i blank = Lanes<T>::Splat(T(0x20));
  for (; r + K < n; r += K) {
    __m128i pair =
        _mm_and_si128(Lanes<T>::Eq(Load(b + r), blank), Lanes<T>::Eq(Load(b + r + 1), blank));
    if (unsigned mask = Lanes<T>::Bits(pair)) {
      r += static_cast<size_t>(__builtin_ctz(mask));
      break;
    }
  }
#endif
  while (r + 1 < n && !(b[r] == T(0x20) && b[r + 1] == T(0x20)))
    ++r;
  if (r + 1 >= n) {
    b[n] = 0;
    return len;
  }
  // b[r] and b[r + 1] are blanks: keep the first, drop the second.
  size_t w = r + 1;
  r += 2;
  auto step = [b, &w](size_t at) {
    T c = b[at];
    bool pair = c == T(0x20) && b[at - 1] == T(0x20); // read before b[w], which may be b[at - 1]
    b[w] = c;
    w += !pair;
  };
#ifdef KESTREL_BARE_SSE2
  // b[r - 1] is never written before it is read: every write lands below r - 1.
  for (; r + K <= n; r += K) {
    __m128i v = Load(b + r);
    __m128i pair = _mm_and_si128(Lanes<T>::Eq(v, blank), Lanes<T>::Eq(Load(b + r - 1), blank));
    if (Lanes<T>::Bits(pair) == 0) {
      _mm_storeu_si128(reinterpret_cast<__m128i *>(b + w), v);
      w += K;
    } else {
      for (size_t k = 0; k < K; ++k)
        step(r + k);
    }
  }
#endif
  for (; r < n; ++r)
    step(r);
  b[w] = 0;
  return static_cast<int32_t>(w);
}

// Drops or blanks the spans from Open through Close. The next Close at or
// after the read position is remembered, so the buffer is read once: when no
// Close lies behind one Open byte, none lies behind a later one.
void BetweenChars(char *buffer, char open, char close, int32_t len, int32_t maxSpan, bool remove) {
  int32_t w = 0, nextClose = -1;
  for (int32_t r = 0; r < len;) {
    char c = buffer[r];
    if (c != open) {
      buffer[w++] = c;
      ++r;
      continue;
    }
    if (nextClose < r) {
      nextClose = r;
      while (nextClose < len && buffer[nextClose] != close)
        ++nextClose;
    }
    if (nextClose < len && nextClose - r < maxSpan) {
      if (!remove)
        for (int32_t k = r; k <= nextClose; ++k)
          buffer[w++] = ' ';
      r = nextClose + 1;
    } else {
      ++r; // the Open byte alone goes
    }
  }
  buffer[w] = 0;
}

} // namespace

bool UnicodeByteReversed(const void *Buffer) {
  const Byte *b = static_cast<const Byte *>(Buffer);
  return (b[0] | b[1] << 8) == 0xFFFE;
}

bool UnicodeSigned(const void *Buffer) {
  const Byte *b = static_cast<const Byte *>(Buffer);
  unsigned v = b[0] | b[1] << 8;
  return v == 0xFEFF || v == 0xFFFE;
}

const char *FastStrPos(const char *Text, const char *Sub, int32_t TextLen) {
  return StrPos(Text, Sub, TextLen);
}

const char16_t *FastStrPosW(const char16_t *Text, const char16_t *Sub, int32_t TextLen) {
  return StrPos(Text, Sub, TextLen);
}

const char *FastStrIPos(const char *Text, const char *Form1, const char *Form2, int32_t TextLen) {
  return StrIPos(Text, Form1, Form2, TextLen);
}

const char16_t *FastStrIPosW(const char16_t *Text, const char16_t *Form1, const char16_t *Form2,
                             int32_t TextLen) {
  return StrIPos(Text, Form1, Form2, TextLen);
}

const char *FastStrScan(const char *Text, char Ch, int32_t Len) {
  return StrScan(Text, Ch, Len);
}

const char16_t *FastStrScanW(const char16_t *Text, char16_t Ch, int32_t Len) {
  return StrScan(Text, Ch, Len);
}

void SearchAndReplaceFast(char *Buffer, const char *Search, const char *Replace, int32_t BufLen,
                          int32_t SearchLen) {
  // A hit needs SearchLen bytes and one more behind them.
  if (SearchLen < 1 || BufLen <= SearchLen) return;
  const size_t n = static_cast<size_t>(SearchLen);
  const size_t starts = static_cast<size_t>(BufLen) - n;
  ExactKey<char> key{Search[0], Search[n - 1]};
  // Replaces at a start that agrees in full and is not inside the last
  // replacement; the next start tried lies behind it.
  size_t next = 0;
  auto tryAt = [&](size_t j) {
    if (j < next) return;
    for (size_t k = 1; k + 1 < n; ++k)
      if (Buffer[j + k] != Search[k]) return;
    for (size_t k = 0; k < n; ++k)
      Buffer[j + k] = Replace[k];
    next = j + n;
  };
  size_t i = 0;
#ifdef KESTREL_BARE_SSE2
  // A replacement writes only below the starts still to come, so a block's
  // mask stays true after one.
  constexpr size_t K = Lanes<char>::kCount;
  for (; i + K <= starts; i += K)
    for (unsigned mask = key.Block(Load(Buffer + i), Load(Buffer + i + n - 1)); mask != 0;
         mask &= mask - 1)
      tryAt(i + static_cast<size_t>(__builtin_ctz(mask)));
#endif
  for (; i < starts; ++i)
    if (key.One(Buffer[i], Buffer[i + n - 1])) tryAt(i);
}

void ReplaceCharacterBySpace(char *Buffer, char Ch, int32_t Len) {
  ReplaceUnit(Buffer, Ch, ' ', Len);
}

void ReplaceCharacterBySpaceW(char16_t *Buffer, char16_t Ch, int32_t Len) {
  ReplaceUnit(Buffer, Ch, u' ', Len);
}

void ReplaceCharacter1ByCharacter2(char *Buffer, uint16_t Pair, int32_t Len) {
  ReplaceUnit(Buffer, static_cast<char>(Pair & 0xFF), static_cast<char>(Pair >> 8), Len);
}

void ReplaceControlCharsBySpaceA(char *Buffer, int32_t Len) {
  ControlsToSpace(Buffer, Len);
}
void ReplaceControlCharsBySpaceW(char16_t *Buffer, int32_t Len) {
  ControlsToSpace(Buffer, Len);
}

void ReplaceCarriageReturnsBySpaceA(char *Buffer, int32_t Len) {
  CarriageReturnsToSpace(Buffer, Len);
}

void ReplaceCarriageReturnsBySpaceW(char16_t *Buffer, int32_t Len) {
  CarriageReturnsToSpace(Buffer, Len);
}

void ReplaceTabsBySpace(char *Buffer, int32_t Len) {
  ReplaceUnit(Buffer, '\t', ' ', Len);
}

void BlankOutSomeBytesA(char *Buffer, int32_t Count) {
  Blank(Buffer, Count);
}
void BlankOutSomeBytesW(char16_t *Buffer, int32_t Count) {
  Blank(Buffer, Count);
}

void CutLowercaseWords(char *Buffer, const ANSILower_or_upperStr_type &Lowers,
                       const ANSILower_or_upperStr_type &Uppers, int32_t Len) {
  // Bytes above 0x7A: 1 a listed lower-case letter, 2 a listed upper-case one.
  // A byte in both lists counts as lower case, the list looked at first.
  Byte kind[256] = {};
  for (char c : Uppers.view())
    kind[Value(c)] = 2;
  for (char c : Lowers.view())
    kind[Value(c)] = 1;
  bool keep = false;
  for (int32_t i = 0; i < Len; ++i) {
    unsigned c = Value(Buffer[i]);
    if (c <= 0x20)
      keep = false;
    else if (c < 0x41)
      continue;
    else if (c <= 0x5A)
      keep = true;
    else if (keep || c <= 0x60)
      continue;
    else if (c <= 0x7A || kind[c] == 1)
      Buffer[i] = ' ';
    else if (kind[c] == 2)
      keep = true;
  }
}

void CapitaliseABuffer(char *Buffer, const ANSILower_or_upperStr_type &Lowers,
                       const ANSILower_or_upperStr_type &Uppers, int32_t Len) {
  Byte upper[256];
  for (unsigned c = 0; c < 256; ++c)
    upper[c] = static_cast<Byte>(c >= 0x61 && c <= 0x7A ? c - 0x20 : c);
  // The first listed position of a letter wins, so fill from the back.
  size_t working = Lowers.length() < Uppers.length() ? Lowers.length() : Uppers.length();
  for (size_t k = working; k-- > 0;)
    if (Value(Lowers.data[k]) > 0x7A)
      upper[Value(Lowers.data[k])] = static_cast<Byte>(Uppers.data[k]);
  for (int32_t i = 0; i < Len; ++i)
    Buffer[i] = static_cast<char>(upper[Value(Buffer[i])]);
}

void ClearBetweenChars(char *Buffer, char Open, char Close, int32_t Len) {
  BetweenChars(Buffer, Open, Close, Len, INT32_MAX, true);
}

void CleanBetweenChars(char *Buffer, char Open, char Close, int32_t Len, int32_t MaxSpan,
                       bool Remove) {
  BetweenChars(Buffer, Open, Close, Len, MaxSpan, Remove);
}

int32_t LengthConvertedToUnix(char *Buffer, int32_t Len) {
  int32_t w = 0;
  for (int32_t r = 0; r < Len; ++r) {
    char c = Buffer[r];
    Buffer[w] = c;
    w += c != '\n';
  }
  return w;
}

int32_t RemoveRedundantSpaceA(char *Buffer, int32_t Len) {
  return SqueezeBlanks(Buffer, Len);
}

int32_t RemoveRedundantSpaceW(char16_t *Buffer, int32_t Len) {
  return SqueezeBlanks(Buffer, Len);
}

bool EqualContents(const void *A, const void *B, int32_t Len) {
  const Byte *a = static_cast<const Byte *>(A), *b = static_cast<const Byte *>(B);
  for (int32_t i = 0; i < Len; ++i)
    if (a[i] != b[i]) return false;
  return true;
}

int32_t HowFarEqualContents(const void *A, const void *B, int32_t Len) {
  const Byte *a = static_cast<const Byte *>(A), *b = static_cast<const Byte *>(B);
  for (int32_t i = 0; i < Len; ++i)
    if (a[i] != b[i]) return Len - i - 1;
  return 0;
}

uint32_t My4Checksum(const void *Buffer, int32_t Len) {
  const Byte *b = static_cast<const Byte *>(Buffer);
  uint32_t sum = 0;
  for (int32_t i = 0; i + 4 <= Len; i += 4)
    sum += uint32_t(b[i]) | uint32_t(b[i + 1]) << 8 | uint32_t(b[i + 2]) << 16 |
           uint32_t(b[i + 3]) << 24;
  return sum;
}

} // namespace kestrel

KESTREL_DEFINE_UNIT(bare_assemb, ::kestrel::NoUnitWork, ::kestrel::NoUnitWork)
