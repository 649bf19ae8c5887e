// The automaton of TURESearch: the pattern becomes one expression through an
// operator stack, the expression becomes states by rewriting (derivatives by
// symbol), states that behave alike are merged, and the survivors are copied
// into the flat tables that the matcher runs.
#include <algorithm>
#include <cstring>
#include <unordered_map>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

bool TURESearch::SpendWork(uint64_t Units) {
  if (Units > FWorkLeft) {
    FWorkLeft = 0;
    return false;
  }
  FWorkLeft -= Units;
  return true;
}

// ------------------------------------------------------------ the operators

void TURESearch::CollectPendingOperations(uint32_t &State) {
  while (Peek() == SequenceExpr || Peek() == AlternativeExpr) {
    uint32_t op = Pop();
    uint32_t left = Pop();
    State = MakeExpression(op, left, State);
  }
}

void TURESearch::PushCopies(uint32_t State, uint32_t Count) {
  for (uint32_t i = 0; i < Count; ++i) {
    Push(State);
    Push(SequenceExpr);
  }
}

void TURESearch::ExpandBounds(uint32_t &State, uint32_t Min, uint32_t Max) {
  if (Max != 0 && Min > Max) {
    UREBuffer.Error = ErrBadRange;
  } else if (State == NoExpression) {
    FMissingOperand = true; // nothing to repeat: refused once the parse is through
  } else if (Max == 0 && Min == 0) {
    State = MakeExpression(StarExpr, State, NoExpression);
  } else if (Max == 0 && Min == 1) {
    State = MakeExpression(PlusExpr, State, NoExpression);
  } else if (Max == 0) {
    if (!SpendWork(Min)) {
      UREBuffer.Error = ErrTooLarge;
      return;
    }
    Push(GroupMark);
    PushCopies(State, Min - 1);
    State = MakeExpression(PlusExpr, State, NoExpression);
    CollectPendingOperations(State);
    Pop();
  } else if (Min == 0 && Max == 1) {
    State = MakeExpression(OptionalExpr, State, NoExpression);
  } else {
    // Every value from Min to Max is spelled out as its own sequence, so the
    // cost grows with the square of the bound: refuse what cannot be paid.
    uint64_t from = Min == 0 ? 2 : Min;
    uint64_t copies = from > Max ? 0 : (uint64_t(Max) + from) * (Max - from + 1) / 2;
    if (copies + Max > BoundCopiesLimit || !SpendWork(copies + Max)) {
      UREBuffer.Error = ErrTooLarge;
      return;
    }
    Push(GroupMark);
    uint32_t saved = State;
    if (Min == 0) {
      State = MakeExpression(OptionalExpr, State, NoExpression);
      Min = 2;
      Push(State);
      Push(AlternativeExpr);
    }
    for (uint32_t v = Min; v <= Max && UREBuffer.Error == 0; ++v) {
      State = saved;
      PushCopies(State, v - 1);
      CollectPendingOperations(State);
      if (v < Max) {
        Push(State);
        Push(AlternativeExpr);
      }
    }
    Pop();
  }
}

uint32_t TURESearch::ConvertRE2NFA(const char16_t *Pattern, uint32_t Limit) {
  uint32_t state = NoExpression;
  uint32_t pos = 0;
  while (UREBuffer.Error == 0 && pos < Limit) {
    char16_t c = Pattern[pos++];
    switch (c) {
    case u'(':
      Push(GroupMark);
      break;
    case u')':
      if (Peek() == NoExpression) {
        UREBuffer.Error = ErrGroupOpen;
        break;
      }
      CollectPendingOperations(state);
      Pop();
      break;
    case u'*':
      state = MakeExpression(StarExpr, state, NoExpression);
      break;
    case u'+':
      state = MakeExpression(PlusExpr, state, NoExpression);
      break;
    case u'?':
      state = MakeExpression(OptionalExpr, state, NoExpression);
      break;
    case u'|':
      CollectPendingOperations(state);
      Push(state);
      Push(AlternativeExpr);
      break;
    case u'{': {
      uint32_t min = 0, max = 0;
      pos += ParseBounds(Pattern + pos, Limit - pos, min, max);
      if (UREBuffer.Error == 0) ExpandBounds(state, min, max);
      c = 0; // no character at all from here on
      break;
    }
    default: {
      uint32_t consumed = 0;
      uint32_t symbol = MakeSymbol(Pattern + pos - 1, Limit - pos + 1, consumed);
      pos += consumed - 1;
      state = MakeExpression(SymbolExpr, symbol, NoExpression);
      break;
    }
    }
    if (UREBuffer.Error != 0) break;
    if (c != u'(' && c != u'|' && pos < Limit) {
      char16_t n = Pattern[pos];
      if (n != u')' && n != u'*' && n != u'+' && n != u'?' && n != u'{' && n != u'|') {
        Push(state);
        Push(SequenceExpr);
      }
    }
  }
  CollectPendingOperations(state);
  if (UREBuffer.Stack.ListUsed != 0) UREBuffer.Error = ErrGroupOpen;
  if (UREBuffer.Error == 0 && FMissingOperand) UREBuffer.Error = ErrNoOperand;
  return UREBuffer.Error != 0 ? NoExpression : state;
}

// ---------------------------------------------------------------- reduction

void TURESearch::AddSymbolState(uint32_t Symbol, uint32_t Expression) {
  TSymbolTable &table = UREBuffer.SymbolTable;
  for (uint32_t i = 0; i < table.SymbolsUsed; ++i) {
    TSymbolTableEntry &sym = table.Symbols[i];
    if (sym.ID != Symbol) continue;
    TStateList &list = sym.States;
    auto first = list.List.begin(), last = first + list.ListUsed;
    auto at = std::lower_bound(first, last, Expression);
    if (at != last && *at == Expression) return;
    size_t index = at - first;
    SpendWork(1 + (list.ListUsed - index) / 16);
    GrowBy8(list.List, list.ListUsed);
    std::memmove(list.List.data() + index + 1, list.List.data() + index,
                 (list.ListUsed - index) * sizeof(uint32_t));
    list.List[index] = Expression;
    ++list.ListUsed;
    return;
  }
}

uint32_t TURESearch::AddState(const uint32_t *NewStates, uint32_t Count) {
  std::string key(reinterpret_cast<const char *>(NewStates), Count * sizeof(uint32_t));
  auto it = FStateIndex.find(key);
  if (it != FStateIndex.end()) return it->second;
  TStateTable &table = UREBuffer.States;
  if (table.StatesUsed >= MaxStates || !SpendWork(Count + 8)) {
    UREBuffer.Error = ErrTooLarge;
    return 0;
  }
  GrowBy8(table.States, table.StatesUsed);
  uint32_t number = table.StatesUsed++;
  TState &state = table.States[number];
  state.ID = number;
  state.StateList.List.assign(NewStates, NewStates + Count);
  state.StateList.List.resize(Count + 8);
  state.StateList.ListUsed = int32_t(Count);
  FStateIndex.emplace(std::move(key), number);
  return number;
}

void TURESearch::Reduce(uint32_t Start) {
  TUREBuffer &b = UREBuffer;
  b.Reducing = true;
  AddState(&Start, 1);
  const uint32_t empty = MakeExpression(EmptyExpr, NoExpression, NoExpression);
  std::vector<uint32_t> copy;
  for (uint32_t i = 0; i < b.States.StatesUsed && b.Error == 0; ++i) {
    {
      TState &st = b.States.States[i];
      for (int32_t k = 0; k < st.StateList.ListUsed; ++k)
        Push(st.StateList.List[k]);
      st.Accepting = false;
    }
    uint32_t additions = 0;
    bool accepting = false;
    for (int32_t j = 0; j < b.Stack.ListUsed && b.Error == 0; ++j) {
      uint32_t k = b.Stack.List[j];
      for (bool stop = false; !stop && b.Error == 0;) {
        if (!SpendWork(1)) {
          b.Error = ErrTooLarge;
          break;
        }
        const TExpression e = b.ExpressionList.Expressions[k];
        const uint32_t x = e.LHS, y = e.RHS;
        switch (e.ExprType) {
        case SymbolExpr:
          AddSymbolState(x, empty);
          ++additions;
          stop = true;
          break;
        case OptionalExpr:
          k = MakeExpression(AlternativeExpr, empty, x);
          break;
        case StarExpr:
          k = MakeExpression(AlternativeExpr, empty, MakeExpression(PlusExpr, x, NoExpression));
          break;
        case PlusExpr:
          k = MakeExpression(SequenceExpr, x, MakeExpression(StarExpr, x, NoExpression));
          break;
        case EmptyExpr:
          accepting = true;
          stop = true;
          break;
        case AlternativeExpr:
          Push(x);
          Push(y);
          stop = true;
          break;
        case SequenceExpr: {
          const TExpression lx = b.ExpressionList.Expressions[x];
          const uint32_t a = lx.LHS, bb = lx.RHS;
          switch (lx.ExprType) {
          case SymbolExpr:
            AddSymbolState(a, y);
            ++additions;
            stop = true;
            break;
          case OptionalExpr:
            k = MakeExpression(AlternativeExpr, y, MakeExpression(SequenceExpr, a, y));
            break;
          case StarExpr:
            k = MakeExpression(AlternativeExpr, y, MakeExpression(SequenceExpr, a, k));
            break;
          case PlusExpr:
            k = MakeExpression(SequenceExpr, a, MakeExpression(AlternativeExpr, y, k));
            break;
          case EmptyExpr:
            k = y;
            break;
          case SequenceExpr:
            k = MakeExpression(SequenceExpr, a, MakeExpression(SequenceExpr, bb, y));
            break;
          case AlternativeExpr:
            k = MakeExpression(AlternativeExpr, MakeExpression(SequenceExpr, a, y),
                               MakeExpression(SequenceExpr, bb, y));
            break;
          default:
            stop = true;
            break;
          }
          break;
        }
        default:
          stop = true;
          break;
        }
      }
    }
    while (Pop() != NoExpression) {
    }
    if (b.Error != 0) break;
    b.States.States[i].Accepting = accepting;
    // AddState may move the table: the state is addressed by its number.
    b.States.States[i].Transitions.resize(b.States.States[i].Transitions.size() + additions);
    int32_t used = 0;
    for (uint32_t s = 0; s < b.SymbolTable.SymbolsUsed; ++s) {
      TStateList &list = b.SymbolTable.Symbols[s].States;
      if (list.ListUsed == 0) continue;
      copy.assign(list.List.begin(), list.List.begin() + list.ListUsed);
      list.ListUsed = 0;
      uint32_t target = AddState(copy.data(), uint32_t(copy.size()));
      TState &st = b.States.States[i];
      st.Transitions[used].LHS = b.SymbolTable.Symbols[s].ID;
      st.Transitions[used].RHS = target;
      ++used;
    }
    b.States.States[i].TransitionsUsed = used;
    if (FWorkLeft == 0) b.Error = ErrTooLarge;
  }
  b.Reducing = false;
}

// ------------------------------------------------------------------ merging

void TURESearch::AddEquivalentPair(uint32_t L, uint32_t R) {
  TUREBuffer &b = UREBuffer;
  L = b.States.States[L].ID;
  R = b.States.States[R].ID;
  if (L == R) return;
  if (R < L) std::swap(L, R);
  TEquivalentList &eq = b.EquivalentList;
  uint64_t key = (uint64_t(L) << 32) | R;
  if (!FEquivalentIndex.insert(key).second) return;
  GrowBy8(eq.Equivalents, eq.EquivalentsUsed);
  eq.Equivalents[eq.EquivalentsUsed++] = TEquivalent{L, R};
}

bool TURESearch::StatesDiffer(uint32_t A, uint32_t B) const {
  const TState &a = UREBuffer.States.States[A], &b = UREBuffer.States.States[B];
  if (a.Accepting != b.Accepting || a.TransitionsUsed != b.TransitionsUsed) return true;
  for (int32_t t = 0; t < a.TransitionsUsed; ++t)
    if (a.Transitions[t].LHS != b.Transitions[t].LHS) return true;
  return false;
}

namespace {

inline uint64_t Mix(uint64_t h, uint64_t v) {
  h ^= v + 0x9E3779B97F4A7C15ull + (h << 6) + (h >> 2);
  h ^= h >> 31;
  return h * 0xBF58476D1CE4E5B9ull;
}

// Classes of states such that a walk of the merge from two states of
// different classes always meets a pair that differs: states are split by
// acceptance, by their symbols in order and by the classes of their targets,
// until the number of classes stays. The signatures are hashed, so a class may
// hold states that differ (their walk then fails), but never splits states
// that behave alike. Spend is asked for each round's work; an empty result
// means it refused.
template <typename SpendFn>
std::vector<uint32_t> AlikeClasses(const TStateTable &table, SpendFn spend) {
  const uint32_t n = table.StatesUsed;
  std::vector<uint32_t> cls(n, 0), next(n);
  std::unordered_map<uint64_t, uint32_t> ids;
  size_t count = 1;
  for (uint32_t round = 0; round <= n; ++round) {
    if (!spend(uint64_t(n) * 4)) return {};
    ids.clear();
    for (uint32_t s = 0; s < n; ++s) {
      const TState &st = table.States[s];
      uint64_t h = Mix(Mix(cls[s], st.Accepting), uint64_t(st.TransitionsUsed));
      for (int32_t t = 0; t < st.TransitionsUsed; ++t)
        h = Mix(Mix(h, st.Transitions[t].LHS), cls[st.Transitions[t].RHS]);
      next[s] = ids.emplace(h, uint32_t(ids.size())).first->second;
    }
    cls.swap(next);
    if (round > 0 && ids.size() == count) break;
    count = ids.size();
  }
  return cls;
}

} // namespace

void TURESearch::MergeEquivalents() {
  TUREBuffer &b = UREBuffer;
  const uint32_t n = b.States.StatesUsed;
  const std::vector<uint32_t> cls =
      AlikeClasses(b.States, [this](uint64_t units) { return SpendWork(units); });
  if (cls.size() != n) {
    b.Error = ErrTooLarge;
    return;
  }
  TEquivalentList &eq = b.EquivalentList;
  for (uint32_t i = 0; i < n; ++i) {
    if (b.States.States[i].ID != i) continue;
    bool found = false;
    for (uint32_t j = 0; j < i && !found; ++j) {
      if (b.States.States[j].ID != j || cls[i] != cls[j]) continue;
      eq.EquivalentsUsed = 0;
      FEquivalentIndex.clear();
      AddEquivalentPair(i, j);
      bool alike = true;
      for (uint32_t p = 0; p < eq.EquivalentsUsed; ++p) {
        const uint32_t a = eq.Equivalents[p].L, c = eq.Equivalents[p].R;
        if (StatesDiffer(a, c)) {
          alike = false;
          break;
        }
        const TState &sa = b.States.States[a], &sc = b.States.States[c];
        for (int32_t t = 0; t < sa.TransitionsUsed; ++t)
          AddEquivalentPair(sa.Transitions[t].RHS, sc.Transitions[t].RHS);
      }
      if (!SpendWork(eq.EquivalentsUsed + 1)) {
        b.Error = ErrTooLarge;
        return;
      }
      found = alike;
    }
    if (found)
      for (uint32_t p = 0; p < eq.EquivalentsUsed; ++p)
        b.States.States[eq.Equivalents[p].R].ID = b.States.States[eq.Equivalents[p].L].ID;
  }
  for (uint32_t i = 0, counter = 0; i < n; ++i) {
    TState &st = b.States.States[i];
    st.ID = st.ID == i ? counter++ : b.States.States[st.ID].ID;
  }
}

// ------------------------------------------------------------------ compile

void TURESearch::ClearUREBuffer() {
  UREBuffer = TUREBuffer{};
  FExpressionIndex.clear();
  FStateIndex.clear();
  FEquivalentIndex.clear();
}

namespace {

// The pattern for a message: UTF-8, a lone surrogate as U+FFFD.
std::string PatternForMessage(const char16_t *p, uint32_t n) {
  std::string out;
  for (uint32_t i = 0; i < n; ++i) {
    UCS4 c = p[i];
    if (IsHighSurrogateUnit(c) && i + 1 < n && IsLowSurrogateUnit(p[i + 1]))
      c = CombineSurrogates(c, p[++i]);
    else if (IsHighSurrogateUnit(c) || IsLowSurrogateUnit(c))
      c = 0xFFFD;
    if (c < 0x80) {
      out += char(c);
    } else if (c < 0x800) {
      out += char(0xC0 | (c >> 6));
      out += char(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
      out += char(0xE0 | (c >> 12));
      out += char(0x80 | ((c >> 6) & 0x3F));
      out += char(0x80 | (c & 0x3F));
    } else {
      out += char(0xF0 | (c >> 18));
      out += char(0x80 | ((c >> 12) & 0x3F));
      out += char(0x80 | ((c >> 6) & 0x3F));
      out += char(0x80 | (c & 0x3F));
    }
  }
  return out;
}

uint16_t ErrorIdent(int32_t error) {
  switch (error) {
  case ErrUnexpectedEnd:
    return SUREUnexpectedEnd;
  case ErrClassOpen:
    return SUREClassOpen;
  case ErrGroupOpen:
    return SUREGroupOpen;
  case ErrBadProperty:
    return SUREBadProperty;
  case ErrBadRange:
    return SUREBadRange;
  case ErrRangeOpen:
    return SURERangeOpen;
  case ErrNoOperand:
    return SURENoOperand;
  default:
    return SURETooLarge;
  }
}

} // namespace

void TURESearch::RaiseError(const char16_t *Pattern, uint32_t PatternLength, uint16_t Ident) {
  std::string prefix = LoadResString(SUREErrorPrefix);
  std::string pattern = PatternForMessage(Pattern, PatternLength);
  throw Exception(Format(prefix.c_str(), pattern.c_str()) + LoadResString(Ident));
}

uint32_t TURESearch::ParseURE(const char16_t *Pattern, uint32_t PatternLength, bool CaseFold) {
  if (Pattern == nullptr || PatternLength == 0 || Pattern[0] == 0) return NoExpression;
  ClearUREBuffer();
  FWorkLeft = CompileWorkLimit;
  FMissingOperand = false;
  UREBuffer.Flags = BlankLine | (CaseFold ? FoldCase : 0);
  uint32_t start = ConvertRE2NFA(Pattern, PatternLength);
  if (start == NoExpression) {
    if (UREBuffer.Error == 0) throw Exception(LoadResString(SUREExpressionEmpty));
    RaiseError(Pattern, PatternLength, ErrorIdent(UREBuffer.Error));
  }
  return start;
}

void TURESearch::CompileURE(const char16_t *Pattern, uint32_t PatternLength, bool CaseFold) {
  if (Pattern == nullptr || PatternLength == 0 || Pattern[0] == 0) return;
  ClearDFA();
  uint32_t start = ParseURE(Pattern, PatternLength, CaseFold);
  Reduce(start);
  if (UREBuffer.Error == 0) MergeEquivalents();
  if (UREBuffer.Error != 0) RaiseError(Pattern, PatternLength, ErrorIdent(UREBuffer.Error));

  DFA.Flags = UREBuffer.Flags & 3;
  DFA.SymbolTable = std::move(UREBuffer.SymbolTable);
  UREBuffer.SymbolTable = TSymbolTable{};

  const TStateTable &table = UREBuffer.States;
  uint32_t states = 0, transitions = 0;
  for (uint32_t i = 0; i < table.StatesUsed; ++i)
    if (table.States[i].ID == states) {
      ++states;
      transitions += uint32_t(table.States[i].TransitionsUsed);
    }
  DFA.StateList.States.assign(states, TDFAState{});
  DFA.StateList.StatesUsed = states;
  DFA.TransitionList.Transitions.assign(transitions, TTransition{});
  DFA.TransitionList.TransitionsUsed = transitions;
  for (uint32_t i = 0, k = 0, t = 0; i < table.StatesUsed; ++i) {
    const TState &st = table.States[i];
    if (st.ID != k) continue;
    TDFAState &out = DFA.StateList.States[k];
    out.StartTransition = t;
    out.NumberTransitions = uint32_t(st.TransitionsUsed);
    out.Accepting = st.Accepting;
    for (int32_t n = 0; n < st.TransitionsUsed; ++n, ++t) {
      DFA.TransitionList.Transitions[t].Symbol = st.Transitions[n].LHS;
      DFA.TransitionList.Transitions[t].NextState = table.States[st.Transitions[n].RHS].ID;
    }
    ++k;
  }
  PrepareScan();
}

} // namespace kestrel
