// The jump of TURELongestMatch over text where no attempt can begin: while
// no attempt is alive, units that leave the idle state as it is are passed
// by a table, or by a vector search when the units that matter are a few
// ranges below 256.
#include <kestrel/search/URELongestMatchInternal.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace kestrel::longest {
namespace {

constexpr uint32_t MaxClassesForSkip = 1024;
constexpr size_t MaxRanges = 8;

#if defined(__SSE2__)
// The first unit in one of the ranges [Low[i], Low[i] + Span[i]], eight
// units at a time: unit - low, saturated against the span, is 0 inside.
const char16_t *FindInRanges(const char16_t *Run, const char16_t *End, const uint16_t *Low,
                             const uint16_t *Span, size_t K) {
  __m128i low[MaxRanges], span[MaxRanges];
  for (size_t i = 0; i < K; ++i) {
    low[i] = _mm_set1_epi16(short(Low[i]));
    span[i] = _mm_set1_epi16(short(Span[i]));
  }
  const __m128i zero = _mm_setzero_si128();
  while (End - Run >= 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(Run));
    __m128i hit = zero;
    for (size_t i = 0; i < K; ++i)
      hit = _mm_or_si128(hit,
                         _mm_cmpeq_epi16(_mm_subs_epu16(_mm_sub_epi16(v, low[i]), span[i]), zero));
    if (const int mask = _mm_movemask_epi8(hit)) return Run + (__builtin_ctz(unsigned(mask)) >> 1);
    Run += 8;
  }
  for (; Run < End; ++Run)
    for (size_t i = 0; i < K; ++i)
      if (uint16_t(*Run - Low[i]) <= Span[i]) return Run;
  return End;
}
#endif

} // namespace

void TIdleSkip::Build(TStateCache &Cache, TSymbolClasses &Classes) {
  FUsable = false;
  const uint32_t n = Classes.Count();
  if (n > MaxClassesForSkip) return;
  std::vector<uint8_t> stays(n, 0);
  for (uint32_t c = 0; c < n; ++c) {
    const int32_t e = Cache.Entry(Cache.IdleRow(), c);
    stays[c] = (e & 3) == int32_t(TEffect::None) && (e >> 2) == Cache.IdleRow();
  }
  for (uint32_t u = 0; u < 256; ++u)
    FStays[u] = stays[Classes.OfUnit(char16_t(u))];
  FHighStays = Classes.AllAbove255([&](uint32_t c) { return stays[c] != 0; });
  FLow.clear();
  FSpan.clear();
  for (uint32_t u = 0; u < 256; ++u) {
    if (FStays[u]) continue;
    if (!FLow.empty() && FLow.back() + FSpan.back() + 1u == u)
      ++FSpan.back();
    else {
      FLow.push_back(uint16_t(u));
      FSpan.push_back(0);
    }
  }
  FUsable = true;
}

const char16_t *TIdleSkip::Next(const char16_t *Run, const char16_t *End) const {
#if defined(__SSE2__)
  if (FHighStays && !FLow.empty() && FLow.size() <= MaxRanges)
    return FindInRanges(Run, End, FLow.data(), FSpan.data(), FLow.size());
#endif
  for (; Run < End; ++Run) {
    const char16_t u = *Run;
    if (u < 256 ? !FStays[u] : !FHighStays) return Run;
  }
  return End;
}

} // namespace kestrel::longest
