// The host's locale-aware byte-string functions and C-string buffers.
//
// On this platform byte strings (file names, command-line text) are UTF-8.
// Case changes work per code point with the simple Unicode mappings and keep
// the byte length: a character whose other case needs a different number of
// bytes, and any byte that is not part of valid UTF-8, stays as it is. So a
// position found in the lower-cased text is the same position in the original.
// Comparisons are by code point (the byte order of UTF-8), after simple case
// folding for the ...Text forms; they do not depend on the user's locale, so
// sorted lists come out the same on every machine.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace kestrel {

// Case changes as told above; the FileName forms are the same on this platform.
std::string AnsiLowerCase(std::string_view s);
std::string AnsiUpperCase(std::string_view s);
std::string AnsiLowerCaseFileName(std::string_view s);
std::string AnsiUpperCaseFileName(std::string_view s);
// Below 0, 0 or above 0 as a sorts before, with or after b.
int AnsiCompareStr(std::string_view a, std::string_view b);
int AnsiCompareText(std::string_view a, std::string_view b);
bool AnsiSameStr(std::string_view a, std::string_view b);
bool AnsiSameText(std::string_view a, std::string_view b);
// 1-based position of sub in s, 0 when absent (the host's AnsiPos).
size_t AnsiPos(std::string_view sub, std::string_view s);

// The code points of a byte string, each byte outside valid UTF-8 given as
// 0x110000 + the byte, so that it equals only itself.
// With offsets, the byte offset of each one is noted there too.
std::u32string CodePointsOf(std::string_view s, std::vector<size_t> *offsets = nullptr);
// The simple upper-case form of one such unit (others stay as they are).
char32_t UpperCodePoint(char32_t c);

// C strings from StrAlloc: a buffer of size bytes handed out behind a 4-byte
// prefix that records the size. StrDispose frees one (null does nothing).
char *StrAlloc(size_t size);
size_t StrBufSize(const char *str);
void StrDispose(char *str);
size_t StrLen(const char *str); // 0 for null

} // namespace kestrel
