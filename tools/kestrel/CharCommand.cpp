// kestrel char ARG...: what the character database says about each UTF-16
// code unit of literal text, or about a code point named as U+XXXX.
//
// Literal text is asked unit by unit, as the library's wide-string callers
// ask, so each half of a surrogate pair gets its own line. U+XXXX names one
// code point and asks for that value itself, also above U+FFFF, so that
// U+10000 shows what the tables hold for the supplementary planes.
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include <kestrel/unicode/Unicode.h>

#include "CharInfo.h"
#include "Cli.h"

namespace kestrel::cli {
namespace {

struct Unit {
  UCS4 code;
  bool fromText; // a code unit of literal text, or a named code point
};

// U+ or u+ and 1 to 8 hex digits; anything else is literal text.
bool ParseCodePoint(const std::string &arg, UCS4 &code) {
  if (arg.size() < 3 || arg.size() > 10 || (arg[0] != 'U' && arg[0] != 'u') || arg[1] != '+')
    return false;
  uint64_t v = 0;
  for (size_t i = 2; i < arg.size(); ++i) {
    char c = arg[i];
    int d = (c >= '0' && c <= '9')   ? c - '0'
            : (c >= 'A' && c <= 'F') ? c - 'A' + 10
            : (c >= 'a' && c <= 'f') ? c - 'a' + 10
                                     : -1;
    if (d < 0) return false;
    v = v * 16 + uint64_t(d);
  }
  code = UCS4(v);
  return true;
}

// Strict UTF-8 to UTF-16 units: overlong forms, surrogates, values above
// U+10FFFF and cut sequences are refused.
std::vector<Unit> TextUnits(const std::string &arg, size_t argNo) {
  std::vector<Unit> units;
  const auto *s = reinterpret_cast<const unsigned char *>(arg.data());
  size_t n = arg.size(), i = 0;
  auto bad = [&] {
    return UsageError{"argument " + std::to_string(argNo) + " is not valid UTF-8 (byte " +
                      std::to_string(i + 1) + ")"};
  };
  while (i < n) {
    unsigned char b = s[i];
    int extra = b < 0x80             ? 0
                : (b & 0xE0) == 0xC0 ? 1
                : (b & 0xF0) == 0xE0 ? 2
                : (b & 0xF8) == 0xF0 ? 3
                                     : -1;
    if (extra < 0 || n - i <= size_t(extra)) // a lead byte the input cuts off
      throw bad();
    UCS4 c = extra == 0 ? b : b & (0x3F >> extra);
    for (int k = 1; k <= extra; ++k) {
      if ((s[i + k] & 0xC0) != 0x80) throw bad();
      c = (c << 6) | (s[i + k] & 0x3F);
    }
    static const UCS4 kMin[] = {0, 0x80, 0x800, 0x10000};
    if (c < kMin[extra] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) throw bad();
    if (c >= 0x10000) {
      units.push_back({UCS4(0xD800 + ((c - 0x10000) >> 10)), true});
      units.push_back({UCS4(0xDC00 + ((c - 0x10000) & 0x3FF)), true});
    } else {
      units.push_back({c, true});
    }
    i += size_t(extra) + 1;
  }
  return units;
}

std::string CodeName(UCS4 code) {
  char buf[16];
  std::snprintf(buf, sizeof buf, "U+%04X", unsigned(code));
  return buf;
}

// The character itself when it has a visible form; marks on a dotted circle.
std::string Glyph(UCS4 code) {
  if (code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF) || !UnicodeIsGraph(code)) return "";
  std::u16string units;
  if (UnicodeIsMark(code)) units += u'\u25CC';
  if (code >= 0x10000) {
    units += char16_t(0xD800 + ((code - 0x10000) >> 10));
    units += char16_t(0xDC00 + ((code - 0x10000) & 0x3FF));
  } else {
    units += char16_t(code);
  }
  return Utf16ToUtf8Lossless(units);
}

void PrintLine(const Unit &u) {
  std::string line = CodeName(u.code);
  line.resize(std::max<size_t>(line.size(), 9), ' ');
  std::string glyph = Glyph(u.code);
  line += glyph.empty() ? " " : glyph;
  for (const CharField &f : CharFieldsOf(u.code))
    if (!f.text.empty()) line += "  " + f.key + " " + f.text;
  std::cout << line << "\n";
}

std::string JsonUnit(const Unit &u) {
  std::string out = "{\"code\":" + JsonString(CodeName(u.code)) +
                    ",\"value\":" + std::to_string(u.code) +
                    ",\"kind\":" + JsonString(u.fromText ? "unit" : "code point") +
                    ",\"char\":" + JsonString(Glyph(u.code));
  for (const CharField &f : CharFieldsOf(u.code))
    out += "," + JsonString(f.key) + ":" + f.json;
  return out + "}";
}

int RunChar(const Args &args) {
  if (auto unknown = args.Unknown({"json"}); !unknown.empty())
    throw UsageError{"unknown option " + unknown.front()};
  const auto &positional = args.Positional();
  if (positional.empty())
    throw UsageError{"give at least one argument: text, or a code point as U+XXXX"};
  bool json = args.Has("json");
  if (json) std::cout << "[\n";
  for (size_t a = 0; a < positional.size(); ++a) {
    const std::string &arg = positional[a];
    UCS4 code;
    std::vector<Unit> units =
        ParseCodePoint(arg, code) ? std::vector<Unit>{{code, false}} : TextUnits(arg, a + 1);
    if (json) {
      std::cout << " {\"argument\":" << JsonString(arg) << ",\"units\":[";
      for (size_t i = 0; i < units.size(); ++i)
        std::cout << (i ? ",\n   " : "\n   ") << JsonUnit(units[i]);
      std::cout << "]}" << (a + 1 < positional.size() ? ",\n" : "\n");
    } else {
      if (a > 0) std::cout << "\n";
      for (const Unit &u : units)
        PrintLine(u);
    }
  }
  if (json) std::cout << "]\n";
  return 0;
}

const CommandRegistration kChar(Command{
    "char",
    "what the character database says about characters",
    "char [--json] ARG...   (ARG: literal text, one line per UTF-16 code unit; or U+XXXX)",
    {},
    RunChar});

} // namespace
} // namespace kestrel::cli
