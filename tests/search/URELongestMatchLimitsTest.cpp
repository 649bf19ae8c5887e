// The bounds of TURELongestMatch::FindAll: the first matches up to each limit.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <kestrel/search/URELongestMatch.h>

using namespace kestrel;

namespace {

using Matches = std::vector<TURELongestMatch::TMatch>;

Matches Find(const std::u16string &pattern, const std::u16string &text, uint64_t full,
             uint64_t empty, bool &reached) {
  TURELongestMatch engine;
  engine.FindPrepare(pattern, {});
  engine.SetMatchLimits(full, empty);
  engine.FindAll(text);
  reached = engine.LimitReached();
  return engine.Matches();
}

} // namespace

TEST(URELongestMatchLimits, KeepTheFirstMatchesUpToEachLimit) {
  struct Row {
    std::u16string pattern, text;
    uint64_t full, empty;
    size_t kept;
    bool reached;
  } rows[] = {
      {u"a+", u"aa b aaa b a", 2, 100, 2, true},
      {u"a+", u"aa b aaa b a", 3, 100, 3, false}, // exactly the limit: nothing past it
      {u"q*", u"abcdef", 100, 3, 3, true},        // empty matches at every position
      {u"q*", u"abcdef", 100, 6, 6, true},        // and one at the very end
      {u"q*", u"abcdef", 100, 7, 7, false},
      {u"a*", u"bab", 1, 100, 3, false},  // (0,0), (1,2), (3,3): one full match
      {u"a*", u"babab", 1, 100, 2, true}, // (0,0), (1,2), then a second full one
      {u"ab|a", u"aab", 1, 100, 1, true}, // the longest from a start settles first
  };
  for (const Row &r : rows) {
    SCOPED_TRACE(std::string(r.pattern.begin(), r.pattern.end()) + " " +
                 std::string(r.text.begin(), r.text.end()));
    bool unboundedReached = true, reached = false;
    const Matches all = Find(r.pattern, r.text, UINT64_MAX, UINT64_MAX, unboundedReached);
    EXPECT_FALSE(unboundedReached);
    const Matches kept = Find(r.pattern, r.text, r.full, r.empty, reached);
    EXPECT_EQ(kept.size(), r.kept);
    EXPECT_EQ(reached, r.reached);
    ASSERT_LE(kept.size(), all.size());
    EXPECT_TRUE(std::equal(kept.begin(), kept.end(), all.begin()));
  }
}
