// UTF-8 to and from wide strings, and the code-point limits of UTF-16.
#pragma once

#include <string>
#include <string_view>

#include <kestrel/frame/host/Types.h>

namespace kestrel {

inline constexpr UCS4 ReplacementCharacter = 0xFFFD;
inline constexpr UCS4 MaximumUCS2 = 0xFFFF;
inline constexpr UCS4 MaximumUTF16 = 0x10FFFF;
inline constexpr UCS4 MaximumUCS4 = 0x7FFFFFFF;
inline constexpr UCS4 SurrogateHighStart = 0xD800;
inline constexpr UCS4 SurrogateHighEnd = 0xDBFF;
inline constexpr UCS4 SurrogateLowStart = 0xDC00;
inline constexpr UCS4 SurrogateLowEnd = 0xDFFF;

// Each unit on its own, in 1 to 3 bytes: a surrogate half becomes a sequence
// of its own, so a code above U+FFFF takes 6 bytes, which read back unit for
// unit through UTF8ToWideString.
std::string WideStringToUTF8(std::u16string_view S);

// Decodes without validation: a stray continuation byte comes out as the unit
// of its value, whatever follows a lead byte counts as its continuation,
// overlong and 5- or 6-byte forms decode to their value, codes above
// U+10FFFF give ReplacementCharacter. A sequence that the end of the text
// cuts off gives one ReplacementCharacter and ends the text.
std::u16string UTF8ToWideString(std::string_view S);

} // namespace kestrel
