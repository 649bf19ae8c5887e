// kestrel search a block at a time against the whole text decoded (which --ignore-marks
// forces, changing nothing in a text without marks).
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace {

using kestrel::test::RunKestrel;

// About 3 MB of lines of every ending, astral characters, matches around every megabyte.
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

// The output of a search a block at a time, checked against that of the whole text.
std::string BlockByBlock(const std::vector<std::string> &options, const std::string &pattern,
                         const std::string &file) {
  std::vector<std::string> fast = {"search"};
  fast.insert(fast.end(), options.begin(), options.end());
  std::vector<std::string> plain = fast;
  plain.insert(plain.end(), {"--ignore-marks", pattern, file});
  fast.insert(fast.end(), {"--max-file-size", "1M", pattern, file});
  const auto f = RunKestrel(fast), p = RunKestrel(plain);
  EXPECT_EQ(f.status, 0) << f.err;
  EXPECT_EQ(p.status, 0) << p.err;
  EXPECT_TRUE(f.out == p.out) << options[1];
  EXPECT_EQ(f.err, ""); // not passed by for its size
  return f.out;
}

TEST(SearchLargeFiles, BlockByBlockGivesWhatTheWholeTextGives) {
  kestrel::test::TempDir dir;
  dir.WriteFile("big.txt", LargeText());
  const std::vector<std::vector<std::string>> rows = {{"--json", "--words", "3"},
                                                      {"--json", "--whole-word"},
                                                      {"--format", "tsv", "--sort", "left"}};
  for (const auto &options : rows)
    EXPECT_GT(BlockByBlock(options, "kestrel", dir / "big.txt").size(), 10000u);
  EXPECT_GT(BlockByBlock({"--json", "--regex"}, "kes+trel", dir / "big.txt").size(), 10000u);
}

// More lines than are held to a text's end: searched again, they go out as found.
TEST(SearchLargeFiles, ManyLinesComeOutAsFromTheWholeText) {
  kestrel::test::TempDir dir;
  std::string text;
  for (int i = 0; i < 120000; ++i)
    text += i % 7 ? "a kestrel\n" : "\xC3\xA9 Kestrel\r\n";
  dir.WriteFile("many.txt", text);
  const std::string out = BlockByBlock({"--format", "tsv"}, "kestrel", dir / "many.txt");
  EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 120001);
}

} // namespace
