// TMask: the host's wildcard test of one name.
#include <gtest/gtest.h>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/frame/host/Masks.h>

using namespace kestrel;

TEST(TMask, WildcardRules) {
  struct Row {
    const char *mask, *name;
    bool match;
  } rows[] = {
      {"*.txt", "a.txt", true},
      {"*.txt", "A.TXT", true},
      {"*.txt", "a.txt.bak", false},
      {"*.txt", ".txt", true},
      {"*", "", true},
      {"*", "anything.at.all", true},
      {"*.*", "noext", false},
      {"*.*", "a.b", true},
      {"?", "a", true},
      {"?", "", false},
      {"?", "ab", false},
      {"a?c", "abc", true},
      {"a?c", "ac", false},
      {"a*b*c", "aXXbYYc", true},
      {"a*b*c", "aXXbYY", false},
      {"*ab", "aab", true},
      {"**a", "a", true},
      {"[a-c]x", "bx", true},
      {"[a-c]x", "Bx", true},
      {"[a-c]x", "dx", false},
      {"[!a-c]x", "dx", true},
      {"[!a-c]x", "ax", false},
      {"[abc]", "c", true},
      {"[a-cx-z]", "y", true},
      {"[*]", "*", true},
      {"[*]", "a", false},
      {"[?]x", "?x", true},
      {"", "", true},
      {"", "a", false},
      {"abc", "ABC", true},
      {"abc", "abcd", false},
      {"é*", "Éclair", true},
      {"*ß", "STRAß", true},
      {"[à-ä]", "Â", true},
      {"d?t", "d\xC3\xA9t", true}, // one character of two bytes
      {"a\xFF*", "A\xFFz", true},  // a byte outside UTF-8 is a character of its own
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.mask) + " / " + r.name);
    EXPECT_EQ(TMask(r.mask).Matches(r.name), r.match);
    EXPECT_EQ(MatchesMask(r.name, r.mask), r.match);
  }
}

TEST(TMask, BadMasksRaiseWithThePosition) {
  struct Row {
    const char *mask;
    int position;
  } rows[] = {{"[abc", 5}, {"a[", 3},   {"[]", 2},     {"[!]", 3},
              {"[-a]", 2}, {"[a-]", 3}, {"x[z-a]", 5}, {"[a-", 3}};
  for (const Row &r : rows) {
    SCOPED_TRACE(r.mask);
    try {
      TMask m(r.mask);
      ADD_FAILURE() << "no exception";
    } catch (const EMaskException &e) {
      EXPECT_EQ(e.Message(), "'" + std::string(r.mask) + "' is an invalid mask at (" +
                                 std::to_string(r.position) + ")");
    }
  }
}

TEST(TMask, LongNamesDoNotTakeLong) {
  // Backtracking over stars stays bounded by steps x characters.
  std::string name(20000, 'a');
  EXPECT_FALSE(TMask("*a*a*a*a*a*b").Matches(name));
  EXPECT_TRUE(TMask("*a*a*a*a*a*").Matches(name));
}
