// The required literal of TURELongestMatch: which part of the pattern it is,
// and the jump to its next occurrence.
#include <kestrel/search/URELiteralSearchInternal.h>
#include <kestrel/search/URELongestMatchInternal.h>

#include <algorithm>

#include <kestrel/unicode/Unicode.h>

namespace kestrel::longest {
namespace {

// Every symbol an expression can read.
void SymbolsOf(const TExpressionList &Expressions, uint32_t Expr, std::vector<uint8_t> &Seen,
               std::vector<uint32_t> &Out) {
  std::vector<uint32_t> work = {Expr};
  while (!work.empty()) {
    const uint32_t x = work.back();
    work.pop_back();
    if (x >= Expressions.ExpressionsUsed || Seen[x]) continue;
    Seen[x] = 1;
    const TExpression &e = Expressions.Expressions[x];
    if (e.ExprType == SymbolExpr) {
      Out.push_back(e.LHS);
      continue;
    }
    if (e.ExprType == EmptyExpr) continue;
    work.push_back(e.LHS);
    if (e.ExprType == SequenceExpr || e.ExprType == AlternativeExpr) work.push_back(e.RHS);
  }
}

} // namespace

void TLiteralFilter::Build(const TExpressionList &Expressions, const TSymbolTable &Symbols,
                           uint32_t Root, TSymbolClasses &Classes) {
  FSymbols.clear();
  FClasses = &Classes;
  std::vector<uint32_t> items;
  Flatten(Expressions, Root, items);
  // The longest run of plain characters.
  size_t best = 0, bestLength = 0;
  for (size_t i = 0; i < items.size();) {
    size_t j = i;
    while (j < items.size() && LiteralSymbol(Expressions, Symbols, items[j]) != NoExpression)
      ++j;
    if (j - i > bestLength) {
      best = i;
      bestLength = j - i;
    }
    i = j == i ? i + 1 : j;
  }
  if (bestLength < MinLiteral) return;
  std::vector<uint32_t> symbols;
  for (size_t i = best; i < best + bestLength; ++i)
    symbols.push_back(Expressions.Expressions[items[i]].LHS);
  // The probes: positions whose units are all below 256 and few, rarest
  // first.
  std::vector<std::pair<uint32_t, TProbe>> probes;
  for (uint32_t j = 0; j < symbols.size(); ++j) {
    const uint32_t y = symbols[j];
    if (!Classes.AllAbove255([&](uint32_t c) { return !Classes.Accepts(y, c); })) continue;
    TProbe probe;
    probe.Offset = j;
    uint32_t common = 0;
    for (uint32_t u = 0; u < 256 && probe.Count <= 4; ++u)
      if (Classes.Accepts(y, Classes.OfUnit(char16_t(u)))) {
        if (probe.Count < 4) probe.Units[probe.Count] = uint16_t(u);
        ++probe.Count;
        common += Commonness(uint16_t(u));
      }
    if (probe.Count == 0 || probe.Count > 4) continue;
    probes.push_back({common, probe});
  }
  if (probes.empty()) return;
  ChooseProbes(probes, FProbe);
  // What may stand before the literal within a match.
  FPrefix = best == 0;
  std::vector<uint8_t> seen(Expressions.ExpressionsUsed, 0);
  std::vector<uint32_t> before;
  for (size_t i = 0; i < best; ++i)
    SymbolsOf(Expressions, items[i], seen, before);
  FBefore.assign(Classes.Count(), 0);
  for (uint32_t c = 0; c < Classes.Count(); ++c)
    for (uint32_t y : before)
      if (Classes.Accepts(y, c)) {
        FBefore[c] = 1;
        break;
      }
  FSymbols = std::move(symbols);
  FHaveLast = false;
}

bool TLiteralFilter::Matches(const char16_t *At) {
  for (size_t j = 0; j < FSymbols.size(); ++j)
    if (!FClasses->Accepts(FSymbols[j], FClasses->OfUnit(At[j]))) return false;
  return true;
}

uint32_t TLiteralFilter::Find(const char16_t *Text, uint32_t P, uint32_t End) {
  const char16_t *at = FindLiteral(Text + P, Text + End, uint32_t(FSymbols.size()), FProbe,
                                   [this](const char16_t *q) { return Matches(q); });
  return uint32_t(at - Text);
}

uint32_t TLiteralFilter::Resume(const char16_t *Text, uint32_t P, uint32_t End) {
  // The occurrence found last is still the next one while P has not passed
  // it, and nothing before its resume point can begin a match.
  if (FHaveLast && P <= FLastFound) return std::max(P, FLastResume);
  const uint32_t q = Find(Text, P, End);
  if (q == End) return End;
  uint32_t s = q;
  if (!FPrefix)
    while (s > P) {
      const char16_t u = Text[s - 1];
      // A surrogate may be half of a pair the part before reads: go on.
      if (!IsHighSurrogateUnit(u) && !IsLowSurrogateUnit(u) && !FBefore[FClasses->OfUnit(u)]) break;
      --s;
    }
  FHaveLast = true;
  FLastFound = q;
  FLastResume = s;
  return s;
}

} // namespace kestrel::longest
