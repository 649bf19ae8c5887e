// Decomposition, canonical order, combining classes and Hangul; every row
// against the full canonical decomposition worked out from the published data.
#include <gtest/gtest.h>

#include <functional>
#include <set>

#include <kestrel/unicode/Unicode.h>

#include "support/UnicodeData.h"

namespace kestrel {
namespace {

std::u16string U(std::initializer_list<char16_t> units) {
  return std::u16string(units);
}

struct Case {
  std::u16string source, expected;
};

TEST(Decomposition, WideDecompose) {
  const Case cases[] = {
      {U({0x0041, 0x0345, 0x0323}), U({0x0041, 0x0323, 0x0345})}, // 220 before 240
      {U({0x0345, 0x0323}), U({0x0345, 0x0323})},                 // the first unit never moves
      {U({0x0041, 0x0301, 0x0300}), U({0x0041, 0x0301, 0x0300})}, // equal classes keep order
      {U({0x00C0, 0x0323}), U({0x0041, 0x0323, 0x0300})},         // against the letter's marks
      {U({0x0301, 0x0041, 0x0323, 0x0300}), U({0x0301, 0x0041, 0x0323, 0x0300})}, // no crossing
      {U({0xD7A3}), U({0x1112, 0x1175, 0x11C2})},
      {U({0x0000, 0x00C0}), U({0x0000, 0x0041, 0x0300})},
      {u"", u""},
  };
  for (const auto &c : cases) {
    std::u16string got = WideDecompose(c.source);
    EXPECT_EQ(got, c.expected) << std::hex << unsigned(c.source.empty() ? 0 : c.source[0]);
  }
}

TEST(Decomposition, CombiningClassesBeyondTheSixteenBitRange) {
  for (UCS4 code : {0x10000u, 0x10FFFFu, 0xFFFFFFFFu})
    EXPECT_EQ(UnicodeCombiningClass(code), 0u) << std::hex << code;
}

TEST(Decomposition, CodeLookups) {
  EXPECT_EQ(UnicodeDecompose(0x110000), std::vector<UCS4>{0x110000});
  EXPECT_EQ(UnicodeDecompose(0xAC01), (std::vector<UCS4>{0x1100, 0x1161, 0x11A8}));
  EXPECT_EQ(UnicodeDecomposeHangul(0x0041), std::vector<UCS4>{});
  EXPECT_EQ(UnicodeDecomposeHangul(0xD7A4), std::vector<UCS4>{});
  EXPECT_EQ(UnicodeDecomposeHangul(0xAC00), (std::vector<UCS4>{0x1100, 0x1161}));
}

// Whole syllables are in the round trip below.
TEST(Decomposition, WideComposeHangul) {
  const Case cases[] = {
      {U({0x1100, 0x1161, 0x11A8, 0x11A8}), U({0xAC01, 0x11A8})},
      {U({0x1100, 0x1161, 0x11A7}), U({0xAC00})}, // difference 0: absorbed, no change
      {U({0x1100, 0x1161, 0x11C3}), U({0xAC1C})}, // difference 28: the next syllable
      {U({0x0041, 0x1100}), U({0x0041, 0x1100})},
      {U({0x0041, 0x1100, 0x1161, 0x0042}), U({0x0041, 0xAC00, 0x0042})},
      {U({0x1100, 0x1100, 0x1161}), U({0x1100, 0xAC00})},
      {U({0xAC00, 0x11A8}), U({0xAC01})}, // a syllable takes a trailing consonant
      {u"", u""},
  };
  for (const auto &c : cases)
    EXPECT_EQ(WideComposeHangul(c.source), c.expected);
}

TEST(Decomposition, HangulRoundTripOverAllSyllables) {
  for (char16_t s = 0xAC00; s <= 0xD7A3; ++s) {
    std::u16string one(1, s);
    ASSERT_EQ(WideComposeHangul(WideDecompose(one)), one) << std::hex << unsigned(s);
  }
}

TEST(Decomposition, ComposeGivesTheSourceBack) {
  EXPECT_EQ(WideCompose(U({0x0041, 0x0300})), U({0x0041, 0x0300}));
  EXPECT_EQ(WideCompose(u""), u"");
}

// ---- Against the published data --------------------------------------------

// Codes with a canonical mapping of two or more elements, and the private-use
// rows that no published table covers, with their runs.
std::map<UCS4, std::vector<UCS4>> ExpectedRows() {
  const auto &rows = test::UnicodeDataRows();
  std::function<void(UCS4, std::vector<UCS4> &)> expand = [&](UCS4 c, std::vector<UCS4> &out) {
    auto it = rows.find(c);
    if (it == rows.end() || it->second.compatibility || it->second.decomposition.empty()) {
      out.push_back(c);
      return;
    }
    for (UCS4 e : it->second.decomposition)
      expand(e, out);
  };
  std::map<UCS4, std::vector<UCS4>> expected;
  for (const auto &[code, row] : rows) {
    if (row.compatibility || row.decomposition.size() < 2) continue;
    expand(code, expected[code]);
  }
  const std::vector<UCS4> hrv = {0x0939, 0x0943, 0x0935}, hr = {0x0939, 0x0943};
  for (UCS4 c = 0xE900; c <= 0xE906; ++c)
    expected[c] = hrv;
  for (UCS4 c = 0xE940; c <= 0xE959; ++c)
    expected[c] = hrv;
  for (UCS4 c = 0xE970; c <= 0xE976; ++c)
    expected[c] = hrv;
  for (UCS4 c : {0xE929, 0xE931, 0xE934, 0xE97C})
    expected[c] = hr;
  expected[0xE95A] = {0x0938, 0x094D, 0x0924, 0x094D, 0x0930};
  return expected;
}

TEST(Decomposition, EveryRowIsTheFullCanonicalDecomposition) {
  if (test::UnicodeDataRows().empty())
    GTEST_SKIP() << "the shared Unicode data is not beside the repository";
  std::map<UCS4, std::vector<UCS4>> expected = ExpectedRows();
  EXPECT_EQ(expected.size(), 1033u);
  int wrong = 0;
  for (UCS4 code = 0; code <= 0xFFFF; ++code) {
    auto it = expected.find(code);
    bool isSyllable = code >= 0xAC00 && code <= 0xD7A3;
    EXPECT_EQ(UnicodeIsComposite(code), it != expected.end()) << std::hex << code;
    if (isSyllable) continue;
    std::vector<UCS4> want = it != expected.end() ? it->second : std::vector<UCS4>{code};
    const std::u16string wide(want.begin(), want.end()); // the wide form of one unit too
    if ((UnicodeDecompose(code) != want ||
         WideDecompose(std::u16string(1, char16_t(code))) != wide) &&
        ++wrong <= 10)
      ADD_FAILURE() << "U+" << std::hex << code;
  }
  EXPECT_EQ(wrong, 0);
}

TEST(Decomposition, EveryClassAgainstThePublishedData) {
  const auto &rows = test::UnicodeDataRows();
  if (rows.empty()) GTEST_SKIP() << "the shared Unicode data is not beside the repository";
  const std::set<UCS4> noRow = {0xFB1E, 0xFE20, 0xFE21, 0xFE22, 0xFE23};
  const std::set<UCS4> privateMarks = {0xE97B, 0xE97E, 0xE97F};
  for (UCS4 code = 0; code <= 0xFFFF; ++code) {
    auto it = rows.find(code);
    uint32_t want = it == rows.end() || noRow.count(code) ? 0 : it->second.combiningClass;
    if (privateMarks.count(code)) want = 36;
    ASSERT_EQ(UnicodeCombiningClass(code), want) << std::hex << code;
  }
}

// Decomposed text is in canonical order: no mark stands behind a mark of a
// higher class, but for a mark that opens the text.
TEST(Decomposition, ResultsAreCanonicallyOrdered) {
  if (test::UnicodeDataRows().empty())
    GTEST_SKIP() << "the shared Unicode data is not beside the repository";
  for (const auto &[code, run] : ExpectedRows()) {
    std::u16string text = u"x" + std::u16string(1, static_cast<char16_t>(code)) + u"\u0323\u0301";
    std::u16string d = WideDecompose(text);
    for (size_t i = 2; i < d.size(); ++i) {
      uint32_t a = UnicodeCombiningClass(d[i - 1]), b = UnicodeCombiningClass(d[i]);
      ASSERT_FALSE(b != 0 && a > b) << std::hex << code;
    }
  }
}

} // namespace
} // namespace kestrel
