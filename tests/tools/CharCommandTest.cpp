// kestrel char, run as the built program.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

struct RunResult {
  int status;
  std::string out;
};

// Runs the kestrel program with arguments quoted for the shell; standard
// error is kept apart from the output.
RunResult Kestrel(const std::vector<std::string> &args, bool withErrors = false) {
  std::string cmd = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel";
  for (const std::string &a : args) {
    std::string q = "'";
    for (char c : a)
      q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    cmd += " " + q + "'";
  }
  cmd += withErrors ? " 2>&1" : " 2>/dev/null";
  RunResult r{-1, ""};
  FILE *p = popen(cmd.c_str(), "r");
  if (!p) return r;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0)
    r.out.append(buf, n);
  int st = pclose(p);
  r.status = WIFEXITED(st) ? WEXITSTATUS(st) : -1;
  return r;
}

std::vector<std::string> Lines(const std::string &text) {
  std::vector<std::string> lines;
  size_t start = 0, end;
  while ((end = text.find('\n', start)) != std::string::npos) {
    if (end > start) lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return lines;
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

TEST(CharCommandTest, OneLinePerCodeUnitOfText) {
  RunResult r = Kestrel({"char", "A\xC3\xA9\xC2\xBD", "\xF0\x90\x80\x80"}); // A é ½, then U+10000
  ASSERT_EQ(r.status, 0) << "is the kestrel program built?";
  std::vector<std::string> lines = Lines(r.out);
  ASSERT_EQ(lines.size(), 5u) << r.out;
  EXPECT_EQ(lines[0].rfind("U+0041", 0), 0u);
  EXPECT_TRUE(Has(lines[0], "category Lu"));
  EXPECT_TRUE(Has(lines[0], "HexDigit"));
  EXPECT_TRUE(Has(lines[0], " Alpha "));
  EXPECT_FALSE(Has(lines[0], "number"));
  EXPECT_TRUE(Has(lines[1], "category Ll"));
  EXPECT_TRUE(Has(lines[1], "Composite"));
  EXPECT_TRUE(Has(lines[2], "category No"));
  EXPECT_TRUE(Has(lines[2], "number 1/2"));
  // A pair in text: each half as itself, in no property.
  EXPECT_EQ(lines[3].rfind("U+D800", 0), 0u);
  EXPECT_TRUE(Has(lines[3], "category -"));
  EXPECT_TRUE(Has(lines[3], "is Undefined"));
  EXPECT_EQ(lines[4].rfind("U+DC00", 0), 0u);
}

TEST(CharCommandTest, NamedCodePointsAreAskedAsThemselves) {
  RunResult r = Kestrel({"char", "U+10000", "u+2169", "U+0009"});
  ASSERT_EQ(r.status, 0);
  std::vector<std::string> lines = Lines(r.out);
  ASSERT_EQ(lines.size(), 3u) << r.out;
  EXPECT_TRUE(Has(lines[0], "category Cs"));
  EXPECT_TRUE(Has(lines[0], "Surrogate"));
  EXPECT_TRUE(Has(lines[1], "category Nl"));
  EXPECT_TRUE(Has(lines[1], "number 10"));
  EXPECT_TRUE(Has(lines[2], "WhiteSpace"));
  EXPECT_FALSE(Has(lines[2], " Space "));
}

TEST(CharCommandTest, JsonCarriesTheSameFields) {
  RunResult r = Kestrel({"char", "--json", "\xC2\xBD", "U+0041"});
  ASSERT_EQ(r.status, 0);
  EXPECT_EQ(r.out.front(), '[');
  EXPECT_TRUE(Has(r.out, R"("argument":"½")"));
  EXPECT_TRUE(Has(r.out, R"("code":"U+00BD","value":189,"kind":"unit")"));
  EXPECT_TRUE(Has(r.out, R"("category":["No"])"));
  EXPECT_TRUE(Has(r.out, R"("number":{"numerator":1,"denominator":2})"));
  EXPECT_TRUE(Has(r.out, R"("kind":"code point")"));
  EXPECT_TRUE(Has(r.out, R"("number":null)"));
  EXPECT_TRUE(Has(r.out, R"("is":["Alpha",)"));
  // Brackets balance.
  int depth = 0;
  bool inString = false;
  for (size_t i = 0; i < r.out.size(); ++i) {
    char c = r.out[i];
    if (inString) {
      if (c == '\\')
        ++i;
      else if (c == '"')
        inString = false;
    } else if (c == '"') {
      inString = true;
    } else if (c == '[' || c == '{') {
      ++depth;
    } else if (c == ']' || c == '}') {
      ASSERT_GT(depth, 0);
      --depth;
    }
  }
  EXPECT_EQ(depth, 0);
}

TEST(CharCommandTest, BadUsageIsRefusedClearly) {
  struct Case {
    std::vector<std::string> args;
    const char *message;
  } cases[] = {
      {{"char"}, "at least one argument"},
      {{"char", "--frobnicate", "A"}, "unknown option --frobnicate"},
      {{"char", "ok", "\xC3"}, "argument 2 is not valid UTF-8"},
      {{"char", "\xC0\x80"}, "not valid UTF-8"},         // overlong
      {{"char", "\xED\xA0\x80"}, "not valid UTF-8"},     // an encoded surrogate
      {{"char", "\xF4\x90\x80\x80"}, "not valid UTF-8"}, // above U+10FFFF
  };
  for (const Case &c : cases) {
    RunResult r = Kestrel(c.args, true);
    EXPECT_EQ(r.status, 2) << c.message;
    EXPECT_TRUE(Has(r.out, c.message)) << r.out;
  }
}

} // namespace
