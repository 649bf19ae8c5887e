// The accelerator of the regular-expression engine: tables built after a
// compile from the engine's own symbol test, and the search for the units that
// can begin a match, many units at a time with SSE2 or AVX2.
#include <kestrel/search/UREFastScan.h>

#include <algorithm>
#include <bitset>
#include <mutex>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include <kestrel/frame/platform/Processor.h>
#include <kestrel/search/URELiteralSearchInternal.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

namespace {

constexpr uint32_t StepTableMaxStates = 1024;
constexpr uint32_t DecisionCacheSize = 4096;

inline uint32_t DecisionSlot(uint32_t state, UCS4 c) {
  return ((c * 0x9E3779B1u) ^ (state * 0x85EBCA77u)) >> 20; // 12 bits
}

} // namespace

void TUREFastScan::Clear() {
  FStartLow.clear();
  FStartSpan.clear();
  FStartUnitsKnown = false;
  FStartSkipsHigh = false;
  FStep.clear();
  FHighColumn.clear();
  FHighStep.clear();
  FHighUsed = 0;
  FDecisions.clear();
  FLiteral.clear();
  FLiteralOn = false;
  FHaveLast = false;
}

void TUREFastScan::Build(const TDFA &Dfa, const std::vector<UCS4> &Literal) {
  Clear();
  const uint32_t n = Dfa.StateList.StatesUsed;
  if (n == 0) return;
  FDecisions.assign(DecisionCacheSize, TDecisionCache{});
  if (n > StepTableMaxStates) return;
  // What each symbol accepts below 256, tested once per symbol; a state's row
  // then takes its transitions in order, so that the last that accepts wins,
  // as Decide has it.
  const TSymbolTable &symbols = Dfa.SymbolTable;
  const bool fold = (Dfa.Flags & FoldCase) != 0;
  std::vector<std::bitset<256>> accepts(symbols.SymbolsUsed);
  for (uint32_t y = 0; y < symbols.SymbolsUsed; ++y)
    for (UCS4 c = 0; c < 256; ++c)
      accepts[y][c] = URESymbolAccepts(symbols.Symbols[y], 0, fold ? UnicodeToLower(c) : c);
  FStep.assign(size_t(n) * 256, NoTarget);
  for (uint32_t s = 0; s < n; ++s) {
    int32_t *row = FStep.data() + size_t(s) * 256;
    const TDFAState &st = Dfa.StateList.States[s];
    for (uint32_t i = 0; i < st.NumberTransitions; ++i) {
      const TTransition &tr = Dfa.TransitionList.Transitions[st.StartTransition + i];
      const std::bitset<256> &a = accepts[tr.Symbol];
      if (a.none()) continue;
      for (UCS4 c = a._Find_first(); c < 256; c = a._Find_next(c))
        row[c] = int32_t(tr.NextState);
    }
    row[0x0A] = row[0x0D] = Anchored;
  }
  FindStartUnits(Dfa);
  BuildLiteral(Dfa, Literal);
}

int32_t TUREFastScan::Decision(const TDFA &Dfa, uint32_t State, UCS4 C) {
  TDecisionCache &slot = FDecisions[DecisionSlot(State, C)];
  if (slot.Code != C || slot.State != State) slot = TDecisionCache{C, State, Decide(Dfa, State, C)};
  return slot.Target;
}

// Most texts use a few hundred units at most: those from 256 up get columns
// of their own, the rest go through the decision cache.
int32_t TUREFastScan::AddHighColumn(const TDFA &Dfa, uint32_t State, char16_t U) {
  if (IsHighSurrogateUnit(U) || IsLowSurrogateUnit(U) || IsLineSeparator(U) ||
      FHighUsed == HighColumns)
    return Slow;
  if (FHighColumn.empty()) {
    FHighColumn.assign(0x10000, 0);
    FHighStep.assign(FStep.size() / 256 * HighColumns, Unknown);
  }
  FHighColumn[U] = uint8_t(++FHighUsed);
  return HighStep(Dfa, State, U);
}

// The winning transition on C in state Cur where no anchor can accept: not at
// the first unit of a text, C no line separator, flags 0.
int32_t TUREFastScan::Decide(const TDFA &DFA, uint32_t Cur, UCS4 C) {
  UCS4 f = (DFA.Flags & FoldCase) ? UnicodeToLower(C) : C;
  const TDFAState &st = DFA.StateList.States[Cur];
  for (uint32_t i = st.NumberTransitions; i-- > 0;) {
    const TTransition &tr = DFA.TransitionList.Transitions[st.StartTransition + i];
    if (URESymbolAccepts(DFA.SymbolTable.Symbols[tr.Symbol], 0, f)) return int32_t(tr.NextState);
  }
  return NoTarget;
}

namespace {

// The units below 256 that are the lower-case form of some character from
// U+0100 up (the dotted I, the Kelvin and Angstrom signs...). The case table
// maps nothing above U+FFFF, so the basic plane is all there is to look at.
const std::bitset<256> &FoldTargetsBelow256() {
  static std::bitset<256> targets;
  static std::once_flag once;
  std::call_once(once, [] {
    for (UCS4 c = 0x100; c < 0x10000; ++c)
      if (c < 0xD800 || c > 0xDFFF)
        if (UCS4 l = UnicodeToLower(c); l < 256) targets.set(l);
  });
  return targets;
}

} // namespace

// Whether some code point from 256 up, folded as the scan folds it, could be
// accepted by the symbol.
bool TUREFastScan::MayAcceptAbove255(const TSymbolTableEntry &Sym, bool fold) {
  switch (Sym.SymbolType) {
  case CharSymbol:
    return Sym.Symbol.Chr >= 256 || (fold && FoldTargetsBelow256().test(Sym.Symbol.Chr));
  case ClassSymbol: {
    if (Sym.Props != 0) return true;
    const TCClass &ccl = Sym.Symbol.CCL;
    for (int32_t i = 0; i < ccl.RangesUsed; ++i) {
      if (ccl.Ranges[i].High >= 256) return true;
      if (fold)
        for (UCS4 c = ccl.Ranges[i].Low; c <= ccl.Ranges[i].High; ++c)
          if (FoldTargetsBelow256().test(c)) return true;
    }
    return false;
  }
  default: // the dot, negated classes, anchors
    return true;
  }
}

void TUREFastScan::FindStartUnits(const TDFA &DFA) {
  if (DFA.StateList.States[0].Accepting) return;
  const TDFAState &st = DFA.StateList.States[0];
  bool high = false;
  for (uint32_t i = 0; i < st.NumberTransitions && !high; ++i)
    high = MayAcceptAbove255(
        DFA.SymbolTable.Symbols[DFA.TransitionList.Transitions[st.StartTransition + i].Symbol],
        (DFA.Flags & FoldCase) != 0);
  FStartSkipsHigh = !high;
  // The units that may begin a match, as ranges of consecutive units.
  std::vector<uint16_t> low, span;
  for (UCS4 c = 0; c < 256; ++c) {
    int32_t target = FStep[c];
    if (target == Anchored && !high) // no anchor in the start state
      target = Decide(DFA, 0, c);
    if (target == NoTarget) continue;
    if (!low.empty() && low.back() + span.back() + 1 == int(c)) {
      ++span.back();
    } else {
      low.push_back(uint16_t(c));
      span.push_back(0);
    }
  }
  if (low.size() <= 8) {
    FStartLow = std::move(low);
    FStartSpan = std::move(span);
    FStartUnitsKnown = true;
  }
}

namespace {

// Finds the first unit in one of the ranges [Low[i], Low[i] + Span[i]].
using TStartFinder = const char16_t *(*)(const char16_t *, const char16_t *, const uint16_t *,
                                         const uint16_t *, size_t);

const char16_t *FindStartPlain(const char16_t *Run, const char16_t *End, const uint16_t *Low,
                               const uint16_t *Span, size_t K) {
  for (; Run < End; ++Run)
    for (size_t i = 0; i < K; ++i)
      if (uint16_t(*Run - Low[i]) <= Span[i]) return Run;
  return End;
}

#if defined(__x86_64__) || defined(__i386__)
const char16_t *FindStartSse2(const char16_t *Run, const char16_t *End, const uint16_t *Low,
                              const uint16_t *Span, size_t K) {
  __m128i low[8], span[8];
  for (size_t i = 0; i < K; ++i) {
    low[i] = _mm_set1_epi16(short(Low[i]));
    span[i] = _mm_set1_epi16(short(Span[i]));
  }
  const __m128i zero = _mm_setzero_si128();
  while (End - Run >= 8) {
    __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i *>(Run));
    __m128i hit = zero;
    for (size_t i = 0; i < K; ++i) // unit - low, saturated against the span, is 0 inside
      hit = _mm_or_si128(hit,
                         _mm_cmpeq_epi16(_mm_subs_epu16(_mm_sub_epi16(v, low[i]), span[i]), zero));
    if (int mask = _mm_movemask_epi8(hit)) return Run + (__builtin_ctz(unsigned(mask)) >> 1);
    Run += 8;
  }
  return FindStartPlain(Run, End, Low, Span, K);
}

// Up to Cap ranges stay in registers; with Cap known at compile time for a
// few ranges the loop over them unrolls.
template <size_t Cap>
__attribute__((target("avx2"))) const char16_t *
FindStartAvx2K(const char16_t *Run, const char16_t *End, const uint16_t *Low, const uint16_t *Span,
               size_t K = Cap) {
  __m256i low[Cap], span[Cap];
  for (size_t i = 0; i < K; ++i) {
    low[i] = _mm256_set1_epi16(short(Low[i]));
    span[i] = _mm256_set1_epi16(short(Span[i]));
  }
  const __m256i zero = _mm256_setzero_si256();
  while (End - Run >= 16) {
    __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(Run));
    __m256i hit = zero;
    for (size_t i = 0; i < K; ++i)
      hit = _mm256_or_si256(
          hit, _mm256_cmpeq_epi16(_mm256_subs_epu16(_mm256_sub_epi16(v, low[i]), span[i]), zero));
    if (unsigned mask = unsigned(_mm256_movemask_epi8(hit)))
      return Run + (__builtin_ctz(mask) >> 1);
    Run += 16;
  }
  return FindStartSse2(Run, End, Low, Span, K);
}

const char16_t *FindStartAvx2(const char16_t *Run, const char16_t *End, const uint16_t *Low,
                              const uint16_t *Span, size_t K) {
  switch (K) {
  case 1:
    return FindStartAvx2K<1>(Run, End, Low, Span);
  case 2:
    return FindStartAvx2K<2>(Run, End, Low, Span);
  case 3:
    return FindStartAvx2K<3>(Run, End, Low, Span);
  case 4:
    return FindStartAvx2K<4>(Run, End, Low, Span);
  default:
    return FindStartAvx2K<8>(Run, End, Low, Span, K);
  }
}

// Chosen while the library loads.
TStartFinder ChooseStartFinder() {
  return ProcessorRunsAvx2() ? FindStartAvx2 : FindStartSse2;
}
#else
TStartFinder ChooseStartFinder() {
  return FindStartPlain;
}
#endif

const TStartFinder FindStart = ChooseStartFinder();

} // namespace

// The literal's jump, for a pattern with no anchors whose start state does
// not accept: every match the one pass finds is a word of the pattern, so it
// holds the literal, and every unit of it is read by a transition. From Run,
// where the scan is in the start state, a match that begins before the next
// occurrence Q spans Q's start; so no match spans the last unit X before Q
// that no state reads, none begins before it, and after it the scan is in
// the start state again. The scan may go on behind X (or at Run).
void TUREFastScan::BuildLiteral(const TDFA &Dfa, const std::vector<UCS4> &Literal) {
  const uint32_t n = Dfa.StateList.StatesUsed;
  if (Literal.size() < MinLiteral || FStep.empty() || Dfa.StateList.States[0].Accepting) return;
  for (uint32_t y = 0; y < Dfa.SymbolTable.SymbolsUsed; ++y) {
    const uint32_t type = Dfa.SymbolTable.Symbols[y].SymbolType;
    if (type == LineStartSymbol || type == LineEndSymbol) return;
  }
  FFold = (Dfa.Flags & FoldCase) != 0;
  // Probes: positions whose units are known in full, the rarest first.
  std::vector<std::pair<uint32_t, TLiteralProbe>> probes;
  for (uint32_t j = 0; j < Literal.size(); ++j) {
    const UCS4 c = Literal[j];
    TLiteralProbe probe;
    probe.Offset = j;
    if (!FFold) {
      probe.Units[probe.Count++] = uint16_t(c);
    } else if (c < 256 && !FoldTargetsBelow256().test(c)) {
      for (UCS4 u = 0; u < 256 && probe.Count < 4; ++u)
        if (UnicodeToLower(u) == c) probe.Units[probe.Count++] = uint16_t(u);
    }
    if (probe.Count == 0) continue;
    uint32_t common = 0;
    for (uint32_t k = 0; k < probe.Count; ++k)
      common += Commonness(probe.Units[k]);
    probes.push_back({common, probe});
  }
  if (probes.empty()) return;
  ChooseProbes(probes, FProbe);
  for (UCS4 u = 0; u < 256; ++u) {
    bool read = IsLineSeparator(u);
    for (uint32_t s = 0; s < n && !read; ++s)
      read = FStep[size_t(s) * 256 + u] != NoTarget;
    FReset[u] = !read;
  }
  FLiteral = Literal;
  FLiteralOn = true;
}

bool TUREFastScan::LiteralAt(const char16_t *At) const {
  for (size_t j = 0; j < FLiteral.size(); ++j) {
    const char16_t u = At[j];
    if (IsHighSurrogateUnit(u) || IsLowSurrogateUnit(u)) return false;
    if ((FFold ? UnicodeToLower(u) : UCS4(u)) != FLiteral[j]) return false;
  }
  return true;
}

const char16_t *TUREFastScan::JumpByLiteral(const char16_t *Run, const char16_t *End) {
  // The occurrence found last is still the next while Run has not passed it.
  if (FHaveLast && Run <= FLastFound) return std::max(Run, FLastResume);
  const char16_t *q = FindLiteral(Run, End, uint32_t(FLiteral.size()), FProbe,
                                  [this](const char16_t *at) { return LiteralAt(at); });
  if (q == End) return End;
  const char16_t *x = q;
  while (x > Run && !(x[-1] < 256 && FReset[x[-1]]))
    --x;
  FHaveLast = true;
  FLastFound = q;
  FLastResume = x;
  return x;
}

// The first unit from Run on that may begin a match, in the start state and
// away from the first unit of the text; End if there is none.
const char16_t *TUREFastScan::SkipToStart(const char16_t *Run, const char16_t *End) {
  if (FLiteralOn && (Run = JumpByLiteral(Run, End)) == End) return End;
  if (FStartUnitsKnown && FStartSkipsHigh)
    return FindStart(Run, End, FStartLow.data(), FStartSpan.data(), FStartLow.size());
  while (Run < End) {
    char16_t u = *Run;
    if (u < 256 ? FStep[u] != NoTarget : !FStartSkipsHigh) return Run;
    ++Run;
  }
  return End;
}

} // namespace kestrel
