// TURESearch: regular expressions over UTF-16 text. A pattern is parsed into
// symbols and expressions, reduced to a deterministic automaton over symbols
// and run in one forward pass without backtracking.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include <kestrel/frame/host/SysUtils.h> // LoadResString, for the texts below
#include <kestrel/search/SearchEngine.h>
#include <kestrel/search/UREFastScan.h>

namespace kestrel {

// Numbers shared by expressions and stack values; also "nothing".
inline constexpr uint32_t NoExpression = 0xFFFF;

// Flags of the parse buffer and of the automaton.
inline constexpr uint32_t FoldCase = 1;
inline constexpr uint32_t BlankLine = 2;

// Flags of ExecuteURE.
inline constexpr uint32_t IgnoreNonSpacingMarks = 1;
inline constexpr uint32_t DotMatchesAll = 2;

// Symbol types.
inline constexpr uint32_t AnyCharSymbol = 1;
inline constexpr uint32_t CharSymbol = 2;
inline constexpr uint32_t ClassSymbol = 3;
inline constexpr uint32_t NegatedClassSymbol = 4;
inline constexpr uint32_t LineStartSymbol = 5;
inline constexpr uint32_t LineEndSymbol = 6;

// Expression types; the same numbers are pushed as operators.
inline constexpr uint32_t SymbolExpr = 10;
inline constexpr uint32_t GroupMark = 11;
inline constexpr uint32_t OptionalExpr = 12;
inline constexpr uint32_t StarExpr = 13;
inline constexpr uint32_t PlusExpr = 14;
inline constexpr uint32_t EmptyExpr = 15;
inline constexpr uint32_t SequenceExpr = 16;
inline constexpr uint32_t AlternativeExpr = 17;

// Parse errors held in TUREBuffer::Error.
inline constexpr int32_t ErrUnexpectedEnd = -1;
inline constexpr int32_t ErrClassOpen = -2;
inline constexpr int32_t ErrGroupOpen = -3;
inline constexpr int32_t ErrBadProperty = -4;
inline constexpr int32_t ErrBadRange = -5;
inline constexpr int32_t ErrRangeOpen = -6;
// An operator or an empty group with no expression to act on, where the
// expression would have to take "no expression" as an operand: `*a`, `|a`,
// `()a`, `(|a)`. Such an expression cannot be reduced, so it is refused.
inline constexpr int32_t ErrNoOperand = -7;
// A pattern whose automaton would pass the limits below: more than 0xFFFE
// expressions (numbers and stack values share the range up to NoExpression),
// or more compile work than CompileWorkLimit allows (huge bounds, or an
// automaton with a huge number of states).
inline constexpr int32_t ErrTooLarge = -8;

// Work units a compile may spend (stack pushes of bound copies, rewriting
// steps, state-list entries, merge comparisons) before it is refused: a few
// hundredths of a second, ample for a{1,1500}; ordinary patterns use a tiny
// part of it.
inline constexpr uint64_t CompileWorkLimit = uint64_t(1) << 22;
// States an automaton may have before reduction stops and the pattern is
// refused (`(a|b)*a(a|b){20}` would need two million).
inline constexpr uint32_t MaxStates = 8192;

// Identifiers of the regular-expression texts in the library's string table.
inline constexpr uint16_t SUREErrorPrefix = 65520;
inline constexpr uint16_t SUREUnexpectedEnd = 65521;
inline constexpr uint16_t SUREClassOpen = 65522;
inline constexpr uint16_t SUREGroupOpen = 65523;
inline constexpr uint16_t SUREBadProperty = 65524;
inline constexpr uint16_t SUREBadRange = 65525;
inline constexpr uint16_t SURERangeOpen = 65526;
inline constexpr uint16_t SUREExpressionEmpty = 65527;
// Our own two texts stand outside the identifiers that others hold (65528 and
// 65529 are the ini file's YES and NO).
inline constexpr uint16_t SURENoOperand = 65530;
inline constexpr uint16_t SURETooLarge = 65531;

// The engine's tables, as the compile builds them: the parse buffer and the
// automaton. Tools read them only through GetDFA and GetUREBuffer.
struct TRange {
  UCS4 Low = 0;
  UCS4 High = 0;
};

struct TCClass {
  std::vector<TRange> Ranges;
  int32_t RangesUsed = 0;
};

struct TSymbol {
  UCS4 Chr = 0;
  TCClass CCL;
};

struct TStateList {
  std::vector<uint32_t> List;
  int32_t ListUsed = 0;
};

struct TSymbolTableEntry {
  uint32_t ID = 0;
  uint32_t SymbolType = 0;
  uint32_t Mods = 0;
  uint32_t Props = 0;
  TSymbol Symbol;
  TStateList States;
};

struct TSymbolTable {
  std::vector<TSymbolTableEntry> Symbols;
  uint32_t SymbolsUsed = 0;
};

struct TExpression {
  bool OnStack = false;
  uint32_t ExprType = 0;
  uint32_t LHS = 0;
  uint32_t RHS = 0;
};

struct TExpressionList {
  std::vector<TExpression> Expressions;
  uint32_t ExpressionsUsed = 0;
};

struct TState {
  uint32_t ID = 0;
  bool Accepting = false;
  TStateList StateList;
  std::vector<TExpression> Transitions; // LHS: symbol, RHS: state
  int32_t TransitionsUsed = 0;
};

struct TStateTable {
  std::vector<TState> States;
  uint32_t StatesUsed = 0;
};

struct TEquivalent {
  uint32_t L = 0;
  uint32_t R = 0;
};

struct TEquivalentList {
  std::vector<TEquivalent> Equivalents;
  uint32_t EquivalentsUsed = 0;
};

struct TUREBuffer {
  bool Reducing = false;
  int32_t Error = 0;
  uint32_t Flags = 0;
  TStateList Stack;
  TSymbolTable SymbolTable;
  TExpressionList ExpressionList;
  TStateTable States;
  TEquivalentList EquivalentList;
};

struct TDFAState {
  bool Accepting = false;
  uint32_t NumberTransitions = 0;
  uint32_t StartTransition = 0;
};

struct TTransition {
  uint32_t Symbol = 0;
  uint32_t NextState = 0;
};

struct TDFAStates {
  std::vector<TDFAState> States;
  uint32_t StatesUsed = 0;
};

struct TTransitions {
  std::vector<TTransition> Transitions;
  uint32_t TransitionsUsed = 0;
};

struct TDFA {
  uint32_t Flags = 0;
  TSymbolTable SymbolTable;
  TDFAStates StateList;
  TTransitions TransitionList;
};

// The regular-expression engine. FindPrepare raises Exception with the
// message of the string table when the pattern is bad.
class TURESearch : public TSearchEngine {
public:
  explicit TURESearch(TWideStrings *AOwner = nullptr);
  ~TURESearch() override;

  void Clear() override;
  void FindPrepare(const std::u16string &Pattern, TSearchFlags Flags) override;
  void FindPrepare(const char16_t *Pattern, uint32_t PatternLength, TSearchFlags Flags) override;
  bool FindFirst(const std::u16string &Text, uint32_t &Start, uint32_t &Stop) override;
  bool FindFirst(const char16_t *Text, uint32_t TextLen, uint32_t &Start, uint32_t &Stop) override;
  bool FindAll(const std::u16string &Text) override;
  bool FindAll(const char16_t *Text, uint32_t TextLen) override;

  // One scan of Text from its first unit. Flags: IgnoreNonSpacingMarks, DotMatchesAll.
  bool ExecuteURE(uint32_t Flags, const char16_t *Text, uint32_t TextLen, uint32_t &MatchStart,
                  uint32_t &MatchEnd);
  // The same scan by the automaton's tables alone, without the lookup tables
  // computed at compile time; it gives the same results, only slower.
  bool ExecuteUREPlain(uint32_t Flags, const char16_t *Text, uint32_t TextLen, uint32_t &MatchStart,
                       uint32_t &MatchEnd);
  bool MatchesProperties(uint32_t Props, UCS4 C) const;

  // The whole compile; FindPrepare calls it.
  void CompileURE(const char16_t *Pattern, uint32_t PatternLength, bool CaseFold);
  // The parse alone, for other automata built from the same language: the
  // symbols and expressions are left in UREBuffer and the number of the whole
  // expression is returned. A null or empty pattern gives NoExpression and
  // changes nothing; a bad one raises as CompileURE does.
  uint32_t ParseURE(const char16_t *Pattern, uint32_t PatternLength, bool CaseFold);
  void ClearUREBuffer();
  void ClearDFA();

  // The compiled automaton and the compile's working tables, for inspection.
  const TDFA &GetDFA() const { return DFA; }
  const TUREBuffer &GetUREBuffer() const { return UREBuffer; }
  // Our accelerator of the scan, for inspection.
  const TUREFastScan &GetFastScan() const { return FFastScan; }

protected:
  // Parser (symbols, classes, properties). The stack's operations are inline:
  // reduction uses them for every expression of every state.
  void Push(uint32_t Value) {
    TStateList &s = UREBuffer.Stack;
    const uint32_t expr = Value & 0xFFFF;
    TExpressionList &exprs = UREBuffer.ExpressionList;
    const bool known = UREBuffer.Reducing && expr < exprs.ExpressionsUsed;
    if (known && exprs.Expressions[expr].OnStack) return;
    if (size_t(s.ListUsed) >= s.List.size()) s.List.resize(s.List.size() + 8);
    s.List[s.ListUsed++] = Value;
    if (known) exprs.Expressions[expr].OnStack = true;
  }
  uint32_t Peek() const {
    const TStateList &s = UREBuffer.Stack;
    return s.ListUsed == 0 ? NoExpression : s.List[s.ListUsed - 1];
  }
  uint32_t Pop() {
    TStateList &s = UREBuffer.Stack;
    if (s.ListUsed == 0) return NoExpression;
    const uint32_t v = s.List[--s.ListUsed];
    TExpressionList &exprs = UREBuffer.ExpressionList;
    if (UREBuffer.Reducing && (v & 0xFFFF) < exprs.ExpressionsUsed)
      exprs.Expressions[v & 0xFFFF].OnStack = false;
    return v;
  }
  uint32_t ParsePropertyList(const char16_t *Text, uint32_t Limit, uint32_t &Categories);
  uint32_t MakeHexNumber(const char16_t *Text, uint32_t Limit, uint32_t &Number);
  uint32_t ProbeLowSurrogate(const char16_t *Text, uint32_t Limit, uint32_t &Number);
  void AddRange(TCClass &Class, TRange Range);
  void CCLSetup(TSymbolTableEntry &Symbol, uint32_t Mask);
  void SpaceSetup(TSymbolTableEntry &Symbol, uint32_t Mask);
  void HexDigitSetup(TSymbolTableEntry &Symbol, uint32_t Mask);
  uint32_t PosixCCL(const char16_t *Text, uint32_t Limit, TSymbolTableEntry &Symbol);
  uint32_t BuildCharacterClass(const char16_t *Text, uint32_t Limit, TSymbolTableEntry &Symbol);
  uint32_t CompileSymbol(const char16_t *Text, uint32_t Limit, TSymbolTableEntry &Symbol);
  static bool SymbolsAreDifferent(const TSymbolTableEntry &A, const TSymbolTableEntry &B);
  uint32_t MakeSymbol(const char16_t *Text, uint32_t Limit, uint32_t &Consumed);
  uint32_t MakeExpression(uint32_t ExprType, uint32_t LHS, uint32_t RHS);

  // Automaton construction.
  void CollectPendingOperations(uint32_t &State);
  uint32_t ConvertRE2NFA(const char16_t *Pattern, uint32_t Limit);
  void Reduce(uint32_t Start);
  uint32_t AddState(const uint32_t *NewStates, uint32_t Count);
  void AddSymbolState(uint32_t Symbol, uint32_t Expression);
  void AddEquivalentPair(uint32_t L, uint32_t R);
  void MergeEquivalents();

  TUREBuffer UREBuffer;
  TDFA DFA;

private:
  uint32_t ParseBounds(const char16_t *Text, uint32_t Limit, uint32_t &Min, uint32_t &Max);
  void ExpandBounds(uint32_t &State, uint32_t Min, uint32_t Max);
  void PushCopies(uint32_t State, uint32_t Count);
  bool Nullable(uint32_t Expression) const;
  bool SpendWork(uint64_t Units) {
    if (Units > FWorkLeft) {
      FWorkLeft = 0;
      return false;
    }
    FWorkLeft -= Units;
    return true;
  }
  bool StatesDiffer(uint32_t A, uint32_t B) const;
  [[noreturn]] void RaiseError(const char16_t *Pattern, uint32_t PatternLength, uint16_t Ident);

  // The tables of a compiled automaton, for the scan and its accelerator.
  void PrepareScan(const std::vector<UCS4> &Literal);
  int32_t TryTransitions(uint32_t Flags, uint32_t Cur, UCS4 C, const char16_t *Text,
                         const char16_t *End, const char16_t *Prev, const char16_t *&Run,
                         uint32_t &SymbolType);
  bool AcceptsAtEnd(uint32_t Cur) const;
  template <bool Fast>
  bool Scan(uint32_t Flags, const char16_t *Text, uint32_t TextLen, uint32_t &MatchStart,
            uint32_t &MatchEnd);

  // Indexes that make the linear searches of the compile cheap; they find the
  // same entries the searches would find.
  // Expressions by their triple: open addressing, as reduction asks it for
  // nearly every rewriting step.
  struct TExpressionIndex {
    std::vector<uint64_t> Keys; // key + 1; 0 is an empty slot
    std::vector<uint32_t> Values;
    uint32_t Used = 0;
    uint32_t Find(uint64_t Key) const {
      if (Keys.empty()) return NoExpression;
      const size_t mask = Keys.size() - 1;
      for (size_t i = Slot(Key, mask);; i = (i + 1) & mask) {
        if (Keys[i] == Key + 1) return Values[i];
        if (Keys[i] == 0) return NoExpression;
      }
    }
    void Add(uint64_t Key, uint32_t Value);
    void clear() {
      Keys.clear();
      Values.clear();
      Used = 0;
    }
    static size_t Slot(uint64_t Key, size_t Mask) {
      return size_t((Key * 0x9E3779B97F4A7C15ull) >> 32) & Mask;
    }
  };
  TExpressionIndex FExpressionIndex;
  std::unordered_map<std::string, uint32_t> FStateIndex;
  std::unordered_set<uint64_t> FEquivalentIndex;
  uint64_t FWorkLeft = 0;
  // An operator or a sequence met "no expression" during the parse. The
  // parse runs on, so that a parse error later in the pattern is the one
  // reported; the refusal comes only for a pattern that parses.
  bool FMissingOperand = false;

  // Our own accelerator of ExecuteURE; ExecuteUREPlain goes without it.
  TUREFastScan FFastScan;
  // States visited by `^` steps at the first unit of a text, by scan number.
  std::vector<uint32_t> FAnchorVisit;
  uint32_t FAnchorStamp = 0;
};

} // namespace kestrel
