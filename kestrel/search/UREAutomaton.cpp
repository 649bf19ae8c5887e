// The automaton of TURESearch: the pattern becomes one expression through an
// operator stack, the expression becomes states by rewriting (derivatives by
// symbol), states that behave alike are merged, and the survivors are copied
// into the flat tables that the matcher runs.
#include <algorithm>
#include <cstring>
#include <unordered_map>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/search/URELiteralSearchInternal.h>
#include <kestrel/search/URESearch.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {

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

// Whether an expression matches the empty word. Operands have lower numbers
// than the expressions built on them, so one pass upwards settles them all.
bool TURESearch::Nullable(uint32_t Expression) const {
  const TExpressionList &list = UREBuffer.ExpressionList;
  std::vector<bool> empty(Expression + 1, false);
  for (uint32_t i = 0; i <= Expression && i < list.ExpressionsUsed; ++i) {
    const TExpression &e = list.Expressions[i];
    const auto of = [&](uint32_t x) { return x < i && empty[x]; };
    switch (e.ExprType) {
    case OptionalExpr:
    case StarExpr:
    case EmptyExpr:
      empty[i] = true;
      break;
    case PlusExpr:
      empty[i] = of(e.LHS);
      break;
    case SequenceExpr:
      empty[i] = of(e.LHS) && of(e.RHS);
      break;
    case AlternativeExpr:
      empty[i] = of(e.LHS) || of(e.RHS);
      break;
    default: // a symbol, anchors included, consumes a unit or a separator
      break;
    }
  }
  return Expression < empty.size() && empty[Expression];
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
    if ((Min >= MaxStates && !Nullable(State)) || !SpendWork(Min)) {
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
  } else if (Max >= MaxStates && !Nullable(State)) {
    // After v copies of an expression that cannot be empty, the state holds
    // the sequences of at most Max - v copies: Max + 1 different states, more
    // than an automaton may have. Refused at once, before the reduction works
    // its way there.
    UREBuffer.Error = ErrTooLarge;
  } else {
    // Every value from Min to Max is its own sequence of copies, joined as
    // alternatives. Sequences nest to the right and equal expressions share
    // one number, so the sequence of v copies is (x, sequence of v - 1): each
    // is built from the one before, and the expressions come into being in
    // the order that pushing and collecting v - 1 copies for each v would
    // give, in time linear in Max.
    if (!SpendWork(2 * uint64_t(Max))) {
      UREBuffer.Error = ErrTooLarge;
      return;
    }
    const uint32_t saved = State;
    uint32_t alternatives = NoExpression; // the alternatives so far
    if (Min == 0) {
      alternatives = MakeExpression(OptionalExpr, saved, NoExpression);
      Min = 2;
    }
    uint32_t copies = saved; // the sequence of v - 1 copies, then of v
    for (uint32_t v = 2; v < Min && UREBuffer.Error == 0; ++v)
      copies = MakeExpression(SequenceExpr, saved, copies);
    for (uint32_t v = Min; v <= Max && UREBuffer.Error == 0; ++v) {
      if (v > 1) copies = MakeExpression(SequenceExpr, saved, copies);
      alternatives = alternatives == NoExpression
                         ? copies
                         : MakeExpression(AlternativeExpr, alternatives, copies);
    }
    State = UREBuffer.Error == 0 ? alternatives : NoExpression;
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
  // A symbol's ID is its place in the table; the search is for safety.
  uint32_t i = Symbol;
  if (i >= table.SymbolsUsed || table.Symbols[i].ID != Symbol)
    for (i = 0; i < table.SymbolsUsed && table.Symbols[i].ID != Symbol; ++i) {
    }
  if (i >= table.SymbolsUsed) return;
  TStateList &list = table.Symbols[i].States;
  const uint32_t used = uint32_t(list.ListUsed);
  // The list stays in ascending order. Expressions mostly come in ascending
  // order, with few larger ones already listed (the empty word is numbered
  // last): the place is looked for from the end.
  GrowBy8(list.List, used);
  uint32_t *at = list.List.data();
  uint32_t index = used;
  while (index > 0 && at[index - 1] > Expression)
    --index;
  if (index > 0 && at[index - 1] == Expression) return;
  SpendWork(1 + (used - index) / 16);
  if (used - index == 1) // mostly none or one to move: no call for those
    at[used] = at[index];
  else if (used > index)
    std::memmove(at + index + 1, at + index, (used - index) * sizeof(uint32_t));
  at[index] = Expression;
  ++list.ListUsed;
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

// The coarsest partition of the states in which states of one block have the
// same acceptance and symbols in order, and equal symbols lead into one
// block: exactly the states that the merge's walk finds alike. Blocks are
// split by Hopcroft's method (a block's predecessors are examined, and of
// the two halves of a split only the smaller is examined again, unless the
// whole was still waiting), in time O(t log n) for t transitions. Spend is
// asked for the work as it goes; an empty result means it refused.
class TStatePartition {
public:
  template <typename SpendFn> std::vector<uint32_t> Refine(const TStateTable &table, SpendFn spend);

private:
  void Split(uint32_t Block);
  void Mark(uint32_t State);

  std::vector<uint32_t> FElems, FLoc, FBlock;  // states by block, where each is
  std::vector<uint32_t> FFirst, FEnd, FMarked; // per block: range, marked count
  std::vector<uint8_t> FWaiting;               // per block: a splitter to come
  std::vector<uint32_t> FWork, FTouched;
};

void TStatePartition::Mark(uint32_t State) {
  const uint32_t b = FBlock[State];
  const uint32_t to = FFirst[b] + FMarked[b];
  const uint32_t at = FLoc[State];
  if (at < to) return; // marked already
  if (FMarked[b]++ == 0) FTouched.push_back(b);
  const uint32_t other = FElems[to];
  FElems[to] = State;
  FLoc[State] = to;
  FElems[at] = other;
  FLoc[other] = at;
}

// The marked states of Block leave it as a block of their own.
void TStatePartition::Split(uint32_t Block) {
  const uint32_t marked = FMarked[Block];
  FMarked[Block] = 0;
  if (marked == FEnd[Block] - FFirst[Block]) return;
  const uint32_t nb = uint32_t(FFirst.size());
  FFirst.push_back(FFirst[Block]);
  FEnd.push_back(FFirst[Block] + marked);
  FMarked.push_back(0);
  FFirst[Block] += marked;
  for (uint32_t i = FFirst[nb]; i < FEnd[nb]; ++i)
    FBlock[FElems[i]] = nb;
  const bool smaller = marked <= FEnd[Block] - FFirst[Block];
  FWaiting.push_back(0);
  const uint32_t next = FWaiting[Block] || smaller ? nb : Block;
  FWaiting[next] = 1;
  FWork.push_back(next);
}

template <typename SpendFn>
std::vector<uint32_t> TStatePartition::Refine(const TStateTable &table, SpendFn spend) {
  const uint32_t n = table.StatesUsed;
  uint64_t edges = 0;
  for (uint32_t s = 0; s < n; ++s)
    edges += uint64_t(table.States[s].TransitionsUsed);
  if (!spend(4 * (uint64_t(n) + edges))) return {};
  // First blocks: acceptance and the symbols in order.
  FBlock.assign(n, 0);
  {
    std::unordered_map<std::string, uint32_t> first;
    std::string key;
    for (uint32_t s = 0; s < n; ++s) {
      const TState &st = table.States[s];
      key.assign(1, char(st.Accepting));
      for (int32_t t = 0; t < st.TransitionsUsed; ++t)
        key.append(reinterpret_cast<const char *>(&st.Transitions[t].LHS), sizeof(uint32_t));
      FBlock[s] = first.emplace(key, uint32_t(first.size())).first->second;
    }
    FFirst.assign(first.size(), 0);
  }
  const uint32_t blocks = uint32_t(FFirst.size());
  FEnd.assign(blocks, 0);
  for (uint32_t s = 0; s < n; ++s)
    ++FEnd[FBlock[s]];
  for (uint32_t b = 0, at = 0; b < blocks; ++b) {
    FFirst[b] = at;
    at += FEnd[b];
    FEnd[b] = FFirst[b];
  }
  FElems.assign(n, 0);
  FLoc.assign(n, 0);
  for (uint32_t s = 0; s < n; ++s) {
    FLoc[s] = FEnd[FBlock[s]]++;
    FElems[FLoc[s]] = s;
  }
  FMarked.assign(blocks, 0);
  FWaiting.assign(blocks, 1);
  FWork.resize(blocks);
  for (uint32_t b = 0; b < blocks; ++b)
    FWork[b] = blocks - 1 - b;
  // The transitions into each state: source and symbol.
  std::vector<uint32_t> inFirst(n + 1, 0);
  for (uint32_t s = 0; s < n; ++s)
    for (int32_t t = 0; t < table.States[s].TransitionsUsed; ++t)
      ++inFirst[table.States[s].Transitions[t].RHS + 1];
  for (uint32_t s = 0; s < n; ++s)
    inFirst[s + 1] += inFirst[s];
  std::vector<std::pair<uint32_t, uint32_t>> in(edges); // symbol, source
  {
    std::vector<uint32_t> fill(inFirst.begin(), inFirst.end() - 1);
    for (uint32_t s = 0; s < n; ++s)
      for (int32_t t = 0; t < table.States[s].TransitionsUsed; ++t) {
        const TExpression &tr = table.States[s].Transitions[t];
        in[fill[tr.RHS]++] = {tr.LHS, s};
      }
  }
  std::vector<std::pair<uint32_t, uint32_t>> preds;
  while (!FWork.empty()) {
    const uint32_t splitter = FWork.back();
    FWork.pop_back();
    FWaiting[splitter] = 0;
    preds.clear();
    for (uint32_t i = FFirst[splitter]; i < FEnd[splitter]; ++i) {
      const uint32_t target = FElems[i];
      preds.insert(preds.end(), in.begin() + inFirst[target], in.begin() + inFirst[target + 1]);
    }
    if (!spend(1 + preds.size() * 2)) return {};
    std::sort(preds.begin(), preds.end());
    // One symbol at a time: the states that reach the splitter on it.
    for (size_t i = 0; i < preds.size();) {
      const uint32_t symbol = preds[i].first;
      for (; i < preds.size() && preds[i].first == symbol; ++i)
        Mark(preds[i].second);
      for (uint32_t b : FTouched)
        Split(b);
      FTouched.clear();
    }
  }
  return FBlock;
}

} // namespace

void TURESearch::MergeEquivalents() {
  constexpr uint32_t NoState = 0xFFFFFFFF;
  TUREBuffer &b = UREBuffer;
  const uint32_t n = b.States.StatesUsed;
  const std::vector<uint32_t> cls =
      TStatePartition().Refine(b.States, [this](uint64_t units) { return SpendWork(units); });
  if (cls.size() != n) {
    b.Error = ErrTooLarge;
    return;
  }
  // Only states of one block can be alike: each state is tried against the
  // earlier states of its block, in order.
  std::vector<uint32_t> head(n, NoState), next(n, NoState);
  for (uint32_t i = n; i-- > 0;) {
    next[i] = head[cls[i]];
    head[cls[i]] = i;
  }
  TEquivalentList &eq = b.EquivalentList;
  for (uint32_t i = 0; i < n; ++i) {
    if (b.States.States[i].ID != i) continue;
    bool found = false;
    for (uint32_t j = head[cls[i]]; j < i && !found; j = next[j]) {
      if (b.States.States[j].ID != j) continue;
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
  // The longest run of plain characters in the top sequence, which every
  // match holds, for the start search.
  std::vector<uint32_t> items;
  Flatten(UREBuffer.ExpressionList, start, items);
  std::vector<UCS4> literal, run;
  for (uint32_t item : items) {
    const uint32_t symbol = LiteralSymbol(UREBuffer.ExpressionList, DFA.SymbolTable, item);
    if (symbol != NoExpression) run.push_back(DFA.SymbolTable.Symbols[symbol].Symbol.Chr);
    if (symbol == NoExpression || item == items.back()) {
      if (run.size() > literal.size()) literal = run;
      run.clear();
    }
  }
  PrepareScan(literal);
}

} // namespace kestrel
