// The Str*W family over wide C strings: units ended by a 0 unit. A unit is a
// unit: nothing here looks at surrogates or combining sequences.
#pragma once

#include <cstdint>
#include <string_view>

namespace kestrel {

// Counts are in 16-bit units. Unless told otherwise a pointer must not be
// null, and buffer sizes are the caller's to respect. A difference is the
// first unit that differs, from Str1, less the same unit from Str2 (as
// unsigned values), 0 when nothing differs.

uint32_t StrLenW(const char16_t *Str);
char16_t *StrEndW(const char16_t *Str);
// Copies exactly Count units; the regions may overlap. Writes no terminator.
char16_t *StrMoveW(char16_t *Dest, const char16_t *Source, uint32_t Count);
char16_t *StrCopyW(char16_t *Dest, const char16_t *Source);
// As StrCopyW, giving the new terminator in Dest.
char16_t *StrECopyW(char16_t *Dest, const char16_t *Source);
// At most MaxLen units, and always a terminator: Dest holds MaxLen + 1 units.
char16_t *StrLCopyW(char16_t *Dest, const char16_t *Source, uint32_t MaxLen);
// Each byte becomes the unit of the same value, with no code page; then a
// terminator.
char16_t *StrPCopyW(char16_t *Dest, std::string_view Source);
// The first MaxLen bytes likewise (never more than Source holds), with no
// terminator.
char16_t *StrPLCopyW(char16_t *Dest, std::string_view Source, uint32_t MaxLen);
char16_t *StrCatW(char16_t *Dest, const char16_t *Source);
// Appends what keeps Dest at MaxLen units at most, and terminates it.
char16_t *StrLCatW(char16_t *Dest, const char16_t *Source, uint32_t MaxLen);
int32_t StrCompW(const char16_t *Str1, const char16_t *Str2);
// As StrCompW with a to z counted as A to Z; no other unit folds.
int32_t StrICompW(const char16_t *Str1, const char16_t *Str2);
int32_t StrLCompW(const char16_t *Str1, const char16_t *Str2, uint32_t MaxLen);
int32_t StrLICompW(const char16_t *Str1, const char16_t *Str2, uint32_t MaxLen);
// Index of the first unit of S1 that occurs in S2, else the length of S1;
// -1 if either is null.
int32_t StrNScanW(const char16_t *S1, const char16_t *S2);
// Units stepped over walking down from S1 (examined first) to a 0 unit or a
// unit of S2; -1 if either is null. Such a stop must lie below S1.
int32_t StrRNScanW(const char16_t *S1, const char16_t *S2);
// The first Chr, searching through the terminator (Chr 0 finds it), or null.
char16_t *StrScanW(const char16_t *Str, char16_t Chr);
// The first Chr among the first StrLen units, terminators not looked at;
// null Str gives null, StrLen 0 gives Str.
char16_t *StrScanW(const char16_t *Str, char16_t Chr, uint32_t StrLen);
// The last Chr, searching through the terminator, or null.
char16_t *StrRScanW(const char16_t *Str, char16_t Chr);
// The first occurrence of SubStr; null if either is null, SubStr is empty or
// longer than Str.
char16_t *StrPosW(const char16_t *Str, const char16_t *SubStr);
// Case mapping of every unit in place (UnicodeToUpper, ...); give Str.
char16_t *StrUpperW(char16_t *Str);
char16_t *StrLowerW(char16_t *Str);
char16_t *StrTitleW(char16_t *Str);

// Buffers with a 4-byte prefix holding the block's size in bytes (2 x Size +
// 4); the units are zeroed. Raises EOutOfMemory if the block cannot be had.
char16_t *StrAllocW(uint32_t Size);
// The Size given to StrAllocW; only for its buffers.
uint32_t StrBufSizeW(const char16_t *Str);
// A new buffer with a copy of Str and its terminator; null for null.
char16_t *StrNewW(const char16_t *Str);
// Frees a buffer of StrAllocW or StrNewW; null does nothing.
void StrDisposeW(char16_t *Str);
// Swaps the bytes of each unit, up to the first unit that is 0 before.
void StrSwapByteOrder(char16_t *Str);

} // namespace kestrel
