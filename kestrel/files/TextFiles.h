// Reading text files whose encoding nobody wrote down. Each file is read with
// the first of these that fits:
//
// 1. a byte-order mark: FF FE is UTF-16 little-endian, FE FF big-endian,
//    EF BB BF UTF-8 (the mark is no part of the text);
// 2. valid UTF-8 (which takes in plain ASCII) without controls that text
//    does not hold (NUL, and the like: UTF-16 of ASCII is valid UTF-8 too);
// 3. UTF-16 without a mark, when its bytes show it: in one lane of the byte
//    pairs two values (the high bytes of one script and of the blanks and
//    punctuation, 00) make up nearly everything, while the other lane varies,
//    and the units read that way are no stray controls or lone surrogates;
// 4. valid UTF-8 with such controls;
// 5. the encoding the caller gives (a code page, or UTF-8 or UTF-16 taken as
//    they are).
//
// Encodings are named as the platform's code pages are (CodePageFromName):
// a Windows code page number ("1252", "cp1252", "windows-1252"), any name ICU's
// converters know ("latin1", "koi8-r", "shift_jis", "iso-8859-3"), "utf-8",
// "utf-16" (little-endian), "utf-16le", "utf-16be".
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrel {

struct TTextEncoding {
  enum class TKind : uint8_t { Utf8, Utf16LE, Utf16BE, CodePage };
  TKind Kind = TKind::Utf8;
  uint32_t CodePage = 0; // for TKind::CodePage
  // "UTF-8", "UTF-16LE", "UTF-16BE", or the code page's name ("windows-1252").
  std::string Name() const;
  bool operator==(const TTextEncoding &) const = default;
};

// The encoding a name stands for; raises EConvertError for a name that no
// converter knows.
TTextEncoding TextEncodingFromName(const std::string &Name);
// Windows code page 1252, the default for texts that say nothing.
TTextEncoding DefaultTextEncoding();

// How the encoding of a text was found.
enum class TEncodingEvidence : uint8_t { ByteOrderMark, ValidUtf8, Utf16Bytes, Given };

struct TDecodedText {
  std::u16string Text;
  TTextEncoding Encoding;
  TEncodingEvidence Evidence = TEncodingEvidence::Given;
  // "UTF-8", "UTF-16LE (byte-order mark)", "UTF-16BE (byte pattern)",
  // "windows-1252 (assumed)".
  std::string Description() const;
};

// Decodes bytes as the steps above say; Given is the encoding of step 5. An
// odd byte at the end of UTF-16 is no unit and is dropped; bytes a code page
// does not define become U+FFFD. Raises EConvertError for text larger than a
// conversion can take.
TDecodedText DecodeText(std::string_view Bytes, const TTextEncoding &Given);
// Decodes bytes in one encoding, with no detection; a byte-order mark that
// fits the encoding is dropped.
std::u16string DecodeTextAs(std::string_view Bytes, const TTextEncoding &Encoding);
// Whether Bytes are well-formed UTF-8 (the three-byte forms of surrogate
// halves, which the library's UTF-8 writer makes, count as well-formed).
bool IsValidUtf8(std::string_view Bytes);

// The length of the well-formed UTF-8 sequence at s[i] of n bytes, or 0 when
// there is none there (IsValidUtf8's rules: no overlong forms, nothing above
// U+10FFFF, surrogate halves allowed). Inline: scanners call it per sequence.
inline size_t Utf8SequenceAt(const uint8_t *s, size_t i, size_t n) {
  const uint8_t b = s[i];
  if (b < 0x80) return 1;
  size_t len = 0;
  uint8_t low = 0x80, high = 0xBF; // the range of the second byte
  if (b >= 0xC2 && b <= 0xDF) {
    len = 2;
  } else if (b >= 0xE0 && b <= 0xEF) {
    len = 3;
    if (b == 0xE0) low = 0xA0;
  } else if (b >= 0xF0 && b <= 0xF4) {
    len = 4;
    if (b == 0xF0) low = 0x90;
    if (b == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (i + len > n || s[i + 1] < low || s[i + 1] > high) return 0;
  for (size_t k = 2; k < len; ++k)
    if ((s[i + k] & 0xC0) != 0x80) return 0;
  return len;
}

// The bytes of a whole file; raises EFOpenError when it cannot be read (a
// folder, a missing file) and EReadError when reading fails.
std::string ReadFileBytes(const std::string &FileName);
// ReadFileBytes, then DecodeText.
TDecodedText ReadTextFile(const std::string &FileName, const TTextEncoding &Given);

} // namespace kestrel
