// The vector ways through UTF-8 give what the rules give one sequence (or
// unit) at a time, on texts built to hit every odd rule at every position.
#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

#include <kestrel/unicode/Utf8Paths.h>

namespace kestrel::utf8 {
namespace {

std::vector<TPath> FastPaths() {
  std::vector<TPath> paths;
  for (TPath p : {TPath::Sse2, TPath::Avx2})
    if (PathRuns(p)) paths.push_back(p);
  return paths;
}

const char *Name(TPath p) {
  return p == TPath::Avx2 ? "AVX2" : p == TPath::Sse2 ? "SSE2" : "scalar";
}

// A piece of UTF-8 of one kind: well-formed forms of one to three bytes in
// runs (the vector paths' own ground), or one of the rules' odd corners.
std::string Piece(std::mt19937 &rng) {
  auto byte = [&](int lo, int hi) { return char(lo + int(rng() % unsigned(hi - lo + 1))); };
  std::string s;
  const unsigned kind = rng() % 16;
  if (kind < 4) { // a run of ASCII
    for (int n = 1 + int(rng() % 40); n > 0; --n)
      s += byte(0x00, 0x7F);
  } else if (kind < 7) { // two-byte forms, overlong ones (C0, C1) included
    for (int n = 1 + int(rng() % 8); n > 0; --n)
      s += {byte(0xC0, 0xDF), byte(0x80, 0xBF)};
  } else if (kind < 10) { // three-byte forms, encoded surrogate halves included
    for (int n = 1 + int(rng() % 6); n > 0; --n)
      s += {byte(0xE0, 0xEF), byte(0x80, 0xBF), byte(0x80, 0xBF)};
  } else if (kind == 10) { // a four-byte form, some beyond U+10FFFF
    s += {byte(0xF0, 0xF7), byte(0x80, 0xBF), byte(0x80, 0xBF), byte(0x80, 0xBF)};
  } else if (kind == 11) { // five- and six-byte forms
    s += {byte(0xF8, 0xFB), byte(0x80, 0xBF), byte(0x80, 0xBF), byte(0x80, 0xBF), byte(0x80, 0xBF)};
    if (rng() % 2) s = char(0xFC) + s.substr(1) + byte(0x80, 0xBF);
  } else if (kind == 12) { // stray continuation bytes
    for (int n = 1 + int(rng() % 3); n > 0; --n)
      s += byte(0x80, 0xBF);
  } else if (kind == 13) { // a lead whose continuation bytes are short: what follows counts anyway
    s += rng() % 2 ? byte(0xC0, 0xDF) : byte(0xE0, 0xEF);
    s += byte(0x00, 0x7F);
  } else if (kind == 14) { // a lead byte alone
    s += byte(0xC0, 0xFF);
  } else { // any bytes
    for (int n = 1 + int(rng() % 6); n > 0; --n)
      s += char(rng());
  }
  return s;
}

std::string RandomText(std::mt19937 &rng, size_t bytes) {
  std::string s;
  while (s.size() < bytes)
    s += Piece(rng);
  s.resize(bytes); // cuts a form at the end at times
  return s;
}

void ExpectSameDecoding(const std::string &bytes, const std::string &what) {
  const std::u16string want = Decode(bytes, TPath::Scalar);
  for (TPath p : FastPaths())
    ASSERT_EQ(Decode(bytes, p), want) << Name(p) << " " << what << " of " << bytes.size();
}

void ExpectSameEncoding(const std::u16string &units, const std::string &what) {
  const std::string want = Encode(units, TPath::Scalar);
  for (TPath p : FastPaths())
    ASSERT_EQ(Encode(units, p), want) << Name(p) << " " << what << " of " << units.size();
}

} // namespace

TEST(Utf8FastPath, TheScalarPathAlwaysRuns) {
  EXPECT_TRUE(PathRuns(TPath::Scalar));
}

TEST(Utf8FastPath, RandomTextsDecodeAsByTheRules) {
  std::mt19937 rng(1811);
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(2);
  for (int round = 0; round < 300 || std::chrono::steady_clock::now() < deadline; ++round) {
    const size_t length = round % 3 == 0 ? rng() % 100 : rng() % 600;
    ExpectSameDecoding(RandomText(rng, length), "round " + std::to_string(round));
  }
}

// Well-formed text of every width with one odd byte put at every position,
// so that each block and window meets it at each of its offsets.
TEST(Utf8FastPath, OneOddByteAtEveryPosition) {
  std::string base;
  for (int i = 0; base.size() < 200; ++i)
    base += i % 4 == 0   ? "word "
            : i % 4 == 1 ? "\xD1\x81\xD0\xBB\xD0\xBE\xD0\xB2\xD0\xBE "
            : i % 4 == 2 ? "\xE4\xB8\xAD\xE6\x96\x87,"
                         : "caf\xC3\xA9 ";
  const char odd[] = {'\x80', '\xBF', '\xC3', '\xE4', '\xF0', '\xF8', '\xFC', '\xFF'};
  for (char b : odd)
    for (size_t at = 0; at < base.size(); ++at) {
      std::string text = base;
      text[at] = b;
      ExpectSameDecoding(text, "byte " + std::to_string(uint8_t(b)) + " at " + std::to_string(at));
      ExpectSameDecoding(text.substr(0, at + 1), "cut after it");
    }
}

// Long runs of one width, which the random texts seldom make.
TEST(Utf8FastPath, LengthsAroundEveryBlockEdge) {
  for (size_t length = 0; length < 200; ++length) {
    std::string ascii(length, 'a'), twoBytes = ascii;
    for (size_t i = 0; i + 1 < length; i += 2)
      twoBytes.replace(i, 2, "\xC3\xA9");
    ExpectSameDecoding(ascii, "ASCII");
    ExpectSameDecoding(twoBytes, "two-byte forms");
  }
}

TEST(Utf8FastPath, RandomUnitsEncodeAsByTheRules) {
  std::mt19937 rng(99);
  for (int round = 0; round < 2000; ++round) {
    std::u16string units(round % 5 == 0 ? rng() % 40 : rng() % 300, u'\0');
    const unsigned mix = rng() % 4; // mostly ASCII, two-byte, three-byte, anything
    for (char16_t &u : units) {
      const unsigned r = rng() % 10;
      u = char16_t(r < 6 - 2 * mix ? rng() % 0x80
                   : r < 8         ? 0x80 + rng() % 0x780
                   : r < 9         ? 0xD800 + rng() % 0x800
                                   : rng() % 0x10000);
    }
    ExpectSameEncoding(units, "round " + std::to_string(round));
  }
  for (char16_t u : {u'\u007F', u'\u0080', u'\u07FF', u'\u0800', u'\uFFFF'})
    for (size_t length = 1; length < 40; ++length) {
      std::u16string units(length, u'a');
      units[length / 2] = u;
      ExpectSameEncoding(units, "edge unit");
    }
}

} // namespace kestrel::utf8
