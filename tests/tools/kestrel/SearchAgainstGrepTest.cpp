// kestrel search against grep: on random texts, the number of matches per
// file, literal and regular, case kept and folded, is what grep -o finds.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "support/RunKestrel.h"
#include "support/TestSupport.h"

namespace {

using Counts = std::map<std::string, int>;

// Words that the patterns below meet in their various case forms, mixed with
// random letters; lines end in LF or CR LF.
std::string RandomText(std::mt19937 &random) {
  static const char *const words[] = {
      "kestrel", "Kestrel", "KESTREL", "kEsTrEl", "kestrels", "colour", "color", "COLOR",
      "colouur", "singing", "ring",    "Ing",     "abcdab",   "cdcd",   "café",  "CAFÉ",
      "cafe",    "𐐀𐐨",      "é",       "the",     "of",       "and",    "a"};
  std::string text;
  for (int line = 0; line < 300; ++line) {
    const int n = static_cast<int>(random() % 14);
    for (int i = 0; i < n; ++i) {
      if (random() % 4 == 0) {
        for (int k = static_cast<int>(random() % 7); k >= 0; --k)
          text += static_cast<char>('a' + random() % 26);
      } else {
        text += words[random() % std::size(words)];
      }
      text += random() % 9 == 0 ? "," : "";
      text += ' ';
    }
    text += random() % 3 == 0 ? "\r\n" : "\n";
  }
  return text;
}

int GrepCount(const std::string &options, const std::string &pattern, const std::string &file) {
  const kestrel::test::ShellRun run =
      kestrel::test::RunShell("LC_ALL=C.UTF-8 grep -o " + options + " -e '" + pattern + "' '" +
                              file + "' | wc -l"); // the patterns hold no quote
  return run.status == 0 ? std::stoi(run.out) : -1;
}

// The TSV rows of --count: file, matches.
Counts KestrelCounts(const std::string &out) {
  Counts counts;
  std::istringstream in(out);
  std::string line;
  std::getline(in, line); // the header
  while (std::getline(in, line)) {
    const size_t tab = line.find('\t');
    if (tab != std::string::npos && line.compare(0, tab, "total") != 0)
      counts[line.substr(0, tab)] = std::stoi(line.substr(tab + 1));
  }
  return counts;
}

TEST(SearchAgainstGrep, MatchCountsPerFileAgree) {
  kestrel::test::TempDir dir;
  std::mt19937 random(20261123);
  std::vector<std::string> files;
  for (int i = 0; i < 4; ++i) {
    files.push_back(dir / ("text" + std::to_string(i) + ".txt"));
    dir.WriteFile("text" + std::to_string(i) + ".txt", RandomText(random));
  }
  struct Case {
    std::vector<std::string> kestrel; // options before the pattern
    std::string grep;                 // options of grep -o
    std::string pattern;
  };
  const Case cases[] = {
      {{"--case-sensitive"}, "-F", "kestrel"},
      {{}, "-F -i", "kestrel"},
      {{}, "-F -i", "café"},
      {{"--case-sensitive"}, "-F", "𐐀𐐨"},
      {{"--regex", "--case-sensitive"}, "-E", "colou?r"},
      {{"--regex"}, "-E -i", "colou*r"},
      {{"--regex", "--case-sensitive"}, "-E", "[a-z]+ing"},
      {{"--regex", "--case-sensitive"}, "-E", "(ab|cd)+"},
      {{"--regex"}, "-E -i", "k[a-z]*l"},
  };
  for (const Case &c : cases) {
    std::vector<std::string> args = {"search", "--count", "--format", "tsv"};
    args.insert(args.end(), c.kestrel.begin(), c.kestrel.end());
    args.push_back(c.pattern);
    args.insert(args.end(), files.begin(), files.end());
    const kestrel::test::KestrelRun run = kestrel::test::RunKestrel(args);
    ASSERT_LE(run.status, 1) << c.pattern << run.err;
    const Counts counts = KestrelCounts(run.out);
    for (const std::string &file : files) {
      const int expected = GrepCount(c.grep, c.pattern, file);
      ASSERT_GE(expected, 0) << "grep did not run";
      const auto found = counts.find(file);
      EXPECT_EQ(found == counts.end() ? 0 : found->second, expected)
          << c.pattern << " in " << file << "\n"
          << run.out;
    }
  }
}

} // namespace
