// The literal of a pattern and the search for it, shared by both regular-
// expression engines: the plain characters that stand in a row at the top of
// the expression, and their occurrences in a text, found by comparing two of
// their units (the rarest) over 16 (AVX2) or 8 (SSE2) positions at once.
// Internal to the search units.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include <kestrel/frame/platform/Processor.h>
#include <kestrel/search/URESearch.h>

namespace kestrel {

// Shorter literals gain nothing over the search for the first units.
inline constexpr size_t MinLiteral = 2;

// The items of a sequence, in order: sequences nest either way, and as deep
// as a pattern is long, so the walk keeps its own stack.
inline void Flatten(const TExpressionList &Expressions, uint32_t Expr,
                    std::vector<uint32_t> &Items) {
  std::vector<uint32_t> pending = {Expr};
  while (!pending.empty()) {
    const uint32_t x = pending.back();
    pending.pop_back();
    const TExpression &e = Expressions.Expressions[x];
    if (e.ExprType != SequenceExpr) {
      Items.push_back(x);
      continue;
    }
    pending.push_back(e.RHS);
    pending.push_back(e.LHS);
  }
}

// The symbol of a plain character of the basic plane, or NoExpression.
inline uint32_t LiteralSymbol(const TExpressionList &Expressions, const TSymbolTable &Symbols,
                              uint32_t Expr) {
  const TExpression &e = Expressions.Expressions[Expr];
  if (e.ExprType != SymbolExpr || e.LHS >= Symbols.SymbolsUsed) return NoExpression;
  const TSymbolTableEntry &sym = Symbols.Symbols[e.LHS];
  const UCS4 c = sym.Symbol.Chr;
  if (sym.SymbolType != CharSymbol || c >= 0x10000 || (c >= 0xD800 && c <= 0xDFFF))
    return NoExpression;
  return e.LHS;
}

// How often a unit stands in ordinary text, roughly: letters by their order
// in English, capitals, digits and punctuation well behind, blanks first.
inline uint32_t Commonness(uint16_t u) {
  constexpr char order[] = "etaoinshrdlcumwfgypbvkjxqz";
  if (u >= 'A' && u <= 'Z') u = uint16_t(u - 'A' + 'a');
  for (uint32_t i = 0; i < 26; ++i)
    if (u == uint16_t(order[i])) return 60 - 2 * i;
  if (u == ' ' || u == '\n' || u == '\r' || u == '\t') return 100;
  return u < 0x80 ? 8 : 2;
}

// The two probes of a literal out of its candidates (each with its
// commonness): the rarest, and the rarest of the others that looks for other
// units, since two positions that must hold one letter pair up more often
// in text ("g..g" of "language") than two different letters ("gu").
inline void ChooseProbes(std::vector<std::pair<uint32_t, TLiteralProbe>> &Candidates,
                         TLiteralProbe (&Probes)[2]) {
  std::stable_sort(Candidates.begin(), Candidates.end(),
                   [](const auto &l, const auto &r) { return l.first < r.first; });
  Probes[0] = Probes[1] = Candidates.front().second;
  const auto same = [](const TLiteralProbe &a, const TLiteralProbe &b) {
    return a.Count == b.Count && std::equal(a.Units, a.Units + a.Count, b.Units);
  };
  bool chosen = false;
  for (size_t i = 1; i < Candidates.size() && !chosen; ++i)
    if (!same(Candidates[i].second, Probes[0])) {
      Probes[1] = Candidates[i].second;
      chosen = true;
    }
  if (!chosen && Candidates.size() > 1) Probes[1] = Candidates[1].second;
}

namespace probe {

#if defined(__x86_64__) || defined(__i386__)
// The positions from Run on where both probes hold, while the loads stay
// before Stop; Confirm checks a candidate. Gives the first confirmed, or null
// with Run where the vector search stopped.
template <typename Check>
const char16_t *Sse2(const char16_t *&Run, const char16_t *Stop, const TLiteralProbe *P,
                     Check &&Confirm) {
  __m128i a[4], b[4];
  for (uint32_t k = 0; k < 4; ++k) {
    a[k] = _mm_set1_epi16(short(P[0].Units[k < P[0].Count ? k : 0]));
    b[k] = _mm_set1_epi16(short(P[1].Units[k < P[1].Count ? k : 0]));
  }
  for (; Run + 8 <= Stop; Run += 8) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(Run + P[0].Offset));
    const __m128i w = _mm_loadu_si128(reinterpret_cast<const __m128i *>(Run + P[1].Offset));
    __m128i x = _mm_cmpeq_epi16(v, a[0]), y = _mm_cmpeq_epi16(w, b[0]);
    for (uint32_t k = 1; k < P[0].Count; ++k)
      x = _mm_or_si128(x, _mm_cmpeq_epi16(v, a[k]));
    for (uint32_t k = 1; k < P[1].Count; ++k)
      y = _mm_or_si128(y, _mm_cmpeq_epi16(w, b[k]));
    for (unsigned m = unsigned(_mm_movemask_epi8(_mm_and_si128(x, y))); m != 0;) {
      const unsigned bit = unsigned(__builtin_ctz(m));
      m &= ~(3u << bit); // two bits per unit
      if (Confirm(Run + (bit >> 1))) return Run + (bit >> 1);
    }
  }
  return nullptr;
}

template <typename Check>
__attribute__((target("avx2"))) const char16_t *Avx2(const char16_t *&Run, const char16_t *Stop,
                                                     const TLiteralProbe *P, Check &&Confirm) {
  __m256i a[4], b[4];
  for (uint32_t k = 0; k < 4; ++k) {
    a[k] = _mm256_set1_epi16(short(P[0].Units[k < P[0].Count ? k : 0]));
    b[k] = _mm256_set1_epi16(short(P[1].Units[k < P[1].Count ? k : 0]));
  }
  for (; Run + 16 <= Stop; Run += 16) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(Run + P[0].Offset));
    const __m256i w = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(Run + P[1].Offset));
    __m256i x = _mm256_cmpeq_epi16(v, a[0]), y = _mm256_cmpeq_epi16(w, b[0]);
    for (uint32_t k = 1; k < P[0].Count; ++k)
      x = _mm256_or_si256(x, _mm256_cmpeq_epi16(v, a[k]));
    for (uint32_t k = 1; k < P[1].Count; ++k)
      y = _mm256_or_si256(y, _mm256_cmpeq_epi16(w, b[k]));
    for (unsigned m = unsigned(_mm256_movemask_epi8(_mm256_and_si256(x, y))); m != 0;) {
      const unsigned bit = unsigned(__builtin_ctz(m));
      m &= ~(3u << bit);
      if (Confirm(Run + (bit >> 1))) return Run + (bit >> 1);
    }
  }
  return nullptr;
}

// Chosen once, as the other vector ways of the library are.
inline const bool HaveAvx2 = ProcessorRunsAvx2();
#endif

} // namespace probe

// The first place from Run on where a literal of Length units stands, by the
// two probes and Confirm (which checks every unit); End if none.
template <typename Check>
const char16_t *FindLiteral(const char16_t *Run, const char16_t *End, uint32_t Length,
                            const TLiteralProbe *Probes, Check &&Confirm) {
  if (End - Run < ptrdiff_t(Length)) return End;
  const char16_t *last = End - Length; // the last place it can start
#if defined(__x86_64__) || defined(__i386__)
  // The loads read 8 or 16 units from each probe's offset on: they stop
  // where they would pass the end of the text.
  const char16_t *stop = End - std::max(Probes[0].Offset, Probes[1].Offset);
  auto confirm = [&](const char16_t *at) { return at <= last && Confirm(at); };
  const char16_t *found = probe::HaveAvx2 ? probe::Avx2(Run, stop, Probes, confirm)
                                          : probe::Sse2(Run, stop, Probes, confirm);
  if (found != nullptr) return found;
#endif
  for (; Run <= last; ++Run)
    if (Confirm(Run)) return Run;
  return End;
}

} // namespace kestrel
