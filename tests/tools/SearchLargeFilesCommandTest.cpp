// kestrel search through files larger than its blocks: the fast way (read a
// block at a time, for UTF-8 and a literal) against the plain way (the whole
// text decoded, taken here by --ignore-marks, which changes nothing in a
// text without marks).
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "TestSupport.h"
#include "support/RunKestrel.h"

namespace {

using kestrel::test::RunKestrel;

// About 3 MB of lines of every ending, with multibyte and astral characters,
// and matches on both sides of every megabyte.
std::string LargeText() {
  std::mt19937 rng(5);
  const std::vector<std::string> words = {
      "the", "hover", "caf\xC3\xA9", "\xF0\x9F\x98\x80", "\xE4\xB8\xAD\xE6\x96\x87", "wind"};
  const std::vector<std::string> ends = {"\n", "\r\n", "\r", "\xE2\x80\xA8"};
  std::string text;
  while (text.size() < 3'200'000) {
    const size_t inBlock = text.size() % 1'048'576;
    const bool nearEdge = inBlock > 1'048'576 - 300 || inBlock < 300;
    text += (nearEdge || rng() % 500 == 0) ? "Kestrel" : words[rng() % words.size()];
    text += rng() % 9 == 0 ? ends[rng() % ends.size()] : " ";
  }
  return text;
}

TEST(SearchLargeFiles, BlockByBlockGivesWhatTheWholeTextGives) {
  kestrel::test::TempDir dir;
  dir.WriteFile("big.txt", LargeText());
  const std::string big = dir / "big.txt";
  struct Row {
    std::vector<std::string> options;
    std::string pattern;
  } rows[] = {{{"--json", "--words", "3"}, "kestrel"},
              {{"--json", "--whole-word"}, "kestrel"},
              {{"--format", "tsv", "--sort", "left"}, "kestrel"},
              {{"--json", "--regex"}, "kes+trel"}};
  for (const Row &row : rows) {
    std::vector<std::string> fast = {"search"};
    fast.insert(fast.end(), row.options.begin(), row.options.end());
    std::vector<std::string> plain = fast;
    plain.push_back("--ignore-marks");
    fast.insert(fast.end(), {"--max-file-size", "1M", row.pattern, big});
    plain.insert(plain.end(), {row.pattern, big});
    const auto f = RunKestrel(fast), p = RunKestrel(plain);
    EXPECT_EQ(f.status, 0) << f.err;
    EXPECT_EQ(p.status, 0) << p.err;
    EXPECT_GT(f.out.size(), 10000u);
    EXPECT_EQ(f.out, p.out) << row.options[1];
    EXPECT_EQ(f.err, ""); // not passed by for its size
  }
}

} // namespace

// More lines than are held until a text's end: searched a second time, the
// lines go out as they are found, the same lines.
TEST(SearchLargeFiles, ManyLinesComeOutAsFromTheWholeText) {
  kestrel::test::TempDir dir;
  std::string text;
  for (int i = 0; i < 120000; ++i)
    text += i % 7 ? "a kestrel\n" : "\xC3\xA9 Kestrel\r\n";
  dir.WriteFile("many.txt", text);
  const std::string many = dir / "many.txt";
  const auto f =
      RunKestrel({"search", "--format", "tsv", "--max-file-size", "1M", "kestrel", many});
  const auto p = RunKestrel({"search", "--format", "tsv", "--ignore-marks", "kestrel", many});
  EXPECT_EQ(f.status, 0) << f.err;
  EXPECT_EQ(std::count(f.out.begin(), f.out.end(), '\n'), 120001);
  EXPECT_TRUE(f.out == p.out);
  EXPECT_EQ(f.err, ""); // not passed by for its size
}
