// Canonical decomposition with canonical ordering of marks, from the
// "DECOMPOSE" and "COMBINE" tables, and Hangul syllables by arithmetic.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

// Hangul syllables and conjoining jamo.
inline constexpr UCS4 SBase = 0xAC00, LBase = 0x1100, VBase = 0x1161, TBase = 0x11A7;
inline constexpr int32_t LCount = 19, VCount = 21, TCount = 28;
inline constexpr int32_t NCount = VCount * TCount; // 588
inline constexpr int32_t SCount = LCount * NCount; // 11,172

// Each unit decomposed in full; every mark (class above 0) is inserted behind
// the last unit whose class is not above its own, walking back no further
// than a starter and never past the first unit of the result. Surrogate
// halves and codes without a row go through as they are.
std::u16string WideDecompose(std::u16string_view S);

// Joins leading consonant + vowel into a syllable, and a syllable without a
// trailing consonant + U+11A7..U+11C3 into one with it; the rest is copied.
std::u16string WideComposeHangul(std::u16string_view S);

// General composition is no part of this library: WideCompose gives its
// argument back unchanged, so that no caller loses text by calling it.
std::u16string WideCompose(std::u16string_view S);

// The full canonical decomposition of Code (itself when it has none), 0
// elements of the stored runs left out.
std::vector<UCS4> UnicodeDecompose(UCS4 Code);
// The two or three jamo of a syllable; empty for anything else.
std::vector<UCS4> UnicodeDecomposeHangul(UCS4 Code);
// The canonical combining class; 0 for a code without a row.
uint32_t UnicodeCombiningClass(UCS4 Code);

} // namespace kestrel
