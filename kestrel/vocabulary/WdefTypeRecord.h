// The 32-bit type record that tells where a word stands in its text: four
// marker bits on top of a 28-bit number.
#pragma once

#include <cstdint>

namespace kestrel {

inline constexpr uint32_t kTypeRecTextEnd = 0x80000000u;     // end of text
inline constexpr uint32_t kTypeRecParaHeadEnd = 0x40000000u; // end of paragraph or heading
inline constexpr uint32_t kTypeRecSentEnd = 0x20000000u;     // end of sentence
inline constexpr uint32_t kTypeRecPunctEnd = 0x10000000u;    // end at punctuation
inline constexpr uint32_t kTypeRecMarkers = 0xF0000000u;

constexpr bool TypeRecIsTextEnd(uint32_t rec) {
  return (rec & kTypeRecTextEnd) != 0;
}
constexpr bool TypeRecIsParaHeadEnd(uint32_t rec) {
  return (rec & kTypeRecParaHeadEnd) != 0;
}
constexpr bool TypeRecIsSentEnd(uint32_t rec) {
  return (rec & kTypeRecSentEnd) != 0;
}
constexpr bool TypeRecIsPunctEnd(uint32_t rec) {
  return (rec & kTypeRecPunctEnd) != 0;
}
constexpr bool TypeRecIsUnmarked(uint32_t rec) {
  return (rec & kTypeRecMarkers) == 0;
}
// The number, with the four marker bits cleared.
constexpr uint32_t TypeRecWithoutTextMarker(uint32_t rec) {
  return rec & ~kTypeRecMarkers;
}

} // namespace kestrel
