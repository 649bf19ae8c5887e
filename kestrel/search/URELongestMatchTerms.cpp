// The terms of TURELongestMatch and their linear forms (partial derivatives
// by symbol). Everything here works with explicit stacks: expressions nest
// as deep as the pattern is long.
#include <algorithm>
#include <stdexcept>

#include <kestrel/search/URELongestMatchInternal.h>

namespace kestrel::longest {
namespace {

// Thrown when the terms pass TTerms::MaxTerms; the automaton turns it into
// the parser's "too large" error.
struct TTooManyTerms : std::length_error {
  TTooManyTerms() : std::length_error("too many terms") {}
};

bool IsUnary(TTermKind Kind) {
  return Kind == TTermKind::Star || Kind == TTermKind::Plus || Kind == TTermKind::Optional;
}

} // namespace

TTerms::TTerms() {
  FTerms.push_back(TTerm{TTermKind::Empty, true, 0, 0});
  FPairs.emplace_back();
  FReady.push_back(1);
}

uint32_t TTerms::Make(TTermKind Kind, uint32_t A, uint32_t B) {
  if (Kind == TTermKind::Sequence) {
    if (A == EmptyTerm) return B;
    if (B == EmptyTerm) return A;
  }
  if (IsUnary(Kind) && A == EmptyTerm) return EmptyTerm;
  const uint64_t key = (uint64_t(Kind) << 56) | (uint64_t(A) << 28) | B;
  auto it = FIndex.find(key);
  if (it != FIndex.end()) return it->second;
  if (FTerms.size() >= MaxTerms) throw TTooManyTerms();
  bool nullable = false;
  switch (Kind) {
  case TTermKind::Empty:
  case TTermKind::Star:
  case TTermKind::Optional:
    nullable = true;
    break;
  case TTermKind::Symbol:
    break;
  case TTermKind::Sequence:
    nullable = FTerms[A].Nullable && FTerms[B].Nullable;
    break;
  case TTermKind::Alternative:
    nullable = FTerms[A].Nullable || FTerms[B].Nullable;
    break;
  case TTermKind::Plus:
    nullable = FTerms[A].Nullable;
    break;
  }
  const uint32_t id = uint32_t(FTerms.size());
  FTerms.push_back(TTerm{Kind, nullable, A, B});
  FPairs.emplace_back();
  FReady.push_back(0);
  FIndex.emplace(key, id);
  return id;
}

uint32_t TTerms::Import(const TExpressionList &Expressions, uint32_t Root) {
  constexpr uint32_t Unset = UINT32_MAX;
  std::vector<uint32_t> term(Expressions.ExpressionsUsed, Unset);
  std::vector<uint32_t> stack = {Root};
  while (!stack.empty()) {
    const uint32_t e = stack.back();
    if (term[e] != Unset) {
      stack.pop_back();
      continue;
    }
    const TExpression &x = Expressions.Expressions[e];
    if (x.ExprType == SymbolExpr) {
      term[e] = Make(TTermKind::Symbol, x.LHS);
      stack.pop_back();
      continue;
    }
    const bool binary = x.ExprType == SequenceExpr || x.ExprType == AlternativeExpr;
    if (term[x.LHS] == Unset || (binary && term[x.RHS] == Unset)) {
      if (term[x.LHS] == Unset) stack.push_back(x.LHS);
      if (binary && term[x.RHS] == Unset) stack.push_back(x.RHS);
      continue;
    }
    TTermKind kind = TTermKind::Optional;
    switch (x.ExprType) {
    case StarExpr:
      kind = TTermKind::Star;
      break;
    case PlusExpr:
      kind = TTermKind::Plus;
      break;
    case SequenceExpr:
      kind = TTermKind::Sequence;
      break;
    case AlternativeExpr:
      kind = TTermKind::Alternative;
      break;
    default:
      break;
    }
    term[e] = Make(kind, term[x.LHS], binary ? term[x.RHS] : 0);
    stack.pop_back();
  }
  return term[Root];
}

const std::vector<TPair> &TTerms::Pairs(uint32_t Term) {
  if (!PairsReady(Term)) ComputePairs(Term);
  return FPairs[Term];
}

// Post-order over what each linear form needs: the forms of the operands
// (of the second operand of a sequence only when the first can be empty).
void TTerms::ComputePairs(uint32_t Term) {
  std::vector<uint32_t> stack = {Term};
  while (!stack.empty()) {
    const uint32_t t = stack.back();
    if (PairsReady(t)) {
      stack.pop_back();
      continue;
    }
    const TTerm x = FTerms[t]; // a copy: Make may move the table
    const bool needsB =
        x.Kind == TTermKind::Alternative || (x.Kind == TTermKind::Sequence && FTerms[x.A].Nullable);
    const bool needsA = x.Kind != TTermKind::Symbol && x.Kind != TTermKind::Empty;
    bool waiting = false;
    if (needsA && !PairsReady(x.A)) {
      stack.push_back(x.A);
      waiting = true;
    }
    if (needsB && !PairsReady(x.B)) {
      stack.push_back(x.B);
      waiting = true;
    }
    if (waiting) continue;

    std::vector<TPair> out;
    auto followedBy = [&](uint32_t operand, uint32_t rest) {
      for (const TPair &p : FPairs[operand])
        out.push_back(TPair{p.Symbol, Make(TTermKind::Sequence, p.Next, rest)});
    };
    auto copyOf = [&](uint32_t operand) {
      out.insert(out.end(), FPairs[operand].begin(), FPairs[operand].end());
    };
    switch (x.Kind) {
    case TTermKind::Empty:
      break;
    case TTermKind::Symbol:
      out.push_back(TPair{x.A, EmptyTerm});
      break;
    case TTermKind::Sequence:
      followedBy(x.A, x.B);
      if (needsB) copyOf(x.B);
      break;
    case TTermKind::Alternative:
      copyOf(x.A);
      copyOf(x.B);
      break;
    case TTermKind::Star:
      followedBy(x.A, t);
      break;
    case TTermKind::Plus:
      followedBy(x.A, Make(TTermKind::Star, x.A));
      break;
    case TTermKind::Optional:
      copyOf(x.A);
      break;
    }
    FPairCount += out.size();
    if (FPairCount > MaxPairs) throw TTooManyTerms();
    std::sort(out.begin(), out.end());
    out.erase(std::unique(out.begin(), out.end()), out.end());
    FPairs[t] = std::move(out);
    FReady[t] = 1;
    stack.pop_back();
  }
}

} // namespace kestrel::longest
