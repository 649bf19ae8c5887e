// The base of the search engines: the flags and the list of results.
#include <gtest/gtest.h>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/Search.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

using test::Matches;
using test::ResultsOf;

TEST(SearchFlags, OneByteWithTheFlagValuesOfTheStoredSet) {
  using enum TSearchFlag;
  const std::pair<TSearchFlag, uint8_t> flags[] = {{sfCaseSensitive, 1},
                                                   {sfIgnoreNonSpacing, 2},
                                                   {sfSpaceCompress, 4},
                                                   {sfLeftBounded, 8},
                                                   {sfRightBounded, 16}};
  for (auto [flag, raw] : flags)
    EXPECT_EQ(TSearchFlags{flag}.Raw(), raw);
}

TEST(SearchEngine, ResultsArePairsReadBackByIndexAndDeletedWhole) {
  TUTBMSearch e(nullptr);
  EXPECT_EQ(e.GetCount(), 0u);
  for (uint32_t i = 0; i < 3; ++i)
    e.AddResult(i * 10, i * 10 + 2);
  e.AddResult(0, 0xFFFFFFFFu);
  e.DeleteResult(1);
  EXPECT_EQ(ResultsOf(e), (Matches{{0, 2}, {20, 22}, {0, -1}})); // read back as signed numbers
  int32_t a = 0, b = 0;
  EXPECT_THROW(e.GetResult(3, a, b), EListError);
  EXPECT_THROW(e.GetResult(0x80000000u, a, b), EListError); // 2 x Index would wrap to 0
  EXPECT_THROW(e.DeleteResult(0x80000000u), EListError);
  EXPECT_THROW(e.DeleteResult(3), EListError);
  EXPECT_EQ(e.GetCount(), 3u); // a failed delete took nothing
}

TEST(SearchEngine, AFindReplacesTheResultsAndClearKeepsTheOwner) {
  auto *owner = reinterpret_cast<TWideStrings *>(0x1000); // never read by the engine
  TUTBMSearch e(owner);
  e.FindPrepare(u"b", {});
  EXPECT_TRUE(e.FindAll(u"bbb"));
  uint32_t a = 0, b = 0;
  EXPECT_TRUE(e.FindFirst(u"xb", a, b));
  EXPECT_EQ(ResultsOf(e), (Matches{{1, 2}}));
  EXPECT_FALSE(e.FindAll(u"xyz"));
  EXPECT_EQ(e.GetCount(), 0u);
  e.FindAll(u"b");
  e.Clear();
  EXPECT_EQ(e.GetCount(), 0u);
  EXPECT_EQ(e.GetOwner(), owner);
}

} // namespace
} // namespace kestrel
