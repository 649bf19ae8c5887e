// Reading text files for the commands: the bytes of a file (or of any other
// input) become UTF-16 through the library's conversions.
//
// A byte-order mark decides first: FF FE is UTF-16 little-endian, FE FF
// UTF-16 big-endian, EF BB BF UTF-8; the mark is not part of the text. Without
// a mark the text is UTF-8, or what --encoding names: a Windows code page
// number ("1252", "cp1252", "windows-1252"), "utf-8", "utf-16le", "utf-16be".
#pragma once

#include <cstdint>
#include <string>

namespace kestrel::cli {

struct TextEncoding {
  enum class Kind : uint8_t { Utf8, Utf16LE, Utf16BE, CodePage };
  Kind kind = Kind::Utf8;
  uint16_t codePage = 0; // for Kind::CodePage
  std::string Name() const;
};

// Parses an --encoding value; throws UsageError for a name it does not know.
TextEncoding ParseEncoding(const std::string &name);

struct DecodedText {
  std::u16string text;
  std::string encoding; // what was used, e.g. "UTF-16BE (mark)", "cp1252"
};

// Decodes bytes: a byte-order mark wins, else fallback. An odd byte at the
// end of UTF-16 is no unit and is dropped. Throws kestrel::EConvertError when
// a code page turns non-empty bytes into nothing (an unknown code page).
DecodedText DecodeText(const std::string &bytes, const TextEncoding &fallback);

// Reads a whole file; throws kestrel::EFOpenError when it cannot be read.
std::string ReadFileBytes(const std::string &path);

inline DecodedText ReadTextFile(const std::string &path, const TextEncoding &fallback) {
  return DecodeText(ReadFileBytes(path), fallback);
}

} // namespace kestrel::cli
