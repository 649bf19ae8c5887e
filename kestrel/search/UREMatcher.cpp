// The matcher of TURESearch: one forward pass over the text through the flat
// automaton, with no backtracking. After a compile, lookup tables answer
// "which transition wins on this unit" without walking the symbols; they are
// built from the same symbol tests, so every result stays the same.
#include <algorithm>
#include <bitset>
#include <mutex>

#if defined(__x86_64__) || defined(__i386__)
#include <immintrin.h>
#endif

#include <kestrel/search/URESearch.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

namespace {

constexpr uint32_t Unset = 0xFFFFFFFF; // MS and ME before they are set
constexpr int32_t NoTarget = -1;       // no symbol accepts
constexpr int32_t Anchored = -2;       // a separator: anchors may accept
constexpr uint32_t StepTableMaxStates = 1024;
constexpr uint32_t DecisionCacheSize = 4096;

} // namespace

TURESearch::TURESearch(TWideStrings *AOwner) : TSearchEngine(AOwner) {}

TURESearch::~TURESearch() {
  TURESearch::Clear();
}

void TURESearch::Clear() {
  TSearchEngine::Clear();
  ClearUREBuffer();
  ClearDFA();
}

void TURESearch::ClearDFA() {
  DFA = TDFA{};
  ClearFastTables();
}

void TURESearch::FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) {
  CompileURE(Pattern.c_str(), uint32_t(Pattern.size()),
             !Flags.Contains(TSearchFlag::sfCaseSensitive));
}

void TURESearch::FindPrepare(const char16_t *Pattern, uint32_t PatternLength, TSearchFlags Flags) {
  CompileURE(Pattern, PatternLength, !Flags.Contains(TSearchFlag::sfCaseSensitive));
}

bool TURESearch::FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) {
  return FindFirst(Text.c_str(), uint32_t(Text.size()), Start, Stop);
}

// The text ends at its first zero unit. The search for that unit stops at
// TextLen, so a buffer without a terminator is never read past its end.
bool TURESearch::FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start,
                           uint32_t &Stop) {
  ClearResults();
  uint32_t len = 0;
  if (Text != nullptr)
    while (len < TextLen && Text[len] != 0)
      ++len;
  uint32_t s = 0, e = 0;
  if (!ExecuteURE(0, Text, len, s, e)) return false;
  Start = s;
  Stop = e;
  AddResult(s, e);
  return true;
}

bool TURESearch::FindAll(const std::u16string &Text) {
  return FindAll(Text.c_str(), uint32_t(Text.size()));
}

// Each scan starts where the last match ended. Only an empty match at the
// very start of the rest (E = 0: `^` at its first unit, `^$` on an empty
// line, `$` after a match that used up the text) would leave the next scan
// where it is, to find it again: that one is kept once and the search goes on
// one character past it, one unit or both units of a surrogate pair. At the
// end of the text the search stops.
bool TURESearch::FindAll(const char16_t *Text, uint32_t TextLen) {
  ClearResults();
  if (Text == nullptr) return false;
  uint32_t run = 0, s = 0, e = 0;
  while (ExecuteURE(0, Text + run, TextLen - run, s, e)) {
    AddResult(run + s, run + e);
    run += e;
    if (e > 0) continue;
    uint32_t left = TextLen - run;
    if (left == 0) break;
    run +=
        (left >= 2 && IsHighSurrogateUnit(Text[run]) && IsLowSurrogateUnit(Text[run + 1])) ? 2 : 1;
  }
  return GetCount() > 0;
}

bool TURESearch::MatchesProperties(uint32_t Props, UCS4 C) const {
  for (int bit = 0; bit < 32; ++bit)
    if ((Props >> bit) & 1u)
      if (UnicodeLookupProperty(C, UREPropertyIndex[bit])) return true;
  return false;
}

bool TURESearch::SymbolAccepts(const TSymbolTableEntry &Sym, uint32_t Flags, UCS4 C) const {
  switch (Sym.SymbolType) {
  case AnyCharSymbol:
    return (Flags & DotMatchesAll) != 0 || !IsLineSeparator(C);
  case CharSymbol:
    return Sym.Symbol.Chr == C;
  case ClassSymbol:
  case NegatedClassSymbol: {
    bool result = false;
    if (Sym.Props != 0) result = MatchesProperties(Sym.Props, C);
    const TCClass &ccl = Sym.Symbol.CCL;
    for (int32_t i = 0; i < ccl.RangesUsed && !result; ++i)
      if (C >= ccl.Ranges[i].Low && C <= ccl.Ranges[i].High) result = true;
    return Sym.SymbolType == ClassSymbol ? result : !result;
  }
  default:
    return false;
  }
}

// Tries the transitions of Cur from the last to the first and gives the target
// of the first that accepts C (already folded), or NoTarget. The anchors move
// Run and Prev as they accept.
int32_t TURESearch::TryTransitions(uint32_t Flags, uint32_t Cur, UCS4 C, const char16_t *Text,
                                   const char16_t *End, const char16_t *Prev, const char16_t *&Run,
                                   uint32_t &SymbolType) {
  const TDFAState &st = DFA.StateList.States[Cur];
  for (uint32_t i = st.NumberTransitions; i-- > 0;) {
    const TTransition &tr = DFA.TransitionList.Transitions[st.StartTransition + i];
    const TSymbolTableEntry &sym = DFA.SymbolTable.Symbols[tr.Symbol];
    SymbolType = sym.SymbolType;
    if (sym.SymbolType == LineStartSymbol) {
      if (Prev == Text) {
        // A `^` at the first unit consumes nothing. A `^` under a repetition
        // can lead back into a state already passed at this unit, and taking
        // it would loop for ever: such a step does not accept.
        if (!FAnchorVisit.empty()) {
          FAnchorVisit[Cur] = FAnchorStamp;
          if (FAnchorVisit[tr.NextState] == FAnchorStamp) continue;
        }
        Run = Prev;
        return int32_t(tr.NextState);
      }
      if (IsLineSeparator(C)) {
        if (C == 0x0D && Run < End && *Run == 0x0A) ++Run;
        return int32_t(tr.NextState);
      }
      continue;
    }
    if (sym.SymbolType == LineEndSymbol) {
      if (IsLineSeparator(C)) {
        Run = Prev;
        return int32_t(tr.NextState);
      }
      continue;
    }
    if (SymbolAccepts(sym, Flags, C)) return int32_t(tr.NextState);
  }
  SymbolType = 0;
  return NoTarget;
}

// The winning transition on C in state Cur where no anchor can accept: not at
// the first unit of a text, C no line separator, flags 0.
int32_t TURESearch::Decide(uint32_t Cur, UCS4 C) {
  UCS4 f = (DFA.Flags & FoldCase) ? UnicodeToLower(C) : C;
  const TDFAState &st = DFA.StateList.States[Cur];
  for (uint32_t i = st.NumberTransitions; i-- > 0;) {
    const TTransition &tr = DFA.TransitionList.Transitions[st.StartTransition + i];
    if (SymbolAccepts(DFA.SymbolTable.Symbols[tr.Symbol], 0, f)) return int32_t(tr.NextState);
  }
  return NoTarget;
}

void TURESearch::ClearFastTables() {
  FStartLow.clear();
  FStartSpan.clear();
  FStartUnitsKnown = false;
  FStartSkipsHigh = false;
  FStep.clear();
  FDecisions.clear();
  FAnchorVisit.clear();
  FAnchorStamp = 0;
}

void TURESearch::BuildFastTables() {
  ClearFastTables();
  const uint32_t n = DFA.StateList.StatesUsed;
  if (n == 0) return;
  for (uint32_t s = 0; s < DFA.SymbolTable.SymbolsUsed; ++s)
    if (DFA.SymbolTable.Symbols[s].SymbolType == LineStartSymbol) FAnchorVisit.assign(n, 0);
  FDecisions.assign(DecisionCacheSize, TDecisionCache{});
  if (n > StepTableMaxStates) return;
  FStep.resize(size_t(n) * 256);
  for (uint32_t s = 0; s < n; ++s)
    for (UCS4 c = 0; c < 256; ++c)
      FStep[s * 256 + c] = (c == 0x0A || c == 0x0D) ? Anchored : Decide(s, c);
  FindStartUnits();
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
bool TURESearch::MayAcceptAbove255(const TSymbolTableEntry &Sym) const {
  const bool fold = (DFA.Flags & FoldCase) != 0;
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

void TURESearch::FindStartUnits() {
  if (DFA.StateList.States[0].Accepting) return;
  const TDFAState &st = DFA.StateList.States[0];
  bool high = false;
  for (uint32_t i = 0; i < st.NumberTransitions && !high; ++i)
    high = MayAcceptAbove255(
        DFA.SymbolTable.Symbols[DFA.TransitionList.Transitions[st.StartTransition + i].Symbol]);
  FStartSkipsHigh = !high;
  // The units that may begin a match, as ranges of consecutive units.
  std::vector<uint16_t> low, span;
  for (UCS4 c = 0; c < 256; ++c) {
    int32_t target = FStep[c];
    if (target == Anchored && !high) // no anchor in the start state
      target = Decide(0, c);
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

// Chosen while the library loads, before the CPU model may have been read.
TStartFinder ChooseStartFinder() {
  __builtin_cpu_init();
  return __builtin_cpu_supports("avx2") ? FindStartAvx2 : FindStartSse2;
}
#else
TStartFinder ChooseStartFinder() {
  return FindStartPlain;
}
#endif

const TStartFinder FindStart = ChooseStartFinder();

} // namespace

// The first unit from Run on that may begin a match, in the start state and
// away from the first unit of the text; End if there is none.
const char16_t *TURESearch::SkipToStart(const char16_t *Run, const char16_t *End) const {
  if (FStartUnitsKnown && FStartSkipsHigh)
    return FindStart(Run, End, FStartLow.data(), FStartSpan.data(), FStartLow.size());
  while (Run < End) {
    char16_t u = *Run;
    if (u < 256 ? FStep[u] != NoTarget : !FStartSkipsHigh) return Run;
    ++Run;
  }
  return End;
}

namespace {

inline uint32_t DecisionSlot(uint32_t state, UCS4 c) {
  return ((c * 0x9E3779B1u) ^ (state * 0x85EBCA77u)) >> 20; // 12 bits
}

} // namespace

// The end of the text reached by an accepted character: the match holds if
// the state accepts, or if its first `$` transition leads to a state that does.
bool TURESearch::AcceptsAtEnd(uint32_t Cur) const {
  const TDFAStates &states = DFA.StateList;
  if (states.States[Cur].Accepting) return true;
  const TDFAState &st = states.States[Cur];
  for (uint32_t i = 0; i < st.NumberTransitions; ++i) {
    const TTransition &tr = DFA.TransitionList.Transitions[st.StartTransition + i];
    if (DFA.SymbolTable.Symbols[tr.Symbol].SymbolType == LineEndSymbol)
      return states.States[tr.NextState].Accepting;
  }
  return false;
}

bool TURESearch::ExecuteURE(uint32_t Flags, const char16_t *Text, uint32_t TextLen,
                            uint32_t &MatchStart, uint32_t &MatchEnd) {
  return Scan<true>(Flags, Text, TextLen, MatchStart, MatchEnd);
}

bool TURESearch::ExecuteUREPlain(uint32_t Flags, const char16_t *Text, uint32_t TextLen,
                                 uint32_t &MatchStart, uint32_t &MatchEnd) {
  return Scan<false>(Flags, Text, TextLen, MatchStart, MatchEnd);
}

template <bool Fast>
bool TURESearch::Scan(uint32_t Flags, const char16_t *Text, uint32_t TextLen, uint32_t &MatchStart,
                      uint32_t &MatchEnd) {
  const TDFAStates &states = DFA.StateList;
  if (Text == nullptr || states.StatesUsed == 0) return false;
  if (TextLen == 0 && (DFA.Flags & BlankLine)) {
    MatchStart = MatchEnd = 0;
    return true;
  }
  if (!FAnchorVisit.empty() && ++FAnchorStamp == 0) {
    std::fill(FAnchorVisit.begin(), FAnchorVisit.end(), 0);
    FAnchorStamp = 1;
  }
  const bool fast = Fast && Flags == 0 && !FDecisions.empty();
  const bool useStep = fast && !FStep.empty();
  const bool skipStart = useStep && !states.States[0].Accepting;
  const bool fold = (DFA.Flags & FoldCase) != 0;
  const char16_t *const end = Text + TextLen;
  const char16_t *run = Text;
  uint32_t ms = Unset, me = Unset, cur = 0;
  bool found = false;

  const int32_t *const step = FStep.data();
  while (!found && run < end) {
    if (useStep && run != Text) {
      // Units below 256 that are no line separator, away from the first unit
      // of the text: the step table gives the transition that wins, and the
      // rules below are applied as they stand.
      if (skipStart && cur == 0 && ms == Unset) run = SkipToStart(run, end);
      while (run < end) {
        const char16_t u = *run;
        if (u >= 256) break;
        const int32_t t = step[cur * 256 + u];
        if (t >= 0) {
          if (ms == Unset)
            ms = uint32_t(run - Text);
          else
            me = uint32_t(run + 1 - Text);
          cur = uint32_t(t);
          if (++run == end && AcceptsAtEnd(cur)) {
            found = true;
            me = uint32_t(run - Text);
          }
          continue;
        }
        if (t == Anchored) break;
        if (states.States[cur].Accepting) {
          found = true;
          if (ms == Unset) {
            ms = uint32_t(run - Text);
            me = ms + 1;
          } else if (me == Unset) {
            me = uint32_t(run - Text);
          }
          break;
        }
        cur = 0;
        ms = me = Unset;
        ++run;
        if (skipStart) run = SkipToStart(run, end);
      }
      if (found || run == end) break;
    }
    const char16_t *prev = run;
    UCS4 c = *run++;
    if (run < end && IsHighSurrogateUnit(c) && IsLowSurrogateUnit(*run))
      c = CombineSurrogates(c, *run++);
    int32_t target;
    uint32_t symbolType = 0;
    if (fast && prev != Text && !IsLineSeparator(c)) {
      if (c < 256 && useStep) {
        target = FStep[cur * 256 + c];
      } else {
        TDecisionCache &slot = FDecisions[DecisionSlot(cur, c)];
        if (slot.Code != c || slot.State != cur) slot = TDecisionCache{c, cur, Decide(cur, c)};
        target = slot.Target;
      }
    } else {
      // With IgnoreNonSpacingMarks a mark is stepped over and the unit after
      // it is read in the next pass.
      if ((Flags & IgnoreNonSpacingMarks) && UnicodeIsNonSpacingMark(c)) continue;
      if (fold) c = UnicodeToLower(c);
      target = TryTransitions(Flags, cur, c, Text, end, prev, run, symbolType);
      if (symbolType == LineStartSymbol && prev != Text) prev = run;
    }

    if (target >= 0) {
      if (ms == Unset)
        ms = uint32_t(prev - Text);
      else
        me = uint32_t(run - Text);
      cur = uint32_t(target);
      if (symbolType == LineEndSymbol) {
        ++run;
        if (run < end && c == 0x0D && *run == 0x0A) ++run;
      }
      if (run >= end && AcceptsAtEnd(cur)) {
        found = true;
        me = uint32_t(run - Text);
      }
    } else {
      found = states.States[cur].Accepting;
      if (!found) {
        cur = 0;
        ms = me = Unset;
      } else if (ms == Unset) {
        ms = uint32_t(prev - Text);
        me = uint32_t(run - Text);
      } else if (me == Unset) {
        me = uint32_t(prev - Text);
      }
    }
  }
  if (found) {
    MatchStart = ms;
    MatchEnd = me;
  }
  return found;
}

template bool TURESearch::Scan<true>(uint32_t, const char16_t *, uint32_t, uint32_t &, uint32_t &);
template bool TURESearch::Scan<false>(uint32_t, const char16_t *, uint32_t, uint32_t &, uint32_t &);

} // namespace kestrel
