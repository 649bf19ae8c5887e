// kestrel convert --from ENC --to ENC [IN] [OUT]: text between Windows code
// pages, UTF-8 and UTF-16, through the library's converters.
//
// Input is decoded to wide text and encoded again. UTF-16 input follows its
// byte-order mark when it has one; UTF-16 output always gets one (unless
// --no-bom). UTF-8 input loses its mark, UTF-8 output gets one with --bom.
// UTF-8 is read by the library's own reader, which takes any bytes; it is
// written with surrogate pairs joined into four-byte forms and lone halves as
// three-byte forms of their own, which that reader gives back unit for unit.
// Characters that an 8-bit code page lacks are written as '?', with a note on
// standard error. The output file appears only when the conversion succeeds.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>
#include <string>

#include <kestrel/frame/platform/Nls.h>
#include <kestrel/kestrel.h>

#include "Cli.h"

namespace kestrel::cli {
namespace {

struct Encoding {
  enum Kind { CodePage, Utf8, Utf16LE, Utf16BE } kind = CodePage;
  uint32_t codePage = 0;
  std::string name;
};

std::string Lower(std::string s) {
  for (char &c : s)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return s;
}

bool Digits(const std::string &s, uint32_t &value) {
  if (s.empty() || s.size() > 5) return false;
  value = 0;
  for (char c : s) {
    if (c < '0' || c > '9') return false;
    value = value * 10 + uint32_t(c - '0');
  }
  return true;
}

// Common names of code pages beside their numbers.
struct Alias {
  const char *name;
  uint32_t codePage;
};
constexpr Alias kAliases[] = {
    {"ascii", 20127},      {"us-ascii", 20127},   {"latin1", 28591},     {"iso-8859-1", 28591},
    {"iso-8859-2", 28592}, {"iso-8859-5", 28595}, {"iso-8859-7", 28597}, {"iso-8859-15", 28605},
    {"shift_jis", 932},    {"sjis", 932},         {"gbk", 936},          {"gb2312", 936},
    {"big5", 950},         {"euc-kr", 949},       {"koi8-r", 20866},     {"gb18030", 54936},
};

Encoding ParseEncoding(const std::string &option, const std::string &text) {
  if (text.empty())
    throw UsageError{"--" + option + " needs an encoding: a code page number, utf-8 or utf-16"};
  std::string s = Lower(text);
  Encoding e;
  e.name = text;
  if (s == "utf-8" || s == "utf8") return e.kind = Encoding::Utf8, e;
  if (s == "utf-16" || s == "utf16" || s == "utf-16le" || s == "utf16le")
    return e.kind = Encoding::Utf16LE, e;
  if (s == "utf-16be" || s == "utf16be") return e.kind = Encoding::Utf16BE, e;
  uint32_t cp = 0;
  bool found = false;
  for (const char *prefix : {"", "cp", "windows-", "ibm-"})
    if (s.rfind(prefix, 0) == 0 && Digits(s.substr(std::strlen(prefix)), cp)) {
      found = true;
      break;
    }
  for (const Alias &a : kAliases)
    if (!found && s == a.name) {
      cp = a.codePage;
      found = true;
    }
  if (!found)
    throw Exception("unknown encoding '" + text +
                    "': give a Windows code page number (1252, 932...), utf-8 or utf-16");
  if (cp == CP_UTF8) return e.kind = Encoding::Utf8, e;
  if (cp == 1200 || cp == 1201)
    return e.kind = cp == 1200 ? Encoding::Utf16LE : Encoding::Utf16BE, e;
  if (cp > 0xFFFF || !IsValidCodePage(cp))
    throw Exception("unknown code page " + std::to_string(cp) + " ('" + text + "')");
  e.codePage = cp;
  return e;
}

std::string ReadAll(const std::string &path) {
  if (path.empty() || path == "-") {
    std::ostringstream s;
    s << std::cin.rdbuf();
    return s.str();
  }
  std::ifstream in(path, std::ios::binary);
  if (!in) throw EFOpenError("cannot open " + path + ": " + std::strerror(errno));
  return std::string(std::istreambuf_iterator<char>(in), {});
}

bool StartsWith(const std::string &s, const char *prefix, size_t n) {
  return s.size() >= n && std::memcmp(s.data(), prefix, n) == 0;
}

std::u16string DecodeUtf16(const std::string &bytes, bool bigEndian) {
  size_t start = 0;
  if (StartsWith(bytes, "\xFF\xFE", 2)) {
    bigEndian = false;
    start = 2;
  } else if (StartsWith(bytes, "\xFE\xFF", 2)) {
    bigEndian = true;
    start = 2;
  }
  if ((bytes.size() - start) % 2)
    throw EConvertError("the UTF-16 input has an odd number of bytes");
  std::u16string text((bytes.size() - start) / 2, u'\0');
  for (size_t i = 0; i < text.size(); ++i) {
    auto b0 = static_cast<unsigned char>(bytes[start + 2 * i]);
    auto b1 = static_cast<unsigned char>(bytes[start + 2 * i + 1]);
    text[i] = static_cast<char16_t>(bigEndian ? (b0 << 8) | b1 : (b1 << 8) | b0);
  }
  return text;
}

std::u16string Decode(const std::string &bytes, const Encoding &from) {
  switch (from.kind) {
  case Encoding::Utf8:
    return UTF8ToWideString(StartsWith(bytes, "\xEF\xBB\xBF", 3) ? std::string_view(bytes).substr(3)
                                                                 : std::string_view(bytes));
  case Encoding::Utf16LE:
  case Encoding::Utf16BE:
    return DecodeUtf16(bytes, from.kind == Encoding::Utf16BE);
  case Encoding::CodePage:
    break;
  }
  if (bytes.size() > INT32_MAX)
    throw EConvertError("the input is too large for a code-page conversion (2 GB at most)");
  std::u16string text = CodePageToWideString(bytes, static_cast<uint16_t>(from.codePage));
  if (text.empty() && !bytes.empty())
    throw EConvertError("the input cannot be read in code page " + std::to_string(from.codePage));
  return text;
}

bool IsHigh(char16_t u) {
  return u >= 0xD800 && u <= 0xDBFF;
}
bool IsLow(char16_t u) {
  return u >= 0xDC00 && u <= 0xDFFF;
}

std::string EncodeUtf8(std::u16string_view text) {
  std::string out;
  size_t run = 0;
  for (size_t i = 0; i + 1 < text.size(); ++i) {
    if (!IsHigh(text[i]) || !IsLow(text[i + 1])) continue;
    out += WideStringToUTF8(text.substr(run, i - run));
    uint32_t c = 0x10000 + ((uint32_t(text[i]) - 0xD800) << 10) + (uint32_t(text[i + 1]) - 0xDC00);
    out += static_cast<char>(0xF0 | (c >> 18));
    out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out += static_cast<char>(0x80 | (c & 0x3F));
    run = ++i + 1;
  }
  out += WideStringToUTF8(text.substr(run));
  return out;
}

std::string EncodeUtf16(std::u16string_view text, bool bigEndian, bool bom) {
  std::string out;
  out.reserve(2 * text.size() + 2);
  auto put = [&](char16_t u) {
    char hi = static_cast<char>(u >> 8), lo = static_cast<char>(u & 0xFF);
    out += bigEndian ? hi : lo;
    out += bigEndian ? lo : hi;
  };
  if (bom) put(0xFEFF);
  for (char16_t u : text)
    put(u);
  return out;
}

std::string Encode(std::u16string_view text, const Encoding &to, bool bom) {
  switch (to.kind) {
  case Encoding::Utf8:
    return (bom ? std::string("\xEF\xBB\xBF") : std::string()) + EncodeUtf8(text);
  case Encoding::Utf16LE:
  case Encoding::Utf16BE:
    return EncodeUtf16(text, to.kind == Encoding::Utf16BE, bom);
  case Encoding::CodePage:
    break;
  }
  if (text.empty()) return {};
  if (text.size() > INT32_MAX / 4)
    throw EConvertError("the input is too large for a code-page conversion");
  int32_t units = static_cast<int32_t>(text.size());
  bool replaced = false;
  int32_t size =
      WideCharToMultiByte(to.codePage, 0, text.data(), units, nullptr, 0, nullptr, &replaced);
  std::string out(static_cast<size_t>(size), '\0');
  if (size == 0 || WideCharToMultiByte(to.codePage, 0, text.data(), units, out.data(), size,
                                       nullptr, &replaced) != size)
    throw EConvertError("the text cannot be written in code page " + std::to_string(to.codePage));
  if (replaced)
    std::cerr << "kestrel convert: some characters have no form in code page " << to.codePage
              << " and were written as '?'\n";
  return out;
}

// Writes beside the target and renames, so that a failure leaves no partial
// file and an existing file stays as it was.
void WriteAll(const std::string &path, const std::string &bytes) {
  if (path.empty() || path == "-") {
    std::cout.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    std::cout.flush();
    return;
  }
  std::string temp = path + ".kestrel-convert.tmp";
  {
    std::ofstream out(temp, std::ios::binary | std::ios::trunc);
    if (!out) throw EFCreateError("cannot create " + path + ": " + std::strerror(errno));
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    if (!out) {
      std::remove(temp.c_str());
      throw EWriteError("cannot write " + path);
    }
  }
  if (std::rename(temp.c_str(), path.c_str()) != 0) {
    int err = errno;
    std::remove(temp.c_str());
    throw EFCreateError("cannot create " + path + ": " + std::strerror(err));
  }
}

int RunConvert(const Args &args) {
  if (auto unknown = args.Unknown({"from", "to", "bom", "no-bom"}); !unknown.empty())
    throw UsageError{"unknown option " + unknown.front()};
  if (!args.Has("from") || !args.Has("to")) throw UsageError{"give both --from and --to"};
  const auto &files = args.Positional();
  if (files.size() > 2) throw UsageError{"give at most an input and an output file"};
  Encoding from = ParseEncoding("from", args.Value("from"));
  Encoding to = ParseEncoding("to", args.Value("to"));
  bool bom = to.kind == Encoding::Utf8 ? args.Has("bom") : !args.Has("no-bom");
  std::string in = files.size() > 0 ? files[0] : "", out = files.size() > 1 ? files[1] : "";
  WriteAll(out, Encode(Decode(ReadAll(in), from), to, bom));
  return 0;
}

const CommandRegistration kConvert(Command{
    "convert",
    "convert text between code pages, UTF-8 and UTF-16",
    "convert --from ENC --to ENC [--bom|--no-bom] [IN [OUT]]\n"
    "  ENC: a Windows code page (1252, cp1252, windows-1252, 932, ...), utf-8, utf-16 (little-\n"
    "  endian), utf-16be. IN and OUT default to standard input and output ('-' names them).\n"
    "  UTF-16 output has a byte-order mark unless --no-bom; UTF-8 output has one with --bom.",
    {"from", "to"},
    RunConvert});

} // namespace
} // namespace kestrel::cli
