// The character database: property tests and number lookups over the
// library's character tables. Every test takes a code point; callers that
// walk wide strings pass one 16-bit unit at a time, so a surrogate half is
// tested as itself. The tables load on first use and may raise the resource
// error of that load; no test raises an error of its own.
#pragma once

#include <cstddef>
#include <cstdint>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// Whether Code lies in any property whose bit is set: bit i of Mask1 stands
// for property i (0 to 31), bit i of Mask2 for property 32 + i.
bool UnicodeTestProperties(UCS4 Code, uint32_t Mask1, uint32_t Mask2);

// Whether C has the property the name says (a category, a bidirectional
// class or another property of the tables).
bool UnicodeIsAlpha(UCS4 C);
bool UnicodeIsDigit(UCS4 C);
bool UnicodeIsAlphaNum(UCS4 C);
bool UnicodeIsControl(UCS4 C);
bool UnicodeIsSpace(UCS4 C);
bool UnicodeIsWhiteSpace(UCS4 C);
bool UnicodeIsBlank(UCS4 C);
bool UnicodeIsPunctuation(UCS4 C);
bool UnicodeIsGraph(UCS4 C);
bool UnicodeIsPrintable(UCS4 C);
bool UnicodeIsUpper(UCS4 C);
bool UnicodeIsLower(UCS4 C);
bool UnicodeIsTitle(UCS4 C);
bool UnicodeIsHexDigit(UCS4 C);
bool UnicodeIsIsoControl(UCS4 C);
bool UnicodeIsFormatControl(UCS4 C);
bool UnicodeIsSymbol(UCS4 C);
bool UnicodeIsNumber(UCS4 C);
bool UnicodeIsNonSpacing(UCS4 C);
bool UnicodeIsOpenPunctuation(UCS4 C);
bool UnicodeIsClosePunctuation(UCS4 C);
bool UnicodeIsInitialPunctuation(UCS4 C);
bool UnicodeIsFinalPunctuation(UCS4 C);
bool UnicodeIsComposite(UCS4 C);
bool UnicodeIsQuotationMark(UCS4 C);
bool UnicodeIsSymmetric(UCS4 C);
bool UnicodeIsMirroring(UCS4 C);
bool UnicodeIsNonBreaking(UCS4 C);
bool UnicodeIsRTL(UCS4 C);
bool UnicodeIsLTR(UCS4 C);
bool UnicodeIsStrong(UCS4 C);
bool UnicodeIsWeak(UCS4 C);
bool UnicodeIsNeutral(UCS4 C);
bool UnicodeIsSeparator(UCS4 C);
bool UnicodeIsMark(UCS4 C);
bool UnicodeIsModifier(UCS4 C);
bool UnicodeIsLetterNumber(UCS4 C);
bool UnicodeIsConnectionPunctuation(UCS4 C);
bool UnicodeIsDash(UCS4 C);
bool UnicodeIsMath(UCS4 C);
bool UnicodeIsCurrency(UCS4 C);
bool UnicodeIsModifierSymbol(UCS4 C);
bool UnicodeIsNonSpacingMark(UCS4 C);
bool UnicodeIsSpacingMark(UCS4 C);
bool UnicodeIsEnclosing(UCS4 C);
bool UnicodeIsPrivate(UCS4 C);
bool UnicodeIsSurrogate(UCS4 C);
bool UnicodeIsLineSeparator(UCS4 C);
bool UnicodeIsParagraphSeparator(UCS4 C);
bool UnicodeIsIdenifierStart(UCS4 C); // spelled as the tools know it
bool UnicodeIsIdentifierPart(UCS4 C);
bool UnicodeIsDefined(UCS4 C);
bool UnicodeIsUndefined(UCS4 C);

// Fixed ranges, no table: U+4E00..U+9FFF and U+F900..U+FAFF; U+AC00..U+D7FF
// (past the last syllable U+D7A3).
bool UnicodeIsHan(UCS4 C);
bool UnicodeIsHangul(UCS4 C);

// A numeric value as a fraction, in its stored layout.
#pragma pack(push, 1)
struct TUnicodeNumber {
  int32_t Numerator;
  int32_t Denominator;
};
#pragma pack(pop)
static_assert(sizeof(TUnicodeNumber) == 8);
static_assert(offsetof(TUnicodeNumber, Numerator) == 0);
static_assert(offsetof(TUnicodeNumber, Denominator) == 4);

// The value given for a code without a number.
inline constexpr int32_t UnicodeNoNumber = -111;

// The (numerator, denominator) of Code; a whole number n is (n, n). A code
// without a row gives (-111, -111).
TUnicodeNumber UnicodeGetNumber(UCS4 Code);
// The value of a whole number (U+2169 gives 10); -111 for a code without a
// row or with a fraction.
int32_t UnicodeGetDigit(UCS4 Code);

// Frees the lock and every loaded table (the unit's finalisation).
void FreeCharacterDatabase();

} // namespace kestrel
