// Single code points for the host's byte-string functions, on ICU: the simple
// (one to one) case mappings and the UTF-8 form of one character.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kestrel {

// The simple mappings of the Unicode data; a code point without one, or
// outside the code space, comes back as it is.
char32_t SimpleLowerCase(char32_t c);
char32_t SimpleUpperCase(char32_t c);
char32_t SimpleCaseFold(char32_t c);

// The code point of the valid UTF-8 sequence at s[at] and its length in
// bytes; -1 and a length of 1 when no valid sequence starts there (a stray
// byte, an overlong form, an encoded surrogate, a sequence cut off).
int32_t DecodeUtf8(std::string_view s, size_t at, size_t &length);
// The number of bytes of the UTF-8 form of a code point.
size_t Utf8Length(char32_t c);
// Writes the UTF-8 form of a code point at out, which has room for it.
void EncodeUtf8(char32_t c, char *out);

} // namespace kestrel
