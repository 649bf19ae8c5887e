// Property tests and number lookups over the embedded tables.
#include <gtest/gtest.h>

#include <string>

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

TEST(CharDatabase, PropertyTestsAnswerAsTheTablesSay) {
  for (const Expectation &e : kExpectations)
    EXPECT_EQ(e.test(e.code), e.expected) << e.what << "(U+" << std::hex << e.code << ")";
}

TEST(CharDatabase, MaskTestReachesOnlyTheTablesProperties) {
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

TEST(CharDatabase, EveryRangeEdgeIsFound) {
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

struct NumberCase {
  UCS4 code;
  int32_t numerator, denominator, digit;
};

TEST(CharDatabase, NumbersAndDigits) {
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

TEST(CharDatabase, EveryNumberRowIsFoundAndNothingBetween) {
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
