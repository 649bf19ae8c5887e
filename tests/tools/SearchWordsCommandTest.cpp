// kestrel search with whole words, ignored accents and familiar regular
// expressions, end to end.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

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
  const std::string cmd =
      std::string(KESTREL_BINARY_DIR) + "/tools/kestrel search --json " + args + " 2>&1";
  Result r{-1, {}};
  FILE *p = ::popen(cmd.c_str(), "r");
  if (!p) return r;
  char buf[4096];
  size_t n;
  while ((n = std::fread(buf, 1, sizeof buf, p)) > 0)
    r.out.append(buf, n);
  const int status = ::pclose(p);
  r.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return r;
}

// The (start, stop) pairs of a JSON result, as "s-e s-e ...".
std::string Spans(const std::string &json) {
  std::string out;
  for (size_t at = json.find("\"start\": "); at != std::string::npos;
       at = json.find("\"start\": ", at + 1)) {
    const size_t s = std::stoul(json.substr(at + 9));
    const size_t e = std::stoul(json.substr(json.find("\"stop\": ", at) + 8));
    out += (out.empty() ? "" : " ") + std::to_string(s) + "-" + std::to_string(e);
  }
  return out;
}

class SearchWords : public ::testing::Test {
protected:
  std::string File(const std::string &text) {
    dir.WriteFile("t.txt", text);
    return Quote(dir / "t.txt");
  }
  kestrel::test::TempDir dir;
};

TEST_F(SearchWords, WholeWordsEndAtAnythingButWordCharacters) {
  // Line starts and ends, punctuation, a mark inside a word, a connector.
  const std::string f = File("love\nLove, glove (love) love_ lov\xC3\xA9 love\xCC\x81 love");
  EXPECT_EQ(Spans(Search("--whole-word love " + f).out), "0-4 5-9 18-22 41-45");
  EXPECT_EQ(Spans(Search("--whole-word --regex 'lov(e|es)' " + f).out), "0-4 5-9 18-22 41-45");
  EXPECT_EQ(Spans(Search("--whole-word --regex --single-pass love " + f).out),
            "0-4 5-9 18-22 41-45");
  // A shorter match that keeps the bounds wins over a longer one that does
  // not; an occurrence inside a refused one is still found.
  EXPECT_EQ(Spans(Search("--whole-word --regex 'a.|a' " + File("a-b")).out), "0-1");
  EXPECT_EQ(Spans(Search("--whole-word 'a-a' " + File("ba-a-a")).out), "3-6");
}

TEST_F(SearchWords, IgnoredAccentsKeepTheOriginalOffsets) {
  // Precomposed and decomposed, in one text.
  const std::string f = File("\xC4\x8D"
                             "esk\xC3\xA9 ce\xCC\x8Cske\xCC\x81 ceske "
                             "cr\xC3\xA9"
                             "cerelle crecerelle");
  EXPECT_EQ(Spans(Search("--ignore-marks ceske " + f).out), "0-5 6-13 14-19");
  EXPECT_EQ(Spans(Search("--ignore-marks '\xC4\x8D"
                         "esk\xC3\xA9' " +
                         f)
                      .out),
            "0-5 6-13 14-19");
  EXPECT_EQ(Spans(Search("--ignore-marks crecerelle " + f).out), "20-30 31-41");
  EXPECT_EQ(Spans(Search("--ignore-marks --regex 'cr[e]+cerelle' " + f).out), "20-30 31-41");
  EXPECT_EQ(Spans(Search("ceske " + f).out), "14-19");
  Result r = Search("--ignore-marks ceske " + f);
  EXPECT_TRUE(r.out.find("\"column\": 7") != std::string::npos) << r.out;
}

TEST_F(SearchWords, FamiliarRegularExpressions) {
  const std::string f = File("kindness and 4ness, the_end 42 \xC3\x89t\xC3\xA9");
  EXPECT_EQ(Spans(Search("--regex '[[:alpha:]]+ness' " + f).out), "0-8");
  EXPECT_EQ(Spans(Search("--regex '[:alpha:]+ness' " + f).out), "0-8");
  EXPECT_EQ(Spans(Search("--regex '\\w+' " + f).out), "0-8 9-12 13-18 20-27 28-30 31-34");
  EXPECT_EQ(Spans(Search("--regex --case-sensitive '\\p{Lu}\\p{Ll}+' " + f).out), "31-34");
  EXPECT_EQ(Spans(Search("--regex '\\d+' " + f).out), "13-14 28-30");
  EXPECT_EQ(Spans(Search("--regex --single-pass '\\d+' " + f).out), "13-14 28-30");
}

} // namespace
