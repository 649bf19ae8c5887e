// The base of the search engines: the list of results.
#include <gtest/gtest.h>

#include <kestrel/frame/host/Exceptions.h>
#include <kestrel/search/Search.h>

#include "support/TestSupport.h"

namespace kestrel {
namespace {

using test::Matches;
using test::ResultsOf;

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

} // namespace
} // namespace kestrel
