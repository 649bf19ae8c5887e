// The case forms, decomposition, combining class and block of kestrel char.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace {

std::string CharOutput(const std::string &args) {
  std::string cmd = std::string(KESTREL_BINARY_DIR) + "/tools/kestrel char " + args + " 2>&1";
  std::string out;
  FILE *p = popen(cmd.c_str(), "r");
  if (!p) return out;
  char buf[4096];
  size_t n;
  while ((n = fread(buf, 1, sizeof buf, p)) > 0)
    out.append(buf, n);
  int st = pclose(p);
  EXPECT_TRUE(WIFEXITED(st) && WEXITSTATUS(st) == 0) << out;
  return out;
}

bool Has(const std::string &text, const std::string &part) {
  return text.find(part) != std::string::npos;
}

TEST(CharTextFields, ReadableLine) {
  std::string digraph = CharOutput("U+01C5");
  EXPECT_TRUE(Has(digraph, "upper U+01C4  lower U+01C6  block Latin Extended-B (3)")) << digraph;
  EXPECT_FALSE(Has(digraph, "title ")) << digraph; // the same as the character: left out
  std::string composite = CharOutput("U+1F82");
  EXPECT_TRUE(Has(composite, "decomposition U+03B1 U+0313 U+0300 U+0345")) << composite;
  std::string mark = CharOutput("U+0345");
  EXPECT_TRUE(Has(mark, "title U+0399  class 240")) << mark;
  std::string syllable = CharOutput("U+AC01");
  EXPECT_TRUE(Has(syllable, "decomposition U+1100 U+1161 U+11A8  block Hangul Syllables (54)"))
      << syllable;
  EXPECT_TRUE(Has(CharOutput("U+D7A4"), "block -"));
  EXPECT_TRUE(Has(CharOutput("U+10000"), "block -"));
}

TEST(CharTextFields, Json) {
  std::string json = CharOutput("--json U+00C0");
  EXPECT_TRUE(Has(json, "\"upper\":\"U+00C0\",\"lower\":\"U+00E0\",\"title\":\"U+00C0\"")) << json;
  EXPECT_TRUE(Has(json, "\"decomposition\":[\"U+0041\",\"U+0300\"],\"class\":0")) << json;
  EXPECT_TRUE(Has(json, "\"block\":{\"number\":1,\"name\":\"Latin-1 Supplement\"}")) << json;
  EXPECT_TRUE(Has(CharOutput("--json U+10000"), "\"block\":null"));
}

} // namespace
