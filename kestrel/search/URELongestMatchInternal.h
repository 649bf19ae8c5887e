// The parts of TURELongestMatch: the classes of characters, the terms of the
// expression with their linear forms, and the cache of states. Not part of
// the public interface.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include <kestrel/search/URELiteralSearchInternal.h>
#include <kestrel/search/URELongestMatch.h>
#include <kestrel/search/URESearch.h>

namespace kestrel::longest {

// ------------------------------------------------------------------ classes

// What a character is for the zero-width tests.
enum class TUnitKind : uint8_t { LineFeed, CarriageReturn, Separator, Word, Other, End };
// What stood before a position.
enum class TPrevKind : uint8_t { TextStart, CarriageReturn, Separator, Word, Other };

// What a symbol does: consume one character, or test the position.
enum class TAtom : uint8_t { Consume, LineStart, LineEnd, NoWordBefore, NoWordAfter };

// The characters split into disjoint classes: two characters share a class
// when every symbol of the pattern treats them alike and they are of one
// kind. Classes are found on the folded code point when the pattern folds
// case. The end of the text is the extra class Count().
class TSymbolClasses {
public:
  // Symbols: the parser's table; Parser answers the property tests.
  void Build(const TURESearch &Parser, const TSymbolTable &Symbols, bool FoldCase, bool WordKinds);
  uint32_t Count() const { return FCount; }
  uint32_t EndClass() const { return FCount; }
  TUnitKind Kind(uint32_t Class) const { return Class == FCount ? TUnitKind::End : FKinds[Class]; }
  bool Accepts(uint32_t Symbol, uint32_t Class) const {
    return (FAccepts[size_t(Class) * FWords + (Symbol >> 6)] >> (Symbol & 63)) & 1u;
  }
  // The class of a code unit of the basic plane (a lone surrogate too).
  uint32_t OfUnit(char16_t Unit) {
    const uint16_t *page = FPages[Unit >> 8].get();
    if (page == nullptr) page = FillPage(Unit >> 8);
    return page[Unit & 0xFF];
  }
  // The class of any code point.
  uint32_t Of(UCS4 Code) { return Code < 0x10000 ? OfUnit(char16_t(Code)) : OfFolded(Fold(Code)); }
  // Whether every code unit from 256 up (and so every pair) is in a class
  // that Test holds for.
  template <typename Test> bool AllAbove255(Test &&Holds) {
    for (size_t i = 0; i < FStarts.size(); ++i)
      if ((i + 1 == FStarts.size() || FStarts[i + 1] > 256) && !Holds(FIntervalClass[i]))
        return false;
    if (FFoldCase)
      for (char16_t u : UnitsFoldingBelow256())
        if (!Holds(OfUnit(u))) return false;
    return true;
  }

private:
  // The units from 256 up whose lower case is below 256 (the Kelvin sign...).
  static const std::vector<char16_t> &UnitsFoldingBelow256();
  UCS4 Fold(UCS4 Code) const;
  uint32_t OfFolded(UCS4 Code) const;
  const uint16_t *FillPage(uint32_t Page);

  bool FFoldCase = false;
  uint32_t FCount = 0;
  size_t FWords = 0;              // 64-bit words per class in FAccepts
  std::vector<uint64_t> FAccepts; // class x symbol bits
  std::vector<TUnitKind> FKinds;  // per class
  std::vector<UCS4> FStarts;      // first code of each interval, ascending
  std::vector<uint16_t> FIntervalClass;
  std::unique_ptr<uint16_t[]> FPages[256];
};

// -------------------------------------------------------------------- terms

enum class TTermKind : uint8_t { Empty, Symbol, Sequence, Alternative, Star, Plus, Optional };

struct TTerm {
  TTermKind Kind;
  bool Nullable;
  uint32_t A; // symbol, or first operand
  uint32_t B; // second operand
};

// One entry of a linear form: a symbol and the term that follows it.
struct TPair {
  uint32_t Symbol;
  uint32_t Next;
  bool operator<(const TPair &o) const {
    return Symbol != o.Symbol ? Symbol < o.Symbol : Next < o.Next;
  }
  bool operator==(const TPair &) const = default;
};

// The expression as terms, equal terms being one. A term's linear form lists
// what it can begin with and what then remains: its partial derivatives by
// symbol. The terms reached that way are the states of a nondeterministic
// automaton; their number is bounded by the symbols of the expression.
class TTerms {
public:
  static constexpr uint32_t EmptyTerm = 0;
  // Refused beyond this many terms (four times the parser's expressions),
  // or beyond this many entries made over all linear forms before duplicates
  // go (stacked bounds such as a{,23}{,23}{,23}{,23} keep the terms few but
  // make the forms grow with the square of the positions): the pattern is
  // too large. Either way the refusal comes within a few tenths of a second.
  static constexpr uint32_t MaxTerms = 1u << 18;
  static constexpr size_t MaxPairs = size_t(1) << 21;

  TTerms();
  uint32_t Make(TTermKind Kind, uint32_t A, uint32_t B = 0);
  // The parser's expression Root as terms.
  uint32_t Import(const TExpressionList &Expressions, uint32_t Root);
  const TTerm &Get(uint32_t Term) const { return FTerms[Term]; }
  bool Nullable(uint32_t Term) const { return FTerms[Term].Nullable; }
  // The linear form, computed on first use. The reference stays valid.
  const std::vector<TPair> &Pairs(uint32_t Term);
  uint32_t Count() const { return uint32_t(FTerms.size()); }

private:
  void ComputePairs(uint32_t Term);
  bool PairsReady(uint32_t Term) const { return FReady[Term] != 0; }

  std::vector<TTerm> FTerms;
  std::unordered_map<uint64_t, uint32_t> FIndex;
  std::deque<std::vector<TPair>> FPairs; // by term; a deque keeps references
  std::vector<uint8_t> FReady;
  size_t FPairCount = 0;
};

// ------------------------------------------------------------------- states

// What happens to the registers (the start of each group of attempts) on a
// transition.
enum class TEffect : uint8_t {
  None,   // nothing: no match, every group goes on, no new one
  Append, // a group started here goes on beside all the others
  General // see TTransition
};

// A transition at a position p. In order: group Accept (if not -1) is the
// oldest that accepts at p: its match (start, p) is recorded and the younger
// groups go. Then an attempt starts at p (Inject) and, if it accepts at once
// and no match ended at p, gives the empty match (p, p). Then the character
// is read: of the groups so far, those listed in Keep go on, in order.
struct TTransition {
  uint32_t TargetRow = 0;
  int32_t Accept = -1;
  uint32_t KeepOffset = 0;
  uint32_t KeepCount = 0;
  bool Inject = false;
  bool InjectAccept = false;
};

// Zero-width tests at a position, from what stands before and after it.
struct TPosition {
  bool LineStart, LineEnd, NoWordBefore, NoWordAfter;
};
TPosition PositionTests(TPrevKind Prev, TUnitKind Next);
TPrevKind PrevKindOf(TUnitKind Kind);

// The cache of states: a state is what stood before the position and the
// groups of terms still alive, oldest start first; transitions are made on
// first use. When the cache passes its limit it is emptied and refilled.
//
// A state is known by its row, its number times the classes plus one; the
// entry of a row for a class is -1 until the transition is made, then the
// effect in its low two bits and above them the target's row (for None and
// Append) or the number of the transition (for General).
class TStateCache {
public:
  // PositionTests: whether any symbol tests positions; without, what stood
  // before a position is never told apart.
  TStateCache(TTerms &Terms, TSymbolClasses &Classes, const std::vector<TAtom> &Atoms,
              uint32_t Root, bool PositionTests, size_t Limit);
  int32_t StartRow();
  // The row of the state with no attempt alive, after a character of kind
  // Other; it stays one row until the cache is emptied.
  int32_t IdleRow() const { return FIdleRow; }
  // The entry of Row for Class; making it may empty the cache, after which
  // only this entry and what it names are meaningful (rows and tables move).
  int32_t Entry(int32_t Row, uint32_t Class) {
    const int32_t e = FNext[size_t(Row) + Class];
    return e >= 0 ? e : Build(uint32_t(Row) / FStride, Class);
  }
  const int32_t *Table() const { return FNext.data(); }
  const TTransition &Transition(int32_t Entry) const { return FTransitions[size_t(Entry >> 2)]; }
  const uint32_t *Keep(const TTransition &T) const { return FKeep.data() + T.KeepOffset; }
  uint64_t Flushes() const { return FFlushes; }
  size_t States() const { return FStateKinds.size(); }
  void SetLimit(size_t Limit);

private:
  using TGroups = std::vector<std::vector<uint32_t>>;
  uint32_t AddState(TPrevKind Prev, const TGroups &Groups);
  void DecodeState(uint32_t State, TGroups &Groups) const;
  int32_t Build(uint32_t State, uint32_t Class);
  void Flush(uint32_t &State);
  size_t Bytes() const;
  TPrevKind Before(TPrevKind Kind) const { return FPositionTests ? Kind : TPrevKind::Other; }
  // Closure of a set of terms through the zero-width tests that hold.
  void Close(std::vector<uint32_t> &Set, const TPosition &Position);
  bool AnyNullable(const std::vector<uint32_t> &Set) const;
  void NewStamp(std::vector<uint32_t> &Stamps, uint32_t &Stamp);
  bool AtomHolds(uint32_t Symbol, const TPosition &Position) const;

  TTerms &FTerms;
  TSymbolClasses &FClasses;
  const std::vector<TAtom> &FAtoms;
  uint32_t FRoot;
  bool FPositionTests;
  size_t FLimit;
  size_t FStride;
  int32_t FIdleRow = 0;

  std::unordered_map<std::string, uint32_t> FIndex;
  std::vector<std::string> FKeys; // per state: its groups, as indexed
  std::vector<TPrevKind> FStateKinds;
  std::vector<int32_t> FNext; // rows of entries
  std::vector<TTransition> FTransitions;
  std::vector<uint32_t> FKeep;
  size_t FKeyBytes = 0;
  uint64_t FFlushes = 0;

  // Work space: stamps over terms, for the sets built during a transition.
  std::vector<uint32_t> FSeen, FLocal;
  uint32_t FSeenStamp = 0, FLocalStamp = 0;
};

// Where the scan may jump ahead while no attempt is alive: the units that
// leave the idle state as it is, when they can be told cheaply.
class TIdleSkip {
public:
  // Built from the idle row's entries for every class.
  void Build(TStateCache &Cache, TSymbolClasses &Classes);
  // The first unit from Run on that is not skipped; End if none.
  const char16_t *Next(const char16_t *Run, const char16_t *End) const;
  bool Usable() const { return FUsable; }

private:
  bool FUsable = false;
  bool FHighStays = false;           // every unit from 256 up stays
  std::vector<uint16_t> FLow, FSpan; // units below 256 that leave, as ranges
  uint8_t FStays[256] = {};
};

// The required literal of a pattern, found many units at a time before the
// automaton runs. A pattern that is a sequence Before, Literal, After (the
// literal: two or more plain characters of the basic plane) has every match
// begin after the last unit before the literal's occurrence that Before
// cannot read. So from a position where no attempt is alive, the scan may
// jump to the next occurrence of the literal and back over the units that
// Before can read. Only for patterns with no zero-width tests: the state the
// scan resumes in must not depend on the unit before it.
class TLiteralFilter {
public:
  void Build(const TExpressionList &Expressions, const TSymbolTable &Symbols, uint32_t Root,
             TSymbolClasses &Classes);
  bool Usable() const { return !FSymbols.empty(); }
  void Reset() { FHaveLast = false; }
  // From position P, where no attempt is alive: the first position from P on
  // where a match can begin; End if none can.
  uint32_t Resume(const char16_t *Text, uint32_t P, uint32_t End);
  // The next occurrence of the literal from P on; End if none.
  uint32_t Find(const char16_t *Text, uint32_t P, uint32_t End);

  // The two positions of the literal whose units are looked for together:
  // the rarest ones.
  using TProbe = TLiteralProbe;

private:
  bool Matches(const char16_t *At);

  TSymbolClasses *FClasses = nullptr;
  std::vector<uint32_t> FSymbols; // one per unit of the literal
  std::vector<uint8_t> FBefore;   // per class: readable before the literal
  bool FPrefix = false;           // nothing stands before the literal
  TProbe FProbe[2];
  bool FHaveLast = false;
  uint32_t FLastFound = 0, FLastResume = 0;
};

// Everything FindPrepare builds.
class TAutomaton {
public:
  TAutomaton(const char16_t *Pattern, uint32_t PatternLength, bool FoldCase, bool LeftBounded,
             bool RightBounded, size_t CacheLimit);
  bool Valid() const { return FCache != nullptr; }
  // Runs over the text; FirstOnly stops at the first match that nothing can
  // change any more. The scan also stops, and gives true, once the matches
  // that nothing can change any more hold more than MaxFull non-empty or
  // MaxEmpty empty ones; Matches then ends with the one past the limit.
  bool Scan(const char16_t *Text, uint32_t TextLen, bool FirstOnly,
            std::vector<TURELongestMatch::TMatch> &Matches, uint64_t MaxFull = UINT64_MAX,
            uint64_t MaxEmpty = UINT64_MAX);
  void SetCacheLimit(size_t Limit);
  // Whether the scan jumps by the required literal (when the pattern has
  // one); the answers are the same either way.
  void SetLiteralFilter(bool On) { FUseLiteral = On && FLiteral.Usable(); }
  bool LiteralFilter() const { return FUseLiteral; }
  uint64_t Flushes() const { return FCache ? FCache->Flushes() : 0; }
  size_t States() const { return FCache ? FCache->States() : 0; }

private:
  TTerms FTerms;
  TSymbolClasses FClasses;
  std::vector<TAtom> FAtoms;
  uint32_t FRoot = 0;
  std::unique_ptr<TStateCache> FCache;
  TIdleSkip FSkip;
  bool FSkipBuilt = false;
  TLiteralFilter FLiteral;
  bool FUseLiteral = false;
  std::vector<uint32_t> FRegisters;
};

} // namespace kestrel::longest
