// Property tests and number lookups.
#include <kestrel/unicode/CharDatabase.h>

#include <utility>

#include <kestrel/unicode/CharTables.h>

namespace kestrel {
namespace {

constexpr uint64_t Bits(std::initializer_list<int> properties) {
  uint64_t mask = 0;
  for (int p : properties)
    mask |= uint64_t(1) << p;
  return mask;
}

// The order in which a test visits its properties: the answer does not
// depend on it, the cost does, so the categories most frequent in text come
// first and a letter of a lower-case script is settled by one bisection.
// clang-format off
constexpr int kVisitOrder[upPropertyCount] = {
    upLl, upLo, upLu, upZs, upPo, upNd, upMn, upPd, upPs, upPe, upCc, upPi, upPf, upSm, upSc,
    upSk, upSo, upLm, upLt, upPc, upMc, upMe, upNl, upNo, upZl, upZp, upCf, upCs, upCo, upCn,
    upL, upON, upWhiteSpace, upR, upEN, upES, upET, upAN, upCS, upB, upS,
    upComposite, upNonBreaking, upSymmetric, upHexDigit, upQuotationMark, upMirroring,
    upSpaceControls, upDefined};
// clang-format on
static_assert([] {
  uint64_t seen = 0;
  for (int p : kVisitOrder)
    seen |= uint64_t(1) << p;
  return seen == (uint64_t(1) << upPropertyCount) - 1;
}());

// A test over a fixed set of properties, unrolled at compile time into one
// bisection per property, in the visiting order; the first hit ends it.
template <uint64_t Mask> inline bool TestFixed(UCS4 c) {
  const TTypeTable &t = TypeTable();
  return [&]<size_t... I>(std::index_sequence<I...>) {
    return (
        ((Mask >> kVisitOrder[I]) & 1 ? LookupPropertyIn(t, c, unsigned(kVisitOrder[I])) : false) ||
        ...);
  }
  (std::make_index_sequence<upPropertyCount>{});
}

} // namespace

bool UnicodeTestProperties(UCS4 Code, uint32_t Mask1, uint32_t Mask2) {
  if (Mask1 == 0 && Mask2 == 0) return false;
  const TTypeTable &t = TypeTable();
  for (uint32_t m = Mask1; m != 0; m &= m - 1)
    if (LookupPropertyIn(t, Code, unsigned(__builtin_ctz(m)))) return true;
  // Mask2 reaches only the properties that the table has.
  if (t.Count <= 32) return false;
  unsigned high = t.Count - 32u;
  uint32_t m2 = high >= 32 ? Mask2 : Mask2 & ((uint32_t(1) << high) - 1);
  for (uint32_t m = m2; m != 0; m &= m - 1)
    if (LookupPropertyIn(t, Code, 32u + unsigned(__builtin_ctz(m)))) return true;
  return false;
}

#define KESTREL_UNICODE_TEST(Name, ...)                                                            \
  bool UnicodeIs##Name(UCS4 C) {                                                                   \
    return TestFixed<Bits({__VA_ARGS__})>(C);                                                      \
  }

KESTREL_UNICODE_TEST(Alpha, upLu, upLl, upLt, upLm, upLo)
KESTREL_UNICODE_TEST(Digit, upNd)
KESTREL_UNICODE_TEST(AlphaNum, upNd, upLu, upLl, upLt, upLm, upLo)
KESTREL_UNICODE_TEST(Control, upCc, upCf)
KESTREL_UNICODE_TEST(Space, upZs, upCn)
KESTREL_UNICODE_TEST(WhiteSpace, upZs, upCn, upS, upWhiteSpace)
KESTREL_UNICODE_TEST(Blank, upZs)
KESTREL_UNICODE_TEST(Punctuation, upPd, upPs, upPe, upPo, upPi, upPf)
KESTREL_UNICODE_TEST(Graph, upMn, upMc, upMe, upNd, upNl, upNo, upLu, upLl, upLt, upLm, upLo, upPc,
                     upPd, upPs, upPe, upPo, upSm, upSc, upSk, upSo, upPi, upPf)
KESTREL_UNICODE_TEST(Printable, upMn, upMc, upMe, upNd, upNl, upNo, upZs, upLu, upLl, upLt, upLm,
                     upLo, upPc, upPd, upPs, upPe, upPo, upSm, upSc, upSk, upSo, upPi, upPf)
KESTREL_UNICODE_TEST(Upper, upLu)
KESTREL_UNICODE_TEST(Lower, upLl)
KESTREL_UNICODE_TEST(Title, upLt)
KESTREL_UNICODE_TEST(HexDigit, upHexDigit)
KESTREL_UNICODE_TEST(IsoControl, upCc)
KESTREL_UNICODE_TEST(FormatControl, upCf)
KESTREL_UNICODE_TEST(Symbol, upSm, upSc, upSk, upSo)
KESTREL_UNICODE_TEST(Number, upNd, upNl, upNo)
KESTREL_UNICODE_TEST(NonSpacing, upMn)
KESTREL_UNICODE_TEST(OpenPunctuation, upPs)
KESTREL_UNICODE_TEST(ClosePunctuation, upPe)
KESTREL_UNICODE_TEST(InitialPunctuation, upPi)
KESTREL_UNICODE_TEST(FinalPunctuation, upPf)
KESTREL_UNICODE_TEST(Composite, upComposite)
KESTREL_UNICODE_TEST(QuotationMark, upQuotationMark)
KESTREL_UNICODE_TEST(Symmetric, upSymmetric)
KESTREL_UNICODE_TEST(Mirroring, upMirroring)
KESTREL_UNICODE_TEST(NonBreaking, upNonBreaking)
KESTREL_UNICODE_TEST(RTL, upR)
KESTREL_UNICODE_TEST(LTR, upL)
KESTREL_UNICODE_TEST(Strong, upL, upR)
KESTREL_UNICODE_TEST(Weak, upEN, upES, upET, upAN, upCS)
KESTREL_UNICODE_TEST(Neutral, upB, upS, upWhiteSpace, upON)
KESTREL_UNICODE_TEST(Separator, upB, upS)
KESTREL_UNICODE_TEST(Mark, upMn, upMc, upMe)
KESTREL_UNICODE_TEST(Modifier, upLm)
KESTREL_UNICODE_TEST(LetterNumber, upNl)
KESTREL_UNICODE_TEST(ConnectionPunctuation, upPc)
KESTREL_UNICODE_TEST(Dash, upPd)
KESTREL_UNICODE_TEST(Math, upSm)
KESTREL_UNICODE_TEST(Currency, upSc)
KESTREL_UNICODE_TEST(ModifierSymbol, upSk)
KESTREL_UNICODE_TEST(NonSpacingMark, upMn)
KESTREL_UNICODE_TEST(SpacingMark, upMc)
KESTREL_UNICODE_TEST(Enclosing, upMe)
KESTREL_UNICODE_TEST(Private, upCo)
KESTREL_UNICODE_TEST(Surrogate, upCs)
KESTREL_UNICODE_TEST(LineSeparator, upZl)
KESTREL_UNICODE_TEST(ParagraphSeparator, upZp)
KESTREL_UNICODE_TEST(IdenifierStart, upNl, upLu, upLl, upLt, upLo)
KESTREL_UNICODE_TEST(IdentifierPart, upMn, upMc, upNd, upNl, upCf, upLu, upLl, upLt, upLo, upPc)
KESTREL_UNICODE_TEST(Defined, upDefined)

#undef KESTREL_UNICODE_TEST

bool UnicodeIsUndefined(UCS4 C) {
  return !UnicodeIsDefined(C);
}

bool UnicodeIsHan(UCS4 C) {
  return (C >= 0x4E00 && C <= 0x9FFF) || (C >= 0xF900 && C <= 0xFAFF);
}

bool UnicodeIsHangul(UCS4 C) {
  return C >= 0xAC00 && C <= 0xD7FF;
}

TUnicodeNumber UnicodeGetNumber(UCS4 Code) {
  const TNumberTable &t = NumberTable();
  const uint32_t *nodes = t.NumberNodes.data();
  // Bisection on even indexes over complete (code, index) pairs.
  int64_t m = FindCodePair(nodes, int64_t(t.NumberNodes.size() & ~size_t(1)) - 1, Code);
  if (m >= 0) {
    uint64_t i = nodes[m + 1];
    const auto &values = t.NumberValues;
    // Words past the end of the values read as 0.
    int32_t numerator = i < values.size() ? values[i] : 0;
    int32_t denominator = i + 1 < values.size() ? values[i + 1] : 0;
    return {numerator, denominator};
  }
  return {UnicodeNoNumber, UnicodeNoNumber};
}

int32_t UnicodeGetDigit(UCS4 Code) {
  TUnicodeNumber n = UnicodeGetNumber(Code);
  return n.Numerator == n.Denominator ? n.Numerator : UnicodeNoNumber;
}

void FreeCharacterDatabase() {
  FreeCharacterTables();
}

} // namespace kestrel
