// The cache of states of TURELongestMatch. A state holds the groups of
// attempts still alive, oldest start first, each a set of terms; a term kept
// by an older group is dropped from the younger ones, since whatever it can
// still match, the older group matches too and wins. The zero-width tests
// are applied at the next position, when the characters on both sides of it
// are known.
#include <algorithm>
#include <cstring>

#include <kestrel/search/URELongestMatchInternal.h>

namespace kestrel::longest {

TPosition PositionTests(TPrevKind Prev, TUnitKind Next) {
  TPosition p{};
  p.LineStart = Prev == TPrevKind::TextStart || Prev == TPrevKind::Separator ||
                (Prev == TPrevKind::CarriageReturn && Next != TUnitKind::LineFeed);
  p.LineEnd = Next == TUnitKind::End || Next == TUnitKind::CarriageReturn ||
              Next == TUnitKind::Separator ||
              (Next == TUnitKind::LineFeed && Prev != TPrevKind::CarriageReturn);
  p.NoWordBefore = Prev != TPrevKind::Word;
  p.NoWordAfter = Next != TUnitKind::Word;
  return p;
}

TPrevKind PrevKindOf(TUnitKind Kind) {
  switch (Kind) {
  case TUnitKind::LineFeed:
  case TUnitKind::Separator:
    return TPrevKind::Separator;
  case TUnitKind::CarriageReturn:
    return TPrevKind::CarriageReturn;
  case TUnitKind::Word:
    return TPrevKind::Word;
  default:
    return TPrevKind::Other;
  }
}

TStateCache::TStateCache(TTerms &Terms, TSymbolClasses &Classes, const std::vector<TAtom> &Atoms,
                         uint32_t Root, bool PositionTests, size_t Limit)
    : FTerms(Terms), FClasses(Classes), FAtoms(Atoms), FRoot(Root), FPositionTests(PositionTests),
      FLimit(std::min<size_t>(Limit, size_t(1) << 30)), FStride(Classes.Count() + 1),
      FSeen(Terms.Count(), 0), FLocal(Terms.Count(), 0) {
  FIdleRow = int32_t(AddState(TPrevKind::Other, {}) * FStride);
}

int32_t TStateCache::StartRow() {
  return int32_t(AddState(Before(TPrevKind::TextStart), {}) * FStride);
}

// Rows must stay well below 2^29 entries, so the limit has a ceiling.
void TStateCache::SetLimit(size_t Limit) {
  FLimit = std::min<size_t>(Limit, size_t(1) << 30);
}

size_t TStateCache::Bytes() const {
  // The tables, the keys (held twice: by the state and by the index) and
  // about 64 bytes of bookkeeping per entry of the index.
  return FNext.size() * sizeof(int32_t) + FTransitions.size() * sizeof(TTransition) +
         FKeep.size() * sizeof(uint32_t) + 2 * FKeyBytes + FKeys.size() * 64;
}

// Key: the kind before the position, then per group its size and its terms.
uint32_t TStateCache::AddState(TPrevKind Prev, const TGroups &Groups) {
  std::string key(1, char(Prev));
  for (const std::vector<uint32_t> &g : Groups) {
    const uint32_t n = uint32_t(g.size());
    key.append(reinterpret_cast<const char *>(&n), sizeof n);
    key.append(reinterpret_cast<const char *>(g.data()), n * sizeof(uint32_t));
  }
  auto it = FIndex.find(key);
  if (it != FIndex.end()) return it->second;
  const uint32_t state = uint32_t(FStateKinds.size());
  FStateKinds.push_back(Prev);
  FNext.resize(FNext.size() + FStride, -1);
  FKeyBytes += key.size();
  FKeys.push_back(key);
  FIndex.emplace(std::move(key), state);
  return state;
}

void TStateCache::DecodeState(uint32_t State, TGroups &Groups) const {
  Groups.clear();
  const std::string &key = FKeys[State];
  size_t at = 1;
  while (at < key.size()) {
    uint32_t n = 0;
    std::memcpy(&n, key.data() + at, sizeof n);
    at += sizeof n;
    std::vector<uint32_t> &g = Groups.emplace_back(n);
    std::memcpy(g.data(), key.data() + at, n * sizeof(uint32_t));
    at += n * sizeof(uint32_t);
  }
}

// Empties the cache and puts back the state in hand, whose number changes.
void TStateCache::Flush(uint32_t &State) {
  TGroups groups;
  DecodeState(State, groups);
  const TPrevKind prev = FStateKinds[State];
  FIndex.clear();
  FKeys.clear();
  FStateKinds.clear();
  FNext.clear();
  FTransitions.clear();
  FKeep.clear();
  FKeyBytes = 0;
  ++FFlushes;
  FIdleRow = int32_t(AddState(TPrevKind::Other, {}) * FStride);
  State = AddState(prev, groups);
}

void TStateCache::NewStamp(std::vector<uint32_t> &Stamps, uint32_t &Stamp) {
  if (++Stamp == 0) {
    std::fill(Stamps.begin(), Stamps.end(), 0);
    Stamp = 1;
  }
}

bool TStateCache::AtomHolds(uint32_t Symbol, const TPosition &Position) const {
  switch (FAtoms[Symbol]) {
  case TAtom::LineStart:
    return Position.LineStart;
  case TAtom::LineEnd:
    return Position.LineEnd;
  case TAtom::NoWordBefore:
    return Position.NoWordBefore;
  case TAtom::NoWordAfter:
    return Position.NoWordAfter;
  default:
    return false;
  }
}

void TStateCache::Close(std::vector<uint32_t> &Set, const TPosition &Position) {
  NewStamp(FLocal, FLocalStamp);
  for (uint32_t t : Set)
    FLocal[t] = FLocalStamp;
  for (size_t i = 0; i < Set.size(); ++i)
    for (const TPair &p : FTerms.Pairs(Set[i]))
      if (FAtoms[p.Symbol] != TAtom::Consume && FLocal[p.Next] != FLocalStamp &&
          AtomHolds(p.Symbol, Position)) {
        FLocal[p.Next] = FLocalStamp;
        Set.push_back(p.Next);
      }
}

bool TStateCache::AnyNullable(const std::vector<uint32_t> &Set) const {
  for (uint32_t t : Set)
    if (FTerms.Nullable(t)) return true;
  return false;
}

namespace {

// Keeps the terms no older group holds, and marks them as held.
void KeepUnseen(std::vector<uint32_t> &Set, std::vector<uint32_t> &Seen, uint32_t Stamp) {
  size_t out = 0;
  for (uint32_t t : Set)
    if (Seen[t] != Stamp) {
      Seen[t] = Stamp;
      Set[out++] = t;
    }
  Set.resize(out);
}

} // namespace

int32_t TStateCache::Build(uint32_t State, uint32_t Class) {
  if (Bytes() > FLimit) Flush(State);
  TGroups groups;
  DecodeState(State, groups);
  const uint32_t oldCount = uint32_t(groups.size());
  const TUnitKind kind = FClasses.Kind(Class);
  const TPosition position = PositionTests(FStateKinds[State], kind);
  TTransition t;

  // At the position: the tests that hold there, then the oldest group that
  // accepts; the younger ones lose to it.
  NewStamp(FSeen, FSeenStamp);
  for (std::vector<uint32_t> &g : groups) {
    Close(g, position);
    KeepUnseen(g, FSeen, FSeenStamp);
  }
  for (uint32_t i = 0; i < oldCount && t.Accept < 0; ++i)
    if (AnyNullable(groups[i])) t.Accept = int32_t(i);
  if (t.Accept >= 0) {
    groups.resize(size_t(t.Accept) + 1);
    NewStamp(FSeen, FSeenStamp);
    for (std::vector<uint32_t> &g : groups)
      for (uint32_t term : g)
        FSeen[term] = FSeenStamp;
  }

  // A new attempt from the position.
  std::vector<uint32_t> fresh = {FRoot};
  Close(fresh, position);
  KeepUnseen(fresh, FSeen, FSeenStamp);
  t.Inject = !fresh.empty();
  t.InjectAccept = t.Inject && t.Accept < 0 && AnyNullable(fresh);
  if (t.Inject) groups.push_back(std::move(fresh));

  // The character itself.
  std::vector<uint32_t> keep;
  TGroups next;
  if (kind != TUnitKind::End) {
    NewStamp(FSeen, FSeenStamp);
    for (uint32_t j = 0; j < groups.size(); ++j) {
      std::vector<uint32_t> step;
      for (uint32_t term : groups[j])
        for (const TPair &p : FTerms.Pairs(term))
          if (FAtoms[p.Symbol] == TAtom::Consume && FSeen[p.Next] != FSeenStamp &&
              FClasses.Accepts(p.Symbol, Class)) {
            FSeen[p.Next] = FSeenStamp;
            step.push_back(p.Next);
          }
      if (step.empty()) continue;
      std::sort(step.begin(), step.end());
      keep.push_back(j);
      next.push_back(std::move(step));
    }
    t.TargetRow = AddState(Before(PrevKindOf(kind)), next) * uint32_t(FStride);
  } else {
    t.TargetRow = State * uint32_t(FStride);
  }

  bool keepsOld = keep.size() >= oldCount;
  for (uint32_t i = 0; i < oldCount && keepsOld; ++i)
    keepsOld = keep[i] == i;
  int32_t entry = 0;
  if (kind != TUnitKind::End && t.Accept < 0 && !t.InjectAccept && keepsOld) {
    const TEffect effect = keep.size() == oldCount ? TEffect::None : TEffect::Append;
    entry = int32_t(t.TargetRow << 2) | int32_t(effect);
  } else {
    t.KeepOffset = uint32_t(FKeep.size());
    t.KeepCount = uint32_t(keep.size());
    FKeep.insert(FKeep.end(), keep.begin(), keep.end());
    entry = int32_t(FTransitions.size() << 2) | int32_t(TEffect::General);
    FTransitions.push_back(t);
  }
  FNext[size_t(State) * FStride + Class] = entry;
  return entry;
}

} // namespace kestrel::longest
