// The vector byte tallies and probe scan against the scalar ways and the library's decoder.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include <kestrel/files/TextFiles.h>
#include <kestrel/unicode/Utf8.h>

#include "ByteScan.h"
#include "SearchPrinters.h"

namespace kestrel::cli {
namespace {

// Bytes of text, now and then with something that is no UTF-8 or a control.
std::string RandomBytes(std::mt19937 &rng, size_t n, bool spoil) {
  static const std::vector<std::string> pieces = {
      // ASCII and the line breaks of every kind
      "a", "b", " ", "\n", "\r", "\r\n",
      // two to four bytes, an encoded surrogate half, controls, a longer run
      "\xC3\xA9", "\xE2\x80\xA8", "\xE2\x80\xA9", "\xE2\x80\x99", "\xF0\x9F\x98\x80",
      "\xED\xA0\x80", "\t", "\x1B", "xyzxyzxyzxyzxyz"};
  static const std::vector<std::string> spoilers = {
      "\xC0\xAF", "\xFF", "\x80", "\xF4\x90\x80\x80", "\xE0\x80\x80", "\x01", std::string(1, '\0')};
  std::string s;
  while (s.size() < n)
    s += pieces[rng() % pieces.size()];
  if (spoil) s.insert(rng() % (s.size() + 1), spoilers[rng() % spoilers.size()]);
  return s;
}

TEST(ByteScan, TalliesAsTheDecoderCounts) {
  std::mt19937 rng(7);
  for (int round = 0; round < 2000; ++round) {
    const std::string s = RandomBytes(rng, rng() % 300, rng() % 4 == 0);
    Utf8Tally fast, slow;
    TallyUtf8(s.data(), s.size(), fast);
    TallyUtf8Scalar(s.data(), s.size(), slow);
    const std::string what = ::testing::PrintToString(s);
    ASSERT_EQ(fast.valid, slow.valid) << what;
    ASSERT_EQ(slow.valid, IsValidUtf8(s)) << what;
    if (!slow.valid) continue; // the rest is no answer then
    ASSERT_EQ(fast.strayControls, slow.strayControls) << what;
    const std::u16string text = UTF8ToWideString(s);
    ASSERT_EQ(fast.units, slow.units) << what;
    ASSERT_EQ(slow.units, text.size()) << what;
    ASSERT_EQ(fast.breaks, slow.breaks) << what;
    ASSERT_EQ(slow.breaks + 1, LineStarts(text).size()) << what;
  }
}

// Tallies of pieces cut after line feeds add up to the tally of the whole.
TEST(ByteScan, TalliesAddUpOverPiecesCutAfterLineFeeds) {
  std::mt19937 rng(11);
  for (int round = 0; round < 500; ++round) {
    const std::string s = RandomBytes(rng, 200 + rng() % 300, false);
    Utf8Tally whole, parts;
    TallyUtf8(s.data(), s.size(), whole);
    size_t at = 0;
    for (size_t lf = s.find('\n', rng() % 40); lf != std::string::npos;
         lf = s.find('\n', lf + 1 + rng() % 40)) {
      TallyUtf8(s.data() + at, lf + 1 - at, parts);
      at = lf + 1;
    }
    TallyUtf8(s.data() + at, s.size() - at, parts);
    ASSERT_EQ(parts.units, whole.units);
    ASSERT_EQ(parts.breaks, whole.breaks);
  }
}

TEST(ByteScan, FindsEachProbePositionTheScalarScanFinds) {
  std::mt19937 rng(3);
  for (int round = 0; round < 3000; ++round) {
    std::string s(rng() % 200, 'a');
    for (char &c : s)
      c = "abcxyzXY\xC3\xA9"[rng() % 9];
    ByteProbe probe;
    probe.used = 1 + rng() % 2;
    for (uint8_t t = 0; t < probe.used; ++t) {
      ByteTest &test = probe.tests[t];
      test.offset = t == 0 ? 0 : rng() % 40;
      test.count = 1 + rng() % 4;
      for (uint8_t k = 0; k < test.count; ++k)
        test.bytes[k] = uint8_t("abcxyzXY\xC3\xA9"[rng() % 9]);
      probe.span = std::max(probe.span, test.offset + 1);
    }
    for (size_t from = 0; from <= s.size(); from += 1 + rng() % 50)
      ASSERT_EQ(FindProbe(s.data(), s.size(), from, probe),
                FindProbeScalar(s.data(), s.size(), from, probe))
          << s << " from " << from;
  }
}

} // namespace
} // namespace kestrel::cli
