// Reading text files: marks, UTF-8, UTF-16 by its byte pattern, the given encoding; names.
#include <gtest/gtest.h>

#include <string>

#include <kestrel/files/TextFiles.h>
#include <kestrel/frame/host/Exceptions.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

using namespace std::string_literals;
using TKind = TTextEncoding::TKind;

std::string Utf16Bytes(const std::u16string &s, bool bigEndian) {
  std::string out;
  for (char16_t c : s) {
    const char hi = static_cast<char>(c >> 8), lo = static_cast<char>(c & 0xFF);
    out += bigEndian ? std::string{hi, lo} : std::string{lo, hi};
  }
  return out;
}

struct Detected {
  const char *what;
  std::string bytes;
  TKind kind;
  TEncodingEvidence evidence;
  std::u16string text;
};

class TextDetection : public ::testing::TestWithParam<Detected> {};

TEST_P(TextDetection, ReadsEachTextAsItIs) {
  const Detected &c = GetParam();
  const TDecodedText d = DecodeText(c.bytes, DefaultTextEncoding());
  EXPECT_EQ(d.Encoding.Kind, c.kind) << c.what;
  EXPECT_EQ(d.Evidence, c.evidence) << c.what;
  EXPECT_EQ(d.Text, c.text) << c.what;
}

using E = TEncodingEvidence;

// clang-format off
INSTANTIATE_TEST_SUITE_P(Files, TextDetection, ::testing::Values(
    Detected{"mark LE", "\xFF\xFE" + Utf16Bytes(u"a\u00e9", false), TKind::Utf16LE, E::ByteOrderMark, u"a\u00e9"},
    Detected{"mark BE", "\xFE\xFF" + Utf16Bytes(u"a\u00e9", true), TKind::Utf16BE, E::ByteOrderMark, u"a\u00e9"},
    Detected{"mark UTF-8", "\xEF\xBB\xBF\xC3\xA9", TKind::Utf8, E::ByteOrderMark, u"\u00e9"},
    Detected{"odd byte", "\xFF\xFE" "a\0b"s, TKind::Utf16LE, E::ByteOrderMark, u"a"},
    Detected{"empty", "", TKind::Utf8, E::ValidUtf8, u""},
    Detected{"UTF-8", "\xC4\x8D" "esk\xC3\xA9 \xF0\x90\x90\x80", TKind::Utf8, E::ValidUtf8,
             u"\u010desk\u00e9 \U00010400"},
    Detected{"UTF-8 surrogate half", "a\xED\xA0\x80", TKind::Utf8, E::ValidUtf8, u"a\xD800"},
    Detected{"UTF-16LE English", Utf16Bytes(u"the kestrel sat on the wall\r\n", false),
             TKind::Utf16LE, E::Utf16Bytes, u"the kestrel sat on the wall\r\n"},
    Detected{"UTF-16BE Cyrillic", Utf16Bytes(u"\u0434\u043e\u043c \u0438 \u0441\u0430\u0434", true),
             TKind::Utf16BE, E::Utf16Bytes, u"\u0434\u043e\u043c \u0438 \u0441\u0430\u0434"},
    Detected{"1252", "caf\xE9 cr\xE8me", TKind::CodePage, E::Given, u"caf\u00e9 cr\u00e8me"},
    Detected{"overlong UTF-8", "a\xC0\xAF", TKind::CodePage, E::Given, u"a\u00c0\u00af"},
    // No pattern to see in ideographs: read as the given encoding.
    Detected{"UTF-16LE Chinese", Utf16Bytes(u"\u4e2d\u6587\u5b57", false), TKind::CodePage,
             E::Given, u"-N\u2021eW[" /* what 1252 makes of the bytes */},
    Detected{"UTF-8 with a NUL", "\xC3\xA9\0"s, TKind::Utf8, E::ValidUtf8, u"\u00e9\0"s},
    // Runs of one character are no pattern.
    Detected{"repeated bytes", std::string(64, '=') + "\xE9", TKind::CodePage, E::Given,
             std::u16string(64, u'=') + u"\u00e9"}));
// clang-format on

TEST(TextFiles, TheGivenEncodingDecidesOnlyLast) {
  const TTextEncoding cyrillic = TextEncodingFromName("1251");
  EXPECT_EQ(DecodeText("\xE4\xEE\xEC", cyrillic).Text, u"\u0434\u043e\u043c");
  EXPECT_EQ(DecodeText("\xE4\xEE\xEC", cyrillic).Description(), "windows-1251 (assumed)");
  // Valid UTF-8 wins over what is given.
  EXPECT_EQ(DecodeText("\xD0\xB4", cyrillic).Text, u"\u0434");
  EXPECT_EQ(DecodeText("\xFF\xFE\x61\0"s, cyrillic).Description(), "UTF-16LE (byte-order mark)");
}

TEST(TextFiles, EncodingNames) {
  struct Named {
    const char *name, *shown;
  };
  for (const Named &n :
       {Named{"1252", "windows-1252"}, Named{"cp1251", "windows-1251"},
        Named{"Windows-1250", "windows-1250"}, Named{"latin1", "ISO-8859-1"},
        Named{"koi8-r", "KOI8-R"}, Named{"shift_jis", "windows-932"},
        Named{"iso-8859-3", "ISO-8859-3"}, Named{"utf8", "UTF-8"}, Named{"UTF-16", "UTF-16LE"},
        Named{"utf-16be", "UTF-16BE"}, Named{"ibm850", "ibm-850"}, Named{"1200", "UTF-16LE"},
        Named{"1201", "UTF-16BE"}, Named{"x-mac-cyrillic", "x-mac-cyrillic"}})
    EXPECT_EQ(TextEncodingFromName(n.name).Name(), n.shown) << n.name;
  EXPECT_EQ(TextEncodingFromName("koi8-r"), TextEncodingFromName("20866"));
  for (const char *bad : {"klingon", "", "99999", "cp", "1200x"})
    EXPECT_THROW(TextEncodingFromName(bad), EConvertError) << bad;
}

TEST(TextFiles, DecodingAsOneEncodingFollowsAUtf16Mark) {
  const TTextEncoding le = TextEncodingFromName("utf-16le");
  EXPECT_EQ(DecodeTextAs("\xFE\xFF\0a"s, le), u"a");
  EXPECT_EQ(DecodeTextAs("a\0"s, le), u"a");
  EXPECT_EQ(DecodeTextAs("\xEF\xBB\xBFx", TextEncodingFromName("utf-8")), u"x");
}

TEST(TextFiles, FilesThatCannotBeRead) {
  test::TempDir dir;
  dir.WriteFile("t.txt", "\xFF\xFEh\0i\0"s);
  EXPECT_EQ(ReadTextFile(dir / "t.txt", DefaultTextEncoding()).Text, u"hi");
  EXPECT_THROW(ReadFileBytes(dir.Path()), EFOpenError);
  EXPECT_THROW(ReadFileBytes(dir / "missing.txt"), EFOpenError);
}

} // namespace
} // namespace kestrel
