// The Unicode blocks of the 16-bit range.
#pragma once

#include <cstdint>

namespace kestrel {

// The number of the Unicode block holding the unit, 0 to 66; 67 for a unit in
// none of them.
inline constexpr uint32_t NoCodeBlock = 67;
uint32_t CodeBlockFromChar(char16_t C);
// The block's name ("Basic Latin"), "" for NoCodeBlock or above.
const char *CodeBlockName(uint32_t Block);

} // namespace kestrel
