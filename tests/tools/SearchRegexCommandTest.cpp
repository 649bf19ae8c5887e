// kestrel search --regex end to end: the built program over files the tests write.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "TestSupport.h"

namespace {

struct Result {
  int status;
  std::string out;
};

std::string Quote(const std::string &s) {
  std::string q = "'";
  for (char c : s)
    q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

Result Search(const std::string &args) {
  std::string cmd = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel search " + args + " 2>&1";
  Result r{-1, {}};
  FILE *p = ::popen(cmd.c_str(), "r");
  if (!p) return r;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
    r.out.append(buf, n);
  int status = ::pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

class SearchRegexCommand : public ::testing::Test {
protected:
  void SetUp() override {
    // Line 2 starts at unit 16; the pair before "kettle" counts two units.
    dir.WriteFile("t.txt", "The Kestrel sat\nkestrels \xF0\x90\x90\x80 kettle.\n");
    file = Quote(dir / "t.txt");
  }
  kestrel::test::TempDir dir;
  std::string file;
};

TEST_F(SearchRegexCommand, FindsEveryLeftmostLongestMatch) {
  Result r = Search("--regex --json 'k[a-z]+l' " + file);
  EXPECT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "\"start\": 4, \"stop\": 11, \"line\": 1, \"column\": 5")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"start\": 16, \"stop\": 23, \"line\": 2, \"column\": 1")) << r.out;
  EXPECT_TRUE(Has(r.out, "\"start\": 28, \"stop\": 33, \"line\": 2, \"column\": 12")) << r.out;
  // A start that fails is retried further on: "ing" is reached through the
  // class, where the one-pass engine finds only "hing".
  dir.WriteFile("d.txt", "the driving fishing beginning\n");
  r = Search("--regex '[a-z]+ing' " + Quote(dir / "d.txt"));
  EXPECT_TRUE(Has(r.out, "3 matches in 1 of 1 file")) << r.out;
  r = Search("--regex --single-pass --json '[a-z]+ing' " + Quote(dir / "d.txt"));
  EXPECT_TRUE(Has(r.out, "\"start\": 15, \"stop\": 19")) << r.out;
  EXPECT_FALSE(Has(r.out, "\"start\": 4")) << r.out;
}

TEST_F(SearchRegexCommand, FoldsCaseUnlessAskedNotTo) {
  EXPECT_TRUE(Has(Search("--regex --json '^KES' " + file).out, "\"start\": 16"));
  EXPECT_FALSE(Has(Search("--regex --json --case-sensitive '^KES' " + file).out, "\"start\""));
  Result r = Search("--regex --case-sensitive '^kes' " + file);
  EXPECT_TRUE(Has(r.out, "1 match in 1 of 1 file")) << r.out;
}

TEST_F(SearchRegexCommand, ReadsThePatternFromAFile) {
  // A class holding a character beyond the basic plane, given in UTF-16.
  dir.WriteFile("p.txt", std::string("\xFF\xFE[\0\x01\xD8\x00\xDC]\0 \0", 12));
  Result r = Search("--regex --json --pattern-file " + Quote(dir / "p.txt") + " " + file);
  EXPECT_EQ(r.status, 0) << r.out;
  EXPECT_TRUE(Has(r.out, "\"start\": 25, \"stop\": 28")) << r.out;
}

TEST_F(SearchRegexCommand, ABadPatternIsAOneLineError) {
  Result r = Search("--regex '(ab' " + file);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "kestrel search: Error in regular expression '(ab': Unbalanced group "
                   "expression, ')' is missing.\n");
  r = Search("--regex '\\bkes' " + file);
  EXPECT_EQ(r.status, 1);
  EXPECT_EQ(r.out, "kestrel search: the word boundary \\b at character 1 is not supported\n");
  EXPECT_EQ(Search("--regex 'a*?' " + file).status, 1);
  EXPECT_EQ(Search("--regex '*a' " + file).status, 1);
}

TEST_F(SearchRegexCommand, OnlySpaceCompressionIsRefused) {
  Result r = Search("--regex --compress-space kes " + file);
  EXPECT_EQ(r.status, 2);
  EXPECT_TRUE(Has(r.out, "does not go with --regex")) << r.out;
  EXPECT_EQ(Search("--single-pass kes " + file).status, 2);
  EXPECT_EQ(Search("--regex --whole-word --ignore-marks kes " + file).status, 1); // no whole word
}

} // namespace
