// The matcher of TURESearch: one forward pass over the text through the flat
// automaton, with no backtracking. Where the flags allow, the accelerator
// (TUREFastScan) answers "which transition wins on this unit" without walking
// the symbols; it is built from the same symbol test, so every result stays
// the same.
#include <algorithm>

#include <kestrel/search/URESearch.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

namespace {

constexpr uint32_t Unset = 0xFFFFFFFF; // MS and ME before they are set
constexpr int32_t NoTarget = TUREFastScan::NoTarget;
constexpr int32_t Anchored = TUREFastScan::Anchored;

} // namespace

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

bool UREMatchesProperties(uint32_t Props, UCS4 C) {
  for (int bit = 0; bit < 32; ++bit)
    if ((Props >> bit) & 1u)
      if (UnicodeLookupProperty(C, UREPropertyIndex[bit])) return true;
  return false;
}

bool TURESearch::MatchesProperties(uint32_t Props, UCS4 C) const {
  return UREMatchesProperties(Props, C);
}

bool URESymbolAccepts(const TSymbolTableEntry &Sym, uint32_t Flags, UCS4 C) {
  switch (Sym.SymbolType) {
  case AnyCharSymbol:
    return (Flags & DotMatchesAll) != 0 || !IsLineSeparator(C);
  case CharSymbol:
    return Sym.Symbol.Chr == C;
  case ClassSymbol:
  case NegatedClassSymbol: {
    bool result = false;
    if (Sym.Props != 0) result = UREMatchesProperties(Sym.Props, C);
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
    if (URESymbolAccepts(sym, Flags, C)) return int32_t(tr.NextState);
  }
  SymbolType = 0;
  return NoTarget;
}

// The tables of a compiled automaton: the guard against `^` loops, and the
// accelerator's.
void TURESearch::PrepareScan(const std::vector<UCS4> &Literal) {
  FAnchorVisit.clear();
  FAnchorStamp = 0;
  for (uint32_t s = 0; s < DFA.SymbolTable.SymbolsUsed; ++s)
    if (DFA.SymbolTable.Symbols[s].SymbolType == LineStartSymbol)
      FAnchorVisit.assign(DFA.StateList.StatesUsed, 0);
  FFastScan.Build(DFA, Literal);
}

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
  const bool fast = Fast && Flags == 0 && FFastScan.Ready();
  if (fast) FFastScan.StartScan();
  const int32_t *const step = FFastScan.StepTable();
  const bool useStep = fast && step != nullptr;
  const bool skipStart = useStep && !states.States[0].Accepting;
  const bool fold = (DFA.Flags & FoldCase) != 0;
  const char16_t *const end = Text + TextLen;
  const char16_t *run = Text;
  uint32_t ms = Unset, me = Unset, cur = 0;
  bool found = false;

  while (!found && run < end) {
    if (useStep && run != Text) {
      // Units of the basic plane that are no line separator, away from the
      // first unit of the text: the step table gives the transition that
      // wins, and the rules below are applied as they stand.
      if (skipStart && cur == 0 && ms == Unset) run = FFastScan.SkipToStart(run, end);
      while (run < end) {
        const char16_t u = *run;
        const int32_t t = u < 256 ? step[cur * 256 + u] : FFastScan.HighStep(DFA, cur, u);
        if (t == TUREFastScan::Slow) break;
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
        if (skipStart) run = FFastScan.SkipToStart(run, end);
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
      target = c < 256 && useStep ? step[cur * 256 + c] : FFastScan.Decision(DFA, cur, c);
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
