// TURELongestMatch: the compile (parser, classes, terms) and the scan.
#include <kestrel/search/URELongestMatch.h>

#include <stdexcept>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/search/URELongestMatchInternal.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {
namespace longest {
namespace {

[[noreturn]] void RaiseTooLarge(const char16_t *Pattern, uint32_t PatternLength) {
  const std::string pattern = WideStringToUTF8(std::u16string(Pattern, PatternLength));
  throw Exception(Format(LoadResString(SUREErrorPrefix).c_str(), pattern.c_str()) +
                  LoadResString(SURETooLarge));
}

// Records the match (Start, Stop) of an attempt. The matches kept so far
// that start after it lose to it (they overlap it, or start inside it); one
// from the same start is this attempt's shorter match.
void Accept(std::vector<TURELongestMatch::TMatch> &Matches, uint32_t Start, uint32_t Stop) {
  while (!Matches.empty() && Matches.back().Start > Start)
    Matches.pop_back();
  if (!Matches.empty() && Matches.back().Start == Start)
    Matches.back().Stop = Stop;
  else
    Matches.push_back({Start, Stop});
}

} // namespace

TAutomaton::TAutomaton(const char16_t *Pattern, uint32_t PatternLength, bool FoldCase,
                       bool LeftBounded, bool RightBounded, size_t CacheLimit) {
  TURESearch parser;
  const uint32_t root = parser.ParseURE(Pattern, PatternLength, FoldCase);
  if (root == NoExpression) return;
  const TUREBuffer &buffer = parser.GetUREBuffer();
  const TSymbolTable &symbols = buffer.SymbolTable;
  for (uint32_t i = 0; i < symbols.SymbolsUsed; ++i) {
    const uint32_t type = symbols.Symbols[i].SymbolType;
    FAtoms.push_back(type == LineStartSymbol ? TAtom::LineStart
                     : type == LineEndSymbol ? TAtom::LineEnd
                                             : TAtom::Consume);
  }
  const uint32_t noWordBefore = uint32_t(FAtoms.size());
  FAtoms.push_back(TAtom::NoWordBefore);
  FAtoms.push_back(TAtom::NoWordAfter);
  FClasses.Build(parser, symbols, FoldCase, LeftBounded || RightBounded);
  try {
    FRoot = FTerms.Import(buffer.ExpressionList, root);
    if (RightBounded)
      FRoot =
          FTerms.Make(TTermKind::Sequence, FRoot, FTerms.Make(TTermKind::Symbol, noWordBefore + 1));
    if (LeftBounded)
      FRoot = FTerms.Make(TTermKind::Sequence, FTerms.Make(TTermKind::Symbol, noWordBefore), FRoot);
    // Every term the scan can reach gets its linear form now, so that the
    // scan only ever makes states.
    std::vector<uint8_t> seen(FTerms.Count(), 0);
    std::vector<uint32_t> work = {FRoot};
    while (!work.empty()) {
      const uint32_t t = work.back();
      work.pop_back();
      for (const TPair &p : FTerms.Pairs(t)) {
        if (seen.size() < FTerms.Count()) seen.resize(FTerms.Count(), 0);
        if (!seen[p.Next]) {
          seen[p.Next] = 1;
          work.push_back(p.Next);
        }
      }
    }
  } catch (const std::length_error &) {
    RaiseTooLarge(Pattern, PatternLength);
  }
  bool positionTests = false;
  for (TAtom a : FAtoms)
    positionTests |= a != TAtom::Consume && !(a == TAtom::NoWordBefore && !LeftBounded) &&
                     !(a == TAtom::NoWordAfter && !RightBounded);
  FCache =
      std::make_unique<TStateCache>(FTerms, FClasses, FAtoms, FRoot, positionTests, CacheLimit);
  if (!positionTests) FLiteral.Build(buffer.ExpressionList, symbols, root, FClasses);
  FUseLiteral = FLiteral.Usable();
}

void TAutomaton::SetCacheLimit(size_t Limit) {
  if (FCache) FCache->SetLimit(Limit);
}

bool TAutomaton::Scan(const char16_t *Text, uint32_t TextLen, bool FirstOnly,
                      std::vector<TURELongestMatch::TMatch> &Matches, uint64_t MaxFull,
                      uint64_t MaxEmpty) {
  Matches.clear();
  std::vector<uint32_t> &regs = FRegisters;
  regs.clear();
  TStateCache &cache = *FCache;
  if (!FSkipBuilt) {
    FSkip.Build(cache, FClasses);
    FSkipBuilt = true;
  }
  // Applies a general transition at position P; with Keep the step of the
  // character follows.
  auto apply = [&](const TTransition &t, uint32_t p, bool keep) {
    if (t.Accept >= 0) {
      Accept(Matches, regs[size_t(t.Accept)], p);
      regs.resize(size_t(t.Accept) + 1);
    }
    if (t.Inject) regs.push_back(p);
    if (t.InjectAccept) Accept(Matches, p, p);
    if (!keep) return;
    const uint32_t *k = cache.Keep(t);
    for (uint32_t i = 0; i < t.KeepCount; ++i)
      regs[i] = regs[k[i]];
    regs.resize(t.KeepCount);
  };
  // The first match is settled when no attempt from its start or before it
  // is alive.
  auto settled = [&] {
    return !Matches.empty() && (regs.empty() || regs.front() > Matches.front().Start);
  };
  // Matches before the earliest live attempt are final: none that follows
  // can drop or lengthen them. They are counted once each, as they settle.
  size_t final = 0;
  uint64_t full = 0, empty = 0;
  auto overLimit = [&] {
    const uint32_t alive = regs.empty() ? UINT32_MAX : regs.front();
    for (; final < Matches.size() && Matches[final].Start < alive; ++final) {
      const bool isEmpty = Matches[final].Start == Matches[final].Stop;
      if ((isEmpty ? ++empty > MaxEmpty : ++full > MaxFull)) {
        Matches.resize(final + 1);
        return true;
      }
    }
    return false;
  };

  int32_t row = cache.StartRow();
  const int32_t *table = cache.Table();
  int32_t idle = cache.IdleRow();
  const bool skip = FSkip.Usable();
  const bool literal = FUseLiteral;
  FLiteral.Reset();
  uint32_t p = 0;
  while (p < TextLen) {
    if (row == idle && literal) {
      p = FLiteral.Resume(Text, p, TextLen);
      if (p == TextLen) break;
    }
    if (row == idle && skip) {
      p = uint32_t(FSkip.Next(Text + p, Text + TextLen) - Text);
      if (p == TextLen) break;
    }
    const char16_t u = Text[p];
    uint32_t units = 1;
    uint32_t cls;
    if (IsHighSurrogateUnit(u) && p + 1 < TextLen && IsLowSurrogateUnit(Text[p + 1])) {
      cls = FClasses.Of(CombineSurrogates(u, Text[p + 1]));
      units = 2;
    } else {
      cls = FClasses.OfUnit(u);
    }
    int32_t e = table[size_t(row) + cls];
    if (e < 0) {
      e = cache.Entry(row, cls);
      table = cache.Table();
      idle = cache.IdleRow();
    }
    switch (TEffect(e & 3)) {
    case TEffect::None:
      row = e >> 2;
      break;
    case TEffect::Append:
      regs.push_back(p);
      row = e >> 2;
      break;
    default: {
      const TTransition &t = cache.Transition(e);
      apply(t, p, true);
      row = int32_t(t.TargetRow);
      if (FirstOnly && settled()) return false;
      if (overLimit()) return true;
    }
    }
    p += units;
  }
  apply(cache.Transition(cache.Entry(row, FClasses.EndClass())), TextLen, false);
  regs.clear(); // the text has ended: every match is final
  return overLimit();
}

} // namespace longest

TURELongestMatch::TURELongestMatch(TWideStrings *AOwner) : TSearchEngine(AOwner) {}

TURELongestMatch::~TURELongestMatch() {
  TURELongestMatch::Clear();
}

void TURELongestMatch::Clear() {
  TSearchEngine::Clear();
  FAutomaton.reset();
  FMatches.clear();
}

void TURELongestMatch::FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) {
  FindPrepare(Pattern.c_str(), uint32_t(Pattern.size()), Flags);
}

void TURELongestMatch::FindPrepare(const char16_t *Pattern, uint32_t PatternLength,
                                   TSearchFlags Flags) {
  if (Pattern == nullptr || PatternLength == 0 || Pattern[0] == 0) return;
  FAutomaton.reset();
  FMatches.clear();
  auto automaton = std::make_unique<longest::TAutomaton>(
      Pattern, PatternLength, !Flags.Contains(TSearchFlag::sfCaseSensitive),
      Flags.Contains(TSearchFlag::sfLeftBounded), Flags.Contains(TSearchFlag::sfRightBounded),
      FCacheLimit);
  if (automaton->Valid()) {
    automaton->SetLiteralFilter(FLiteralFilter);
    FAutomaton = std::move(automaton);
  }
}

void TURELongestMatch::SetLiteralFilter(bool On) {
  FLiteralFilter = On;
  if (FAutomaton) FAutomaton->SetLiteralFilter(On);
}

bool TURELongestMatch::UsesLiteralFilter() const {
  return FAutomaton && FAutomaton->LiteralFilter();
}

bool TURELongestMatch::Run(const char16_t *Text, uint32_t TextLen, bool FirstOnly) {
  ClearResults();
  FMatches.clear();
  if (Text == nullptr || !FAutomaton) return false;
  FLimitReached = FAutomaton->Scan(Text, TextLen, FirstOnly, FMatches, FMaxFull, FMaxEmpty);
  if (FLimitReached) FMatches.pop_back(); // the one past the limit
  if (FirstOnly && FMatches.size() > 1) FMatches.resize(1);
  for (const TMatch &m : FMatches)
    AddResult(m.Start, m.Stop);
  return !FMatches.empty();
}

bool TURELongestMatch::FindAll(const std::u16string &Text) {
  return FindAll(Text.c_str(), uint32_t(Text.size()));
}

bool TURELongestMatch::FindAll(const char16_t *Text, uint32_t TextLen) {
  return Run(Text, TextLen, false);
}

bool TURELongestMatch::FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) {
  return FindFirst(Text.c_str(), uint32_t(Text.size()), Start, Stop);
}

bool TURELongestMatch::FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start,
                                 uint32_t &Stop) {
  if (!Run(Text, TextLen, true)) return false;
  Start = FMatches.front().Start;
  Stop = FMatches.front().Stop;
  return true;
}

void TURELongestMatch::SetCacheLimit(size_t Bytes) {
  FCacheLimit = Bytes;
  if (FAutomaton) FAutomaton->SetCacheLimit(Bytes);
}

uint64_t TURELongestMatch::CacheFlushes() const {
  return FAutomaton ? FAutomaton->Flushes() : 0;
}

size_t TURELongestMatch::CachedStates() const {
  return FAutomaton ? FAutomaton->States() : 0;
}

} // namespace kestrel
