// The fast way of kestrel search against the plain way on random UTF-8 texts and settings.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include <kestrel/files/TextFiles.h>
#include <kestrel/unicode/Utf8.h>

#include "FastSearch.h"
#include "SearchMatchers.h"
#include "SearchPrinters.h"

namespace kestrel::cli {
namespace {

struct Query {
  std::u16string pattern;
  bool regex;
};

const std::vector<Query> kQueries = {
    {u"kestrel", false},       {u"e k", false},
    {u"\u00e9t\u00e9", false}, {u"s", false},
    {u"\U0001F600", false},    {u"ER", false},
    {u"colou?r", true},        {u"kes+trel", true},
    {u"[kK]estrel", true},     {u"(red|blue) col", true},
    {u"\u00e9t\\w", true},     {u"s{2,3}", true},
    {u"kestrel", true},
};

// Pieces the texts are made of.
const std::vector<std::string> kPieces = {
    // the words looked for in their case forms, the Kelvin sign and the long s among them
    "kestrel", "Kestrel", "KESTREL", "\u212Aestrel", "ke\xC5\xBFtrel", "colour", "color", "COLOR",
    "red", "blue", " ", " ", " ", "  ", "e", "k", "s", "ss",
    // accents precomposed and combining, astral characters
    "\xC3\xA9t\xC3\xA9", "\xC3\x89T\xC3\x89", "e\xCC\x81", "\xCC\x81", "\xF0\x9F\x98\x80",
    "\xF0\x9D\x90\x80", "\xE4\xB8\xAD", "\t", ".", ",", "_",
    // the line breaks of every kind
    "\n", "\n", "\r\n", "\r", "\xE2\x80\xA8", "\xE2\x80\xA9", "\n\n\n", "\xE2\x80\x99"};

std::string RandomText(std::mt19937 &rng) {
  std::string text;
  if (rng() % 8 == 0) text = "\xEF\xBB\xBF";
  const size_t pieces = rng() % 400;
  for (size_t i = 0; i < pieces; ++i)
    text += kPieces[rng() % kPieces.size()];
  return text;
}

struct Case {
  MatchOptions match;
  FastSettings settings;
};

Case RandomCase(std::mt19937 &rng, bool regex) {
  Case c;
  c.match.regex = regex;
  c.match.caseSensitive = rng() % 3 == 0;
  c.match.wholeWord = rng() % 3 == 0;
  if (rng() % 2)
    c.settings.context.width = int(rng() % 40);
  else
    c.settings.context.words = 1 + int(rng() % 6);
  c.settings.sort.by = static_cast<SortSpec::By>(rng() % 4);
  c.settings.sort.n = 1 + int(rng() % 3);
  if (rng() % 5 == 0) c.settings.maxCount = 1 + rng() % 4;
  c.match.maxCount = c.settings.maxCount;
  c.settings.countOnly = rng() % 10 == 0;
  c.settings.blockSize = 8 + rng() % 200;
  c.settings.history = rng() % 2 ? 100000 : 16 + rng() % 200;
  c.settings.mostHeld = rng() % 4 ? 100000 : 32 + rng() % 400;
  c.settings.mostLines = rng() % 4 ? 100000 : rng() % 5;
  return c;
}

// The plain way, as kestrel search goes it: the whole text decoded.
std::vector<ConcordanceLine> Plain(const std::string &bytes, const std::u16string &pattern,
                                   const Case &c, uint64_t &matches) {
  const std::u16string text = DecodeText(bytes, DefaultTextEncoding()).Text;
  std::vector<MatchSpan> found = Matcher::Make(pattern, c.match)->FindAll(text);
  if (found.size() > c.settings.maxCount) found.resize(c.settings.maxCount);
  matches = found.size();
  std::vector<ConcordanceLine> lines;
  if (c.settings.countOnly) return lines;
  Placer placer(text);
  for (const MatchSpan &m : found) {
    const Hit h = placer.Place(m.start, m.stop);
    lines.push_back(
        MakeLine(text, h.start, h.stop, h.line, h.column, c.settings.context, c.settings.sort));
  }
  return lines;
}

std::string Show(const ConcordanceLine &l) {
  return std::to_string(l.start) + "-" + std::to_string(l.stop) + " " + std::to_string(l.line) +
         ":" + std::to_string(l.column) + " [" + WideStringToUTF8(l.left) + "|" +
         WideStringToUTF8(l.match) + "|" + WideStringToUTF8(l.right) + "] key " +
         WideStringToUTF8(l.key);
}

TEST(FastSearch, GivesThePlainWaysLinesOnRandomTexts) {
  std::mt19937 rng(20261123);
  int fast = 0, plain = 0;
  for (int round = 0; round < 3000; ++round) {
    const Query &q = kQueries[rng() % kQueries.size()];
    const Case c = RandomCase(rng, q.regex);
    const std::string bytes = RandomText(rng);
    const std::optional<FastPlan> plan = FastPlan::Make(q.pattern, c.match);
    ASSERT_TRUE(plan) << WideStringToUTF8(q.pattern);
    uint64_t expectedCount = 0;
    const std::vector<ConcordanceLine> expected = Plain(bytes, q.pattern, c, expectedCount);
    MemorySource source(bytes);
    FastResult got;
    auto matcher = Matcher::Make(q.pattern, c.match);
    if (!FastSearchText(source, *plan, *matcher, c.settings, got)) {
      // Only a context past the history, a line too long to hold or a control sends it back.
      ++plain;
      ASSERT_TRUE(c.settings.history < 1000 || c.settings.mostHeld < 1000 ||
                  bytes.find('\x07') != std::string::npos);
      continue;
    }
    ++fast;
    if (got.tooManyLines) { // searched again, the lines handed on as found
      ASSERT_TRUE(got.lines.empty());
      FastSettings again = c.settings;
      again.emit = [&](ConcordanceLine &&line) { got.lines.push_back(std::move(line)); };
      FastResult second;
      MemorySource same(bytes);
      ASSERT_TRUE(FastSearchText(same, *plan, *matcher, again, second));
      ASSERT_TRUE(second.lines.empty());
      ASSERT_EQ(second.matches, got.matches);
    }
    const std::string what = "round " + std::to_string(round) + " pattern " +
                             WideStringToUTF8(q.pattern) + " text " +
                             ::testing::PrintToString(bytes);
    ASSERT_EQ(got.matches, expectedCount) << what;
    ASSERT_EQ(got.lines.size(), expected.size()) << what;
    for (size_t i = 0; i < expected.size(); ++i)
      ASSERT_EQ(Show(got.lines[i]), Show(expected[i])) << what << " line " << i;
    EXPECT_EQ(got.byteOrderMark, bytes.rfind("\xEF\xBB\xBF", 0) == 0);
    EXPECT_EQ(got.bytes, bytes.size());
  }
  EXPECT_GT(fast, 2000);
}

// The fast search for "kestrel"; false when it leaves the text to the plain way.
bool FastKestrel(const std::string &text, const FastSettings &s, FastResult &r) {
  MatchOptions m;
  const std::optional<FastPlan> plan = FastPlan::Make(u"kestrel", m);
  EXPECT_TRUE(plan);
  MemorySource source(text);
  return plan && FastSearchText(source, *plan, *Matcher::Make(u"kestrel", m), s, r);
}

// Texts the plain way must decode: it gives them back with nothing found.
TEST(FastSearch, LeavesTextsThatNeedDecodingToThePlainWay) {
  const std::vector<std::string> texts = {
      std::string("\xFF\xFEk\0e\0", 6),             // UTF-16 by its mark
      "kestrel \xE9t\xE9 kestrel",                  // windows-1252
      "kestrel\n" + std::string(300, 'x') + "\xC3", // a sequence cut by the end
      std::string("kestrel\0kestrel", 15),          // a control: maybe UTF-16
      "kestrel \xED\xA0\x80\xF4\x90\x80\x80",       // past U+10FFFF
  };
  FastSettings s;
  s.blockSize = 64;
  for (const std::string &t : texts) {
    FastResult r;
    EXPECT_FALSE(FastKestrel(t, s, r)) << ::testing::PrintToString(t);
    EXPECT_EQ(r.matches, 0u);
    EXPECT_TRUE(r.lines.empty());
  }
}

// A control opens UTF-8 to the test for UTF-16 on the first 64 KiB, which Cyrillic passes.
TEST(FastSearch, ControlsLeaveTextToThePlainWayOnlyWhenItMayBeUtf16) {
  std::string cyrillic, english;
  for (int i = 0; i < 3000; ++i)
    cyrillic += "\xD0\xB0\xD0\xB1\xD0\xB2\xD0\xB3\xD0\xB4\xD0\xB5\xD0\xB6\xD0\xB7"
                "\xD1\x80\xD1\x81\xD1\x82\xD1\x83\xD1\x84\xD1\x85\xD1\x86\xD1\x87";
  for (int i = 0; i < 6000; ++i)
    english += "the kestrel hovers\n";
  struct Row {
    std::string text;
    bool fast;
    TEncodingEvidence plainEvidence;
  } rows[] = {{cyrillic + "\x07 kestrel\n", false, TEncodingEvidence::Utf16Bytes},
              {english + "\x07\n", true, TEncodingEvidence::ValidUtf8}};
  for (const Row &row : rows) {
    ASSERT_EQ(DecodeText(row.text, DefaultTextEncoding()).Evidence, row.plainEvidence);
    for (size_t block : {size_t(1) << 20, size_t(4096)}) { // the start still held, or dropped
      FastResult r;
      FastSettings s;
      s.blockSize = block;
      EXPECT_EQ(FastKestrel(row.text, s, r), row.fast) << block;
      EXPECT_EQ(r.matches, row.fast ? 6000u : 0u);
    }
  }
}

// The fast way takes patterns whose every match holds a literal and stays on one line.
TEST(FastSearch, TakesPatternsWithALiteralOnOneLine) {
  struct Row {
    std::u16string pattern;
    bool regex, ignoreMarks, compressSpace, fast;
  };
  const std::vector<Row> rows = {
      {u"kestrel", false, false, false, true},     {u"kestrel", false, true, false, false},
      {u"red kite", false, false, true, false},    {u"a.b", true, false, false, false},
      {u"^kestrel", true, false, false, false},    {u"kestrel$", true, false, false, false},
      {u"red|blue", true, false, false, false},    {u"[^a]bc", true, false, false, false},
      {u"a\\sb", true, false, false, false},       {u"(a|b)cd", true, false, false, true},
      {u"x*", true, false, false, false},          {u"\\.com", true, false, false, true},
      {u"ab{0,2}", true, false, false, true},      {u"[a-z]+", true, false, false, false},
      {u"[\\x00-z]ab", true, false, false, false},
  };
  for (const Row &r : rows) {
    MatchOptions m;
    m.regex = r.regex;
    m.ignoreMarks = r.ignoreMarks;
    m.compressSpace = r.compressSpace;
    EXPECT_EQ(FastPlan::Make(r.pattern, m).has_value(), r.fast) << WideStringToUTF8(r.pattern);
  }
}

// What is held stays bounded however long the text and dense the matches (contexts that
// reach into the next lines read on, and must not keep all they read).
TEST(FastSearch, HoldsNoMoreThanTheLinesItNeeds) {
  std::string text;
  std::mt19937 rng(9);
  while (text.size() < 2'000'000)
    text += rng() % 2 ? "the kestrel\n" : "kestrel and the wind over the fields\r\n";
  for (int words : {0, 5}) {
    FastSettings s;
    s.blockSize = 4096;
    s.history = 1024;
    s.mostHeld = 64 << 10;
    s.mostLines = 1000;
    s.context.words = words;
    FastResult r;
    EXPECT_TRUE(FastKestrel(text, s, r)) << words;
    EXPECT_TRUE(r.tooManyLines);
  }
}

} // namespace
} // namespace kestrel::cli
