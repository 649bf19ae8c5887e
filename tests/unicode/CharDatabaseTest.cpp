// Property tests and number lookups over the embedded tables.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <kestrel/unicode/CharTables.h>
#include <kestrel/unicode/Unicode.h>

namespace kestrel {
namespace {

using TestFn = bool (*)(UCS4);

struct Expectation {
  const char *what;
  TestFn test;
  std::vector<UCS4> holds, fails;
};

#define T(fn) #fn, fn

// The decisions the tables carry where common sense differs (a tab is no space,
// surrogates are the supplementary code points, the data is Unicode 3.0, ...);
// each test of several categories is shown to take one of the rarer ones.
const Expectation kExpectations[] = {
    {T(UnicodeIsSpace), {0x0020}, {0x0009}},
    {T(UnicodeIsWhiteSpace), {0x0009, 0x0020, 0x000C, 0x3000}, {0x000A, 0x000D}},
    {T(UnicodeIsBlank), {}, {0x0009}},
    {T(UnicodeIsSeparator), {0x000A}, {}},
    {T(UnicodeIsPunctuation), {0x00AB, 0x00BB, 0x17D7, 0x17DC}, {0x005F}},
    {T(UnicodeIsGraph), {0x005F, 0x06DD}, {0x0020}},
    {T(UnicodeIsPrintable), {0x0020, 0x16EE}, {}},
    {T(UnicodeIsMirroring), {}, {0x0028, 0x003C}},
    {T(UnicodeIsSymmetric), {0x0028}, {0x003C}},
    {T(UnicodeIsSurrogate), {0x10000, 0x10FFFF}, {0xD800, 0xDFFF, 0x110000}},
    {T(UnicodeIsLTR), {0x10000, 0x0041}, {0x110000}},
    {T(UnicodeIsDefined),
     {0xE900, 0x3400, 0x4DB5, 0x9FA5, 0xFAFF, 0xD7A3},
     {0xD800, 0x10000, 0xE000, 0x3401, 0x9FFF, 0x9FA6, 0xD7A4, 0x0220, 0x03F4, 0xFFFE, 0xFFFF,
      0x20000}},
    {T(UnicodeIsUndefined), {0xD800, 0xFFFFFFFF}, {}},
    {T(UnicodeIsPrivate), {0xE000, 0xE900}, {0xF900}},
    {T(UnicodeIsAlpha),
     {0xE900, 0x3400, 0x9FFF, 0xFAFF, 0xAC00, 0x02B0},
     {0xE000, 0x3401, 0x110000, 0xFFFFFFFF}},
    {T(UnicodeIsComposite), {0xE95A, 0x00C0, 0x1F82}, {0xE90F, 0xAC00, 0x0340, 0x212B, 0xFB00}},
    {T(UnicodeIsHan), {0x9FFF, 0x4E00, 0xF900, 0xFAFF}, {0x3401, 0x4DFF, 0xA000, 0xF8FF, 0xFB00}},
    {T(UnicodeIsHangul), {0xAC00, 0xD7A4, 0xD7FF}, {0xABFF, 0xD800}},
    {T(UnicodeIsLetterNumber), {}, {0x16EE}},
    {T(UnicodeIsNumber), {0x16EE, 0x00B2}, {}},
    {T(UnicodeIsIdenifierStart), {0x2160}, {0x02B0, 0x0030}},
    {T(UnicodeIsIdentifierPart), {0x0030, 0x200C, 0x0B83}, {0x02B0, 0x20DD}},
    {T(UnicodeIsRTL), {0x05D0, 0x0627}, {}},
    {T(UnicodeIsWeak), {0x0030, 0x0660}, {}},
    {T(UnicodeIsNeutral), {0x0021, 0x0300, 0x0000}, {}},
    {T(UnicodeIsStrong), {}, {0x0021}},
    {T(UnicodeIsHexDigit), {0x0066, 0xFF26}, {0x0067}},
    {T(UnicodeIsQuotationMark), {0x0022, 0x300C}, {}},
    {T(UnicodeIsNonBreaking), {0x00A0}, {0x0020}},
    {T(UnicodeIsUpper), {0x0041}, {0x01C5}},
    {T(UnicodeIsDigit), {0x0669}, {0x00B2}},
    {T(UnicodeIsAlphaNum), {0x0039, 0x01C5}, {0x002D}},
    {T(UnicodeIsControl), {0x200E, 0x180B}, {}},
    {T(UnicodeIsIsoControl), {0x009F}, {0x200E}},
    {T(UnicodeIsSymbol), {0x00A9, 0x005E}, {}},
    {T(UnicodeIsMark), {0x0903, 0x06DD, 0xE97B}, {}},
};

#undef T

TEST(CharDatabase, PropertyTestsAnswerAsTheTablesSay) {
  for (const Expectation &e : kExpectations) {
    for (UCS4 c : e.holds)
      EXPECT_TRUE(e.test(c)) << e.what << "(U+" << std::hex << c << ")";
    for (UCS4 c : e.fails)
      EXPECT_FALSE(e.test(c)) << e.what << "(U+" << std::hex << c << ")";
  }
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

struct NumberCase {
  UCS4 code;
  int32_t numerator, denominator, digit;
};

TEST(CharDatabase, NumbersAndDigits) {
  constexpr int32_t N = UnicodeNoNumber;
  const NumberCase cases[] = {
      {0x0030, 0, 0, 0},   {0x0037, 7, 7, 7},     {0x0041, N, N, N},
      {0x00BD, 1, 2, N},   {0x00B2, 2, 2, 2},     {0x2182, 10000, 10000, 10000},
      {0x0F2A, N, N, N},   {0x3007, 0, 0, 0},     {0x16EE, 17, 17, 17},
      {0x0000, N, N, N},   {0xFFFFFFFF, N, N, N}, {0x2183, N, N, N},
      {0x249B, 20, 20, 20}};
  for (const NumberCase &c : cases) {
    TUnicodeNumber n = UnicodeGetNumber(c.code);
    EXPECT_EQ(n.Numerator, c.numerator) << std::hex << c.code;
    EXPECT_EQ(n.Denominator, c.denominator) << std::hex << c.code;
    EXPECT_EQ(UnicodeGetDigit(c.code), c.digit) << std::hex << c.code;
  }
}

TEST(CharDatabase, EveryNumberRowIsFoundAndNothingBetween) {
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
