// The required literal of TURELongestMatch: which part of the pattern it is,
// and the search for it, two of its units compared at once over 16 (AVX2) or
// 8 (SSE2) positions of the text.
#include <kestrel/search/URELongestMatchInternal.h>

#include <algorithm>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include <kestrel/unicode/Unicode.h>

namespace kestrel::longest {
namespace {

constexpr size_t MinLiteral = 2;

// The items of a sequence, in order: sequences nest either way.
void Flatten(const TExpressionList &Expressions, uint32_t Expr, std::vector<uint32_t> &Items) {
  const TExpression &e = Expressions.Expressions[Expr];
  if (e.ExprType != SequenceExpr) {
    Items.push_back(Expr);
    return;
  }
  Flatten(Expressions, e.LHS, Items);
  Flatten(Expressions, e.RHS, Items);
}

// The symbol of a plain character of the basic plane, or NoExpression.
uint32_t LiteralSymbol(const TExpressionList &Expressions, const TSymbolTable &Symbols,
                       uint32_t Expr) {
  const TExpression &e = Expressions.Expressions[Expr];
  if (e.ExprType != SymbolExpr || e.LHS >= Symbols.SymbolsUsed) return NoExpression;
  const TSymbolTableEntry &sym = Symbols.Symbols[e.LHS];
  const UCS4 c = sym.Symbol.Chr;
  if (sym.SymbolType != CharSymbol || c >= 0x10000 || (c >= 0xD800 && c <= 0xDFFF))
    return NoExpression;
  return e.LHS;
}

// Every symbol an expression can read.
void SymbolsOf(const TExpressionList &Expressions, uint32_t Expr, std::vector<uint8_t> &Seen,
               std::vector<uint32_t> &Out) {
  std::vector<uint32_t> work = {Expr};
  while (!work.empty()) {
    const uint32_t x = work.back();
    work.pop_back();
    if (x >= Expressions.ExpressionsUsed || Seen[x]) continue;
    Seen[x] = 1;
    const TExpression &e = Expressions.Expressions[x];
    if (e.ExprType == SymbolExpr) {
      Out.push_back(e.LHS);
      continue;
    }
    if (e.ExprType == EmptyExpr) continue;
    work.push_back(e.LHS);
    if (e.ExprType == SequenceExpr || e.ExprType == AlternativeExpr) work.push_back(e.RHS);
  }
}

// How often a unit stands in ordinary text, roughly: letters by their order
// in English, capitals, digits and punctuation well behind, blanks first.
uint32_t Commonness(uint16_t u) {
  static const char order[] = "etaoinshrdlcumwfgypbvkjxqz";
  if (u >= 'A' && u <= 'Z') u = uint16_t(u - 'A' + 'a');
  if (u >= 'a' && u <= 'z') return 60 - 2 * uint32_t(std::find(order, order + 26, char(u)) - order);
  if (u == ' ' || u == '\n' || u == '\r' || u == '\t') return 100;
  if (u < 0x80) return 8;
  return 2;
}

#if defined(__x86_64__) || defined(__i386__)
using TProbe = TLiteralFilter::TProbe;

// The positions from Run on where both probes hold, 8 or 16 at a time, while
// the loads stay before Stop; Confirm checks a candidate. Returns the first
// confirmed, or null with Run where the vector search stopped.
template <typename Check>
const char16_t *ProbeSse2(const char16_t *&Run, const char16_t *Stop, const TProbe *P,
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
__attribute__((target("avx2"))) const char16_t *
ProbeAvx2(const char16_t *&Run, const char16_t *Stop, const TProbe *P, Check &&Confirm) {
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

const bool HaveAvx2 = [] {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") != 0;
}();
#endif

} // namespace

void TLiteralFilter::Build(const TExpressionList &Expressions, const TSymbolTable &Symbols,
                           uint32_t Root, TSymbolClasses &Classes) {
  FSymbols.clear();
  FClasses = &Classes;
  std::vector<uint32_t> items;
  Flatten(Expressions, Root, items);
  // The longest run of plain characters.
  size_t best = 0, bestLength = 0;
  for (size_t i = 0; i < items.size();) {
    size_t j = i;
    while (j < items.size() && LiteralSymbol(Expressions, Symbols, items[j]) != NoExpression)
      ++j;
    if (j - i > bestLength) {
      best = i;
      bestLength = j - i;
    }
    i = j == i ? i + 1 : j;
  }
  if (bestLength < MinLiteral) return;
  std::vector<uint32_t> symbols;
  for (size_t i = best; i < best + bestLength; ++i)
    symbols.push_back(Expressions.Expressions[items[i]].LHS);
  // The probes: positions whose units are all below 256 and few, rarest
  // first.
  std::vector<std::pair<uint32_t, TProbe>> probes;
  for (uint32_t j = 0; j < symbols.size(); ++j) {
    const uint32_t y = symbols[j];
    if (!Classes.AllAbove255([&](uint32_t c) { return !Classes.Accepts(y, c); })) continue;
    TProbe probe;
    probe.Offset = j;
    uint32_t common = 0;
    for (uint32_t u = 0; u < 256 && probe.Count <= 4; ++u)
      if (Classes.Accepts(y, Classes.OfUnit(char16_t(u)))) {
        if (probe.Count < 4) probe.Units[probe.Count] = uint16_t(u);
        ++probe.Count;
        common += Commonness(uint16_t(u));
      }
    if (probe.Count == 0 || probe.Count > 4) continue;
    probes.push_back({common, probe});
  }
  if (probes.empty()) return;
  std::stable_sort(probes.begin(), probes.end(),
                   [](const auto &l, const auto &r) { return l.first < r.first; });
  FProbe[0] = probes[0].second;
  FProbe[1] = probes.size() > 1 ? probes[1].second : probes[0].second;
  // What may stand before the literal within a match.
  FPrefix = best == 0;
  std::vector<uint8_t> seen(Expressions.ExpressionsUsed, 0);
  std::vector<uint32_t> before;
  for (size_t i = 0; i < best; ++i)
    SymbolsOf(Expressions, items[i], seen, before);
  FBefore.assign(Classes.Count(), 0);
  for (uint32_t c = 0; c < Classes.Count(); ++c)
    for (uint32_t y : before)
      if (Classes.Accepts(y, c)) {
        FBefore[c] = 1;
        break;
      }
  FSymbols = std::move(symbols);
  FHaveLast = false;
}

bool TLiteralFilter::Matches(const char16_t *At) {
  for (size_t j = 0; j < FSymbols.size(); ++j)
    if (!FClasses->Accepts(FSymbols[j], FClasses->OfUnit(At[j]))) return false;
  return true;
}

uint32_t TLiteralFilter::Find(const char16_t *Text, uint32_t P, uint32_t End) {
  const uint32_t length = uint32_t(FSymbols.size());
  if (End < length || P > End - length) return End;
  const char16_t *run = Text + P;
  const char16_t *last = Text + (End - length); // the last place it can start
#if defined(__x86_64__) || defined(__i386__)
  // The vector loads read from each probe's offset on: stop them where they
  // would pass the end of the text.
  const uint32_t reach = std::max(FProbe[0].Offset, FProbe[1].Offset);
  const char16_t *stop = Text + (End - reach);
  auto confirm = [this, last](const char16_t *at) { return at <= last && Matches(at); };
  const char16_t *found =
      HaveAvx2 ? ProbeAvx2(run, stop, FProbe, confirm) : ProbeSse2(run, stop, FProbe, confirm);
  if (found != nullptr) return uint32_t(found - Text);
#endif
  for (; run <= last; ++run)
    if (Matches(run)) return uint32_t(run - Text);
  return End;
}

uint32_t TLiteralFilter::Resume(const char16_t *Text, uint32_t P, uint32_t End) {
  // The occurrence found last is still the next one while P has not passed
  // it, and nothing before its resume point can begin a match.
  if (FHaveLast && P <= FLastFound) return std::max(P, FLastResume);
  const uint32_t q = Find(Text, P, End);
  if (q == End) return End;
  uint32_t s = q;
  if (!FPrefix)
    while (s > P) {
      const char16_t u = Text[s - 1];
      // A surrogate may be half of a pair the part before reads: go on.
      if (!IsHighSurrogateUnit(u) && !IsLowSurrogateUnit(u) && !FBefore[FClasses->OfUnit(u)]) break;
      --s;
    }
  FHaveLast = true;
  FLastFound = q;
  FLastResume = s;
  return s;
}

} // namespace kestrel::longest
