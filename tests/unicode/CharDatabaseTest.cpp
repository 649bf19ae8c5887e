// Property tests and number lookups over the embedded tables.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include <kestrel/frame/platform/Platform.h>
#include <kestrel/frame/platform/Resources.h>
#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {
namespace {

using TestFn = bool (*)(UCS4);

struct Expectation {
  const char *what;
  TestFn test;
  UCS4 code;
  bool expected;
};

#define T(fn) #fn, fn

const Expectation kExpectations[] = {
    // Spaces: property 13 is empty, so a tab is no space; class B is no white space.
    {T(UnicodeIsSpace), 0x0009, false},
    {T(UnicodeIsSpace), 0x0020, true},
    {T(UnicodeIsWhiteSpace), 0x0009, true},
    {T(UnicodeIsWhiteSpace), 0x0020, true},
    {T(UnicodeIsWhiteSpace), 0x000A, false},
    {T(UnicodeIsWhiteSpace), 0x000D, false},
    {T(UnicodeIsWhiteSpace), 0x000C, true},
    {T(UnicodeIsWhiteSpace), 0x3000, true},
    {T(UnicodeIsBlank), 0x0009, false},
    {T(UnicodeIsSeparator), 0x000A, true},
    // The connector is graphic but no punctuation.
    {T(UnicodeIsPunctuation), 0x005F, false},
    {T(UnicodeIsGraph), 0x005F, true},
    {T(UnicodeIsConnectionPunctuation), 0x005F, true},
    {T(UnicodeIsPunctuation), 0x00AB, true}, // Pi
    {T(UnicodeIsPunctuation), 0x00BB, true}, // Pf
    {T(UnicodeIsGraph), 0x0020, false},
    {T(UnicodeIsPrintable), 0x0020, true},
    // Mirroring is empty; the symmetric list is its own.
    {T(UnicodeIsMirroring), 0x0028, false},
    {T(UnicodeIsMirroring), 0x003C, false},
    {T(UnicodeIsSymmetric), 0x0028, true},
    {T(UnicodeIsSymmetric), 0x003C, false},
    // Surrogates are the supplementary code points, not the halves.
    {T(UnicodeIsSurrogate), 0xD800, false},
    {T(UnicodeIsSurrogate), 0xDFFF, false},
    {T(UnicodeIsSurrogate), 0x10000, true},
    {T(UnicodeIsSurrogate), 0x10FFFF, true},
    {T(UnicodeIsSurrogate), 0x110000, false},
    {T(UnicodeIsLTR), 0x10000, true},
    {T(UnicodeIsLTR), 0x110000, false},
    {T(UnicodeIsDefined), 0xD800, false},
    {T(UnicodeIsDefined), 0x10000, false},
    {T(UnicodeIsUndefined), 0xD800, true},
    {T(UnicodeIsUndefined), 0xFFFFFFFF, true},
    // Private use: only the library's own rows are defined.
    {T(UnicodeIsDefined), 0xE000, false},
    {T(UnicodeIsDefined), 0xE900, true},
    {T(UnicodeIsPrivate), 0xE000, true},
    {T(UnicodeIsPrivate), 0xE900, true},
    {T(UnicodeIsPrivate), 0xF900, false},
    {T(UnicodeIsAlpha), 0xE900, true},
    {T(UnicodeIsAlpha), 0xE000, false},
    {T(UnicodeIsNonSpacing), 0xE97B, true},
    {T(UnicodeIsComposite), 0xE95A, true},
    {T(UnicodeIsComposite), 0xE90F, false},
    // Extension A: only its end points.
    {T(UnicodeIsDefined), 0x3400, true},
    {T(UnicodeIsDefined), 0x3401, false},
    {T(UnicodeIsDefined), 0x4DB5, true},
    {T(UnicodeIsAlpha), 0x3400, true},
    {T(UnicodeIsAlpha), 0x3401, false},
    {T(UnicodeIsHan), 0x3401, false},
    // Han blocks: whole in the letters, not in Defined past U+9FA5.
    {T(UnicodeIsHan), 0x9FFF, true},
    {T(UnicodeIsAlpha), 0x9FFF, true},
    {T(UnicodeIsDefined), 0x9FFF, false},
    {T(UnicodeIsDefined), 0x9FA5, true},
    {T(UnicodeIsDefined), 0x9FA6, false},
    {T(UnicodeIsHan), 0x4DFF, false},
    {T(UnicodeIsHan), 0x4E00, true},
    {T(UnicodeIsHan), 0xA000, false},
    {T(UnicodeIsHan), 0xF8FF, false},
    {T(UnicodeIsHan), 0xF900, true},
    {T(UnicodeIsHan), 0xFAFF, true},
    {T(UnicodeIsHan), 0xFB00, false},
    {T(UnicodeIsDefined), 0xFAFF, true},
    {T(UnicodeIsAlpha), 0xFAFF, true},
    // Hangul runs past the last syllable.
    {T(UnicodeIsHangul), 0xABFF, false},
    {T(UnicodeIsHangul), 0xAC00, true},
    {T(UnicodeIsHangul), 0xD7A4, true},
    {T(UnicodeIsHangul), 0xD7FF, true},
    {T(UnicodeIsHangul), 0xD800, false},
    {T(UnicodeIsDefined), 0xD7A3, true},
    {T(UnicodeIsDefined), 0xD7A4, false},
    {T(UnicodeIsAlpha), 0xAC00, true},
    // Composite: two or more canonical elements only.
    {T(UnicodeIsComposite), 0x00C0, true},
    {T(UnicodeIsComposite), 0xAC00, false},
    {T(UnicodeIsComposite), 0x0340, false},
    {T(UnicodeIsComposite), 0x212B, false},
    {T(UnicodeIsComposite), 0xFB00, false},
    {T(UnicodeIsComposite), 0x1F82, true},
    // The data is that of Unicode 3.0.
    {T(UnicodeIsDefined), 0x0220, false},
    {T(UnicodeIsDefined), 0x03F4, false},
    {T(UnicodeIsSpacingMark), 0x0B83, true},
    {T(UnicodeIsEnclosing), 0x06DD, true},
    {T(UnicodeIsFormatControl), 0x180B, true},
    {T(UnicodeIsLetterNumber), 0x16EE, false},
    {T(UnicodeIsNumber), 0x16EE, true},
    {T(UnicodeIsPunctuation), 0x17D7, true},
    {T(UnicodeIsPunctuation), 0x17DC, true},
    {T(UnicodeIsDefined), 0xFFFE, false},
    {T(UnicodeIsDefined), 0xFFFF, false},
    // Identifiers: Lm starts nothing, Me is no part.
    {T(UnicodeIsIdenifierStart), 0x02B0, false},
    {T(UnicodeIsIdenifierStart), 0x2160, true},
    {T(UnicodeIsIdenifierStart), 0x0030, false},
    {T(UnicodeIsIdentifierPart), 0x0030, true},
    {T(UnicodeIsIdentifierPart), 0x02B0, false},
    {T(UnicodeIsIdentifierPart), 0x20DD, false},
    {T(UnicodeIsIdentifierPart), 0x200C, true}, // Cf
    // Direction classes.
    {T(UnicodeIsRTL), 0x05D0, true},
    {T(UnicodeIsRTL), 0x0627, true}, // AL counts as R
    {T(UnicodeIsLTR), 0x0041, true},
    {T(UnicodeIsWeak), 0x0030, true},
    {T(UnicodeIsWeak), 0x0660, true},
    {T(UnicodeIsNeutral), 0x0021, true},
    {T(UnicodeIsNeutral), 0x0300, true}, // NSM counts as ON
    {T(UnicodeIsNeutral), 0x0000, true}, // BN counts as ON
    {T(UnicodeIsStrong), 0x0021, false},
    // Other families.
    {T(UnicodeIsHexDigit), 0x0066, true},
    {T(UnicodeIsHexDigit), 0x0067, false},
    {T(UnicodeIsHexDigit), 0xFF26, true},
    {T(UnicodeIsQuotationMark), 0x0022, true},
    {T(UnicodeIsQuotationMark), 0x300C, true},
    {T(UnicodeIsNonBreaking), 0x00A0, true},
    {T(UnicodeIsNonBreaking), 0x0020, false},
    {T(UnicodeIsTitle), 0x01C5, true},
    {T(UnicodeIsUpper), 0x01C5, false},
    {T(UnicodeIsUpper), 0x0041, true},
    {T(UnicodeIsLower), 0x0061, true},
    {T(UnicodeIsLower), 0x00DF, true},
    {T(UnicodeIsDigit), 0x0669, true},
    {T(UnicodeIsDigit), 0x00B2, false},
    {T(UnicodeIsAlphaNum), 0x0039, true},
    {T(UnicodeIsAlphaNum), 0x002D, false},
    {T(UnicodeIsControl), 0x200E, true},
    {T(UnicodeIsIsoControl), 0x200E, false},
    {T(UnicodeIsIsoControl), 0x009F, true},
    {T(UnicodeIsMath), 0x002B, true},
    {T(UnicodeIsCurrency), 0x20AC, true},
    {T(UnicodeIsModifierSymbol), 0x005E, true},
    {T(UnicodeIsSymbol), 0x00A9, true},
    {T(UnicodeIsDash), 0x2014, true},
    {T(UnicodeIsOpenPunctuation), 0x0028, true},
    {T(UnicodeIsClosePunctuation), 0x0029, true},
    {T(UnicodeIsInitialPunctuation), 0x201C, true},
    {T(UnicodeIsFinalPunctuation), 0x201D, true},
    {T(UnicodeIsMark), 0x0903, true},
    {T(UnicodeIsModifier), 0x02B0, true},
    {T(UnicodeIsLineSeparator), 0x2028, true},
    {T(UnicodeIsParagraphSeparator), 0x2029, true},
    {T(UnicodeIsNonSpacingMark), 0x0301, true},
    // Outside every table.
    {T(UnicodeIsAlpha), 0x110000, false},
    {T(UnicodeIsAlpha), 0xFFFFFFFF, false},
    {T(UnicodeIsDefined), 0x20000, false},
};

#undef T

TEST(CharDatabaseTest, PropertyTestsAnswerAsTheTablesSay) {
  for (const Expectation &e : kExpectations)
    EXPECT_EQ(e.test(e.code), e.expected) << e.what << "(U+" << std::hex << e.code << ")";
}

// Each test of the family is the union of its properties; the lists are
// written here independently of the library's masks.
struct Family {
  const char *name;
  TestFn test;
  std::vector<int> properties;
  bool inverted = false;
};

const std::vector<Family> &Families() {
  static const std::vector<Family> families = {
      {"Alpha", UnicodeIsAlpha, {14, 15, 16, 17, 18}},
      {"Digit", UnicodeIsDigit, {3}},
      {"AlphaNum", UnicodeIsAlphaNum, {3, 14, 15, 16, 17, 18}},
      {"Control", UnicodeIsControl, {9, 10}},
      {"Space", UnicodeIsSpace, {6, 13}},
      {"WhiteSpace", UnicodeIsWhiteSpace, {6, 13, 36, 37}},
      {"Blank", UnicodeIsBlank, {6}},
      {"Punctuation", UnicodeIsPunctuation, {20, 21, 22, 23, 47, 48}},
      {"Graph", UnicodeIsGraph, {0,  1,  2,  3,  4,  5,  14, 15, 16, 17, 18,
                                 19, 20, 21, 22, 23, 24, 25, 26, 27, 47, 48}},
      {"Printable", UnicodeIsPrintable, {0,  1,  2,  3,  4,  5,  6,  14, 15, 16, 17, 18,
                                         19, 20, 21, 22, 23, 24, 25, 26, 27, 47, 48}},
      {"Upper", UnicodeIsUpper, {14}},
      {"Lower", UnicodeIsLower, {15}},
      {"Title", UnicodeIsTitle, {16}},
      {"HexDigit", UnicodeIsHexDigit, {42}},
      {"IsoControl", UnicodeIsIsoControl, {9}},
      {"FormatControl", UnicodeIsFormatControl, {10}},
      {"Symbol", UnicodeIsSymbol, {24, 25, 26, 27}},
      {"Number", UnicodeIsNumber, {3, 4, 5}},
      {"NonSpacing", UnicodeIsNonSpacing, {0}},
      {"OpenPunctuation", UnicodeIsOpenPunctuation, {21}},
      {"ClosePunctuation", UnicodeIsClosePunctuation, {22}},
      {"InitialPunctuation", UnicodeIsInitialPunctuation, {47}},
      {"FinalPunctuation", UnicodeIsFinalPunctuation, {48}},
      {"Composite", UnicodeIsComposite, {39}},
      {"QuotationMark", UnicodeIsQuotationMark, {43}},
      {"Symmetric", UnicodeIsSymmetric, {41}},
      {"Mirroring", UnicodeIsMirroring, {44}},
      {"NonBreaking", UnicodeIsNonBreaking, {40}},
      {"RTL", UnicodeIsRTL, {29}},
      {"LTR", UnicodeIsLTR, {28}},
      {"Strong", UnicodeIsStrong, {28, 29}},
      {"Weak", UnicodeIsWeak, {30, 31, 32, 33, 34}},
      {"Neutral", UnicodeIsNeutral, {35, 36, 37, 38}},
      {"Separator", UnicodeIsSeparator, {35, 36}},
      {"Mark", UnicodeIsMark, {0, 1, 2}},
      {"Modifier", UnicodeIsModifier, {17}},
      {"LetterNumber", UnicodeIsLetterNumber, {4}},
      {"ConnectionPunctuation", UnicodeIsConnectionPunctuation, {19}},
      {"Dash", UnicodeIsDash, {20}},
      {"Math", UnicodeIsMath, {24}},
      {"Currency", UnicodeIsCurrency, {25}},
      {"ModifierSymbol", UnicodeIsModifierSymbol, {26}},
      {"NonSpacingMark", UnicodeIsNonSpacingMark, {0}},
      {"SpacingMark", UnicodeIsSpacingMark, {1}},
      {"Enclosing", UnicodeIsEnclosing, {2}},
      {"Private", UnicodeIsPrivate, {12}},
      {"Surrogate", UnicodeIsSurrogate, {11}},
      {"LineSeparator", UnicodeIsLineSeparator, {7}},
      {"ParagraphSeparator", UnicodeIsParagraphSeparator, {8}},
      {"IdenifierStart", UnicodeIsIdenifierStart, {4, 14, 15, 16, 18}},
      {"IdentifierPart", UnicodeIsIdentifierPart, {0, 1, 3, 4, 10, 14, 15, 16, 18, 19}},
      {"Defined", UnicodeIsDefined, {46}},
      {"Undefined", UnicodeIsUndefined, {46}, true},
  };
  return families;
}

// Code points to sweep: the whole of the 16-bit range below the Han blocks,
// a sample above, and the edges of the supplementary range.
std::vector<UCS4> SweepCodes() {
  std::vector<UCS4> codes;
  for (UCS4 c = 0; c < 0x3400; ++c)
    codes.push_back(c);
  for (UCS4 c = 0x3400; c <= 0xFFFF; c += 7)
    codes.push_back(c);
  for (UCS4 c : {0xFFFFu, 0x10000u, 0x10001u, 0x10FFFFu, 0x110000u, 0xFFFFFFFFu})
    codes.push_back(c);
  return codes;
}

TEST(CharDatabaseTest, EachFamilyMemberIsTheUnionOfItsProperties) {
  ASSERT_EQ(Families().size(), 53u);
  std::vector<UCS4> codes = SweepCodes();
  for (const Family &f : Families()) {
    uint32_t mask1 = 0, mask2 = 0;
    for (int p : f.properties)
      (p < 32 ? mask1 : mask2) |= uint32_t(1) << (p % 32);
    for (UCS4 c : codes) {
      bool any = false;
      for (int p : f.properties)
        any = any || UnicodeLookupProperty(c, p);
      ASSERT_EQ(f.test(c), any != f.inverted) << f.name << " U+" << std::hex << c;
      ASSERT_EQ(UnicodeTestProperties(c, mask1, mask2), any) << f.name << " U+" << std::hex << c;
    }
  }
}

TEST(CharDatabaseTest, MaskTestReachesOnlyTheTablesProperties) {
  EXPECT_FALSE(UnicodeTestProperties(0x0041, 0, 0));
  EXPECT_TRUE(UnicodeTestProperties(0x0041, 1u << 14, 0));
  EXPECT_FALSE(UnicodeTestProperties(0x0041, 1u << 15, 0));
  EXPECT_TRUE(UnicodeTestProperties(0x0041, 0, 1u << (46 - 32))); // Defined
  // Bits above property 48 name nothing.
  EXPECT_FALSE(UnicodeTestProperties(0x0041, 0, ~uint32_t(0) << (49 - 32)));
  EXPECT_TRUE(UnicodeTestProperties(0x0041, ~uint32_t(0), ~uint32_t(0)));
  EXPECT_FALSE(UnicodeLookupProperty(0x0041, 49));
  EXPECT_FALSE(UnicodeLookupProperty(0x0041, -1));
  EXPECT_FALSE(UnicodeLookupProperty(0x0041, 1000));
}

// The bisection told for the stored table, step by step, over the raw bytes
// of the embedded resource: the library's faster loop must agree everywhere.
class StoredTypeTable {
public:
  StoredTypeTable() {
    const ResourceBlob *blob = FindResourceBlob(KestrelModuleHandle(), "TYPE", "UNICODE");
    if (blob) bytes_.assign(blob->data, blob->data + blob->size);
  }
  bool Valid() const { return bytes_.size() > 8; }
  uint16_t Count() const { return U16(2); }
  uint16_t Offset(int n) const { return U16(8 + 2 * n); }
  uint32_t Range(int i) const { return U32(8 + ((Count() + 2) / 2) * 4 + 4 * i); }

  bool Lookup(UCS4 code, int n) const {
    int32_t l = Offset(n);
    if (l == 0xFFFF) return false;
    int k = n + 1;
    while (Offset(k) == 0xFFFF && k < Count())
      ++k;
    int32_t r = int32_t(Offset(k)) - 1;
    while (l <= r) {
      int32_t m = (l + r) >> 1;
      m -= m & 1;
      if (code > Range(m + 1))
        l = m + 2;
      else if (code < Range(m))
        r = m - 2;
      else
        return true;
    }
    return false;
  }

private:
  uint16_t U16(size_t at) const { return uint16_t(bytes_[at] | bytes_[at + 1] << 8); }
  uint32_t U32(size_t at) const {
    return uint32_t(bytes_[at]) | uint32_t(bytes_[at + 1]) << 8 | uint32_t(bytes_[at + 2]) << 16 |
           uint32_t(bytes_[at + 3]) << 24;
  }
  std::vector<uint8_t> bytes_;
};

TEST(CharDatabaseTest, LookupAgreesWithTheStepwiseBisection) {
  StoredTypeTable stored;
  ASSERT_TRUE(stored.Valid());
  ASSERT_EQ(stored.Count(), 49);
  std::vector<UCS4> codes = SweepCodes();
  for (UCS4 c = 0x3400; c <= 0xFFFF; c += 5) // a second, shifted sample
    codes.push_back(c);
  for (int n = 0; n < 49; ++n)
    for (UCS4 c : codes)
      ASSERT_EQ(UnicodeLookupProperty(c, n), stored.Lookup(c, n))
          << "property " << n << " U+" << std::hex << c;
}

TEST(CharDatabaseTest, EveryRangeEdgeIsFound) {
  // Both ends of each stored range hold, the codes just outside do not
  // (ranges never touch, so the neighbours are outside).
  const TTypeTable &t = TypeTable();
  for (unsigned n = 0; n < t.Count; ++n)
    for (uint32_t i = 0; i < t.Spans[n].Pairs; ++i) {
      UCS4 first = t.PropertyRanges[t.Spans[n].Start + 2 * i];
      UCS4 last = t.PropertyRanges[t.Spans[n].Start + 2 * i + 1];
      ASSERT_TRUE(UnicodeLookupProperty(first, int(n))) << n << " " << first;
      ASSERT_TRUE(UnicodeLookupProperty(last, int(n))) << n << " " << last;
      if (first > 0) {
        ASSERT_FALSE(UnicodeLookupProperty(first - 1, int(n))) << n << " " << first - 1;
      }
      ASSERT_FALSE(UnicodeLookupProperty(last + 1, int(n))) << n << " " << last + 1;
    }
}

TEST(CharDatabaseTest, PropertySizesAreThoseOfTheTable) {
  // Ranges and code points per property, as stored.
  const uint32_t ranges[49] = {95,  51,  4,   20, 4,  18,  6,  1,   1,  2,  7,  1,  1,
                               0,   371, 374, 10, 18, 191, 7,  11,  38, 36, 65, 35, 10,
                               22,  98,  314, 33, 10, 2,   24, 2,   11, 5,  3,  7,  205,
                               212, 4,   26,  6,  12, 0,   1,  360, 5,  4};
  const uint32_t points[49] = {
      450, 118,   10, 198, 49,   184,  17,  1,   1,  65, 24,   1048576, 6400,  0,   686, 804, 31,
      46,  37685, 11, 17,  38,   37,   185, 299, 31, 69, 2005, 1094194, 1038,  111, 2,   59,  12,
      11,  7,     3,  17,  2501, 1033, 4,   85,  44, 29, 0,    5,       42981, 6,   4};
  const TTypeTable &t = TypeTable();
  ASSERT_EQ(t.Count, 49);
  EXPECT_EQ(t.PropertyOffsets[49], 5486);
  for (unsigned n = 0; n < 49; ++n) {
    uint64_t total = 0;
    for (uint32_t i = 0; i < t.Spans[n].Pairs; ++i)
      total += t.PropertyRanges[t.Spans[n].Start + 2 * i + 1] -
               t.PropertyRanges[t.Spans[n].Start + 2 * i] + 1;
    EXPECT_EQ(t.Spans[n].Pairs, ranges[n]) << UnicodePropertyLabels[n];
    EXPECT_EQ(total, points[n]) << UnicodePropertyLabels[n];
  }
}

struct NumberCase {
  UCS4 code;
  int32_t numerator, denominator, digit;
};

TEST(CharDatabaseTest, NumbersAndDigits) {
  const NumberCase cases[] = {
      {0x0030, 0, 0, 0},
      {0x0037, 7, 7, 7},
      {0x0039, 9, 9, 9},
      {0x0041, -111, -111, -111},
      {0x00BD, 1, 2, -111},
      {0x00BC, 1, 4, -111},
      {0x00BE, 3, 4, -111},
      {0x00B2, 2, 2, 2},
      {0x2169, 10, 10, 10},
      {0x2181, 5000, 5000, 5000},
      {0x2182, 10000, 10000, 10000},
      {0x215E, 7, 8, -111},
      {0x2153, 1, 3, -111},
      {0x0F2A, -111, -111, -111},
      {0x4E00, -111, -111, -111},
      {0x3007, 0, 0, 0},
      {0x137C, 10000, 10000, 10000},
      {0x16EE, 17, 17, 17},
      {0xFF19, 9, 9, 9},
      {0x0000, -111, -111, -111},
      {0xFFFFFFFF, -111, -111, -111},
      {0x2183, -111, -111, -111},
      {0x3289, 10, 10, 10},
      {0x249B, 20, 20, 20},
  };
  for (const NumberCase &c : cases) {
    TUnicodeNumber n = UnicodeGetNumber(c.code);
    EXPECT_EQ(n.Numerator, c.numerator) << std::hex << c.code;
    EXPECT_EQ(n.Denominator, c.denominator) << std::hex << c.code;
    EXPECT_EQ(UnicodeGetDigit(c.code), c.digit) << std::hex << c.code;
  }
}

TEST(CharDatabaseTest, EveryNumberRowIsFoundAndNothingBetween) {
  const TNumberTable &t = NumberTable();
  ASSERT_EQ(t.Count, 810);
  ASSERT_EQ(t.NumberValues.size(), 96u);
  size_t found = 0;
  for (UCS4 c = 0; c <= 0xFFFF; ++c)
    if (UnicodeGetNumber(c).Numerator != UnicodeNoNumber) ++found;
  EXPECT_EQ(found, 405u);
  // Every decimal digit has its whole value.
  for (UCS4 c = 0; c <= 0xFFFF; ++c)
    if (UnicodeIsDigit(c)) {
      ASSERT_GE(UnicodeGetDigit(c), 0) << std::hex << c;
    }
}

} // namespace
} // namespace kestrel
