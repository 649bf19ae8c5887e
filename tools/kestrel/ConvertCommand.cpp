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

#include <kestrel/files/TextFiles.h>
#include <kestrel/frame/platform/Nls.h>
#include <kestrel/kestrel.h>

#include "Cli.h"

namespace kestrel::cli {
namespace {

// The encodings are the library's (TextEncodingFromName): the same names as
// kestrel search takes.
using Kind = TTextEncoding::TKind;

TTextEncoding ParseEncoding(const std::string &option, const std::string &text) {
  if (text.empty())
    throw UsageError{"--" + option + " needs an encoding: a code page number, utf-8 or utf-16"};
  return TextEncodingFromName(text);
}

std::string ReadAll(const std::string &path) {
  if (path.empty() || path == "-") {
    std::ostringstream s;
    s << std::cin.rdbuf();
    return s.str();
  }
  return ReadFileBytes(path);
}

// UTF-16 input follows its byte-order mark; an odd byte at its end would be
// lost, so it is an error.
std::u16string Decode(const std::string &bytes, const TTextEncoding &from) {
  const bool utf16 = from.Kind == Kind::Utf16LE || from.Kind == Kind::Utf16BE;
  if (utf16 && bytes.size() % 2) throw EConvertError("the UTF-16 input has an odd number of bytes");
  return DecodeTextAs(bytes, from);
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

std::string Encode(std::u16string_view text, const TTextEncoding &to, bool bom) {
  switch (to.Kind) {
  case Kind::Utf8:
    return (bom ? std::string("\xEF\xBB\xBF") : std::string()) + EncodeUtf8(text);
  case Kind::Utf16LE:
  case Kind::Utf16BE:
    return EncodeUtf16(text, to.Kind == Kind::Utf16BE, bom);
  case Kind::CodePage:
    break;
  }
  if (text.empty()) return {};
  if (text.size() > INT32_MAX / 4)
    throw EConvertError("the input is too large for a code-page conversion");
  int32_t units = static_cast<int32_t>(text.size());
  bool replaced = false;
  int32_t size =
      WideCharToMultiByte(to.CodePage, 0, text.data(), units, nullptr, 0, nullptr, &replaced);
  std::string out(static_cast<size_t>(size), '\0');
  if (size == 0 || WideCharToMultiByte(to.CodePage, 0, text.data(), units, out.data(), size,
                                       nullptr, &replaced) != size)
    throw EConvertError("the text cannot be written in " + to.Name());
  if (replaced)
    std::cerr << "kestrel convert: some characters have no form in " << to.Name()
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
  args.RefuseSingleDash();
  if (auto unknown = args.Unknown({"from", "to", "bom", "no-bom"}); !unknown.empty())
    throw UsageError{"unknown option " + unknown.front()};
  if (!args.Has("from") || !args.Has("to")) throw UsageError{"give both --from and --to"};
  const auto &files = args.Positional();
  if (files.size() > 2) throw UsageError{"give at most an input and an output file"};
  const TTextEncoding from = ParseEncoding("from", args.Value("from"));
  const TTextEncoding to = ParseEncoding("to", args.Value("to"));
  bool bom = to.Kind == Kind::Utf8 ? args.Has("bom") : !args.Has("no-bom");
  std::string in = files.size() > 0 ? files[0] : "", out = files.size() > 1 ? files[1] : "";
  WriteAll(out, Encode(Decode(ReadAll(in), from), to, bom));
  return 0;
}

const CommandRegistration kConvert(Command{
    "convert",
    "convert text between code pages, UTF-8 and UTF-16",
    "convert --from ENC --to ENC [--bom|--no-bom] [IN [OUT]]\n"
    "  ENC: a Windows code page (1252, cp1252, windows-1252, 932, ...), any name ICU's\n"
    "  converters know (latin1, koi8-r, shift_jis, iso-8859-3...), utf-8, utf-16 (little-\n"
    "  endian), utf-16be: the names kestrel search --encoding takes. IN and OUT default\n"
    "  to standard input and output ('-' names them).\n"
    "  UTF-16 output has a byte-order mark unless --no-bom; UTF-8 output has one with --bom.",
    {"from", "to"},
    RunConvert});

} // namespace
} // namespace kestrel::cli
