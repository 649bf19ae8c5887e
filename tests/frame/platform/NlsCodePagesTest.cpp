// Code-page conversion of the platform layer, on ICU's converters.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include <kestrel/frame/platform/Nls.h>

namespace kestrel {
namespace {

std::u16string ToWide(uint32_t cp, const std::string &bytes, uint32_t flags = 0) {
  int32_t n =
      MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int32_t>(bytes.size()), nullptr, 0);
  if (n == 0) return u"<failed>";
  std::u16string out(n, u'\0');
  EXPECT_EQ(MultiByteToWideChar(cp, flags, bytes.data(), static_cast<int32_t>(bytes.size()),
                                out.data(), n),
            n);
  return out;
}

std::string ToBytes(uint32_t cp, const std::u16string &text, bool *used = nullptr,
                    const char *defaultChar = nullptr, uint32_t flags = 0) {
  int32_t n = WideCharToMultiByte(cp, flags, text.data(), static_cast<int32_t>(text.size()),
                                  nullptr, 0, defaultChar, used);
  if (n == 0) return "<failed>";
  std::string out(n, '\0');
  EXPECT_EQ(WideCharToMultiByte(cp, flags, text.data(), static_cast<int32_t>(text.size()),
                                out.data(), n, defaultChar, used),
            n);
  return out;
}

struct ConversionRow {
  uint32_t codePage;
  std::string bytes;
  std::u16string text;
};

TEST(NlsCodePages, RoundTripsOfWindowsCodePages) {
  const ConversionRow rows[] = {
      {1252, "caf\xE9 \x80 \x9C", u"caf\u00E9 \u20AC \u0153"},
      {1251, "\xCC\xEE\xF1\xEA\xE2\xE0", u"\u041C\u043E\u0441\u043A\u0432\u0430"},
      {874, "\xA1\xD2", u"\u0E01\u0E32"},
      {437, "\x82\xB0\xDB", u"\u00E9\u2591\u2588"},
      {850, "\x90\xE1", u"\u00C9\u00DF"},
      {866, "\x80\xA0", u"\u0410\u0430"},
      {932, "\x93\xFA\x96\x7B\x8C\xEA\x20\xB1", u"\u65E5\u672C\u8A9E \uFF71"},
      {936, "\xD6\xD0\xCE\xC4", u"\u4E2D\u6587"},
      {950, "\xA4\xA4\xA4\xE5", u"\u4E2D\u6587"},
      {65001, "\xC3\xA9\xF0\x9F\x98\x80", u"\u00E9\U0001F600"},
      {28591, "\xE9\xFF", u"\u00E9\u00FF"},
      {20127, "plain", u"plain"},
  };
  for (const auto &r : rows) {
    EXPECT_EQ(ToWide(r.codePage, r.bytes), r.text) << r.codePage;
    EXPECT_EQ(ToBytes(r.codePage, r.text), r.bytes) << r.codePage;
  }
}

TEST(NlsCodePages, ControlBytesMapToThemselves) {
  // Some converter tables swap 0x1A, 0x1C and 0x7F; Windows does not.
  std::string controls = "\x01\x1A\x1C\x7F\n";
  std::u16string units = u"\x01\x1A\x1C\x7F\n";
  for (uint32_t cp : {437u, 850u, 866u, 932u, 936u, 949u, 950u, 1252u}) {
    EXPECT_EQ(ToWide(cp, "a" + controls + "b"), u"a" + units + u"b") << cp;
    EXPECT_EQ(ToBytes(cp, u"a" + units + u"b"), "a" + controls + "b") << cp;
  }
  // A double-byte character on either side of them stays whole.
  EXPECT_EQ(ToWide(932, "\x82\xA0\x1A\x82\xA0"), u"\u3042\x1A\u3042");
}

TEST(NlsCodePages, PseudoCodePagesAndSymbol) {
  EXPECT_EQ(ToWide(CP_ACP, "\xC3\xA9"), u"\u00E9"); // the system code page is UTF-8
  EXPECT_EQ(ToWide(CP_OEMCP, "\xC3\xA9"), u"\u00E9");
  EXPECT_EQ(ToWide(CP_SYMBOL, "\x01\x41"), u"\x01\uF041");
  EXPECT_EQ(ToBytes(CP_SYMBOL, u"\uF041\x01"), "\x41\x01");
  // UTF-16 (1200) is no byte code page here.
  const std::pair<uint32_t, bool> valid[] = {{1252, true},   {932, true},     {65001, true},
                                             {12345, false}, {CP_ACP, false}, {1200, false}};
  for (auto [cp, is] : valid)
    EXPECT_EQ(IsValidCodePage(cp), is) << cp;
}

TEST(NlsCodePages, FlagsAndFailures) {
  char16_t out[16];
  EXPECT_EQ(MultiByteToWideChar(12345, 0, "abc", 3, out, 16), 0); // unknown code page
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 0, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -2, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, nullptr, 3, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", 3, out, 2), 0);      // buffer too small
  EXPECT_EQ(MultiByteToWideChar(1252, 0x100, "abc", 3, out, 16), 0); // unknown flag
  EXPECT_EQ(MultiByteToWideChar(1252, MB_PRECOMPOSED | MB_COMPOSITE, "abc", 3, out, 16), 0);
  EXPECT_EQ(MultiByteToWideChar(CP_UTF8, MB_PRECOMPOSED, "abc", 3, out, 16), 0);
  // -1 takes the terminator along.
  EXPECT_EQ(MultiByteToWideChar(1252, 0, "abc", -1, out, 16), 4);
  EXPECT_EQ(out[3], 0);
  // Invalid sequences: substituted, or refused on request.
  EXPECT_EQ(ToWide(CP_UTF8, "a\xFF"), u"a\uFFFD");
  EXPECT_EQ(ToWide(CP_UTF8, "a\xFF", MB_ERR_INVALID_CHARS), u"<failed>");
  EXPECT_EQ(ToWide(932, "\x82"), u"\uFFFD"); // a lead byte alone
  EXPECT_EQ(ToWide(932, "\x82", MB_ERR_INVALID_CHARS), u"<failed>");
  // Glyphs for the controls of the DOS code pages only.
  EXPECT_EQ(ToWide(437, "\x01\x7F", MB_USEGLYPHCHARS), u"\u263A\u2302");
  EXPECT_EQ(ToWide(1252, "\x01", MB_USEGLYPHCHARS), u"\x01");
  // Decomposed forms on request.
  EXPECT_EQ(ToWide(1252, "\xE9", MB_COMPOSITE), u"e\u0301");
}

TEST(NlsCodePages, DefaultCharacter) {
  bool used = false;
  EXPECT_EQ(ToBytes(1252, u"a\u4E2Db", &used), "a?b");
  EXPECT_TRUE(used);
  EXPECT_EQ(ToBytes(1252, u"ab", &used), "ab");
  EXPECT_FALSE(used);
  EXPECT_EQ(ToBytes(1252, u"\u4E2D", &used, "*"), "*");
  EXPECT_EQ(ToBytes(932, u"\u0E01", &used), "?");
  EXPECT_EQ(ToBytes(1252, u"\uFF21"), "A"); // the nearest form
  EXPECT_EQ(ToBytes(1252, u"\uFF21", &used, nullptr, WC_NO_BEST_FIT_CHARS), "?");
  // UTF-8 takes neither argument, and makes U+FFFD of a lone half.
  EXPECT_EQ(ToBytes(CP_UTF8, u"a", &used), "<failed>");
  EXPECT_EQ(ToBytes(CP_UTF8, std::u16string{u'a', 0xD800}), "a\xEF\xBF\xBD");
  EXPECT_EQ(ToBytes(CP_UTF8, std::u16string{u'a', 0xD800}, nullptr, nullptr, WC_ERR_INVALID_CHARS),
            "<failed>");
  EXPECT_EQ(ToBytes(1252, u"a", nullptr, nullptr, WC_ERR_INVALID_CHARS), "<failed>");
  EXPECT_EQ(ToBytes(CP_UTF7, u"a", nullptr, nullptr, WC_ERR_INVALID_CHARS), "<failed>");
  EXPECT_EQ(ToBytes(CP_UTF8, u"a", nullptr, nullptr, WC_ERR_INVALID_CHARS), "a");
}

TEST(NlsCodePages, ThreadsConvertAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int> failures(4, 0);
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([t, &failures] {
      for (int i = 0; i < 200; ++i) {
        uint32_t cp = (t % 2) ? 932 : 1251;
        std::u16string text = (t % 2) ? u"\u65E5\u672C" : u"\u041C\u0438\u0440";
        char bytes[16];
        int32_t n = WideCharToMultiByte(cp, 0, text.data(), static_cast<int32_t>(text.size()),
                                        bytes, 16, nullptr, nullptr);
        char16_t back[16];
        int32_t m = MultiByteToWideChar(cp, 0, bytes, n, back, 16);
        if (std::u16string(back, back + std::max(m, 0)) != text) ++failures[t];
      }
    });
  for (auto &th : threads)
    th.join();
  for (int f : failures)
    EXPECT_EQ(f, 0);
}

} // namespace
} // namespace kestrel
