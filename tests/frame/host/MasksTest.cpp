// TMask: the host's wildcard test of one name.
#include <gtest/gtest.h>

#include <kestrel/frame/host/Host.h>

#include <vector>

#include "support/TestSupport.h"

using namespace kestrel;

TEST(TMask, WildcardRules) {
  const struct {
    const char *mask;
    std::vector<const char *> match, miss;
  } rows[] = {
      {"*.txt", {"a.txt", "A.TXT", ".txt"}, {"a.txt.bak"}},
      {"*", {"", "anything.at.all"}, {}},
      {"*.*", {"a.b"}, {"noext"}},
      {"?", {"a"}, {"", "ab"}},
      {"a?c", {"abc"}, {"ac"}},
      {"a*b*c", {"aXXbYYc"}, {"aXXbYY"}},
      {"*ab", {"aab"}, {}},
      {"**a", {"a"}, {}},
      {"[a-c]x", {"bx", "Bx"}, {"dx"}},
      {"[!a-c]x", {"dx"}, {"ax"}},
      {"[abc]", {"c"}, {}},
      {"[a-cx-z]", {"y"}, {}},
      {"[*]", {"*"}, {"a"}},
      {"[?]x", {"?x"}, {}},
      {"", {""}, {"a"}},
      {"abc", {"ABC"}, {"abcd"}},
      {"é*", {"Éclair"}, {}},
      {"*ß", {"STRAß"}, {}},
      {"[à-ä]", {"Â"}, {}},
      {"d?t", {"d\xC3\xA9t"}, {}}, // one character of two bytes
      {"a\xFF*", {"A\xFFz"}, {}},  // a byte outside UTF-8 is a character of its own
  };
  for (const auto &r : rows) {
    for (const char *name : r.match) {
      EXPECT_TRUE(TMask(r.mask).Matches(name)) << r.mask << " / " << name;
      EXPECT_TRUE(MatchesMask(name, r.mask)) << r.mask << " / " << name;
    }
    for (const char *name : r.miss)
      EXPECT_FALSE(TMask(r.mask).Matches(name)) << r.mask << " / " << name;
  }
}

TEST(TMask, BadMasksRaiseWithThePosition) {
  struct Row {
    const char *mask;
    int position;
  } rows[] = {{"[abc", 5}, {"a[", 3},   {"[]", 2},     {"[!]", 3},
              {"[-a]", 2}, {"[a-]", 3}, {"x[z-a]", 5}, {"[a-", 3}};
  for (const Row &r : rows)
    EXPECT_EQ(test::MessageOf<EMaskException>([&] { TMask m(r.mask); }),
              "'" + std::string(r.mask) + "' is an invalid mask at (" + std::to_string(r.position) +
                  ")");
}

TEST(TMask, LongNamesDoNotTakeLong) {
  // Backtracking over stars stays bounded by steps x characters.
  std::string name(20000, 'a');
  EXPECT_FALSE(TMask("*a*a*a*a*a*b").Matches(name));
  EXPECT_TRUE(TMask("*a*a*a*a*a*").Matches(name));
}
