#include "TextFiles.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <sstream>

#include <kestrel/frame/host/Consts.h>
#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/SysUtils.h>
#include <kestrel/unicode/CodePages.h>
#include <kestrel/unicode/Utf8.h>

#include "Cli.h"

namespace kestrel::cli {

namespace {

std::string Lower(std::string s) {
  for (char &c : s)
    c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return s;
}

std::u16string Utf16(const std::string &bytes, size_t from, bool bigEndian) {
  std::u16string out((bytes.size() - from) / 2, u'\0');
  for (size_t i = 0; i < out.size(); ++i) {
    auto b0 = static_cast<uint8_t>(bytes[from + 2 * i]);
    auto b1 = static_cast<uint8_t>(bytes[from + 2 * i + 1]);
    out[i] = static_cast<char16_t>(bigEndian ? (b0 << 8 | b1) : (b1 << 8 | b0));
  }
  return out;
}

bool StartsWith(const std::string &s, const char *mark, size_t n) {
  return s.size() >= n && std::memcmp(s.data(), mark, n) == 0;
}

} // namespace

std::string TextEncoding::Name() const {
  switch (kind) {
  case Kind::Utf8:
    return "UTF-8";
  case Kind::Utf16LE:
    return "UTF-16LE";
  case Kind::Utf16BE:
    return "UTF-16BE";
  case Kind::CodePage:
    return "cp" + std::to_string(codePage);
  }
  return {};
}

TextEncoding ParseEncoding(const std::string &name) {
  std::string n = Lower(name);
  TextEncoding e;
  if (n == "utf-8" || n == "utf8" || n == "65001") return e;
  if (n == "utf-16" || n == "utf-16le" || n == "utf16" || n == "utf16le" || n == "1200") {
    e.kind = TextEncoding::Kind::Utf16LE;
    return e;
  }
  if (n == "utf-16be" || n == "utf16be" || n == "1201") {
    e.kind = TextEncoding::Kind::Utf16BE;
    return e;
  }
  for (const char *prefix : {"windows-", "cp"})
    if (n.rfind(prefix, 0) == 0) n = n.substr(std::strlen(prefix));
  int32_t page = 0;
  if (n.empty() || n.size() > 5 || !TryStrToInt(n, page) || page <= 0 || page > 0xFFFF)
    throw UsageError{"unknown encoding '" + name +
                     "' (use a code page number such as 1252, utf-8, utf-16le or utf-16be)"};
  e.kind = TextEncoding::Kind::CodePage;
  e.codePage = static_cast<uint16_t>(page);
  return e;
}

DecodedText DecodeText(const std::string &bytes, const TextEncoding &fallback) {
  if (StartsWith(bytes, "\xFF\xFE", 2)) return {Utf16(bytes, 2, false), "UTF-16LE (mark)"};
  if (StartsWith(bytes, "\xFE\xFF", 2)) return {Utf16(bytes, 2, true), "UTF-16BE (mark)"};
  if (StartsWith(bytes, "\xEF\xBB\xBF", 3))
    return {UTF8ToWideString(bytes.substr(3)), "UTF-8 (mark)"};
  switch (fallback.kind) {
  case TextEncoding::Kind::Utf8:
    return {UTF8ToWideString(bytes), "UTF-8"};
  case TextEncoding::Kind::Utf16LE:
    return {Utf16(bytes, 0, false), "UTF-16LE"};
  case TextEncoding::Kind::Utf16BE:
    return {Utf16(bytes, 0, true), "UTF-16BE"};
  case TextEncoding::Kind::CodePage:
    break;
  }
  DecodedText out{CodePageToWideString(bytes, fallback.codePage), fallback.Name()};
  if (!bytes.empty() && out.text.empty())
    throw EConvertError("cannot decode the text with code page " +
                        std::to_string(fallback.codePage) + " (unknown to this system?)");
  return out;
}

std::string ReadFileBytes(const std::string &path) {
  if (DirectoryExists(path))
    throw EFOpenError(Format(Consts::SFOpenErrorEx, path.c_str(), "It is a folder."));
  std::ifstream in(path, std::ios::binary);
  if (!in) throw EFOpenError(Format(Consts::SFOpenErrorEx, path.c_str(), std::strerror(errno)));
  std::ostringstream buffer;
  buffer << in.rdbuf();
  if (in.bad()) throw EReadError(Format(Consts::SFOpenErrorEx, path.c_str(), "read error"));
  return buffer.str();
}

} // namespace kestrel::cli
