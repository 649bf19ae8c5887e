#include <kestrel/files/TextFiles.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/frame/host/TFileStream.h>
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/unicode/CodePages.h>

namespace kestrel {
namespace {

constexpr uint32_t CodePageUtf16LE = 1200;
constexpr uint32_t CodePageUtf16BE = 1201;
// Bytes looked at for the pattern of UTF-16.
constexpr size_t Utf16Sample = size_t(1) << 16;

bool StartsWith(std::string_view s, const char *mark, size_t n) {
  return s.size() >= n && std::memcmp(s.data(), mark, n) == 0;
}

std::u16string Utf16(std::string_view bytes, bool bigEndian) {
  std::u16string out(bytes.size() / 2, u'\0');
  for (size_t i = 0; i < out.size(); ++i) {
    const auto b0 = static_cast<uint8_t>(bytes[2 * i]);
    const auto b1 = static_cast<uint8_t>(bytes[2 * i + 1]);
    out[i] = static_cast<char16_t>(bigEndian ? (b0 << 8 | b1) : (b1 << 8 | b0));
  }
  return out;
}

std::u16string CodePageText(std::string_view bytes, uint32_t codePage) {
  if (bytes.empty()) return {};
  if (bytes.size() > size_t(INT32_MAX))
    throw EConvertError("the text is too large to convert from " + CodePageName(codePage) +
                        " (2 GB at most)");
  const auto n = static_cast<int32_t>(bytes.size());
  const int32_t units = MultiByteToWideChar(codePage, 0, bytes.data(), n, nullptr, 0);
  std::u16string out(static_cast<size_t>(units), u'\0');
  if (units == 0 || MultiByteToWideChar(codePage, 0, bytes.data(), n, out.data(), units) != units)
    throw EConvertError("the text cannot be read in code page " + std::to_string(codePage));
  return out;
}

// The share of the two most frequent values among the counts.
double TopTwoShare(const std::array<size_t, 256> &counts, size_t total) {
  std::array<size_t, 256> sorted = counts;
  std::partial_sort(sorted.begin(), sorted.begin() + 2, sorted.end(), std::greater<size_t>());
  return total == 0 ? 0.0 : double(sorted[0] + sorted[1]) / double(total);
}

// Units that plain text does not hold: lone surrogate halves, noncharacters
// U+FFFE and U+FFFF, and controls other than tab, line feed, form feed and
// carriage return.
bool PlausibleUnits(const std::u16string &units) {
  for (size_t i = 0; i < units.size(); ++i) {
    const char16_t u = units[i];
    if (u < 0x20 && u != 0x09 && u != 0x0A && u != 0x0C && u != 0x0D) return false;
    if (u == 0xFFFE || u == 0xFFFF) return false;
    if (u >= 0xD800 && u <= 0xDBFF) {
      if (i + 1 < units.size() && units[i + 1] >= 0xDC00 && units[i + 1] <= 0xDFFF)
        ++i;
      else if (i + 1 < units.size()) // a pair cut by the end of the sample is fine
        return false;
    } else if (u >= 0xDC00 && u <= 0xDFFF) {
      return false;
    }
  }
  return true;
}

// Controls that plain text does not hold, as bytes: all but backspace (of
// overstruck manual pages), tab, line feed, vertical tab, form feed, carriage
// return, the DOS end mark 1A and escape. UTF-16 of ASCII or of the Greek
// and Cyrillic letters is valid UTF-8 full of them.
bool HasStrayControls(std::string_view bytes) {
  for (char ch : bytes) {
    const auto b = static_cast<uint8_t>(ch);
    if (b < 0x20 && !(b >= 0x08 && b <= 0x0D) && b != 0x1A && b != 0x1B) return true;
  }
  return false;
}

// UTF-16 without a mark: one lane of the byte pairs is nearly all one or two
// values (the high byte of the script's letters, and 00 of the blanks and
// punctuation) while the other varies as text does.
bool LooksLikeUtf16(std::string_view bytes, bool &bigEndian) {
  const size_t n = std::min(bytes.size(), Utf16Sample) & ~size_t(1);
  if (n < 4) return false;
  std::array<size_t, 256> even{}, odd{};
  for (size_t i = 0; i < n; i += 2) {
    ++even[static_cast<uint8_t>(bytes[i])];
    ++odd[static_cast<uint8_t>(bytes[i + 1])];
  }
  const double evenShare = TopTwoShare(even, n / 2), oddShare = TopTwoShare(odd, n / 2);
  if (oddShare >= 0.9 && evenShare < 0.6)
    bigEndian = false;
  else if (evenShare >= 0.9 && oddShare < 0.6)
    bigEndian = true;
  else
    return false;
  return PlausibleUnits(Utf16(bytes.substr(0, n), bigEndian));
}

} // namespace

std::string TTextEncoding::Name() const {
  switch (Kind) {
  case TKind::Utf8:
    return "UTF-8";
  case TKind::Utf16LE:
    return "UTF-16LE";
  case TKind::Utf16BE:
    return "UTF-16BE";
  case TKind::CodePage:
    break;
  }
  return CodePageName(CodePage);
}

TTextEncoding TextEncodingFromName(const std::string &Name) {
  const uint32_t cp = CodePageFromName(Name);
  TTextEncoding e;
  if (cp == 0 && !Name.empty() && Name.find_first_not_of("0123456789") == std::string::npos)
    throw EConvertError("unknown code page " + Name);
  if (cp == 0)
    throw EConvertError("unknown encoding '" + Name +
                        "': give a code page (1252, cp1251, latin1, koi8-r...), utf-8, "
                        "utf-16le or utf-16be");
  if (cp == CP_UTF8) return e;
  if (cp == CodePageUtf16LE || cp == CodePageUtf16BE) {
    e.Kind = cp == CodePageUtf16LE ? TTextEncoding::TKind::Utf16LE : TTextEncoding::TKind::Utf16BE;
    return e;
  }
  e.Kind = TTextEncoding::TKind::CodePage;
  e.CodePage = cp;
  return e;
}

TTextEncoding DefaultTextEncoding() {
  return TTextEncoding{TTextEncoding::TKind::CodePage, 1252};
}

std::string TDecodedText::Description() const {
  switch (Evidence) {
  case TEncodingEvidence::ByteOrderMark:
    return Encoding.Name() + " (byte-order mark)";
  case TEncodingEvidence::ValidUtf8:
    return Encoding.Name();
  case TEncodingEvidence::Utf16Bytes:
    return Encoding.Name() + " (byte pattern)";
  case TEncodingEvidence::Given:
    break;
  }
  return Encoding.Name() + " (assumed)";
}

bool IsValidUtf8(std::string_view Bytes) {
  const auto *s = reinterpret_cast<const uint8_t *>(Bytes.data());
  const size_t n = Bytes.size();
  for (size_t i = 0; i < n;) {
    const size_t len = Utf8SequenceAt(s, i, n);
    if (len == 0) return false;
    i += len;
  }
  return true;
}

std::u16string DecodeTextAs(std::string_view Bytes, const TTextEncoding &Encoding) {
  switch (Encoding.Kind) {
  case TTextEncoding::TKind::Utf8:
    return UTF8ToWideString(StartsWith(Bytes, "\xEF\xBB\xBF", 3) ? Bytes.substr(3) : Bytes);
  case TTextEncoding::TKind::Utf16LE:
  case TTextEncoding::TKind::Utf16BE:
    // A mark of either order decides.
    if (StartsWith(Bytes, "\xFF\xFE", 2)) return Utf16(Bytes.substr(2), false);
    if (StartsWith(Bytes, "\xFE\xFF", 2)) return Utf16(Bytes.substr(2), true);
    return Utf16(Bytes, Encoding.Kind == TTextEncoding::TKind::Utf16BE);
  case TTextEncoding::TKind::CodePage:
    break;
  }
  return CodePageText(Bytes, Encoding.CodePage);
}

TDecodedText DecodeText(std::string_view Bytes, const TTextEncoding &Given) {
  using TKind = TTextEncoding::TKind;
  TDecodedText out;
  if (StartsWith(Bytes, "\xFF\xFE", 2) || StartsWith(Bytes, "\xFE\xFF", 2)) {
    out.Encoding.Kind = Bytes[0] == '\xFF' ? TKind::Utf16LE : TKind::Utf16BE;
    out.Evidence = TEncodingEvidence::ByteOrderMark;
  } else if (StartsWith(Bytes, "\xEF\xBB\xBF", 3)) {
    out.Evidence = TEncodingEvidence::ByteOrderMark;
  } else if (bool bigEndian = false, utf8 = IsValidUtf8(Bytes); utf8 && !HasStrayControls(Bytes)) {
    out.Evidence = TEncodingEvidence::ValidUtf8;
  } else if (LooksLikeUtf16(Bytes, bigEndian)) {
    out.Encoding.Kind = bigEndian ? TKind::Utf16BE : TKind::Utf16LE;
    out.Evidence = TEncodingEvidence::Utf16Bytes;
  } else if (utf8) {
    out.Evidence = TEncodingEvidence::ValidUtf8;
  } else {
    out.Encoding = Given;
    out.Evidence = TEncodingEvidence::Given;
  }
  out.Text = DecodeTextAs(Bytes, out.Encoding);
  return out;
}

std::string ReadFileBytes(const std::string &FileName) {
  if (DirectoryExists(FileName))
    throw EFOpenError(Format(Consts::SFOpenErrorEx, FileName.c_str(), "It is a folder."));
  TFileStream stream(FileName, fmOpenRead | fmShareDenyNone);
  std::string bytes;
  constexpr int32_t Chunk = 1 << 20;
  for (;;) {
    const size_t at = bytes.size();
    bytes.resize(at + Chunk);
    const int32_t got = FileRead(stream.Handle(), bytes.data() + at, Chunk);
    if (got < 0)
      throw EReadError(
          Format(Consts::SFOpenErrorEx, FileName.c_str(), SysErrorMessage(errno).c_str()));
    bytes.resize(at + size_t(got));
    if (got == 0) return bytes;
  }
}

TDecodedText ReadTextFile(const std::string &FileName, const TTextEncoding &Given) {
  return DecodeText(ReadFileBytes(FileName), Given);
}

} // namespace kestrel
