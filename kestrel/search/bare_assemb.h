// Unit bare_assemb: small routines over raw text buffers. Each takes a pointer
// and a length (bytes, or UTF-16 code units in the forms ending in W), works
// in place or returns a position, allocates nothing and calls nothing.
//
// Read the off-by-one rules before use:
// - FastStrPos and its kin never try the last start position: a match must
//   leave one unit free behind it. Pass the text's length plus 1 to search
//   the whole text.
// - SearchAndReplaceFast does not replace an occurrence that ends with the
//   buffer's last byte.
// - ClearBetweenChars, CleanBetweenChars and RemoveRedundantSpaceA/W write a
//   zero byte (or unit) behind what is left, so the buffer needs room for one
//   more than its length, even for a length of 0.
#pragma once

#include <cstdint>

#include <kestrel/search/bare_assemb_types.h>

namespace kestrel {

// ---- Byte-order marks (the first two bytes, read little-endian) -----------
// True when the value is 0xFFFE: bytes FE FF, high byte first.
bool UnicodeByteReversed(const void *Buffer);
// True when the value is 0xFEFF or 0xFFFE.
bool UnicodeSigned(const void *Buffer);

// ---- Searching -------------------------------------------------------------
// First occurrence of the terminated Sub among start positions 0 to
// TextLen - len(Sub) - 1; null for a null or empty Sub, a null Text, or
// TextLen not above len(Sub). Zero units in Text are plain units.
const char *FastStrPos(const char *Text, const char *Sub, int32_t TextLen);
const char16_t *FastStrPosW(const char16_t *Text, const char16_t *Sub, int32_t TextLen);
// The same frame, where each unit must equal the unit of Form1 or of Form2 at
// the same index (the same text in two cases). Null when the forms are empty
// or of different lengths.
const char *FastStrIPos(const char *Text, const char *Form1, const char *Form2, int32_t TextLen);
const char16_t *FastStrIPosW(const char16_t *Text, const char16_t *Form1, const char16_t *Form2,
                             int32_t TextLen);
// First Ch among the first Len units, or null.
const char *FastStrScan(const char *Text, char Ch, int32_t Len);
const char16_t *FastStrScanW(const char16_t *Text, char16_t Ch, int32_t Len);

inline char *FastStrPos(char *Text, const char *Sub, int32_t TextLen) {
  return const_cast<char *>(FastStrPos(static_cast<const char *>(Text), Sub, TextLen));
}
inline char16_t *FastStrPosW(char16_t *Text, const char16_t *Sub, int32_t TextLen) {
  return const_cast<char16_t *>(FastStrPosW(static_cast<const char16_t *>(Text), Sub, TextLen));
}
inline char *FastStrScan(char *Text, char Ch, int32_t Len) {
  return const_cast<char *>(FastStrScan(static_cast<const char *>(Text), Ch, Len));
}
inline char16_t *FastStrScanW(char16_t *Text, char16_t Ch, int32_t Len) {
  return const_cast<char16_t *>(FastStrScanW(static_cast<const char16_t *>(Text), Ch, Len));
}

// ---- Replacing in place, length unchanged -----------------------------------
// Overwrites each occurrence of the SearchLen bytes of Search with the first
// SearchLen bytes of Replace, left to right, never overlapping; an occurrence
// ending with the buffer's last byte stays. SearchLen is at least 1.
void SearchAndReplaceFast(char *Buffer, const char *Search, const char *Replace, int32_t BufLen,
                          int32_t SearchLen);
void ReplaceCharacterBySpace(char *Buffer, char Ch, int32_t Len);
void ReplaceCharacterBySpaceW(char16_t *Buffer, char16_t Ch, int32_t Len);
// Every byte equal to the low byte of Pair becomes its high byte.
void ReplaceCharacter1ByCharacter2(char *Buffer, uint16_t Pair, int32_t Len);
// Every unit below 0x20 becomes a blank.
void ReplaceControlCharsBySpaceA(char *Buffer, int32_t Len);
void ReplaceControlCharsBySpaceW(char16_t *Buffer, int32_t Len);
// Every CR becomes a blank, and so does an LF right behind it.
void ReplaceCarriageReturnsBySpaceA(char *Buffer, int32_t Len);
void ReplaceCarriageReturnsBySpaceW(char16_t *Buffer, int32_t Len);
void ReplaceTabsBySpace(char *Buffer, int32_t Len);
// Fill Count units with blanks; nothing for a Count of 0 or less.
void BlankOutSomeBytesA(char *Buffer, int32_t Count);
void BlankOutSomeBytesW(char16_t *Buffer, int32_t Count);
// Blanks the lower-case letters of each word until the word shows an
// upper-case one: "the Cat sAt" becomes "    Cat  At". Letters beyond ASCII
// are told by the two lists.
void CutLowercaseWords(char *Buffer, const ANSILower_or_upperStr_type &Lowers,
                       const ANSILower_or_upperStr_type &Uppers, int32_t Len);
// Upper-cases ASCII letters, and letters beyond ASCII found among the first
// min(len(Lowers), len(Uppers)) of Lowers.
void CapitaliseABuffer(char *Buffer, const ANSILower_or_upperStr_type &Lowers,
                       const ANSILower_or_upperStr_type &Uppers, int32_t Len);

// ---- Compacting in place ----------------------------------------------------
// Drops each span from an Open byte through the next Close byte (a single
// byte when Open equals Close); an Open byte with no Close behind it goes
// alone. Writes a zero byte behind what is left.
void ClearBetweenChars(char *Buffer, char Open, char Close, int32_t Len);
// As ClearBetweenChars, but Close is looked for among no more than MaxSpan
// bytes from the Open byte; a found span is dropped (Remove) or blanked.
void CleanBetweenChars(char *Buffer, char Open, char Close, int32_t Len, int32_t MaxSpan,
                       bool Remove);
// Drops every LF (not CR); no terminator. Returns the new length.
int32_t LengthConvertedToUnix(char *Buffer, int32_t Len);
// Each run of blanks (0x20 only) keeps its first; writes a zero behind what is
// left and returns the new length.
int32_t RemoveRedundantSpaceA(char *Buffer, int32_t Len);
int32_t RemoveRedundantSpaceW(char16_t *Buffer, int32_t Len);

// ---- Comparing and summing --------------------------------------------------
// True when the first Len bytes agree (also for Len 0).
bool EqualContents(const void *A, const void *B, int32_t Len);
// The number of bytes behind the first difference: 0 when all agree, and
// also when only the last byte differs.
int32_t HowFarEqualContents(const void *A, const void *B, int32_t Len);
// Sum modulo 2^32 of the complete little-endian 32-bit words.
uint32_t My4Checksum(const void *Buffer, int32_t Len);

} // namespace kestrel
