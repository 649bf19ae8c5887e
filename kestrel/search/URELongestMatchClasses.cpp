// The classes of characters of TURELongestMatch: the code space is cut at
// every point where some symbol, a line separator or (with word bounds) a
// word character begins or ends, and the pieces that every symbol treats
// alike are one class.
#include <algorithm>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/URELongestMatchInternal.h>
#include <kestrel/search/UREUtil.h>
#include <kestrel/search/WordBounds.h>
#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel::longest {
namespace {

constexpr UCS4 CodeEnd = 0x110000;

// The ranges of property Index of the character database, as cut points.
void AddPropertyCuts(int Index, std::vector<UCS4> &Cuts) {
  const TTypeTable &t = TypeTable();
  if (Index < 0 || Index >= t.Count) return;
  const TTypeTable::TSpan span = t.Spans[size_t(Index)];
  for (uint32_t i = 0; i < span.Pairs; ++i) {
    Cuts.push_back(t.PropertyRanges[span.Start + 2 * i]);
    Cuts.push_back(t.PropertyRanges[span.Start + 2 * i + 1] + 1);
  }
}

void AddSymbolCuts(const TSymbolTableEntry &Sym, std::vector<UCS4> &Cuts) {
  if (Sym.SymbolType == CharSymbol) {
    Cuts.push_back(Sym.Symbol.Chr);
    Cuts.push_back(Sym.Symbol.Chr + 1);
    return;
  }
  if (Sym.SymbolType != ClassSymbol && Sym.SymbolType != NegatedClassSymbol) return;
  const TCClass &ccl = Sym.Symbol.CCL;
  for (int32_t i = 0; i < ccl.RangesUsed; ++i) {
    Cuts.push_back(ccl.Ranges[size_t(i)].Low);
    Cuts.push_back(ccl.Ranges[size_t(i)].High + 1);
  }
  for (int bit = 0; bit < 32; ++bit)
    if ((Sym.Props >> bit) & 1u) AddPropertyCuts(UREPropertyIndex[bit], Cuts);
}

// The test of TURESearch's matcher, on an already folded code point.
bool SymbolAccepts(const TURESearch &Parser, const TSymbolTableEntry &Sym, UCS4 C) {
  switch (Sym.SymbolType) {
  case AnyCharSymbol:
    return !IsLineSeparator(C);
  case CharSymbol:
    return Sym.Symbol.Chr == C;
  case ClassSymbol:
  case NegatedClassSymbol: {
    bool result = Sym.Props != 0 && Parser.MatchesProperties(Sym.Props, C);
    const TCClass &ccl = Sym.Symbol.CCL;
    for (int32_t i = 0; i < ccl.RangesUsed && !result; ++i)
      result = C >= ccl.Ranges[size_t(i)].Low && C <= ccl.Ranges[size_t(i)].High;
    return Sym.SymbolType == ClassSymbol ? result : !result;
  }
  default:
    return false;
  }
}

TUnitKind KindOf(UCS4 C, bool WordKinds) {
  if (C == 0x0A) return TUnitKind::LineFeed;
  if (C == 0x0D) return TUnitKind::CarriageReturn;
  if (C == 0x2028 || C == 0x2029) return TUnitKind::Separator;
  if (WordKinds && IsWordCharacter(C)) return TUnitKind::Word;
  return TUnitKind::Other;
}

} // namespace

void TSymbolClasses::Build(const TURESearch &Parser, const TSymbolTable &Symbols, bool FoldCase,
                           bool WordKinds) {
  FFoldCase = FoldCase;
  std::vector<UCS4> cuts = {0, 0x0A, 0x0B, 0x0D, 0x0E, 0x2028, 0x202A};
  for (uint32_t i = 0; i < Symbols.SymbolsUsed; ++i)
    AddSymbolCuts(Symbols.Symbols[i], cuts);
  if (WordKinds)
    for (int index : {upLu, upLl, upLt, upLm, upLo, upNd, upMn, upMc, upMe, upPc})
      AddPropertyCuts(index, cuts);
  std::sort(cuts.begin(), cuts.end());
  cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
  while (!cuts.empty() && cuts.back() >= CodeEnd)
    cuts.pop_back();

  const uint32_t symbols = Symbols.SymbolsUsed;
  FWords = std::max<size_t>(1, (symbols + 63) / 64);
  std::unordered_map<std::string, uint16_t> known;
  std::string signature;
  FStarts = cuts;
  FIntervalClass.assign(cuts.size(), 0);
  FAccepts.clear();
  FKinds.clear();
  for (size_t i = 0; i < cuts.size(); ++i) {
    const UCS4 c = cuts[i];
    std::vector<uint64_t> bits(FWords, 0);
    for (uint32_t s = 0; s < symbols; ++s)
      if (SymbolAccepts(Parser, Symbols.Symbols[s], c)) bits[s >> 6] |= uint64_t(1) << (s & 63);
    const TUnitKind kind = KindOf(c, WordKinds);
    signature.assign(reinterpret_cast<const char *>(bits.data()), bits.size() * 8);
    signature += char(kind);
    auto [it, added] = known.emplace(signature, uint16_t(FKinds.size()));
    if (added) {
      if (FKinds.size() >= 0xFFFF) throw Exception(LoadResString(SURETooLarge));
      FKinds.push_back(kind);
      FAccepts.insert(FAccepts.end(), bits.begin(), bits.end());
    }
    FIntervalClass[i] = it->second;
  }
  FCount = uint32_t(FKinds.size());
  for (auto &page : FPages)
    page.reset();
}

const std::vector<char16_t> &TSymbolClasses::UnitsFoldingBelow256() {
  static const std::vector<char16_t> units = [] {
    std::vector<char16_t> out;
    for (UCS4 c = 0x100; c < 0x10000; ++c)
      if ((c < 0xD800 || c > 0xDFFF) && UnicodeToLower(c) < 256) out.push_back(char16_t(c));
    return out;
  }();
  return units;
}

UCS4 TSymbolClasses::Fold(UCS4 Code) const {
  return FFoldCase ? UnicodeToLower(Code) : Code;
}

uint32_t TSymbolClasses::OfFolded(UCS4 Code) const {
  auto at = std::upper_bound(FStarts.begin(), FStarts.end(), Code);
  return FIntervalClass[size_t(at - FStarts.begin()) - 1];
}

const uint16_t *TSymbolClasses::FillPage(uint32_t Page) {
  auto page = std::make_unique<uint16_t[]>(256);
  for (UCS4 i = 0; i < 256; ++i)
    page[i] = uint16_t(OfFolded(Fold((Page << 8) | i)));
  FPages[Page] = std::move(page);
  return FPages[Page].get();
}

} // namespace kestrel::longest
