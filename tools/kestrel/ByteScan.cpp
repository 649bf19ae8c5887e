#include "ByteScan.h"

#include <algorithm>
#include <cstring>

#include <kestrel/files/TextFiles.h>
#include <kestrel/frame/platform/Processor.h>

#if defined(__x86_64__)
#include <immintrin.h>
#define KESTREL_CLI_X86 1
#define KESTREL_CLI_AVX2 __attribute__((target("avx2,bmi,popcnt")))
#endif

namespace kestrel::cli {
namespace {

bool IsStrayControl(uint8_t b) {
  return b < 0x20 && !(b >= 0x08 && b <= 0x0D) && b != 0x1A && b != 0x1B;
}

// U+2028 or U+2029 starting at s[i].
bool SeparatorAt(const uint8_t *s, size_t i, size_t n) {
  return s[i] == 0xE2 && i + 2 < n && s[i + 1] == 0x80 && (s[i + 2] == 0xA8 || s[i + 2] == 0xA9);
}

// Validates sequence after sequence from `at` until past `to`; returns where
// the next sequence starts, or SIZE_MAX for an ill-formed one.
size_t ValidateUpTo(const uint8_t *s, size_t at, size_t to, size_t n) {
  while (at < to) {
    const size_t len = Utf8SequenceAt(s, at, n);
    if (len == 0) return SIZE_MAX;
    at += len;
  }
  return at;
}

// Units, breaks and controls of s[from, n), byte by byte; a CR whose LF lies
// in the tally before counted already.
void CountScalar(const uint8_t *s, size_t from, size_t n, Utf8Tally &t) {
  for (size_t i = from; i < n; ++i) {
    const uint8_t b = s[i];
    t.units += ((b & 0xC0) != 0x80) + (b >= 0xF0);
    if (b == '\n')
      ++t.breaks;
    else if (b == '\r')
      t.breaks += !(i + 1 < n && s[i + 1] == '\n');
    else if (SeparatorAt(s, i, n))
      ++t.breaks;
    if (IsStrayControl(b)) t.strayControls = true;
  }
}

size_t FindProbeFrom(const uint8_t *s, size_t last, size_t i, const ByteProbe &pr) {
  for (; i <= last; ++i) {
    bool all = true;
    for (uint8_t t = 0; t < pr.used && all; ++t) {
      const ByteTest &test = pr.tests[t];
      const uint8_t b = s[i + test.offset];
      all = std::find(test.bytes, test.bytes + test.count, b) != test.bytes + test.count;
    }
    if (all) return i;
  }
  return kNoProbe;
}

#ifdef KESTREL_CLI_X86

KESTREL_CLI_AVX2 uint64_t Sum(__m256i counts) {
  const __m256i sums = _mm256_sad_epu8(counts, _mm256_setzero_si256());
  return uint64_t(_mm256_extract_epi64(sums, 0) + _mm256_extract_epi64(sums, 1) +
                  _mm256_extract_epi64(sums, 2) + _mm256_extract_epi64(sums, 3));
}

// The last 32 bytes or fewer as one step, padded with blanks (which are no
// break and no control; the units they add are taken off again). A CR at
// the end meets a blank and counts as a break of its own, as it should.
KESTREL_CLI_AVX2 void TallyTailAvx2(const uint8_t *s, size_t i, size_t n, Utf8Tally &t) {
  alignas(32) uint8_t pad[64];
  std::memset(pad, ' ', sizeof pad);
  const size_t r = n - i;
  std::memcpy(pad, s + i, r);
  const __m256i v = _mm256_load_si256(reinterpret_cast<const __m256i *>(pad));
  const __m256i after = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(pad + 1));
  const __m256i lf = _mm256_set1_epi8('\n');
  const __m256i isLf = _mm256_cmpeq_epi8(v, lf);
  const __m256i lone = _mm256_andnot_si256(_mm256_cmpeq_epi8(after, lf),
                                           _mm256_cmpeq_epi8(v, _mm256_set1_epi8('\r')));
  t.breaks += uint64_t(_mm_popcnt_u32(uint32_t(_mm256_movemask_epi8(_mm256_or_si256(isLf, lone)))));
  const auto low = uint32_t(
      _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_min_epu8(v, _mm256_set1_epi8(0x1F)), v)));
  for (uint32_t m = low; m; m &= m - 1)
    t.strayControls = t.strayControls || IsStrayControl(pad[__builtin_ctz(m)]);
  if (_mm256_movemask_epi8(v) == 0) {
    t.units += r;
    return;
  }
  const auto cont = uint32_t(_mm256_movemask_epi8(_mm256_cmpgt_epi8(_mm256_set1_epi8(-64), v)));
  const auto four = uint32_t(
      _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_max_epu8(v, _mm256_set1_epi8(char(0xF0))), v)));
  t.units += uint64_t(int64_t(r) - _mm_popcnt_u32(cont) + _mm_popcnt_u32(four));
  for (size_t k = i; k < n; ++k)
    t.breaks += SeparatorAt(s, k, n);
}

// 32 bytes a step; the counts gather in byte lanes (at most two a step) and
// are summed every 127 steps. The byte after each step is read too, for
// CR LF, so the last 32 go one at a time.
KESTREL_CLI_AVX2 void TallyAvx2(const uint8_t *s, size_t n, Utf8Tally &t) {
  const __m256i lf = _mm256_set1_epi8('\n'), cr = _mm256_set1_epi8('\r'),
                e2 = _mm256_set1_epi8(char(0xE2)), below20 = _mm256_set1_epi8(0x1F),
                f0 = _mm256_set1_epi8(char(0xF0)), cont = _mm256_set1_epi8(-65),
                bs = _mm256_set1_epi8(0x08), five = _mm256_set1_epi8(5),
                notOne = _mm256_set1_epi8(char(0xFE)), sub = _mm256_set1_epi8(0x1A);
  size_t i = 0, validFrom = 0;
  __m256i stray = _mm256_setzero_si256();
  while (i + 33 <= n) {
    __m256i breaks = _mm256_setzero_si256(), units = _mm256_setzero_si256();
    for (size_t steps = 0; steps < 127 && i + 33 <= n; ++steps, i += 32) {
      const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(s + i));
      const __m256i after = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(s + i + 1));
      const __m256i isLf = _mm256_cmpeq_epi8(v, lf), isCr = _mm256_cmpeq_epi8(v, cr);
      const __m256i lone = _mm256_andnot_si256(_mm256_cmpeq_epi8(after, lf), isCr);
      breaks = _mm256_sub_epi8(breaks, _mm256_or_si256(isLf, lone));
      // Below 20 but 08-0D, 1A and 1B.
      const __m256i low = _mm256_cmpeq_epi8(_mm256_min_epu8(v, below20), v);
      const __m256i fromBs = _mm256_sub_epi8(v, bs);
      const __m256i usual =
          _mm256_or_si256(_mm256_cmpeq_epi8(_mm256_min_epu8(fromBs, five), fromBs),
                          _mm256_cmpeq_epi8(_mm256_and_si256(v, notOne), sub));
      stray = _mm256_or_si256(stray, _mm256_andnot_si256(usual, low));
      if (_mm256_movemask_epi8(v) == 0) {
        t.units += 32;
        continue;
      }
      units = _mm256_sub_epi8(units, _mm256_cmpgt_epi8(v, cont));
      units = _mm256_sub_epi8(units, _mm256_cmpeq_epi8(_mm256_max_epu8(v, f0), v));
      for (auto mE2 = uint32_t(_mm256_movemask_epi8(_mm256_cmpeq_epi8(v, e2))); mE2; mE2 &= mE2 - 1)
        t.breaks += SeparatorAt(s, i + size_t(__builtin_ctz(mE2)), n);
      validFrom = ValidateUpTo(s, std::max(validFrom, i), i + 32, n);
      if (validFrom == SIZE_MAX) {
        t.valid = false;
        return;
      }
    }
    t.breaks += Sum(breaks);
    t.units += Sum(units);
  }
  if (!_mm256_testz_si256(stray, stray)) t.strayControls = true;
  if (i < n) TallyTailAvx2(s, i, n, t);
  if (ValidateUpTo(s, std::max(validFrom, i), n, n) == SIZE_MAX) t.valid = false;
}

// Whether the byte is one of a test's N bytes, 32 positions at once.
template <int N> KESTREL_CLI_AVX2 uint32_t Hits(__m256i v, const __m256i *bytes) {
  __m256i hit = _mm256_cmpeq_epi8(v, bytes[0]);
  for (int k = 1; k < N; ++k)
    hit = _mm256_or_si256(hit, _mm256_cmpeq_epi8(v, bytes[k]));
  return uint32_t(_mm256_movemask_epi8(hit));
}

template <int N0, int N1>
KESTREL_CLI_AVX2 size_t ProbeLoop(const uint8_t *s, size_t last, size_t i, const ByteProbe &pr) {
  __m256i b0[4], b1[4];
  for (int k = 0; k < 4; ++k) {
    b0[k] = _mm256_set1_epi8(char(pr.tests[0].bytes[std::min(k, pr.tests[0].count - 1)]));
    b1[k] = _mm256_set1_epi8(
        char(pr.tests[1].bytes[std::min(k, std::max(1, int(pr.tests[1].count)) - 1)]));
  }
  const uint32_t o0 = pr.tests[0].offset, o1 = pr.tests[1].offset;
  for (; i + 31 <= last; i += 32) {
    uint32_t m = Hits<N0>(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(s + i + o0)), b0);
    if constexpr (N1 > 0)
      m &= Hits<N1>(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(s + i + o1)), b1);
    if (m) return i + size_t(__builtin_ctz(m));
  }
  return FindProbeFrom(s, last, i, pr);
}

template <int N0>
KESTREL_CLI_AVX2 size_t ProbeSecond(const uint8_t *s, size_t last, size_t i, const ByteProbe &pr) {
  if (pr.used < 2) return ProbeLoop<N0, 0>(s, last, i, pr);
  if (pr.tests[1].count <= 1) return ProbeLoop<N0, 1>(s, last, i, pr);
  if (pr.tests[1].count <= 2) return ProbeLoop<N0, 2>(s, last, i, pr);
  return ProbeLoop<N0, 4>(s, last, i, pr);
}

KESTREL_CLI_AVX2 size_t FindProbeAvx2(const uint8_t *s, size_t last, size_t i,
                                      const ByteProbe &pr) {
  if (pr.tests[0].count <= 1) return ProbeSecond<1>(s, last, i, pr);
  if (pr.tests[0].count <= 2) return ProbeSecond<2>(s, last, i, pr);
  return ProbeSecond<4>(s, last, i, pr);
}

const bool kAvx2 = ProcessorRunsAvx2();

#else

const bool kAvx2 = false;

#endif

} // namespace

void TallyUtf8Scalar(const char *p, size_t n, Utf8Tally &t) {
  const auto *s = reinterpret_cast<const uint8_t *>(p);
  CountScalar(s, 0, n, t);
  if (ValidateUpTo(s, 0, n, n) == SIZE_MAX) t.valid = false;
}

void TallyUtf8(const char *p, size_t n, Utf8Tally &t) {
#ifdef KESTREL_CLI_X86
  if (kAvx2) return TallyAvx2(reinterpret_cast<const uint8_t *>(p), n, t);
#endif
  TallyUtf8Scalar(p, n, t);
}

size_t FindProbeScalar(const char *p, size_t n, size_t from, const ByteProbe &probe) {
  if (probe.used == 0 || n < probe.span || from > n - probe.span) return kNoProbe;
  return FindProbeFrom(reinterpret_cast<const uint8_t *>(p), n - probe.span, from, probe);
}

size_t FindProbe(const char *p, size_t n, size_t from, const ByteProbe &probe) {
#ifdef KESTREL_CLI_X86
  if (kAvx2 && probe.used > 0 && n >= probe.span && from <= n - probe.span)
    return FindProbeAvx2(reinterpret_cast<const uint8_t *>(p), n - probe.span, from, probe);
#endif
  return FindProbeScalar(p, n, from, probe);
}

} // namespace kestrel::cli
